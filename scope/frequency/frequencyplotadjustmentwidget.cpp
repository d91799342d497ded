// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplotadjustmentwidget.h"

#include "ui_frequencyplotadjustmentwidget.h"

FrequencyPlotAdjustmentWidget::FrequencyPlotAdjustmentWidget(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::SpectrumPlotAdjustmentWidget>())
{
    ui->setupUi(this);
    connect(ui->yAxisLogButton, &QAbstractButton::toggled, this, &FrequencyPlotAdjustmentWidget::yAxisScaleChanged);
    connect(ui->xAxisLogButton, &QAbstractButton::toggled, this, &FrequencyPlotAdjustmentWidget::xAxisScaleChanged);
}

FrequencyPlotAdjustmentWidget::~FrequencyPlotAdjustmentWidget() = default;

bool FrequencyPlotAdjustmentWidget::isXAxisLogarithmic() const
{
    return ui->xAxisLogButton->isChecked();
}

bool FrequencyPlotAdjustmentWidget::isYAxisLogarithmic() const
{
    return ui->yAxisLogButton->isChecked();
}
