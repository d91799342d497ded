// SPDX-License-Identifier: GPL-3.0-or-later
#include "faketraceinformation.h"
#include "frequency.h"
#include "frequencytrace.h"

#include <QtTest/QtTest>
#include <QtWidgets/QTreeWidgetItem>

#include <cmath>

namespace {

QVector<double> ramp(int count)
{
    QVector<double> x(count);
    for (int i = 0; i < count; ++i)
        x[i] = 0.5 * i * i - 3.0 * i + 1.0;
    return x;
}

QSharedPointer<FakeTraceInformation> information(const QVector<double>& samples, double samplingTime = 10.0)
{
    return QSharedPointer<FakeTraceInformation>::create(samples, samplingTime);
}

} // namespace

class tst_FrequencyTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void copiesFromTraceInformation();
    void setIntervalKeepsOneSide_data();
    void setIntervalKeepsOneSide();
    void recalculateKeepsBothHalves_data();
    void recalculateKeepsBothHalves();
    void constantSignalGivesZeros_data();
    void constantSignalGivesZeros();
    void pointZeroIsAbsoluteMean();
    void oneSampleInterval();
    void intervalIsASubList_data();
    void intervalIsASubList();
    void extremeIntervalsDoNotCrash();
    void resolutionUsesRequestedCount();
    void resolutionOfOneMicrosecondSampling();
    void maxAndMinAmplitude();
    void amplitudeTextClampsToLastPoint();
    void colorFollowsTraceInformation();
    void setColorIsAnnouncedThroughTraceInformation();
    void setHiddenSwitchesTraceInformation();
    void visibilityFollowsTraceInformation();
    void vanishedTraceInformation();
};

void tst_FrequencyTrace::copiesFromTraceInformation()
{
    auto info = information(ramp(20), 10.0);
    info->setColor(Qt::red);
    info->setOff(true);
    FrequencyTrace trace(info);
    QCOMPARE(trace.name(), QStringLiteral("Kanal"));
    QCOMPARE(trace.color(), QColor(Qt::red));
    QVERIFY(trace.isHidden());
    QCOMPARE(trace.sampleCount(), 20);
    QCOMPARE(trace.firstIndex(), 0);
    QCOMPARE(trace.samplingTime(), 10.0 * std::pow(10.0, -7.0));
    QVERIFY(trace.amplitudes().isEmpty());
    QVERIFY(trace.amplitudeText().isEmpty());
    QCOMPARE(trace.treeItem(), nullptr);
}

void tst_FrequencyTrace::setIntervalKeepsOneSide_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("expected");
    QTest::newRow("8 samples") << 0 << 7 << 4;
    QTest::newRow("9 samples") << 3 << 11 << 5;
    QTest::newRow("1000 samples") << 0 << 999 << 500;
    QTest::newRow("1009 samples") << 10 << 1018 << 505;
    QTest::newRow("2 samples") << 5 << 6 << 1;
}

void tst_FrequencyTrace::setIntervalKeepsOneSide()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, expected);
    auto info = information(ramp(2000));
    FrequencyTrace trace(info);
    for (int window : {int(Frequency::Hamming), int(Frequency::NoWindow)}) {
        trace.setInterval(first, last, window);
        QCOMPARE(trace.amplitudes().size(), expected);
        QCOMPARE(trace.firstIndex(), first);
        QCOMPARE(trace.sampleCount(), last - first + 1);
        const QVector<double> full = Frequency::meanFreeAmplitudeSpectrum(ramp(2000).mid(first, last - first + 1), window);
        QCOMPARE(trace.amplitudes(), full.mid(0, expected));
    }
}

void tst_FrequencyTrace::recalculateKeepsBothHalves_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("8") << 8;
    QTest::newRow("9") << 9;
}

void tst_FrequencyTrace::recalculateKeepsBothHalves()
{
    QFETCH(int, count);
    auto info = information(ramp(40));
    FrequencyTrace trace(info);
    trace.setInterval(2, 2 + count - 1, Frequency::Hamming);
    const double resolution = trace.frequencyResolution();
    QCOMPARE(trace.maxFrequency(), resolution * ((count - 1) / 2));
    trace.recalculate(true, Frequency::NoWindow);
    const QVector<double> amplitudes = trace.amplitudes();
    QCOMPARE(amplitudes.size(), count);
    for (int k = 1; k < count; ++k)
        QCOMPARE(amplitudes.at(k), amplitudes.at(count - k));
    QCOMPARE(amplitudes, Frequency::amplitudeSpectrum(ramp(40).mid(2, count), -1, true, true, false));
    QCOMPARE(trace.maxFrequency(), resolution * (count - 1));
}

void tst_FrequencyTrace::constantSignalGivesZeros_data()
{
    QTest::addColumn<int>("window");
    QTest::newRow("no window") << int(Frequency::NoWindow);
    QTest::newRow("hamming") << int(Frequency::Hamming);
}

void tst_FrequencyTrace::constantSignalGivesZeros()
{
    QFETCH(int, window);
    auto info = information(QVector<double>(300, -17.5));
    FrequencyTrace trace(info);
    trace.setInterval(0, 299, window);
    QCOMPARE(trace.amplitudes().size(), 150);
    for (double v : trace.amplitudes())
        QVERIFY(std::abs(v) <= 1e-13 * 17.5);
    trace.recalculate(true, window);
    QCOMPARE(trace.amplitudes().size(), 300);
    for (double v : trace.amplitudes())
        QVERIFY(std::abs(v) <= 1e-13 * 17.5);
}

void tst_FrequencyTrace::pointZeroIsAbsoluteMean()
{
    auto info = information({-1.0, -2.0, -6.0, 1.0});
    FrequencyTrace trace(info);
    trace.setInterval(0, 3, Frequency::NoWindow);
    trace.recalculate(false, Frequency::NoWindow);
    QVERIFY(qAbs(trace.amplitudes().at(0) - 2.0) <= 1e-15);
}

void tst_FrequencyTrace::oneSampleInterval()
{
    auto info = information({4.0, -2.5, 7.0});
    FrequencyTrace trace(info);
    trace.setInterval(1, 1, Frequency::Hamming);
    QCOMPARE(trace.amplitudes().size(), 1);
    QVERIFY(qIsNaN(trace.amplitudes().at(0)));
    QVERIFY(qIsNaN(trace.maxAmplitude(0)));
    trace.setFrequencyAndAmplitude(0); // no crash on a NaN amplitude
    trace.setInterval(1, 1, Frequency::NoWindow);
    QCOMPARE(trace.amplitudes(), QVector<double>({0.0})); // mean removed
    trace.recalculate(false, Frequency::NoWindow);
    QCOMPARE(trace.amplitudes(), QVector<double>({2.5}));
    trace.recalculate(false, Frequency::Hamming);
    QVERIFY(qIsNaN(trace.amplitudes().at(0)));
}

void tst_FrequencyTrace::intervalIsASubList_data()
{
    QTest::addColumn<int>("first");
    QTest::addColumn<int>("last");
    QTest::addColumn<int>("expectedAmplitudes");
    QTest::newRow("start beyond the end") << 50 << 60 << 0;
    QTest::newRow("end beyond the end") << 10 << 100 << 5; // 10 samples found
    QTest::newRow("last before first") << 10 << 5 << 0;
    QTest::newRow("negative start") << -4 << 7 << 4; // samples 0..7
}

void tst_FrequencyTrace::intervalIsASubList()
{
    QFETCH(int, first);
    QFETCH(int, last);
    QFETCH(int, expectedAmplitudes);
    auto info = information(ramp(20));
    FrequencyTrace trace(info);
    trace.setInterval(first, last, Frequency::Hamming);
    QCOMPARE(trace.amplitudes().size(), expectedAmplitudes);
    QCOMPARE(trace.sampleCount(), last - first + 1);
    QVERIFY(qIsNaN(trace.maxAmplitude(0)) == (expectedAmplitudes == 0));
    trace.setFrequencyAndAmplitude(3);
    QCOMPARE(trace.amplitudeText().isEmpty(), false);
}

void tst_FrequencyTrace::extremeIntervalsDoNotCrash()
{
    auto info = information(ramp(20));
    FrequencyTrace trace(info);
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();
    // The count is int32 arithmetic: these wrap to 0 and to INT_MIN.
    trace.setInterval(lowest, highest, Frequency::Hamming);
    QCOMPARE(trace.sampleCount(), 0);
    QVERIFY(trace.amplitudes().isEmpty());
    trace.setInterval(0, highest, Frequency::Hamming);
    QCOMPARE(trace.sampleCount(), lowest);
    QVERIFY(trace.amplitudes().isEmpty());
    trace.recalculate(false, Frequency::NoWindow);
    QVERIFY(trace.amplitudes().isEmpty());
    trace.setInterval(highest, highest, Frequency::NoWindow);
    QVERIFY(trace.amplitudes().isEmpty());
    trace.setInterval(lowest, lowest + 25, Frequency::NoWindow);
    QVERIFY(trace.amplitudes().isEmpty());
    trace.setFrequencyAndAmplitude(highest);
    QCOMPARE(trace.amplitudeText(), QStringLiteral("---"));
    QVERIFY(qIsNaN(trace.maxAmplitude(lowest)));
}

void tst_FrequencyTrace::resolutionUsesRequestedCount()
{
    auto info = information(ramp(20), 10.0);
    FrequencyTrace trace(info);
    trace.setInterval(10, 109, Frequency::Hamming); // 100 requested, 10 found
    QCOMPARE(trace.amplitudes().size(), 5);
    QCOMPARE(trace.frequencyResolution(), 1.0 / (100 * 10.0 * std::pow(10.0, -7.0)));
    QCOMPARE(trace.maxFrequency(), 1.0 / (100 * 10.0 * std::pow(10.0, -7.0)) * 4);
}

void tst_FrequencyTrace::resolutionOfOneMicrosecondSampling()
{
    auto info = information(ramp(1000), 10.0);
    FrequencyTrace trace(info);
    trace.setInterval(0, 999, Frequency::Hamming);
    QVERIFY(qAbs(trace.frequencyResolution() - 1000.0) <= 1e-9);
    QVERIFY(qAbs(trace.maxFrequency() - 499000.0) <= 1e-6);
}

void tst_FrequencyTrace::maxAndMinAmplitude()
{
    // A large mean without removal puts the biggest value at 0 Hz.
    QVector<double> x(64);
    for (int n = 0; n < 64; ++n)
        x[n] = 10.0 + 2.0 * std::cos(2.0 * M_PI * 4.0 * n / 64.0) + 0.5 * std::cos(2.0 * M_PI * 9.0 * n / 64.0);
    auto info = information(x);
    FrequencyTrace trace(info);
    trace.setInterval(0, 63, Frequency::NoWindow);
    trace.recalculate(false, Frequency::NoWindow);
    QVERIFY(qAbs(trace.maxAmplitude(0) - 10.0) <= 1e-12);
    QVERIFY(qAbs(trace.maxAmplitude(1) - 1.0) <= 1e-12);
    QVERIFY(qAbs(trace.maxAmplitude(10) - 1.0) <= 1e-12); // the mirrored point 60
    QVERIFY(qAbs(trace.minAmplitude(0)) <= 1e-12);
    QVERIFY(qIsNaN(trace.maxAmplitude(64)));
    QVERIFY(qAbs(trace.maxAmplitude(-3) - 10.0) <= 1e-12);
}

void tst_FrequencyTrace::amplitudeTextClampsToLastPoint()
{
    auto info = information(ramp(10));
    FrequencyTrace trace(info);
    trace.setInterval(0, 9, Frequency::NoWindow);
    const QVector<double> amplitudes = trace.amplitudes();
    QTreeWidgetItem item;
    trace.setTreeItem(&item);
    QCOMPARE(trace.treeItem(), &item);
    QSignalSpy spy(&trace, &FrequencyTrace::selectedMeasurePointChanged);
    trace.setFrequencyAndAmplitude(2);
    QCOMPARE(trace.amplitudeText(), QString::number(amplitudes.at(2), 'g', 6));
    QCOMPARE(item.text(1), trace.amplitudeText());
    trace.setFrequencyAndAmplitude(100);
    QCOMPARE(trace.amplitudeText(), QString::number(amplitudes.last(), 'g', 6));
    trace.setFrequencyAndAmplitude(-7);
    QCOMPARE(trace.amplitudeText(), QString::number(amplitudes.first(), 'g', 6));
    QCOMPARE(spy.count(), 3);
}

void tst_FrequencyTrace::colorFollowsTraceInformation()
{
    auto info = information(ramp(10));
    FrequencyTrace trace(info);
    QSignalSpy spy(&trace, &FrequencyTrace::colorChanged);
    info->setColor(Qt::green);
    QCOMPARE(trace.color(), QColor(Qt::green));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().first().value<QColor>(), QColor(Qt::green));
}

void tst_FrequencyTrace::setColorIsAnnouncedThroughTraceInformation()
{
    auto info = information(ramp(10));
    FrequencyTrace trace(info);
    QSignalSpy traceSpy(&trace, &FrequencyTrace::colorChanged);
    QSignalSpy infoSpy(info.data(), &TraceInformation::colorChanged);
    QVERIFY(trace.setColor(Qt::magenta));
    QVERIFY(!trace.setColor(Qt::magenta));
    QCOMPARE(trace.color(), QColor(Qt::magenta));
    QCOMPARE(traceSpy.count(), 1);
    QCOMPARE(infoSpy.count(), 1);
    QCOMPARE(infoSpy.first().first().value<QColor>(), QColor(Qt::magenta));
}

void tst_FrequencyTrace::setHiddenSwitchesTraceInformation()
{
    auto info = information(ramp(10));
    FrequencyTrace trace(info);
    QSignalSpy spy(&trace, &FrequencyTrace::visibilityChanged);
    QVERIFY(trace.setHidden(true));
    QVERIFY(trace.isHidden());
    QVERIFY(info->isOff());
    QCOMPARE(spy.count(), 1);
    QVERIFY(!trace.setHidden(true));
    QCOMPARE(spy.count(), 1);
    QVERIFY(trace.setHidden(false));
    QVERIFY(!info->isOff());
    QCOMPARE(spy.count(), 2);
}

void tst_FrequencyTrace::visibilityFollowsTraceInformation()
{
    auto info = information(ramp(10));
    FrequencyTrace trace(info);
    QSignalSpy spy(&trace, &FrequencyTrace::visibilityChanged);
    info->setOff(true);
    QVERIFY(trace.isHidden());
    QCOMPARE(spy.count(), 1);
    Q_EMIT info->visibilityChanged(); // no change of state: nothing happens
    QCOMPARE(spy.count(), 1);
}

void tst_FrequencyTrace::vanishedTraceInformation()
{
    auto info = information(ramp(16));
    FrequencyTrace trace(info);
    info.reset();
    QVERIFY(trace.traceInformation().isNull());
    trace.setInterval(0, 15, Frequency::Hamming);
    QCOMPARE(trace.amplitudes().size(), 8); // works on the copied samples
    QVERIFY(trace.setHidden(true));
    QVERIFY(trace.setColor(Qt::yellow));
    QCOMPARE(trace.name(), QStringLiteral("Kanal"));
}

QTEST_MAIN(tst_FrequencyTrace)
#include "tst_frequencytrace.moc"
