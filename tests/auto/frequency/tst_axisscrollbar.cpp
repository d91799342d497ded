// SPDX-License-Identifier: GPL-3.0-or-later
#include "axisscrollbar.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>

class tst_AxisScrollbar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void freshBarCannotMove_data();
    void freshBarCannotMove();
    void moveSliderSetsRangeStepsAndPosition();
    void moveSliderIsSilent();
    void userMoveEmitsWindow();
    void sliderMovedEmitsWindow();
    void verticalBarIsMirrored();
    void verticalMoveSliderMirrorsPosition();
    void setBaseSameValuesDoesNothing();
    void setBaseKeepsHandle();
    void tinyWindowHasSingleStepOne();
    void slotsInvocableByName();
};

void tst_AxisScrollbar::freshBarCannotMove_data()
{
    QTest::addColumn<Qt::Orientation>("orientation");
    QTest::newRow("horizontal") << Qt::Horizontal;
    QTest::newRow("vertical") << Qt::Vertical;
}

void tst_AxisScrollbar::freshBarCannotMove()
{
    QFETCH(Qt::Orientation, orientation);
    AxisScrollbar bar(orientation);
    QCOMPARE(bar.minimum(), 5000000);
    QCOMPARE(bar.maximum(), 5000000);
    QCOMPARE(bar.singleStep(), 50000);
    QCOMPARE(bar.pageStep(), 10000000);
    QCOMPARE(bar.value(), 5000000);
    QCOMPARE(bar.baseMin(), 0.0);
    QCOMPARE(bar.baseMax(), 1.0);
    QCOMPARE(bar.resolution(), 10000000);
    QCOMPARE(bar.isInverted(), orientation == Qt::Vertical);
    bar.setValue(7000000);
    QCOMPARE(bar.value(), 5000000);
}

void tst_AxisScrollbar::moveSliderSetsRangeStepsAndPosition()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.moveSlider(0.25, 0.75);
    QCOMPARE(bar.pageStep(), 5000000);
    QCOMPARE(bar.minimum(), 2500000);
    QCOMPARE(bar.maximum(), 7500000);
    QCOMPARE(bar.singleStep(), 25000);
    QCOMPARE(bar.value(), 5000000);
}

void tst_AxisScrollbar::moveSliderIsSilent()
{
    AxisScrollbar bar(Qt::Horizontal);
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    QSignalSpy moves(&bar, qOverload<double, double>(&AxisScrollbar::sliderMoved));
    QSignalSpy intValues(&bar, qOverload<int>(&QAbstractSlider::valueChanged));
    bar.moveSlider(0.1, 0.3);
    bar.moveSlider(0.5, 0.6);
    QCOMPARE(values.count(), 0);
    QCOMPARE(moves.count(), 0);
    QCOMPARE(intValues.count(), 0);
}

void tst_AxisScrollbar::userMoveEmitsWindow()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.moveSlider(0.25, 0.75);
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    bar.setValue(6000000);
    QCOMPARE(values.count(), 1);
    QVERIFY(qAbs(values.at(0).at(0).toDouble() - 0.35) < 1e-12);
    QVERIFY(qAbs(values.at(0).at(1).toDouble() - 0.85) < 1e-12);
}

void tst_AxisScrollbar::sliderMovedEmitsWindow()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.resize(200, 16);
    bar.moveSlider(0.25, 0.75);
    QSignalSpy moves(&bar, qOverload<double, double>(&AxisScrollbar::sliderMoved));
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    // A drag of the handle: the slider reports sliderMoved and then the value.
    bar.setSliderDown(true);
    bar.setSliderPosition(6000000);
    bar.setSliderDown(false);
    QCOMPARE(moves.count(), 1);
    QVERIFY(qAbs(moves.at(0).at(0).toDouble() - 0.35) < 1e-12);
    QVERIFY(qAbs(moves.at(0).at(1).toDouble() - 0.85) < 1e-12);
    QVERIFY(values.count() >= 1);
    QVERIFY(qAbs(values.last().at(0).toDouble() - 0.35) < 1e-12);
}

void tst_AxisScrollbar::verticalBarIsMirrored()
{
    AxisScrollbar bar(Qt::Vertical);
    bar.moveSlider(0.4, 0.6); // page 2000000, position 5000000
    QCOMPARE(bar.pageStep(), 2000000);
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    bar.setValue(3000000);
    QCOMPARE(values.count(), 1);
    QVERIFY(qAbs(values.at(0).at(0).toDouble() - 0.6) < 1e-12);
    QVERIFY(qAbs(values.at(0).at(1).toDouble() - 0.8) < 1e-12);
}

void tst_AxisScrollbar::verticalMoveSliderMirrorsPosition()
{
    AxisScrollbar bar(Qt::Vertical);
    bar.moveSlider(0.6, 0.8);
    QCOMPARE(bar.value(), 3000000);
}

void tst_AxisScrollbar::setBaseSameValuesDoesNothing()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.moveSlider(0.25, 0.75);
    bar.setValue(6000000);
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    bar.setBase(0.0, 1.0);
    QCOMPARE(bar.value(), 6000000);
    QCOMPARE(bar.pageStep(), 5000000);
    QCOMPARE(bar.minimum(), 2500000);
    QCOMPARE(values.count(), 0);
}

void tst_AxisScrollbar::setBaseKeepsHandle()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.moveSlider(0.25, 0.75);
    bar.setValue(6000000);
    QSignalSpy values(&bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    bar.setBase(100.0, 300.0);
    QCOMPARE(bar.baseMin(), 100.0);
    QCOMPARE(bar.baseMax(), 300.0);
    QVERIFY(qAbs(bar.value() - 6000000) <= 1);
    QVERIFY(qAbs(bar.pageStep() - 5000000) <= 1);
    QCOMPARE(values.count(), 0);
    // The handle now stands for the same place of the new base.
    bar.setValue(bar.value() + 1);
    bar.setValue(6000000);
    QVERIFY(qAbs(values.last().at(0).toDouble() - 170.0) < 1e-6);
    QVERIFY(qAbs(values.last().at(1).toDouble() - 270.0) < 1e-6);
}

void tst_AxisScrollbar::tinyWindowHasSingleStepOne()
{
    AxisScrollbar bar(Qt::Horizontal);
    bar.moveSlider(0.5, 0.5 + 1.5e-5); // page 150 units
    QCOMPARE(bar.pageStep(), 150);
    QCOMPARE(bar.singleStep(), 1);
}

void tst_AxisScrollbar::slotsInvocableByName()
{
    AxisScrollbar bar(Qt::Horizontal);
    QVERIFY(QMetaObject::invokeMethod(&bar, "moveSlider", Q_ARG(double, 0.25), Q_ARG(double, 0.75)));
    QCOMPARE(bar.pageStep(), 5000000);
    QVERIFY(QMetaObject::invokeMethod(&bar, "setBase", Q_ARG(double, 0.0), Q_ARG(double, 2.0)));
    QCOMPARE(bar.baseMax(), 2.0);
}

QTEST_MAIN(tst_AxisScrollbar)
#include "tst_axisscrollbar.moc"
