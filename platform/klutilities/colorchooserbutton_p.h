// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "colorchooserbutton.h"

#include <QtCore/QObject>
#include <QtGui/QColor>

class ColorChooserButtonPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ColorChooserButton)

public:
    explicit ColorChooserButtonPrivate(ColorChooserButton* q);

    void updateSwatch();

    ColorChooserButton* q_ptr;
    QColor color;
    QString dialogTitle;

public Q_SLOTS:
    void onClicked();

Q_SIGNALS:
    void colorChanged(const QColor& color);
    void colorChosen(const QColor& color);
};
