// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klcontrols_export.h"

#include <QtWidgets/QLineEdit>

class LineEditPrivate;

/*! \brief A line edit that reports a finished entry once.
 *
 * textCommited() comes when the user presses Return or Enter, and when the
 * field loses focus after the user changed its text. Leaving the field
 * without a change, or changing the text from code, commits nothing.
 */
class KLCONTROLS_EXPORT LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit LineEdit(QWidget* parent = nullptr);
    explicit LineEdit(const QString& text, QWidget* parent = nullptr);
    ~LineEdit() override;

Q_SIGNALS:
    /*! \brief The user finished an entry; \a text is the field's text. */
    void textCommited(const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    Q_DECLARE_PRIVATE(LineEdit)
    LineEditPrivate* const d_ptr;
};
