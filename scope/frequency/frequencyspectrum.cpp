// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyspectrum.h"
#include "frequencyspectrum_p.h"

#include "frequencytrace.h"

#include <cmath>

FrequencySpectrumPrivate::FrequencySpectrumPrivate(FrequencySpectrum* q,
                                                   const QList<FrequencyTrace*>& list)
    : q_ptr(q)
{
    for (FrequencyTrace* trace : list) {
        if (trace && !traces.contains(trace))
            traces.append(trace);
    }
    if (!traces.isEmpty())
        pointCount = static_cast<qint32>(traces.first()->amplitudes().size());
    // A trace deleted by someone else must not be deleted a second time.
    for (FrequencyTrace* trace : std::as_const(traces))
        connect(trace, &QObject::destroyed, this, &FrequencySpectrumPrivate::onTraceDestroyed);
}

FrequencySpectrumPrivate::~FrequencySpectrumPrivate()
{
    const QList<FrequencyTrace*> owned = traces;
    traces.clear();
    for (FrequencyTrace* trace : owned) {
        disconnect(trace, nullptr, this, nullptr);
        delete trace;
    }
}

void FrequencySpectrumPrivate::onTraceDestroyed(QObject* trace)
{
    // The trace is already being destroyed: no cast down to FrequencyTrace,
    // compare by its QObject address.
    traces.removeIf([trace](const FrequencyTrace* entry) { return static_cast<const QObject*>(entry) == trace; });
}

FrequencySpectrum::FrequencySpectrum(const QList<FrequencyTrace*>& traces)
    : QObject(nullptr)
    , d_ptr(new FrequencySpectrumPrivate(this, traces))
{
    Q_D(FrequencySpectrum);
    d->setParent(this);
    connect(d, &FrequencySpectrumPrivate::dataChanged, this, &FrequencySpectrum::dataChanged);
}

FrequencySpectrum::~FrequencySpectrum()
{
    // The traces go with the spectrum, before anything else of it.
    delete d_ptr;
    d_ptr = nullptr;
}

QList<FrequencyTrace*> FrequencySpectrum::traces() const
{
    Q_D(const FrequencySpectrum);
    return d->traces;
}

double FrequencySpectrum::maxAmplitude(bool skipFirst) const
{
    Q_D(const FrequencySpectrum);
    const int from = skipFirst ? 1 : 0;
    double result = qQNaN();
    for (const FrequencyTrace* trace : d->traces) {
        const double value = trace->maxAmplitude(from);
        if (!std::isnan(value) && (std::isnan(result) || value > result))
            result = value;
    }
    return result;
}

double FrequencySpectrum::minAmplitude(bool skipFirst) const
{
    Q_D(const FrequencySpectrum);
    const int from = skipFirst ? 1 : 0;
    double result = qQNaN();
    for (const FrequencyTrace* trace : d->traces) {
        const double value = trace->minAmplitude(from);
        if (!std::isnan(value) && (std::isnan(result) || value < result))
            result = value;
    }
    return result;
}

double FrequencySpectrum::maxFrequency() const
{
    Q_D(const FrequencySpectrum);
    return d->traces.isEmpty() ? qQNaN() : d->traces.first()->maxFrequency();
}

double FrequencySpectrum::frequencyResolution() const
{
    Q_D(const FrequencySpectrum);
    return d->traces.isEmpty() ? qQNaN() : d->traces.first()->frequencyResolution();
}

int FrequencySpectrum::pointCount() const
{
    Q_D(const FrequencySpectrum);
    return d->pointCount;
}

int FrequencySpectrum::selectedMeasurePoint() const
{
    Q_D(const FrequencySpectrum);
    return d->selectedMeasurePoint;
}

void FrequencySpectrum::setSelectedMeasurePoint(int point)
{
    Q_D(FrequencySpectrum);
    // pointCount itself, one past the last index, is accepted; each trace
    // clamps to its own last point for its amplitude text.
    d->selectedMeasurePoint = std::max(0, std::min(point, d->pointCount));
    const QList<FrequencyTrace*> traces = d->traces;
    for (FrequencyTrace* trace : traces)
        trace->setFrequencyAndAmplitude(d->selectedMeasurePoint);
}

double FrequencySpectrum::selectedFrequency() const
{
    Q_D(const FrequencySpectrum);
    return frequencyResolution() * d->selectedMeasurePoint;
}

void FrequencySpectrum::changeWindowFunction(bool meanValueFreeEnabled, int WindowFunction)
{
    Q_D(FrequencySpectrum);
    const QList<FrequencyTrace*> traces = d->traces;
    for (FrequencyTrace* trace : traces)
        trace->recalculate(meanValueFreeEnabled, WindowFunction);
    Q_EMIT d->dataChanged();
}
