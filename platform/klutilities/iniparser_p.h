// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "iniparser.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QHash>

#include <cstring>
#include <memory>
#include <vector>

namespace KlIniParser {

/* One key of a section. Key and value are views: into the loaded text for
   everything that was parsed, into the section's own storage for what was set
   later. A removed key keeps its place with key == nullptr until the section
   is compacted, so that removing many keys stays linear. An entry is kept at
   24 bytes, since a recording holds one per data row: the hash lives in the
   index only, and the few entries with bytes of their own are found through
   IniSectionPrivate::ownedSlots. */
struct IniEntry
{
    const char* key = nullptr;
    const char* value = nullptr;
    quint32 keyLength = 0;
    quint32 valueLength = 0;

    bool isRemoved() const { return key == nullptr; }
    QByteArrayView keyView() const { return QByteArrayView(key, keyLength); }
    QByteArrayView valueView() const { return QByteArrayView(value, valueLength); }
};

/* Open-addressing hash index (linear probing, load at most one half) that maps
   a hash to positions in an ordered vector. Slots keep the hash next to the
   position, so mismatches are rejected without touching the vector and the
   table grows without rehashing the keys. */
class IniHashIndex
{
public:
    bool isEmpty() const { return m_slots.empty(); }

    void clear()
    {
        std::vector<Slot>().swap(m_slots);
        m_used = 0;
    }

    void reserve(size_t count)
    {
        size_t capacity = 16;
        while (capacity < count * 2)
            capacity *= 2;
        if (capacity > m_slots.size())
            rehash(capacity);
    }

    template<typename Matches>
    qsizetype find(quint32 hash, Matches matches) const
    {
        if (m_slots.empty())
            return -1;
        const size_t mask = m_slots.size() - 1;
        for (size_t i = hash & mask;; i = (i + 1) & mask) {
            const Slot& slot = m_slots[i];
            if (slot.position == 0)
                return -1;
            if (slot.hash == hash && matches(slot.position - 1))
                return slot.position - 1;
        }
    }

    /* One probe for both: the position of the matching key, or -1 after
       recording newPosition for it (the caller then appends it there). */
    template<typename Matches>
    qsizetype findOrInsert(quint32 hash, quint32 newPosition, Matches matches)
    {
        if ((m_used + 1) * 2 > m_slots.size())
            rehash(m_slots.empty() ? 16 : m_slots.size() * 2);
        const size_t mask = m_slots.size() - 1;
        for (size_t i = hash & mask;; i = (i + 1) & mask) {
            Slot& slot = m_slots[i];
            if (slot.position == 0) {
                slot = Slot{newPosition + 1, hash};
                ++m_used;
                return -1;
            }
            if (slot.hash == hash && matches(slot.position - 1))
                return slot.position - 1;
        }
    }

    // The caller makes sure that the key is not in the index yet.
    void insert(quint32 hash, quint32 position)
    {
        if ((m_used + 1) * 2 > m_slots.size())
            rehash(m_slots.empty() ? 16 : m_slots.size() * 2);
        place(hash, position + 1);
        ++m_used;
    }

private:
    struct Slot
    {
        quint32 position; // position + 1; 0 = empty
        quint32 hash;
    };

    void place(quint32 hash, quint32 storedPosition)
    {
        const size_t mask = m_slots.size() - 1;
        size_t i = hash & mask;
        while (m_slots[i].position != 0)
            i = (i + 1) & mask;
        m_slots[i] = Slot{storedPosition, hash};
    }

    void rehash(size_t capacity)
    {
        std::vector<Slot> old(capacity, Slot{0, 0});
        old.swap(m_slots);
        for (const Slot& slot : old) {
            if (slot.position != 0)
                place(slot.hash, slot.position);
        }
    }

    std::vector<Slot> m_slots;
    size_t m_used = 0;
};

class IniSectionPrivate
{
public:
    // Small sections are searched linearly; the index pays off above this.
    static constexpr size_t LinearSearchLimit = 8;

    struct OwnedBytes
    {
        QByteArray key;
        QByteArray value;
    };

    IniSectionPrivate(IniParserPrivate* parser, QByteArrayView name, quint32 hash)
        : parser(parser)
        , name(name.toByteArray())
        , nameHash(hash)
    {
    }

    qsizetype indexOf(QByteArrayView key, quint32 hash) const;
    void appendParsed(const char* key, quint32 keyLength, quint32 hash, const char* value,
                      quint32 valueLength);
    void addParsed(QByteArrayView key, QByteArrayView value);
    void buildIndex() const;
    void setValue(QByteArrayView key, quint32 hash, QByteArrayView value);
    bool remove(QByteArrayView key, quint32 hash);
    void compact() const;
    qsizetype liveCount() const { return qsizetype(entries.size()) - removedCount; }
    qint32 takeStorage();

    IniParserPrivate* parser;
    QByteArray name;
    quint32 nameHash;
    // mutable: index-based access compacts removed entries away on demand
    mutable std::vector<IniEntry> entries;
    mutable IniHashIndex index;
    mutable qsizetype removedCount = 0;
    std::vector<OwnedBytes> storage;
    std::vector<qint32> freeStorage;
    // Entries whose key or value lives in storage, by the entry's key pointer
    // (unique per entry and unchanged by compaction), to their slot.
    QHash<const char*, qint32> ownedSlots;
};

class IniParserPrivate
{
public:
    static quint32 hashOf(QByteArrayView bytes);

    void clear();
    void parse();
    QByteArray write(bool byteOrderMark) const;
    qsizetype indexOf(QByteArrayView name, quint32 hash) const;
    IniSection* create(QByteArrayView name, quint32 hash);
    void compact();

    QByteArray text; // the loaded document; parsed keys and values point into it
    std::vector<std::unique_ptr<IniSection>> sections; // null = removed
    IniHashIndex index;
    qsizetype removedCount = 0;
};

} // namespace KlIniParser
