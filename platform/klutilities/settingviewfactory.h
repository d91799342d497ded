// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klutilities_export.h"

class QWidget;

/*! \brief Makes the pages of the application's settings dialog. */
class KLUTILITIES_EXPORT SettingViewFactory
{
public:
    /*! \brief A new scope settings page, owned by the caller (or by \a parent).

        The page chooses the plot colours "Scope/BackgroundColor" and
        "Scope/GridColor" and the numbered application colours the scope uses
        (AppSettings: markers, trigger indicator and the frequency chart). Each
        choice is written to the application settings at once and synced, so
        every plot widget watching the settings file follows; "Standardfarben
        wiederherstellen" restores the defaults. Absent keys are seeded with
        their defaults when the page is made.

        Object names: "scopeSettingPage" (the page), "backgroundColorButton",
        "gridColorButton", "markerColorButton", "triggerColorButton",
        "chartBackgroundColorButton", "chartPlotAreaColorButton",
        "chartGridColorButton", "chartLabelColorButton" (each a push button
        with a "color" property) and "restoreDefaultsButton".
    */
    static QWidget* createScopePage(QWidget* parent = nullptr);
};
