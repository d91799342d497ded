// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

#include <memory>

namespace Ui {
class SpectrumPlotAdjustmentWidget;
}

/*! \brief The scale choice of the frequency chart: "Log" or "Lin" for the
    y and for the x axis, both "Log" at start. */
class FrequencyPlotAdjustmentWidget : public QWidget
{
    Q_OBJECT
public:
    explicit FrequencyPlotAdjustmentWidget(QWidget* parent = nullptr);
    ~FrequencyPlotAdjustmentWidget() override;

    bool isXAxisLogarithmic() const;
    bool isYAxisLogarithmic() const;

Q_SIGNALS:
    /*! \brief true = logarithmic. */
    void yAxisScaleChanged(bool isLogScale);
    void xAxisScaleChanged(bool isLogScale);
    /*! \brief Announced for hosts that offer a zoom tool; the chart itself
        zooms with the mouse wheel at any time. */
    void zoomEnabled(bool enabled);

private:
    std::unique_ptr<Ui::SpectrumPlotAdjustmentWidget> ui;
};
