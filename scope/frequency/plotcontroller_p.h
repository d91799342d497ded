// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "plotcontroller.h"

#include <QtCore/QPointer>

#include "frequencyplotadjustmentwidget.h"
#include "frequencyplotchart.h"

class PlotControllerPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(PlotController)
public:
    PlotControllerPrivate(PlotController* q, FrequencyPlotAdjustmentWidget* widget);

    PlotController* q_ptr;
    QPointer<FrequencyPlotAdjustmentWidget> widget;
    QPointer<FrequencyPlotChart> chart;

public Q_SLOTS:
    void changeYAxisScale(bool isLogScale);
    void changeXAxisScale(bool isLogScale);
};
