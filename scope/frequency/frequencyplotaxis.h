// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCharts/QLogValueAxis>

/*! \brief The logarithmic axis of the frequency chart: base 10, automatic
    minor ticks, grey grid lines. */
class FrequencyPlotAxis : public QLogValueAxis
{
    Q_OBJECT
public:
    explicit FrequencyPlotAxis(QObject* parent = nullptr);
    ~FrequencyPlotAxis() override;
};
