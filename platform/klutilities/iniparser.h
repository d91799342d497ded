// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klutilities_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QList>

#include <memory>

namespace KlIniParser {

class IniParser;
class IniParserPrivate;
class IniSectionPrivate;

/*! \brief One "[Name]" section of an ini document: ordered keys with byte values.

    Sections are owned by their IniParser and stay valid until the parser is
    cleared or given a new text. Values of a loaded document are slices of the
    loaded bytes; only values set later own memory of their own.
*/
class KLUTILITIES_EXPORT IniSection
{
public:
    ~IniSection();
    IniSection(const IniSection&) = delete;
    IniSection& operator=(const IniSection&) = delete;

    /*! \brief The section name, without the brackets. */
    QByteArray name() const;

    /*! \brief Whether the section holds \a key. */
    bool contains(QByteArrayView key) const;

    /*! \brief The value of \a key as a copy; empty when the key is missing. */
    QByteArray value(QByteArrayView key) const;

    /*! \brief The value of \a key without copying; empty when missing.
        Valid until this key is set again or the document changes. */
    QByteArrayView valueView(QByteArrayView key) const;

    /*! \brief Sets \a key to \a value; a new key goes to the end of the section. */
    void setValue(QByteArrayView key, QByteArrayView value);

    /*! \brief Removes \a key; returns whether it was there. */
    bool remove(QByteArrayView key);

    /*! \brief The keys in document order. */
    QList<QByteArray> keys() const;

    /*! \brief The number of keys. */
    qsizetype count() const;

    /*! \brief Key and value at \a index (document order) without copying. */
    QByteArrayView keyAt(qsizetype index) const;
    QByteArrayView valueAt(qsizetype index) const;

private:
    friend class IniParser;
    friend class IniParserPrivate;
    explicit IniSection(IniParserPrivate* parser, QByteArrayView name);
    std::unique_ptr<IniSectionPrivate> d;
};

/*! \brief An ini document that keeps the order of its sections and keys.

    "[Name]" starts a section, "key=value" lines set keys (key and value
    trimmed of blanks), lines starting with ";" are comments and are not kept.
    A repeated section continues the first one; a repeated key keeps its first
    position and takes the last value. LF and CR LF line ends and a leading
    UTF-8 byte-order mark are accepted; output uses CR LF with one empty line
    between sections.

    The finer rules, chosen so that parse, write, parse, write gives the same
    bytes both times for any input:
    - Blanks are space, tab, CR, vertical tab and form feed; a lone CR is no
      line end. Any other byte (NUL, invalid UTF-8) is kept as it is.
    - A line whose first non-blank character is "[" is a section line. The
      name is what lies between that "[" and the last "]" of the line,
      trimmed; it may itself contain brackets, and text after the last "]"
      ("[Name] ; note") is ignored. A section line without "]" is broken: it
      and the key lines after it, up to the next section line, are dropped.
    - A key line needs an "=" and a non-empty key before it; keys therefore
      never hold "=", never start with ";" or "[" and are never empty. Lines
      without "=", with an empty key, or before the first section are dropped.
    - setValue() stores key and value the way a parse of the written text
      gives them back: line breaks become blanks and surrounding blanks go; a
      key that could not be written back (empty, holding "=", starting with
      ";" or "[") is not stored. findOrCreateSection() treats names alike.
    - Look-ups trim the key or name they are given.

    Memory: the loaded text is kept (implicitly shared) and parsed keys and
    values are slices of it; every key costs one small entry plus, in
    sections of more than eight keys, two slots of an open-addressing hash
    index. Values set later own their bytes; setting a key again replaces them.
    Look-ups are O(1); writing is linear in the output.

    Not thread-safe, not even for const calls (keyAt() and valueAt() compact
    removed keys away).
*/
class KLUTILITIES_EXPORT IniParser
{
public:
    IniParser();
    ~IniParser();
    IniParser(const IniParser&) = delete;
    IniParser& operator=(const IniParser&) = delete;

    /*! \brief Replaces the document by the parsed \a text.

        The text is kept as an implicitly shared copy, so the caller may change
        or drop its own; text made with QByteArray::fromRawData() is copied. */
    void setIniText(const QByteArray& text);

    /*! \brief The document as text, starting with the UTF-8 byte-order mark. */
    QByteArray getIniText() const;

    /*! \brief The document as text without the byte-order mark. */
    QByteArray getIniTextWithoutByteOrderMarker() const;

    /*! \brief Removes every section. */
    void clear();

    /*! \brief The section called \a name, or null; a look-up never creates one. */
    IniSection* section(QByteArrayView name) const;

    /*! \brief The section called \a name, created at the end when missing. */
    IniSection* findOrCreateSection(QByteArrayView name);

    /*! \brief Removes the section called \a name; returns whether it was there. */
    bool removeSection(QByteArrayView name);

    /*! \brief Section names in document order. */
    QList<QByteArray> sectionNames() const;

    /*! \brief The number of sections. */
    qsizetype sectionCount() const;

private:
    std::unique_ptr<IniParserPrivate> d;
};

} // namespace KlIniParser
