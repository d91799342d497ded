// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopesettingview.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtGui/QColor>

class ColorChooserButton;
class QFormLayout;
class QLabel;
class QPushButton;

class ScopeSettingViewPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeSettingView)

public:
    // What a chooser sets: a numbered application colour or a plot colour.
    enum Target { BackgroundTarget = -1, GridTarget = -2 };

    struct Chooser
    {
        ColorChooserButton* button;
        QLabel* label;
        int target; // a colour number, or a Target
    };

    explicit ScopeSettingViewPrivate(ScopeSettingView* q);

    void addChooser(QFormLayout* layout, const QString& label, const QString& objectName, int target);
    static QColor storedColor(int target);
    void updateButtons();
    void alignLabels();

    ScopeSettingView* q_ptr;
    QList<Chooser> choosers;
    QPushButton* restoreButton = nullptr;

    void applyColor(int target, const QColor& color);

public Q_SLOTS:
    void onRestoreDefaultsClicked();
    void onSettingsChanged();
};
