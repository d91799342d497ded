// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QDialog>

class ScopeElementCommentDialogPrivate;

/*! \brief The dialog in which the comment of a recording is edited.

    A rich-text editor (object name "commentEdit") preset with the comment,
    and Ok/Cancel buttons (object name "buttonBox").
*/
class ScopeElementCommentDialog : public QDialog
{
    Q_OBJECT

public:
    ScopeElementCommentDialog(const QString& elementName, const QString& html, QWidget* parent = nullptr);
    ~ScopeElementCommentDialog() override;

    /*! \brief The editor's text as HTML. */
    QString html() const;

private:
    Q_DECLARE_PRIVATE(ScopeElementCommentDialog)
    ScopeElementCommentDialogPrivate* const d_ptr;
};
