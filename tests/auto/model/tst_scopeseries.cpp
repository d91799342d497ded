// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeseries.h"

#include <QtTest/QTest>

#include <cmath>
#include <limits>

class tst_ScopeSeries : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void nextLarger_data();
    void nextLarger();
    void nextSmaller_data();
    void nextSmaller();
    void roundTrip();
    void nearSeriesValueStepsFurther();
    void unusableValues();
    void niceFactors_data();
    void niceFactors();
};

static bool close(double a, double b)
{
    return std::fabs(a - b) <= std::fabs(b) * 1e-12;
}

void tst_ScopeSeries::nextLarger_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("1") << 1.0 << 2.0;
    QTest::newRow("2") << 2.0 << 5.0;
    QTest::newRow("5") << 5.0 << 10.0;
    QTest::newRow("10") << 10.0 << 20.0;
    QTest::newRow("1000") << 1000.0 << 2000.0;
    QTest::newRow("0.1") << 0.1 << 0.2;
    QTest::newRow("0.3") << 0.3 << 0.5;
    QTest::newRow("1.5") << 1.5 << 2.0;
    QTest::newRow("7") << 7.0 << 10.0;
    QTest::newRow("0.002") << 0.002 << 0.005;
    QTest::newRow("-2") << -2.0 << -5.0;
    QTest::newRow("1e-9") << 1e-9 << 2e-9;
}

void tst_ScopeSeries::nextLarger()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    QVERIFY2(close(ScopeSeries::nextLarger(value), expected),
             qPrintable(QString::number(ScopeSeries::nextLarger(value), 'g', 17)));
}

void tst_ScopeSeries::nextSmaller_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("1") << 1.0 << 0.5;
    QTest::newRow("2") << 2.0 << 1.0;
    QTest::newRow("5") << 5.0 << 2.0;
    QTest::newRow("10") << 10.0 << 5.0;
    QTest::newRow("1000") << 1000.0 << 500.0;
    QTest::newRow("0.3") << 0.3 << 0.2;
    QTest::newRow("1.5") << 1.5 << 1.0;
    QTest::newRow("7") << 7.0 << 5.0;
    QTest::newRow("0.001") << 0.001 << 0.0005;
    QTest::newRow("-5") << -5.0 << -2.0;
}

void tst_ScopeSeries::nextSmaller()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    QVERIFY2(close(ScopeSeries::nextSmaller(value), expected),
             qPrintable(QString::number(ScopeSeries::nextSmaller(value), 'g', 17)));
}

void tst_ScopeSeries::roundTrip()
{
    // Every step lands exactly on the series, so stepping up and down walks it.
    double value = 1e-6;
    for (int i = 0; i < 40; ++i) {
        const double up = ScopeSeries::nextLarger(value);
        QVERIFY(ScopeSeries::isOnSeries(up));
        QVERIFY(close(ScopeSeries::nextSmaller(up), value));
        value = up;
    }
    QVERIFY(close(value, 1e-6 * std::pow(10.0, 40 / 3) * 2.0));
}

void tst_ScopeSeries::nearSeriesValueStepsFurther()
{
    // Within three units in the last place a value counts as on the series.
    const double nearTwo = std::nextafter(2.0, 0.0);
    QCOMPARE(ScopeSeries::nextLarger(nearTwo), 5.0);
    QCOMPARE(ScopeSeries::nextSmaller(std::nextafter(2.0, 3.0)), 1.0);
    QVERIFY(ScopeSeries::isOnSeries(nearTwo));
    QVERIFY(!ScopeSeries::isOnSeries(2.0001));
    // 0.1 + 0.2 is one unit above 0.3, which is not on the series.
    QVERIFY(close(ScopeSeries::nextLarger(0.1 + 0.2), 0.5));
    QCOMPARE(ScopeSeries::ceil(5.0), 5.0);
    QCOMPARE(ScopeSeries::floor(5.0), 5.0);
    QCOMPARE(ScopeSeries::ceil(6.0), 10.0);
    QCOMPARE(ScopeSeries::floor(6.0), 5.0);
}

void tst_ScopeSeries::unusableValues()
{
    QCOMPARE(ScopeSeries::nextLarger(0.0), 0.0);
    QCOMPARE(ScopeSeries::nextSmaller(0.0), 0.0);
    QVERIFY(std::isnan(ScopeSeries::nextLarger(std::numeric_limits<double>::quiet_NaN())));
    QVERIFY(std::isinf(ScopeSeries::nextSmaller(std::numeric_limits<double>::infinity())));
    QVERIFY(std::isnan(ScopeSeries::niceFactorDown(std::numeric_limits<double>::quiet_NaN())));
    QCOMPARE(ScopeSeries::niceFactorUp(0.0), 0.0);
    QVERIFY(!ScopeSeries::isOnSeries(0.0));
}

void tst_ScopeSeries::niceFactors_data()
{
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("down");
    QTest::addColumn<double>("up");
    QTest::addColumn<double>("atMost");
    QTest::newRow("1") << 1.0 << 0.5 << 2.0 << 1.0;
    QTest::newRow("5") << 5.0 << 2.0 << 10.0 << 5.0;
    QTest::newRow("0.5") << 0.5 << 0.2 << 1.0 << 0.5;
    QTest::newRow("6") << 6.0 << 5.0 << 10.0 << 5.0;
    QTest::newRow("1.2") << 1.2 << 1.0 << 2.0 << 1.0;
    QTest::newRow("0.03") << 0.03 << 0.02 << 0.05 << 0.02;
}

void tst_ScopeSeries::niceFactors()
{
    QFETCH(double, factor);
    QFETCH(double, down);
    QFETCH(double, up);
    QFETCH(double, atMost);
    QVERIFY(close(ScopeSeries::niceFactorDown(factor), down));
    QVERIFY(close(ScopeSeries::niceFactorUp(factor), up));
    QVERIFY(close(ScopeSeries::niceFactorAtMost(factor), atMost));
}

QTEST_GUILESS_MAIN(tst_ScopeSeries)
#include "tst_scopeseries.moc"
