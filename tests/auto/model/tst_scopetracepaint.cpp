// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopelayout.h"
#include "scopetrace.h"
#include "scopetrace_p.h"

#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtTest/QTest>

#include <cmath>
#include <random>

namespace {

constexpr quint8 int8Type = 1;
constexpr quint8 int16Type = 2;

// 1000 × 600 pixels: divisions of 99 × 71, grid at (2, 15) of 991 × 569.
constexpr int imageWidth = 1000;
constexpr int imageHeight = 600;
constexpr int bottom = 15 + 569 - 1;

QImage blankImage()
{
    QImage image(imageWidth, imageHeight, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QList<int> litRows(const QImage& image, int x)
{
    QList<int> rows;
    for (int y = 0; y < image.height(); ++y) {
        if (qAlpha(image.pixel(x, y)) != 0)
            rows.append(y);
    }
    return rows;
}

int litCount(const QImage& image)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += qAlpha(image.pixel(x, y)) != 0;
    }
    return count;
}

struct PictureDifference
{
    int lit = 0;
    int pixels = 0;
    int columns = 0;
    int largestShift = 0;
    int emptyMismatch = 0;
    int litColumns = 0;    // columns lit in b
    int missingColumns = 0; // columns lit in b and empty in a
};

// Compares two pictures column by column: the rows lit in one and not in
// the other, and how far the top and bottom lit rows of a column move.
PictureDifference comparePictures(const QImage& a, const QImage& b)
{
    PictureDifference difference;
    for (int x = 0; x < a.width(); ++x) {
        const QList<int> rowsA = litRows(a, x);
        const QList<int> rowsB = litRows(b, x);
        difference.lit += int(rowsB.size());
        difference.litColumns += !rowsB.isEmpty();
        if (rowsA == rowsB)
            continue;
        ++difference.columns;
        if (rowsA.isEmpty() != rowsB.isEmpty()) {
            ++difference.emptyMismatch;
            difference.missingColumns += rowsA.isEmpty();
            continue;
        }

        for (int row : rowsA)
            difference.pixels += !rowsB.contains(row);
        for (int row : rowsB)
            difference.pixels += !rowsA.contains(row);
        difference.largestShift = std::max({difference.largestShift, std::abs(rowsA.front() - rowsB.front()),
                                            std::abs(rowsA.back() - rowsB.back())});
    }
    return difference;
}

// Lit pixels of a that have no lit pixel of b in their 3 x 3 neighbourhood.
int unmatchedPixels(const QImage& a, const QImage& b)
{
    int unmatched = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (qAlpha(a.pixel(x, y)) == 0)
                continue;
            bool near = false;
            for (int dy = -1; dy <= 1 && !near; ++dy) {
                for (int dx = -1; dx <= 1 && !near; ++dx) {
                    const int nx = x + dx;
                    const int ny = y + dy;
                    near = nx >= 0 && ny >= 0 && nx < b.width() && ny < b.height() && qAlpha(b.pixel(nx, ny)) != 0;
                }
            }
            unmatched += !near;
        }
    }
    return unmatched;
}

} // namespace

class tst_ScopeTracePaint : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void knownScale_data();
    void knownScale();
    void offDrawsNothing();
    void noSamplesDrawsNothing();
    void clippedToPlotArea();
    void binaryRows();
    void binaryRowsDense();
    void binaryLabels();
    void envelopeRange();
    void envelopeMatchesEverySample_data();
    void envelopeMatchesEverySample();
    void binaryEnvelopeMatchesEverySample_data();
    void binaryEnvelopeMatchesEverySample();
    void restoresPainter();

private:
    ScopeLayout m_layout;
};

void tst_ScopeTracePaint::initTestCase()
{
    m_layout.setGeometry(QRect(0, 0, imageWidth, imageHeight));
    QCOMPARE(m_layout.plotArea(), QRect(2, 15, 991, 569));
}

void tst_ScopeTracePaint::knownScale_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("factor");
    QTest::addColumn<double>("offset");
    QTest::addColumn<bool>("ground");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<int>("row");

    // A value lands value × factor + offset divisions above the bottom grid line.
    QTest::newRow("2 at factor 1, offset 1") << 2.0 << 1.0 << 1.0 << false << false << bottom - 3 * 71;
    QTest::newRow("zero line") << 0.0 << 1.0 << 1.0 << false << false << bottom - 71;
    QTest::newRow("factor 0.5") << 4.0 << 0.5 << 0.0 << false << false << bottom - 2 * 71;
    QTest::newRow("grounded") << 2.0 << 1.0 << 1.0 << true << false << bottom - 71;
    QTest::newRow("inverted") << 2.0 << 1.0 << 4.0 << false << true << bottom - 2 * 71;
    QTest::newRow("top line") << 7.0 << 1.0 << 1.0 << false << false << 15;
    QTest::newRow("half division") << 0.5 << 1.0 << 1.0 << false << false << int(std::floor(bottom - 1.5 * 71));
}

void tst_ScopeTracePaint::knownScale()
{
    QFETCH(double, value);
    QFETCH(double, factor);
    QFETCH(double, offset);
    QFETCH(bool, ground);
    QFETCH(bool, inverted);
    QFETCH(int, row);

    ScopeTrace trace(nullptr, 0);
    trace.setColor(Qt::yellow);
    trace.setSamples(QVector<double>(100, value));
    trace.setScalingFactor(factor);
    trace.setVerticalOffset(offset);
    trace.setGround(ground, false);
    trace.setInverted(inverted, false);

    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, 0, 99 * 100);
    painter.end();
    for (int x : {50, 500, 900}) {
        QCOMPARE(litRows(image, x), QList<int>{row});
        QCOMPARE(image.pixel(x, row), QColor(Qt::yellow).rgba());
    }
}

void tst_ScopeTracePaint::offDrawsNothing()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples(QVector<double>(100, 1.0));
    trace.setOff(true, false);
    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, 0, 9900);
    painter.end();
    QCOMPARE(litCount(image), 0);

    // Half way through the animation the colour is half transparent.
    ScopeTrace fading(nullptr, 0);
    fading.setColor(Qt::white);
    fading.setSamples(QVector<double>(100, 1.0));
    fading.setOff(true, true);
    QTRY_VERIFY(fading.offAlphaFactor() < 0.7 && fading.offAlphaFactor() > 0.0);
    const double alpha = fading.offAlphaFactor();
    QImage faded = blankImage();
    QPainter fadedPainter(&faded);
    fading.paint(&m_layout, &fadedPainter, 0, 9900);
    fadedPainter.end();
    const QList<int> rows = litRows(faded, 500);
    QCOMPARE(rows.size(), 1);
    QVERIFY(std::abs(qAlpha(faded.pixel(500, rows.front())) - int(255 * alpha)) <= 2);
}

void tst_ScopeTracePaint::noSamplesDrawsNothing()
{
    ScopeTrace trace(nullptr, 0);
    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, 0, 9900);
    painter.end();
    QCOMPARE(litCount(image), 0);
    QCOMPARE(trace.unitsPerPixel(), 1.0);
}

void tst_ScopeTracePaint::clippedToPlotArea()
{
    ScopeTrace trace(nullptr, 0);
    QVector<double> samples;
    for (int i = 0; i < 1000; ++i)
        samples.append(i % 2 ? 100.0 : -100.0);
    trace.setSamples(samples);
    trace.setVerticalOffset(4.0);
    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, -50000, 150000);
    painter.end();
    const QRect area = m_layout.plotArea();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) != 0)
                QVERIFY2(area.contains(x, y), qPrintable(QStringLiteral("%1,%2").arg(x).arg(y)));
        }
    }
    // Nothing is drawn left of the first sample (apart from the zero-line arrow).
    QVERIFY(litRows(image, area.left() + 10).isEmpty());
    QVERIFY(!litRows(image, area.left() + area.width() / 2).isEmpty());
}

void tst_ScopeTracePaint::binaryRows()
{
    ScopeTrace trace(nullptr, 0);
    trace.setColor(Qt::cyan);
    trace.setPhysicalDatatype(int8Type);
    trace.setSamples(QVector<double>(100, 5.0)); // bits 0 and 2 set
    trace.setBinaryViewMask(0x7);
    trace.setBinaryView(true);
    trace.autoScale(); // factor 0.25, offset 1

    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, 0, 9900);
    painter.end();
    // Row i has its base line at 1 + i × 1.5 × 0.25 divisions and its high
    // level 0.25 divisions above: bit 0 high, bit 1 low, bit 2 high.
    const QList<int> expected{int(std::floor(bottom - 71 * (1.75 + 0.25))),
                              int(std::floor(bottom - 71 * 1.375)),
                              int(std::floor(bottom - 71 * 1.25))};
    for (int x : {100, 500, 900})
        QCOMPARE(litRows(image, x), expected);
}

void tst_ScopeTracePaint::binaryRowsDense()
{
    // A bit toggling from sample to sample fills its row between both levels.
    ScopeTrace trace(nullptr, 0);
    trace.setPhysicalDatatype(int16Type);
    QVector<double> samples;
    for (int i = 0; i < 100000; ++i)
        samples.append(i % 2 ? 3.0 : 1.0); // bit 0 always set, bit 1 toggling
    trace.setSamples(samples);
    trace.setBinaryViewMask(0x3);
    trace.setBinaryView(true);
    trace.autoScale();
    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&m_layout, &painter, 0, 100000 * 100);
    painter.end();
    const int high0 = int(std::floor(bottom - 71 * 1.25));
    const int low1 = int(std::floor(bottom - 71 * 1.375));
    const int high1 = int(std::floor(bottom - 71 * 1.625));
    QList<int> expected;
    for (int y = high1; y <= low1; ++y)
        expected.append(y);
    expected.append(high0);
    QCOMPARE(litRows(image, 500), expected);
}

void tst_ScopeTracePaint::binaryLabels()
{
    ScopeTrace trace(nullptr, 0);
    trace.setPhysicalDatatype(int8Type);
    trace.setSamples(QVector<double>(100, 0.0));
    trace.setBinaryViewMask(0x1);
    trace.setBinaryView(true);
    trace.autoScale();
    QCOMPARE(trace.binaryLabelExtent(), 14);

    // With room in the left column the labels go there.
    ScopeLayout layout;
    layout.setLeftWidth(trace.binaryLabelExtent());
    layout.setGeometry(QRect(0, 0, imageWidth, imageHeight));
    QImage image = blankImage();
    QPainter painter(&image);
    trace.paint(&layout, &painter, 0, 9900);
    painter.end();
    bool labelled = false;
    const QRect column = layout.leftColumn();
    for (int x = column.left(); x <= column.right(); ++x)
        labelled = labelled || !litRows(image, x).isEmpty();
    QVERIFY(labelled);
}

void tst_ScopeTracePaint::envelopeRange()
{
    // Every range query of the pyramid equals a walk over the samples.
    std::mt19937 random(7);
    std::uniform_real_distribution<double> value(-1000.0, 1000.0);
    for (int count : {0, 1, 15, 16, 17, 33, 1000, 4099, 65536, 100003}) {
        QVector<double> samples(count);
        for (double& sample : samples)
            sample = value(random);
        if (count > 20)
            samples[count / 2] = std::numeric_limits<double>::quiet_NaN();
        ScopeTraceEnvelope envelope;
        envelope.build(samples);
        ScopeTraceBitEnvelope bits;
        bits.build(samples);
        std::uniform_int_distribution<int> index(0, count);
        for (int i = 0; i < 300; ++i) {
            int first = index(random);
            int last = index(random);
            if (first > last)
                std::swap(first, last);
            double lowest = std::numeric_limits<double>::infinity();
            double highest = -lowest;
            quint64 ones = 0;
            quint64 all = ~quint64(0);
            for (int k = first; k < last; ++k) {
                if (std::isnan(samples[k]))
                    continue;
                lowest = std::min(lowest, samples[k]);
                highest = std::max(highest, samples[k]);
                const quint64 v = quint64(qint64(samples[k]));
                ones |= v;
                all &= v;
            }
            double low = 0.0;
            double high = 0.0;
            const bool found = envelope.range(samples, first, last, &low, &high);
            QCOMPARE(found, lowest <= highest);
            if (found) {
                QCOMPARE(low, lowest);
                QCOMPARE(high, highest);
            }
            quint64 bitOnes = 0;
            quint64 bitAll = 0;
            bits.range(samples, first, last, &bitOnes, &bitAll);
            QCOMPARE(bitOnes, ones);
            QCOMPARE(bitAll, all);
        }
    }
}

void tst_ScopeTracePaint::envelopeMatchesEverySample_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<qint64>("left");
    QTest::addColumn<qint64>("right");
    QTest::addColumn<double>("factor");
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<double>("noise");
    QTest::addColumn<bool>("spikes"); // a lone sample 60 units up now and then

    // Time base 1: a sample every 100 ns.
    QTest::newRow("200k whole") << 200000 << qint64(0) << qint64(200000) * 100 << 0.05 << false << 3.0 << true;
    QTest::newRow("200k before and after") << 200000 << qint64(-3000000) << qint64(23000000) << 0.05 << false << 3.0 << true;
    QTest::newRow("200k half") << 200000 << qint64(5000000) << qint64(15000000) << 0.05 << false << 3.0 << true;
    QTest::newRow("200k tenth") << 200000 << qint64(7777700) << qint64(9777700) << 0.05 << false << 3.0 << true;
    QTest::newRow("200k 3 per pixel") << 200000 << qint64(1000000) << qint64(1000000 + 3 * 991 * 100) << 0.05
                                      << false << 3.0 << true;
    QTest::newRow("200k sparse") << 200000 << qint64(1000000) << qint64(1020000) << 0.05 << false << 3.0 << true;
    QTest::newRow("200k inverted steep") << 200000 << qint64(0) << qint64(20000000) << 0.5 << true << 3.0 << true;
    QTest::newRow("1M whole") << 1000000 << qint64(0) << qint64(100000000) << 0.05 << false << 3.0 << true;
    QTest::newRow("1M odd zoom") << 1000000 << qint64(12345678) << qint64(87654321) << 0.1 << false << 3.0 << true;
    // Smooth curves: most columns run from one extreme to the other.
    QTest::newRow("200k smooth whole") << 200000 << qint64(0) << qint64(200000) * 100 << 0.05 << false << 0.0 << false;
    QTest::newRow("200k smooth steep") << 200000 << qint64(0) << qint64(200000) * 100 << 0.5 << true << 0.0 << false;
    QTest::newRow("1M smooth whole") << 1000000 << qint64(0) << qint64(100000000) << 0.05 << false << 0.0 << false;
    QTest::newRow("1M smooth odd zoom") << 1000000 << qint64(12345678) << qint64(87654321) << 0.1 << false << 0.0 << false;
    QTest::newRow("1M smooth flat") << 1000000 << qint64(0) << qint64(100000000) << 0.002 << false << 0.0 << false;
    QTest::newRow("1M barely noisy") << 1000000 << qint64(0) << qint64(100000000) << 0.05 << false << 0.01 << false;
}

void tst_ScopeTracePaint::envelopeMatchesEverySample()
{
    QFETCH(int, count);
    QFETCH(qint64, left);
    QFETCH(qint64, right);
    QFETCH(double, factor);
    QFETCH(bool, inverted);
    QFETCH(double, noise);
    QFETCH(bool, spikes);

    std::mt19937 random(42);
    std::normal_distribution<double> gauss(0.0, 1.0);
    QVector<double> samples(count);
    for (int i = 0; i < count; ++i)
        samples[i] = 40.0 * std::sin(i * 6.283185307179586 / 50000.0) + noise * gauss(random)
                     + (spikes && i % 7919 == 0 ? 60 : 0);

    ScopeTrace trace(nullptr, 0);
    trace.setSamples(samples);
    trace.setScalingFactor(factor);
    trace.setVerticalOffset(4.0);
    trace.setInverted(inverted, false);

    QImage fast = blankImage();
    QImage reference = blankImage();
    {
        QPainter painter(&fast);
        trace.paint(&m_layout, &painter, left, right);
    }
    {
        QPainter painter(&reference);
        trace.paintEverySample(&m_layout, &painter, left, right);
    }
    const PictureDifference difference = comparePictures(fast, reference);
    const int extra = unmatchedPixels(fast, reference);
    const int missing = unmatchedPixels(reference, fast);
    qInfo("lit %d, differing pixels %d in %d columns, largest edge shift %d; more than a pixel away: %d drawn, "
          "%d missed; %d columns filled where the reference has a gap",
          difference.lit, difference.pixels, difference.columns, difference.largestShift, extra, missing,
          difference.emptyMismatch - difference.missingColumns);
    QVERIFY(difference.lit > 0);
    if (noise < 1.0 && !spikes) {
        // A smooth curve moves a few rows per column, and the line of
        // sub-pixel segments that every sample gives puts the row at a column
        // boundary into either column, now and then a stray pixel beside
        // it, and where the curve is flat sometimes no pixel into a column
        // at all. The pictures agree within a pixel: every column the
        // reference lights is lit, and nearly every lit pixel of either
        // picture has a lit pixel of the other next to it.
        QCOMPARE(difference.missingColumns, 0);
        QVERIFY2(difference.emptyMismatch * 200 <= difference.litColumns, "gaps in more than 0.5 % of the columns");
        QVERIFY2(extra * 200 <= difference.lit, "more than 0.5 % of the pixels drawn more than a pixel away");
        QVERIFY2(missing * 200 <= difference.lit, "more than 0.5 % of the reference's pixels missed by more than a pixel");
        return;
    }
    // The same columns are lit, and within a column the lit rows agree apart
    // from a few rows at a column's top or bottom end. Exact equality is not
    // to be had: the cosmetic line rasteriser carries its pixel position from
    // one sub-pixel segment to the next, so where a line between dense samples
    // lands depends on the segments drawn before it, by up to a column.
    QCOMPARE(difference.emptyMismatch, 0);
    QVERIFY2(difference.pixels * 200 <= difference.lit, "more than 0.5 % of the pixels differ");
    QVERIFY(difference.largestShift <= 24);
}

void tst_ScopeTracePaint::binaryEnvelopeMatchesEverySample_data()
{
    QTest::addColumn<qint64>("left");
    QTest::addColumn<qint64>("right");
    QTest::newRow("whole") << qint64(0) << qint64(300000) * 100;
    QTest::newRow("odd") << qint64(-123456) << qint64(7654321);
    QTest::newRow("sparse") << qint64(100000) << qint64(150000);
}

void tst_ScopeTracePaint::binaryEnvelopeMatchesEverySample()
{
    QFETCH(qint64, left);
    QFETCH(qint64, right);
    QVector<double> samples(300000);
    for (int i = 0; i < samples.size(); ++i)
        samples[i] = double((i / 37) & 0xff) - ((i / 5000) % 2 ? 256.0 : 0.0);
    ScopeTrace trace(nullptr, 0);
    trace.setPhysicalDatatype(int16Type);
    trace.setSamples(samples);
    trace.setBinaryViewMask(0x81ff);
    trace.setBinaryView(true);
    trace.autoScale();
    trace.zoomOut(0);
    QImage fast = blankImage();
    QImage reference = blankImage();
    {
        QPainter painter(&fast);
        trace.paint(&m_layout, &painter, left, right);
    }
    {
        QPainter painter(&reference);
        trace.paintEverySample(&m_layout, &painter, left, right);
    }
    const PictureDifference difference = comparePictures(fast, reference);
    qInfo("lit %d, differing pixels %d in %d columns, largest edge shift %d", difference.lit, difference.pixels,
          difference.columns, difference.largestShift);
    QVERIFY(difference.lit > 0);
    // Sparse views draw the very steps; dense views agree in the lit columns,
    // but a transition drawn after thousands of sub-pixel steps may land one
    // column to the left (see above), which moves whole transitions.
    QCOMPARE(difference.emptyMismatch, 0);
    QVERIFY2(difference.pixels * 4 <= difference.lit, "more than 25 % of the pixels differ");
}

void tst_ScopeTracePaint::restoresPainter()
{
    ScopeTrace trace(nullptr, 0);
    trace.setSamples({1.0, 2.0, 3.0});
    QImage image = blankImage();
    QPainter painter(&image);
    const QPen pen(Qt::magenta, 3);
    painter.setPen(pen);
    painter.setClipRect(QRect(0, 0, 500, 500));
    trace.paint(&m_layout, &painter, 0, 300);
    QCOMPARE(painter.pen(), pen);
    QCOMPARE(painter.clipBoundingRect(), QRectF(0, 0, 500, 500));
}

QTEST_MAIN(tst_ScopeTracePaint)
#include "tst_scopetracepaint.moc"
