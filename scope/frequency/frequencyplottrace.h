// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointF>
#include <QtCore/QVector>

class FrequencyTrace;
class QLineSeries;

/*! \brief The line series of one frequency trace.

    A spectrum may hold far more points than the plot has pixels, so the
    series only ever holds, for each pixel column of the visible frequency
    range, the smallest and the largest plottable amplitude of that column
    (in their frequency order) plus the nearest point on either side of the
    range. The line drawn through them covers the same pixels as the line
    through all points. The trace keeps every amplitude, so marker and
    amplitude texts read exact values. The point at 0 Hz is never plotted,
    nor are amplitudes that are not finite (or not positive on a logarithmic
    amplitude axis). */
class FrequencyPlotTrace : public QObject
{
    Q_OBJECT
public:
    explicit FrequencyPlotTrace(FrequencyTrace* trace, QObject* parent = nullptr);
    ~FrequencyPlotTrace() override;

    FrequencyTrace* trace() const;
    QLineSeries* series() const;

    /*! \brief Takes the trace's amplitudes and the frequency resolution
        again (after a new computation). */
    void setAmplitudes(const QVector<double>& amplitudes, double resolution);
    QVector<double> amplitudes() const;
    double resolution() const;

    /*! \brief Smallest / largest plottable amplitude from index \a from; with
        \a positiveOnly only values above 0 count. NaN when there is none. */
    double minAmplitude(int from, bool positiveOnly) const;
    double maxAmplitude(int from, bool positiveOnly) const;

    /*! \brief Refills the series for the frequency window [\a xMin, \a xMax]
        drawn over \a pixelColumns columns. */
    void rebuild(double xMin, double xMax, bool xLogarithmic, bool yLogarithmic, int pixelColumns);
    /*! \brief The points that rebuild() would put into the series. */
    QList<QPointF> points(double xMin, double xMax, bool xLogarithmic, bool yLogarithmic, int pixelColumns) const;

    /*! \brief Every plottable point (i × resolution, |a[i]|), i ≥ 1. */
    static QList<QPointF> allPoints(const QVector<double>& amplitudes, double resolution, bool yLogarithmic);
    /*! \brief The points that rebuild() puts into the series. */
    static QList<QPointF> reducedPoints(const QVector<double>& amplitudes, double resolution,
                                        double xMin, double xMax, bool xLogarithmic,
                                        bool yLogarithmic, int pixelColumns);

private:
    struct Extremes
    {
        bool valid = false;
        double minimum = 0.0;
        double maximum = 0.0;
    };
    static QList<QPointF> reduce(const QVector<double>& amplitudes, double resolution, double xMin, double xMax,
                                 bool xLogarithmic, bool yLogarithmic, int pixelColumns, Extremes* extremes);
    const Extremes& extremes(bool positiveOnly) const;

    FrequencyTrace* m_trace;
    QLineSeries* m_series;
    QVector<double> m_amplitudes;
    double m_resolution = 0.0;
    // Extremes of the points above 0 Hz, all finite / positive only.
    mutable Extremes m_extremes[2];
};
