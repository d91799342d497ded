// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyfftwtransform.h"

#include <QtTest/QtTest>

#include <climits>
#include <cmath>
#include <random>
#include <vector>

namespace {

std::vector<double> testSignal(const QString& kind, qsizetype count)
{
    std::vector<double> x(static_cast<size_t>(count));
    if (kind == QLatin1String("random")) {
        std::mt19937_64 generator(static_cast<quint64>(count) * 7919u + 1u);
        std::uniform_real_distribution<double> distribution(-5.0, 5.0);
        for (double& v : x)
            v = distribution(generator);
    } else if (kind == QLatin1String("constant")) {
        std::fill(x.begin(), x.end(), 2.75);
    } else { // a sine exactly on bin 3 (or the highest bin that exists)
        const qsizetype bin = std::min<qsizetype>(3, count / 2);
        for (qsizetype n = 0; n < count; ++n)
            x[static_cast<size_t>(n)] =
                1.5 * std::sin(2.0 * M_PI * double(bin) * double(n) / double(count)) + 0.25;
    }
    return x;
}

// The transform in long double, O(M²), with the twiddles from one table.
std::vector<std::complex<long double>> exactTransform(const std::vector<double>& x, qsizetype bins)
{
    const qsizetype m = static_cast<qsizetype>(x.size());
    std::vector<long double> c(static_cast<size_t>(m)), s(static_cast<size_t>(m));
    const long double pi = 3.141592653589793238462643383279502884L;
    for (qsizetype j = 0; j < m; ++j) {
        const long double a = -2.0L * pi * (long double)j / (long double)m;
        c[static_cast<size_t>(j)] = cosl(a);
        s[static_cast<size_t>(j)] = sinl(a);
    }
    std::vector<std::complex<long double>> result(static_cast<size_t>(bins));
    for (qsizetype k = 0; k < bins; ++k) {
        long double re = 0.0L, im = 0.0L;
        qsizetype index = 0;
        for (qsizetype n = 0; n < m; ++n) {
            re += (long double)x[static_cast<size_t>(n)] * c[static_cast<size_t>(index)];
            im += (long double)x[static_cast<size_t>(n)] * s[static_cast<size_t>(index)];
            index += k;
            if (index >= m)
                index -= m;
        }
        result[static_cast<size_t>(k)] = {re, im};
    }
    return result;
}

// ‖a − b‖ ÷ ‖b‖ over the points 0 … M/2 (the rest are their conjugates).
template<typename A, typename B>
double relativeError(const std::vector<A>& a, const std::vector<B>& b)
{
    long double difference = 0.0L, norm = 0.0L;
    for (size_t k = 0; k < b.size(); ++k) {
        const long double dr = (long double)a[k].real() - (long double)b[k].real();
        const long double di = (long double)a[k].imag() - (long double)b[k].imag();
        difference += dr * dr + di * di;
        norm += (long double)b[k].real() * b[k].real() + (long double)b[k].imag() * b[k].imag();
    }
    return norm == 0.0L ? double(sqrtl(difference)) : double(sqrtl(difference / norm));
}

} // namespace

class tst_FrequencyFftwTransform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void matchesExactTransform_data();
    void matchesExactTransform();
    void longLengthsMatchExactTransformAtSampledPoints_data();
    void longLengthsMatchExactTransformAtSampledPoints();
    void chirpMatchesDirectForLongLengths_data();
    void chirpMatchesDirectForLongLengths();
    void choosesChirpForLargePrimeFactors_data();
    void choosesChirpForLargePrimeFactors();
    void convolutionLengthIsFiveSmooth_data();
    void convolutionLengthIsFiveSmooth();
    void cachesPlansPerLength();
    void nonFiniteInputDoesNotCrash();
};

void tst_FrequencyFftwTransform::matchesExactTransform_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<QString>("signal");
    QTest::addColumn<bool>("chirp");
    const qsizetype counts[] = {1, 2, 3, 8, 9, 1000, 1009, 4096};
    const char* signals[] = {"random", "constant", "sine"};
    for (qsizetype count : counts) {
        for (const char* signal : signals) {
            for (bool chirp : {false, true}) {
                QTest::addRow("%s M=%lld %s", signal, (long long)count, chirp ? "chirp" : "fftw")
                    << count << QString::fromLatin1(signal) << chirp;
            }
        }
    }
}

void tst_FrequencyFftwTransform::matchesExactTransform()
{
    QFETCH(qsizetype, count);
    QFETCH(QString, signal);
    QFETCH(bool, chirp);
    FrequencyFftwTransform transform = chirp ? FrequencyFftwTransform(0, 1) : FrequencyFftwTransform(INT_MAX, 0);
    QCOMPARE(transform.usesChirpConvolution(count), chirp && count > 1);
    const std::vector<double> x = testSignal(signal, count);
    const qsizetype bins = count / 2 + 1;
    std::vector<std::complex<double>> result(static_cast<size_t>(bins));
    transform.forwardReal(x.data(), count, result.data());
    const auto exact = exactTransform(x, bins);
    const double error = relativeError(result, exact);
    QVERIFY2(error <= 1e-13, qPrintable(QStringLiteral("relative L2 error %1").arg(error)));
}

void tst_FrequencyFftwTransform::longLengthsMatchExactTransformAtSampledPoints_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<bool>("chirp");
    QTest::newRow("prime 65537") << qsizetype(65537) << true;
    QTest::newRow("2^20") << qsizetype(1 << 20) << false;
    QTest::newRow("999999") << qsizetype(999999) << false;
    QTest::newRow("47 * 21277") << qsizetype(1000019) << true;
    QTest::newRow("prime 1000003") << qsizetype(1000003) << true;
}

// An exact transform of every point is out of reach for long lengths; 64
// points spread over the spectrum (0, M/2 and random ones) stand in for it.
void tst_FrequencyFftwTransform::longLengthsMatchExactTransformAtSampledPoints()
{
    QFETCH(qsizetype, count);
    QFETCH(bool, chirp);
    FrequencyFftwTransform transform;
    QCOMPARE(transform.usesChirpConvolution(count), chirp);
    const std::vector<double> x = testSignal(QStringLiteral("random"), count);
    const qsizetype bins = count / 2 + 1;
    std::vector<std::complex<double>> result(static_cast<size_t>(bins));
    transform.forwardReal(x.data(), count, result.data());

    std::vector<long double> c(static_cast<size_t>(count)), s(static_cast<size_t>(count));
    const long double pi = 3.141592653589793238462643383279502884L;
    for (qsizetype j = 0; j < count; ++j) {
        const long double a = -2.0L * pi * (long double)j / (long double)count;
        c[static_cast<size_t>(j)] = cosl(a);
        s[static_cast<size_t>(j)] = sinl(a);
    }
    std::mt19937_64 generator(static_cast<quint64>(count));
    std::uniform_int_distribution<qsizetype> pick(1, bins - 2);
    std::vector<qsizetype> points = {0, bins - 1};
    while (points.size() < 64)
        points.push_back(pick(generator));
    std::vector<std::complex<double>> fast;
    std::vector<std::complex<long double>> exact;
    for (qsizetype k : points) {
        long double re = 0.0L, im = 0.0L;
        qsizetype index = 0;
        for (qsizetype n = 0; n < count; ++n) {
            re += (long double)x[static_cast<size_t>(n)] * c[static_cast<size_t>(index)];
            im += (long double)x[static_cast<size_t>(n)] * s[static_cast<size_t>(index)];
            index += k;
            if (index >= count)
                index -= count;
        }
        exact.push_back({re, im});
        fast.push_back(result[static_cast<size_t>(k)]);
    }
    const double error = relativeError(fast, exact);
    QVERIFY2(error <= 1e-13, qPrintable(QStringLiteral("relative L2 error %1").arg(error)));
}

void tst_FrequencyFftwTransform::chirpMatchesDirectForLongLengths_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::newRow("prime 65537") << qsizetype(65537);
    QTest::newRow("2^13 * 127") << qsizetype(8192 * 127);
    QTest::newRow("prime 1000003") << qsizetype(1000003);
}

void tst_FrequencyFftwTransform::chirpMatchesDirectForLongLengths()
{
    QFETCH(qsizetype, count);
    FrequencyFftwTransform chirp(0, 1);
    FrequencyFftwTransform direct(INT_MAX, 0);
    QVERIFY(chirp.usesChirpConvolution(count));
    QVERIFY(!direct.usesChirpConvolution(count));
    const std::vector<double> x = testSignal(QStringLiteral("random"), count);
    const qsizetype bins = count / 2 + 1;
    std::vector<std::complex<double>> a(static_cast<size_t>(bins)), b(static_cast<size_t>(bins));
    chirp.forwardReal(x.data(), count, a.data());
    direct.forwardReal(x.data(), count, b.data());
    const double error = relativeError(a, b);
    QVERIFY2(error <= 1e-13, qPrintable(QStringLiteral("relative L2 error %1").arg(error)));
}

void tst_FrequencyFftwTransform::choosesChirpForLargePrimeFactors_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<bool>("chirp");
    QTest::newRow("short prime") << qsizetype(1009) << false;
    QTest::newRow("at the limit") << qsizetype(16381) << false;
    QTest::newRow("power of two") << qsizetype(1 << 20) << false;
    QTest::newRow("10^6") << qsizetype(1000000) << false;
    QTest::newRow("31-smooth") << qsizetype(31 * 29 * 1024) << false;
    QTest::newRow("37 * 2^15") << qsizetype(37 * 32768) << false;
    QTest::newRow("1009 * 1021") << qsizetype(1009 * 1021) << false;
    QTest::newRow("prime 1031 above the limit") << qsizetype(1031 * 1024) << true;
    QTest::newRow("prime 1000003") << qsizetype(1000003) << true;
    QTest::newRow("2 * 500009") << qsizetype(1000018) << true;
    QTest::newRow("47 * 21277") << qsizetype(1000019) << true;
}

void tst_FrequencyFftwTransform::choosesChirpForLargePrimeFactors()
{
    QFETCH(qsizetype, count);
    QFETCH(bool, chirp);
    FrequencyFftwTransform transform;
    QCOMPARE(transform.usesChirpConvolution(count), chirp);
}

void tst_FrequencyFftwTransform::convolutionLengthIsFiveSmooth_data()
{
    QTest::addColumn<qsizetype>("count");
    QTest::addColumn<qsizetype>("expected");
    QTest::newRow("2") << qsizetype(2) << qsizetype(3);
    QTest::newRow("7") << qsizetype(7) << qsizetype(10);
    QTest::newRow("2^16 + 1") << qsizetype(65537) << qsizetype(98415);
    QTest::newRow("prime near 2^20") << qsizetype(1048573) << qsizetype(1574640);
}

void tst_FrequencyFftwTransform::convolutionLengthIsFiveSmooth()
{
    QFETCH(qsizetype, count);
    QFETCH(qsizetype, expected);
    const qsizetype length = FrequencyFftwTransform::convolutionLength(count);
    QVERIFY(length >= count + count / 2);
    qsizetype rest = length;
    for (qsizetype f : {2, 3, 5})
        while (rest % f == 0)
            rest /= f;
    QCOMPARE(rest, qsizetype(1));
    QCOMPARE(length, expected);
}

void tst_FrequencyFftwTransform::cachesPlansPerLength()
{
    FrequencyFftwTransform transform;
    std::vector<double> x(200, 1.0);
    std::vector<std::complex<double>> out(101);
    transform.forwardReal(x.data(), 100, out.data());
    transform.forwardReal(x.data(), 100, out.data());
    QCOMPARE(transform.cachedLengths(), 1);
    transform.forwardReal(x.data(), 200, out.data());
    QCOMPARE(transform.cachedLengths(), 2);
    for (qsizetype count = 1; count <= 40; ++count)
        transform.forwardReal(x.data(), count, out.data());
    QCOMPARE(transform.cachedLengths(), 16);
    transform.clearCache();
    QCOMPARE(transform.cachedLengths(), 0);
    transform.forwardReal(x.data(), 0, out.data());
    QCOMPARE(transform.cachedLengths(), 0);
}

void tst_FrequencyFftwTransform::nonFiniteInputDoesNotCrash()
{
    for (bool chirp : {false, true}) {
        FrequencyFftwTransform transform = chirp ? FrequencyFftwTransform(0, 1) : FrequencyFftwTransform();
        std::vector<double> x(1009, 1.0);
        x[5] = std::numeric_limits<double>::quiet_NaN();
        x[7] = std::numeric_limits<double>::infinity();
        std::vector<std::complex<double>> out(505);
        transform.forwardReal(x.data(), 1009, out.data());
        QVERIFY(!std::isfinite(out[0].real()));
    }
}

QTEST_GUILESS_MAIN(tst_FrequencyFftwTransform)
#include "tst_frequencyfftwtransform.moc"
