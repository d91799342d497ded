// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplottrace.h"

#include "frequencytrace.h"

#include <QtCharts/QLineSeries>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <limits>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// NaN and the infinities fail the comparison, so one test keeps them out.
inline bool plottable(double value, bool yLogarithmic)
{
    return value <= DBL_MAX && (!yLogarithmic || value > 0.0);
}

// Index of the first point at or above frequency, clamped to [low, high].
inline qint64 indexAtOrAbove(double frequency, double resolution, qint64 low, qint64 high)
{
    const double index = std::ceil(frequency / resolution);
    if (!(index > double(low)))
        return low;
    if (!(index < double(high)))
        return high;
    return qint64(index);
}

} // namespace

FrequencyPlotTrace::FrequencyPlotTrace(FrequencyTrace* trace, QObject* parent)
    : QObject(parent)
    , m_trace(trace)
    , m_series(new QLineSeries(this))
{
    for (int from = 0; from < 2; ++from) {
        for (int positive = 0; positive < 2; ++positive) {
            m_min[from][positive] = notANumber;
            m_max[from][positive] = notANumber;
        }
    }
    if (trace) {
        m_series->setName(trace->name());
        m_series->setColor(trace->color());
    }
}

FrequencyPlotTrace::~FrequencyPlotTrace() = default;

FrequencyTrace* FrequencyPlotTrace::trace() const
{
    return m_trace;
}

QLineSeries* FrequencyPlotTrace::series() const
{
    return m_series;
}

void FrequencyPlotTrace::setAmplitudes(const QVector<double>& amplitudes, double resolution)
{
    m_amplitudes = amplitudes;
    m_resolution = resolution;

    double minimum = DBL_MAX;
    double maximum = -DBL_MAX;
    double minimumPositive = DBL_MAX;
    const double* values = m_amplitudes.constData();
    const qsizetype count = m_amplitudes.size();
    for (qsizetype i = 1; i < count; ++i) {
        const double value = std::abs(values[i]);
        if (!(value <= DBL_MAX))
            continue;
        minimum = std::min(minimum, value);
        maximum = std::max(maximum, value);
        if (value > 0.0)
            minimumPositive = std::min(minimumPositive, value);
    }
    const auto orNaN = [](double value) { return std::abs(value) == DBL_MAX ? notANumber : value; };
    m_min[1][0] = orNaN(minimum);
    m_max[1][0] = orNaN(maximum);
    m_min[1][1] = orNaN(minimumPositive);
    m_max[1][1] = maximum > 0.0 ? orNaN(maximum) : notANumber;

    if (count > 0) {
        const double first = std::abs(values[0]);
        if (first <= DBL_MAX) {
            minimum = std::min(minimum, first);
            maximum = std::max(maximum, first);
            if (first > 0.0)
                minimumPositive = std::min(minimumPositive, first);
        }
    }
    m_min[0][0] = orNaN(minimum);
    m_max[0][0] = orNaN(maximum);
    m_min[0][1] = orNaN(minimumPositive);
    m_max[0][1] = maximum > 0.0 ? orNaN(maximum) : notANumber;
}

QVector<double> FrequencyPlotTrace::amplitudes() const
{
    return m_amplitudes;
}

double FrequencyPlotTrace::resolution() const
{
    return m_resolution;
}

double FrequencyPlotTrace::minAmplitude(int from, bool positiveOnly) const
{
    return m_min[from > 0 ? 1 : 0][positiveOnly ? 1 : 0];
}

double FrequencyPlotTrace::maxAmplitude(int from, bool positiveOnly) const
{
    return m_max[from > 0 ? 1 : 0][positiveOnly ? 1 : 0];
}

void FrequencyPlotTrace::rebuild(double xMin, double xMax, bool xLogarithmic, bool yLogarithmic, int pixelColumns)
{
    m_series->replace(reducedPoints(m_amplitudes, m_resolution, xMin, xMax, xLogarithmic, yLogarithmic,
                                    pixelColumns));
}

QList<QPointF> FrequencyPlotTrace::allPoints(const QVector<double>& amplitudes, double resolution, bool yLogarithmic)
{
    QList<QPointF> points;
    if (amplitudes.size() < 2 || !(resolution > 0.0) || !(resolution <= DBL_MAX))
        return points;
    points.reserve(amplitudes.size() - 1);
    for (qsizetype i = 1; i < amplitudes.size(); ++i) {
        const double value = std::abs(amplitudes.at(i));
        if (plottable(value, yLogarithmic))
            points.append(QPointF(double(i) * resolution, value));
    }
    return points;
}

QList<QPointF> FrequencyPlotTrace::reducedPoints(const QVector<double>& amplitudes, double resolution,
                                                 double xMin, double xMax, bool xLogarithmic,
                                                 bool yLogarithmic, int pixelColumns)
{
    QList<QPointF> points;
    const qint64 count = amplitudes.size();
    if (count < 2 || !(resolution > 0.0) || !(resolution <= DBL_MAX))
        return points;
    if (!std::isfinite(xMin) || !std::isfinite(xMax) || !(xMax > xMin))
        return points;
    // A logarithmic axis cannot reach 0 Hz; the lowest plotted point is at r.
    if (xLogarithmic && !(xMin > 0.0)) {
        xMin = resolution * 0.5;
        if (!(xMax > xMin))
            return points;
    }
    const double* values = amplitudes.constData();
    const auto append = [&](qint64 index) {
        points.append(QPointF(double(index) * resolution, std::abs(values[index])));
    };

    // Visible points first .. last; first > last when none is visible.
    const qint64 first = indexAtOrAbove(xMin, resolution, 1, count);
    const double lastIndex = std::floor(xMax / resolution);
    const qint64 lastVisible = lastIndex >= double(count - 1) ? count - 1
        : (lastIndex < 0.0 ? 0 : qint64(lastIndex));

    // The nearest points outside the window keep the line running to its edges.
    if (first - 1 >= 1 && plottable(std::abs(values[first - 1]), yLogarithmic))
        append(first - 1);

    const qint64 visible = lastVisible - first + 1;
    if (visible > 0 && (pixelColumns <= 0 || visible <= 2 * qint64(pixelColumns))) {
        points.reserve(points.size() + visible + 1);
        for (qint64 i = first; i <= lastVisible; ++i) {
            if (plottable(std::abs(values[i]), yLogarithmic))
                append(i);
        }
    } else if (visible > 0) {
        points.reserve(2 * pixelColumns + 2);
        const double logMin = xLogarithmic ? std::log(xMin) : 0.0;
        const double step = xLogarithmic ? (std::log(xMax) - logMin) / pixelColumns
                                         : (xMax - xMin) / pixelColumns;
        qint64 start = first;
        for (int column = 0; column < pixelColumns; ++column) {
            qint64 end = lastVisible + 1;
            if (column + 1 < pixelColumns) {
                const double edge = xLogarithmic ? std::exp(logMin + step * (column + 1))
                                                 : xMin + step * (column + 1);
                end = indexAtOrAbove(edge, resolution, start, lastVisible + 1);
            }
            qint64 minimumIndex = -1;
            qint64 maximumIndex = -1;
            double minimum = DBL_MAX;
            double maximum = -1.0;
            for (qint64 i = start; i < end; ++i) {
                const double value = std::abs(values[i]);
                if (!plottable(value, yLogarithmic))
                    continue;
                if (value > maximum) {
                    maximum = value;
                    maximumIndex = i;
                }
                if (value < minimum) {
                    minimum = value;
                    minimumIndex = i;
                }
            }
            if (maximumIndex >= 0) {
                if (minimumIndex == maximumIndex) {
                    append(minimumIndex);
                } else {
                    append(std::min(minimumIndex, maximumIndex));
                    append(std::max(minimumIndex, maximumIndex));
                }
            }
            start = end;
        }
    }

    if (lastVisible + 1 <= count - 1 && lastVisible + 1 >= 1
        && plottable(std::abs(values[lastVisible + 1]), yLogarithmic))
        append(lastVisible + 1);
    return points;
}
