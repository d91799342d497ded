// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "iniparser_p.h"

#include <QtCore/QHashFunctions>

#include <algorithm>
#include <limits>

namespace KlIniParser {

namespace {

constexpr char ByteOrderMark[] = "\xEF\xBB\xBF";
constexpr qsizetype ByteOrderMarkLength = 3;
// Entries keep 32-bit lengths; longer keys or values (4 GiB on one line) are dropped.
constexpr qsizetype MaximumLength = std::numeric_limits<quint32>::max() - 1;

inline bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

inline QByteArrayView trimmed(const char* begin, const char* end)
{
    while (begin < end && isBlank(*begin))
        ++begin;
    while (end > begin && isBlank(end[-1]))
        --end;
    return QByteArrayView(begin, end - begin);
}

inline QByteArrayView trimmed(QByteArrayView bytes)
{
    return trimmed(bytes.data(), bytes.data() + bytes.size());
}

/* Names, keys and values given by a caller are brought into the form a parse
   of the written text gives back: what would end the line (LF, and the CRs
   right before it) becomes a blank and surrounding blanks go. A lone CR
   inside does not end a line and stays. Only copies into buffer when a line
   break has to be replaced. */
QByteArrayView normalized(QByteArrayView bytes, QByteArray& buffer)
{
    bytes = trimmed(bytes);
    const char* data = bytes.data();
    const qsizetype size = bytes.size();
    if (size == 0 || !std::memchr(data, '\n', size_t(size)))
        return bytes;
    buffer = bytes.toByteArray();
    char* const first = buffer.data();
    for (char* c = first + buffer.size(); c-- > first;) {
        if (*c != '\n')
            continue;
        *c = ' ';
        while (c > first && c[-1] == '\r')
            *--c = ' ';
    }
    return trimmed(QByteArrayView(buffer));
}

/* A key must survive being written as "key=value" and parsed again: it is not
   empty, holds no "=", and does not start like a comment or a section line. */
bool isWritableKey(QByteArrayView key)
{
    return !key.isEmpty() && key.size() <= MaximumLength && key.front() != ';' && key.front() != '['
        && !std::memchr(key.data(), '=', key.size());
}

} // namespace

// ---------------------------------------------------------------------------
// IniSectionPrivate

qsizetype IniSectionPrivate::indexOf(QByteArrayView key, quint32 hash) const
{
    if (index.isEmpty()) {
        for (size_t i = 0, n = entries.size(); i < n; ++i) {
            const IniEntry& entry = entries[i];
            if (!entry.isRemoved() && entry.keyView() == key)
                return qsizetype(i);
        }
        return -1;
    }
    return index.find(hash, [&](quint32 position) {
        const IniEntry& entry = entries[position];
        return !entry.isRemoved() && entry.keyView() == key;
    });
}

void IniSectionPrivate::appendParsed(const char* key, quint32 keyLength, quint32 hash,
                                     const char* value, quint32 valueLength)
{
    IniEntry entry;
    entry.key = key;
    entry.keyLength = keyLength;
    entry.value = value;
    entry.valueLength = valueLength;
    entries.push_back(entry);
    const size_t position = entries.size() - 1;
    if (!index.isEmpty())
        index.insert(hash, quint32(position));
    else if (entries.size() > LinearSearchLimit)
        buildIndex();
}

void IniSectionPrivate::addParsed(QByteArrayView key, QByteArrayView value)
{
    const quint32 hash = IniParserPrivate::hashOf(key);
    qsizetype position;
    if (index.isEmpty()) {
        position = indexOf(key, hash);
        if (position < 0) {
            appendParsed(key.data(), quint32(key.size()), hash, value.data(), quint32(value.size()));
            return;
        }
    } else {
        // One probe finds a repeated key or reserves the slot of a new one.
        position = index.findOrInsert(hash, quint32(entries.size()), [&](quint32 candidate) {
            const IniEntry& entry = entries[candidate];
            return !entry.isRemoved() && entry.keyView() == key;
        });
        if (position < 0) {
            IniEntry entry;
            entry.key = key.data();
            entry.keyLength = quint32(key.size());
            entry.value = value.data();
            entry.valueLength = quint32(value.size());
            entries.push_back(entry);
            return;
        }
    }
    // A repeated key keeps its place and takes the last value.
    IniEntry& entry = entries[size_t(position)];
    entry.value = value.data();
    entry.valueLength = quint32(value.size());
}

void IniSectionPrivate::buildIndex() const
{
    index.clear();
    index.reserve(entries.size());
    for (size_t i = 0; i < entries.size(); ++i) {
        if (!entries[i].isRemoved())
            index.insert(IniParserPrivate::hashOf(entries[i].keyView()), quint32(i));
    }
}

qint32 IniSectionPrivate::takeStorage()
{
    if (!freeStorage.empty()) {
        const qint32 slot = freeStorage.back();
        freeStorage.pop_back();
        return slot;
    }
    storage.emplace_back();
    return qint32(storage.size() - 1);
}

void IniSectionPrivate::setValue(QByteArrayView key, quint32 hash, QByteArrayView value)
{
    const qsizetype position = indexOf(key, hash);
    if (position >= 0) {
        IniEntry& entry = entries[size_t(position)];
        if (entry.valueView() == value)
            return;
        // Copy first: value may be a view of the bytes it replaces.
        QByteArray copy = value.toByteArray();
        qint32 slot = ownedSlots.value(entry.key, -1);
        if (slot < 0) {
            slot = takeStorage(); // the key stays a slice of the text
            ownedSlots.insert(entry.key, slot);
        }
        OwnedBytes& owned = storage[size_t(slot)];
        owned.value = std::move(copy);
        entry.value = owned.value.constData();
        entry.valueLength = quint32(owned.value.size());
        return;
    }
    OwnedBytes bytes{key.toByteArray(), value.toByteArray()};
    const qint32 slot = takeStorage();
    OwnedBytes& owned = storage[size_t(slot)];
    owned = std::move(bytes);
    appendParsed(owned.key.constData(), quint32(owned.key.size()), hash, owned.value.constData(),
                 quint32(owned.value.size()));
    ownedSlots.insert(entries.back().key, slot);
}

bool IniSectionPrivate::remove(QByteArrayView key, quint32 hash)
{
    const qsizetype position = indexOf(key, hash);
    if (position < 0)
        return false;
    IniEntry& entry = entries[size_t(position)];
    const auto owned = ownedSlots.constFind(entry.key);
    if (owned != ownedSlots.constEnd()) {
        storage[size_t(owned.value())] = OwnedBytes();
        freeStorage.push_back(owned.value());
        ownedSlots.erase(owned);
    }
    entry = IniEntry();
    ++removedCount;
    // Removed entries are swept out once they outnumber the live ones, which
    // keeps removal amortised constant and the memory bounded.
    if (removedCount > liveCount() + qsizetype(LinearSearchLimit))
        compact();
    return true;
}

void IniSectionPrivate::compact() const
{
    if (removedCount == 0)
        return;
    entries.erase(std::remove_if(entries.begin(), entries.end(),
                                 [](const IniEntry& entry) { return entry.isRemoved(); }),
                  entries.end());
    removedCount = 0;
    index.clear();
    if (entries.size() > LinearSearchLimit)
        buildIndex();
}

// ---------------------------------------------------------------------------
// IniSection

IniSection::IniSection(IniParserPrivate* parser, QByteArrayView name)
    : d(std::make_unique<IniSectionPrivate>(parser, name, IniParserPrivate::hashOf(name)))
{
}

IniSection::~IniSection() = default;

QByteArray IniSection::name() const
{
    return d->name;
}

bool IniSection::contains(QByteArrayView key) const
{
    key = trimmed(key);
    return d->indexOf(key, IniParserPrivate::hashOf(key)) >= 0;
}

QByteArray IniSection::value(QByteArrayView key) const
{
    return valueView(key).toByteArray();
}

QByteArrayView IniSection::valueView(QByteArrayView key) const
{
    key = trimmed(key);
    const qsizetype position = d->indexOf(key, IniParserPrivate::hashOf(key));
    if (position < 0)
        return QByteArrayView();
    return d->entries[size_t(position)].valueView();
}

void IniSection::setValue(QByteArrayView key, QByteArrayView value)
{
    QByteArray keyBuffer;
    QByteArray valueBuffer;
    key = normalized(key, keyBuffer);
    if (!isWritableKey(key))
        return;
    value = normalized(value, valueBuffer);
    if (value.size() > MaximumLength)
        return;
    d->setValue(key, IniParserPrivate::hashOf(key), value);
}

bool IniSection::remove(QByteArrayView key)
{
    key = trimmed(key);
    return d->remove(key, IniParserPrivate::hashOf(key));
}

QList<QByteArray> IniSection::keys() const
{
    QList<QByteArray> result;
    result.reserve(d->liveCount());
    for (const IniEntry& entry : d->entries) {
        if (!entry.isRemoved())
            result.append(entry.keyView().toByteArray());
    }
    return result;
}

qsizetype IniSection::count() const
{
    return d->liveCount();
}

QByteArrayView IniSection::keyAt(qsizetype index) const
{
    d->compact();
    if (index < 0 || index >= qsizetype(d->entries.size()))
        return QByteArrayView();
    return d->entries[size_t(index)].keyView();
}

QByteArrayView IniSection::valueAt(qsizetype index) const
{
    d->compact();
    if (index < 0 || index >= qsizetype(d->entries.size()))
        return QByteArrayView();
    return d->entries[size_t(index)].valueView();
}

// ---------------------------------------------------------------------------
// IniParserPrivate

quint32 IniParserPrivate::hashOf(QByteArrayView bytes)
{
    // Seeded, so that crafted documents cannot force collisions.
    const size_t hash = qHash(bytes, QHashSeed::globalSeed());
    return quint32(hash ^ (quint64(hash) >> 32));
}

void IniParserPrivate::clear()
{
    sections.clear();
    sections.shrink_to_fit();
    index.clear();
    removedCount = 0;
    text.clear();
}

qsizetype IniParserPrivate::indexOf(QByteArrayView name, quint32 hash) const
{
    return index.find(hash, [&](quint32 position) {
        const IniSection* section = sections[position].get();
        return section && QByteArrayView(section->d->name) == name;
    });
}

IniSection* IniParserPrivate::create(QByteArrayView name, quint32 hash)
{
    sections.emplace_back(new IniSection(this, name));
    index.insert(hash, quint32(sections.size() - 1));
    return sections.back().get();
}

void IniParserPrivate::compact()
{
    sections.erase(std::remove(sections.begin(), sections.end(), nullptr), sections.end());
    removedCount = 0;
    index.clear();
    index.reserve(sections.size());
    for (size_t i = 0; i < sections.size(); ++i)
        index.insert(sections[i]->d->nameHash, quint32(i));
}

void IniParserPrivate::parse()
{
    const char* p = text.constData();
    const char* const end = p + text.size();
    if (text.startsWith(QByteArrayView(ByteOrderMark, ByteOrderMarkLength)))
        p += ByteOrderMarkLength;

    // null before the first section and after a broken section line: keys
    // there belong to no section and are dropped.
    IniSectionPrivate* current = nullptr;
    while (p < end) {
        const char* lineEnd = static_cast<const char*>(std::memchr(p, '\n', size_t(end - p)));
        if (!lineEnd)
            lineEnd = end;
        const char* begin = p;
        const char* last = lineEnd;
        p = lineEnd == end ? end : lineEnd + 1;

        while (begin < last && isBlank(*begin))
            ++begin;
        while (last > begin && isBlank(last[-1]))
            --last;
        if (begin == last || *begin == ';')
            continue;

        if (*begin == '[') {
            current = nullptr;
            // Whatever follows the last "]" ("[Name] ; note") is not part of the name.
            const char* close = last;
            while (close > begin + 1 && close[-1] != ']')
                --close;
            if (close > begin + 1) {
                --close;
                const QByteArrayView name = trimmed(begin + 1, close);
                const quint32 hash = hashOf(name);
                const qsizetype position = indexOf(name, hash);
                IniSection* section = position >= 0 ? sections[size_t(position)].get() : create(name, hash);
                current = section->d.get();
            }
            continue;
        }
        if (!current)
            continue;

        const char* equals = static_cast<const char*>(std::memchr(begin, '=', size_t(last - begin)));
        if (!equals)
            continue;
        const QByteArrayView key = trimmed(begin, equals);
        if (key.isEmpty())
            continue;
        const QByteArrayView value = trimmed(equals + 1, last);
        if (key.size() > MaximumLength || value.size() > MaximumLength)
            continue;
        current->addParsed(key, value);
    }
}

QByteArray IniParserPrivate::write(bool byteOrderMark) const
{
    // Measure first, then fill one buffer: writing stays linear in the output.
    qsizetype size = byteOrderMark ? ByteOrderMarkLength : 0;
    bool first = true;
    for (const auto& section : sections) {
        if (!section)
            continue;
        size += (first ? 0 : 2) + section->d->name.size() + 4;
        first = false;
        for (const IniEntry& entry : section->d->entries) {
            if (!entry.isRemoved())
                size += qsizetype(entry.keyLength) + qsizetype(entry.valueLength) + 3;
        }
    }

    QByteArray result(size, Qt::Uninitialized);
    char* out = result.data();
    auto put = [&out](const char* data, size_t length) {
        if (length) {
            std::memcpy(out, data, length);
            out += length;
        }
    };
    if (byteOrderMark)
        put(ByteOrderMark, ByteOrderMarkLength);
    first = true;
    for (const auto& section : sections) {
        if (!section)
            continue;
        if (!first)
            put("\r\n", 2);
        first = false;
        put("[", 1);
        put(section->d->name.constData(), size_t(section->d->name.size()));
        put("]\r\n", 3);
        for (const IniEntry& entry : section->d->entries) {
            if (entry.isRemoved())
                continue;
            put(entry.key, entry.keyLength);
            put("=", 1);
            put(entry.value, entry.valueLength);
            put("\r\n", 2);
        }
    }
    Q_ASSERT(out == result.constData() + result.size());
    return result;
}

// ---------------------------------------------------------------------------
// IniParser

IniParser::IniParser()
    : d(std::make_unique<IniParserPrivate>())
{
}

IniParser::~IniParser() = default;

void IniParser::setIniText(const QByteArray& text)
{
    d->clear();
    // Kept implicitly shared: parsed keys and values are slices of it. Raw
    // data belongs to the caller and may go away, so that is copied.
    d->text = text;
    if (!d->text.isEmpty() && !d->text.data_ptr().d_ptr())
        d->text = QByteArray(text.constData(), text.size());
    d->parse();
}

QByteArray IniParser::getIniText() const
{
    return d->write(true);
}

QByteArray IniParser::getIniTextWithoutByteOrderMarker() const
{
    return d->write(false);
}

void IniParser::clear()
{
    d->clear();
}

IniSection* IniParser::section(QByteArrayView name) const
{
    name = trimmed(name);
    const qsizetype position = d->indexOf(name, IniParserPrivate::hashOf(name));
    return position >= 0 ? d->sections[size_t(position)].get() : nullptr;
}

IniSection* IniParser::findOrCreateSection(QByteArrayView name)
{
    QByteArray buffer;
    name = normalized(name, buffer);
    const quint32 hash = IniParserPrivate::hashOf(name);
    const qsizetype position = d->indexOf(name, hash);
    return position >= 0 ? d->sections[size_t(position)].get() : d->create(name, hash);
}

bool IniParser::removeSection(QByteArrayView name)
{
    name = trimmed(name);
    const qsizetype position = d->indexOf(name, IniParserPrivate::hashOf(name));
    if (position < 0)
        return false;
    d->sections[size_t(position)].reset();
    ++d->removedCount;
    const qsizetype live = qsizetype(d->sections.size()) - d->removedCount;
    if (d->removedCount > live + 16)
        d->compact();
    return true;
}

QList<QByteArray> IniParser::sectionNames() const
{
    QList<QByteArray> names;
    names.reserve(sectionCount());
    for (const auto& section : d->sections) {
        if (section)
            names.append(section->d->name);
    }
    return names;
}

qsizetype IniParser::sectionCount() const
{
    return qsizetype(d->sections.size()) - d->removedCount;
}

} // namespace KlIniParser
