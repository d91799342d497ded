// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracecalculator.h"
#include "scopetracecalculator_p.h"

#include "scopetrace.h"

#include <QtCore/QLocale>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>

ScopeTraceCalculatorPrivate::ScopeTraceCalculatorPrivate(ScopeTraceCalculator* q)
    : q_ptr(q)
{
}

qint64 ScopeTraceCalculatorPrivate::indexOf(qint64 time) const
{
    if (!trace)
        return 0;
    const double period = static_cast<double>(trace->timeBase()) * 100.0;
    const double index = std::floor(static_cast<double>(time) / period) + trace->triggerIndex();
    // A time base of 0 gives no index at all; far-off times stay far off
    // without overflowing.
    if (std::isnan(index))
        return std::numeric_limits<qint64>::min();
    constexpr double limit = 9.0e15;
    return static_cast<qint64>(std::clamp(index, -limit, limit));
}

double ScopeTraceCalculatorPrivate::valueAt(qint64 time) const
{
    if (!trace)
        return qQNaN();
    const qint64 index = indexOf(time);
    const QVector<double> samples = trace->samples();
    if (index < 0 || index >= samples.size())
        return qQNaN();
    return samples.at(index);
}

bool ScopeTraceCalculatorPrivate::hasRange() const
{
    return !std::isnan(sum);
}

void ScopeTraceCalculatorPrivate::update()
{
    if (!dirty || !trace)
        return;
    dirty = false;
    const QVector<double> samples = trace->samples();
    const qint64 last = samples.size() - 1;
    const qint64 start = std::max<qint64>(0, indexOf(markerA));
    const qint64 end = std::min<qint64>(last, indexOf(markerB));
    const qint64 count = std::max<qint64>(1, end - start);
    startIndex = static_cast<qint32>(std::clamp<qint64>(start, INT_MIN, INT_MAX));
    endIndex = static_cast<qint32>(std::clamp<qint64>(end, INT_MIN, INT_MAX));
    sampleCount = static_cast<quint32>(std::min<qint64>(count, UINT_MAX));
    if (start > last || end < 0) {
        minimum = maximum = sum = integralSum = rms = qQNaN();
        return;
    }
    const double* x = samples.constData();
    // The maximum is seeded with the end sample, which the walk below leaves
    // out: so the maximum sees B while sum, RMS and the minimum's walk do not.
    double minimumValue = x[start];
    double maximumValue = x[end];
    double total = 0.0;
    double squares = 0.0;
    for (qint64 i = start; i < start + count; ++i) {
        const double v = x[i];
        maximumValue = std::max(maximumValue, v);
        minimumValue = std::min(minimumValue, v);
        total += v;
        squares += v * v;
    }
    minimum = minimumValue;
    maximum = maximumValue;
    sum = total;
    integralSum = total - x[start + count - 1];
    rms = std::sqrt(squares / static_cast<double>(count));
}

QString ScopeTraceCalculatorPrivate::withDecimalPoint(QString text) const
{
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

ScopeTraceCalculator::ScopeTraceCalculator(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeTraceCalculatorPrivate(this))
{
    d_ptr->setParent(this);
}

ScopeTraceCalculator::~ScopeTraceCalculator() = default;

ScopeTrace* ScopeTraceCalculator::scopeTrace() const
{
    Q_D(const ScopeTraceCalculator);
    return d->trace.data();
}

void ScopeTraceCalculator::setScopeTrace(ScopeTrace* trace)
{
    Q_D(ScopeTraceCalculator);
    if (d->trace == trace)
        return;
    d->trace = trace;
    d->dirty = true;
}

void ScopeTraceCalculator::setMarkerTimes(qint64 a, qint64 b)
{
    Q_D(ScopeTraceCalculator);
    if (d->markerA == a && d->markerB == b)
        return;
    d->markerA = a;
    d->markerB = b;
    d->dirty = true;
}

qint64 ScopeTraceCalculator::markerTimeA() const
{
    Q_D(const ScopeTraceCalculator);
    return d->markerA;
}

qint64 ScopeTraceCalculator::markerTimeB() const
{
    Q_D(const ScopeTraceCalculator);
    return d->markerB;
}

double ScopeTraceCalculator::valueAtA() const
{
    Q_D(const ScopeTraceCalculator);
    return d->valueAt(d->markerA);
}

double ScopeTraceCalculator::valueAtB() const
{
    Q_D(const ScopeTraceCalculator);
    return d->valueAt(d->markerB);
}

double ScopeTraceCalculator::valueDifference() const
{
    return valueAtB() - valueAtA();
}

double ScopeTraceCalculator::gradient() const
{
    Q_D(const ScopeTraceCalculator);
    if (!d->trace || d->markerA == d->markerB)
        return qQNaN();
    // The run is the sample count of the last update in microseconds, not
    // B − A.
    return (valueAtB() - valueAtA())
           / (static_cast<double>(d->trace->timeBase()) * static_cast<double>(d->sampleCount) / 10.0);
}

double ScopeTraceCalculator::average() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    if (!d->trace || d->sampleCount == 0)
        return qQNaN();
    return d->sum / static_cast<double>(d->sampleCount);
}

double ScopeTraceCalculator::integral() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    if (!d->trace)
        return qQNaN();
    return static_cast<double>(d->trace->timeBase()) * d->integralSum / 10.0;
}

double ScopeTraceCalculator::minimum() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    return d->trace ? d->minimum : qQNaN();
}

double ScopeTraceCalculator::maximum() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    return d->trace ? d->maximum : qQNaN();
}

double ScopeTraceCalculator::peak() const
{
    return maximum() - minimum();
}

double ScopeTraceCalculator::rmsValue() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    return d->trace ? d->rms : qQNaN();
}

double ScopeTraceCalculator::standardDeviation() const
{
    Q_D(const ScopeTraceCalculator);
    const_cast<ScopeTraceCalculatorPrivate*>(d)->update();
    if (!d->trace)
        return 0.0;
    if (!d->hasRange())
        return qQNaN();
    const QVector<double> samples = d->trace->samples();
    const qint64 count = d->sampleCount;
    const qint64 start = d->startIndex;
    if (start < 0 || start + count > samples.size())
        return qQNaN(); // the samples changed under the calculator
    const double mean = d->sum / static_cast<double>(count);
    const double* x = samples.constData();
    double squares = 0.0;
    for (qint64 i = start; i < start + count; ++i)
        squares += (x[i] - mean) * (x[i] - mean);
    // One sample divides by zero: the result is not finite, as it should be.
    return std::sqrt(squares / static_cast<double>(count - 1));
}

int ScopeTraceCalculator::startIndex() const
{
    Q_D(const ScopeTraceCalculator);
    return d->startIndex;
}

int ScopeTraceCalculator::endIndex() const
{
    Q_D(const ScopeTraceCalculator);
    return d->endIndex;
}

unsigned ScopeTraceCalculator::sampleCount() const
{
    Q_D(const ScopeTraceCalculator);
    return d->sampleCount;
}

QString ScopeTraceCalculator::gradientText(double value, bool withUnit) const
{
    Q_D(const ScopeTraceCalculator);
    QString text = QStringLiteral("---");
    if (!d->trace || std::isnan(value))
        return text;
    if (!withUnit) {
        text = QString::number(value, 'g', 6);
    } else {
        QString suffix;
        if (value < 0.001) {
            value *= 1e6;
            suffix = QStringLiteral("/s");
        } else if (value < 1.0) {
            value *= 1000.0;
            suffix = QStringLiteral("/ms");
        } else {
            suffix = QStringLiteral("/us");
        }
        text = QString::number(value, 'f', 3) + QLatin1Char(' ') + d->trace->measure() + suffix;
    }
    return d->withDecimalPoint(text);
}

QString ScopeTraceCalculator::integralText(double value, bool withUnit) const
{
    Q_D(const ScopeTraceCalculator);
    QString text = QStringLiteral("---");
    if (!d->trace || std::isnan(value))
        return text;
    if (!withUnit) {
        text = QString::number(value, 'g', 6);
    } else {
        QString suffix;
        if (value > 1e7) {
            value *= 1e-6;
            suffix = QStringLiteral("s");
        } else if (value > 10000.0) {
            value *= 0.001;
            suffix = QStringLiteral("ms");
        } else {
            suffix = QStringLiteral("us");
        }
        text = QString::number(value, 'f', 3) + QLatin1Char(' ') + d->trace->measure() + suffix;
    }
    return d->withDecimalPoint(text);
}

QString ScopeTraceCalculator::valueText(double value, bool withUnit) const
{
    Q_D(const ScopeTraceCalculator);
    if (!d->trace)
        return QStringLiteral("---");
    return d->trace->valueText(value, withUnit);
}
