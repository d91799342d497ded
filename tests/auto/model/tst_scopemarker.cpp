// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "iniparser.h"
#include "scopelayout.h"
#include "scopemarker.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtCore/QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QWidget>

#include <limits>

class tst_ScopeMarker : public QObject
{
    Q_OBJECT

private:
    static QMouseEvent press(Qt::MouseButtons buttons)
    {
        return QMouseEvent(QEvent::MouseButtonPress, QPointF(0, 0), QPointF(0, 0), Qt::LeftButton, buttons,
                           Qt::NoModifier);
    }
    static QMouseEvent move(Qt::MouseButtons buttons)
    {
        return QMouseEvent(QEvent::MouseMove, QPointF(0, 0), QPointF(0, 0), Qt::NoButton, buttons,
                           Qt::NoModifier);
    }

private Q_SLOTS:
    void initTestCase();
    void defaults();
    void snapping_data();
    void snapping();
    void orderingAndClamping();
    void clampingCanLeaveAAboveB();
    void otherIndexStillOrders();
    void readWithoutKeys();
    void readAndWrite();
    void hitTest_data();
    void hitTest();
    void pressNeedsLeftButton();
    void dragAPastB();
    void releaseSetsPositionAndCursor();
    void hoverSetsCursor();
    void windowFunction();
    void paintMarkersAndLetters();
    void paintInterval();
    void paintWindowCurve();
    void paintNothingOutsideView();
    void extremeTimes();
};

void tst_ScopeMarker::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeMarker::defaults()
{
    ScopeMarker marker;
    QCOMPARE(marker.position(0), 0);
    QCOMPARE(marker.position(1), 0);
    QCOMPARE(marker.position(2), 0);
    QCOMPARE(marker.step(), 1);
    QCOMPARE(marker.markerSet(), 0);
    QCOMPARE(marker.showInterval(), false);
    QCOMPARE(marker.windowFunction(), int(Frequency::Hamming));
}

void tst_ScopeMarker::snapping_data()
{
    QTest::addColumn<qint64>("step");
    QTest::addColumn<qint64>("time");
    QTest::addColumn<qint64>("snapped");
    QTest::newRow("below half") << qint64(62500) << qint64(31249) << qint64(0);
    QTest::newRow("half rounds up") << qint64(62500) << qint64(31250) << qint64(62500);
    QTest::newRow("negative half away from zero") << qint64(62500) << qint64(-31250) << qint64(-62500);
    QTest::newRow("negative below half") << qint64(62500) << qint64(-31249) << qint64(0);
    QTest::newRow("on grid") << qint64(100) << qint64(-700) << qint64(-700);
    QTest::newRow("step 1") << qint64(1) << qint64(12345) << qint64(12345);
}

void tst_ScopeMarker::snapping()
{
    QFETCH(qint64, step);
    QFETCH(qint64, time);
    QFETCH(qint64, snapped);
    ScopeMarker marker;
    marker.setLimits(-10000000, 10000000);
    marker.setStep(step);
    marker.setPosition(1, 10000000);
    marker.setPosition(0, time);
    QCOMPARE(marker.position(0), snapped);
}

void tst_ScopeMarker::orderingAndClamping()
{
    ScopeMarker marker;
    marker.setLimits(-1000, 1000);
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);
    marker.setPosition(0, 500);
    // A = 500 > B = 0: swapped.
    QCOMPARE(marker.position(0), 0);
    QCOMPARE(marker.position(1), 500);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(1));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(500));
    spy.clear();
    marker.setPosition(0, -5000);
    QCOMPARE(marker.position(0), -1000);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(0));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(-1000));
    spy.clear();
    marker.setPosition(1, 5000);
    QCOMPARE(marker.position(1), 1000);
    QCOMPARE(spy.count(), 1);
    spy.clear();
    // Unchanged values are not reported again.
    marker.setPosition(1, 5000);
    QCOMPARE(spy.count(), 0);
}

void tst_ScopeMarker::clampingCanLeaveAAboveB()
{
    KlIniParser::IniParser parser;
    parser.setIniText("[ScopeScene]\r\nMarkerPosition_0A=200\r\nMarkerPosition_0B=300\r\n");
    ScopeMarker marker;
    marker.setLimits(0, 100);
    QVERIFY(marker.readSection(*parser.section("ScopeScene")));
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);
    // Both beyond the upper limit: ordering first, then only B is clamped.
    marker.setPosition(1, 300);
    QCOMPARE(marker.position(0), 200);
    QCOMPARE(marker.position(1), 100);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(1));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(100));
}

void tst_ScopeMarker::otherIndexStillOrders()
{
    ScopeMarker marker;
    marker.setLimits(-100, 100);
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);
    marker.setPosition(5, 50);
    QCOMPARE(spy.count(), 0);
    QCOMPARE(marker.position(0), 0);
    QCOMPARE(marker.position(1), 0);
}

void tst_ScopeMarker::readWithoutKeys()
{
    KlIniParser::IniParser parser;
    parser.setIniText("[ScopeScene]\r\nOther=1\r\n");
    ScopeMarker marker;
    marker.setLimits(0, 0);
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);
    QVERIFY(marker.readSection(*parser.section("ScopeScene")));
    QCOMPARE(marker.position(0), -10000000);
    QCOMPARE(marker.position(1), 10000000);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(0));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(-10000000));
    QCOMPARE(spy.at(1).at(0).value<quint8>(), quint8(1));
    QCOMPARE(spy.at(1).at(1).value<qint64>(), qint64(10000000));
    // Reading the same again signals nothing.
    QVERIFY(marker.readSection(*parser.section("ScopeScene")));
    QCOMPARE(spy.count(), 2);
}

void tst_ScopeMarker::readAndWrite()
{
    KlIniParser::IniParser parser;
    parser.setIniText("[ScopeScene]\r\nMarkerPosition_1A=-250\r\nMarkerPosition_1B=777\r\n"
                      "MarkerPosition_0A=5\r\n");
    ScopeMarker marker;
    marker.setMarkerSet(1);
    marker.setStep(1000);
    QVERIFY(marker.readSection(*parser.section("ScopeScene")));
    // Stored as read: no snapping, no clamping.
    QCOMPARE(marker.position(0), -250);
    QCOMPARE(marker.position(1), 777);

    marker.setMarkerSet(2);
    KlIniParser::IniSection* out = parser.findOrCreateSection("Out");
    marker.writeSection(*out);
    QCOMPARE(out->value("MarkerPosition_2A"), QByteArray("-250"));
    QCOMPARE(out->value("MarkerPosition_2B"), QByteArray("777"));
    QCOMPARE(out->keys(), (QList<QByteArray>{"MarkerPosition_2A", "MarkerPosition_2B"}));
}

void tst_ScopeMarker::hitTest_data()
{
    QTest::addColumn<qint64>("time");
    QTest::addColumn<bool>("taken");
    // View 0 … 1000 over 100 pixels: tolerance 10 × 3 = 30.
    QTest::newRow("on A") << qint64(100) << true;
    QTest::newRow("A + tolerance") << qint64(130) << true;
    QTest::newRow("A - tolerance") << qint64(70) << true;
    QTest::newRow("just outside") << qint64(131) << false;
    QTest::newRow("near B") << qint64(520) << true;
    QTest::newRow("between") << qint64(300) << false;
}

void tst_ScopeMarker::hitTest()
{
    QFETCH(qint64, time);
    QFETCH(bool, taken);
    QWidget widget;
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 1000);
    marker.setPosition(1, 500);
    marker.setPosition(0, 100);
    QMouseEvent event = press(Qt::LeftButton);
    QCOMPARE(marker.mousePressed(&widget, time, QPoint(), &event), taken);
}

void tst_ScopeMarker::pressNeedsLeftButton()
{
    QWidget widget;
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 1000);
    marker.setPosition(1, 500);
    QMouseEvent right = press(Qt::RightButton);
    QVERIFY(!marker.mousePressed(&widget, 500, QPoint(), &right));
    QMouseEvent left = press(Qt::LeftButton);
    QVERIFY(marker.mousePressed(&widget, 500, QPoint(), &left));
}

void tst_ScopeMarker::dragAPastB()
{
    QWidget widget;
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 1000);
    marker.setStep(10);
    marker.setPosition(1, 500);
    marker.setPosition(0, 100);
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);

    QMouseEvent down = press(Qt::LeftButton);
    QVERIFY(marker.mousePressed(&widget, 105, QPoint(), &down));
    QMouseEvent drag = move(Qt::LeftButton);
    QVERIFY(marker.mouseMoved(&widget, 603, QPoint(), &drag));
    // A passed B: the markers swapped, the mouse now drags B.
    QCOMPARE(marker.position(0), 500);
    QCOMPARE(marker.position(1), 600);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(0));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(500));
    QCOMPARE(spy.at(1).at(0).value<quint8>(), quint8(1));
    QCOMPARE(spy.at(1).at(1).value<qint64>(), qint64(600));
    spy.clear();

    QVERIFY(marker.mouseMoved(&widget, 700, QPoint(), &drag));
    QCOMPARE(marker.position(0), 500);
    QCOMPARE(marker.position(1), 700);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(1));

    QVERIFY(marker.mouseReleased(&widget, 710));
    QCOMPARE(marker.position(1), 710);
    // After the release a move with the button held drags nothing.
    spy.clear();
    QVERIFY(!marker.mouseMoved(&widget, 900, QPoint(), &drag));
    QCOMPARE(spy.count(), 0);
}

void tst_ScopeMarker::releaseSetsPositionAndCursor()
{
    QWidget window;
    QWidget widget(&window);
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 1000);
    marker.setPosition(1, 500);
    QMouseEvent down = press(Qt::LeftButton);
    QVERIFY(marker.mousePressed(&widget, 0, QPoint(), &down));
    widget.setCursor(Qt::CrossCursor);
    QVERIFY(marker.mouseReleased(&widget, 20));
    QCOMPARE(marker.position(0), 20);
    QCOMPARE(widget.cursor().shape(), Qt::SplitHCursor);
    // A release away from both markers unsets the cursor.
    QVERIFY(!marker.mouseReleased(&widget, 300));
    QVERIFY(!widget.testAttribute(Qt::WA_SetCursor));
}

void tst_ScopeMarker::hoverSetsCursor()
{
    QWidget window;
    QWidget widget(&window);
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 1000);
    marker.setPosition(1, 500);
    QMouseEvent hover = move(Qt::NoButton);
    QVERIFY(!marker.mouseMoved(&widget, 300, QPoint(), &hover));
    QVERIFY(!widget.testAttribute(Qt::WA_SetCursor));
    QVERIFY(marker.mouseMoved(&widget, 510, QPoint(), &hover));
    QCOMPARE(widget.cursor().shape(), Qt::SplitHCursor);
    QCOMPARE(marker.position(1), 500);
}

void tst_ScopeMarker::windowFunction()
{
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setPosition(0, -40);
    QSignalSpy spy(&marker, &ScopeMarker::timePositionChanged);
    marker.onWindowFunktionChanged(Frequency::NoWindow);
    QCOMPARE(marker.windowFunction(), int(Frequency::NoWindow));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<quint8>(), quint8(0));
    QCOMPARE(spy.at(0).at(1).value<qint64>(), qint64(-40));
    // Invocable by name, as the frequency panel connects it.
    QVERIFY(QMetaObject::invokeMethod(&marker, "onWindowFunktionChanged",
                                      Q_ARG(Frequency::WindowFunctions, Frequency::Hamming)));
    QCOMPARE(marker.windowFunction(), int(Frequency::Hamming));
}

namespace {

// A 400 × 300 plot: plot area (2, 15) 391 × 273, top ruler (2, 0) 391 × 13.
struct Plot
{
    Plot()
        : image(400, 300, QImage::Format_RGB32)
    {
        image.fill(Qt::black);
        layout.setGeometry(QRect(0, 0, 400, 300));
    }
    int countColumn(int x, const QColor& color, int top, int bottom) const
    {
        int count = 0;
        for (int y = top; y <= bottom; ++y)
            count += image.pixelColor(x, y) == color ? 1 : 0;
        return count;
    }
    int countNonBlack(const QRect& rect) const
    {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                count += image.pixel(x, y) != qRgb(0, 0, 0) ? 1 : 0;
        return count;
    }
    QImage image;
    ScopeLayout layout;
};

QColor markerColor()
{
    QColor color = AppSettings::instance()->color(AppSettings::MarkerColor);
    color.setAlpha(255);
    return color;
}

} // namespace

void tst_ScopeMarker::paintMarkersAndLetters()
{
    Plot plot;
    const QRect area = plot.layout.plotArea();
    QCOMPARE(area, QRect(2, 15, 391, 273));
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    // One nanosecond per pixel.
    marker.setViewRange(0, 391);
    marker.setPosition(1, 300);
    marker.setPosition(0, 100);
    {
        QPainter painter(&plot.image);
        marker.paint(plot.layout, &painter);
    }
    const QColor color = markerColor();
    // Dashed lines at x = 2 + 100 and 2 + 300 over the plot height.
    const int onA = plot.countColumn(area.left() + 100, color, area.top(), area.bottom());
    const int onB = plot.countColumn(area.left() + 300, color, area.top(), area.bottom());
    QVERIFY2(onA > area.height() / 4 && onA < area.height(), qPrintable(QString::number(onA)));
    QVERIFY2(onB > area.height() / 4 && onB < area.height(), qPrintable(QString::number(onB)));
    QCOMPARE(plot.countColumn(area.left() + 200, color, area.top(), area.bottom()), 0);
    QCOMPARE(plot.countNonBlack(QRect(area.left() + 110, area.top(), 180, area.height())), 0);
    // Nothing outside the plot area below the ruler.
    QCOMPARE(plot.countNonBlack(QRect(0, area.bottom() + 1, 400, 300 - area.bottom() - 1)), 0);
    // The letters stand in the top ruler right of their lines.
    const QRect ruler = plot.layout.topRuler();
    QVERIFY(plot.countNonBlack(QRect(ruler.left() + 100, ruler.top(), 12, ruler.height())) > 0);
    QVERIFY(plot.countNonBlack(QRect(ruler.left() + 300, ruler.top(), 12, ruler.height())) > 0);
    QCOMPARE(plot.countNonBlack(QRect(ruler.left(), ruler.top(), 90, ruler.height())), 0);
    QCOMPARE(plot.countNonBlack(QRect(ruler.left() + 150, ruler.top(), 100, ruler.height())), 0);
}

void tst_ScopeMarker::paintInterval()
{
    Plot plot;
    const QRect area = plot.layout.plotArea();
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 391);
    marker.setPosition(1, 300);
    marker.setPosition(0, 100);
    marker.setShowInterval(true);
    marker.onWindowFunktionChanged(Frequency::NoWindow);
    {
        QPainter painter(&plot.image);
        marker.paint(plot.layout, &painter);
    }
    // (0, 122, 204) at alpha 100 over black.
    const QColor inside = plot.image.pixelColor(area.left() + 200, area.top() + 10);
    QCOMPARE(inside.red(), 0);
    QVERIFY(qAbs(inside.green() - 122 * 100 / 255) <= 2);
    QVERIFY(qAbs(inside.blue() - 204 * 100 / 255) <= 2);
    QCOMPARE(plot.image.pixelColor(area.left() + 200, area.bottom()), inside);
    QCOMPARE(plot.image.pixel(area.left() + 50, area.top() + 10), qRgb(0, 0, 0));
    QCOMPARE(plot.image.pixel(area.left() + 350, area.top() + 10), qRgb(0, 0, 0));
    // No window curve without the Hamming window: one colour down the middle.
    QCOMPARE(plot.countColumn(area.left() + 200, inside, area.top(), area.bottom()), area.height());
}

void tst_ScopeMarker::paintWindowCurve()
{
    Plot plot;
    const QRect area = plot.layout.plotArea();
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(0, 391);
    marker.setPosition(1, 300);
    marker.setPosition(0, 100);
    marker.setShowInterval(true);
    {
        QPainter painter(&plot.image);
        marker.paint(plot.layout, &painter);
    }
    // The window's peak (1.0) in the middle of the interval lies at three
    // quarters of the height; its ends at half the height.
    const QColor shade = plot.image.pixelColor(area.left() + 200, area.top() + 5);
    const qreal height = area.height();
    const int peakY = int(area.top() + height - height * 0.75);
    bool curveNearPeak = false;
    for (int y = peakY - 2; y <= peakY + 2; ++y)
        curveNearPeak |= plot.image.pixelColor(area.left() + 200, y) != shade;
    QVERIFY(curveNearPeak);
    const int endY = int(area.top() + height * 0.5);
    bool curveNearEnd = false;
    // The curve starts at 0.54 - 0.46 = 0.08 of a quarter above the middle.
    for (int y = endY - 8; y <= endY + 2; ++y)
        curveNearEnd |= plot.image.pixelColor(area.left() + 103, y) != shade;
    QVERIFY(curveNearEnd);
    // Far from the curve only the shade.
    QCOMPARE(plot.image.pixelColor(area.left() + 200, area.bottom() - 5), shade);
}

void tst_ScopeMarker::paintNothingOutsideView()
{
    Plot plot;
    ScopeMarker marker;
    marker.setLimits(-10000, 10000);
    marker.setViewRange(1000, 2000);
    marker.setPosition(1, 300);
    marker.setPosition(0, 100);
    marker.setShowInterval(true);
    {
        QPainter painter(&plot.image);
        marker.paint(plot.layout, &painter);
    }
    QCOMPARE(plot.countNonBlack(QRect(0, 0, 400, 300)), 0);
}

void tst_ScopeMarker::extremeTimes()
{
    // Times at the ends of the 64-bit range neither overflow nor crash.
    const qint64 lowest = std::numeric_limits<qint64>::min();
    const qint64 highest = std::numeric_limits<qint64>::max();
    QWidget widget;
    widget.resize(100, 50);
    ScopeMarker marker;
    marker.setLimits(lowest, highest);
    marker.setViewRange(lowest, highest);
    marker.setStep(62500);
    marker.setPosition(0, lowest);
    marker.setPosition(1, highest);
    QVERIFY(marker.position(0) <= marker.position(1));
    QMouseEvent down = press(Qt::LeftButton);
    marker.mousePressed(&widget, 0, QPoint(), &down);
    QMouseEvent drag = move(Qt::LeftButton);
    marker.mouseMoved(&widget, highest, QPoint(), &drag);
    marker.mouseReleased(&widget, lowest);
    Plot plot;
    QPainter painter(&plot.image);
    marker.setShowInterval(true);
    marker.paint(plot.layout, &painter);
}

QTEST_MAIN(tst_ScopeMarker)
#include "tst_scopemarker.moc"
