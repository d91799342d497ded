// SPDX-License-Identifier: GPL-3.0-or-later
#include "zoombar.h"

#include <QtGui/QImage>
#include <QtGui/QWheelEvent>
#include <QtTest/QtTest>

#include <limits>

namespace {

constexpr qint64 kMin = std::numeric_limits<qint64>::min();
constexpr qint64 kMax = std::numeric_limits<qint64>::max();

// The bar is 420 px wide; its handles are 10 px each, so the slider's values
// map onto the 400 px from x = 10 to x = 410. Over the range 0 … 4000 one
// pixel is 10 units.
constexpr int kWidth = 420;

// Counts every signal of one bar.
struct Spies
{
    explicit Spies(ZoomBar* bar)
        : left(bar, &ZoomBar::sliderLeftChanged)
        , right(bar, &ZoomBar::sliderRightChanged)
        , both(bar, &ZoomBar::sliderChanged)
        , minimum(bar, &ZoomBar::minimumChanged)
        , maximum(bar, &ZoomBar::maximumChanged)
    {
    }
    void clear()
    {
        left.clear();
        right.clear();
        both.clear();
        minimum.clear();
        maximum.clear();
    }
    QSignalSpy left;
    QSignalSpy right;
    QSignalSpy both;
    QSignalSpy minimum;
    QSignalSpy maximum;
};

} // namespace

class tst_ZoomBar : public QObject
{
    Q_OBJECT

private:
    static void showBar(ZoomBar& bar)
    {
        bar.setFixedSize(kWidth, 24);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
    }

    static void setUp(ZoomBar& bar, qint64 min, qint64 max, qint64 left, qint64 right)
    {
        bar.setMinimum(min);
        bar.setMaximum(max);
        bar.setSlider(left, right);
    }

    static void drag(ZoomBar& bar, int fromX, const QList<int>& toX)
    {
        const int y = bar.height() / 2;
        QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(fromX, y));
        for (int x : toX)
            QTest::mouseMove(&bar, QPoint(x, y));
        QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(toX.isEmpty() ? fromX : toX.last(), y));
    }

    static void wheel(ZoomBar& bar, int angle)
    {
        const QPointF pos(bar.width() / 2.0, bar.height() / 2.0);
        QWheelEvent event(pos, bar.mapToGlobal(pos), QPoint(), QPoint(0, angle), Qt::NoButton, Qt::NoModifier,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&bar, &event);
    }

private Q_SLOTS:
    void defaults()
    {
        ZoomBar bar;
        QCOMPARE(bar.minimum(), 0);
        QCOMPARE(bar.maximum(), 100);
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 100);
        QCOMPARE(bar.minimumSliderDifference(), 0);
        QVERIFY(bar.sizeHint().height() >= 20);
        QVERIFY(bar.minimumSizeHint().height() >= 20);
        QVERIFY(bar.sizeHint().width() > bar.minimumSizeHint().width());
    }

    void setSlider_data()
    {
        QTest::addColumn<qint64>("min");
        QTest::addColumn<qint64>("max");
        QTest::addColumn<qint64>("difference");
        QTest::addColumn<qint64>("left");
        QTest::addColumn<qint64>("right");
        QTest::addColumn<qint64>("expectedLeft");
        QTest::addColumn<qint64>("expectedRight");
        QTest::newRow("inside") << 0LL << 1000LL << 0LL << 100LL << 300LL << 100LL << 300LL;
        QTest::newRow("swapped") << 0LL << 1000LL << 0LL << 300LL << 100LL << 100LL << 300LL;
        QTest::newRow("below") << 0LL << 1000LL << 0LL << -50LL << 300LL << 0LL << 300LL;
        QTest::newRow("above") << 0LL << 1000LL << 0LL << 700LL << 5000LL << 700LL << 1000LL;
        QTest::newRow("around") << 0LL << 1000LL << 0LL << -5LL << 5000LL << 0LL << 1000LL;
        QTest::newRow("empty slider") << 0LL << 1000LL << 0LL << 400LL << 400LL << 400LL << 400LL;
        QTest::newRow("widened about centre") << 0LL << 1000LL << 100LL << 400LL << 420LL << 360LL << 460LL;
        QTest::newRow("widened odd") << 0LL << 1000LL << 101LL << 400LL << 400LL << 350LL << 451LL;
        QTest::newRow("widened at start") << 0LL << 1000LL << 100LL << 0LL << 10LL << 0LL << 100LL;
        QTest::newRow("widened at end") << 0LL << 1000LL << 100LL << 990LL << 1000LL << 900LL << 1000LL;
        QTest::newRow("cut then widened") << 0LL << 1000LL << 100LL << -50LL << 20LL << 0LL << 100LL;
        QTest::newRow("range too narrow") << 0LL << 50LL << 100LL << 10LL << 20LL << 0LL << 50LL;
        QTest::newRow("range exactly the difference") << 0LL << 100LL << 100LL << 10LL << 20LL << 0LL << 100LL;
        QTest::newRow("full 64-bit") << kMin << kMax << 0LL << kMin << kMax << kMin << kMax;
        QTest::newRow("full 64-bit swapped") << kMin << kMax << 0LL << kMax << kMin << kMin << kMax;
        QTest::newRow("64-bit widened") << kMin << kMax << kMax << -1LL << 1LL << (kMin / 2 + 1) << (kMax / 2 + 1);
        QTest::newRow("64-bit widened at top") << kMin << kMax << kMax << kMax << kMax << 0LL << kMax;
        QTest::newRow("64-bit widened at bottom") << kMin << kMax << kMax << kMin << kMin << kMin << -1LL;
        QTest::newRow("negative range") << -2000000LL << 10000000LL << 1000LL << -3000000LL << -1999500LL
                                        << -2000000LL << -1999000LL;
    }

    void setSlider()
    {
        QFETCH(qint64, min);
        QFETCH(qint64, max);
        QFETCH(qint64, difference);
        QFETCH(qint64, left);
        QFETCH(qint64, right);
        QFETCH(qint64, expectedLeft);
        QFETCH(qint64, expectedRight);
        ZoomBar bar;
        bar.setMinimum(min);
        bar.setMaximum(max);
        bar.setMinimumSliderDifference(difference);
        bar.setSlider(left, right);
        QCOMPARE(bar.sliderLeft(), expectedLeft);
        QCOMPARE(bar.sliderRight(), expectedRight);
    }

    void signalsOncePerChange()
    {
        ZoomBar bar;
        setUp(bar, 0, 1000, 0, 1000);
        Spies spies(&bar);

        bar.setSlider(100, 200);
        QCOMPARE(spies.left.count(), 1);
        QCOMPARE(spies.right.count(), 1);
        QCOMPARE(spies.both.count(), 1);
        QCOMPARE(spies.left.at(0).at(0).value<qint64>(), 100);
        QCOMPARE(spies.right.at(0).at(0).value<qint64>(), 200);
        QCOMPARE(spies.both.at(0).at(0).value<qint64>(), 100);
        QCOMPARE(spies.both.at(0).at(1).value<qint64>(), 200);

        spies.clear();
        bar.setSlider(100, 200);
        bar.setSlider(200, 100);
        bar.setSlider(100, 200);
        QCOMPARE(spies.both.count(), 0);
        QCOMPARE(spies.left.count(), 0);
        QCOMPARE(spies.right.count(), 0);

        bar.setSlider(50, 200);
        QCOMPARE(spies.left.count(), 1);
        QCOMPARE(spies.right.count(), 0);
        QCOMPARE(spies.both.count(), 1);
        QCOMPARE(spies.minimum.count(), 0);
        QCOMPARE(spies.maximum.count(), 0);
    }

    void edgeSignalsNeverCross()
    {
        // A listener that follows each edge separately never sees left > right.
        ZoomBar bar;
        setUp(bar, 0, 1000, 0, 10);
        qint64 seenLeft = bar.sliderLeft();
        qint64 seenRight = bar.sliderRight();
        bool crossed = false;
        connect(&bar, &ZoomBar::sliderLeftChanged, this, [&](qint64 v) {
            seenLeft = v;
            crossed = crossed || seenLeft > seenRight;
        });
        connect(&bar, &ZoomBar::sliderRightChanged, this, [&](qint64 v) {
            seenRight = v;
            crossed = crossed || seenLeft > seenRight;
        });
        bar.setSlider(500, 600);
        bar.setSlider(0, 50);
        QVERIFY(!crossed);
        QCOMPARE(seenLeft, 0);
        QCOMPARE(seenRight, 50);
    }

    void bothEdgesKnownWhenSignalled()
    {
        ZoomBar bar;
        setUp(bar, 0, 1000, 0, 1000);
        QList<QPair<qint64, qint64>> seen;
        connect(&bar, &ZoomBar::sliderLeftChanged, this,
                [&](qint64) { seen.append({ bar.sliderLeft(), bar.sliderRight() }); });
        bar.setSlider(300, 400);
        QCOMPARE(seen.size(), 1);
        QCOMPARE(seen.first(), qMakePair(qint64(300), qint64(400)));
    }

    void rangeChanges()
    {
        ZoomBar bar;
        setUp(bar, 0, 1000, 200, 800);
        Spies spies(&bar);

        bar.setMinimum(0);
        bar.setMaximum(1000);
        QCOMPARE(spies.minimum.count(), 0);
        QCOMPARE(spies.maximum.count(), 0);

        // A narrower range cuts the slider.
        bar.setMinimum(300);
        QCOMPARE(spies.minimum.count(), 1);
        QCOMPARE(spies.minimum.at(0).at(0).value<qint64>(), 300);
        QCOMPARE(bar.sliderLeft(), 300);
        QCOMPARE(bar.sliderRight(), 800);
        QCOMPARE(spies.left.count(), 1);
        QCOMPARE(spies.right.count(), 0);
        QCOMPARE(spies.both.count(), 1);

        // A minimum above the maximum takes the maximum along.
        spies.clear();
        bar.setMinimum(2000);
        QCOMPARE(bar.minimum(), 2000);
        QCOMPARE(bar.maximum(), 2000);
        QCOMPARE(spies.minimum.count(), 1);
        QCOMPARE(spies.maximum.count(), 1);
        QCOMPARE(bar.sliderLeft(), 2000);
        QCOMPARE(bar.sliderRight(), 2000);
        QCOMPARE(spies.both.count(), 1);

        // And a maximum below the minimum the minimum.
        spies.clear();
        bar.setMaximum(-10);
        QCOMPARE(bar.minimum(), -10);
        QCOMPARE(bar.maximum(), -10);
        QCOMPARE(spies.minimum.count(), 1);
        QCOMPARE(spies.maximum.count(), 1);
        QCOMPARE(bar.sliderLeft(), -10);
        QCOMPARE(bar.sliderRight(), -10);

        // A wider range leaves the slider where it is.
        spies.clear();
        bar.setMinimum(-2000000);
        bar.setMaximum(10000000);
        QCOMPARE(bar.sliderLeft(), -10);
        QCOMPARE(bar.sliderRight(), -10);
        QCOMPARE(spies.both.count(), 0);
    }

    void minimumDifferenceWidensSlider()
    {
        ZoomBar bar;
        setUp(bar, 0, 1000, 500, 510);
        Spies spies(&bar);
        bar.setMinimumSliderDifference(100);
        QCOMPARE(bar.minimumSliderDifference(), 100);
        QCOMPARE(bar.sliderLeft(), 455);
        QCOMPARE(bar.sliderRight(), 555);
        QCOMPARE(spies.both.count(), 1);
        bar.setMinimumSliderDifference(-5);
        QCOMPARE(bar.minimumSliderDifference(), 0);
        QCOMPARE(bar.sliderLeft(), 455);
    }

    void dragLeftHandle()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        Spies spies(&bar);
        // The left handle covers x = 100 … 110.
        drag(bar, 105, { 115, 155 });
        QCOMPARE(bar.sliderLeft(), 1500);
        QCOMPARE(bar.sliderRight(), 3000);
        QCOMPARE(spies.left.count(), 2);
        QCOMPARE(spies.right.count(), 0);
        QCOMPARE(spies.both.count(), 2);

        // Dragging past the start stops at the minimum.
        drag(bar, 155, { 0 });
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 3000);
    }

    void dragRightHandle()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        Spies spies(&bar);
        // The right handle covers x = 310 … 320.
        drag(bar, 315, { 265 });
        QCOMPARE(bar.sliderLeft(), 1000);
        QCOMPARE(bar.sliderRight(), 2500);
        QCOMPARE(spies.right.count(), 1);
        QCOMPARE(spies.left.count(), 0);
        QCOMPARE(spies.both.count(), 1);

        drag(bar, 265, { 419 });
        QCOMPARE(bar.sliderRight(), 4000);
    }

    void handlesKeepMinimumDifference()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        bar.setMinimumSliderDifference(500);
        drag(bar, 105, { 405 }); // far beyond the right handle
        QCOMPARE(bar.sliderLeft(), 2500);
        QCOMPARE(bar.sliderRight(), 3000);
        // The right handle now covers x = 310 … 320.
        drag(bar, 315, { 5 });
        QCOMPARE(bar.sliderRight(), 3000);
        QCOMPARE(bar.sliderLeft(), 2500);
    }

    void dragSpan()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        Spies spies(&bar);
        drag(bar, 200, { 250 });
        QCOMPARE(bar.sliderLeft(), 1500);
        QCOMPARE(bar.sliderRight(), 3500);
        QCOMPARE(spies.left.count(), 1);
        QCOMPARE(spies.right.count(), 1);
        QCOMPARE(spies.both.count(), 1);

        // The span stops at either end and keeps its width.
        drag(bar, 250, { 419 });
        QCOMPARE(bar.sliderLeft(), 2000);
        QCOMPARE(bar.sliderRight(), 4000);
        drag(bar, 300, { 0 });
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 2000);
    }

    void rangeShrinksDuringDrag()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        const int y = bar.height() / 2;
        QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(200, y));
        bar.setRange(1500, 2500);
        QCOMPARE(bar.sliderLeft(), 1500);
        QCOMPARE(bar.sliderRight(), 2500);
        QTest::mouseMove(&bar, QPoint(260, y));
        QCOMPARE(bar.sliderLeft(), 1500);
        QCOMPARE(bar.sliderRight(), 2500);
        QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(260, y));

        // The same for a handle.
        setUp(bar, 0, 4000, 1000, 3000);
        const int leftHandle = 10 + int(bar.sliderLeft() * 400 / 4000) - 5;
        QTest::mousePress(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(leftHandle, y));
        bar.setMaximum(2000);
        QTest::mouseMove(&bar, QPoint(leftHandle + 300, y));
        QVERIFY(bar.sliderLeft() >= bar.minimum());
        QVERIFY(bar.sliderLeft() <= bar.sliderRight());
        QVERIFY(bar.sliderRight() <= bar.maximum());
        QTest::mouseRelease(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(leftHandle + 300, y));
    }

    void pageClicks()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 2000);
        bar.setLargeStep(300);
        QCOMPARE(bar.largeStep(), 300);
        Spies spies(&bar);
        // Right of the span (the right handle ends at x = 220).
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(380, 12));
        QCOMPARE(bar.sliderLeft(), 1300);
        QCOMPARE(bar.sliderRight(), 2300);
        QCOMPARE(spies.both.count(), 1);
        // Left of it (the left handle now starts at x = 130).
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(50, 12));
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(50, 12));
        QCOMPARE(bar.sliderLeft(), 700);
        QCOMPARE(bar.sliderRight(), 1700);
        // Paging stops at the end of the range.
        bar.setLargeStep(5000);
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(400, 12));
        QCOMPARE(bar.sliderLeft(), 3000);
        QCOMPARE(bar.sliderRight(), 4000);
        spies.clear();
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(15, 12));
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 1000);
        QCOMPARE(spies.both.count(), 1);
    }

    void otherButtonsDoNothing()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 2000);
        Spies spies(&bar);
        QTest::mousePress(&bar, Qt::RightButton, Qt::NoModifier, QPoint(150, 12));
        QTest::mouseMove(&bar, QPoint(300, 12));
        QTest::mouseRelease(&bar, Qt::RightButton, Qt::NoModifier, QPoint(300, 12));
        QTest::mouseClick(&bar, Qt::MiddleButton, Qt::NoModifier, QPoint(380, 12));
        QCOMPARE(spies.both.count(), 0);
    }

    void wheelSteps()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 2000);
        bar.setSmallStep(40);
        QCOMPARE(bar.smallStep(), 40);
        Spies spies(&bar);
        // Away from the user: towards the minimum, as on a scroll bar.
        wheel(bar, 120);
        QCOMPARE(bar.sliderLeft(), 960);
        QCOMPARE(bar.sliderRight(), 1960);
        wheel(bar, -240);
        QCOMPARE(bar.sliderLeft(), 1040);
        QCOMPARE(bar.sliderRight(), 2040);
        QCOMPARE(spies.both.count(), 2);
        // Half notches add up.
        wheel(bar, -60);
        QCOMPARE(bar.sliderLeft(), 1040);
        wheel(bar, -60);
        QCOMPARE(bar.sliderLeft(), 1080);
        QCOMPARE(spies.both.count(), 3);
    }

    void arrowKeys_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<qint64>("expectedLeft");
        QTest::newRow("Left") << int(Qt::Key_Left) << 960LL;
        QTest::newRow("Right") << int(Qt::Key_Right) << 1040LL;
        QTest::newRow("PageUp") << int(Qt::Key_PageUp) << 700LL;
        QTest::newRow("PageDown") << int(Qt::Key_PageDown) << 1300LL;
        QTest::newRow("Home") << int(Qt::Key_Home) << 0LL;
        QTest::newRow("End") << int(Qt::Key_End) << 3000LL;
    }

    void arrowKeys()
    {
        QFETCH(int, key);
        QFETCH(qint64, expectedLeft);
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 2000);
        bar.setSmallStep(40);
        bar.setLargeStep(300);
        Spies spies(&bar);
        QTest::keyClick(&bar, Qt::Key(key));
        QCOMPARE(bar.sliderLeft(), expectedLeft);
        QCOMPARE(bar.sliderRight(), expectedLeft + 1000);
        QCOMPARE(spies.both.count(), 1);
    }

    void arrowsStopAtTheEnds()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 10, 1010);
        bar.setSmallStep(40);
        Spies spies(&bar);
        QTest::keyClick(&bar, Qt::Key_Left);
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 1000);
        QTest::keyClick(&bar, Qt::Key_Left);
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(spies.both.count(), 1);
    }

    void extremeRangeByMouse()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, kMin, kMax, kMin, kMax);
        QCOMPARE(bar.sliderLeft(), kMin);
        QCOMPARE(bar.sliderRight(), kMax);

        // 100 of 400 px is a quarter of 2^64.
        drag(bar, 5, { 105 });
        const long double expected = static_cast<long double>(kMin) + 0.25L * 18446744073709551615.0L;
        QVERIFY(qAbs(static_cast<long double>(bar.sliderLeft()) - expected) < 1e-6L * 18446744073709551615.0L);
        QCOMPARE(bar.sliderRight(), kMax);

        // The right handle by 100 px to the left, the span back to the start.
        drag(bar, 415, { 315 });
        QVERIFY(qAbs(static_cast<long double>(bar.sliderLeft()) - expected) < 1e-6L * 18446744073709551615.0L);
        const long double expectedRight = static_cast<long double>(kMax) - 0.25L * 18446744073709551615.0L;
        QVERIFY(qAbs(static_cast<long double>(bar.sliderRight()) - expectedRight) < 1e-6L * 18446744073709551615.0L);
        QCOMPARE(bar.sliderLeft() < bar.sliderRight(), true);
        const qint64 width = bar.sliderRight() - bar.sliderLeft();
        drag(bar, 200, { 0 });
        QCOMPARE(bar.sliderLeft(), kMin);
        QCOMPARE(bar.sliderRight() - bar.sliderLeft(), width);
        drag(bar, 150, { 419 });
        QCOMPARE(bar.sliderRight(), kMax);
        QCOMPARE(bar.sliderRight() - bar.sliderLeft(), width);

        // Handles dragged beyond the ends stop there.
        drag(bar, bar.width() - 5, { bar.width() + 1000 });
        QCOMPARE(bar.sliderRight(), kMax);
        setUp(bar, kMin, kMax, kMin, kMax);
        drag(bar, 5, { -1000 });
        QCOMPARE(bar.sliderLeft(), kMin);
        drag(bar, 415, { -1000 });
        QCOMPARE(bar.sliderRight(), kMin);
        QCOMPARE(bar.sliderLeft(), kMin);
    }

    void extremeStepsDoNotOverflow()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, kMin, kMax, -100, 100);
        bar.setSmallStep(kMax);
        bar.setLargeStep(kMax);
        wheel(bar, -360);
        QCOMPARE(bar.sliderRight(), kMax);
        QCOMPARE(bar.sliderLeft(), kMax - 200);
        wheel(bar, 360);
        QCOMPARE(bar.sliderLeft(), kMin);
        QCOMPARE(bar.sliderRight(), kMin + 200);
        QTest::keyClick(&bar, Qt::Key_PageDown);
        QCOMPARE(bar.sliderLeft(), kMin + kMax);
        QTest::keyClick(&bar, Qt::Key_End);
        QCOMPARE(bar.sliderRight(), kMax);
        QTest::keyClick(&bar, Qt::Key_Right);
        QCOMPARE(bar.sliderRight(), kMax);
        QTest::keyClick(&bar, Qt::Key_Home);
        QCOMPARE(bar.sliderLeft(), kMin);
        QTest::mouseClick(&bar, Qt::LeftButton, Qt::NoModifier, QPoint(400, 12));
        QCOMPARE(bar.sliderLeft(), kMin + kMax);
        QCOMPARE(bar.sliderRight(), kMin + kMax + 200);
    }

    void emptyRange()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 0, 0, 0);
        QCOMPARE(bar.minimum(), 0);
        QCOMPARE(bar.maximum(), 0);
        bar.setSlider(-5, 5);
        QCOMPARE(bar.sliderLeft(), 0);
        QCOMPARE(bar.sliderRight(), 0);
        Spies spies(&bar);
        for (int x : { 5, 100, 210, 415 })
            drag(bar, x, { x + 50, x - 300 });
        wheel(bar, 120);
        QTest::keyClick(&bar, Qt::Key_Right);
        QCOMPARE(spies.both.count(), 0);
        QVERIFY(!bar.grab().isNull());
    }

    void tinyWidget()
    {
        ZoomBar bar;
        bar.setFixedSize(4, 20);
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));
        setUp(bar, kMin, kMax, 0, 10);
        drag(bar, 1, { 3, 0 });
        drag(bar, 3, { 0 });
        QVERIFY(bar.sliderLeft() <= bar.sliderRight());
        QVERIFY(!bar.grab().isNull());
    }

    void paintsSpanInHighlight()
    {
        ZoomBar bar;
        showBar(bar);
        setUp(bar, 0, 4000, 1000, 3000);
        const QImage image = bar.grab().toImage();
        const QColor inSpan = image.pixelColor(200, 12);
        const QColor outside = image.pixelColor(50, 12);
        QVERIFY(inSpan != outside);
        // The span leans towards the highlight colour.
        const QColor highlight = bar.palette().color(QPalette::Highlight);
        auto distance = [](const QColor& a, const QColor& b) {
            return qAbs(a.red() - b.red()) + qAbs(a.green() - b.green()) + qAbs(a.blue() - b.blue());
        };
        QVERIFY(distance(inSpan, highlight) < distance(outside, highlight));
    }
};

QTEST_MAIN(tst_ZoomBar)
#include "tst_zoombar.moc"
