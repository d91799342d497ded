// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class AxisScrollbar;
class FrequencyPlotChartPrivate;
class FrequencyPlotTrace;
class FrequencySpectrum;
class FrequencyTrace;
class QAbstractAxis;
class QChart;

/*! \brief The chart of a frequency view: one line series per frequency
    trace over frequency, an x and a y axis that switch between logarithmic
    and linear scale, and a scroll bar for each axis.

    Both axes start logarithmic. The chart (QChart) belongs to the plot view
    once it is shown there; without a view this object deletes it. */
class FrequencyPlotChart : public QObject
{
    Q_OBJECT
public:
    explicit FrequencyPlotChart(FrequencySpectrum* spectrum, QObject* parent = nullptr);
    ~FrequencyPlotChart() override;

    QChart* chart() const;
    FrequencySpectrum* spectrum() const;
    AxisScrollbar* horizontalScrollbar() const;
    AxisScrollbar* verticalScrollbar() const;

    QAbstractAxis* xAxis() const;
    QAbstractAxis* yAxis() const;
    bool isXAxisLogarithmic() const;
    bool isYAxisLogarithmic() const;
    /*! \brief Replaces the x (y) axis by a logarithmic or a linear one. */
    void setXAxisLogarithmic(bool logarithmic);
    void setYAxisLogarithmic(bool logarithmic);

    QList<FrequencyPlotTrace*> plotTraces() const;
    FrequencyPlotTrace* plotTrace(FrequencyTrace* trace) const;

    /*! \brief Number of pixel columns that the series are reduced to. */
    int pixelColumns() const;

    /*! \brief Takes the chart colours from the application settings again. */
    void applySettings();

Q_SIGNALS:
    /*! \brief The visible frequency window moved (scroll bar or zoom). */
    void scrolled();
    /*! \brief Request: the spectra were computed again; every series and
        both axis ranges are rebuilt. */
    void updateAmplitudes();

private:
    Q_DECLARE_PRIVATE(FrequencyPlotChart)
    FrequencyPlotChartPrivate* d_ptr;
};
