// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"
#include "scopetracecalculator.h"

#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

#include <cmath>

namespace {

// One sample per microsecond (time base 10 × 0.1 µs), so sample k of a
// trace with trigger index 0 lies at k × 1000 ns.
constexpr qint64 Us = 1000;

QString local(QString text)
{
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

} // namespace

class tst_ScopeTraceCalculator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void handComputedStatistics_data();
    void handComputedStatistics();
    void valuesAtMarkers_data();
    void valuesAtMarkers();
    void markersOutsideTheRecording();
    void bothMarkersBeforeFirstSample();
    void bothMarkersAfterLastSample();
    void markersAtTheSameTime();
    void bBeforeA();
    void maximumIncludesEndSampleOnlyThroughSeed();
    void sameMarkersDoNotRecompute();
    void newTraceRecomputes();
    void gradientUsesCountOfLastUpdate();
    void noTrace();
    void deletedTraceReadsAsNoTrace();
    void gradientText_data();
    void gradientText();
    void integralText_data();
    void integralText();
    void valueTextIsTheTraces();
    void zeroTimeBaseDoesNotCrash();
    void decimalPointOfSystemLocale();

private:
    ScopeTrace* makeTrace(const QVector<double>& samples, int triggerIndex = 0);

    QObject* m_shot = nullptr;
};

void tst_ScopeTraceCalculator::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeTraceCalculator::init()
{
    m_shot = new QObject;
}

void tst_ScopeTraceCalculator::cleanup()
{
    delete m_shot;
    m_shot = nullptr;
}

ScopeTrace* tst_ScopeTraceCalculator::makeTrace(const QVector<double>& samples, int triggerIndex)
{
    auto* trace = new ScopeTrace(m_shot, 0);
    trace->setSamples(samples);
    trace->setTimeBase(10);
    trace->setTriggerIndex(triggerIndex);
    trace->setMeasure(QStringLiteral("V"));
    return trace;
}

void tst_ScopeTraceCalculator::handComputedStatistics_data()
{
    QTest::addColumn<QVector<double>>("samples");
    QTest::addColumn<qint64>("a");
    QTest::addColumn<qint64>("b");
    QTest::addColumn<double>("average");
    QTest::addColumn<double>("integral");
    QTest::addColumn<double>("rms");
    QTest::addColumn<double>("deviation");
    QTest::addColumn<double>("minimum");
    QTest::addColumn<double>("maximum");

    // Ramp 0 … 10, A at 0, B at 10 µs: the walk covers 0 … 9 (count 10).
    // average 45/10; integral 1 µs × (45 − 9); RMS √(285/10);
    // deviation √(82.5/9); the maximum 10 comes from the seed at B.
    QVector<double> ramp;
    for (int k = 0; k <= 10; ++k)
        ramp.append(k);
    QTest::newRow("ramp") << ramp << qint64(0) << 10 * Us << 4.5 << 36.0 << std::sqrt(28.5)
                          << std::sqrt(82.5 / 9.0) << 0.0 << 10.0;

    // 2·sin(2πk/25), k = 0 … 100, A at 0, B at 100 µs: the walk covers four
    // whole periods (k = 0 … 99). average 0; RMS 2/√2; deviation √(200/99);
    // integral 1 µs × (0 − x[99]) = 2·sin(2π/25); B's sample is 0.
    QVector<double> sine;
    for (int k = 0; k <= 100; ++k)
        sine.append(2.0 * std::sin(2.0 * M_PI * k / 25.0));
    QTest::newRow("sine, whole periods") << sine << qint64(0) << 100 * Us << 0.0
                                         << 2.0 * std::sin(2.0 * M_PI / 25.0) << std::sqrt(2.0)
                                         << std::sqrt(200.0 / 99.0) << -2.0 * std::sin(2.0 * M_PI * 6.0 / 25.0)
                                         << 2.0 * std::sin(2.0 * M_PI * 6.0 / 25.0);

    // Step 0 (k < 5) to 3 (k ≥ 5), ten samples, A at 0, B at 9 µs: the walk
    // covers 0 … 8 (five 0, four 3). average 12/9; integral 1 µs × (12 − 3);
    // RMS √(36/9) = 2; deviation √((5·16/9 + 4·25/9)/8) = √2.5.
    QVector<double> step = {0, 0, 0, 0, 0, 3, 3, 3, 3, 3};
    QTest::newRow("step") << step << qint64(0) << 9 * Us << 12.0 / 9.0 << 9.0 << 2.0 << std::sqrt(2.5)
                          << 0.0 << 3.0;

    // The same step with the trigger at sample 5 and A, B inside samples:
    // A = −2.5 µs lies in sample 2, B = 2 µs in sample 7; walk 2 … 6.
    QTest::newRow("step, trigger 5 via 5 µs shift") << step << qint64(-2500 + 5 * Us) << qint64(2 * Us + 5 * Us)
                                                    << 6.0 / 5.0 << 3.0 << std::sqrt(18.0 / 5.0)
                                                    << std::sqrt((3 * 1.44 + 2 * 3.24) / 4.0) << 0.0 << 3.0;
}

void tst_ScopeTraceCalculator::handComputedStatistics()
{
    QFETCH(QVector<double>, samples);
    QFETCH(qint64, a);
    QFETCH(qint64, b);
    QFETCH(double, average);
    QFETCH(double, integral);
    QFETCH(double, rms);
    QFETCH(double, deviation);
    QFETCH(double, minimum);
    QFETCH(double, maximum);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace(samples));
    calculator.setMarkerTimes(a, b);
    const double tolerance = 1e-12;
    QVERIFY2(qAbs(calculator.average() - average) <= tolerance, qPrintable(QString::number(calculator.average(), 'g', 17)));
    QVERIFY2(qAbs(calculator.integral() - integral) <= tolerance, qPrintable(QString::number(calculator.integral(), 'g', 17)));
    QVERIFY2(qAbs(calculator.rmsValue() - rms) <= tolerance, qPrintable(QString::number(calculator.rmsValue(), 'g', 17)));
    QVERIFY2(qAbs(calculator.standardDeviation() - deviation) <= tolerance,
             qPrintable(QString::number(calculator.standardDeviation(), 'g', 17)));
    QVERIFY(qAbs(calculator.minimum() - minimum) <= tolerance);
    QVERIFY(qAbs(calculator.maximum() - maximum) <= tolerance);
    QVERIFY(qAbs(calculator.peak() - (maximum - minimum)) <= tolerance);
}

void tst_ScopeTraceCalculator::valuesAtMarkers_data()
{
    QTest::addColumn<int>("triggerIndex");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<double>("expected");
    // Samples 10, 11, …, 19; one sample per µs.
    QTest::newRow("first sample") << 0 << qint64(0) << 10.0;
    QTest::newRow("inside a period") << 0 << qint64(2999) << 12.0;
    QTest::newRow("last sample") << 0 << qint64(9 * Us + 999) << 19.0;
    QTest::newRow("after the last") << 0 << qint64(10 * Us) << qQNaN();
    QTest::newRow("before the first") << 0 << qint64(-1) << qQNaN();
    QTest::newRow("trigger 4, just before 0") << 4 << qint64(-1) << 13.0;
    QTest::newRow("trigger 4, at 0") << 4 << qint64(0) << 14.0;
    QTest::newRow("trigger 4, -4 µs") << 4 << qint64(-4 * Us) << 10.0;
    QTest::newRow("trigger 4, before") << 4 << qint64(-4 * Us - 1) << qQNaN();
}

void tst_ScopeTraceCalculator::valuesAtMarkers()
{
    QFETCH(int, triggerIndex);
    QFETCH(qint64, time);
    QFETCH(double, expected);
    QVector<double> samples;
    for (int k = 0; k < 10; ++k)
        samples.append(10.0 + k);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace(samples, triggerIndex));
    calculator.setMarkerTimes(time, 0);
    if (qIsNaN(expected)) {
        QVERIFY(qIsNaN(calculator.valueAtA()));
        QVERIFY(qIsNaN(calculator.valueDifference()));
    } else {
        QCOMPARE(calculator.valueAtA(), expected);
    }
    calculator.setMarkerTimes(0, time);
    if (qIsNaN(expected))
        QVERIFY(qIsNaN(calculator.valueAtB()));
    else
        QCOMPARE(calculator.valueAtB(), expected);
}

void tst_ScopeTraceCalculator::markersOutsideTheRecording()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(-10 * Us, 20 * Us);
    QVERIFY(qIsNaN(calculator.valueAtA()));
    QVERIFY(qIsNaN(calculator.valueAtB()));
    QVERIFY(qIsNaN(calculator.valueDifference()));
    // Clamped to samples 0 … 4, walk 0 … 3.
    QCOMPARE(calculator.average(), 2.5);
    QCOMPARE(calculator.startIndex(), 0);
    QCOMPARE(calculator.endIndex(), 4);
    QCOMPARE(calculator.sampleCount(), 4u);
    QCOMPARE(calculator.minimum(), 1.0);
    QCOMPARE(calculator.maximum(), 5.0);
    QCOMPARE(calculator.integral(), 6.0);
    QVERIFY(qIsNaN(calculator.gradient()));
}

void tst_ScopeTraceCalculator::bothMarkersBeforeFirstSample()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(-10 * Us, -2 * Us);
    QVERIFY(qIsNaN(calculator.average()));
    QVERIFY(qIsNaN(calculator.integral()));
    QVERIFY(qIsNaN(calculator.minimum()));
    QVERIFY(qIsNaN(calculator.maximum()));
    QVERIFY(qIsNaN(calculator.peak()));
    QVERIFY(qIsNaN(calculator.rmsValue()));
    QVERIFY(qIsNaN(calculator.standardDeviation()));
    QCOMPARE(calculator.integralText(calculator.integral(), true), QStringLiteral("---"));
}

void tst_ScopeTraceCalculator::bothMarkersAfterLastSample()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(10 * Us, 20 * Us);
    QVERIFY(qIsNaN(calculator.average()));
    QVERIFY(qIsNaN(calculator.standardDeviation()));
    QVERIFY(qIsNaN(calculator.rmsValue()));
}

void tst_ScopeTraceCalculator::markersAtTheSameTime()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(2 * Us, 2 * Us);
    QCOMPARE(calculator.average(), 3.0);
    QVERIFY(qIsNaN(calculator.gradient()));
    QCOMPARE(calculator.sampleCount(), 1u);
    QCOMPARE(calculator.rmsValue(), 3.0);
    QVERIFY(!std::isfinite(calculator.standardDeviation()));
    QCOMPARE(calculator.integral(), 0.0);
    QCOMPARE(calculator.valueDifference(), 0.0);
}

void tst_ScopeTraceCalculator::bBeforeA()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(3 * Us, 1 * Us);
    QCOMPARE(calculator.average(), 4.0); // one sample from A
    QCOMPARE(calculator.sampleCount(), 1u);
    QCOMPARE(calculator.startIndex(), 3);
    QCOMPARE(calculator.endIndex(), 1);
    QCOMPARE(calculator.minimum(), 4.0);
    QCOMPARE(calculator.maximum(), 4.0); // seed x[1] = 2, walk x[3] = 4
    QCOMPARE(calculator.valueDifference(), -2.0);
    QCOMPARE(calculator.gradient(), -2.0); // over one sample period
}

void tst_ScopeTraceCalculator::maximumIncludesEndSampleOnlyThroughSeed()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 9, -7}));
    calculator.setMarkerTimes(0, 4 * Us);
    // The walk covers 1, 2, 3, 9; the end sample −7 only seeds the maximum.
    QCOMPARE(calculator.minimum(), 1.0);
    QCOMPARE(calculator.maximum(), 9.0);
    QCOMPARE(calculator.average(), 15.0 / 4.0);
    calculator.setMarkerTimes(0, 3 * Us);
    QCOMPARE(calculator.maximum(), 9.0); // seeded with x[3] = 9, walk 1, 2, 3
    QCOMPARE(calculator.average(), 2.0);
}

void tst_ScopeTraceCalculator::sameMarkersDoNotRecompute()
{
    ScopeTrace* trace = makeTrace({1, 2, 3, 4, 5});
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(trace);
    calculator.setMarkerTimes(0, 4 * Us);
    QCOMPARE(calculator.average(), 2.5);
    // New samples reach the statistics only after a change of trace or markers.
    trace->setSamples({10, 20, 30, 40, 50});
    calculator.setMarkerTimes(0, 4 * Us);
    calculator.setScopeTrace(trace);
    QCOMPARE(calculator.average(), 2.5);
    QCOMPARE(calculator.valueAtA(), 10.0); // marker values are read directly
    calculator.setMarkerTimes(0, 3 * Us);
    QCOMPARE(calculator.average(), 20.0);
}

void tst_ScopeTraceCalculator::newTraceRecomputes()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3, 4, 5}));
    calculator.setMarkerTimes(0, 4 * Us);
    QCOMPARE(calculator.average(), 2.5);
    calculator.setScopeTrace(makeTrace({2, 4, 6, 8, 10}));
    QCOMPARE(calculator.average(), 5.0);
}

void tst_ScopeTraceCalculator::gradientUsesCountOfLastUpdate()
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    calculator.setMarkerTimes(0, 10 * Us);
    // Before any statistic the count is 0: no meaningful gradient.
    QVERIFY(!std::isfinite(calculator.gradient()));
    calculator.average();
    QCOMPARE(calculator.gradient(), 1.0); // 10 over 10 samples of 1 µs
    calculator.setMarkerTimes(-5 * Us, 10 * Us); // A outside: value NaN
    calculator.average();
    QVERIFY(qIsNaN(calculator.gradient()));
}

void tst_ScopeTraceCalculator::noTrace()
{
    ScopeTraceCalculator calculator;
    calculator.setMarkerTimes(0, 1000);
    QCOMPARE(calculator.scopeTrace(), nullptr);
    QVERIFY(qIsNaN(calculator.valueAtA()));
    QVERIFY(qIsNaN(calculator.valueAtB()));
    QVERIFY(qIsNaN(calculator.valueDifference()));
    QVERIFY(qIsNaN(calculator.gradient()));
    QVERIFY(qIsNaN(calculator.average()));
    QVERIFY(qIsNaN(calculator.integral()));
    QVERIFY(qIsNaN(calculator.minimum()));
    QVERIFY(qIsNaN(calculator.maximum()));
    QVERIFY(qIsNaN(calculator.peak()));
    QVERIFY(qIsNaN(calculator.rmsValue()));
    QCOMPARE(calculator.standardDeviation(), 0.0);
    QCOMPARE(calculator.gradientText(1.5, true), QStringLiteral("---"));
    QCOMPARE(calculator.integralText(1.5, false), QStringLiteral("---"));
    QCOMPARE(calculator.valueText(1.5, true), QStringLiteral("---"));
}

void tst_ScopeTraceCalculator::deletedTraceReadsAsNoTrace()
{
    ScopeTraceCalculator calculator;
    ScopeTrace* trace = makeTrace({1, 2, 3});
    calculator.setScopeTrace(trace);
    calculator.setMarkerTimes(0, 2 * Us);
    QCOMPARE(calculator.average(), 1.5);
    delete trace;
    QCOMPARE(calculator.scopeTrace(), nullptr);
    QVERIFY(qIsNaN(calculator.average()));
    QVERIFY(qIsNaN(calculator.valueAtA()));
}

void tst_ScopeTraceCalculator::gradientText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("withUnit");
    QTest::addColumn<QString>("expected");
    QTest::newRow("per second") << 0.0005 << true << QStringLiteral("500.000 V/s");
    QTest::newRow("per millisecond") << 0.25 << true << QStringLiteral("250.000 V/ms");
    QTest::newRow("per microsecond") << 2.5 << true << QStringLiteral("2.500 V/us");
    QTest::newRow("exactly 1") << 1.0 << true << QStringLiteral("1.000 V/us");
    QTest::newRow("exactly 0.001") << 0.001 << true << QStringLiteral("1.000 V/ms");
    QTest::newRow("negative always per second") << -3.0 << true << QStringLiteral("-3000000.000 V/s");
    QTest::newRow("zero") << 0.0 << true << QStringLiteral("0.000 V/s");
    QTest::newRow("without unit") << 1234567.0 << false << QStringLiteral("1.23457e+06");
    QTest::newRow("without unit, small") << 0.25 << false << QStringLiteral("0.25");
    QTest::newRow("NaN") << qQNaN() << true << QStringLiteral("---");
    QTest::newRow("NaN without unit") << qQNaN() << false << QStringLiteral("---");
}

void tst_ScopeTraceCalculator::gradientText()
{
    QFETCH(double, value);
    QFETCH(bool, withUnit);
    QFETCH(QString, expected);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3}));
    QCOMPARE(calculator.gradientText(value, withUnit), expected == QLatin1String("---") ? expected : local(expected));
}

void tst_ScopeTraceCalculator::integralText_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<bool>("withUnit");
    QTest::addColumn<QString>("expected");
    QTest::newRow("seconds") << 2.5e7 << true << QStringLiteral("25.000 Vs");
    QTest::newRow("milliseconds") << 20000.0 << true << QStringLiteral("20.000 Vms");
    QTest::newRow("exactly 10000") << 10000.0 << true << QStringLiteral("10000.000 Vus");
    QTest::newRow("exactly 1e7") << 1e7 << true << QStringLiteral("10000.000 Vms");
    QTest::newRow("microseconds") << 36.0 << true << QStringLiteral("36.000 Vus");
    QTest::newRow("negative always microseconds") << -5e7 << true << QStringLiteral("-50000000.000 Vus");
    QTest::newRow("without unit") << 36.125 << false << QStringLiteral("36.125");
    QTest::newRow("NaN") << qQNaN() << true << QStringLiteral("---");
}

void tst_ScopeTraceCalculator::integralText()
{
    QFETCH(double, value);
    QFETCH(bool, withUnit);
    QFETCH(QString, expected);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3}));
    QCOMPARE(calculator.integralText(value, withUnit), expected == QLatin1String("---") ? expected : local(expected));
}

void tst_ScopeTraceCalculator::valueTextIsTheTraces()
{
    ScopeTrace* trace = makeTrace({1, 2, 3});
    trace->setDecimalPlaces(2);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(trace);
    for (double v : {0.25, -17.0, 12345.678, qQNaN()}) {
        QCOMPARE(calculator.valueText(v, true), trace->valueText(v, true));
        QCOMPARE(calculator.valueText(v, false), trace->valueText(v, false));
    }
}

void tst_ScopeTraceCalculator::zeroTimeBaseDoesNotCrash()
{
    ScopeTrace* trace = makeTrace({1, 2, 3});
    trace->setTimeBase(0);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(trace);
    calculator.setMarkerTimes(-5, 5);
    calculator.average();
    calculator.standardDeviation();
    calculator.gradient();
    calculator.valueAtA();
    calculator.setMarkerTimes(0, 0);
    calculator.average();
    calculator.setMarkerTimes(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
    trace->setTimeBase(1);
    calculator.setScopeTrace(nullptr);
    calculator.setScopeTrace(trace);
    QCOMPARE(calculator.average(), 1.5);
}

void tst_ScopeTraceCalculator::decimalPointOfSystemLocale()
{
    // Run once under the C locale and once under German (see the test list).
    const QByteArray language = qgetenv("LC_ALL");
    const QString point = language.startsWith("de") ? QStringLiteral(",") : QStringLiteral(".");
    QCOMPARE(QLocale::system().decimalPoint(), point);
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(makeTrace({1, 2, 3}));
    QCOMPARE(calculator.gradientText(2.5, true), QStringLiteral("2") + point + QStringLiteral("500 V/us"));
    QCOMPARE(calculator.integralText(0.125, false), QStringLiteral("0") + point + QStringLiteral("125"));
}

QTEST_MAIN(tst_ScopeTraceCalculator)
#include "tst_scopetracecalculator.moc"
