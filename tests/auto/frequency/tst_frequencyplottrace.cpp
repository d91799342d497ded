// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplottrace.h"
#include "frequencytrace.h"

#include "faketraceinformation.h"

#include <QtCharts/QLineSeries>
#include <QtCore/QRandomGenerator>
#include <QtTest/QtTest>

#include <cmath>
#include <limits>

namespace {

// Pixel column of frequency x when [xMin, xMax] is drawn over `columns` columns.
int columnOf(double x, double xMin, double xMax, bool logarithmic, int columns)
{
    const double fraction = logarithmic ? std::log(x / xMin) / std::log(xMax / xMin)
                                        : (x - xMin) / (xMax - xMin);
    return int(std::floor(fraction * columns));
}

QVector<double> noisySpectrum(int count, quint32 seed)
{
    QRandomGenerator generator(seed);
    QVector<double> amplitudes(count);
    for (int i = 0; i < count; ++i)
        amplitudes[i] = generator.generateDouble() * (1.0 + 1000.0 / (1 + i)) + ((i % 997) == 0 ? 50.0 : 0.0);
    return amplitudes;
}

} // namespace

class tst_FrequencyPlotTrace : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void singlePointGivesEmptySeries();
    void pointsLeaveOutZeroHertz();
    void shortSpectrumKeepsEveryPoint();
    void reducedSeriesIsBounded_data();
    void reducedSeriesIsBounded();
    void reducedSeriesDrawsSameEnvelope_data();
    void reducedSeriesDrawsSameEnvelope();
    void zoomedWindowKeepsNeighbours();
    void nonFiniteAmplitudesStayOut();
    void logarithmicAmplitudesLeaveOutZero();
    void extremesSkipFirstPoint();
    void rebuildFillsSeries();
};

void tst_FrequencyPlotTrace::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_FrequencyPlotTrace::singlePointGivesEmptySeries()
{
    QCOMPARE(FrequencyPlotTrace::allPoints({3.0}, 10.0, false).size(), 0);
    QCOMPARE(FrequencyPlotTrace::reducedPoints({3.0}, 10.0, 1.0, 100.0, true, true, 100).size(), 0);
    QCOMPARE(FrequencyPlotTrace::reducedPoints({}, 10.0, 1.0, 100.0, false, false, 100).size(), 0);

    // Through a real one-sample interval.
    auto information = QSharedPointer<FakeTraceInformation>::create(QVector<double>{1.0, 2.0, 3.0}, 10.0);
    FrequencyTrace trace(information);
    trace.setInterval(1, 1, 1);
    QCOMPARE(trace.amplitudes().size(), 1);
    FrequencyPlotTrace plotTrace(&trace);
    plotTrace.setAmplitudes(trace.amplitudes(), trace.frequencyResolution());
    plotTrace.rebuild(0.0, 1e6, false, false, 500);
    QCOMPARE(plotTrace.series()->count(), 0);
}

void tst_FrequencyPlotTrace::pointsLeaveOutZeroHertz()
{
    const QList<QPointF> points = FrequencyPlotTrace::allPoints({5.0, 1.0, -2.0, 3.0}, 10.0, false);
    QCOMPARE(points.size(), 3);
    QCOMPARE(points.at(0), QPointF(10.0, 1.0));
    QCOMPARE(points.at(1), QPointF(20.0, 2.0)); // the absolute value
    QCOMPARE(points.at(2), QPointF(30.0, 3.0));
}

void tst_FrequencyPlotTrace::shortSpectrumKeepsEveryPoint()
{
    const QVector<double> amplitudes = noisySpectrum(300, 1);
    const QList<QPointF> all = FrequencyPlotTrace::allPoints(amplitudes, 1.0, false);
    const QList<QPointF> reduced = FrequencyPlotTrace::reducedPoints(amplitudes, 1.0, -1.0, 301.0, false, false, 800);
    QCOMPARE(reduced, all);
}

void tst_FrequencyPlotTrace::reducedSeriesIsBounded_data()
{
    QTest::addColumn<bool>("xLog");
    QTest::addColumn<bool>("yLog");
    QTest::addColumn<int>("columns");
    QTest::newRow("lin-lin 800") << false << false << 800;
    QTest::newRow("log-log 800") << true << true << 800;
    QTest::newRow("log-lin 333") << true << false << 333;
    QTest::newRow("lin-log 1") << false << true << 1;
}

void tst_FrequencyPlotTrace::reducedSeriesIsBounded()
{
    QFETCH(bool, xLog);
    QFETCH(bool, yLog);
    QFETCH(int, columns);
    const QVector<double> amplitudes = noisySpectrum(500000, 7);
    const double resolution = 0.5;
    const double xMin = xLog ? resolution * 0.8 : -resolution;
    const double xMax = xLog ? amplitudes.size() * resolution * 1.2 : amplitudes.size() * resolution;
    const QList<QPointF> reduced = FrequencyPlotTrace::reducedPoints(amplitudes, resolution, xMin, xMax, xLog,
                                                                     yLog, columns);
    QVERIFY(!reduced.isEmpty());
    QVERIFY2(reduced.size() <= 2 * columns + 2, qPrintable(QString::number(reduced.size())));
    for (int i = 1; i < reduced.size(); ++i)
        QVERIFY(reduced.at(i).x() > reduced.at(i - 1).x());
}

void tst_FrequencyPlotTrace::reducedSeriesDrawsSameEnvelope_data()
{
    QTest::addColumn<bool>("xLog");
    QTest::addColumn<bool>("yLog");
    QTest::addColumn<double>("xMin");
    QTest::addColumn<double>("xMax");
    QTest::newRow("linear full") << false << false << -1.0 << 100001.0;
    QTest::newRow("logarithmic full") << true << true << 0.8 << 120000.0;
    QTest::newRow("linear zoomed") << false << true << 20000.5 << 33333.3;
    QTest::newRow("logarithmic zoomed") << true << false << 1234.0 << 5678.0;
}

void tst_FrequencyPlotTrace::reducedSeriesDrawsSameEnvelope()
{
    QFETCH(bool, xLog);
    QFETCH(bool, yLog);
    QFETCH(double, xMin);
    QFETCH(double, xMax);
    const int columns = 640;
    QVector<double> amplitudes = noisySpectrum(100000, 42);
    amplitudes[5000] = std::numeric_limits<double>::quiet_NaN();
    amplitudes[5001] = 0.0;
    const double resolution = 1.0;

    const QList<QPointF> all = FrequencyPlotTrace::allPoints(amplitudes, resolution, yLog);
    const QList<QPointF> reduced = FrequencyPlotTrace::reducedPoints(amplitudes, resolution, xMin, xMax, xLog,
                                                                     yLog, columns);
    const double lowest = -std::numeric_limits<double>::infinity();
    QVector<double> fullTop(columns, lowest), reducedTop(columns, lowest);
    QVector<double> fullBottom(columns, -lowest), reducedBottom(columns, -lowest);
    for (const QPointF& point : all) {
        if (point.x() < xMin || point.x() > xMax)
            continue;
        const int column = std::clamp(columnOf(point.x(), xMin, xMax, xLog, columns), 0, columns - 1);
        fullTop[column] = std::max(fullTop[column], point.y());
        fullBottom[column] = std::min(fullBottom[column], point.y());
    }
    for (const QPointF& point : reduced) {
        if (point.x() < xMin || point.x() > xMax)
            continue;
        const int column = std::clamp(columnOf(point.x(), xMin, xMax, xLog, columns), 0, columns - 1);
        reducedTop[column] = std::max(reducedTop[column], point.y());
        reducedBottom[column] = std::min(reducedBottom[column], point.y());
    }
    // Every reduced point is one of the full series.
    QSet<double> fullX;
    for (const QPointF& point : all)
        fullX.insert(point.x());
    for (const QPointF& point : reduced)
        QVERIFY(fullX.contains(point.x()));
    int mismatches = 0;
    for (int column = 0; column < columns; ++column) {
        if (fullTop[column] != reducedTop[column] || fullBottom[column] != reducedBottom[column])
            ++mismatches;
    }
    QCOMPARE(mismatches, 0);
}

void tst_FrequencyPlotTrace::zoomedWindowKeepsNeighbours()
{
    QVector<double> amplitudes(100, 1.0);
    for (int i = 0; i < amplitudes.size(); ++i)
        amplitudes[i] = i;
    const QList<QPointF> points = FrequencyPlotTrace::reducedPoints(amplitudes, 1.0, 10.5, 12.5, false, false, 100);
    QCOMPARE(points.size(), 4);
    QCOMPARE(points.first().x(), 10.0);
    QCOMPARE(points.last().x(), 13.0);
    // A window between two points still gets the line through it.
    const QList<QPointF> between = FrequencyPlotTrace::reducedPoints(amplitudes, 1.0, 20.2, 20.8, false, false, 100);
    QCOMPARE(between.size(), 2);
    QCOMPARE(between.at(0).x(), 20.0);
    QCOMPARE(between.at(1).x(), 21.0);
}

void tst_FrequencyPlotTrace::nonFiniteAmplitudesStayOut()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    const QVector<double> amplitudes{nan, 1.0, nan, inf, -inf, 2.0};
    const QList<QPointF> points = FrequencyPlotTrace::allPoints(amplitudes, 1.0, false);
    QCOMPARE(points.size(), 2);
    const QList<QPointF> reduced = FrequencyPlotTrace::reducedPoints(amplitudes, 1.0, 0.1, 10.0, true, true, 2);
    for (const QPointF& point : reduced)
        QVERIFY(std::isfinite(point.y()));

    // The one-sample Hamming case: a NaN amplitude, no point, no warning.
    auto information = QSharedPointer<FakeTraceInformation>::create(QVector<double>{1.0, 2.0, 3.0}, 10.0);
    FrequencyTrace trace(information);
    trace.setInterval(0, 0, 0);
    QVERIFY(std::isnan(trace.amplitudes().value(0)));
    FrequencyPlotTrace plotTrace(&trace);
    plotTrace.setAmplitudes(trace.amplitudes(), trace.frequencyResolution());
    QVERIFY(std::isnan(plotTrace.maxAmplitude(0, false)));
    QVERIFY(std::isnan(plotTrace.minAmplitude(0, true)));
}

void tst_FrequencyPlotTrace::logarithmicAmplitudesLeaveOutZero()
{
    const QVector<double> amplitudes{0.0, 0.0, 1.0, 0.0, 4.0};
    QCOMPARE(FrequencyPlotTrace::allPoints(amplitudes, 1.0, true).size(), 2);
    QCOMPARE(FrequencyPlotTrace::allPoints(amplitudes, 1.0, false).size(), 4);
}

void tst_FrequencyPlotTrace::extremesSkipFirstPoint()
{
    FrequencyPlotTrace plotTrace(nullptr);
    plotTrace.setAmplitudes({100.0, 0.0, 2.0, 3.0}, 1.0);
    QCOMPARE(plotTrace.maxAmplitude(0, false), 100.0);
    QCOMPARE(plotTrace.maxAmplitude(1, false), 3.0);
    QCOMPARE(plotTrace.minAmplitude(1, false), 0.0);
    QCOMPARE(plotTrace.minAmplitude(1, true), 2.0);
    QCOMPARE(plotTrace.minAmplitude(0, true), 2.0);
}

void tst_FrequencyPlotTrace::rebuildFillsSeries()
{
    FrequencyPlotTrace plotTrace(nullptr);
    plotTrace.setAmplitudes(noisySpectrum(10000, 3), 2.0);
    plotTrace.rebuild(1.6, 24000.0, true, true, 200);
    QVERIFY(plotTrace.series()->count() > 0);
    QVERIFY(plotTrace.series()->count() <= 402);
}

QTEST_MAIN(tst_FrequencyPlotTrace)
#include "tst_frequencyplottrace.moc"
