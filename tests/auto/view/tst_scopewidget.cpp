// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopequickmeasure.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopeviewtestsupport.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QMenu>
#include <QtWidgets/QVBoxLayout>

#include <sys/stat.h>

#include <memory>

using namespace ScopeViewTest;

namespace {

// A stripe container with one stripe showing a recording of 1001 samples at
// 0.1 µs, trigger in the middle: times −50 µs … +50 µs, grid 100 ns.
struct Fixture {
    QWidget window;
    ZoomBar* zoomBar = nullptr;
    ScopeScene scene;
    ScopeStripesWidget* stripes = nullptr;
    ScopeShotArchive* archive = nullptr;
    QSharedPointer<ScopeShot> shot;
    ScopeWidget* widget = nullptr;

    Fixture()
    {
        auto* layout = new QVBoxLayout(&window);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->setSpacing(0);
        stripes = new ScopeStripesWidget;
        zoomBar = new ZoomBar;
        layout->addWidget(stripes, 1);
        layout->addWidget(zoomBar);
        scene.setZoomBar(zoomBar);
        stripes->setScene(&scene);
        stripes->setZoomBar(zoomBar);
        archive = ScopeShotArchive::create(&window);
        archive->createFromReadOut(readOut(3, 1001, 500, "0.1"));
        shot.reset(new ScopeShot);
        shot->setArchive(archive);
        shot->load();
        scene.addShot(shot);
        widget = stripes->addStripe();
        widget->traceFilter()->setShot(shot.data());
        zoomBar->setSlider(-50000, 50000);
        window.resize(1010, 640);
    }

    bool show()
    {
        window.show();
        if (!QTest::qWaitForWindowExposed(&window))
            return false;
        // The layout gets its rectangle at the first paint.
        return QTest::qWaitFor([this] { return widget->layout()->plotArea().width() > 0; });
    }

    QPoint pointAt(qint64 time, int y = -1) const
    {
        const QRect plot = widget->layout()->plotArea();
        const qint64 span = widget->rightIndex() - widget->leftIndex();
        const int x = plot.left() + int((time - widget->leftIndex()) * plot.width() / span);
        return QPoint(x, y < 0 ? plot.center().y() : y);
    }
};

void send(QWidget* widget, QEvent::Type type, const QPoint& position, Qt::MouseButton button,
          Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    QMouseEvent event(type, QPointF(position), QPointF(widget->mapToGlobal(position)), button, buttons, modifiers);
    QCoreApplication::sendEvent(widget, &event);
}

ino_t settingsInode()
{
    struct stat info {};
    if (::stat(QFile::encodeName(QSettings().fileName()).constData(), &info) != 0)
        return 0;
    return info.st_ino;
}

QStringList textsOf(ScopeWidget* widget)
{
    RecordingDevice device(widget->size());
    widget->render(&device);
    QStringList texts;
    for (const auto& text : device.engine().texts)
        texts.append(text.text);
    return texts;
}

QMenu* menuOf(ScopeWidget* widget)
{
    return widget->findChild<QMenu*>();
}

QAction* actionOf(QMenu* menu, const QString& text)
{
    if (!menu)
        return nullptr;
    const QList<QAction*> actions = menu->actions();
    for (QAction* action : actions) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class tst_ScopeWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void labels_data();
    void labels();
    void grid();
    void defaultNames();
    void contextMenuEntries();
    void contextMenuSuppressedAfterAcceptedRelease();
    void goToMarker();
    void moveOnPlotEdge_data();
    void moveOnPlotEdge();
    void pressLeftOfPlot();
    void backgroundColorWritesOnlyOnChange();
    void gridColorAlwaysWrites();
    void colorsReachEveryPlotWidget();
    void markerDrag();
    void controlWheelZoom();
    void controlDragPan();
    void quickMeasure();
};

void tst_ScopeWidget::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeTest"));
    QCoreApplication::setApplicationName(QStringLiteral("tst_scopewidget"));
}

void tst_ScopeWidget::init()
{
    QSettings settings;
    settings.setValue(QStringLiteral("Scope/BackgroundColor"), QColor(Qt::black));
    settings.setValue(QStringLiteral("Scope/GridColor"), QColor(Qt::gray));
    settings.sync();
}

void tst_ScopeWidget::labels_data()
{
    QTest::addColumn<qint64>("left");
    QTest::addColumn<qint64>("right");
    QTest::addColumn<QString>("leftLabel");
    QTest::addColumn<QString>("rightLabel");
    QTest::newRow("fresh") << qint64(0) << qint64(1) << QStringLiteral("0.000 ms") << QStringLiteral("0.000 ms");
    QTest::newRow("10 ms") << qint64(0) << qint64(10000000) << QStringLiteral("0 ms") << QStringLiteral("10 ms");
    QTest::newRow("below 10 ms") << qint64(0) << qint64(9999999) << QStringLiteral("0.000 ms")
                                 << QStringLiteral("10.000 ms");
    QTest::newRow("negative") << qint64(-2500000) << qint64(2500000) << QStringLiteral("-2.500 ms")
                              << QStringLiteral("2.500 ms");
}

void tst_ScopeWidget::labels()
{
    QFETCH(qint64, left);
    QFETCH(qint64, right);
    QFETCH(QString, leftLabel);
    QFETCH(QString, rightLabel);
    ScopeWidget widget;
    widget.resize(600, 400);
    if (left != 0 || right != 1) {
        widget.setLeftIndex(left);
        widget.setRightIndex(right);
    }
    RecordingDevice device(widget.size());
    widget.render(&device);
    const auto& texts = device.engine().texts;
    const QRect plot = widget.layout()->plotArea();
    bool leftFound = false;
    bool rightFound = false;
    for (const auto& text : texts) {
        if (text.text == leftLabel && text.position.x() < plot.center().x() && text.position.y() > plot.center().y())
            leftFound = true;
        if (text.text == rightLabel && text.position.x() > plot.center().x() && text.position.y() > plot.center().y())
            rightFound = true;
    }
    QVERIFY2(leftFound, qPrintable(leftLabel));
    QVERIFY2(rightFound, qPrintable(rightLabel));
}

void tst_ScopeWidget::grid()
{
    ScopeWidget widget;
    widget.resize(1000, 600);
    RecordingDevice device(widget.size());
    widget.render(&device);
    // 1000 × 600 gives divisions of 99 × 71 pixels and a plot area at (2, 15).
    QCOMPARE(widget.layout()->divisionSize(), QSize(99, 71));
    QCOMPARE(widget.layout()->plotArea(), QRect(2, 15, 991, 569));
    const auto& lines = device.engine().lines;
    QList<qreal> verticals;
    QList<qreal> horizontals;
    for (const auto& line : lines) {
        QCOMPARE(line.color, QColor(Qt::gray));
        if (line.line.x1() == line.line.x2() && line.line.length() > 100)
            verticals.append(line.line.x1());
        if (line.line.y1() == line.line.y2() && line.line.length() > 100)
            horizontals.append(line.line.y1());
    }
    QCOMPARE(verticals.size(), 11);
    QCOMPARE(horizontals.size(), 9);
    for (int i = 0; i <= 10; ++i)
        QCOMPARE(verticals.at(i), qreal(2 + i * 99));
    for (int i = 0; i <= 8; ++i)
        QCOMPARE(horizontals.at(i), qreal(15 + i * 71));
    // Half-division ticks on the centre lines: 7 pixels long, 9 + 11 of them.
    int ticks = 0;
    for (const auto& line : lines) {
        if (qFuzzyCompare(line.line.length(), 6.0))
            ++ticks;
    }
    QCOMPARE(ticks, 20);
}

void tst_ScopeWidget::defaultNames()
{
    Fixture fixture;
    ScopeWidget* second = fixture.stripes->addStripe();
    QVERIFY(second);
    QCOMPARE(fixture.widget->name(), QStringLiteral("Streifen 1"));
    QCOMPARE(second->name(), QStringLiteral("Streifen 2"));
    second->setName(QStringLiteral("Ströme"));
    QCOMPARE(second->name(), QStringLiteral("Ströme"));

    ScopeWidget stranger;
    stranger.setStripesWidget(fixture.stripes);
    QCOMPARE(stranger.name(), QStringLiteral("Streifen 0"));
    stranger.resize(400, 300);
    QVERIFY(textsOf(&stranger).contains(QStringLiteral("Streifen 0")));

    ScopeWidget alone;
    QCOMPARE(alone.name(), QStringLiteral("Streifen 0"));
}

void tst_ScopeWidget::contextMenuEntries()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    ScopeMarker* marker = fixture.scene.markers().constFirst();
    const QPoint position = fixture.pointAt(20000);
    const qint64 time = fixture.widget->timeAt(position);

    Q_EMIT fixture.widget->customContextMenuRequested(position);
    QMenu* menu = menuOf(fixture.widget);
    QVERIFY(menu);
    QTRY_VERIFY(menu->isVisible());
    QStringList texts;
    for (QAction* action : menu->actions())
        texts.append(action->isSeparator() ? QStringLiteral("|") : action->text());
    QCOMPARE(texts, QStringList({QStringLiteral("Marker A hier setzen"), QStringLiteral("Marker B hier setzen"),
                                 QStringLiteral("|"), QStringLiteral("Zu Marker A gehen"),
                                 QStringLiteral("Zu Marker B gehen")}));
    menu->hide();

    // B first: A ≤ B is kept by the markers.
    actionOf(menu, QStringLiteral("Marker B hier setzen"))->trigger();
    QCOMPARE(marker->position(1), (time / 100) * 100);
    const QPoint leftPosition = fixture.pointAt(-30000);
    Q_EMIT fixture.widget->customContextMenuRequested(leftPosition);
    menu->hide();
    actionOf(menu, QStringLiteral("Marker A hier setzen"))->trigger();
    QCOMPARE(marker->position(0), qint64(std::llround(fixture.widget->timeAt(leftPosition) / 100.0)) * 100);
}

void tst_ScopeWidget::contextMenuSuppressedAfterAcceptedRelease()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QPoint position = fixture.pointAt(0);
    // The quick-measure cursor owns the gesture, so the scene accepts the
    // right-button release that ends it.
    send(fixture.widget, QEvent::MouseButtonPress, position, Qt::LeftButton, Qt::LeftButton);
    send(fixture.widget, QEvent::MouseButtonRelease, position, Qt::RightButton, Qt::NoButton);
    Q_EMIT fixture.widget->customContextMenuRequested(position);
    QMenu* menu = menuOf(fixture.widget);
    QVERIFY(!menu || !menu->isVisible());

    // A right click that nobody takes opens the menu again.
    send(fixture.widget, QEvent::MouseButtonPress, position, Qt::RightButton, Qt::RightButton);
    send(fixture.widget, QEvent::MouseButtonRelease, position, Qt::RightButton, Qt::NoButton);
    Q_EMIT fixture.widget->customContextMenuRequested(position);
    menu = menuOf(fixture.widget);
    QVERIFY(menu);
    QTRY_VERIFY(menu->isVisible());
    menu->hide();
}

void tst_ScopeWidget::goToMarker()
{
    Fixture fixture;
    ScopeMarker* marker = fixture.scene.markers().constFirst();
    marker->setLimits(-1000000, 1000000);
    marker->setStep(1);
    marker->setPosition(1, 5000);
    marker->setPosition(0, 1000);
    fixture.zoomBar->setMinimumSliderDifference(0);
    fixture.zoomBar->setSlider(100, 301);
    Q_EMIT fixture.widget->customContextMenuRequested(QPoint(10, 10));
    QMenu* menu = menuOf(fixture.widget);
    QVERIFY(menu);
    menu->hide();
    actionOf(menu, QStringLiteral("Zu Marker A gehen"))->trigger();
    QCOMPARE(fixture.zoomBar->sliderLeft(), qint64(900));
    QCOMPARE(fixture.zoomBar->sliderRight(), qint64(1101));
    // The stripe follows the zoom bar.
    QCOMPARE(fixture.widget->leftIndex(), qint64(900));
    QCOMPARE(fixture.widget->rightIndex(), qint64(1101));
    actionOf(menu, QStringLiteral("Zu Marker B gehen"))->trigger();
    QCOMPARE(fixture.zoomBar->sliderLeft(), qint64(4900));
    QCOMPARE(fixture.zoomBar->sliderRight(), qint64(5101));
}

void tst_ScopeWidget::moveOnPlotEdge_data()
{
    QTest::addColumn<int>("dx");
    QTest::addColumn<int>("dy");
    QTest::addColumn<bool>("forwarded");
    QTest::newRow("right edge") << 0 << 0 << true;
    QTest::newRow("beyond right edge") << 1 << 0 << false;
    QTest::newRow("bottom edge") << -1 << 1 << true;
    QTest::newRow("beyond bottom edge") << -1 << 2 << false;
}

void tst_ScopeWidget::moveOnPlotEdge()
{
    QFETCH(int, dx);
    QFETCH(int, dy);
    QFETCH(bool, forwarded);
    Fixture fixture;
    QVERIFY(fixture.show());
    const QRect plot = fixture.widget->layout()->plotArea();
    // dy 1: the bottom edge in the middle column; 2: one pixel below it.
    const QPoint position = dy == 0 ? QPoint(plot.right() + dx, plot.center().y())
                                    : QPoint(plot.center().x(), plot.bottom() + dy - 1);
    // Only a forwarded move reaches the scene, which sets or resets the cursor.
    fixture.widget->setCursor(Qt::CrossCursor);
    send(fixture.widget, QEvent::MouseMove, position, Qt::NoButton, Qt::NoButton);
    QCOMPARE(fixture.widget->cursor().shape() != Qt::CrossCursor, forwarded);
}

void tst_ScopeWidget::pressLeftOfPlot()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.scene.quickMeasure()->setStep(1);
    QSignalSpy spy(fixture.scene.quickMeasure(), &ScopeQuickMeasure::publishQuickMeasureRequest);
    send(fixture.widget, QEvent::MouseButtonPress, QPoint(0, fixture.widget->height() / 2), Qt::LeftButton,
         Qt::LeftButton);
    QCOMPARE(spy.count(), 1);
    QVERIFY(spy.at(0).at(0).toLongLong() < fixture.widget->leftIndex());
    QCOMPARE(spy.at(0).at(0).toLongLong(), fixture.widget->timeAt(QPoint(0, 0)));
    send(fixture.widget, QEvent::MouseButtonRelease, QPoint(0, 5), Qt::LeftButton, Qt::NoButton);
}

void tst_ScopeWidget::backgroundColorWritesOnlyOnChange()
{
    ScopeWidget widget;
    QCOMPARE(widget.backgroundColor(), QColor(Qt::black));
    QCOMPARE(widget.palette().color(widget.backgroundRole()), QColor(Qt::black));
    const ino_t before = settingsInode();
    QVERIFY(before != 0);
    widget.setBackgroundColor(QColor(Qt::black));
    QCOMPARE(settingsInode(), before);
    widget.setBackgroundColor(QColor(Qt::darkBlue));
    QVERIFY(settingsInode() != before);
    QCOMPARE(widget.backgroundColor(), QColor(Qt::darkBlue));
    QCOMPARE(widget.palette().color(widget.backgroundRole()), QColor(Qt::darkBlue));
}

void tst_ScopeWidget::gridColorAlwaysWrites()
{
    ScopeWidget widget;
    QCOMPARE(widget.gridColor(), QColor(Qt::gray));
    const ino_t before = settingsInode();
    widget.setGridColor(QColor(Qt::gray));
    QVERIFY(settingsInode() != before);
    widget.setGridColor(QColor(Qt::green));
    QCOMPARE(widget.gridColor(), QColor(Qt::green));
    widget.resize(300, 200);
    RecordingDevice device(widget.size());
    widget.render(&device);
    QVERIFY(!device.engine().lines.isEmpty());
    for (const auto& line : device.engine().lines)
        QCOMPARE(line.color, QColor(Qt::green));
}

void tst_ScopeWidget::colorsReachEveryPlotWidget()
{
    Fixture fixture;
    ScopeWidget* second = fixture.stripes->addStripe();
    QVERIFY(fixture.show());
    // One widget changes the colour; every other one hears the settings file.
    fixture.widget->setBackgroundColor(QColor(Qt::darkRed));
    QTRY_COMPARE(second->palette().color(second->backgroundRole()), QColor(Qt::darkRed));
    // A change written by someone else (the settings page) reaches all of them.
    {
        QSettings settings;
        settings.setValue(QStringLiteral("Scope/BackgroundColor"), QColor(Qt::darkGreen));
    }
    QTRY_COMPARE(fixture.widget->palette().color(fixture.widget->backgroundRole()), QColor(Qt::darkGreen));
    QTRY_COMPARE(second->palette().color(second->backgroundRole()), QColor(Qt::darkGreen));
}

void tst_ScopeWidget::markerDrag()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    ScopeMarker* marker = fixture.scene.markers().constFirst();
    marker->setPosition(0, -20000);
    marker->setPosition(1, 20000);
    QSignalSpy spy(marker, &ScopeMarker::timePositionChanged);
    const QPoint start = fixture.pointAt(-20000);
    QCOMPARE(marker->position(0), qint64(-20000));
    QTest::mousePress(fixture.widget, Qt::LeftButton, Qt::NoModifier, start);
    const QPoint end = start + QPoint(150, 0);
    QTest::mouseMove(fixture.widget, start + QPoint(50, 0));
    QTest::mouseMove(fixture.widget, end);
    QTest::mouseRelease(fixture.widget, Qt::LeftButton, Qt::NoModifier, end);
    const qint64 expected = qint64(std::llround(fixture.widget->timeAt(end) / 100.0)) * 100;
    QCOMPARE(marker->position(0), expected);
    QCOMPARE(marker->position(1), qint64(20000));
    QVERIFY(spy.count() >= 1);
    QCOMPARE(spy.last().at(0).value<quint8>(), quint8(0));
    QCOMPARE(spy.last().at(1).toLongLong(), expected);

    // Dragging A past B swaps them: the mouse then drags B.
    const QPoint a = fixture.pointAt(marker->position(0));
    const QPoint past = fixture.pointAt(35000);
    QTest::mousePress(fixture.widget, Qt::LeftButton, Qt::NoModifier, a);
    QTest::mouseMove(fixture.widget, past);
    QTest::mouseRelease(fixture.widget, Qt::LeftButton, Qt::NoModifier, past);
    QCOMPARE(marker->position(0), qint64(20000));
    QCOMPARE(marker->position(1), qint64(std::llround(fixture.widget->timeAt(past) / 100.0)) * 100);
}

void tst_ScopeWidget::controlWheelZoom()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    const QPoint position = fixture.pointAt(10000);
    const qint64 time = fixture.widget->timeAt(position);
    const qint64 left = fixture.zoomBar->sliderLeft();
    const qint64 right = fixture.zoomBar->sliderRight();
    QWheelEvent forward(QPointF(position), QPointF(fixture.widget->mapToGlobal(position)), QPoint(), QPoint(0, 120),
                        Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(fixture.widget, &forward);
    QCOMPARE(fixture.zoomBar->sliderLeft(), time - qint64((time - left) / 1.5));
    QCOMPARE(fixture.zoomBar->sliderRight(), time + qint64((right - time) / 1.5));
    QCOMPARE(fixture.widget->leftIndex(), fixture.zoomBar->sliderLeft());
    QCOMPARE(fixture.widget->rightIndex(), fixture.zoomBar->sliderRight());

    // Without Control the wheel does not zoom.
    const qint64 zoomedLeft = fixture.zoomBar->sliderLeft();
    QWheelEvent plain(QPointF(position), QPointF(fixture.widget->mapToGlobal(position)), QPoint(), QPoint(0, -120),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(fixture.widget, &plain);
    QCOMPARE(fixture.zoomBar->sliderLeft(), zoomedLeft);

    // Backward zooms out again.
    const QPoint again = fixture.pointAt(10000);
    const qint64 t2 = fixture.widget->timeAt(again);
    const qint64 l2 = fixture.zoomBar->sliderLeft();
    const qint64 r2 = fixture.zoomBar->sliderRight();
    QWheelEvent backward(QPointF(again), QPointF(fixture.widget->mapToGlobal(again)), QPoint(), QPoint(0, -120),
                         Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(fixture.widget, &backward);
    QCOMPARE(fixture.zoomBar->sliderLeft(), std::max(fixture.zoomBar->minimum(), t2 - qint64((t2 - l2) * 1.5)));
    QCOMPARE(fixture.zoomBar->sliderRight(), std::min(fixture.zoomBar->maximum(), t2 + qint64((r2 - t2) * 1.5)));
}

void tst_ScopeWidget::controlDragPan()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    fixture.zoomBar->setSlider(-20000, 20000);
    const QRect plot = fixture.widget->layout()->plotArea();
    const int cell = fixture.widget->layout()->divisionSize().width();
    const QPoint start = plot.center();
    const QPoint end = start + QPoint(100, 0);
    QTest::mousePress(fixture.widget, Qt::LeftButton, Qt::ControlModifier, start);
    QTest::mouseMove(fixture.widget, end);
    QTest::mouseRelease(fixture.widget, Qt::LeftButton, Qt::ControlModifier, end);
    // Dragging to the right shows earlier times.
    const qint64 shift = qint64(-100) * 40000 / 10 / cell;
    QCOMPARE(fixture.zoomBar->sliderLeft(), -20000 + shift);
    QCOMPARE(fixture.zoomBar->sliderRight(), 20000 + shift);
    QCOMPARE(fixture.widget->cursor().shape(), Qt::ArrowCursor);

    // Dragging up moves the curves up; the new offsets are announced once
    // the gesture ends, so that they are saved and every view redraws.
    ScopeTrace* trace = fixture.shot->trace(0);
    const double offset = trace->verticalOffset();
    QSignalSpy changed(&fixture.scene, &ScopeScene::sceneChanged);
    QTest::mousePress(fixture.widget, Qt::LeftButton, Qt::ControlModifier, start);
    QTest::mouseMove(fixture.widget, start + QPoint(0, -20));
    QCOMPARE(changed.count(), 0);
    const QImage during = fixture.widget->grab().toImage();
    QTest::mouseRelease(fixture.widget, Qt::LeftButton, Qt::ControlModifier, start + QPoint(0, -20));
    QVERIFY(trace->verticalOffset() > offset);
    QVERIFY(changed.count() >= 1);
    // The picture during the drag already showed the moved curve.
    QCOMPARE(fixture.widget->grab().toImage(), during);
}

void tst_ScopeWidget::quickMeasure()
{
    Fixture fixture;
    QVERIFY(fixture.show());
    ScopeTrace* trace = fixture.shot->trace(0);
    QVERIFY(trace);
    QSignalSpy values(trace, &ScopeTrace::quickMeasureValue);
    const QPoint position = fixture.pointAt(10000);
    QTest::mousePress(fixture.widget, Qt::LeftButton, Qt::NoModifier, position);
    QTRY_VERIFY(!values.isEmpty());
    QCOMPARE(values.last().at(2).toBool(), true);
    QTest::mouseMove(fixture.widget, position + QPoint(40, 0));
    QTRY_VERIFY(values.count() >= 2);
    QTest::mouseRelease(fixture.widget, Qt::LeftButton, Qt::NoModifier, position + QPoint(40, 0));
    QTRY_COMPARE(values.last().at(2).toBool(), false);
}

QTEST_MAIN(tst_ScopeWidget)
#include "tst_scopewidget.moc"
