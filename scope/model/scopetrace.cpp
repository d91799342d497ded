// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"
#include "scopetrace_p.h"

#include "scopelayout.h"
#include "scopeseries.h"

#include "appsettings.h"
#include "datatypeprovider.h"
#include "iniparser.h"
#include "simpletype.h"

#include <QtCore/QEasingCurve>
#include <QtCore/QLocale>
#include <QtCore/QVariantAnimation>
#include <QtCore/QSignalBlocker>
#include <QtGui/QPainter>
#include <QtGui/QPolygonF>

#include <algorithm>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif
#include <cmath>
#include <limits>

namespace {

// Samples are grouped in blocks of this many before the pyramid starts. The
// envelope costs 2 × 2 / envelopeBlock of the samples' memory (1/16 here): a
// deep recording's text, samples and envelopes all have to fit in memory
// together, and the few more samples scanned at the edges of a pixel column
// lie next to each other.
constexpr qsizetype envelopeBlock = 64;

// Below this many samples per pixel column the curve is drawn as a plain
// polyline; above it per column from the envelope.
constexpr double envelopeThreshold = 8.0;

// Bit rows in binary view: the high level lies one scaling factor above the
// row's base line, rows are one and a half factors apart.
constexpr double bitRowPitch = 1.5;

constexpr int binaryLabelWidth = 14;

qint64 toInt64(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 9223372036854775807.0)
        return std::numeric_limits<qint64>::max();
    if (value <= -9223372036854775808.0)
        return std::numeric_limits<qint64>::min();
    return static_cast<qint64>(value);
}

quint64 toUInt64(double value)
{
    if (value >= 18446744073709551615.0)
        return std::numeric_limits<quint64>::max();
    if (value >= 9223372036854775807.0)
        return static_cast<quint64>(value);
    return static_cast<quint64>(toInt64(value));
}

qint32 toInt32(double value)
{
    if (!(value == value))
        return 0;
    if (value >= 2147483647.0)
        return std::numeric_limits<qint32>::max();
    if (value <= -2147483648.0)
        return std::numeric_limits<qint32>::min();
    return static_cast<qint32>(value);
}

// Inserts a blank after every fourth character: "abcdefgh" → "abcd efgh".
QString groupByFour(QString digits)
{
    const int groups = int(digits.size() / 4);
    for (int n = 1; n < groups; ++n)
        digits.insert(5 * n - 1, QLatin1Char(' '));
    return digits;
}

// Coordinates are snapped to the rasteriser's 1/64 pixel grid so that the
// column of a point is the same for the envelope and for the rasteriser.
inline double snap(double coordinate)
{
    // Coordinates are clamped to ±1e7 before, so the integer conversion is safe.
    const double scaled = coordinate * 64.0;
    return double(qint64(scaled + (scaled >= 0.0 ? 0.5 : -0.5))) / 64.0;
}

// NaN is the second operand, so it never replaces a bound.
inline void combine(double value, double* lowest, double* highest)
{
    *lowest = std::min(*lowest, value);
    *highest = std::max(*highest, value);
}

// combine() over a run of samples. Four independent pairs of bounds keep the
// processor busy instead of waiting for each comparison in turn; the packed
// minimum and maximum take the second operand when one is NaN, as combine()
// does.
inline void combineRun(const double* data, qsizetype count, double* lowest, double* highest)
{
    qsizetype i = 0;
#if defined(__SSE2__)
    if (count >= 8) {
        __m128d low0 = _mm_set1_pd(*lowest);
        __m128d low1 = low0;
        __m128d high0 = _mm_set1_pd(*highest);
        __m128d high1 = high0;
        for (; i + 4 <= count; i += 4) {
            const __m128d a = _mm_loadu_pd(data + i);
            const __m128d b = _mm_loadu_pd(data + i + 2);
            low0 = _mm_min_pd(a, low0);
            high0 = _mm_max_pd(a, high0);
            low1 = _mm_min_pd(b, low1);
            high1 = _mm_max_pd(b, high1);
        }
        double lows[2];
        double highs[2];
        _mm_storeu_pd(lows, _mm_min_pd(low0, low1));
        _mm_storeu_pd(highs, _mm_max_pd(high0, high1));
        *lowest = std::min(lows[0], lows[1]);
        *highest = std::max(highs[0], highs[1]);
    }
#endif
    for (; i < count; ++i)
        combine(data[i], lowest, highest);
}

} // namespace

// ---------------------------------------------------------------------------
// Envelopes

void ScopeTraceEnvelope::clear()
{
    minimum.clear();
    maximum.clear();
}

void ScopeTraceEnvelope::build(const QVector<double>& samples)
{
    clear();
    const qsizetype n = samples.size();
    const qsizetype blocks = n / envelopeBlock;
    if (blocks == 0)
        return;
    std::vector<double> lows(size_t(blocks), 0.0);
    std::vector<double> highs(size_t(blocks), 0.0);
    const double* data = samples.constData();
    for (qsizetype b = 0; b < blocks; ++b) {
        double lowest = std::numeric_limits<double>::infinity();
        double highest = -std::numeric_limits<double>::infinity();
        combineRun(data + b * envelopeBlock, envelopeBlock, &lowest, &highest); // NaN is skipped
        lows[size_t(b)] = lowest;
        highs[size_t(b)] = highest;
    }
    minimum.push_back(std::move(lows));
    maximum.push_back(std::move(highs));
    while (minimum.back().size() > 1) {
        const std::vector<double>& lower = minimum.back();
        const std::vector<double>& upper = maximum.back();
        const size_t count = lower.size() / 2;
        std::vector<double> nextLow(count);
        std::vector<double> nextHigh(count);
        for (size_t i = 0; i < count; ++i) {
            nextLow[i] = std::min(lower[2 * i], lower[2 * i + 1]);
            nextHigh[i] = std::max(upper[2 * i], upper[2 * i + 1]);
        }
        minimum.push_back(std::move(nextLow));
        maximum.push_back(std::move(nextHigh));
    }
}

bool ScopeTraceEnvelope::range(const QVector<double>& samples, qsizetype first, qsizetype last,
                               double* lowest, double* highest) const
{
    double low = std::numeric_limits<double>::infinity();
    double high = -std::numeric_limits<double>::infinity();
    first = std::max<qsizetype>(first, 0);
    last = std::min(last, samples.size());
    const double* data = samples.constData();
    if (last - first < 2 * envelopeBlock || minimum.empty()) {
        if (last > first)
            combineRun(data + first, last - first, &low, &high);
    } else {
        qsizetype lo = (first + envelopeBlock - 1) / envelopeBlock;
        qsizetype hi = last / envelopeBlock;
        combineRun(data + first, lo * envelopeBlock - first, &low, &high);
        combineRun(data + hi * envelopeBlock, last - hi * envelopeBlock, &low, &high);
        for (size_t level = 0; lo < hi && level < minimum.size(); ++level) {
            const std::vector<double>& lows = minimum[level];
            const std::vector<double>& highs = maximum[level];
            const qsizetype size = qsizetype(lows.size());
            // Blocks past the last full pair of a level have no parent: take
            // them here; a short run is read straight through, too.
            if (hi > (size / 2) * 2 || level + 1 == minimum.size() || hi - lo <= 16) {
                double unusedHigh = high;
                double unusedLow = low;
                combineRun(lows.data() + lo, hi - lo, &low, &unusedHigh);
                combineRun(highs.data() + lo, hi - lo, &unusedLow, &high);
                break;
            }
            if (lo & 1) {
                low = std::min(low, lows[size_t(lo)]);
                high = std::max(high, highs[size_t(lo)]);
                ++lo;
            }
            if (hi & 1) {
                --hi;
                low = std::min(low, lows[size_t(hi)]);
                high = std::max(high, highs[size_t(hi)]);
            }
            lo /= 2;
            hi /= 2;
        }
    }
    if (!(low <= high))
        return false;
    *lowest = low;
    *highest = high;
    return true;
}

void ScopeTraceBitEnvelope::clear()
{
    anyOne.clear();
    allOne.clear();
    valid = false;
}

void ScopeTraceBitEnvelope::build(const QVector<double>& samples)
{
    clear();
    valid = true;
    const qsizetype blocks = samples.size() / envelopeBlock;
    if (blocks == 0)
        return;
    std::vector<quint64> ones(size_t(blocks), 0);
    std::vector<quint64> all(size_t(blocks), ~quint64(0));
    const double* data = samples.constData();
    for (qsizetype b = 0; b < blocks; ++b) {
        quint64 o = 0;
        quint64 a = ~quint64(0);
        const double* block = data + b * envelopeBlock;
        for (qsizetype i = 0; i < envelopeBlock; ++i) {
            if (!std::isfinite(block[i]))
                continue;
            const quint64 v = toUInt64(block[i]);
            o |= v;
            a &= v;
        }
        ones[size_t(b)] = o;
        all[size_t(b)] = a;
    }
    anyOne.push_back(std::move(ones));
    allOne.push_back(std::move(all));
    while (anyOne.back().size() > 1) {
        const std::vector<quint64>& lowerOnes = anyOne.back();
        const std::vector<quint64>& lowerAll = allOne.back();
        const size_t count = lowerOnes.size() / 2;
        std::vector<quint64> nextOnes(count);
        std::vector<quint64> nextAll(count);
        for (size_t i = 0; i < count; ++i) {
            nextOnes[i] = lowerOnes[2 * i] | lowerOnes[2 * i + 1];
            nextAll[i] = lowerAll[2 * i] & lowerAll[2 * i + 1];
        }
        anyOne.push_back(std::move(nextOnes));
        allOne.push_back(std::move(nextAll));
    }
}

void ScopeTraceBitEnvelope::range(const QVector<double>& samples, qsizetype first, qsizetype last,
                                  quint64* ones, quint64* all) const
{
    quint64 o = 0;
    quint64 a = ~quint64(0);
    first = std::max<qsizetype>(first, 0);
    last = std::min(last, samples.size());
    const double* data = samples.constData();
    auto take = [&](qsizetype i) {
        if (!std::isfinite(data[i]))
            return;
        const quint64 v = toUInt64(data[i]);
        o |= v;
        a &= v;
    };
    if (last - first < 2 * envelopeBlock || anyOne.empty()) {
        for (qsizetype i = first; i < last; ++i)
            take(i);
    } else {
        qsizetype lo = (first + envelopeBlock - 1) / envelopeBlock;
        qsizetype hi = last / envelopeBlock;
        for (qsizetype i = first; i < lo * envelopeBlock; ++i)
            take(i);
        for (qsizetype i = hi * envelopeBlock; i < last; ++i)
            take(i);
        for (size_t level = 0; lo < hi && level < anyOne.size(); ++level) {
            const std::vector<quint64>& levelOnes = anyOne[level];
            const std::vector<quint64>& levelAll = allOne[level];
            const qsizetype size = qsizetype(levelOnes.size());
            if (hi > (size / 2) * 2 || level + 1 == anyOne.size()) {
                for (qsizetype i = lo; i < hi; ++i) {
                    o |= levelOnes[size_t(i)];
                    a &= levelAll[size_t(i)];
                }
                break;
            }
            if (lo & 1) {
                o |= levelOnes[size_t(lo)];
                a &= levelAll[size_t(lo)];
                ++lo;
            }
            if (hi & 1) {
                --hi;
                o |= levelOnes[size_t(hi)];
                a &= levelAll[size_t(hi)];
            }
            lo /= 2;
            hi /= 2;
        }
    }
    *ones = o;
    *all = a;
}

// ---------------------------------------------------------------------------
// ScopeTracePrivate

ScopeTracePrivate::ScopeTracePrivate(ScopeTrace* q, QObject* parent, int number)
    : QObject(q)
    , q_ptr(q)
    , shot(parent)
    , number(number)
    , color(Qt::red)
{
    color = AppSettings::instance()->defaultTraceColor(number);
    connect(this, &ScopeTracePrivate::changed, q, &ScopeTrace::changed);
    connect(this, &ScopeTracePrivate::viewChanged, q, &ScopeTrace::viewChanged);
    connect(this, &ScopeTracePrivate::quickMeasureValue, q, &ScopeTrace::quickMeasureValue);
}

// The animations have no parent; they stay (stopped) until the trace goes.
ScopeTracePrivate::~ScopeTracePrivate()
{
    qDeleteAll(animations);
}

// Times saturate at ±2^62 ns (about 146 years from the trigger), so that a
// recording with an absurd time base or trigger index never wraps around, and
// the span between any two times still fits into 64 bits.
static qint64 saturatedTime(qint64 steps, quint32 timeBase)
{
    constexpr qint64 limit = qint64(1) << 62;
    const __int128 time = __int128(steps) * timeBase * 100;
    if (time > limit)
        return limit;
    if (time < -limit)
        return -limit;
    return qint64(time);
}

qint64 ScopeTracePrivate::sampleTime(qint64 index) const
{
    return saturatedTime(index - triggerIndex, timeBase);
}

int ScopeTracePrivate::sampleIndex(qint64 time) const
{
    const double step = double(timeBase) * 100.0;
    const double index = std::floor(double(time) / step) + double(triggerIndex);
    return toInt32(index);
}

quint32 ScopeTracePrivate::byteSize() const
{
    return DatatypeProvider::instance()->byteSize(physicalDatatype);
}

void ScopeTracePrivate::applyScalingFactor(double factor)
{
    if (off)
        return;
    const int k = sampleIndex(anchorTime);
    if (k >= 0 && k < samples.size())
        anchorValue = samples.at(k) * invertScalingFactor;
    const double newOffset = scalingFactor * anchorValue + verticalOffset - anchorValue * factor;
    if (newOffset == verticalOffset && factor == scalingFactor)
        return;
    verticalOffset = newOffset;
    scalingFactor = factor;
    Q_EMIT changed();
    Q_EMIT viewChanged();
}

void ScopeTracePrivate::zoom(bool in)
{
    if (binaryView) {
        if (in) {
            if (scalingFactor < 0.2)
                scalingFactor = 0.25;
            else if (scalingFactor < 0.4)
                scalingFactor = 0.5;
            else if (scalingFactor < 0.9)
                scalingFactor = 1.0;
        } else {
            if (scalingFactor > 0.9)
                scalingFactor = 0.5;
            else if (scalingFactor > 0.4)
                scalingFactor = 0.25;
            else if (scalingFactor > 0.2)
                scalingFactor = 0.125;
        }
        Q_EMIT changed();
        Q_EMIT viewChanged();
        return;
    }
    applyScalingFactor(in ? ScopeSeries::niceFactorUp(scalingFactor)
                          : ScopeSeries::niceFactorDown(scalingFactor));
}

void ScopeTracePrivate::setFlag(bool* flag, bool value, bool animated, double* factor, double endValue,
                                int easing, void (ScopeTracePrivate::*slot)(const QVariant&))
{
    if (*flag == value)
        return;
    if (animated) {
        // The animation only serves as a clock with an easing curve: its
        // values reach the factor through the slot. Animations of one trace
        // must not cancel each other (grounding while switching off, or
        // releasing during the grounding), so each is a plain variant
        // animation without a target; the one started last writes last in
        // every frame.
        auto* animation = new QVariantAnimation();
        animation->setStartValue(*factor);
        animation->setEndValue(endValue);
        animation->setDuration(250);
        animation->setEasingCurve(QEasingCurve::Type(easing));
        connect(animation, &QVariantAnimation::valueChanged, this, slot);
        // An animation whose start and end agree never reports a value; its
        // end value is written when it finishes, so that the animation
        // started last also has the last word.
        connect(animation, &QAbstractAnimation::finished, this,
                [this, animation, slot] { (this->*slot)(animation->endValue()); });
        animations.append(animation);
        animation->start(QAbstractAnimation::KeepWhenStopped);
    } else {
        *factor = endValue;
    }
    *flag = value;
    Q_EMIT changed();
    Q_EMIT viewChanged();
}

void ScopeTracePrivate::rebuildBinaryBits()
{
    binaryBits.clear();
    const quint32 bits = byteSize() * 8;
    for (quint32 b = 0; b < bits && b < 64; ++b) {
        if (b < 32 && (binaryViewMask & (1u << b)))
            binaryBits.append(char(b));
    }
}

void ScopeTracePrivate::setGroundScalingFactor(const QVariant& value)
{
    groundScalingFactor = value.toDouble();
    Q_EMIT updateRequired();
}

void ScopeTracePrivate::setOffAlphaFactor(const QVariant& value)
{
    offAlphaFactor = value.toDouble();
    Q_EMIT updateRequired();
}

void ScopeTracePrivate::setInvertScalingFactor(const QVariant& value)
{
    invertScalingFactor = value.toDouble();
    Q_EMIT updateRequired();
}

// ---------------------------------------------------------------------------
// Value texts

QString ScopeTracePrivate::hexText(double value) const
{
    const quint64 v = toUInt64(value);
    QString digits;
    switch (byteSize()) {
    case 1:
        digits = QString::asprintf("%02x", unsigned(v & 0xffu));
        break;
    case 2:
        digits = QString::asprintf("%04x", unsigned(v & 0xffffu));
        break;
    case 4:
        digits = QString::asprintf("%08x", unsigned(v & 0xffffffffu));
        break;
    case 8:
        // Only the low half reaches the text; the high digits stay zero.
        digits = QString::asprintf("%016x", unsigned(v & 0xffffffffu));
        break;
    default:
        break;
    }
    return groupByFour(digits) + QLatin1String(" hex");
}

QString ScopeTracePrivate::binaryText(double value) const
{
    const quint32 v = quint32(quint64(toInt64(value)) & 0xffffffffu);
    const quint32 bits = std::min<quint32>(byteSize() * 8, 64);
    QString digits;
    digits.reserve(int(bits));
    for (quint32 b = 0; b < bits; ++b) {
        QChar c = (v & (1u << (b % 32))) ? QLatin1Char('1') : QLatin1Char('0');
        if (binaryView && !binaryBits.contains(char(b)))
            c = QLatin1Char('-');
        digits.prepend(c);
    }
    return groupByFour(digits) + QLatin1String(" bin");
}

static QString decimalText(double v, int d)
{
    QString text;
    const double magnitude = std::fabs(v);
    if (!std::isfinite(v)) {
        text = QString::asprintf("%f", v);
    } else if ((magnitude >= 0.001 && magnitude <= 9999999.4) || v == 0.0) {
        text = QString::asprintf("%.*f", d, v);
    } else {
        int e = int(std::trunc(std::log10(magnitude)));
        e = (e / 3) * 3;
        double m = magnitude / std::pow(10.0, e);
        if (m < 1.0) {
            m *= 1000.0;
            e -= 3;
        }
        const int decimals = std::max(0, d - int(std::trunc(std::log10(m))) - 1);
        text = QString::asprintf("%.*f", decimals, v < 0 ? -m : m);
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(QLatin1Char('.')))
            text.chop(1);
        text += QString::asprintf("E%+d", e);
    }
    text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
    return text;
}

QString ScopeTracePrivate::numberText(double value, bool withUnit) const
{
    const SimpleType* type = DatatypeProvider::instance()->simpleType(physicalDatatype);
    if (!type)
        return QString();
    QString text;
    const bool unsignedKind = type->kind() == eSimpleTypeKindUnsigned;
    if (type->kind() == eSimpleTypeKindFractional || decimalPlaces != 0) {
        text = decimalText(value, int(std::min<quint32>(decimalPlaces, 340)));
    } else if (type->number() < 5) {
        if (unsignedKind)
            text = QStringLiteral("%1").arg(quint32(toUInt64(value) & 0xffffffffu));
        else
            text = QStringLiteral("%1").arg(qint32(quint32(quint64(toInt64(value)) & 0xffffffffu)));
    } else {
        if (unsignedKind)
            text = QStringLiteral("%1").arg(toUInt64(value));
        else
            text = QStringLiteral("%1").arg(toInt64(value));
    }
    if (withUnit)
        text += QLatin1Char(' ') + measure;
    return text;
}

QString ScopeTracePrivate::valueText(double value, bool withUnit) const
{
    if (std::isnan(value))
        return QStringLiteral("---");
    if (binaryView)
        return binaryText(value);
    switch (parameterKind) {
    case 1: {
        const QString number = QStringLiteral("%1").arg(value, 0, 'g', QLocale::FloatingPointShortest,
                                                         QLatin1Char(' '));
        return QStringLiteral("%1:%2").arg(number, choiceMap.value(toInt32(value)));
    }
    case 3:
        return hexText(value);
    case 4:
        return binaryText(value);
    case 7: {
        const quint64 v = toUInt64(value);
        return QStringLiteral("%1h %2m %3s")
            .arg(v >> 12)
            .arg((v >> 6) & 63, 2, 10, QLatin1Char('0'))
            .arg(v & 63, 2, 10, QLatin1Char('0'));
    }
    default:
        return numberText(value, withUnit);
    }
}

// ---------------------------------------------------------------------------
// ScopeTrace

ScopeTrace::ScopeTrace(QObject* parent, unsigned number)
    : QObject(parent)
    , d_ptr(new ScopeTracePrivate(this, parent, int(number)))
{
    Q_D(ScopeTrace);
    connect(d, &ScopeTracePrivate::updateRequired, this, &ScopeTrace::changed);
}

ScopeTrace::~ScopeTrace() = default;

QObject* ScopeTrace::shot() const
{
    Q_D(const ScopeTrace);
    return d->shot;
}

int ScopeTrace::number() const
{
    Q_D(const ScopeTrace);
    return d->number;
}

QString ScopeTrace::name() const
{
    Q_D(const ScopeTrace);
    return d->name;
}

void ScopeTrace::setName(const QString& name)
{
    Q_D(ScopeTrace);
    d->store(d->name, name);
}

QString ScopeTrace::measure() const
{
    Q_D(const ScopeTrace);
    return d->measure;
}

void ScopeTrace::setMeasure(const QString& measure)
{
    Q_D(ScopeTrace);
    d->store(d->measure, measure);
}

quint8 ScopeTrace::physicalDatatype() const
{
    Q_D(const ScopeTrace);
    return d->physicalDatatype;
}

void ScopeTrace::setPhysicalDatatype(quint8 datatype)
{
    Q_D(ScopeTrace);
    d->store(d->physicalDatatype, datatype);
}

unsigned ScopeTrace::decimalPlaces() const
{
    Q_D(const ScopeTrace);
    return d->decimalPlaces;
}

void ScopeTrace::setDecimalPlaces(unsigned decimalPlaces)
{
    Q_D(ScopeTrace);
    d->store(d->decimalPlaces, decimalPlaces);
}

int ScopeTrace::parameterKind() const
{
    Q_D(const ScopeTrace);
    return int(d->parameterKind);
}

void ScopeTrace::setParameterKind(int kind)
{
    Q_D(ScopeTrace);
    d->parameterKind = quint32(kind);
    Q_EMIT d->changed();
}

QMap<qint32, QString> ScopeTrace::choiceMap() const
{
    Q_D(const ScopeTrace);
    return d->choiceMap;
}

void ScopeTrace::setChoiceMap(const QMap<qint32, QString>& choiceMap)
{
    Q_D(ScopeTrace);
    d->store(d->choiceMap, choiceMap);
}

QVector<double> ScopeTrace::samples() const
{
    Q_D(const ScopeTrace);
    return d->samples;
}

void ScopeTrace::setSamples(const QVector<double>& samples)
{
    Q_D(ScopeTrace);
    // Element by element, so that a NaN always counts as a change.
    if (d->samples.size() == samples.size()
        && std::equal(samples.cbegin(), samples.cend(), d->samples.cbegin()))
        return;
    d->samples = samples;
    ++d->samplesGeneration;
    d->envelope.build(d->samples);
    d->bitEnvelope.clear();
    Q_EMIT d->changed();
}

int ScopeTrace::triggerIndex() const
{
    Q_D(const ScopeTrace);
    return d->triggerIndex;
}

void ScopeTrace::setTriggerIndex(int triggerIndex)
{
    Q_D(ScopeTrace);
    d->store(d->triggerIndex, triggerIndex);
}

unsigned ScopeTrace::timeBase() const
{
    Q_D(const ScopeTrace);
    return d->timeBase;
}

void ScopeTrace::setTimeBase(unsigned timeBase)
{
    Q_D(ScopeTrace);
    d->store(d->timeBase, timeBase);
}

qint64 ScopeTrace::startTime() const
{
    Q_D(const ScopeTrace);
    return saturatedTime(-qint64(d->triggerIndex), d->timeBase);
}

qint64 ScopeTrace::endTime() const
{
    Q_D(const ScopeTrace);
    return saturatedTime(qint64(d->samples.size()) - 1 - d->triggerIndex, d->timeBase);
}

int ScopeTrace::sampleIndex(qint64 time) const
{
    Q_D(const ScopeTrace);
    return d->sampleIndex(time);
}

qint64 ScopeTrace::sampleTime(int index) const
{
    Q_D(const ScopeTrace);
    return d->sampleTime(index);
}

QColor ScopeTrace::color() const
{
    Q_D(const ScopeTrace);
    return d->color;
}

void ScopeTrace::setColor(const QColor& color)
{
    Q_D(ScopeTrace);
    if (d->color == color)
        return;
    d->color = color;
    Q_EMIT d->changed();
    Q_EMIT d->viewChanged();
}

double ScopeTrace::scalingFactor() const
{
    Q_D(const ScopeTrace);
    return d->scalingFactor;
}

void ScopeTrace::setScalingFactor(double factor)
{
    Q_D(ScopeTrace);
    d->applyScalingFactor(factor);
}

double ScopeTrace::verticalOffset() const
{
    Q_D(const ScopeTrace);
    return d->verticalOffset;
}

void ScopeTrace::setVerticalOffset(double offset)
{
    Q_D(ScopeTrace);
    if (d->off || d->verticalOffset == offset)
        return;
    d->verticalOffset = offset;
    Q_EMIT d->changed();
    Q_EMIT d->viewChanged();
}

void ScopeTrace::shiftVerticalOffset(int pixels)
{
    Q_D(ScopeTrace);
    setVerticalOffset(pixels * d->unitsPerPixel + d->verticalOffset);
}

bool ScopeTrace::isOff() const
{
    Q_D(const ScopeTrace);
    return d->off;
}

void ScopeTrace::setOff(bool off, bool animated)
{
    Q_D(ScopeTrace);
    d->setFlag(&d->off, off, animated, &d->offAlphaFactor, off ? 0.0 : 1.0, QEasingCurve::Linear,
               &ScopeTracePrivate::setOffAlphaFactor);
}

bool ScopeTrace::isGround() const
{
    Q_D(const ScopeTrace);
    return d->ground;
}

void ScopeTrace::setGround(bool ground, bool animated)
{
    Q_D(ScopeTrace);
    d->setFlag(&d->ground, ground, animated, &d->groundScalingFactor, ground ? 0.0 : 1.0,
               QEasingCurve::InOutSine, &ScopeTracePrivate::setGroundScalingFactor);
}

bool ScopeTrace::isInverted() const
{
    Q_D(const ScopeTrace);
    return d->inverted;
}

void ScopeTrace::setInverted(bool inverted, bool animated)
{
    Q_D(ScopeTrace);
    d->setFlag(&d->inverted, inverted, animated, &d->invertScalingFactor, inverted ? -1.0 : 1.0,
               QEasingCurve::InOutSine, &ScopeTracePrivate::setInvertScalingFactor);
}

bool ScopeTrace::isBinaryView() const
{
    Q_D(const ScopeTrace);
    return d->binaryView;
}

void ScopeTrace::setBinaryView(bool binaryView)
{
    Q_D(ScopeTrace);
    if (d->binaryView == binaryView)
        return;
    std::swap(d->scalingFactor, d->binaryScalingFactorBackup);
    d->binaryView = binaryView;
    Q_EMIT d->changed();
    Q_EMIT d->viewChanged();
}

unsigned ScopeTrace::binaryViewMask() const
{
    Q_D(const ScopeTrace);
    return d->binaryViewMask;
}

void ScopeTrace::setBinaryViewMask(unsigned mask)
{
    Q_D(ScopeTrace);
    d->binaryViewMask = mask;
    d->rebuildBinaryBits();
    Q_EMIT d->changed();
    Q_EMIT d->viewChanged();
}

QByteArray ScopeTrace::binaryBits() const
{
    Q_D(const ScopeTrace);
    return d->binaryBits;
}

double ScopeTrace::binaryScalingFactorBackup() const
{
    Q_D(const ScopeTrace);
    return d->binaryScalingFactorBackup;
}

double ScopeTrace::groundScalingFactor() const
{
    Q_D(const ScopeTrace);
    return d->groundScalingFactor;
}

double ScopeTrace::offAlphaFactor() const
{
    Q_D(const ScopeTrace);
    return d->offAlphaFactor;
}

double ScopeTrace::invertScalingFactor() const
{
    Q_D(const ScopeTrace);
    return d->invertScalingFactor;
}

double ScopeTrace::unitsPerPixel() const
{
    Q_D(const ScopeTrace);
    return d->unitsPerPixel;
}

qint64 ScopeTrace::viewLeftTime() const
{
    Q_D(const ScopeTrace);
    return d->viewLeftTime;
}

qint64 ScopeTrace::viewRightTime() const
{
    Q_D(const ScopeTrace);
    return d->viewRightTime;
}

qint64 ScopeTrace::anchorTime() const
{
    Q_D(const ScopeTrace);
    return d->anchorTime;
}

double ScopeTrace::anchorValue() const
{
    Q_D(const ScopeTrace);
    return d->anchorValue;
}

void ScopeTrace::autoScale()
{
    Q_D(ScopeTrace);
    if (d->binaryView) {
        d->scalingFactor = 0.25;
        d->verticalOffset = 1.0;
    } else {
        // The range always holds zero, so that the zero line is on screen.
        double lowest = 0.0;
        double highest = 0.0;
        for (double sample : std::as_const(d->samples)) {
            if (sample < lowest)
                lowest = sample;
            if (sample > highest)
                highest = sample;
        }
        if (!std::isfinite(lowest))
            lowest = -std::numeric_limits<double>::max();
        if (!std::isfinite(highest))
            highest = std::numeric_limits<double>::max();
        const double span = std::max(highest - lowest, 1.0);
        const double factor = ScopeSeries::niceFactorAtMost(double(verticalUnits()) / span);
        d->scalingFactor = std::isfinite(factor) && factor > 0.0 ? factor : 1.0;
        d->verticalOffset = double(1 - qint64(std::round(std::clamp(d->scalingFactor * lowest, -1e15, 1e15))));
    }
    Q_EMIT d->updateRequired();
    Q_EMIT d->viewChanged();
}

void ScopeTrace::zoomIn()
{
    Q_D(ScopeTrace);
    zoomIn((d->viewRightTime - d->viewLeftTime) / 2 + d->viewLeftTime);
}

void ScopeTrace::zoomIn(qint64 time)
{
    Q_D(ScopeTrace);
    if (d->off)
        return;
    d->anchorTime = time;
    d->zoom(true);
}

void ScopeTrace::zoomOut()
{
    Q_D(ScopeTrace);
    zoomOut((d->viewRightTime - d->viewLeftTime) / 2 + d->viewLeftTime);
}

void ScopeTrace::zoomOut(qint64 time)
{
    Q_D(ScopeTrace);
    if (d->off)
        return;
    d->anchorTime = time;
    d->zoom(false);
}

QString ScopeTrace::valueText(double value, bool withUnit) const
{
    Q_D(const ScopeTrace);
    return d->valueText(value, withUnit);
}

bool ScopeTrace::readSection(KlIniParser::IniSection& section)
{
    Q_D(ScopeTrace);
    // The caller refreshes its views once the whole section is read.
    const QSignalBlocker blocker(d);

    if (section.contains("Name"))
        d->name = QString::fromLatin1(section.value("Name"));
    if (section.contains("Measure"))
        d->measure = QString::fromLatin1(section.value("Measure"));
    bool ok = false;
    if (section.contains("PhysicalDatatype")) {
        const uint value = section.value("PhysicalDatatype").toUInt(&ok);
        if (ok)
            d->physicalDatatype = quint8(value);
    }
    if (section.contains("DecimalPlaces")) {
        const uint value = section.value("DecimalPlaces").toUInt(&ok);
        if (ok)
            d->decimalPlaces = value;
    }
    if (section.contains("ParameterKind")) {
        const uint value = section.value("ParameterKind").toUInt(&ok);
        if (ok)
            d->parameterKind = value;
    }
    if (section.contains("ChoiceMap")) {
        d->choiceMap.clear();
        // Parsed in place from the stored value: no copy, no list of pieces.
        const QByteArrayView value = section.valueView("ChoiceMap");
        qsizetype begin = 0;
        while (begin <= value.size()) {
            qsizetype end = value.indexOf(',', begin);
            if (end < 0)
                end = value.size();
            const QByteArrayView item = value.sliced(begin, end - begin);
            begin = end + 1;
            if (item.isEmpty())
                continue;
            const qsizetype colon = item.indexOf(':');
            const QByteArrayView key = colon < 0 ? item : item.first(colon);
            const QByteArrayView text = colon < 0 ? QByteArrayView() : item.sliced(colon + 1);
            if (key.isEmpty())
                continue;
            const int number = key.trimmed().toInt(&ok, 10);
            if (ok)
                d->choiceMap.insert(number, QString::fromLatin1(text));
        }
    }

    autoScale();

    if (section.contains("ViewScalingFactor")) {
        const double value = section.value("ViewScalingFactor").toDouble(&ok);
        if (ok)
            d->applyScalingFactor(value);
    }
    if (section.contains("BinaryScalingFactorBackup")) {
        const double value = section.value("BinaryScalingFactorBackup").toDouble(&ok);
        if (ok)
            d->binaryScalingFactorBackup = value;
    }
    if (section.contains("ViewVerticalOffset") && !d->off) {
        const double value = section.value("ViewVerticalOffset").toDouble(&ok);
        if (ok)
            d->verticalOffset = value;
    }
    if (section.contains("ViewOff"))
        setOff(section.value("ViewOff").toInt() == 1, false);
    if (section.contains("ViewGround"))
        setGround(section.value("ViewGround").toInt() == 1, false);
    if (section.contains("ViewInverted"))
        setInverted(section.value("ViewInverted").toInt() == 1, false);
    if (section.contains("Color")) {
        const uint value = section.value("Color").toUInt(&ok);
        if (ok)
            d->color = QColor::fromRgba(value);
    }
    if (section.contains("BinaryView"))
        d->binaryView = section.value("BinaryView").toInt() == 1;
    if (section.contains("BinaryViewMask")) {
        const uint value = section.value("BinaryViewMask").toUInt(&ok);
        if (ok)
            setBinaryViewMask(value);
    }
    return true;
}

void ScopeTrace::writeSection(KlIniParser::IniSection& section) const
{
    Q_D(const ScopeTrace);
    const QByteArray one("1");
    const QByteArray zero("0");
    section.setValue("ViewScalingFactor", QByteArray::number(d->scalingFactor, 'g', 6));
    section.setValue("BinaryScalingFactorBackup", QByteArray::number(d->binaryScalingFactorBackup, 'g', 6));
    section.setValue("ViewVerticalOffset", QByteArray::number(d->verticalOffset, 'g', 6));
    section.setValue("ViewOff", d->off ? one : zero);
    section.setValue("ViewGround", d->ground ? one : zero);
    section.setValue("ViewInverted", d->inverted ? one : zero);
    section.setValue("Color", QByteArray::number(d->color.rgba()));
    section.setValue("BinaryView", d->binaryView ? one : zero);
    section.setValue("BinaryViewMask", QByteArray::number(d->binaryViewMask));
    section.setValue("ParameterKind", QByteArray::number(d->parameterKind));
}

void ScopeTrace::paint(const ScopeLayout* layout, QPainter* painter, qint64 leftTime, qint64 rightTime)
{
    Q_D(ScopeTrace);
    d->paint(layout, painter, leftTime, rightTime, ScopeTracePrivate::Drawing::Envelope);
}

void ScopeTrace::paintEverySample(const ScopeLayout* layout, QPainter* painter, qint64 leftTime,
                                  qint64 rightTime)
{
    Q_D(ScopeTrace);
    d->paint(layout, painter, leftTime, rightTime, ScopeTracePrivate::Drawing::EverySample);
}

int ScopeTrace::verticalUnits() const
{
    return 6;
}

int ScopeTrace::binaryLabelExtent() const
{
    Q_D(const ScopeTrace);
    return d->binaryView ? binaryLabelWidth : 0;
}

void ScopeTrace::publishQuickMeasureRequest(qint64 timeStamp)
{
    Q_D(ScopeTrace);
    const int k = d->sampleIndex(timeStamp);
    if (k >= 0 && k < d->samples.size())
        Q_EMIT d->quickMeasureValue(d->sampleTime(k), d->valueText(d->samples.at(k), true), true);
    else
        Q_EMIT d->quickMeasureValue(0, QString(), false);
}

void ScopeTrace::publishQuickMeasureDisabled()
{
    Q_D(ScopeTrace);
    Q_EMIT d->quickMeasureValue(0, QString(), false);
}

// ---------------------------------------------------------------------------
// Drawing

namespace {

// Maps sample indices and values to device pixels of one plot area. Every
// coordinate is snapped to the 1/64 pixel grid of the rasteriser, so that
// the column of a point computed here is the column the rasteriser lights.
struct PlotMapping
{
    double areaLeft = 0.0;
    double areaBottom = 0.0;
    // x of sample k is xOrigin + k × xStep; the index at device x is
    // indexOrigin + (x − areaLeft) × indexStep.
    double xOrigin = 0.0;
    double xStep = 0.0;
    double indexOrigin = 0.0;
    double indexStep = 0.0;
    double divisionHeight = 0.0;
    double valueScale = 0.0;
    double offset = 0.0;

    double x(qsizetype index) const
    {
        return snap(clampCoordinate(xOrigin + double(index) * xStep));
    }
    double yUnits(double units) const
    {
        return snap(clampCoordinate(areaBottom - units * divisionHeight));
    }
    double y(double value) const
    {
        return yUnits(value * valueScale + offset);
    }
    // The continuous sample index at device x.
    double index(double deviceX) const
    {
        return indexOrigin + (deviceX - areaLeft) * indexStep;
    }
    // Far beyond the device, coordinates only need to keep their direction;
    // clamping keeps the rasteriser's fixed-point arithmetic in range (and
    // turns NaN into a harmless coordinate).
    static double clampCoordinate(double coordinate)
    {
        return coordinate > -1.0e7 ? (coordinate < 1.0e7 ? coordinate : 1.0e7) : -1.0e7;
    }
};

} // namespace

QColor ScopeTracePrivate::drawingColor() const
{
    QColor c = color;
    c.setAlphaF(float(std::clamp(c.alphaF() * offAlphaFactor, 0.0, 1.0)));
    return c;
}

void ScopeTracePrivate::paint(const ScopeLayout* layout, QPainter* painter, qint64 left, qint64 right,
                              Drawing drawing)
{
    if (!layout || !painter)
        return;
    viewLeftTime = left;
    viewRightTime = right;
    if (samples.isEmpty())
        return;
    const int divisionHeight = layout->divisionSize().height();
    if (divisionHeight > 0)
        unitsPerPixel = 1.0 / divisionHeight;
    const QRect area = layout->plotArea();
    if (divisionHeight <= 0 || area.width() <= 0 || area.height() <= 0 || right <= left || timeBase == 0)
        return;
    const QColor c = drawingColor();
    if (c.alpha() == 0)
        return;

    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setClipRect(area, Qt::IntersectClip);
    painter->setPen(QPen(c, 0));
    painter->setBrush(Qt::NoBrush);
    if (binaryView) {
        paintBitRows(painter, area, divisionHeight, left, right, drawing);
        paintBitLabels(painter, layout, divisionHeight);
    } else {
        paintCurve(painter, area, divisionHeight, left, right, drawing);
    }
    paintOverlay(painter, area, divisionHeight);
    painter->restore();
}

static PlotMapping plotMapping(const QRect& area, int divisionHeight, qint64 left, qint64 right,
                               quint32 timeBase, qint32 triggerIndex)
{
    PlotMapping m;
    const double pixelsPerNanosecond = double(area.width()) / (double(right) - double(left));
    const double nanosecondsPerSample = double(timeBase) * 100.0;
    m.areaLeft = area.left();
    m.areaBottom = area.bottom();
    m.xStep = nanosecondsPerSample * pixelsPerNanosecond;
    m.xOrigin = area.left() - (double(triggerIndex) * nanosecondsPerSample + double(left)) * pixelsPerNanosecond;
    m.indexStep = 1.0 / m.xStep;
    m.indexOrigin = double(triggerIndex) + double(left) / nanosecondsPerSample;
    m.divisionHeight = divisionHeight;
    return m;
}

// First sample index whose x is not left of the device column boundary.
static qsizetype firstSampleAt(const PlotMapping& m, double boundary, qsizetype count)
{
    // x is snapped to 1/64 pixel, so samples up to half a step left of the
    // boundary already count as on it.
    const double estimate = m.index(boundary - 1.0 / 128.0);
    qsizetype k = 0;
    if (estimate >= double(count)) {
        k = count;
    } else if (estimate > 0.0) {
        k = qsizetype(estimate); // rounded up below, without a library call
        k += double(k) < estimate;
    }
    // The estimate is off by rounding only; the bound keeps absurd time
    // scales, where x no longer grows with k, from walking the samples.
    for (int steps = 0; steps < 64 && k > 0 && m.x(k - 1) >= boundary; ++steps)
        --k;
    for (int steps = 0; steps < 64 && k < count && m.x(k) < boundary; ++steps)
        ++k;
    return k;
}

void ScopeTracePrivate::paintCurve(QPainter* painter, const QRect& area, int divisionHeight, qint64 left,
                                   qint64 right, Drawing drawing)
{
    PlotMapping m = plotMapping(area, divisionHeight, left, right, timeBase, triggerIndex);
    m.valueScale = invertScalingFactor * groundScalingFactor * scalingFactor;
    m.offset = verticalOffset;
    const qsizetype count = samples.size();
    const double* data = samples.constData();
    const int width = area.width();

    // The samples just outside the area on either side join the curve to the edges.
    const qsizetype first = std::max<qsizetype>(firstSampleAt(m, area.left(), count) - 1, 0);
    const qsizetype end = std::min<qsizetype>(firstSampleAt(m, double(area.left()) + width, count) + 1, count);
    if (first >= end)
        return;

    QPolygonF& points = polyline;
    points.clear();
    auto flush = [&]() {
        if (points.size() == 1)
            painter->drawPoint(points.front());
        else if (points.size() > 1)
            painter->drawPolyline(points);
        points.clear();
    };

    const double samplesPerPixel = double(end - first) / double(width);
    if (drawing == Drawing::EverySample || samplesPerPixel < envelopeThreshold) {
        points.reserve(end - first);
        for (qsizetype k = first; k < end; ++k) {
            if (std::isfinite(data[k]))
                points.append(QPointF(m.x(k), m.y(data[k])));
            else
                flush();
        }
        flush();
        return;
    }

    // Per pixel column: the first sample, the column's extremes and the last
    // sample, so that the joins to the neighbours are the same lines that
    // joining every sample would give. The columns only depend on the
    // samples and the time range, so repaints of the same range (markers,
    // cursor, colours, vertical scale) reuse them.
    const qsizetype columnCount = width;
    ScopeTraceColumns& cache = columns;
    if (cache.generation != samplesGeneration || cache.left != left || cache.right != right
        || cache.areaLeft != area.left() || cache.width != width || cache.timeBase != timeBase
        || cache.triggerIndex != triggerIndex) {
        cache.generation = samplesGeneration;
        cache.left = left;
        cache.right = right;
        cache.areaLeft = area.left();
        cache.width = width;
        cache.timeBase = timeBase;
        cache.triggerIndex = triggerIndex;
        cache.columns.assign(size_t(columnCount), ScopeTraceColumn());
        qsizetype columnStart = firstSampleAt(m, area.left(), count);
        cache.before = columnStart - 1;
        // Column boundaries lie thousands of samples apart in a long
        // recording: fetch the samples and blocks around a boundary a few
        // columns ahead, so that memory latency does not set the pace.
        constexpr int prefetchDistance = 8;
        const double* blockLows = envelope.minimum.empty() ? nullptr : envelope.minimum.front().data();
        const double* blockHighs = envelope.maximum.empty() ? nullptr : envelope.maximum.front().data();
        const qsizetype blockCount = envelope.minimum.empty() ? 0 : qsizetype(envelope.minimum.front().size());
        for (qsizetype c = 0; c < columnCount; ++c) {
            const double ahead = m.index(double(area.left()) + double(c + prefetchDistance));
            if (ahead >= 0.0 && ahead < double(count)) {
                // The whole block around the boundary: its samples on both
                // sides are scanned one by one.
                const qsizetype k = qsizetype(ahead);
                const qsizetype blockStart = k - k % envelopeBlock;
                const qsizetype blockEnd = std::min(blockStart + envelopeBlock, count);
                for (qsizetype p = blockStart; p < blockEnd; p += 8)
                    __builtin_prefetch(data + p);
                if (k / envelopeBlock < blockCount) {
                    __builtin_prefetch(blockLows + k / envelopeBlock);
                    __builtin_prefetch(blockHighs + k / envelopeBlock);
                }
            }
            const qsizetype columnEnd = firstSampleAt(m, double(area.left()) + double(c) + 1.0, count);
            if (columnEnd > columnStart) {
                ScopeTraceColumn& column = cache.columns[size_t(c)];
                column.hasRange = envelope.range(samples, columnStart, columnEnd, &column.lowest, &column.highest);
                column.first = columnStart;
                column.last = columnEnd - 1;
                column.firstValue = data[columnStart];
                column.lastValue = data[columnEnd - 1];
                column.xFirst = m.x(columnStart);
                column.xLast = m.x(columnEnd - 1);
                columnStart = columnEnd;
            }
        }
        cache.after = columnStart;
    }

    points.reserve(4 * columnCount + 2);
    if (cache.before >= 0 && std::isfinite(data[cache.before]))
        points.append(QPointF(m.x(cache.before), m.y(data[cache.before])));
    for (const ScopeTraceColumn& column : cache.columns) {
        if (column.first < 0)
            continue;
        if (!column.hasRange) {
            flush();
            continue;
        }
        const double x = column.xFirst;
        const bool firstFinite = std::isfinite(column.firstValue);
        const bool lastFinite = std::isfinite(column.lastValue);
        const double firstY = firstFinite ? m.y(column.firstValue) : 0.0;
        double near = m.y(column.lowest);
        double far = m.y(column.highest);
        const double lastY = lastFinite ? m.y(column.lastValue) : far;
        // A column that runs from one end of its span to the other (within
        // less than half a row) is the steep line from its first to its last
        // sample: it lights the rows of this column only, as the samples
        // between do, and takes the same path across the column.
        if (firstFinite && lastFinite) {
            const double from = std::min(firstY, lastY);
            const double to = std::max(firstY, lastY);
            if (to - from >= 1.0 && from - std::min(near, far) < 0.5 && std::max(near, far) - to < 0.5) {
                points.append(QPointF(x, firstY));
                points.append(QPointF(column.xLast, lastY));
                continue;
            }
        }
        if (firstFinite)
            points.append(QPointF(x, firstY));
        else
            flush();
        // Down the column's span and on to the last sample from the extreme
        // farther from it, so that this last piece stays steep and, like the
        // lines between dense samples, lights this column only.
        if (std::fabs(near - lastY) > std::fabs(far - lastY))
            std::swap(near, far);
        if (!firstFinite || near != firstY)
            points.append(QPointF(x, near));
        points.append(QPointF(x, far));
        if (lastFinite)
            points.append(QPointF(column.xLast, lastY));
        else
            flush();
    }
    if (cache.after < count && std::isfinite(data[cache.after]))
        points.append(QPointF(m.x(cache.after), m.y(data[cache.after])));
    flush();
}

void ScopeTracePrivate::paintBitRows(QPainter* painter, const QRect& area, int divisionHeight, qint64 left,
                                     qint64 right, Drawing drawing)
{
    if (binaryBits.isEmpty())
        return;
    PlotMapping m = plotMapping(area, divisionHeight, left, right, timeBase, triggerIndex);
    const qsizetype count = samples.size();
    const double* data = samples.constData();
    const int width = area.width();
    const double levelScale = invertScalingFactor * groundScalingFactor * scalingFactor;
    const double pitch = bitRowPitch * scalingFactor;

    const qsizetype first = std::max<qsizetype>(firstSampleAt(m, area.left(), count) - 1, 0);
    const qsizetype end = std::min<qsizetype>(firstSampleAt(m, double(area.left()) + width, count) + 1, count);
    if (first >= end)
        return;

    const int rows = int(binaryBits.size());
    std::vector<double> lowY(size_t(rows), 0.0);
    std::vector<double> highY(size_t(rows), 0.0);
    for (int i = 0; i < rows; ++i) {
        const double base = verticalOffset + i * pitch;
        lowY[size_t(i)] = m.yUnits(base);
        highY[size_t(i)] = m.yUnits(base + levelScale);
    }

    const double samplesPerPixel = double(end - first) / double(width);
    if (drawing == Drawing::EverySample || samplesPerPixel < envelopeThreshold) {
        // Steps: a bit holds its level until the next sample.
        QPolygonF& points = polyline;
        for (int i = 0; i < rows; ++i) {
            const int bit = quint8(binaryBits.at(i));
            points.clear();
            points.reserve(2 * (end - first));
            auto flush = [&]() {
                if (points.size() == 1)
                    painter->drawPoint(points.front());
                else if (points.size() > 1)
                    painter->drawPolyline(points);
                points.clear();
            };
            double lastY = 0.0;
            for (qsizetype k = first; k < end; ++k) {
                if (!std::isfinite(data[k])) {
                    flush();
                    continue;
                }
                const double y = (toUInt64(data[k]) >> bit) & 1u ? highY[size_t(i)] : lowY[size_t(i)];
                const double x = m.x(k);
                if (!points.isEmpty())
                    points.append(QPointF(x, lastY));
                points.append(QPointF(x, y));
                lastY = y;
            }
            flush();
        }
        return;
    }

    if (!bitEnvelope.valid)
        bitEnvelope.build(samples);
    // Per pixel column the levels that the bit holds there: a vertical line
    // where it changes, a point where it stays.
    QVector<QLineF>& lines = bitLines;
    lines.clear();
    lines.reserve(qsizetype(width) * rows);
    qsizetype columnStart = firstSampleAt(m, area.left(), count);
    for (int c = 0; c < width; ++c) {
        const qsizetype columnEnd = firstSampleAt(m, double(area.left()) + c + 1, count);
        if (columnEnd > columnStart) {
            quint64 ones = 0;
            quint64 all = 0;
            // The level held from the previous sample reaches into this column.
            bitEnvelope.range(samples, std::max<qsizetype>(columnStart - 1, 0), columnEnd, &ones, &all);
            const double x = m.x(columnStart);
            const double centre = area.left() + c + 0.5;
            for (int i = 0; i < rows; ++i) {
                const int bit = quint8(binaryBits.at(i));
                const bool one = (ones >> bit) & 1u;
                const bool zero = !((all >> bit) & 1u);
                // A level held across the column is a piece of horizontal
                // line through the column's centre, as the steps draw it.
                if (one && zero)
                    lines.append(QLineF(x, lowY[size_t(i)], x, highY[size_t(i)]));
                else if (one)
                    lines.append(QLineF(centre - 0.25, highY[size_t(i)], centre + 0.25, highY[size_t(i)]));
                else if (zero)
                    lines.append(QLineF(centre - 0.25, lowY[size_t(i)], centre + 0.25, lowY[size_t(i)]));
            }
            columnStart = columnEnd;
        }
    }
    painter->drawLines(lines);
}

void ScopeTracePrivate::paintBitLabels(QPainter* painter, const ScopeLayout* layout, int divisionHeight)
{
    if (binaryBits.isEmpty())
        return;
    const QRect area = layout->plotArea();
    const QRect column = layout->leftColumn();
    // Labels go into the left column when the plot made room for them,
    // otherwise along the left edge of the grid.
    const bool inColumn = column.width() >= binaryLabelWidth;
    const QRect target = inColumn ? column : area;
    painter->save();
    painter->setClipRect(target);
    QFont font = painter->font();
    font.setPixelSize(9);
    painter->setFont(font);
    const double pitch = bitRowPitch * scalingFactor;
    for (int i = 0; i < binaryBits.size(); ++i) {
        const double base = verticalOffset + i * pitch;
        const double centre = area.bottom() - (base + 0.5 * scalingFactor) * divisionHeight;
        const QRectF box(inColumn ? column.left() : area.left() + 6, centre - 6,
                         inColumn ? column.width() - 2 : binaryLabelWidth, 12);
        if (box.bottom() < target.top() || box.top() > target.bottom())
            continue;
        painter->drawText(box, (inColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter,
                          QString::number(quint8(binaryBits.at(i))));
    }
    painter->restore();
}

void ScopeTracePrivate::paintOverlay(QPainter* painter, const QRect& area, int divisionHeight)
{
    // A small arrow at the left edge marks the trace's zero line; it stays
    // on the edge when the zero line is scrolled out of sight.
    const double zero = std::clamp(double(area.bottom()) - verticalOffset * divisionHeight,
                                   double(area.top()), double(area.bottom()));
    const int y = int(std::floor(zero));
    const QPoint arrow[3] = {QPoint(area.left(), y - 3), QPoint(area.left() + 3, y), QPoint(area.left(), y + 3)};
    painter->setBrush(painter->pen().color());
    painter->drawPolygon(arrow, 3);
}
