// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "scopelayout.h"
#include "scopenumbers.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <cmath>
#include <cstring>
#include <memory>

namespace {

struct Channel
{
    int number;
    int sourceType;
};

// A shot archive text: rows are the values after "Data_N=", in order.
QByteArray archiveText(const QByteArray& timeBase, const QByteArray& channelCount, const QByteArray& frameCount,
                       const QByteArray& triggerIndex, const QList<QByteArray>& rows,
                       const QList<Channel>& channels)
{
    QByteArray text = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n"
                      "[Archive]\r\nID=test\r\nName=Test shot\r\n\r\n"
                      "[ScopeShot]\r\nTimeBase="
        + timeBase + "\r\n\r\n[Data]\r\nChannelCount=" + channelCount + "\r\nFrameCount=" + frameCount
        + "\r\nTriggerIndex=" + triggerIndex + "\r\n";
    for (int i = 0; i < rows.size(); ++i)
        text += "Data_" + QByteArray::number(i) + '=' + rows.at(i) + "\r\n";
    for (const Channel& channel : channels) {
        text += "\r\n[ScopeChannel_" + QByteArray::number(channel.number) + "]\r\nSourceType="
            + QByteArray::number(channel.sourceType) + "\r\nName=Channel " + QByteArray::number(channel.number)
            + "\r\nPhysicalDatatype=6\r\nDecimalPlaces=2\r\n";
    }
    return text;
}

std::unique_ptr<ScopeShotArchive> makeArchive(const QByteArray& text)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->fromByteArray(text))
        qWarning("archive text not accepted");
    return archive;
}

// Peak resident memory of the process in KiB, after resetting the peak.
qint64 readPeakKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

qint64 readResidentKiB()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

bool resetPeak()
{
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    return clearRefs.open(QIODevice::WriteOnly) && clearRefs.write("5") == 1;
}

} // namespace

class tst_ScopeShot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void emptyShot();
    void load();
    void timeBase_data();
    void timeBase();
    void missingSections();
    void noChannels();
    void frameCountZero();
    void channelNumbers();
    void startAndEndTime();
    void shortAndMissingRows();
    void fieldZeroIgnored();
    void numberText_data();
    void numberText();
    void numberTextMatchesQt();
    void countsBoundedByRows();
    void malformedArchive_data();
    void malformedArchive();
    void hugeClaimsLoadSmall();
    void manyChannelsOneFieldRows();
    void channelsBeyondEveryRow();
    void manyTracesGoQuickly();
    void reloadKeepsUnusedTrace();
    void reloadSignalsQueued();
    void saveTraceViews();
    void changesReachArchive();
    void archiveChangeUpdatesControls();
    void setArchiveReplacesConnections();
    void quickMeasureFanOut();
    void paintOwnTracesOnly();
};

void tst_ScopeShot::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    // Load one small shot so that one-time set-up (settings, data types,
    // lazily bound symbols) is not timed by the tests below.
    auto archive = makeArchive(archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
}

void tst_ScopeShot::emptyShot()
{
    ScopeShot shot;
    QCOMPARE(shot.archive(), nullptr);
    QCOMPARE(shot.timeBase(), 0);
    QVERIFY(shot.channelNumbers().isEmpty());
    QCOMPARE(shot.startTime(), 0);
    QCOMPARE(shot.endTime(), 0);
    QCOMPARE(shot.name(), QString());
    QVERIFY(!shot.load());
    int source = 0;
    shot.setReadOutSource(&source);
    QCOMPARE(shot.readOutSource(), &source);
}

void tst_ScopeShot::load()
{
    auto archive = makeArchive(archiveText("62.5", "2", "3", "1", {"0;1.5;-2", "1;2.5;-3", "2;3.5;-4"},
                                           {{0, 1}, {1, 3}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.name(), QStringLiteral("Test shot"));
    QCOMPARE(shot.timeBase(), 625);
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 1}));
    ScopeTrace* first = shot.trace(0);
    ScopeTrace* second = shot.trace(1);
    QVERIFY(first && second);
    QCOMPARE(first->parent(), &shot);
    QCOMPARE(first->shot(), &shot);
    QCOMPARE(first->number(), 0);
    QCOMPARE(second->number(), 1);
    QCOMPARE(first->samples(), (QVector<double>{1.5, 2.5, 3.5}));
    QCOMPARE(second->samples(), (QVector<double>{-2, -3, -4}));
    QCOMPARE(first->timeBase(), 625u);
    QCOMPARE(first->triggerIndex(), 1);
    QCOMPARE(first->name(), QStringLiteral("Channel 0"));
    QCOMPARE(shot.startTime(), -62500);
    QCOMPARE(shot.endTime(), 62500);
}

void tst_ScopeShot::timeBase_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<int>("timeBase");
    QTest::addColumn<bool>("loaded");
    QTest::newRow("62.5 us") << QByteArray("62.5") << 625 << true;
    QTest::newRow("1 us") << QByteArray("1") << 10 << true;
    QTest::newRow("truncated") << QByteArray("0.129") << 1 << true;
    QTest::newRow("0.05 truncates to 0") << QByteArray("0.05") << 0 << false;
    QTest::newRow("empty") << QByteArray("") << 0 << false;
    QTest::newRow("garbage") << QByteArray("fast") << 0 << false;
    QTest::newRow("negative") << QByteArray("-5") << 0 << false;
}

void tst_ScopeShot::timeBase()
{
    QFETCH(QByteArray, text);
    QFETCH(int, timeBase);
    QFETCH(bool, loaded);
    auto archive = makeArchive(archiveText(text, "1", "2", "0", {"0;1", "1;2"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QCOMPARE(shot.load(), loaded);
    QCOMPARE(shot.timeBase(), timeBase);
    QCOMPARE(shot.channelNumbers().size(), loaded ? 1 : 0);
}

void tst_ScopeShot::missingSections()
{
    QByteArray text = archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}});
    QByteArray noShot = text;
    noShot.replace("[ScopeShot]", "[Other]");
    QByteArray noData = text;
    noData.replace("[Data]", "[Other2]");
    for (const QByteArray& variant : {noShot, noData}) {
        auto archive = makeArchive(variant);
        ScopeShot shot;
        shot.setArchive(archive.get());
        QVERIFY(!shot.load());
        QVERIFY(shot.channelNumbers().isEmpty());
    }
}

void tst_ScopeShot::noChannels()
{
    auto archive = makeArchive(archiveText("1", "0", "1", "0", {"0;1"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(!shot.load());
    QVERIFY(shot.channelNumbers().isEmpty());
}

void tst_ScopeShot::frameCountZero()
{
    auto archive = makeArchive(archiveText("1", "2", "0", "0", {"0;1;2"}, {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 1}));
    QVERIFY(shot.trace(0)->samples().isEmpty());
    QVERIFY(shot.trace(1)->samples().isEmpty());
}

void tst_ScopeShot::channelNumbers()
{
    // Channels 1 and 3 are unused (SourceType 0), 4 has no section.
    auto archive = makeArchive(archiveText("1", "6", "1", "0", {"0;10;11;12;13;14;15"},
                                           {{0, 1}, {1, 0}, {2, 2}, {3, 0}, {5, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 2, 5}));
    QCOMPARE(shot.trace(1), nullptr);
    QCOMPARE(shot.trace(4), nullptr);
    QCOMPARE(shot.trace(6), nullptr);
    // An unused channel keeps its index for the others.
    QCOMPARE(shot.trace(2)->samples(), QVector<double>{12});
    QCOMPARE(shot.trace(5)->samples(), QVector<double>{15});
    QCOMPARE(shot.trace(5)->number(), 5);
}

void tst_ScopeShot::startAndEndTime()
{
    // Trigger at the first sample: every trace starts at 0, the shot too.
    auto archive = makeArchive(archiveText("1", "1", "3", "0", {"0;1", "1;2", "2;3"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->startTime(), 0);
    QCOMPARE(shot.startTime(), 0);
    QCOMPARE(shot.endTime(), 2000);
    // Trigger after the last sample: the shot still ends at 0 at the latest.
    auto late = makeArchive(archiveText("1", "1", "3", "10", {"0;1", "1;2", "2;3"}, {{0, 1}}));
    ScopeShot lateShot;
    lateShot.setArchive(late.get());
    QVERIFY(lateShot.load());
    QCOMPARE(lateShot.trace(0)->endTime(), -8000);
    QCOMPARE(lateShot.endTime(), 0);
    QCOMPARE(lateShot.startTime(), -10000);
}

void tst_ScopeShot::shortAndMissingRows()
{
    // Row 1 lacks channel 2, row 2 is missing entirely, row 3 has field 0 only.
    auto archive = makeArchive(archiveText("1", "3", "5", "0",
                                           {"0;1.0;2.0;3.0", "1;4.0;5.0", "", "3", "4;7.0;8.0;9.0"},
                                           {{0, 1}, {1, 1}, {2, 1}}));
    QByteArray text = archive->toByteArray();
    text.replace("Data_2=\r\n", "");
    archive = makeArchive(text);
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->samples(), (QVector<double>{1, 4, 0, 0, 7}));
    QCOMPARE(shot.trace(1)->samples(), (QVector<double>{2, 5, 0, 0, 8}));
    QCOMPARE(shot.trace(2)->samples(), (QVector<double>{3, 0, 0, 0, 9}));
}

void tst_ScopeShot::fieldZeroIgnored()
{
    auto archive = makeArchive(archiveText("1", "2", "2", "0", {"whatever it holds;1;2", "-99e99;3;4"},
                                           {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->samples(), (QVector<double>{1, 3}));
    QCOMPARE(shot.trace(1)->samples(), (QVector<double>{2, 4}));
}

void tst_ScopeShot::numberText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("integer") << QByteArray("42");
    QTest::newRow("negative") << QByteArray("-3.25");
    QTest::newRow("leading blanks") << QByteArray("   7.5");
    QTest::newRow("trailing blanks") << QByteArray("7.5  ");
    QTest::newRow("leading plus") << QByteArray("+1.5");
    QTest::newRow("exponent") << QByteArray("1.5e3");
    QTest::newRow("negative exponent") << QByteArray("-2E-4");
    QTest::newRow("plus exponent") << QByteArray("3e+2");
    QTest::newRow("leading dot") << QByteArray(".5");
    QTest::newRow("trailing dot") << QByteArray("5.");
    QTest::newRow("empty") << QByteArray("");
    QTest::newRow("blank") << QByteArray(" ");
    QTest::newRow("letters") << QByteArray("abc");
    QTest::newRow("trailing garbage") << QByteArray("1.5x");
    QTest::newRow("double sign") << QByteArray("+-1");
    QTest::newRow("comma") << QByteArray("1,5");
    QTest::newRow("large") << QByteArray("1.7976931348623157e308");
    QTest::newRow("tenth") << QByteArray("0.1");
    QTest::newRow("negative zero") << QByteArray("-0.000");
    QTest::newRow("15 digits") << QByteArray("123456789012345");
    QTest::newRow("15 digits fraction") << QByteArray("-1.23456789012345");
    QTest::newRow("16 digits") << QByteArray("1234567890123456");
    QTest::newRow("beyond 2^53") << QByteArray("9007199254740993");
    QTest::newRow("many decimals") << QByteArray("0.30000000000000004");
    QTest::newRow("two points") << QByteArray("1.2.3");
    QTest::newRow("sign only") << QByteArray("-");
    QTest::newRow("plus only") << QByteArray("+");
    QTest::newRow("plus and blank") << QByteArray(" + ");
    QTest::newRow("point only") << QByteArray(".");
    QTest::newRow("infinity") << QByteArray("inf");
}

void tst_ScopeShot::numberTextMatchesQt()
{
    // Decimals of every length as a recorder writes them, against Qt's reading.
    quint64 state = 88172645463325252ull;
    auto next = [&state] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return state;
    };
    for (int i = 0; i < 200000; ++i) {
        const int decimals = int(next() % 12);
        const double magnitude = std::pow(10.0, double(next() % 10) - 3.0);
        const double value = (double(next() % 2000001) / 1000000.0 - 1.0) * magnitude;
        const QByteArray text = QByteArray::number(value, 'f', decimals);
        bool ok = false;
        const double parsed = ScopeNumbers::toDouble(text, &ok);
        bool expectedOk = false;
        const double expected = text.toDouble(&expectedOk);
        if (!ok || !expectedOk || std::memcmp(&parsed, &expected, sizeof parsed) != 0)
            QFAIL(text.constData());
    }
}

void tst_ScopeShot::numberText()
{
    QFETCH(QByteArray, text);
    bool expectedOk = false;
    const double expected = text.toDouble(&expectedOk);
    bool ok = false;
    const double value = ScopeNumbers::toDouble(text, &ok);
    QCOMPARE(ok, expectedOk);
    QCOMPARE(value, expected);

    // The same value comes out of a data row, at its end and between fields.
    auto archive = makeArchive(archiveText("1", "3", "1", "0", {"0;" + text + ";2.5;" + text}, {{0, 1}, {1, 1}, {2, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->samples(), QVector<double>{expected});
    QCOMPARE(shot.trace(1)->samples(), QVector<double>{2.5});
    QCOMPARE(shot.trace(2)->samples(), QVector<double>{expected});
}

void tst_ScopeShot::countsBoundedByRows()
{
    // FrameCount claims 1000 frames, the highest row is Data_3.
    auto archive = makeArchive(archiveText("1", "1", "1000", "0", {"0;1", "1;2", "2;3", "3;4"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->samples(), (QVector<double>{1, 2, 3, 4}));
    // Rows beyond the claimed count are not read.
    auto fewer = makeArchive(archiveText("1", "1", "2", "0", {"0;1", "1;2", "2;3", "3;4"}, {{0, 1}}));
    ScopeShot fewerShot;
    fewerShot.setArchive(fewer.get());
    QVERIFY(fewerShot.load());
    QCOMPARE(fewerShot.trace(0)->samples(), (QVector<double>{1, 2}));
}

void tst_ScopeShot::malformedArchive_data()
{
    QTest::addColumn<QByteArray>("timeBase");
    QTest::addColumn<QByteArray>("channelCount");
    QTest::addColumn<QByteArray>("frameCount");
    QTest::addColumn<QByteArray>("triggerIndex");
    QTest::addColumn<QByteArray>("extraRows");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<QList<double>>("samples");
    const QList<double> plain{1.5, 2.5};
    QTest::newRow("plain") << QByteArray("1") << QByteArray("1") << QByteArray("2") << QByteArray("0")
                           << QByteArray() << true << plain;
    QTest::newRow("negative channel count") << QByteArray("1") << QByteArray("-1") << QByteArray("2")
                                            << QByteArray("0") << QByteArray() << false << QList<double>();
    QTest::newRow("channel count beyond 64 bits") << QByteArray("1") << QByteArray("99999999999999999999999")
                                                  << QByteArray("2") << QByteArray("0") << QByteArray() << false
                                                  << QList<double>();
    QTest::newRow("largest channel count") << QByteArray("1") << QByteArray("18446744073709551615")
                                           << QByteArray("2") << QByteArray("0") << QByteArray() << true << plain;
    QTest::newRow("huge time base") << QByteArray("1e300") << QByteArray("1") << QByteArray("2") << QByteArray("0")
                                    << QByteArray() << false << QList<double>();
    QTest::newRow("nan time base") << QByteArray("nan") << QByteArray("1") << QByteArray("2") << QByteArray("0")
                                   << QByteArray() << false << QList<double>();
    QTest::newRow("huge trigger index") << QByteArray("1") << QByteArray("1") << QByteArray("2")
                                        << QByteArray("99999999999") << QByteArray() << true << plain;
    QTest::newRow("garbage frame count") << QByteArray("1") << QByteArray("1") << QByteArray("many")
                                         << QByteArray("0") << QByteArray() << true << QList<double>();
    QTest::newRow("odd row keys") << QByteArray("1") << QByteArray("1") << QByteArray("2") << QByteArray("0")
                                  << QByteArray("Data_01=0;9\r\nData_x=0;9\r\nData_-1=0;9\r\nData_=0;9\r\n"
                                                "Data_99999999999999999999999=0;9\r\n")
                                  << true << plain;
    QTest::newRow("out of range value") << QByteArray("1") << QByteArray("1") << QByteArray("3") << QByteArray("0")
                                        << QByteArray("Data_2=0;1e99999\r\n") << true
                                        << QList<double>{1.5, 2.5, 0.0};
    QTest::newRow("long field") << QByteArray("1") << QByteArray("1") << QByteArray("3") << QByteArray("0")
                                << QByteArray("Data_2=0;" + QByteArray(100000, '7') + "\r\n") << true
                                << QList<double>{1.5, 2.5, QByteArray(100000, '7').toDouble()};
    QTest::newRow("many separators") << QByteArray("1") << QByteArray("1") << QByteArray("3") << QByteArray("0")
                                     << QByteArray("Data_2=" + QByteArray(100000, ';') + "\r\n") << true
                                     << QList<double>{1.5, 2.5, 0.0};
}

void tst_ScopeShot::malformedArchive()
{
    QFETCH(QByteArray, timeBase);
    QFETCH(QByteArray, channelCount);
    QFETCH(QByteArray, frameCount);
    QFETCH(QByteArray, triggerIndex);
    QFETCH(QByteArray, extraRows);
    QFETCH(bool, loaded);
    QFETCH(QList<double>, samples);
    QByteArray text = archiveText(timeBase, channelCount, frameCount, triggerIndex, {"0;1.5", "1;2.5"}, {{0, 1}});
    text.replace("Data_1=1;2.5\r\n", "Data_1=1;2.5\r\n" + extraRows);
    auto archive = makeArchive(text);
    ScopeShot shot;
    shot.setArchive(archive.get());
    QCOMPARE(shot.load(), loaded);
    if (!loaded) {
        QVERIFY(shot.channelNumbers().isEmpty());
        return;
    }
    QCOMPARE(shot.channelNumbers(), QList<int>{0});
    QCOMPARE(shot.trace(0)->samples(), samples);
    QVERIFY(shot.trace(0)->triggerIndex() >= 0);
}

void tst_ScopeShot::hugeClaimsLoadSmall()
{
    QByteArray text = archiveText("1", "1000000", "4000000000", "0", {"0;1;2;3", "1;4;5;6", "2;7;8;9"},
                                  {{0, 1}, {2, 1}, {999999, 1}});
    // One row far out: its number bounds the frames, its bytes the samples.
    text += "\r\n[Data]\r\nData_3999999999=0;1;2\r\n";
    auto archive = makeArchive(text);
    ScopeShot shot;
    shot.setArchive(archive.get());
    const qint64 before = readResidentKiB();
    const bool canMeasure = resetPeak();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(shot.load());
    const qint64 elapsed = timer.elapsed();
    const qint64 grown = readPeakKiB() - before;
    qInfo("load: %lld ms, peak resident memory grew by %lld KiB", elapsed, grown);
    QVERIFY2(elapsed < 100, qPrintable(QStringLiteral("%1 ms").arg(elapsed)));
    if (canMeasure)
        QVERIFY2(grown < 16 * 1024, qPrintable(QStringLiteral("%1 KiB").arg(grown)));
    // Channel 999999 lies beyond every row: it gets no trace.
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 2}));
    // At most as many samples as the rows have bytes ÷ 2.
    qsizetype samples = 0;
    for (int number : shot.channelNumbers())
        samples += shot.trace(number)->samples().size();
    QVERIFY(samples <= 3 * 7 / 2 + 14 / 2);
    QCOMPARE(shot.trace(0)->samples().mid(0, 3), (QVector<double>{1, 4, 7}));
}

void tst_ScopeShot::manyChannelsOneFieldRows()
{
    QByteArray text = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n[Archive]\r\nID=x\r\n\r\n"
                      "[ScopeShot]\r\nTimeBase=1\r\n\r\n[Data]\r\nChannelCount=10000\r\nFrameCount=10000\r\n"
                      "TriggerIndex=0\r\n";
    for (int i = 0; i < 10000; ++i)
        text += "Data_" + QByteArray::number(i) + "=" + QByteArray::number(i) + "\r\n";
    for (int c = 0; c < 10000; ++c)
        text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\n";
    auto archive = makeArchive(text);
    ScopeShot shot;
    shot.setArchive(archive.get());
    const qint64 before = readResidentKiB();
    const bool canMeasure = resetPeak();
    QElapsedTimer timer;
    timer.start();
    QVERIFY(shot.load());
    const qint64 elapsed = timer.elapsed();
    const qint64 grown = readPeakKiB() - before;
    qInfo("load: %lld ms, peak resident memory grew by %lld KiB", elapsed, grown);
    QVERIFY2(elapsed < 100, qPrintable(QStringLiteral("%1 ms").arg(elapsed)));
    if (canMeasure)
        QVERIFY2(grown < 16 * 1024, qPrintable(QStringLiteral("%1 KiB").arg(grown)));
    // The rows hold no samples, so no channel gets a trace: an empty
    // recording instead of 10,000 traces × 10,000 frames (800 MB).
    QVERIFY(shot.channelNumbers().isEmpty());
}

void tst_ScopeShot::manyTracesGoQuickly()
{
    // 40,000 channels that one row reaches: a shot of 40,000 traces.
    constexpr int channels = 40000;
    QByteArray text = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n[Archive]\r\nID=x\r\n\r\n"
                      "[ScopeShot]\r\nTimeBase=1\r\n\r\n[Data]\r\nChannelCount=40000\r\nFrameCount=1\r\n"
                      "TriggerIndex=0\r\nData_0=0";
    for (int c = 0; c < channels; ++c)
        text += ";1.5";
    text += "\r\n";
    for (int c = 0; c < channels; ++c)
        text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\n";
    auto archive = makeArchive(text);
    auto shot = std::make_unique<ScopeShot>();
    shot->setArchive(archive.get());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(shot->load());
    const qint64 loading = timer.restart();
    QCOMPARE(shot->channelNumbers().size(), channels);
    QCOMPARE(shot->trace(channels - 1)->samples(), QVector<double>{1.5});
    shot.reset();
    const qint64 destroying = timer.elapsed();
    qInfo("40,000 traces: load %lld ms, destruction %lld ms", loading, destroying);
    // Destruction must not be quadratic in the number of traces (removing
    // them one by one from the shot's children took seconds).
    QVERIFY2(destroying < 1500, qPrintable(QStringLiteral("%1 ms").arg(destroying)));
}

void tst_ScopeShot::channelsBeyondEveryRow()
{
    // Rows reach channels 0 and 1 only; channel 2 has a section but no data.
    auto archive = makeArchive(archiveText("1", "3", "2", "0", {"0;1.0;2.0", "1;3.0"}, {{0, 1}, {1, 1}, {2, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 1}));
    QCOMPARE(shot.trace(1)->samples(), (QVector<double>{2, 0}));
}

void tst_ScopeShot::reloadKeepsUnusedTrace()
{
    auto archive = makeArchive(archiveText("1", "2", "2", "0", {"0;1;2", "1;3;4"}, {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    ScopeTrace* first = shot.trace(0);
    ScopeTrace* second = shot.trace(1);
    archive->channelSection(1)->setValue("SourceType", "0");
    archive->dataSection()->setValue("Data_0", "0;10;20");
    Q_EMIT archive->scopeElementsChanged();
    // Channel 1 is no longer used, yet its trace stays as it was.
    QCOMPARE(shot.trace(1), second);
    QCOMPARE(second->samples(), (QVector<double>{2, 4}));
    // Channel 0 is reused with the new data.
    QCOMPARE(shot.trace(0), first);
    QCOMPARE(first->samples(), (QVector<double>{10, 3}));
    // A channel newly in use gets a new trace.
    archive->channelSection(1)->setValue("SourceType", "1");
    archive->iniParser()->findOrCreateSection("ScopeChannel_2")->setValue("SourceType", "1");
    archive->dataSection()->setValue("ChannelCount", "3");
    archive->dataSection()->setValue("Data_1", "1;3;4;5");
    Q_EMIT archive->scopeElementsChanged();
    QCOMPARE(shot.channelNumbers(), (QList<int>{0, 1, 2}));
    QCOMPARE(shot.trace(1), second);
    QCOMPARE(shot.trace(2)->samples(), (QVector<double>{0, 5}));
}

void tst_ScopeShot::reloadSignalsQueued()
{
    auto archive = makeArchive(archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QSignalSpy changed(&shot, &ScopeShot::changed);
    Q_EMIT archive->scopeElementsChanged();
    const int direct = changed.count();
    QTRY_COMPARE(changed.count(), direct + 1);
    // Also when the sections are gone.
    archive->iniParser()->removeSection("Data");
    Q_EMIT archive->scopeElementsChanged();
    QTRY_COMPARE(changed.count(), direct + 2);
}

void tst_ScopeShot::saveTraceViews()
{
    auto archive = makeArchive(archiveText("1", "2", "1", "0", {"0;1;2"}, {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    shot.trace(1)->setColor(QColor(1, 2, 3));
    shot.trace(0)->setVerticalOffset(2.5);
    shot.saveTraceViews();
    QCOMPARE(archive->channelSection(0)->value("ViewVerticalOffset"), QByteArray("2.5"));
    QCOMPARE(archive->channelSection(1)->value("Color"), QByteArray::number(QColor(1, 2, 3).rgba()));
}

void tst_ScopeShot::changesReachArchive()
{
    auto archive = makeArchive(archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QVERIFY(shot.load());
    QSignalSpy shotChanged(&shot, &ScopeShot::changed);
    QSignalSpy archiveChanged(archive.get(), &ScopeElementArchive::scopeElementChanged);
    shot.trace(0)->setTriggerIndex(5);
    QCOMPARE(shotChanged.count(), 1);
    QCOMPARE(archiveChanged.count(), 1);
    // A view change comes directly and once more through the event queue.
    shot.trace(0)->setColor(Qt::green);
    QCOMPARE(shotChanged.count(), 2);
    QTRY_COMPARE(shotChanged.count(), 3);
    QCOMPARE(archiveChanged.count(), 3);
}

void tst_ScopeShot::archiveChangeUpdatesControls()
{
    auto archive = makeArchive(archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    shot.setArchive(archive.get());
    QSignalSpy controls(&shot, &ScopeShot::needUpdateControls);
    Q_EMIT archive->scopeElementChanged();
    QCOMPARE(controls.count(), 1);
}

void tst_ScopeShot::setArchiveReplacesConnections()
{
    auto first = makeArchive(archiveText("1", "1", "1", "0", {"0;1"}, {{0, 1}}));
    auto second = makeArchive(archiveText("2", "1", "1", "0", {"0;7"}, {{0, 1}}));
    ScopeShot shot;
    shot.setArchive(first.get());
    QVERIFY(shot.load());
    shot.setArchive(second.get());
    QCOMPARE(shot.archive(), second.get());
    QSignalSpy controls(&shot, &ScopeShot::needUpdateControls);
    Q_EMIT first->scopeElementChanged();
    Q_EMIT first->scopeElementsChanged();
    QCOMPARE(controls.count(), 0);
    QCOMPARE(shot.trace(0)->samples(), QVector<double>{1});
    Q_EMIT second->scopeElementsChanged();
    QCOMPARE(shot.trace(0)->samples(), QVector<double>{7});
    QCOMPARE(shot.timeBase(), 20);
}

void tst_ScopeShot::quickMeasureFanOut()
{
    auto archive = makeArchive(archiveText("1", "2", "3", "1", {"0;1;4", "1;2;5", "2;3;6"}, {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QSignalSpy first(shot.trace(0), &ScopeTrace::quickMeasureValue);
    QSignalSpy second(shot.trace(1), &ScopeTrace::quickMeasureValue);
    Q_EMIT shot.publishQuickMeasureRequest(1000);
    QCOMPARE(first.count(), 1);
    QCOMPARE(second.count(), 1);
    QCOMPARE(first.at(0).at(0).value<qint64>(), qint64(1000));
    QCOMPARE(first.at(0).at(2).toBool(), true);
    QVERIFY(second.at(0).at(1).toString().startsWith(QStringLiteral("6")));
    Q_EMIT shot.publishQuickMeasureDisabled();
    QCOMPARE(first.count(), 2);
    QCOMPARE(second.count(), 2);
    QCOMPARE(second.at(1).at(2).toBool(), false);
}

void tst_ScopeShot::paintOwnTracesOnly()
{
    auto archive = makeArchive(archiveText("1", "2", "4", "0", {"0;1;2", "1;2;3", "2;3;4", "3;4;5"}, {{0, 1}, {1, 1}}));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    ScopeShot other;
    auto otherArchive = makeArchive(archiveText("1", "1", "4", "0", {"0;1", "1;2", "2;3", "3;4"}, {{0, 1}}));
    other.setArchive(otherArchive.get());
    QVERIFY(other.load());
    shot.trace(0)->setColor(QColor(0, 255, 0));
    shot.trace(1)->setColor(QColor(255, 0, 255));
    other.trace(0)->setColor(QColor(255, 255, 0));
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 400, 300));
    auto render = [&](const QList<ScopeTrace*>& traces) {
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        painter.setPen(Qt::red);
        shot.paint(&layout, &painter, traces, -500, 3500);
        // The painter's state is kept.
        if (painter.pen().color() != QColor(Qt::red))
            image = QImage();
        return image;
    };
    auto has = [](const QImage& image, const QColor& color) {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (image.pixelColor(x, y) == color)
                    return true;
        return false;
    };
    const QImage image = render({shot.trace(1), other.trace(0)});
    QVERIFY(!image.isNull());
    QVERIFY(has(image, QColor(255, 0, 255)));
    QVERIFY(!has(image, QColor(0, 255, 0)));
    QVERIFY(!has(image, QColor(255, 255, 0)));
    QVERIFY(!has(render({}), QColor(255, 0, 255)));
}

QTEST_MAIN(tst_ScopeShot)
#include "tst_scopeshot.moc"
