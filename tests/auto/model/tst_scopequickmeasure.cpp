// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "scopelayout.h"
#include "scopequickmeasure.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtCore/QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QWidget>

class tst_ScopeQuickMeasure : public QObject
{
    Q_OBJECT

private:
    static QMouseEvent event(QEvent::Type type, Qt::MouseButtons buttons)
    {
        return QMouseEvent(type, QPointF(0, 0), QPointF(0, 0),
                           type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, Qt::NoModifier);
    }

private Q_SLOTS:
    void initTestCase();
    void pressRequests_data();
    void pressRequests();
    void pressNeedsLeftButton();
    void moveFollows();
    void moveWithoutButtonEmitsNothing();
    void releaseDisablesOnce();
    void releaseWhenInactive();
    void paintLine();
    void paintNothingWhenInactiveOrOutside();
};

void tst_ScopeQuickMeasure::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeQuickMeasure::pressRequests_data()
{
    QTest::addColumn<qint64>("step");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<qint64>("snapped");
    QTest::newRow("31249 snaps to 0") << qint64(62500) << qint64(31249) << qint64(0);
    QTest::newRow("31250 snaps to 62500") << qint64(62500) << qint64(31250) << qint64(62500);
    QTest::newRow("negative") << qint64(62500) << qint64(-93750) << qint64(-125000);
    QTest::newRow("step 1") << qint64(1) << qint64(17) << qint64(17);
}

void tst_ScopeQuickMeasure::pressRequests()
{
    QFETCH(qint64, step);
    QFETCH(qint64, time);
    QFETCH(qint64, snapped);
    QWidget widget;
    ScopeQuickMeasure cursor;
    cursor.setStep(step);
    QSignalSpy requests(&cursor, &ScopeQuickMeasure::publishQuickMeasureRequest);
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(cursor.mousePressed(&widget, time, QPoint(), &down));
    QVERIFY(cursor.isActive());
    QCOMPARE(cursor.position(), snapped);
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.at(0).at(0).value<qint64>(), snapped);
}

void tst_ScopeQuickMeasure::pressNeedsLeftButton()
{
    ScopeQuickMeasure cursor;
    QSignalSpy requests(&cursor, &ScopeQuickMeasure::publishQuickMeasureRequest);
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::RightButton);
    QVERIFY(!cursor.mousePressed(nullptr, 10, QPoint(), &down));
    QVERIFY(!cursor.isActive());
    QCOMPARE(requests.count(), 0);
}

void tst_ScopeQuickMeasure::moveFollows()
{
    ScopeQuickMeasure cursor;
    cursor.setStep(100);
    QSignalSpy requests(&cursor, &ScopeQuickMeasure::publishQuickMeasureRequest);
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(cursor.mousePressed(nullptr, 0, QPoint(), &down));
    QMouseEvent drag = event(QEvent::MouseMove, Qt::LeftButton);
    QVERIFY(cursor.mouseMoved(nullptr, 249, QPoint(), &drag));
    QVERIFY(cursor.mouseMoved(nullptr, 251, QPoint(), &drag));
    QCOMPARE(requests.count(), 3);
    QCOMPARE(requests.at(1).at(0).value<qint64>(), qint64(200));
    QCOMPARE(requests.at(2).at(0).value<qint64>(), qint64(300));
}

void tst_ScopeQuickMeasure::moveWithoutButtonEmitsNothing()
{
    ScopeQuickMeasure cursor;
    QSignalSpy requests(&cursor, &ScopeQuickMeasure::publishQuickMeasureRequest);
    QSignalSpy disabled(&cursor, &ScopeQuickMeasure::publishQuickMeasureDisabled);
    QMouseEvent hover = event(QEvent::MouseMove, Qt::NoButton);
    QVERIFY(!cursor.mouseMoved(nullptr, 100, QPoint(), &hover));
    // A held button without an active cursor only moves the position.
    QMouseEvent drag = event(QEvent::MouseMove, Qt::LeftButton);
    QVERIFY(!cursor.mouseMoved(nullptr, 100, QPoint(), &drag));
    QCOMPARE(cursor.position(), 100);
    QCOMPARE(requests.count(), 0);
    QCOMPARE(disabled.count(), 0);
}

void tst_ScopeQuickMeasure::releaseDisablesOnce()
{
    ScopeQuickMeasure cursor;
    cursor.setStep(10);
    QSignalSpy disabled(&cursor, &ScopeQuickMeasure::publishQuickMeasureDisabled);
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(cursor.mousePressed(nullptr, 0, QPoint(), &down));
    QVERIFY(cursor.mouseReleased(nullptr, 44));
    QCOMPARE(disabled.count(), 1);
    QVERIFY(!cursor.isActive());
    QCOMPARE(cursor.position(), 40);
    QVERIFY(!cursor.mouseReleased(nullptr, 44));
    QCOMPARE(disabled.count(), 1);
}

void tst_ScopeQuickMeasure::releaseWhenInactive()
{
    ScopeQuickMeasure cursor;
    QSignalSpy disabled(&cursor, &ScopeQuickMeasure::publishQuickMeasureDisabled);
    QVERIFY(!cursor.mouseReleased(nullptr, 0));
    QCOMPARE(disabled.count(), 0);
}

void tst_ScopeQuickMeasure::paintLine()
{
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 400, 300));
    const QRect area = layout.plotArea();
    ScopeQuickMeasure cursor;
    cursor.setViewRange(0, 391);
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(cursor.mousePressed(nullptr, 150, QPoint(), &down));
    {
        QPainter painter(&image);
        cursor.paint(layout, &painter);
    }
    QColor color = AppSettings::instance()->color(AppSettings::MarkerColor);
    color.setAlpha(255);
    // A solid line over the full height of the plot area, nothing else.
    for (int y = area.top(); y <= area.bottom(); ++y)
        QCOMPARE(image.pixelColor(area.left() + 150, y), color);
    QCOMPARE(image.pixel(area.left() + 150, area.top() - 1), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(area.left() + 150, area.bottom() + 1), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(area.left() + 148, area.top() + 50), qRgb(0, 0, 0));
    QCOMPARE(image.pixel(area.left() + 152, area.top() + 50), qRgb(0, 0, 0));
}

void tst_ScopeQuickMeasure::paintNothingWhenInactiveOrOutside()
{
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    ScopeLayout layout;
    layout.setGeometry(QRect(0, 0, 400, 300));
    ScopeQuickMeasure cursor;
    cursor.setViewRange(0, 391);
    {
        QPainter painter(&image);
        cursor.paint(layout, &painter);
    }
    QMouseEvent down = event(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(cursor.mousePressed(nullptr, 500, QPoint(), &down));
    {
        QPainter painter(&image);
        cursor.paint(layout, &painter);
    }
    QImage black(400, 300, QImage::Format_RGB32);
    black.fill(Qt::black);
    QCOMPARE(image, black);
}

QTEST_MAIN(tst_ScopeQuickMeasure)
#include "tst_scopequickmeasure.moc"
