// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencyplotchart.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QPair>

#include "axisscrollbar.h"

class FrequencyPlotChartPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(FrequencyPlotChart)
public:
    FrequencyPlotChartPrivate(FrequencyPlotChart* q, FrequencySpectrum* spectrum);
    ~FrequencyPlotChartPrivate() override;

    QPair<double, double> xRange() const;
    QPair<double, double> yRange() const;
    void installXAxis(bool logarithmic);
    void installYAxis(bool logarithmic);
    void attachSeries();
    void setRanges();
    void rebuildSeries();
    void clearSeries();
    int columns() const;
    QAbstractAxis* axis(Qt::Orientation orientation) const;

    FrequencyPlotChart* q_ptr;
    QPointer<QChart> chart;
    QPointer<AxisScrollbar> horizontalScrollbar;
    QPointer<AxisScrollbar> verticalScrollbar;
    FrequencySpectrum* spectrum;
    QHash<FrequencyTrace*, FrequencyPlotTrace*> traces;
    QList<FrequencyPlotTrace*> traceOrder;
    // Set while the x axis is linear: its range then starts below 0 Hz, and
    // the amplitude range leaves the 0 Hz point out.
    bool linearX = false;
    bool logarithmicY = true;
    bool settingRanges = false;
    qreal lastPlotWidth = -1.0;

Q_SIGNALS:
    void scrolled();
    void updateAmplitudes();

public Q_SLOTS:
    void scrollInXDir(double low, double high);
    void scrollInYDir(double low, double high);
    void xChangeRange(qreal newMin, qreal newMax);
    void yChangeRange(qreal newMin, qreal newMax);
    void onColorChange();
    void onVisibiliyChanged();

    void onUpdateAmplitudes();
    void onXRangeChanging();
    void onPlotAreaChanged(const QRectF& plotArea);
};
