// SPDX-License-Identifier: GPL-3.0-or-later
#include "lineedit.h"
#include "lineedit_p.h"

#include <QtGui/QFocusEvent>
#include <QtGui/QKeyEvent>

LineEditPrivate::LineEditPrivate(LineEdit* q)
    : QObject(q)
    , q_ptr(q)
{
}

void LineEditPrivate::commit()
{
    Q_Q(LineEdit);
    // QLineEdit's modified flag is set by user edits only and cleared by
    // setText(), so it also stays right while the owner blocks our signals
    // to rewrite the text.
    q->setModified(false);
    Q_EMIT textCommited(q->text());
}

LineEdit::LineEdit(QWidget* parent)
    : QLineEdit(parent)
    , d_ptr(new LineEditPrivate(this))
{
    connect(d_ptr, &LineEditPrivate::textCommited, this, &LineEdit::textCommited);
}

LineEdit::LineEdit(const QString& text, QWidget* parent)
    : LineEdit(parent)
{
    setText(text);
}

LineEdit::~LineEdit() = default;

void LineEdit::keyPressEvent(QKeyEvent* event)
{
    QLineEdit::keyPressEvent(event);
    const int key = event->key();
    if ((key == Qt::Key_Return || key == Qt::Key_Enter) && hasAcceptableInput()) {
        Q_D(LineEdit);
        d->commit();
    }
}

void LineEdit::focusOutEvent(QFocusEvent* event)
{
    QLineEdit::focusOutEvent(event);
    // A context menu or completer popup takes the focus only for a moment;
    // the entry is not finished then.
    if (event->reason() == Qt::PopupFocusReason)
        return;
    if (isModified() && hasAcceptableInput()) {
        Q_D(LineEdit);
        d->commit();
    }
}
