// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencytrace.h"
#include "frequencytrace_p.h"

#include "frequency.h"
#include "traceinformation.h"

#include <QtWidgets/QTreeWidgetItem>

#include <cmath>

namespace {

// Largest (or smallest) amplitude from index from on; points that are not a
// number are passed over, and NaN comes back when nothing is left.
template<typename Better>
double extremeAmplitude(const QVector<double>& amplitudes, int from, Better better)
{
    double result = qQNaN();
    for (qsizetype i = std::max(0, from); i < amplitudes.size(); ++i) {
        const double value = amplitudes.at(i);
        if (std::isnan(value))
            continue;
        if (std::isnan(result) || better(value, result))
            result = value;
    }
    return result;
}

} // namespace

FrequencyTracePrivate::FrequencyTracePrivate(FrequencyTrace* q,
                                             const QSharedPointer<TraceInformation>& information)
    : q_ptr(q)
    , traceInformation(information)
{
    if (!information)
        return;
    hidden = information->isOff();
    color = information->color();
    name = information->name();
    samplingTime = information->samplingTime() * std::pow(10.0, -7.0);
    samples = information->samples();
    sampleCount = static_cast<qint32>(samples.size());
}

QVector<double> FrequencyTracePrivate::intervalSamples() const
{
    qint64 start = firstIndex;
    qint64 count = sampleCount;
    if (count <= 0)
        return {};
    if (start < 0) { // as a sub-list: what lies before the samples is cut off
        count += start;
        start = 0;
    }
    if (start >= samples.size() || count <= 0)
        return {};
    count = std::min<qint64>(count, samples.size() - start);
    return samples.mid(start, count);
}

void FrequencyTracePrivate::onTraceInformationColorChanged(QColor newColor)
{
    // The colour compared is the announced one: a colour set here travels
    // out through the trace information and must not come back as a change.
    if (traceInformation.isNull() || newColor == color)
        return;
    color = newColor;
    Q_EMIT colorChanged(newColor);
}

void FrequencyTracePrivate::onTraceInformationVisibilityChanged()
{
    const QSharedPointer<TraceInformation> information = traceInformation.toStrongRef();
    if (!information)
        return;
    const bool off = information->isOff();
    if (off == hidden)
        return;
    hidden = off;
    Q_EMIT visibilityChanged();
}

FrequencyTrace::FrequencyTrace(const QSharedPointer<TraceInformation>& traceInformation, QObject* parent)
    : QObject(parent)
    , d_ptr(new FrequencyTracePrivate(this, traceInformation))
{
    Q_D(FrequencyTrace);
    d->setParent(this);
    connect(d, &FrequencyTracePrivate::colorChanged, this, &FrequencyTrace::colorChanged);
    connect(d, &FrequencyTracePrivate::visibilityChanged, this, &FrequencyTrace::visibilityChanged);
    connect(d, &FrequencyTracePrivate::selectedMeasurePointChanged, this,
            &FrequencyTrace::selectedMeasurePointChanged);
    if (traceInformation) {
        TraceInformation* information = traceInformation.data();
        connect(information, &TraceInformation::colorChanged, d,
                &FrequencyTracePrivate::onTraceInformationColorChanged);
        connect(information, &TraceInformation::visibilityChanged, d,
                &FrequencyTracePrivate::onTraceInformationVisibilityChanged);
        // A colour chosen in the frequency view is announced through the
        // trace information as well.
        connect(this, &FrequencyTrace::colorChanged, information, &TraceInformation::colorChanged);
    }
}

FrequencyTrace::~FrequencyTrace() = default;

void FrequencyTrace::setInterval(int first, int last, int windowFunction)
{
    Q_D(FrequencyTrace);
    d->firstIndex = first;
    d->sampleCount = static_cast<qint32>(static_cast<quint32>(static_cast<qint64>(last) - first + 1));
    const QVector<double> spectrum = Frequency::meanFreeAmplitudeSpectrum(d->intervalSamples(), windowFunction);
    const qsizetype m = spectrum.size();
    // One side of the spectrum: for even M the point at half the sampling
    // frequency is left out.
    const qsizetype kept = std::min(m, (m - 1) / 2 + 1);
    d->amplitudes = spectrum.mid(0, kept);
}

void FrequencyTrace::recalculate(bool meanValueFree, int windowFunction)
{
    Q_D(FrequencyTrace);
    // Both halves are kept here, unlike setInterval(): after a change of the
    // window the list is twice as long and reaches up to the sampling
    // frequency. The views rely on this.
    d->amplitudes = Frequency::amplitudeSpectrum(d->intervalSamples(), -1,
                                                 windowFunction != Frequency::Hamming,
                                                 meanValueFree, false);
}

QVector<double> FrequencyTrace::amplitudes() const
{
    Q_D(const FrequencyTrace);
    return d->amplitudes;
}

double FrequencyTrace::maxAmplitude(int from) const
{
    Q_D(const FrequencyTrace);
    return extremeAmplitude(d->amplitudes, from, [](double a, double b) { return a > b; });
}

double FrequencyTrace::minAmplitude(int from) const
{
    Q_D(const FrequencyTrace);
    return extremeAmplitude(d->amplitudes, from, [](double a, double b) { return a < b; });
}

double FrequencyTrace::frequencyResolution() const
{
    Q_D(const FrequencyTrace);
    return 1.0 / (static_cast<double>(d->sampleCount) * d->samplingTime);
}

double FrequencyTrace::maxFrequency() const
{
    Q_D(const FrequencyTrace);
    return 1.0 / (static_cast<double>(d->sampleCount) * d->samplingTime)
           * static_cast<double>(d->amplitudes.size() - 1);
}

int FrequencyTrace::firstIndex() const
{
    Q_D(const FrequencyTrace);
    return d->firstIndex;
}

int FrequencyTrace::sampleCount() const
{
    Q_D(const FrequencyTrace);
    return d->sampleCount;
}

double FrequencyTrace::samplingTime() const
{
    Q_D(const FrequencyTrace);
    return d->samplingTime;
}

QString FrequencyTrace::name() const
{
    Q_D(const FrequencyTrace);
    return d->name;
}

QColor FrequencyTrace::color() const
{
    Q_D(const FrequencyTrace);
    return d->color;
}

bool FrequencyTrace::setColor(const QColor& color)
{
    Q_D(FrequencyTrace);
    if (color == d->color)
        return false;
    d->color = color;
    Q_EMIT d->colorChanged(color);
    return true;
}

bool FrequencyTrace::isHidden() const
{
    Q_D(const FrequencyTrace);
    return d->hidden;
}

bool FrequencyTrace::setHidden(bool hidden)
{
    Q_D(FrequencyTrace);
    if (hidden == d->hidden)
        return false;
    d->hidden = hidden;
    Q_EMIT d->visibilityChanged();
    // Hiding a channel here switches it off in the time-domain view too.
    const QSharedPointer<TraceInformation> information = d->traceInformation.toStrongRef();
    if (information && information->isOff() != hidden)
        information->setOff(hidden);
    return true;
}

QString FrequencyTrace::amplitudeText() const
{
    Q_D(const FrequencyTrace);
    return d->amplitudeText;
}

void FrequencyTrace::setFrequencyAndAmplitude(int value)
{
    Q_D(FrequencyTrace);
    const qsizetype count = d->amplitudes.size();
    if (count > 0) {
        const qsizetype index = std::clamp<qsizetype>(value, 0, count - 1);
        d->amplitudeText = QString::number(d->amplitudes.at(index), 'g', 6);
    } else {
        d->amplitudeText = QStringLiteral("---");
    }
    if (d->treeItem)
        d->treeItem->setText(1, d->amplitudeText);
    Q_EMIT d->selectedMeasurePointChanged();
}

void FrequencyTrace::setTreeItem(QTreeWidgetItem* item)
{
    Q_D(FrequencyTrace);
    d->treeItem = item;
}

QTreeWidgetItem* FrequencyTrace::treeItem() const
{
    Q_D(const FrequencyTrace);
    return d->treeItem;
}

QSharedPointer<TraceInformation> FrequencyTrace::traceInformation() const
{
    Q_D(const FrequencyTrace);
    return d->traceInformation.toStrongRef();
}
