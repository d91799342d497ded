// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>

class FrequencyPlotAdjustmentWidget;
class FrequencyPlotChart;
class PlotControllerPrivate;

/*! \brief Turns the scale choice of the adjustment widget into axis changes
    of a frequency chart. A chart that is attached takes the choice that the
    widget shows at that moment. */
class PlotController : public QObject
{
    Q_OBJECT
public:
    explicit PlotController(FrequencyPlotAdjustmentWidget* widget, QObject* parent = nullptr);
    ~PlotController() override;

    void setChart(FrequencyPlotChart* chart);
    FrequencyPlotChart* chart() const;

private:
    Q_DECLARE_PRIVATE(PlotController)
    PlotControllerPrivate* d_ptr;
};
