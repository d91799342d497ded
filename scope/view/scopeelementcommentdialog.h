// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QDialog>

class ScopeElementCommentDialogPrivate;

/*! \brief The dialog in which the comment of a recording is edited.

    A rich-text editor (object name "commentEdit") preset with the comment,
    and Ok/Cancel buttons (object name "buttonBox"). A text longer than an
    archive can hold is not accepted: the dialog stays open and says so
    (object name "tooLongLabel").
*/
class ScopeElementCommentDialog : public QDialog
{
    Q_OBJECT

public:
    ScopeElementCommentDialog(const QString& elementName, const QString& html, QWidget* parent = nullptr);
    ~ScopeElementCommentDialog() override;

    /*! \brief The editor's text as HTML. */
    QString html() const;

    /*! \brief Closes the dialog as accepted, unless the text is too long to be stored. */
    void accept() override;

private:
    Q_DECLARE_PRIVATE(ScopeElementCommentDialog)
    ScopeElementCommentDialogPrivate* const d_ptr;
};
