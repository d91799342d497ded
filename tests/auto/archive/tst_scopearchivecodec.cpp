// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopearchivecodec.h"

#include <QtCore/QDataStream>
#include <QtTest/QTest>

#include <zlib.h>

class tst_ScopeArchiveCodec : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void hexIsLowercase();
    void fromHex_data();
    void fromHex();
    void fromHexRespectsLimit();
    void timestampRoundTrip_data();
    void timestampRoundTrip();
    void timestampMatchesQDataStream();
    void timestampGarbage_data();
    void timestampGarbage();
    void timestampExtremeDays_data();
    void timestampExtremeDays();
    void timestampKinds_data();
    void timestampKinds();
    void commentRoundTrip_data();
    void commentRoundTrip();
    void commentIsQtCompatible();
    void commentGarbage_data();
    void commentGarbage();
    void forgedLengthHeader();
    void deflateBomb();
    void commentAtLimit();
    void shorterThanAnnounced();
    void indexedName_data();
    void indexedName();
};

namespace {

QByteArray rawDeflate(const QByteArray& data)
{
    // qCompress without its length header
    return qCompress(data).mid(4);
}

QByteArray withHeader(quint32 length, const QByteArray& deflated)
{
    QByteArray block(4, Qt::Uninitialized);
    block[0] = char(length >> 24);
    block[1] = char(length >> 16);
    block[2] = char(length >> 8);
    block[3] = char(length);
    return block + deflated;
}

} // namespace

void tst_ScopeArchiveCodec::hexIsLowercase()
{
    QCOMPARE(ScopeArchiveCodec::toHex(QByteArray::fromHex("00ABcdEF7f")), QByteArray("00abcdef7f"));
    QCOMPARE(ScopeArchiveCodec::toHex(QByteArray()), QByteArray());
}

void tst_ScopeArchiveCodec::fromHex_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray() << true << QByteArray();
    QTest::newRow("lower") << QByteArray("00ff7a") << true << QByteArray("\x00\xff\x7a", 3);
    QTest::newRow("upper") << QByteArray("00FF7A") << true << QByteArray("\x00\xff\x7a", 3);
    QTest::newRow("odd length") << QByteArray("abc") << false << QByteArray();
    QTest::newRow("non-hex") << QByteArray("0g") << false << QByteArray();
    QTest::newRow("blank") << QByteArray("0 ") << false << QByteArray();
    QTest::newRow("separator") << QByteArray("00:11") << false << QByteArray();
    QTest::newRow("sign") << QByteArray("-1") << false << QByteArray();
}

void tst_ScopeArchiveCodec::fromHex()
{
    QFETCH(QByteArray, hex);
    QFETCH(bool, ok);
    QFETCH(QByteArray, bytes);
    QByteArray result("previous");
    QCOMPARE(ScopeArchiveCodec::fromHex(hex, &result, 1024), ok);
    QCOMPARE(result, bytes);
}

void tst_ScopeArchiveCodec::fromHexRespectsLimit()
{
    QByteArray result;
    QVERIFY(ScopeArchiveCodec::fromHex("00112233", &result, 4));
    QVERIFY(!ScopeArchiveCodec::fromHex("0011223344", &result, 4));
    QVERIFY(result.isEmpty());
}

void tst_ScopeArchiveCodec::timestampRoundTrip_data()
{
    QTest::addColumn<QDateTime>("dateTime");
    QTest::newRow("now local") << QDateTime::currentDateTime();
    QTest::newRow("now utc") << QDateTime::currentDateTimeUtc();
    QTest::newRow("2001") << QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6, 789));
    QTest::newRow("midnight") << QDateTime(QDate(1999, 12, 31), QTime(0, 0));
    QTest::newRow("utc last ms") << QDateTime(QDate(2024, 2, 29), QTime(23, 59, 59, 999), Qt::UTC);
}

void tst_ScopeArchiveCodec::timestampRoundTrip()
{
    QFETCH(QDateTime, dateTime);
    const QByteArray hex = ScopeArchiveCodec::encodeTimestamp(dateTime);
    QCOMPARE(hex.size(), 18);
    QCOMPARE(hex, hex.toLower());
    const QDateTime decoded = ScopeArchiveCodec::decodeTimestamp(hex);
    QVERIFY(decoded.isValid());
    QCOMPARE(decoded, dateTime);
    QCOMPARE(decoded.timeSpec(), dateTime.timeSpec());
    // Writing what was read gives the same text again.
    QCOMPARE(ScopeArchiveCodec::encodeTimestamp(decoded), hex);
}

void tst_ScopeArchiveCodec::timestampMatchesQDataStream()
{
    const QDateTime dateTime(QDate(2020, 5, 17), QTime(13, 14, 15, 16));
    QByteArray bytes;
    {
        QDataStream stream(&bytes, QIODevice::WriteOnly);
        stream.setVersion(12);
        stream << dateTime;
    }
    QCOMPARE(ScopeArchiveCodec::encodeTimestamp(dateTime), bytes.toHex());
    QCOMPARE(ScopeArchiveCodec::decodeTimestamp(bytes.toHex().toUpper()), dateTime);
}

void tst_ScopeArchiveCodec::timestampGarbage_data()
{
    QTest::addColumn<QByteArray>("hex");
    const QByteArray good = ScopeArchiveCodec::encodeTimestamp(QDateTime(QDate(2020, 1, 1), QTime(1, 2, 3)));
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("odd length") << good.left(17);
    QTest::newRow("non-hex") << QByteArray(good).replace(0, 1, "x");
    QTest::newRow("too short") << good.left(16);
    QTest::newRow("too long") << good + "00";
    QTest::newRow("invalid date-time") << ScopeArchiveCodec::encodeTimestamp(QDateTime());
    QTest::newRow("all ones") << QByteArray("ffffffffffffffffff");
    QTest::newRow("julian day 0") << QByteArray("000000000000000002");
    QTest::newRow("ms beyond day") << QByteArray("002584e205265c0002");
    QTest::newRow("unknown kind 5") << QByteArray("002584e20038cef805");
    QTest::newRow("unknown kind -2") << QByteArray("002584e20038cef8fe");
    QTest::newRow("text") << QByteArray("not a timestamp at all");
}

void tst_ScopeArchiveCodec::timestampGarbage()
{
    QFETCH(QByteArray, hex);
    QVERIFY(!ScopeArchiveCodec::decodeTimestamp(hex).isValid());
}

void tst_ScopeArchiveCodec::timestampExtremeDays_data()
{
    QTest::addColumn<QByteArray>("hex");
    QTest::addColumn<qint64>("julianDay");
    QTest::newRow("first day") << QByteArray("0000000105265bff02") << qint64(1);
    QTest::newRow("largest signed") << QByteArray("7fffffff0000000002") << qint64(0x7fffffff);
    QTest::newRow("largest") << QByteArray("ffffffff0000000002") << qint64(0xffffffffu);
    QTest::newRow("largest local") << QByteArray("ffffffff00000000ff") << qint64(0xffffffffu);
}

void tst_ScopeArchiveCodec::timestampExtremeDays()
{
    // Every day a version 12 stream can hold reads as a valid date-time.
    QFETCH(QByteArray, hex);
    QFETCH(qint64, julianDay);
    const QDateTime decoded = ScopeArchiveCodec::decodeTimestamp(hex);
    QVERIFY(decoded.isValid());
    QCOMPARE(decoded.toUTC().date().toJulianDay(), julianDay);
}

void tst_ScopeArchiveCodec::timestampKinds_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<bool>("utc");
    QTest::newRow("local unknown") << QByteArray("ff") << false;
    QTest::newRow("local standard") << QByteArray("00") << false;
    QTest::newRow("local daylight") << QByteArray("01") << false;
    QTest::newRow("utc") << QByteArray("02") << true;
    QTest::newRow("offset") << QByteArray("03") << true;
    QTest::newRow("time zone") << QByteArray("04") << false;
}

void tst_ScopeArchiveCodec::timestampKinds()
{
    QFETCH(QByteArray, kind);
    QFETCH(bool, utc);
    // 2020-01-01 01:02:03 UTC
    const QDateTime decoded = ScopeArchiveCodec::decodeTimestamp("002584e20038cef8" + kind);
    QVERIFY(decoded.isValid());
    QCOMPARE(decoded.toUTC(), QDateTime(QDate(2020, 1, 1), QTime(1, 2, 3), Qt::UTC));
    QCOMPARE(decoded.timeSpec(), utc ? Qt::UTC : Qt::LocalTime);
}

void tst_ScopeArchiveCodec::commentRoundTrip_data()
{
    QTest::addColumn<QString>("html");
    QTest::newRow("empty") << QString();
    QTest::newRow("plain") << QStringLiteral("Hallo");
    QTest::newRow("umlauts") << QStringLiteral("<p>Größe, Übermaß, Äpfel – 10 µs</p>");
    QTest::newRow("long") << QStringLiteral("<b>x</b>").repeated(10000);
}

void tst_ScopeArchiveCodec::commentRoundTrip()
{
    QFETCH(QString, html);
    const QByteArray hex = ScopeArchiveCodec::encodeComment(html);
    QCOMPARE(hex, hex.toLower());
    QCOMPARE(ScopeArchiveCodec::decodeComment(hex), html);
}

void tst_ScopeArchiveCodec::commentIsQtCompatible()
{
    const QString html = QStringLiteral("<p>Prüfstand</p>");
    const QByteArray hex = ScopeArchiveCodec::encodeComment(html);
    QCOMPARE(QString::fromUtf8(qUncompress(QByteArray::fromHex(hex))), html);
    QCOMPARE(hex, qCompress(html.toUtf8(), -1).toHex());
    QCOMPARE(ScopeArchiveCodec::decodeComment(qCompress(html.toUtf8(), 9).toHex()), html);
}

void tst_ScopeArchiveCodec::commentGarbage_data()
{
    QTest::addColumn<QByteArray>("hex");
    const QByteArray good = ScopeArchiveCodec::encodeComment(QStringLiteral("Kommentar"));
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("odd length") << good.left(good.size() - 1);
    QTest::newRow("non-hex") << QByteArray(good).replace(10, 1, "z");
    QTest::newRow("header only") << good.left(8);
    QTest::newRow("short header") << QByteArray("0000");
    QTest::newRow("truncated stream") << good.left(good.size() - 6);
    QTest::newRow("not zlib") << QByteArray("00000010") + QByteArray(32, 'a');
    QTest::newRow("header too small") << withHeader(3, rawDeflate("Kommentar")).toHex();
}

void tst_ScopeArchiveCodec::commentGarbage()
{
    QFETCH(QByteArray, hex);
    QVERIFY(ScopeArchiveCodec::decodeComment(hex).isEmpty());
}

void tst_ScopeArchiveCodec::forgedLengthHeader()
{
    // A header that announces 4 GiB is refused before anything is allocated.
    const QByteArray deflated = rawDeflate("Kommentar");
    QVERIFY(ScopeArchiveCodec::decodeComment(withHeader(0xffffffffu, deflated).toHex()).isEmpty());
    QVERIFY(ScopeArchiveCodec::decodeComment(
                withHeader(quint32(ScopeArchiveCodec::MaximumCommentSize) + 1, deflated).toHex())
                .isEmpty());
    QVERIFY(ScopeArchiveCodec::uncompress(withHeader(0xffffffffu, deflated), 1 << 20).isEmpty());
}

void tst_ScopeArchiveCodec::deflateBomb()
{
    // 256 MiB of zeros deflate to a few hundred KiB; a header that announces
    // little must not let the block inflate any further than that.
    QByteArray bomb;
    {
        z_stream stream{};
        QCOMPARE(deflateInit(&stream, Z_BEST_COMPRESSION), Z_OK);
        const QByteArray zeros(1 << 20, '\0');
        QByteArray out(1 << 16, Qt::Uninitialized);
        for (int i = 0; i < 256; ++i) {
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zeros.constData()));
            stream.avail_in = uInt(zeros.size());
            const int flush = i == 255 ? Z_FINISH : Z_NO_FLUSH;
            do {
                stream.next_out = reinterpret_cast<Bytef*>(out.data());
                stream.avail_out = uInt(out.size());
                deflate(&stream, flush);
                bomb.append(out.constData(), out.size() - qsizetype(stream.avail_out));
            } while (stream.avail_out == 0);
        }
        deflateEnd(&stream);
    }
    QVERIFY(bomb.size() < 1 << 20);
    QVERIFY(ScopeArchiveCodec::decodeComment(withHeader(100, bomb).toHex()).isEmpty());
    QVERIFY(ScopeArchiveCodec::decodeComment(
                withHeader(quint32(ScopeArchiveCodec::MaximumCommentSize), bomb).toHex())
                .isEmpty());
}

void tst_ScopeArchiveCodec::commentAtLimit()
{
    const QByteArray text(ScopeArchiveCodec::MaximumCommentSize, 'a');
    QCOMPARE(ScopeArchiveCodec::decodeComment(qCompress(text).toHex()).size(), text.size());
    const QByteArray tooLong(ScopeArchiveCodec::MaximumCommentSize + 1, 'a');
    QVERIFY(ScopeArchiveCodec::decodeComment(qCompress(tooLong).toHex()).isEmpty());
}

void tst_ScopeArchiveCodec::shorterThanAnnounced()
{
    // As with qUncompress, a block may announce more than it holds.
    const QByteArray text = "Kurzer Kommentar";
    QCOMPARE(ScopeArchiveCodec::uncompress(withHeader(10 * 1024 * 1024, rawDeflate(text)), 16 * 1024 * 1024), text);
    const QByteArray zeros(4 * 1024 * 1024, '\0');
    QCOMPARE(ScopeArchiveCodec::uncompress(withHeader(16 * 1024 * 1024, rawDeflate(zeros)), 16 * 1024 * 1024), zeros);
    QCOMPARE(ScopeArchiveCodec::uncompress(qCompress(zeros, 9), zeros.size()), zeros);
    QVERIFY(ScopeArchiveCodec::uncompress(qCompress(zeros, 9), zeros.size() - 1).isEmpty());
}

void tst_ScopeArchiveCodec::indexedName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<quint64>("index");
    QTest::newRow("0") << QByteArray("ScopeChannel_0") << true << quint64(0);
    QTest::newRow("12") << QByteArray("ScopeChannel_12") << true << quint64(12);
    QTest::newRow("leading zero") << QByteArray("ScopeChannel_007") << true << quint64(7);
    QTest::newRow("max") << QByteArray("ScopeChannel_4294967295") << true << quint64(4294967295u);
    QTest::newRow("overflow") << QByteArray("ScopeChannel_4294967296") << false << quint64(0);
    QTest::newRow("no digits") << QByteArray("ScopeChannel_") << false << quint64(0);
    QTest::newRow("sign") << QByteArray("ScopeChannel_-1") << false << quint64(0);
    QTest::newRow("blank") << QByteArray("ScopeChannel_1 ") << false << quint64(0);
    QTest::newRow("suffix") << QByteArray("ScopeChannel_1a") << false << quint64(0);
    QTest::newRow("other prefix") << QByteArray("ScopeChannelX1") << false << quint64(0);
    QTest::newRow("case") << QByteArray("scopechannel_1") << false << quint64(0);
}

void tst_ScopeArchiveCodec::indexedName()
{
    QFETCH(QByteArray, name);
    QFETCH(bool, ok);
    QFETCH(quint64, index);
    quint64 result = 0;
    QCOMPARE(ScopeArchiveCodec::indexedName(name, "ScopeChannel_", &result, 4294967295u), ok);
    if (ok)
        QCOMPARE(result, index);
}

QTEST_GUILESS_MAIN(tst_ScopeArchiveCodec)
#include "tst_scopearchivecodec.moc"
