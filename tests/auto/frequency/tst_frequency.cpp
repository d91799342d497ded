// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequency.h"

#include <QtTest/QtTest>

#include <cmath>
#include <limits>
#include <random>

namespace {

QVector<double> testSignal(const QString& kind, qsizetype count)
{
    QVector<double> x(count);
    if (kind == QLatin1String("random")) {
        std::mt19937_64 generator(static_cast<quint64>(count) + 17u);
        std::uniform_real_distribution<double> distribution(-3.0, 7.0);
        for (double& v : x)
            v = distribution(generator);
    } else if (kind == QLatin1String("constant")) {
        x.fill(-4.5);
    } else {
        const qsizetype bin = std::min<qsizetype>(2, count / 2);
        for (qsizetype n = 0; n < count; ++n)
            x[n] = 2.0 * std::cos(2.0 * M_PI * double(bin) * double(n) / double(count)) + 1.0;
    }
    return x;
}

double largestAbs(const QVector<double>& values)
{
    double result = 0.0;
    for (double v : values)
        result = std::max(result, std::abs(v));
    return result;
}

} // namespace

class tst_Frequency : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void fastEqualsReferenceRecurrence_data();
    void fastEqualsReferenceRecurrence();
    void fastEqualsReferenceRadix2_data();
    void fastEqualsReferenceRadix2();
    void sineReadBackAtItsBin_data();
    void sineReadBackAtItsBin();
    void sineWithHammingWindow();
    void constantSignalMeanFreeIsZero_data();
    void constantSignalMeanFreeIsZero();
    void pointZeroIsAbsoluteMeanWithoutMeanRemoval();
    void upperHalfMirrorsLowerHalf();
    void oneSample_data();
    void oneSample();
    void shortInputWithFftComesBackUnchanged();
    void paddedLength_data();
    void paddedLength();
    void paddingExtendsWithZeros();
    void meanRemovalDividesEachSample();
    void hammingWeights();
    void meanFreeConvenienceForm();
    void emptyInput();
    void nonFiniteSamplesDoNotCrash();
};

void tst_Frequency::fastEqualsReferenceRecurrence_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<bool>("noWindow");
    QTest::addColumn<bool>("meanValueFree");
    const qsizetype counts[] = {1, 2, 3, 8, 9, 1000, 1009, 4096};
    for (qsizetype count : counts) {
        for (const char* signal : {"random", "constant", "sine"}) {
            QTest::addRow("%s M=%lld plain", signal, (long long)count)
                << count << QString::fromLatin1(signal) << true << false;
            QTest::addRow("%s M=%lld mean free", signal, (long long)count)
                << count << QString::fromLatin1(signal) << true << true;
            if (count > 1)
                QTest::addRow("%s M=%lld hamming", signal, (long long)count)
                    << count << QString::fromLatin1(signal) << false << true;
        }
    }
}

void tst_Frequency::fastEqualsReferenceRecurrence()
{
    QFETCH(qsizetype, count);
    QFETCH(QString, signal);
    QFETCH(bool, noWindow);
    QFETCH(bool, meanValueFree);
    const QVector<double> x = testSignal(signal, count);
    const QVector<double> fast = Frequency::amplitudeSpectrum(x, -1, noWindow, meanValueFree, false);
    const QVector<double> reference = Frequency::referenceAmplitudeSpectrum(x, -1, noWindow, meanValueFree, false);
    QCOMPARE(fast.size(), count);
    QCOMPARE(reference.size(), count);
    const double tolerance = 1e-9 * std::max(largestAbs(reference), std::numeric_limits<double>::min());
    for (qsizetype k = 0; k < count; ++k) {
        QVERIFY2(std::abs(fast.at(k) - reference.at(k)) <= tolerance + 1e-300,
                 qPrintable(QStringLiteral("k=%1: %2 vs %3").arg(k).arg(fast.at(k)).arg(reference.at(k))));
    }
}

void tst_Frequency::fastEqualsReferenceRadix2_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<int>("paddingExponent");
    QTest::addColumn<qsizetype>("expectedLength");
    QTest::newRow("8 unpadded") << qsizetype(8) << -1 << qsizetype(8);
    QTest::newRow("1024 unpadded") << qsizetype(1024) << -1 << qsizetype(1024);
    QTest::newRow("100 padded +1") << qsizetype(100) << 0 << qsizetype(100);
    QTest::newRow("100 padded +2") << qsizetype(100) << 1 << qsizetype(128);
    QTest::newRow("1000 padded +3") << qsizetype(1000) << 2 << qsizetype(2048);
}

void tst_Frequency::fastEqualsReferenceRadix2()
{
    QFETCH(qsizetype, count);
    QFETCH(int, paddingExponent);
    QFETCH(qsizetype, expectedLength);
    const QVector<double> x = testSignal(QStringLiteral("random"), count);
    const QVector<double> fast = Frequency::amplitudeSpectrum(x, paddingExponent, false, true, true);
    QCOMPARE(fast.size(), expectedLength);
    if ((expectedLength & (expectedLength - 1)) != 0)
        return; // the radix-2 routine only transforms powers of two
    const QVector<double> reference = Frequency::referenceAmplitudeSpectrum(x, paddingExponent, false, true, true);
    QCOMPARE(reference.size(), expectedLength);
    const double tolerance = 1e-9 * largestAbs(reference);
    for (qsizetype k = 0; k < expectedLength; ++k)
        QVERIFY(std::abs(fast.at(k) - reference.at(k)) <= tolerance);
}

void tst_Frequency::sineReadBackAtItsBin_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<qsizetype>("bin");
    QTest::addColumn<double>("amplitude");
    QTest::newRow("64, bin 5") << qsizetype(64) << qsizetype(5) << 3.0;
    QTest::newRow("1009, bin 100") << qsizetype(1009) << qsizetype(100) << 0.75;
    QTest::newRow("1000003, bin 12345") << qsizetype(1000003) << qsizetype(12345) << 10.0;
}

void tst_Frequency::sineReadBackAtItsBin()
{
    QFETCH(qsizetype, count);
    QFETCH(qsizetype, bin);
    QFETCH(double, amplitude);
    QVector<double> x(count);
    for (qsizetype n = 0; n < count; ++n)
        x[n] = amplitude * std::sin(2.0 * M_PI * double(bin) * double(n) / double(count)) + 7.0;
    const QVector<double> spectrum = Frequency::meanFreeAmplitudeSpectrum(x, Frequency::NoWindow);
    QCOMPARE(spectrum.size(), count);
    // Two-sided spectrum, no factor 2: the sine shows half its amplitude at
    // its bin and at the mirrored one.
    QVERIFY(qAbs(spectrum.at(bin) - amplitude / 2.0) <= 1e-9 * amplitude);
    QVERIFY(qAbs(spectrum.at(count - bin) - amplitude / 2.0) <= 1e-9 * amplitude);
    QVERIFY(spectrum.at(0) <= 1e-9 * amplitude);
    QVERIFY(spectrum.at(bin + 1) <= 1e-9 * amplitude);
}

void tst_Frequency::sineWithHammingWindow()
{
    const qsizetype count = 256;
    QVector<double> x(count);
    for (qsizetype n = 0; n < count; ++n)
        x[n] = 4.0 * std::sin(2.0 * M_PI * 20.0 * double(n) / double(count));
    const QVector<double> spectrum = Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming);
    // No correction of the window's gain: about 0.54 of a/2.
    QVERIFY(qAbs(spectrum.at(20) - 2.0 * 0.54) < 0.01);
    QVERIFY(spectrum.at(20) > spectrum.at(19));
    QVERIFY(spectrum.at(19) > spectrum.at(18));
    QVERIFY(spectrum.at(18) < 1e-2);
}

void tst_Frequency::constantSignalMeanFreeIsZero_data()
{
    QTest::addColumn<bool>("noWindow");
    QTest::newRow("no window") << true;
    QTest::newRow("hamming") << false;
}

void tst_Frequency::constantSignalMeanFreeIsZero()
{
    QFETCH(bool, noWindow);
    for (qsizetype count : {2, 7, 8, 1000, 1009}) {
        const QVector<double> spectrum = Frequency::amplitudeSpectrum(QVector<double>(count, 123.25), -1, noWindow, true, false);
        QCOMPARE(spectrum.size(), count);
        // Up to the rounding of the mean: a few units in the last place of 123.25.
        for (double v : spectrum)
            QVERIFY2(std::abs(v) <= 1e-13 * 123.25, qPrintable(QString::number(v)));
    }
}

void tst_Frequency::pointZeroIsAbsoluteMeanWithoutMeanRemoval()
{
    const QVector<double> x = {-1.0, -2.0, -3.0, -4.5, 0.5};
    const QVector<double> spectrum = Frequency::amplitudeSpectrum(x, -1, true, false, false);
    QVERIFY(qAbs(spectrum.at(0) - 2.0) <= 1e-15);
    const QVector<double> reference = Frequency::referenceAmplitudeSpectrum(x, -1, true, false, false);
    QVERIFY(qAbs(reference.at(0) - 2.0) <= 1e-15);
}

void tst_Frequency::upperHalfMirrorsLowerHalf()
{
    for (qsizetype count : {8, 9, 1000, 1009, 20011}) {
        const QVector<double> spectrum = Frequency::meanFreeAmplitudeSpectrum(testSignal(QStringLiteral("random"), count), Frequency::Hamming);
        for (qsizetype k = 1; k < count; ++k)
            QCOMPARE(spectrum.at(k), spectrum.at(count - k));
    }
}

void tst_Frequency::oneSample_data()
{
    QTest::addColumn<bool>("noWindow");
    QTest::addColumn<bool>("meanValueFree");
    QTest::addColumn<double>("expected"); // NaN: not a number expected
    QTest::newRow("hamming, mean free") << false << true << qQNaN();
    QTest::newRow("hamming") << false << false << qQNaN();
    QTest::newRow("no window") << true << false << 2.5;
    QTest::newRow("no window, mean free") << true << true << 0.0;
}

void tst_Frequency::oneSample()
{
    QFETCH(bool, noWindow);
    QFETCH(bool, meanValueFree);
    QFETCH(double, expected);
    for (bool reference : {false, true}) {
        const QVector<double> x = {-2.5};
        const QVector<double> spectrum = reference
            ? Frequency::referenceAmplitudeSpectrum(x, -1, noWindow, meanValueFree, false)
            : Frequency::amplitudeSpectrum(x, -1, noWindow, meanValueFree, false);
        QCOMPARE(spectrum.size(), 1);
        if (qIsNaN(expected))
            QVERIFY(qIsNaN(spectrum.at(0)));
        else
            QCOMPARE(spectrum.at(0), expected);
    }
}

void tst_Frequency::shortInputWithFftComesBackUnchanged()
{
    QCOMPARE(Frequency::amplitudeSpectrum({-3.5}, 4, false, true, true), QVector<double>({-3.5}));
    QCOMPARE(Frequency::amplitudeSpectrum({}, 4, false, true, true), QVector<double>());
    QCOMPARE(Frequency::referenceAmplitudeSpectrum({-3.5}, -1, false, true, true), QVector<double>({-3.5}));
}

void tst_Frequency::paddedLength_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<int>("addedExponent");
    QTest::addColumn<qsizetype>("expected");
    QTest::newRow("8 +0") << qsizetype(8) << 0 << qsizetype(8);
    QTest::newRow("9 +0 is never shortened") << qsizetype(9) << 0 << qsizetype(9);
    QTest::newRow("9 +1") << qsizetype(9) << 1 << qsizetype(16);
    QTest::newRow("5 +2") << qsizetype(5) << 2 << qsizetype(16);
    QTest::newRow("1 +0") << qsizetype(1) << 0 << qsizetype(1);
    QTest::newRow("1 +3") << qsizetype(1) << 3 << qsizetype(8);
    QTest::newRow("0 +5") << qsizetype(0) << 5 << qsizetype(0);
    QTest::newRow("1000 +1") << qsizetype(1000) << 1 << qsizetype(1024);
    QTest::newRow("huge exponent is capped") << qsizetype(1000) << 1000000 << qsizetype(8388608);
    QTest::newRow("large list not padded beyond the cap") << qsizetype(10000000) << 2 << qsizetype(10000000);
}

void tst_Frequency::paddedLength()
{
    QFETCH(qsizetype, count);
    QFETCH(int, addedExponent);
    QFETCH(qsizetype, expected);
    QCOMPARE(Frequency::paddedLength(count, addedExponent), expected);
}

void tst_Frequency::paddingExtendsWithZeros()
{
    QVector<double> x = {1.0, 2.0, 3.0, 4.0, 5.0};
    Frequency::padToPowerOfTwo(x, 1);
    QCOMPARE(x, QVector<double>({1.0, 2.0, 3.0, 4.0, 5.0, 0.0, 0.0, 0.0}));
    const QVector<double> spectrum = Frequency::amplitudeSpectrum({1.0, 2.0, 3.0, 4.0, 5.0}, 1, true, false, false);
    QCOMPARE(spectrum.size(), 8);
    QVERIFY(qAbs(spectrum.at(0) - 15.0 / 8.0) <= 1e-15);
}

void tst_Frequency::meanRemovalDividesEachSample()
{
    QVector<double> x = {1.0, 2.0, 4.0};
    Frequency::removeMeanValue(x);
    const double mean = 1.0 / 3.0 + 2.0 / 3.0 + 4.0 / 3.0;
    QCOMPARE(x, QVector<double>({1.0 - mean, 2.0 - mean, 4.0 - mean}));
}

void tst_Frequency::hammingWeights()
{
    QVector<double> x(5, 1.0);
    Frequency::applyHammingWindow(x);
    const double r = 1.0 / 4.0;
    for (int i = 0; i < 5; ++i)
        QCOMPARE(x.at(i), 0.54 - 0.46 * std::cos(i * 6.2831853071794 * r));
    QVERIFY(qAbs(x.at(0) - 0.08) < 1e-15);
    QVERIFY(qAbs(x.at(2) - 1.0) < 1e-12);
    QVERIFY(qAbs(x.at(4) - 0.08) < 1e-12);
}

void tst_Frequency::meanFreeConvenienceForm()
{
    const QVector<double> x = testSignal(QStringLiteral("random"), 50);
    QCOMPARE(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming),
             Frequency::amplitudeSpectrum(x, -1, false, true, false));
    QCOMPARE(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::NoWindow),
             Frequency::amplitudeSpectrum(x, -1, true, true, false));
    // Every value other than Hamming means no window.
    QCOMPARE(Frequency::meanFreeAmplitudeSpectrum(x, 7),
             Frequency::amplitudeSpectrum(x, -1, true, true, false));
    QCOMPARE(Frequency::meanFreeAmplitudeSpectrum(x, -1),
             Frequency::amplitudeSpectrum(x, -1, true, true, false));
}

void tst_Frequency::emptyInput()
{
    QVERIFY(Frequency::amplitudeSpectrum({}, -1, false, true, false).isEmpty());
    QVERIFY(Frequency::amplitudeSpectrum({}, 3, false, true, false).isEmpty());
    QVERIFY(Frequency::referenceAmplitudeSpectrum({}, -1, false, true, false).isEmpty());
}

void tst_Frequency::nonFiniteSamplesDoNotCrash()
{
    QVector<double> x = testSignal(QStringLiteral("random"), 1009);
    x[3] = qQNaN();
    x[9] = qInf();
    const QVector<double> spectrum = Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming);
    QCOMPARE(spectrum.size(), 1009);
    QVector<double> y(30000, 1.0);
    y[100] = -qInf();
    QCOMPARE(Frequency::meanFreeAmplitudeSpectrum(y, Frequency::NoWindow).size(), 30000);
}

QTEST_GUILESS_MAIN(tst_Frequency)
#include "tst_frequency.moc"
