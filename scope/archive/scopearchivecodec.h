// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <limits>

/*! \brief Value encodings of the archive documents.

    Binary values (timestamps, the comment) are stored as lowercase
    hexadecimal text. The decoders never trust the stored bytes: malformed
    text yields an empty comment or an invalid timestamp, and nothing is
    allocated or inflated beyond fixed limits.
*/
namespace ScopeArchiveCodec {

/*! \brief The largest comment (UTF-8 bytes) that is decoded; longer ones read as empty.

    A mebibyte of HTML is some hundred pages of notes. Reading a comment
    and asking whether it is empty costs up to fourteen times its size while
    it is converted (UTF-16, and a text document), so even a forged block
    stays below 16 MiB; the comment dialog refuses to store a longer text.
*/
inline constexpr qsizetype MaximumCommentSize = 1024 * 1024;

/*! \brief Lowercase hexadecimal text of \a bytes, without separators. */
QByteArray toHex(QByteArrayView bytes);

/*! \brief Decodes hexadecimal text (either case) into \a bytes.

    Returns false, leaving \a bytes empty, for an odd length, a character
    that is not a hex digit, or text that would decode to more than
    \a maximumSize bytes.
*/
bool fromHex(QByteArrayView hex, QByteArray* bytes, qsizetype maximumSize);

/*! \brief \a dateTime serialised by a QDataStream of version 12, as hex text. */
QByteArray encodeTimestamp(const QDateTime& dateTime);

/*! \brief The QDateTime of hex text written by encodeTimestamp().

    Only the nine bytes a version 12 stream writes for a date-time are
    accepted (Julian day, milliseconds of the day in UTC, kind of time);
    anything else, and the serialisation of an invalid date-time, gives an
    invalid QDateTime. A UTC or fixed-offset kind reads as UTC, every other
    kind as local time.
*/
QDateTime decodeTimestamp(QByteArrayView hex);

/*! \brief The comment's UTF-8 bytes compressed with qCompress (level -1), as hex text. */
QByteArray encodeComment(const QString& html);

/*! \brief The comment of hex text written by encodeComment(); empty when malformed.

    The length header of the compressed block is checked against
    MaximumCommentSize before anything is allocated, and inflation stops as
    soon as the output would exceed the length the header announces.
*/
QString decodeComment(QByteArrayView hex);

/*! \brief Bounded counterpart of qUncompress: the data of a qCompress block, or
    an empty array when the block is malformed, announces more than
    \a maximumSize bytes or inflates to more than it announces. */
QByteArray uncompress(QByteArrayView block, qsizetype maximumSize);

/*! \brief The index N of a name made of \a prefix and N in decimal digits.

    Returns false unless \a name is \a prefix followed by one or more ASCII
    digits (leading zeros allowed) whose value fits in \a maximum.
*/
bool indexedName(QByteArrayView name, QByteArrayView prefix, quint64* index,
                 quint64 maximum = std::numeric_limits<quint64>::max());

} // namespace ScopeArchiveCodec
