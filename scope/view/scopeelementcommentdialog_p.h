// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementcommentdialog.h"

class QLabel;
class TextEditWidget;

class ScopeElementCommentDialogPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeElementCommentDialog)

public:
    explicit ScopeElementCommentDialogPrivate(ScopeElementCommentDialog* q);

    TextEditWidget* editor = nullptr;
    QLabel* tooLongLabel = nullptr;

private:
    ScopeElementCommentDialog* const q_ptr;
};
