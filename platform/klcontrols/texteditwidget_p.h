// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "texteditwidget.h"

#include <QtCore/QObject>
#include <QtGui/QColor>

class QAction;
class QTextCharFormat;
class QTextEdit;
class QToolBar;

class TextEditWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(TextEditWidget)

public:
    explicit TextEditWidgetPrivate(TextEditWidget* q);

    void mergeFormat(const QTextCharFormat& format);
    void updateColorIcon(const QColor& color);

public Q_SLOTS:
    void onBoldTriggered(bool checked);
    void onItalicTriggered(bool checked);
    void onUnderlineTriggered(bool checked);
    void onBulletListTriggered(bool checked);
    void onTextColorTriggered();
    void updateActions();

Q_SIGNALS:
    void textChanged();

public:
    TextEditWidget* const q_ptr;
    QToolBar* toolBar = nullptr;
    QTextEdit* textEdit = nullptr;
    QAction* boldAction = nullptr;
    QAction* italicAction = nullptr;
    QAction* underlineAction = nullptr;
    QAction* bulletListAction = nullptr;
    QAction* textColorAction = nullptr;
    QColor iconColor;
};
