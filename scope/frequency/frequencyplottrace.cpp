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
    // Extremes are found on the next full scan (usually the next rebuild).
    m_extremes[0] = Extremes();
    m_extremes[1] = Extremes();
}

const FrequencyPlotTrace::Extremes& FrequencyPlotTrace::extremes(bool positiveOnly) const
{
    Extremes& cached = m_extremes[positiveOnly ? 1 : 0];
    if (cached.valid)
        return cached;
    const double floor = positiveOnly ? 0.0 : -1.0;
    double minimum = DBL_MAX;
    double maximum = floor;
    const double* values = m_amplitudes.constData();
    for (qsizetype i = 1; i < m_amplitudes.size(); ++i) {
        const double value = std::abs(values[i]);
        if (value > maximum && value <= DBL_MAX)
            maximum = value;
        if (value < minimum && value > floor)
            minimum = value;
    }
    cached.valid = true;
    cached.minimum = maximum > floor ? minimum : notANumber;
    cached.maximum = maximum > floor ? maximum : notANumber;
    return cached;
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
    double minimum = extremes(positiveOnly).minimum;
    if (from <= 0 && !m_amplitudes.isEmpty()) {
        const double first = std::abs(m_amplitudes.constFirst());
        if (plottable(first, positiveOnly) && !(first >= minimum))
            minimum = first;
    }
    return minimum;
}

double FrequencyPlotTrace::maxAmplitude(int from, bool positiveOnly) const
{
    double maximum = extremes(positiveOnly).maximum;
    if (from <= 0 && !m_amplitudes.isEmpty()) {
        const double first = std::abs(m_amplitudes.constFirst());
        if (plottable(first, positiveOnly) && !(first <= maximum))
            maximum = first;
    }
    return maximum;
}

void FrequencyPlotTrace::rebuild(double xMin, double xMax, bool xLogarithmic, bool yLogarithmic, int pixelColumns)
{
    m_series->replace(points(xMin, xMax, xLogarithmic, yLogarithmic, pixelColumns));
}

QList<QPointF> FrequencyPlotTrace::points(double xMin, double xMax, bool xLogarithmic, bool yLogarithmic,
                                          int pixelColumns) const
{
    Extremes scanned;
    QList<QPointF> reduced = reduce(m_amplitudes, m_resolution, xMin, xMax, xLogarithmic, yLogarithmic,
                                    pixelColumns, &scanned);
    if (scanned.valid)
        m_extremes[yLogarithmic ? 1 : 0] = scanned;
    return reduced;
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
    return reduce(amplitudes, resolution, xMin, xMax, xLogarithmic, yLogarithmic, pixelColumns, nullptr);
}

QList<QPointF> FrequencyPlotTrace::reduce(const QVector<double>& amplitudes, double resolution, double xMin,
                                          double xMax, bool xLogarithmic, bool yLogarithmic, int pixelColumns,
                                          Extremes* extremes)
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

    // Visible points first .. lastVisible; first > lastVisible when none is.
    const qint64 first = indexAtOrAbove(xMin, resolution, 1, count);
    const double lastIndex = std::floor(xMax / resolution);
    const qint64 lastVisible = lastIndex >= double(count - 1) ? count - 1
        : (lastIndex < 0.0 ? 0 : qint64(lastIndex));

    // The nearest points outside the window keep the line running to its edges.
    if (first - 1 >= 1 && plottable(std::abs(values[first - 1]), yLogarithmic))
        append(first - 1);

    // Plottable values lie above `floor` (0 on a logarithmic amplitude axis)
    // and are finite; NaN fails every comparison below.
    const double floor = yLogarithmic ? 0.0 : -1.0;
    double overallMinimum = DBL_MAX;
    double overallMaximum = floor;

    const qint64 visible = lastVisible - first + 1;
    if (visible > 0 && (pixelColumns <= 0 || visible <= 2 * qint64(pixelColumns))) {
        points.reserve(points.size() + visible + 1);
        for (qint64 i = first; i <= lastVisible; ++i) {
            const double value = std::abs(values[i]);
            if (plottable(value, yLogarithmic)) {
                append(i);
                overallMinimum = std::min(overallMinimum, value);
                overallMaximum = std::max(overallMaximum, value);
            }
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
            // This loop sees every amplitude of the window; new extremes are
            // rare, so the branches predict well.
            qint64 minimumIndex = -1;
            qint64 maximumIndex = -1;
            double minimum = DBL_MAX;
            double maximum = floor;
            for (qint64 i = start; i < end; ++i) {
                const double value = std::abs(values[i]);
                if (value > maximum && value <= DBL_MAX) {
                    maximum = value;
                    maximumIndex = i;
                }
                if (value < minimum && value > floor) {
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
                overallMinimum = std::min(overallMinimum, minimum);
                overallMaximum = std::max(overallMaximum, maximum);
            }
            start = end;
        }
    }

    if (lastVisible + 1 <= count - 1 && lastVisible + 1 >= 1
        && plottable(std::abs(values[lastVisible + 1]), yLogarithmic))
        append(lastVisible + 1);

    // A scan over every point above 0 Hz gives the extremes for free.
    if (extremes && first == 1 && lastVisible == count - 1) {
        extremes->valid = true;
        extremes->minimum = overallMaximum > floor ? overallMinimum : notANumber;
        extremes->maximum = overallMaximum > floor ? overallMaximum : notANumber;
    }
    return points;
}
