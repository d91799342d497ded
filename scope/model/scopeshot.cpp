// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeshot.h"
#include "scopeshot_p.h"

#include "iniparser.h"
#include "scopearchivekeys.h"
#include "scopenumbers.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"

#include <QtCore/QMetaObject>
#include <QtCore/QVector>
#include <QtGui/QPainter>

#include <algorithm>
#include <charconv>
#include <cstring>
#include <limits>
#include <vector>

namespace {

using namespace ScopeArchiveKeys;

// The number after \a prefix when \a text is exactly prefix + decimal digits.
bool indexAfterPrefix(QByteArrayView text, QByteArrayView prefix, quint64* index)
{
    if (text.size() <= prefix.size() || !text.startsWith(prefix))
        return false;
    const char* begin = text.data() + prefix.size();
    const char* end = text.data() + text.size();
    // Decimal without leading zeros, as the keys are written.
    if (*begin < '0' || *begin > '9' || (*begin == '0' && end - begin > 1))
        return false;
    const auto [ptr, ec] = std::from_chars(begin, end, *index, 10);
    return ec == std::errc() && ptr == end;
}

struct UsedChannel
{
    quint32 number;
    KlIniParser::IniSection* section;
};

// Channels below \a channelCount that get a trace, ascending. A claimed count
// far above the document's size is answered from the section list instead
// of looking up every index.
std::vector<UsedChannel> usedChannels(ScopeShotArchive* archive, quint64 channelCount)
{
    std::vector<UsedChannel> result;
    auto take = [&](quint32 number) {
        KlIniParser::IniSection* section = archive->channelSection(number);
        if (section && ScopeNumbers::toULongLong(section->valueView(SourceType)) != 0)
            result.push_back({number, section});
    };
    const KlIniParser::IniParser* parser = archive->iniParser();
    if (parser && channelCount > quint64(parser->sectionCount())) {
        std::vector<quint32> numbers;
        const QList<QByteArray> names = parser->sectionNames();
        for (const QByteArray& name : names) {
            quint64 number = 0;
            if (indexAfterPrefix(name, ChannelSectionPrefix, &number) && number < channelCount)
                numbers.push_back(quint32(number));
        }
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
        for (quint32 number : numbers)
            take(number);
    } else {
        const quint64 count = std::min<quint64>(channelCount, std::numeric_limits<quint32>::max());
        for (quint64 number = 0; number < count; ++number)
            take(quint32(number));
    }
    return result;
}

// Stores the fields of one data row that belong to used channels. Field 0
// is not a sample; field c + 1 is channel c. Missing fields stay 0. Returns
// how many of the used channels the row reached.
size_t parseRow(QByteArrayView row, qsizetype frame, const std::vector<UsedChannel>& channels,
                std::vector<double*>& columns)
{
    const char* pos = row.data();
    const char* const end = pos + row.size();
    if (!pos)
        return 0;
    // Skip field 0.
    const char* sep = static_cast<const char*>(std::memchr(pos, ';', size_t(end - pos)));
    if (!sep)
        return 0;
    pos = sep + 1;
    quint64 field = 0; // channel number of the field at pos
    for (size_t slot = 0; slot < channels.size(); ++slot) {
        const quint64 wanted = channels[slot].number;
        while (field < wanted) {
            sep = static_cast<const char*>(std::memchr(pos, ';', size_t(end - pos)));
            if (!sep)
                return slot;
            pos = sep + 1;
            ++field;
        }
        sep = ScopeNumbers::readField(pos, end, ';', &columns[slot][frame]);
        if (sep == end)
            return slot + 1;
        pos = sep + 1;
        ++field;
    }
    return channels.size();
}

} // namespace

ScopeShotPrivate::ScopeShotPrivate(ScopeShot* q)
    : QObject(q)
    , q_ptr(q)
{
}

bool ScopeShotPrivate::readTraces(bool reuse)
{
    Q_Q(ScopeShot);
    if (!archive)
        return false;
    KlIniParser::IniSection* shotSection = archive->shotSection();
    KlIniParser::IniSection* dataSection = archive->dataSection();
    if (!shotSection || !dataSection)
        return false;

    const double period = ScopeNumbers::toDouble(shotSection->valueView(TimeBase)) * 10.0;
    timeBase = (period >= 1.0 && period <= double(std::numeric_limits<qint32>::max())) ? qint32(period) : 0;
    const quint64 channelCount = ScopeNumbers::toULongLong(dataSection->valueView(ChannelCount));
    const quint64 triggerIndex = ScopeNumbers::toULongLong(dataSection->valueView(TriggerIndex));
    const quint64 frameCount = ScopeNumbers::toULongLong(dataSection->valueView(FrameCount));
    if (timeBase == 0 || channelCount == 0)
        return false;

    const std::vector<UsedChannel> channels = usedChannels(archive, channelCount);

    // The frames reach up to the highest row present; rows that are missing
    // below it keep their zeros. Unless the claimed size (frames x channels)
    // is modest, the samples are also bounded by the bytes of the rows, since
    // every real sample takes at least two bytes of text: absurd frame or
    // channel counts never allocate much.
    constexpr quint64 ModestSampleCount = quint64(1) << 20;
    const bool modestClaim = channelCount <= ModestSampleCount && frameCount <= ModestSampleCount / channelCount;
    quint64 frames = 0;
    quint64 rowBytes = 0;
    bool hasRows = false;
    const qsizetype keyCount = dataSection->count();
    for (qsizetype i = 0; i < keyCount; ++i) {
        quint64 frame = 0;
        if (!indexAfterPrefix(dataSection->keyAt(i), DataRowPrefix, &frame) || frame >= frameCount)
            continue;
        hasRows = true;
        frames = std::max(frames, frame + 1);
        rowBytes += quint64(dataSection->valueAt(i).size());
    }
    if (!channels.empty() && !modestClaim)
        frames = std::min<quint64>(frames, rowBytes / 2 / channels.size());
    frames = std::min<quint64>(frames, quint64(std::numeric_limits<int>::max()));

    std::vector<QVector<double>> samples(channels.size());
    std::vector<double*> columns(channels.size());
    for (size_t slot = 0; slot < channels.size(); ++slot) {
        samples[slot] = QVector<double>(qsizetype(frames), 0.0);
        columns[slot] = samples[slot].data();
    }
    // Channels that no row reaches hold no data: when there are rows, only
    // the channels they reach get a trace, so that thousands of channel
    // sections over empty rows do not make thousands of traces.
    size_t reached = hasRows ? 0 : channels.size();
    if (!channels.empty() && frames > 0) {
        for (qsizetype i = 0; i < keyCount; ++i) {
            quint64 frame = 0;
            if (!indexAfterPrefix(dataSection->keyAt(i), DataRowPrefix, &frame) || frame >= frames)
                continue;
            reached = std::max(reached, parseRow(dataSection->valueAt(i), qsizetype(frame), channels, columns));
        }
    }

    const int trigger = int(std::min<quint64>(triggerIndex, quint64(std::numeric_limits<int>::max())));
    for (size_t slot = 0; slot < reached; ++slot) {
        const int number = int(channels[slot].number);
        QSharedPointer<ScopeTrace> trace = reuse ? traceMap.value(number) : QSharedPointer<ScopeTrace>();
        const bool isNew = trace.isNull();
        if (isNew)
            trace = makeTrace(number);
        trace->setTimeBase(unsigned(timeBase));
        trace->setTriggerIndex(trigger);
        trace->setSamples(samples[slot]);
        samples[slot] = QVector<double>(); // the trace holds the only copy now
        trace->readSection(*channels[slot].section);
        if (isNew) {
            connect(trace.data(), &ScopeTrace::viewChanged, this, &ScopeShotPrivate::traceViewChanged);
            addTrace(number, trace);
        }
    }
    return true;
}

QSharedPointer<ScopeTrace> ScopeShotPrivate::makeTrace(int number)
{
    Q_Q(ScopeShot);
    return QSharedPointer<ScopeTrace>(new ScopeTrace(q, unsigned(number)), [this](ScopeTrace* trace) {
        if (!destroying)
            delete trace;
    });
}

void ScopeShotPrivate::dropTrace(ScopeTrace* trace)
{
    Q_Q(ScopeShot);
    disconnect(trace, nullptr, q, nullptr);
    disconnect(q, nullptr, trace, nullptr);
    disconnect(trace, nullptr, this, nullptr);
    disconnect(this, nullptr, trace, nullptr);
}

void ScopeShotPrivate::addTrace(int number, const QSharedPointer<ScopeTrace>& trace)
{
    Q_Q(ScopeShot);
    const auto old = traceMap.constFind(number);
    if (old != traceMap.constEnd()) {
        if (old.value() == trace)
            return;
        dropTrace(old.value().data());
    }
    traceMap.insert(number, trace);
    // A new trace has no connections yet: plain connections, since a unique
    // one would scan every connection of the shot (quadratic in traces).
    connect(trace.data(), &ScopeTrace::changed, q, &ScopeShot::changed);
    connect(this, &ScopeShotPrivate::publishQuickMeasureRequest, trace.data(),
            &ScopeTrace::publishQuickMeasureRequest);
    connect(this, &ScopeShotPrivate::publishQuickMeasureDisabled, trace.data(),
            &ScopeTrace::publishQuickMeasureDisabled);
}

void ScopeShotPrivate::traceViewChanged()
{
    // Many view changes in one pass of the event loop still reach everyone.
    QMetaObject::invokeMethod(q_ptr, "changed", Qt::QueuedConnection);
}

void ScopeShotPrivate::onScopeElementsChanged()
{
    readTraces(true);
    QMetaObject::invokeMethod(q_ptr, "changed", Qt::QueuedConnection);
}

ScopeShot::ScopeShot(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeShotPrivate(this))
{
    Q_D(ScopeShot);
    connect(this, &ScopeShot::publishQuickMeasureRequest, d, &ScopeShotPrivate::publishQuickMeasureRequest);
    connect(this, &ScopeShot::publishQuickMeasureDisabled, d, &ScopeShotPrivate::publishQuickMeasureDisabled);
}

ScopeShot::~ScopeShot()
{
    Q_D(ScopeShot);
    // Removing thousands of children one by one from the shot costs time
    // quadratic in their number; the object tree deletes them in one pass.
    d->destroying = true;
    d->traceMap.clear();
}

void ScopeShot::setArchive(ScopeShotArchive* archive)
{
    Q_D(ScopeShot);
    if (d->archive) {
        disconnect(d->archive, nullptr, d, nullptr);
        disconnect(d->archive, &ScopeElementArchive::scopeElementChanged, this, &ScopeShot::needUpdateControls);
        disconnect(this, &ScopeShot::changed, d->archive, &ScopeElementArchive::scopeElementChanged);
    }
    d->archive = archive;
    if (!archive)
        return;
    connect(archive, &ScopeElementArchive::scopeElementsChanged, d, &ScopeShotPrivate::onScopeElementsChanged,
            Qt::UniqueConnection);
    connect(archive, &ScopeElementArchive::scopeElementChanged, this, &ScopeShot::needUpdateControls,
            Qt::UniqueConnection);
}

ScopeShotArchive* ScopeShot::archive() const
{
    Q_D(const ScopeShot);
    return d->archive;
}

void ScopeShot::setReadOutSource(void* readOutSource)
{
    Q_D(ScopeShot);
    d->readOutSource = readOutSource;
}

void* ScopeShot::readOutSource() const
{
    Q_D(const ScopeShot);
    return d->readOutSource;
}

bool ScopeShot::load()
{
    Q_D(ScopeShot);
    const bool loaded = d->readTraces(false);
    if (d->archive)
        connect(this, &ScopeShot::changed, d->archive, &ScopeElementArchive::scopeElementChanged,
                Qt::UniqueConnection);
    return loaded;
}

void ScopeShot::saveTraceViews()
{
    Q_D(ScopeShot);
    if (!d->archive)
        return;
    for (auto it = d->traceMap.cbegin(); it != d->traceMap.cend(); ++it) {
        KlIniParser::IniSection* section = d->archive->channelSection(quint32(it.key()));
        if (section && it.value())
            it.value()->writeSection(*section);
    }
}

QString ScopeShot::name() const
{
    Q_D(const ScopeShot);
    return d->archive ? d->archive->name() : QString();
}

int ScopeShot::timeBase() const
{
    Q_D(const ScopeShot);
    return d->timeBase;
}

ScopeTrace* ScopeShot::trace(int number) const
{
    Q_D(const ScopeShot);
    return d->traceMap.value(number).data();
}

QList<int> ScopeShot::channelNumbers() const
{
    Q_D(const ScopeShot);
    return d->traceMap.keys();
}

qint64 ScopeShot::startTime() const
{
    Q_D(const ScopeShot);
    qint64 start = 0;
    for (const auto& trace : d->traceMap)
        start = std::min(start, trace->startTime());
    return start;
}

qint64 ScopeShot::endTime() const
{
    Q_D(const ScopeShot);
    qint64 end = 0;
    for (const auto& trace : d->traceMap)
        end = std::max(end, trace->endTime());
    return end;
}

void ScopeShot::paint(const ScopeLayout* layout, QPainter* painter, const QList<ScopeTrace*>& traces,
                      qint64 leftTime, qint64 rightTime) const
{
    if (!layout || !painter)
        return;
    painter->save();
    for (ScopeTrace* trace : traces) {
        if (trace && trace->shot() == this)
            trace->paint(layout, painter, leftTime, rightTime);
    }
    painter->restore();
}
