// SPDX-License-Identifier: GPL-3.0-or-later
#include "plotcontroller.h"
#include "plotcontroller_p.h"

PlotControllerPrivate::PlotControllerPrivate(PlotController* q, FrequencyPlotAdjustmentWidget* widget)
    : QObject(q)
    , q_ptr(q)
    , widget(widget)
{
    if (widget) {
        connect(widget, &FrequencyPlotAdjustmentWidget::yAxisScaleChanged, this, &PlotControllerPrivate::changeYAxisScale);
        connect(widget, &FrequencyPlotAdjustmentWidget::xAxisScaleChanged, this, &PlotControllerPrivate::changeXAxisScale);
    }
}

void PlotControllerPrivate::changeYAxisScale(bool isLogScale)
{
    if (chart)
        chart->setYAxisLogarithmic(isLogScale);
}

void PlotControllerPrivate::changeXAxisScale(bool isLogScale)
{
    if (chart)
        chart->setXAxisLogarithmic(isLogScale);
}

PlotController::PlotController(FrequencyPlotAdjustmentWidget* widget, QObject* parent)
    : QObject(parent)
    , d_ptr(new PlotControllerPrivate(this, widget))
{
}

PlotController::~PlotController()
{
    delete d_ptr;
}

void PlotController::setChart(FrequencyPlotChart* chart)
{
    Q_D(PlotController);
    if (d->chart == chart)
        return;
    d->chart = chart;
    // A new chart starts logarithmic; the widget may show another choice
    // from an earlier analysis of the same view.
    if (chart && d->widget) {
        d->changeXAxisScale(d->widget->isXAxisLogarithmic());
        d->changeYAxisScale(d->widget->isYAxisLogarithmic());
    }
}

FrequencyPlotChart* PlotController::chart() const
{
    Q_D(const PlotController);
    return d->chart.data();
}
