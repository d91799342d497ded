// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"

#include "appsettings.h"
#include "iniparser.h"
#include "scopelayout.h"

#include <QtCore/QStandardPaths>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <cmath>
#include <limits>

namespace {
// Drive data type numbers of the type registry.
constexpr quint8 int8Type = 1;
constexpr quint8 int16Type = 2;
constexpr quint8 uint32Type = 4;
constexpr quint8 int64Type = 5;
constexpr quint8 float32Type = 7;
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
}

class tst_ScopeTrace : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void defaults();
    void emptyTrace();
    void sampleTimes();
    void autoScale_data();
    void autoScale();
    void autoScaleBinaryView();
    void setterSignals();
    void setSamplesComparesElements();
    void anchoredScaling();
    void offIgnoresScaleAndOffset();
    void zoomNormal();
    void zoomBinary_data();
    void zoomBinary();
    void shiftVerticalOffset();
    void groundWithoutAnimation();
    void groundTwiceAnimatesOnce();
    void groundAndReleaseQuickly();
    void offAndInvertAnimated();
    void binaryViewRestoresFactor();
    void binaryViewMask_data();
    void binaryViewMask();
    void valueText_data();
    void valueText();
    void valueTextLocaleDecimalPoint();
    void quickMeasure();
    void quickMeasureDisabled();
    void readSection();
    void readSectionIsSilent();
    void readSectionMalformed();
    void writeSection();
    void extents();
};

void tst_ScopeTrace::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeTrace::defaults()
{
    QObject shot;
    ScopeTrace trace(&shot, 3);
    QCOMPARE(trace.shot(), &shot);
    QCOMPARE(trace.parent(), &shot);
    QCOMPARE(trace.number(), 3);
    QVERIFY(trace.name().isEmpty());
    QVERIFY(trace.measure().isEmpty());
    QCOMPARE(trace.physicalDatatype(), quint8(0));
    QCOMPARE(trace.decimalPlaces(), 7u);
    QCOMPARE(trace.parameterKind(), 0);
    QCOMPARE(trace.color(), AppSettings::instance()->defaultTraceColor(3));
    QVERIFY(trace.color().isValid());
    QCOMPARE(trace.verticalOffset(), 0.0);
    QCOMPARE(trace.timeBase(), 1u);
    QCOMPARE(trace.triggerIndex(), 0);
    QCOMPARE(trace.scalingFactor(), 1.0);
    QCOMPARE(trace.groundScalingFactor(), 1.0);
    QCOMPARE(trace.offAlphaFactor(), 1.0);
    QCOMPARE(trace.invertScalingFactor(), 1.0);
    QCOMPARE(trace.unitsPerPixel(), 1.0);
    QCOMPARE(trace.anchorTime(), qint64(0));
    QCOMPARE(trace.anchorValue(), 19.0);
    QVERIFY(!trace.isOff());
    QVERIFY(!trace.isGround());
    QVERIFY(!trace.isInverted());
    QVERIFY(!trace.isBinaryView());
    QCOMPARE(trace.binaryViewMask(), 0xffffffffu);
    QVERIFY(trace.binaryBits().isEmpty());
    QCOMPARE(trace.binaryScalingFactorBackup(), 1.0);
    QCOMPARE(trace.verticalUnits(), 6);
    QCOMPARE(trace.binaryLabelExtent(), 0);
}

void tst_ScopeTrace::emptyTrace()
{
    ScopeTrace trace(nullptr, 0);
    trace.setTimeBase(10);
    trace.setTriggerIndex(3);
    QCOMPARE(trace.startTime(), qint64(-3000));
    QCOMPARE(trace.endTime(), qint64(-4000));
    trace.autoScale();
    QCOMPARE(trace.scalingFactor(), 5.0);
    QCOMPARE(trace.verticalOffset(), 1.0);
}

void tst_ScopeTrace::sampleTimes()
{
    ScopeTrace trace(nullptr, 0);
    trace.setTimeBase(625);
    trace.setTriggerIndex(2);
    trace.setSamples({1, 2, 3, 4, 5});
    QCOMPARE(trace.startTime(), qint64(-125000));
    QCOMPARE(trace.endTime(), qint64(2 * 62500));
    QCOMPARE(trace.sampleTime(0), qint64(-125000));
    QCOMPARE(trace.sampleIndex(0), 2);
    QCOMPARE(trace.sampleIndex(62499), 2);
    QCOMPARE(trace.sampleIndex(62500), 3);
    QCOMPARE(trace.sampleIndex(-1), 1);
    QCOMPARE(trace.sampleIndex(-125001), -1);
}

void tst_ScopeTrace::autoScale_data()
{
    QTest::addColumn<QVector<double>>("samples");
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("offset");
    QTest::newRow("empty") << QVector<double>() << 5.0 << 1.0;
    QTest::newRow("all 5") << QVector<double>(10, 5.0) << 1.0 << 1.0;
    QTest::newRow("-3 to 3") << QVector<double>{-3.0, 0.0, 3.0} << 1.0 << 4.0;
    QTest::newRow("0 to 100") << QVector<double>{0.0, 100.0} << 0.05 << 1.0;
    QTest::newRow("-10 to -2") << QVector<double>{-10.0, -2.0} << 0.5 << 6.0;
    QTest::newRow("-0.1 to 0.2") << QVector<double>{-0.1, 0.2} << 5.0 << 2.0;
}

void tst_ScopeTrace::autoScale()
{
    QFETCH(QVector<double>, samples);
    QFETCH(double, factor);
    QFETCH(double, offset);
    ScopeTrace trace(nullptr, 0);
    trace.setSamples(samples);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    trace.autoScale();
    QCOMPARE(trace.scalingFactor(), factor);
    QCOMPARE(trace.verticalOffset(), offset);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(viewChanged.count(), 1);
}

void tst_ScopeTrace::autoScaleBinaryView()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({100.0, 200.0});
    trace.setBinaryView(true);
    trace.autoScale();
    QCOMPARE(trace.scalingFactor(), 0.25);
    QCOMPARE(trace.verticalOffset(), 1.0);
}

void tst_ScopeTrace::setterSignals()
{
    ScopeTrace trace(nullptr, 0);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);

    trace.setTriggerIndex(4);
    trace.setTimeBase(5);
    trace.setSamples({1.0});
    trace.setParameterKind(0); // stores and signals without comparing
    QCOMPARE(changed.count(), 4);
    QCOMPARE(viewChanged.count(), 0);

    trace.setTriggerIndex(4);
    trace.setTimeBase(5);
    trace.setSamples({1.0});
    QCOMPARE(changed.count(), 4);

    trace.setColor(Qt::blue);
    trace.setVerticalOffset(2.5);
    QCOMPARE(changed.count(), 6);
    QCOMPARE(viewChanged.count(), 2);
    trace.setColor(Qt::blue);
    trace.setVerticalOffset(2.5);
    QCOMPARE(changed.count(), 6);
    QCOMPARE(viewChanged.count(), 2);
}

void tst_ScopeTrace::setSamplesComparesElements()
{
    ScopeTrace trace(nullptr, 0);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    trace.setSamples({1.0, notANumber});
    QCOMPARE(changed.count(), 1);
    // NaN never equals itself, so the same vector counts as new.
    trace.setSamples({1.0, notANumber});
    QCOMPARE(changed.count(), 2);
    trace.setSamples({1.0, 2.0});
    trace.setSamples({1.0, 2.0});
    QCOMPARE(changed.count(), 3);
    trace.setSamples({1.0, 2.0, 3.0});
    QCOMPARE(changed.count(), 4);
    QCOMPARE(trace.samples(), QVector<double>({1.0, 2.0, 3.0}));
}

void tst_ScopeTrace::anchoredScaling()
{
    ScopeTrace trace(nullptr, 0);
    trace.setTimeBase(10); // 1 µs per sample
    trace.setSamples({0.0, 1.0, 2.0, 3.0, 4.0});
    trace.setVerticalOffset(1.0);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);

    // Zoom about sample 3 (value 3): it must keep its height of 1 × 3 + 1 = 4.
    trace.zoomIn(3000);
    QCOMPARE(trace.anchorTime(), qint64(3000));
    QCOMPARE(trace.anchorValue(), 3.0);
    QCOMPARE(trace.scalingFactor(), 2.0);
    QCOMPARE(trace.scalingFactor() * 3.0 + trace.verticalOffset(), 4.0);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(viewChanged.count(), 1);

    // A time without a sample keeps the last anchor value.
    trace.zoomOut(1000000);
    QCOMPARE(trace.anchorValue(), 3.0);
    QCOMPARE(trace.scalingFactor(), 1.0);
    QCOMPARE(trace.scalingFactor() * 3.0 + trace.verticalOffset(), 4.0);

    // The same factor again changes nothing and says nothing.
    trace.setScalingFactor(1.0);
    QCOMPARE(changed.count(), 2);

    // Inverted, the anchor is the inverted value.
    trace.setInverted(true, false);
    trace.setScalingFactor(0.5);
    QCOMPARE(trace.anchorValue(), 3.0); // anchor time 1000000 has no sample
    trace.zoomIn(2000);
    QCOMPARE(trace.anchorValue(), -2.0);
}

void tst_ScopeTrace::offIgnoresScaleAndOffset()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({0.0, 1.0});
    trace.setOff(true, false);
    QCOMPARE(trace.offAlphaFactor(), 0.0);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    trace.setScalingFactor(2.0);
    trace.setVerticalOffset(3.0);
    trace.zoomIn();
    trace.zoomOut(0);
    trace.shiftVerticalOffset(10);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(trace.scalingFactor(), 1.0);
    QCOMPARE(trace.verticalOffset(), 0.0);
}

void tst_ScopeTrace::zoomNormal()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0, 1.0, 1.0});
    trace.setScalingFactor(1.0);
    const double steps[] = {2.0, 5.0, 10.0, 20.0};
    for (double expected : steps) {
        trace.zoomIn(0);
        QCOMPARE(trace.scalingFactor(), expected);
    }
    const double back[] = {10.0, 5.0, 2.0, 1.0, 0.5, 0.2, 0.1};
    for (double expected : back) {
        trace.zoomOut(0);
        QVERIFY(std::fabs(trace.scalingFactor() - expected) <= expected * 1e-12);
    }
    // Without a time the middle of the last painted range is the anchor.
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 200, 200));
    QImage image(200, 200, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    trace.paint(&layout, &painter, -7, 100);
    trace.zoomIn();
    QCOMPARE(trace.anchorTime(), qint64((100 - -7) / 2 + -7));
}

void tst_ScopeTrace::zoomBinary_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<bool>("in");
    QTest::addColumn<double>("expected");
    QTest::newRow("in 0.125") << 0.125 << true << 0.25;
    QTest::newRow("in 0.25") << 0.25 << true << 0.5;
    QTest::newRow("in 0.5") << 0.5 << true << 1.0;
    QTest::newRow("in 1") << 1.0 << true << 1.0;
    QTest::newRow("out 1") << 1.0 << false << 0.5;
    QTest::newRow("out 0.5") << 0.5 << false << 0.25;
    QTest::newRow("out 0.25") << 0.25 << false << 0.125;
    QTest::newRow("out 0.125") << 0.125 << false << 0.125;
}

void tst_ScopeTrace::zoomBinary()
{
    QFETCH(double, start);
    QFETCH(bool, in);
    QFETCH(double, expected);
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0, 2.0});
    trace.setBinaryView(true);
    trace.autoScale();
    trace.setVerticalOffset(3.0);
    // The factor of binary view is stepped directly; reach the start value by stepping.
    while (trace.scalingFactor() > start)
        trace.zoomOut(0);
    while (trace.scalingFactor() < start)
        trace.zoomIn(0);
    QCOMPARE(trace.scalingFactor(), start);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    if (in)
        trace.zoomIn(0);
    else
        trace.zoomOut(0);
    QCOMPARE(trace.scalingFactor(), expected);
    QCOMPARE(trace.verticalOffset(), 3.0);
    // Signalled even when the factor stays.
    QCOMPARE(changed.count(), 1);
    QCOMPARE(viewChanged.count(), 1);
}

void tst_ScopeTrace::shiftVerticalOffset()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0});
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 1000, 600)); // divisions 71 pixels high
    QImage image(1000, 600, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    trace.paint(&layout, &painter, 0, 1000);
    QCOMPARE(trace.unitsPerPixel(), 1.0 / 71);
    trace.setVerticalOffset(1.0);
    trace.shiftVerticalOffset(71);
    QVERIFY(std::fabs(trace.verticalOffset() - 2.0) < 1e-12);
}

void tst_ScopeTrace::groundWithoutAnimation()
{
    ScopeTrace trace(nullptr, 0);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    trace.setGround(true, false);
    QCOMPARE(trace.groundScalingFactor(), 0.0);
    QVERIFY(trace.isGround());
    QCOMPARE(changed.count(), 1);
    QCOMPARE(viewChanged.count(), 1);
    trace.setGround(true, false);
    QCOMPARE(changed.count(), 1);
    trace.setGround(false, false);
    QCOMPARE(trace.groundScalingFactor(), 1.0);
}

void tst_ScopeTrace::groundTwiceAnimatesOnce()
{
    ScopeTrace trace(nullptr, 0);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    trace.setGround(true, true);
    QCOMPARE(viewChanged.count(), 1);
    QVERIFY(trace.isGround());
    QCOMPARE(trace.groundScalingFactor(), 1.0); // still at the start value
    trace.setGround(true, true);
    QCOMPARE(viewChanged.count(), 1);
    QTRY_COMPARE(trace.groundScalingFactor(), 0.0);
    // Frames signal changed(); one animation of 250 ms gives a handful of frames,
    // two would not double the count of the first call's frames on top.
    QVERIFY(changed.count() > 2);
}

void tst_ScopeTrace::groundAndReleaseQuickly()
{
    ScopeTrace trace(nullptr, 0);
    QList<double> values;
    connect(&trace, &ScopeTrace::changed, &trace, [&] { values.append(trace.groundScalingFactor()); });
    trace.setGround(true, true);
    trace.setGround(false, true);
    QVERIFY(!trace.isGround());
    // Both animations run: the grounding one reaches its end value 0.0, and
    // the release, started last, writes last in each frame, so 1.0 stays.
    QTRY_VERIFY(values.contains(0.0) && values.last() == 1.0);
    bool between = false;
    for (double value : std::as_const(values))
        between = between || (value > 0.0 && value < 1.0);
    QVERIFY(between);
    QCOMPARE(trace.groundScalingFactor(), 1.0);
}

void tst_ScopeTrace::offAndInvertAnimated()
{
    ScopeTrace trace(nullptr, 0);
    QList<double> invert;
    connect(&trace, &ScopeTrace::changed, &trace, [&] { invert.append(trace.invertScalingFactor()); });
    trace.setOff(true, true);
    trace.setInverted(true, true);
    // Running at the same time, neither stops the other.
    QTRY_COMPARE(trace.offAlphaFactor(), 0.0);
    QTRY_COMPARE(trace.invertScalingFactor(), -1.0);
    bool between = false;
    for (double value : std::as_const(invert))
        between = between || (value > -1.0 && value < 1.0);
    QVERIFY(between);
}

void tst_ScopeTrace::binaryViewRestoresFactor()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0, 2.0});
    trace.setScalingFactor(2.0);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    trace.setBinaryView(true);
    QCOMPARE(viewChanged.count(), 1);
    QCOMPARE(trace.scalingFactor(), 1.0);
    QCOMPARE(trace.binaryScalingFactorBackup(), 2.0);
    QCOMPARE(trace.binaryLabelExtent(), 14);
    trace.zoomOut(0);
    QCOMPARE(trace.scalingFactor(), 0.5);
    trace.setBinaryView(true);
    QCOMPARE(viewChanged.count(), 2); // the zoom
    trace.setBinaryView(false);
    QCOMPARE(trace.scalingFactor(), 2.0);
    QCOMPARE(trace.binaryScalingFactorBackup(), 0.5);
    trace.setBinaryView(true);
    QCOMPARE(trace.scalingFactor(), 0.5);
}

void tst_ScopeTrace::binaryViewMask_data()
{
    QTest::addColumn<quint8>("datatype");
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<QByteArray>("bits");
    QTest::newRow("int16 all") << int16Type << 0xffffffffu
                               << QByteArray("\x00\x01\x02\x03\x04\x05\x06\x07\x08\x09\x0a\x0b\x0c\x0d\x0e\x0f", 16);
    QTest::newRow("int16 0x8001") << int16Type << 0x8001u << QByteArray("\x00\x0f", 2);
    QTest::newRow("int8 0x300") << int8Type << 0x300u << QByteArray();
    QTest::newRow("int8 0x81") << int8Type << 0x81u << QByteArray("\x00\x07", 2);
    QTest::newRow("unknown type") << quint8(0) << 0xffffffffu << QByteArray();
    QTest::newRow("uint32 top") << uint32Type << 0x80000000u << QByteArray("\x1f", 1);
}

void tst_ScopeTrace::binaryViewMask()
{
    QFETCH(quint8, datatype);
    QFETCH(unsigned, mask);
    QFETCH(QByteArray, bits);
    ScopeTrace trace(nullptr, 0);
    trace.setPhysicalDatatype(datatype);
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    trace.setBinaryViewMask(mask);
    QCOMPARE(trace.binaryViewMask(), mask);
    QCOMPARE(trace.binaryBits(), bits);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(viewChanged.count(), 1);
    // Stored and signalled even when unchanged.
    trace.setBinaryViewMask(mask);
    QCOMPARE(changed.count(), 2);
}

void tst_ScopeTrace::valueText_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<quint8>("datatype");
    QTest::addColumn<unsigned>("decimals");
    QTest::addColumn<bool>("binaryView");
    QTest::addColumn<unsigned>("mask");
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("withUnit");
    QTest::addColumn<QString>("expected");

    const unsigned all = 0xffffffffu;
    QTest::newRow("nan") << 0 << int16Type << 0u << false << all << notANumber << true << QStringLiteral("---");
    QTest::newRow("nan binary view") << 4 << int16Type << 0u << true << all << notANumber << false << QStringLiteral("---");
    QTest::newRow("hex 8 byte high half lost") << 3 << int64Type << 0u << false << all << 4294967306.0 << false
                                               << QStringLiteral("0000 0000 0000 000a hex");
    QTest::newRow("hex 1 byte") << 3 << int8Type << 0u << false << all << 255.0 << false << QStringLiteral("ff hex");
    QTest::newRow("hex 2 byte") << 3 << int16Type << 0u << false << all << 4660.0 << true << QStringLiteral("1234 hex");
    QTest::newRow("hex 4 byte") << 3 << uint32Type << 0u << false << all << 305419896.0 << false
                                << QStringLiteral("1234 5678 hex");
    QTest::newRow("hex negative") << 3 << int16Type << 0u << false << all << -1.0 << false << QStringLiteral("ffff hex");
    QTest::newRow("hex unknown type") << 3 << quint8(0) << 0u << false << all << 1.0 << false << QStringLiteral(" hex");
    QTest::newRow("binary 16 bit") << 4 << int16Type << 0u << false << all << 5.0 << false
                                   << QStringLiteral("0000 0000 0000 0101 bin");
    QTest::newRow("binary view mask 1") << 4 << int16Type << 0u << true << 1u << 5.0 << false
                                        << QStringLiteral("---- ---- ---- ---1 bin");
    QTest::newRow("binary view of a number kind") << 0 << int8Type << 0u << true << 0xf0u << 255.0 << true
                                                  << QStringLiteral("1111 ---- bin");
    QTest::newRow("binary 8 byte repeats") << 4 << int64Type << 0u << false << all << 4294967297.0 << false
                                           << QStringLiteral("0000 0000 0000 0000 0000 0000 0000 0001 "
                                                             "0000 0000 0000 0000 0000 0000 0000 0001 bin");
    QTest::newRow("choice") << 1 << int16Type << 0u << false << all << 2.0 << true << QStringLiteral("2:Run");
    QTest::newRow("choice truncated") << 1 << int16Type << 0u << false << all << 2.7 << false
                                      << QStringLiteral("2.7:Run");
    QTest::newRow("choice without text") << 1 << int16Type << 0u << false << all << 3.0 << false
                                         << QStringLiteral("3:");
    QTest::newRow("time of day") << 7 << uint32Type << 0u << false << all << double((5 << 12) | (7 << 6) | 9)
                                 << true << QStringLiteral("5h 07m 09s");
    QTest::newRow("time of day 23h") << 7 << uint32Type << 0u << false << all
                                     << double((23 << 12) | (59 << 6) | 58) << false
                                     << QStringLiteral("23h 59m 58s");
    QTest::newRow("integer") << 0 << int16Type << 0u << false << all << -12.7 << false << QStringLiteral("-12");
    QTest::newRow("integer with unit") << 2 << int16Type << 0u << false << all << 12.0 << true
                                       << QStringLiteral("12 V");
    QTest::newRow("uint32") << 5 << uint32Type << 0u << false << all << 4000000000.0 << false
                            << QStringLiteral("4000000000");
    QTest::newRow("int64") << 6 << int64Type << 0u << false << all << 1e12 << false
                           << QStringLiteral("1000000000000");
    QTest::newRow("unknown type") << 0 << quint8(0) << 3u << false << all << 1.0 << true << QString();
    QTest::newRow("decimals 1E-6") << 0 << float32Type << 3u << false << all << 0.0001 << false
                                   << QStringLiteral("1E-6");
    QTest::newRow("decimals 12E-6") << 0 << float32Type << 3u << false << all << 0.00012 << false
                                    << QStringLiteral("12E-6");
    QTest::newRow("decimals 0.250") << 0 << float32Type << 3u << false << all << 0.25 << false
                                    << QStringLiteral("0.250");
    QTest::newRow("decimals 15E+6") << 0 << float32Type << 3u << false << all << 15000000.0 << false
                                    << QStringLiteral("15E+6");
    QTest::newRow("decimals negative") << 0 << float32Type << 3u << false << all << -15000000.0 << true
                                       << QStringLiteral("-15E+6 V");
    QTest::newRow("decimals zero") << 0 << float32Type << 2u << false << all << 0.0 << true
                                   << QStringLiteral("0.00 V");
    QTest::newRow("decimals limit") << 0 << float32Type << 1u << false << all << 9999999.4 << false
                                    << QStringLiteral("9999999.4");
    QTest::newRow("decimals 1.23457E+9") << 0 << float32Type << 7u << false << all << 1234567890.0 << false
                                         << QStringLiteral("1.234568E+9");
    QTest::newRow("integer type with decimals") << 0 << int16Type << 1u << false << all << 3.0 << false
                                                << QStringLiteral("3.0");
}

void tst_ScopeTrace::valueText()
{
    QFETCH(int, kind);
    QFETCH(quint8, datatype);
    QFETCH(unsigned, decimals);
    QFETCH(bool, binaryView);
    QFETCH(unsigned, mask);
    QFETCH(double, value);
    QFETCH(bool, withUnit);
    QFETCH(QString, expected);

    ScopeTrace trace(nullptr, 0);
    trace.setParameterKind(kind);
    trace.setPhysicalDatatype(datatype);
    trace.setDecimalPlaces(decimals);
    trace.setMeasure(QStringLiteral("V"));
    trace.setChoiceMap({{2, QStringLiteral("Run")}, {4, QStringLiteral("Stop")}});
    trace.setBinaryViewMask(mask);
    trace.setBinaryView(binaryView);
    QCOMPARE(trace.valueText(value, withUnit), expected);
}

void tst_ScopeTrace::valueTextLocaleDecimalPoint()
{
    const QLocale saved;
    QLocale::setDefault(QLocale(QLocale::German));
    ScopeTrace trace(nullptr, 0);
    trace.setPhysicalDatatype(float32Type);
    trace.setDecimalPlaces(3);
    // The system locale decides the decimal point; under test it is the C locale's.
    const QString point = QLocale::system().decimalPoint();
    QCOMPARE(trace.valueText(0.25, false), QStringLiteral("0") + point + QStringLiteral("250"));
    QLocale::setDefault(saved);
}

void tst_ScopeTrace::quickMeasure()
{
    ScopeTrace trace(nullptr, 0);
    trace.setTimeBase(10);
    trace.setTriggerIndex(1);
    trace.setPhysicalDatatype(int16Type);
    trace.setDecimalPlaces(0);
    trace.setMeasure(QStringLiteral("rpm"));
    trace.setSamples({10.0, 20.0, 30.0});
    trace.setInverted(true, false);
    QSignalSpy spy(&trace, &ScopeTrace::quickMeasureValue);

    trace.publishQuickMeasureRequest(1500);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toLongLong(), qint64(1000));
    QCOMPARE(spy.at(0).at(1).toString(), QStringLiteral("30 rpm")); // the stored sample, not inverted
    QCOMPARE(spy.at(0).at(2).toBool(), true);

    trace.publishQuickMeasureRequest(-1000);
    QCOMPARE(spy.at(1).at(0).toLongLong(), qint64(-1000));
    QCOMPARE(spy.at(1).at(1).toString(), QStringLiteral("10 rpm"));

    // Before the first sample.
    trace.publishQuickMeasureRequest(-1001);
    QCOMPARE(spy.at(2).at(0).toLongLong(), qint64(0));
    QCOMPARE(spy.at(2).at(1).toString(), QString());
    QCOMPARE(spy.at(2).at(2).toBool(), false);
    // After the last one.
    trace.publishQuickMeasureRequest(2000);
    QCOMPARE(spy.at(3).at(2).toBool(), false);

    // Invocable by name, as the shot's connections need.
    QVERIFY(QMetaObject::invokeMethod(&trace, "publishQuickMeasureRequest", Q_ARG(qint64, 0)));
    QCOMPARE(spy.at(4).at(1).toString(), QStringLiteral("20 rpm"));
}

void tst_ScopeTrace::quickMeasureDisabled()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0});
    QSignalSpy spy(&trace, &ScopeTrace::quickMeasureValue);
    trace.publishQuickMeasureDisabled();
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toLongLong(), qint64(0));
    QCOMPARE(spy.at(0).at(1).toString(), QString());
    QCOMPARE(spy.at(0).at(2).toBool(), false);
}

static QByteArray channelText(const QByteArray& keys)
{
    return QByteArray("[ScopeChannel_0]\r\n") + keys;
}

void tst_ScopeTrace::readSection()
{
    KlIniParser::IniParser parser;
    parser.setIniText(channelText("Name=Drehzahl \xe4\r\n"
                                  "Measure=1/min\r\n"
                                  "PhysicalDatatype=258\r\n" // stored as 8 bits: 2
                                  "DecimalPlaces=0\r\n"
                                  "ParameterKind=1\r\n"
                                  "ChoiceMap=0:Aus,1:Ein,,7,x:y,2:\r\n"
                                  "ViewScalingFactor=2\r\n"
                                  "BinaryScalingFactorBackup=0.5\r\n"
                                  "ViewVerticalOffset=3.5\r\n"
                                  "ViewOff=0\r\n"
                                  "ViewGround=1\r\n"
                                  "ViewInverted=1\r\n"
                                  "Color=4278255360\r\n"
                                  "BinaryView=1\r\n"
                                  "BinaryViewMask=5\r\n"));
    KlIniParser::IniSection* section = parser.section("ScopeChannel_0");
    QVERIFY(section);

    ScopeTrace trace(nullptr, 0);
    trace.setSamples({-3.0, 0.0, 3.0});
    QVERIFY(trace.readSection(*section));
    QCOMPARE(trace.name(), QStringLiteral("Drehzahl \u00e4"));
    QCOMPARE(trace.measure(), QStringLiteral("1/min"));
    QCOMPARE(trace.physicalDatatype(), quint8(2));
    QCOMPARE(trace.decimalPlaces(), 0u);
    QCOMPARE(trace.parameterKind(), 1);
    const QMap<qint32, QString> choices{{0, QStringLiteral("Aus")}, {1, QStringLiteral("Ein")},
                                        {7, QString()}, {2, QString()}};
    QCOMPARE(trace.choiceMap(), choices);
    // Stored directly: the factor of the normal view stays the active one.
    QVERIFY(trace.isBinaryView());
    QCOMPARE(trace.scalingFactor(), 2.0);
    QCOMPARE(trace.binaryScalingFactorBackup(), 0.5);
    QCOMPARE(trace.verticalOffset(), 3.5);
    QVERIFY(!trace.isOff());
    QVERIFY(trace.isGround());
    QCOMPARE(trace.groundScalingFactor(), 0.0);
    QVERIFY(trace.isInverted());
    QCOMPARE(trace.invertScalingFactor(), -1.0);
    QCOMPARE(trace.color(), QColor::fromRgba(4278255360u));
    QCOMPARE(trace.binaryViewMask(), 5u);
    QCOMPARE(trace.binaryBits(), QByteArray("\x00\x02", 2));
}

void tst_ScopeTrace::readSectionIsSilent()
{
    KlIniParser::IniParser parser;
    parser.setIniText(channelText("Name=A\r\nViewOff=1\r\nViewScalingFactor=2\r\nBinaryViewMask=3\r\n"));
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({0.0, 1.0});
    QSignalSpy changed(&trace, &ScopeTrace::changed);
    QSignalSpy viewChanged(&trace, &ScopeTrace::viewChanged);
    QVERIFY(trace.readSection(*parser.section("ScopeChannel_0")));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(viewChanged.count(), 0);
    QVERIFY(trace.isOff());
    QCOMPARE(trace.offAlphaFactor(), 0.0);
    QCOMPARE(trace.scalingFactor(), 2.0);
    // Signals work again afterwards.
    trace.setColor(Qt::green);
    QCOMPARE(changed.count(), 1);
}

void tst_ScopeTrace::readSectionMalformed()
{
    KlIniParser::IniParser parser;
    parser.setIniText(channelText("DecimalPlaces=abc\r\nChoiceMap=,,:,:x,a:b\r\nColor=red\r\n"
                                  "ViewScalingFactor=\r\nViewVerticalOffset=nonsense\r\n"));
    ScopeTrace trace(nullptr, 0);
    const QColor color = trace.color();
    trace.setSamples({0.0, 1.0});
    QVERIFY(trace.readSection(*parser.section("ScopeChannel_0")));
    QCOMPARE(trace.decimalPlaces(), 7u);
    QVERIFY(trace.choiceMap().isEmpty());
    QCOMPARE(trace.color(), color);
    // Only the automatic scaling took effect.
    QCOMPARE(trace.scalingFactor(), 5.0);
    QCOMPARE(trace.verticalOffset(), 1.0);

    // Missing keys leave every field as it was.
    KlIniParser::IniParser empty;
    empty.setIniText(channelText(""));
    trace.setName(QStringLiteral("kept"));
    QVERIFY(trace.readSection(*empty.section("ScopeChannel_0")));
    QCOMPARE(trace.name(), QStringLiteral("kept"));
}

void tst_ScopeTrace::writeSection()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({0.0, 1.0});
    trace.setScalingFactor(1.0 / 3.0);
    trace.setVerticalOffset(2.5);
    trace.setGround(true, false);
    trace.setColor(QColor::fromRgba(0x80ff0000u));
    trace.setParameterKind(4);
    trace.setBinaryViewMask(0x0f);

    KlIniParser::IniParser parser;
    KlIniParser::IniSection* section = parser.findOrCreateSection("ScopeChannel_0");
    trace.writeSection(*section);
    const QList<QByteArray> keys{"ViewScalingFactor", "BinaryScalingFactorBackup", "ViewVerticalOffset",
                                 "ViewOff",           "ViewGround",                "ViewInverted",
                                 "Color",             "BinaryView",                "BinaryViewMask",
                                 "ParameterKind"};
    QCOMPARE(section->keys(), keys);
    QCOMPARE(section->value("ViewScalingFactor"), QByteArray("0.333333"));
    QCOMPARE(section->value("BinaryScalingFactorBackup"), QByteArray("1"));
    QCOMPARE(section->value("ViewVerticalOffset"), QByteArray("2.5"));
    QCOMPARE(section->value("ViewOff"), QByteArray("0"));
    QCOMPARE(section->value("ViewGround"), QByteArray("1"));
    QCOMPARE(section->value("ViewInverted"), QByteArray("0"));
    QCOMPARE(section->value("Color"), QByteArray("2164195328"));
    QCOMPARE(section->value("BinaryView"), QByteArray("0"));
    QCOMPARE(section->value("BinaryViewMask"), QByteArray("15"));
    QCOMPARE(section->value("ParameterKind"), QByteArray("4"));

    // What is written reads back to the same state.
    ScopeTrace copy(nullptr, 1);
    copy.setSamples({0.0, 1.0});
    QVERIFY(copy.readSection(*section));
    QCOMPARE(copy.verticalOffset(), 2.5);
    QVERIFY(copy.isGround());
    QCOMPARE(copy.color(), trace.color());
    QCOMPARE(copy.parameterKind(), 4);
    QCOMPARE(copy.binaryViewMask(), 15u);
}

void tst_ScopeTrace::extents()
{
    // Absurd time bases and indices neither crash nor hang.
    ScopeTrace trace(nullptr, 0);
    trace.setTimeBase(0xffffffffu);
    trace.setTriggerIndex(std::numeric_limits<int>::min());
    trace.setSamples({std::numeric_limits<double>::max(), -std::numeric_limits<double>::infinity(), notANumber});
    trace.sampleIndex(std::numeric_limits<qint64>::min());
    trace.autoScale();
    QVERIFY(std::isfinite(trace.scalingFactor()));
    trace.publishQuickMeasureRequest(std::numeric_limits<qint64>::max());
    trace.zoomIn(std::numeric_limits<qint64>::min());
    trace.zoomOut();
    trace.setPhysicalDatatype(float32Type);
    QCOMPARE(trace.valueText(std::numeric_limits<double>::infinity(), false), QStringLiteral("inf"));
    QCOMPARE(trace.valueText(-std::numeric_limits<double>::infinity(), false), QStringLiteral("-inf"));
    trace.valueText(std::numeric_limits<double>::max(), true);
    trace.valueText(-std::numeric_limits<double>::denorm_min(), true);
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 300, 200));
    QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    trace.paint(&layout, &painter, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
    trace.paint(&layout, &painter, 0, 1);
    trace.paint(nullptr, &painter, 0, 1);
    trace.paint(&layout, nullptr, 0, 1);
}

QTEST_MAIN(tst_ScopeTrace)
#include "tst_scopetrace.moc"
