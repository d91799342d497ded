// SPDX-License-Identifier: GPL-3.0-or-later
#include "faketraceinformation.h"
#include "frequency.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"

#include <QtCore/QPointer>
#include <QtTest/QtTest>

#include <cmath>

namespace {

// Mean value + sine on bin 3 with the given amplitude, 64 samples.
QVector<double> tone(double mean, double amplitude, int bin = 3, int count = 64)
{
    QVector<double> x(count);
    for (int n = 0; n < count; ++n)
        x[n] = mean + amplitude * std::cos(2.0 * M_PI * bin * n / double(count));
    return x;
}

struct Analysis
{
    QList<QSharedPointer<FakeTraceInformation>> informations;
    QList<FrequencyTrace*> traces;
};

Analysis analyse(const QList<QVector<double>>& signals, int first, int last, int window)
{
    Analysis analysis;
    for (const QVector<double>& samples : signals) {
        auto info = QSharedPointer<FakeTraceInformation>::create(samples, 10.0);
        auto* trace = new FrequencyTrace(info);
        trace->setInterval(first, last, window);
        analysis.informations.append(info);
        analysis.traces.append(trace);
    }
    return analysis;
}

} // namespace

class tst_FrequencySpectrum : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void constructionReadsFirstTrace();
    void ownsAndDeletesTraces();
    void selectedMeasurePointIsClamped_data();
    void selectedMeasurePointIsClamped();
    void eachTraceClampsItsAmplitudeText();
    void changeWindowFunctionRecalculatesAndSignals_data();
    void changeWindowFunctionRecalculatesAndSignals();
    void changeWindowFunctionByName();
    void amplitudeRanges();
    void hiddenTracesCountInRanges();
    void frequenciesOfFirstTrace();
    void emptyTraceList();
};

void tst_FrequencySpectrum::constructionReadsFirstTrace()
{
    Analysis a = analyse({tone(1.0, 2.0), tone(0.0, 1.0, 3, 64)}, 0, 9, Frequency::Hamming);
    FrequencySpectrum spectrum(a.traces);
    QCOMPARE(spectrum.pointCount(), 5);
    QCOMPARE(spectrum.selectedMeasurePoint(), 0);
    QCOMPARE(spectrum.traces(), a.traces);
    QCOMPARE(spectrum.parent(), nullptr);
}

void tst_FrequencySpectrum::ownsAndDeletesTraces()
{
    Analysis a = analyse({tone(1.0, 2.0), tone(0.0, 1.0), tone(3.0, 1.0)}, 0, 63, Frequency::Hamming);
    QPointer<FrequencyTrace> first = a.traces.at(0);
    QPointer<FrequencyTrace> second = a.traces.at(1);
    QPointer<FrequencyTrace> third = a.traces.at(2);
    auto* spectrum = new FrequencySpectrum(a.traces);
    delete third.data(); // someone else deleting one is tolerated
    QCOMPARE(spectrum->traces().size(), 2);
    delete spectrum;
    QVERIFY(first.isNull());
    QVERIFY(second.isNull());
}

void tst_FrequencySpectrum::selectedMeasurePointIsClamped_data()
{
    QTest::addColumn<int>("point");
    QTest::addColumn<int>("expected");
    QTest::newRow("negative") << -5 << 0;
    QTest::newRow("zero") << 0 << 0;
    QTest::newRow("inside") << 17 << 17;
    QTest::newRow("last index") << 31 << 31;
    QTest::newRow("point count is accepted") << 32 << 32;
    QTest::newRow("beyond") << 32 + 10 << 32;
    QTest::newRow("int max") << std::numeric_limits<int>::max() << 32;
    QTest::newRow("int min") << std::numeric_limits<int>::min() << 0;
}

void tst_FrequencySpectrum::selectedMeasurePointIsClamped()
{
    QFETCH(int, point);
    QFETCH(int, expected);
    Analysis a = analyse({tone(1.0, 2.0)}, 0, 63, Frequency::NoWindow);
    FrequencySpectrum spectrum(a.traces);
    QCOMPARE(spectrum.pointCount(), 32);
    QSignalSpy dataSpy(&spectrum, &FrequencySpectrum::dataChanged);
    QSignalSpy traceSpy(a.traces.first(), &FrequencyTrace::selectedMeasurePointChanged);
    spectrum.setSelectedMeasurePoint(point);
    QCOMPARE(spectrum.selectedMeasurePoint(), expected);
    QCOMPARE(spectrum.selectedFrequency(), spectrum.frequencyResolution() * expected);
    QCOMPARE(dataSpy.count(), 0);
    QCOMPARE(traceSpy.count(), 1);
}

void tst_FrequencySpectrum::eachTraceClampsItsAmplitudeText()
{
    // The second trace is shorter (fewer samples found): it clamps to its own
    // last point.
    Analysis a = analyse({tone(1.0, 2.0, 3, 64), tone(5.0, 2.0, 1, 10)}, 0, 63, Frequency::NoWindow);
    FrequencySpectrum spectrum(a.traces);
    QCOMPARE(a.traces.at(1)->amplitudes().size(), 5);
    spectrum.setSelectedMeasurePoint(3);
    QCOMPARE(a.traces.at(0)->amplitudeText(), QString::number(a.traces.at(0)->amplitudes().at(3), 'g', 6));
    QCOMPARE(a.traces.at(0)->amplitudeText(), QStringLiteral("1"));
    QCOMPARE(a.traces.at(1)->amplitudeText(), QString::number(a.traces.at(1)->amplitudes().at(3), 'g', 6));
    spectrum.setSelectedMeasurePoint(1000);
    QCOMPARE(spectrum.selectedMeasurePoint(), 32);
    QCOMPARE(a.traces.at(0)->amplitudeText(), QString::number(a.traces.at(0)->amplitudes().at(31), 'g', 6));
    QCOMPARE(a.traces.at(1)->amplitudeText(), QString::number(a.traces.at(1)->amplitudes().at(4), 'g', 6));
}

void tst_FrequencySpectrum::changeWindowFunctionRecalculatesAndSignals_data()
{
    QTest::addColumn<int>("count");
    QTest::newRow("8") << 8;
    QTest::newRow("9") << 9;
}

void tst_FrequencySpectrum::changeWindowFunctionRecalculatesAndSignals()
{
    QFETCH(int, count);
    Analysis a = analyse({tone(1.0, 2.0), tone(-4.0, 0.5)}, 4, 4 + count - 1, Frequency::Hamming);
    FrequencySpectrum spectrum(a.traces);
    QCOMPARE(a.traces.at(0)->amplitudes().size(), (count - 1) / 2 + 1);
    QSignalSpy spy(&spectrum, &FrequencySpectrum::dataChanged);
    spectrum.changeWindowFunction(true, Frequency::NoWindow);
    QCOMPARE(spy.count(), 1);
    for (FrequencyTrace* trace : a.traces) {
        const QVector<double> amplitudes = trace->amplitudes();
        QCOMPARE(amplitudes.size(), count);
        for (int k = 1; k < count; ++k)
            QCOMPARE(amplitudes.at(k), amplitudes.at(count - k));
    }
    QCOMPARE(a.traces.at(1)->amplitudes(),
             Frequency::amplitudeSpectrum(tone(-4.0, 0.5).mid(4, count), -1, true, true, false));
    // The point count of construction stays.
    QCOMPARE(spectrum.pointCount(), (count - 1) / 2 + 1);
    QCOMPARE(spectrum.maxFrequency(), spectrum.frequencyResolution() * (count - 1));
    spectrum.changeWindowFunction(false, Frequency::Hamming);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(a.traces.at(0)->amplitudes(),
             Frequency::amplitudeSpectrum(tone(1.0, 2.0).mid(4, count), -1, false, false, false));
}

void tst_FrequencySpectrum::changeWindowFunctionByName()
{
    Analysis a = analyse({tone(1.0, 2.0)}, 0, 15, Frequency::Hamming);
    FrequencySpectrum spectrum(a.traces);
    QSignalSpy spy(&spectrum, &FrequencySpectrum::dataChanged);
    QVERIFY(QMetaObject::invokeMethod(&spectrum, "changeWindowFunction", Q_ARG(bool, true), Q_ARG(int, 1)));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(a.traces.first()->amplitudes().size(), 16);
}

void tst_FrequencySpectrum::amplitudeRanges()
{
    // Without mean removal the 0 Hz point holds the mean value.
    Analysis a = analyse({tone(10.0, 2.0), tone(-20.0, 6.0), tone(0.5, 0.25)}, 0, 63, Frequency::NoWindow);
    FrequencySpectrum spectrum(a.traces);
    spectrum.changeWindowFunction(false, Frequency::NoWindow);
    QVERIFY(qAbs(spectrum.maxAmplitude(false) - 20.0) <= 1e-12);
    // Skipping the 0 Hz point of every trace: the largest tone, 6 / 2.
    QVERIFY(qAbs(spectrum.maxAmplitude(true) - 3.0) <= 1e-12);
    QVERIFY(qAbs(spectrum.minAmplitude(false)) <= 1e-12);
    QVERIFY(qAbs(spectrum.minAmplitude(true)) <= 1e-12);
    // With the mean removed (the first analysis), 0 Hz is nearly zero.
    Analysis b = analyse({tone(10.0, 2.0)}, 0, 63, Frequency::NoWindow);
    FrequencySpectrum meanFree(b.traces);
    QVERIFY(qAbs(meanFree.maxAmplitude(false) - 1.0) <= 1e-12);
}

void tst_FrequencySpectrum::hiddenTracesCountInRanges()
{
    Analysis a = analyse({tone(0.0, 2.0), tone(0.0, 8.0)}, 0, 63, Frequency::NoWindow);
    FrequencySpectrum spectrum(a.traces);
    a.traces.at(1)->setHidden(true);
    QVERIFY(qAbs(spectrum.maxAmplitude(true) - 4.0) <= 1e-12);
}

void tst_FrequencySpectrum::frequenciesOfFirstTrace()
{
    QVector<double> samples(1000, 1.0);
    Analysis a = analyse({samples, tone(0.0, 1.0)}, 0, 999, Frequency::Hamming);
    FrequencySpectrum spectrum(a.traces);
    QVERIFY(qAbs(spectrum.frequencyResolution() - 1000.0) <= 1e-9);
    QVERIFY(qAbs(spectrum.maxFrequency() - 499000.0) <= 1e-6);
    spectrum.setSelectedMeasurePoint(250);
    QVERIFY(qAbs(spectrum.selectedFrequency() - 250000.0) <= 1e-6);
}

void tst_FrequencySpectrum::emptyTraceList()
{
    FrequencySpectrum spectrum({});
    QCOMPARE(spectrum.pointCount(), 0);
    spectrum.setSelectedMeasurePoint(4);
    QCOMPARE(spectrum.selectedMeasurePoint(), 0);
    QVERIFY(qIsNaN(spectrum.maxAmplitude(true)));
    QVERIFY(qIsNaN(spectrum.minAmplitude(false)));
    QVERIFY(qIsNaN(spectrum.maxFrequency()));
    QVERIFY(qIsNaN(spectrum.frequencyResolution()));
    spectrum.changeWindowFunction(true, 0);
}

QTEST_MAIN(tst_FrequencySpectrum)
#include "tst_frequencyspectrum.moc"
