// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "lineedit.h"

#include <QtCore/QObject>

class LineEditPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(LineEdit)

public:
    explicit LineEditPrivate(LineEdit* q);

    // Emits textCommited with the current text and starts a new entry.
    void commit();

Q_SIGNALS:
    void textCommited(const QString& text);

private:
    LineEdit* const q_ptr;
};
