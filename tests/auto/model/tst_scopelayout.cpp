// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopelayout.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

class tst_ScopeLayout : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void defaults();
    void geometry_data();
    void geometry();
    void columns();
    void sameValueDoesNotRecompute();
    void invalidGeometryStillSignals();
};

void tst_ScopeLayout::defaults()
{
    ScopeLayout layout;
    QCOMPARE(layout.divisions(), QSize(10, 8));
    QCOMPARE(layout.spacing(), QSize(2, 2));
    QVERIFY(layout.geometry().isNull());
    QCOMPARE(layout.topHeight(), 13);
    QCOMPARE(layout.bottomHeight(), 10);
    QCOMPARE(layout.leftWidth(), 0);
    QCOMPARE(layout.rightWidth(), 0);
    QVERIFY(!layout.divisionSize().isValid());
    QVERIFY(layout.plotArea().isNull());
}

void tst_ScopeLayout::geometry_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QSize>("divisionSize");
    QTest::addColumn<QRect>("plotArea");
    QTest::addColumn<int>("bottomRulerTop");

    QTest::newRow("1000x600") << QRect(0, 0, 1000, 600) << QSize(99, 71) << QRect(2, 15, 991, 569) << 586;
    // 796 ÷ 10 = 79, 373 ÷ 8 = 46: the rest stays right of and below the grid.
    QTest::newRow("800x400") << QRect(0, 0, 800, 400) << QSize(79, 46) << QRect(2, 15, 791, 369) << 386;
    QTest::newRow("exact") << QRect(0, 0, 104, 108) << QSize(10, 10) << QRect(2, 15, 101, 81) << 98;
}

void tst_ScopeLayout::geometry()
{
    QFETCH(QRect, rect);
    QFETCH(QSize, divisionSize);
    QFETCH(QRect, plotArea);
    QFETCH(int, bottomRulerTop);

    ScopeLayout layout;
    QSignalSpy spy(&layout, &ScopeLayout::changed);
    layout.setGeometry(rect);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(layout.geometry(), rect);
    QCOMPARE(layout.divisionSize(), divisionSize);
    QCOMPARE(layout.plotArea(), plotArea);
    QCOMPARE(layout.bottomRuler().top(), bottomRulerTop);
    QCOMPARE(layout.bottomRuler().left(), plotArea.left());
    QCOMPARE(layout.bottomRuler().width(), plotArea.width());
    QCOMPARE(layout.bottomRuler().height(), 10);
    QCOMPARE(layout.topRuler(), QRect(plotArea.left(), 0, plotArea.width(), 13));
    QCOMPARE(layout.leftColumn(), QRect(0, plotArea.top(), 0, plotArea.height()));
    QCOMPARE(layout.plotArea().width(), 10 * divisionSize.width() + 1);
    QCOMPARE(layout.plotArea().height(), 8 * divisionSize.height() + 1);

    layout.setGeometry(rect);
    QCOMPARE(spy.count(), 1);
}

void tst_ScopeLayout::columns()
{
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 1000, 600));
    QSignalSpy spy(&layout, &ScopeLayout::changed);
    layout.setLeftWidth(20);
    layout.setRightWidth(30);
    QCOMPARE(spy.count(), 2);
    // (1000 − 4 − 20 − 30) ÷ 10 = 94
    QCOMPARE(layout.divisionSize(), QSize(94, 71));
    QCOMPARE(layout.leftColumn(), QRect(0, 15, 20, 569));
    QCOMPARE(layout.plotArea(), QRect(22, 15, 941, 569));
    QCOMPARE(layout.rightColumn(), QRect(22 + 941 - 1 + 2 + 1, 15, 30, 569));
    QCOMPARE(layout.topLeftCorner(), QRect(0, 0, 20, 13));
    QCOMPARE(layout.topRightCorner(), QRect(965, 0, 30, 13));
    QCOMPARE(layout.bottomLeftCorner(), QRect(0, 586, 20, 10));
    QCOMPARE(layout.bottomRightCorner(), QRect(965, 586, 30, 10));
}

void tst_ScopeLayout::sameValueDoesNotRecompute()
{
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 1000, 600));
    QSignalSpy spy(&layout, &ScopeLayout::changed);
    layout.setTopHeight(13);
    layout.setBottomHeight(10);
    layout.setLeftWidth(0);
    layout.setRightWidth(0);
    QCOMPARE(spy.count(), 0);
    layout.setTopHeight(20);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(layout.plotArea().top(), 22);
    layout.setTopHeight(20);
    QCOMPARE(spy.count(), 1);
}

void tst_ScopeLayout::invalidGeometryStillSignals()
{
    ScopeLayout layout;
    QSignalSpy spy(&layout, &ScopeLayout::changed);
    layout.setTopHeight(30);
    QCOMPARE(spy.count(), 1);
    layout.setBottomHeight(5);
    QCOMPARE(spy.count(), 2);
    const QList<QRect> rects = {layout.plotArea(), layout.topRuler(), layout.bottomRuler(),
                                layout.leftColumn(), layout.rightColumn(), layout.topLeftCorner(),
                                layout.topRightCorner(), layout.bottomLeftCorner(),
                                layout.bottomRightCorner()};
    for (const QRect& rect : rects)
        QVERIFY(rect.isNull());
    // An empty rectangle is not a valid geometry either.
    layout.setGeometry(QRect(5, 5, 0, 0));
    QCOMPARE(spy.count(), 3);
    QVERIFY(layout.plotArea().isNull());
}

QTEST_GUILESS_MAIN(tst_ScopeLayout)
#include "tst_scopelayout.moc"
