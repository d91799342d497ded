// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopearchivecodec.h"

#include <QtCore/QDataStream>
#include <QtCore/QIODevice>

#include <zlib.h>

#include <algorithm>
#include <limits>

namespace {

// QDataStream::Qt_4_6 to Qt_4_9 share this number; archives have always used it.
constexpr int TimestampStreamVersion = 12;

// What a version 12 stream writes for a QDateTime: quint32 Julian day,
// quint32 milliseconds since midnight (both of the UTC date-time), qint8 kind.
constexpr qsizetype TimestampSize = 9;
constexpr quint32 MillisecondsPerDay = 24u * 60u * 60u * 1000u;

// The kinds of time a version 12 stream records.
enum TimestampKind : qint8 {
    LocalUnknown = -1,
    LocalStandard = 0,
    LocalDaylight = 1,
    Utc = 2,
    OffsetFromUtc = 3,
    TimeZone = 4,
};

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

quint32 readBigEndian32(const uchar* p)
{
    return (quint32(p[0]) << 24) | (quint32(p[1]) << 16) | (quint32(p[2]) << 8) | quint32(p[3]);
}

} // namespace

namespace ScopeArchiveCodec {

QByteArray toHex(QByteArrayView bytes)
{
    return bytes.toByteArray().toHex();
}

bool fromHex(QByteArrayView hex, QByteArray* bytes, qsizetype maximumSize)
{
    bytes->clear();
    if (hex.size() % 2 != 0 || hex.size() / 2 > maximumSize)
        return false;
    QByteArray result(hex.size() / 2, Qt::Uninitialized);
    char* out = result.data();
    const char* in = hex.data();
    for (qsizetype i = 0; i < result.size(); ++i) {
        const int high = hexDigit(in[2 * i]);
        const int low = hexDigit(in[2 * i + 1]);
        if (high < 0 || low < 0)
            return false;
        out[i] = char((high << 4) | low);
    }
    *bytes = std::move(result);
    return true;
}

QByteArray encodeTimestamp(const QDateTime& dateTime)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setVersion(TimestampStreamVersion);
    stream << dateTime;
    return toHex(bytes);
}

QDateTime decodeTimestamp(QByteArrayView hex)
{
    QByteArray bytes;
    if (!fromHex(hex, &bytes, TimestampSize) || bytes.size() != TimestampSize)
        return {};
    const auto* p = reinterpret_cast<const uchar*>(bytes.constData());
    const quint32 julianDay = readBigEndian32(p);
    const quint32 milliseconds = readBigEndian32(p + 4);
    const auto kind = qint8(p[8]);
    // Julian day 0 and the all-ones time are how the stream writes a null
    // date and time, that is, an invalid date-time.
    if (julianDay == 0 || milliseconds >= MillisecondsPerDay)
        return {};
    if (kind < LocalUnknown || kind > TimeZone)
        return {};
    const QDateTime utc(QDate::fromJulianDay(qint64(julianDay)),
                        QTime::fromMSecsSinceStartOfDay(int(milliseconds)), Qt::UTC);
    if (!utc.isValid())
        return {};
    if (kind == Utc || kind == OffsetFromUtc)
        return utc;
    return utc.toLocalTime();
}

QByteArray encodeComment(const QString& html)
{
    return toHex(qCompress(html.toUtf8(), -1));
}

QString decodeComment(QByteArrayView hex)
{
    if (hex.isEmpty())
        return {};
    // A block of at most MaximumCommentSize bytes never compresses to more
    // than this; anything longer cannot be a comment this library wrote.
    const qsizetype maximumBlock = 4 + qsizetype(compressBound(uLong(MaximumCommentSize)));
    QByteArray block;
    if (!fromHex(hex, &block, maximumBlock))
        return {};
    return QString::fromUtf8(uncompress(block, MaximumCommentSize));
}

QByteArray uncompress(QByteArrayView block, qsizetype maximumSize)
{
    if (block.size() < 4)
        return {};
    const auto* p = reinterpret_cast<const uchar*>(block.data());
    const quint32 announced = readBigEndian32(p);
    if (announced == 0 || qint64(announced) > qint64(maximumSize))
        return {};
    const qsizetype inputSize = block.size() - 4;
    if (inputSize > qsizetype(std::numeric_limits<uInt>::max()))
        return {};

    // Deflate packs at most about 1032 bytes into one, so a header that
    // announces far more than the block can hold does not get its buffer up
    // front; the buffer grows with the output, never beyond the header.
    const qsizetype announcedSize = qsizetype(announced);
    qsizetype capacity = std::min(announcedSize, inputSize * 1032 + 1024);
    QByteArray result(capacity, Qt::Uninitialized);

    z_stream stream{};
    if (inflateInit(&stream) != Z_OK)
        return {};
    stream.next_in = const_cast<Bytef*>(p + 4);
    stream.avail_in = uInt(inputSize);
    int status = Z_OK;
    for (;;) {
        stream.next_out = reinterpret_cast<Bytef*>(result.data()) + stream.total_out;
        stream.avail_out = uInt(capacity - qsizetype(stream.total_out));
        status = inflate(&stream, Z_FINISH);
        if (status == Z_STREAM_END)
            break;
        // Out of room: grow up to the announced size; beyond it the block
        // is lying about its length (or is a bomb) and is rejected.
        const bool outOfRoom = (status == Z_BUF_ERROR || status == Z_OK) && stream.avail_out == 0;
        if (!outOfRoom || capacity >= announcedSize)
            break;
        capacity = std::min(announcedSize, capacity * 2);
        result.resize(capacity);
    }
    const qsizetype produced = qsizetype(stream.total_out);
    inflateEnd(&stream);
    if (status != Z_STREAM_END)
        return {};
    result.truncate(produced);
    return result;
}

bool indexedName(QByteArrayView name, QByteArrayView prefix, quint64* index, quint64 maximum)
{
    if (name.size() <= prefix.size() || !name.startsWith(prefix))
        return false;
    quint64 value = 0;
    for (const char c : name.sliced(prefix.size())) {
        if (c < '0' || c > '9')
            return false;
        const auto digit = quint64(c - '0');
        if (value > (maximum - digit) / 10)
            return false;
        value = value * 10 + digit;
    }
    *index = value;
    return true;
}

} // namespace ScopeArchiveCodec
