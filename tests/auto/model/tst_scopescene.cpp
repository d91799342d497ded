// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "iniparser.h"
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopequickmeasure.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "zoombar.h"

#include <QtCore/QStandardPaths>
#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QWidget>

#include <limits>
#include <memory>

namespace {

// A loaded shot: one channel per entry of \a values, time base in µs.
struct LoadedShot
{
    LoadedShot(const QByteArray& timeBase, int triggerIndex, const QList<QList<double>>& values)
        : archive(ScopeShotArchive::create(nullptr))
        , shot(new ScopeShot)
    {
        const int channels = int(values.size());
        const int frames = channels ? int(values.first().size()) : 0;
        QByteArray text = "[Archive]\r\nID=x\r\n\r\n[ScopeShot]\r\nTimeBase=" + timeBase
            + "\r\n\r\n[Data]\r\nChannelCount=" + QByteArray::number(channels) + "\r\nFrameCount="
            + QByteArray::number(frames) + "\r\nTriggerIndex=" + QByteArray::number(triggerIndex) + "\r\n";
        for (int f = 0; f < frames; ++f) {
            text += "Data_" + QByteArray::number(f) + "=" + QByteArray::number(f);
            for (int c = 0; c < channels; ++c)
                text += ";" + QByteArray::number(values.at(c).at(f), 'f', 3);
            text += "\r\n";
        }
        for (int c = 0; c < channels; ++c)
            text += "\r\n[ScopeChannel_" + QByteArray::number(c)
                + "]\r\nSourceType=1\r\nPhysicalDatatype=6\r\nColor=" + QByteArray::number(0xff00ff00u) + "\r\n";
        archive->fromByteArray(text);
        shot->setArchive(archive.get());
        shot->load();
    }
    std::unique_ptr<ScopeShotArchive> archive;
    QSharedPointer<ScopeShot> shot;
};

// What a plot widget owns: a layout and a trace filter as direct children.
struct Plot
{
    Plot()
        : layout(new ScopeLayout(&widget))
        , filter(new ScopeTraceFilter(&widget))
    {
        widget.resize(400, 300);
        layout->setGeometry(QRect(0, 0, 400, 300));
    }
    QWidget window;
    QWidget widget{&window};
    ScopeLayout* layout;
    ScopeTraceFilter* filter;
};

QMouseEvent mouse(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
{
    const Qt::MouseButtons buttons = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::MouseButtons(button);
    return QMouseEvent(type, QPointF(0, 0), QPointF(0, 0), type == QEvent::MouseMove ? Qt::NoButton : button,
                       buttons, modifiers);
}

QWheelEvent wheelEvent(int angle, Qt::KeyboardModifiers modifiers)
{
    return QWheelEvent(QPointF(10, 10), QPointF(10, 10), QPoint(), QPoint(0, angle), Qt::NoButton, modifiers,
                       Qt::NoScrollPhase, false);
}

QColor opaque(int number)
{
    QColor color = AppSettings::instance()->color(number);
    color.setAlpha(255);
    return color;
}

} // namespace

class tst_ScopeScene : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void emptyScene();
    void rangeWithMargin();
    void timeGrid_data();
    void timeGrid();
    void addAndRemoveShots();
    void removeCutsConnections();
    void clear();
    void zoomBarSetsViewRange();
    void wheel_data();
    void wheel();
    void wheelZoomsTracesWithShift();
    void panHorizontally();
    void panStopsAtLimits();
    void panVertically();
    void pressDragsMarker();
    void pressStartsQuickMeasure();
    void releaseWithoutGrabber();
    void hoverResetsCursor();
    void controlPressPansOnMarker();
    void readSection();
    void readSectionDefaults();
    void writeSection();
    void paintTriggerIndicator_data();
    void paintTriggerIndicator();
    void paintTracesMarkersAndCursor();
    void noZoomBar();
    void extremeRange();
};

void tst_ScopeScene::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeScene::emptyScene()
{
    ScopeScene scene;
    QCOMPARE(scene.startTime(), 0);
    QCOMPARE(scene.endTime(), 0);
    QCOMPARE(scene.timeGrid(), 100);
    QCOMPARE(scene.markers().size(), 1);
    QVERIFY(scene.quickMeasure());
    QCOMPARE(scene.markers().first()->parent(), &scene);
    QCOMPARE(scene.quickMeasure()->parent(), &scene);
    ZoomBar zoomBar;
    zoomBar.setMaximum(5000);
    scene.setZoomBar(&zoomBar);
    QCOMPARE(scene.zoomBar(), &zoomBar);
    QCOMPARE(zoomBar.minimum(), 0);
    QCOMPARE(zoomBar.maximum(), 0);
    QCOMPARE(zoomBar.smallStep(), 100);
    QCOMPARE(zoomBar.largeStep(), 1000);
    QCOMPARE(zoomBar.minimumSliderDifference(), 1000);
}

void tst_ScopeScene::rangeWithMargin()
{
    // 1000 µs per sample, trigger at sample 1, 11 samples: −1 ms … 9 ms.
    LoadedShot loaded("1000", 1, {QList<double>(11, 1.0)});
    QCOMPARE(loaded.shot->startTime(), -1000000);
    QCOMPARE(loaded.shot->endTime(), 9000000);
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(loaded.shot);
    QCOMPARE(scene.startTime(), -2000000);
    QCOMPARE(scene.endTime(), 10000000);
    QCOMPARE(scene.timeGrid(), 1000000);
    QCOMPARE(zoomBar.minimum(), -2000000);
    QCOMPARE(zoomBar.maximum(), 10000000);
    QCOMPARE(zoomBar.smallStep(), 1000000);
    QCOMPARE(zoomBar.largeStep(), 10000000);
    QCOMPARE(zoomBar.minimumSliderDifference(), 10000000);
    ScopeMarker* marker = scene.markers().first();
    QCOMPARE(marker->minTime(), -2000000);
    QCOMPARE(marker->maxTime(), 10000000);
    QCOMPARE(marker->step(), 1000000);
    QCOMPARE(scene.quickMeasure()->step(), 1000000);
}

void tst_ScopeScene::timeGrid_data()
{
    QTest::addColumn<QList<QByteArray>>("timeBases");
    QTest::addColumn<qint64>("grid");
    QTest::newRow("625 and 250") << QList<QByteArray>{"62.5", "25"} << qint64(12500);
    QTest::newRow("one shot") << QList<QByteArray>{"62.5"} << qint64(62500);
    QTest::newRow("coprime") << QList<QByteArray>{"0.3", "0.5"} << qint64(100);
    QTest::newRow("three") << QList<QByteArray>{"1.2", "0.8", "2"} << qint64(400);
    QTest::newRow("same twice") << QList<QByteArray>{"25", "25"} << qint64(25000);
}

void tst_ScopeScene::timeGrid()
{
    QFETCH(QList<QByteArray>, timeBases);
    QFETCH(qint64, grid);
    std::vector<std::unique_ptr<LoadedShot>> shots;
    ScopeScene scene;
    for (const QByteArray& timeBase : timeBases) {
        shots.push_back(std::make_unique<LoadedShot>(timeBase, 0, QList<QList<double>>{{1.0, 2.0}}));
        scene.addShot(shots.back()->shot);
    }
    QCOMPARE(scene.timeGrid(), grid);
}

void tst_ScopeScene::addAndRemoveShots()
{
    LoadedShot first("1", 0, {{1.0, 2.0}});
    LoadedShot second("1", 0, {{1.0, 2.0}});
    ScopeScene scene;
    QSignalSpy changed(&scene, &ScopeScene::sceneChanged);
    scene.addShot(first.shot);
    scene.addShot(first.shot);
    QCOMPARE(changed.count(), 1);
    scene.addShot(second.shot);
    QCOMPARE(scene.shots(), (QList<QSharedPointer<ScopeShot>>{first.shot, second.shot}));
    QCOMPARE(changed.count(), 2);
    // A change of a shot's trace reaches the scene.
    first.shot->trace(0)->setTriggerIndex(1);
    QCOMPARE(changed.count(), 3);
    scene.removeShot(first.shot);
    QCOMPARE(changed.count(), 4);
    scene.removeShot(first.shot);
    QCOMPARE(changed.count(), 4);
    QCOMPARE(scene.shots(), QList<QSharedPointer<ScopeShot>>{second.shot});
}

void tst_ScopeScene::removeCutsConnections()
{
    LoadedShot loaded("1", 0, {{1.0, 2.0}});
    ScopeScene scene;
    scene.addShot(loaded.shot);
    QSignalSpy requests(loaded.shot.data(), &ScopeShot::publishQuickMeasureRequest);
    QSignalSpy disabled(loaded.shot.data(), &ScopeShot::publishQuickMeasureDisabled);
    Q_EMIT scene.quickMeasure()->publishQuickMeasureRequest(1000);
    Q_EMIT scene.quickMeasure()->publishQuickMeasureDisabled();
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.at(0).at(0).value<qint64>(), qint64(1000));
    QCOMPARE(disabled.count(), 1);

    scene.removeShot(loaded.shot);
    QSignalSpy changed(&scene, &ScopeScene::sceneChanged);
    Q_EMIT scene.quickMeasure()->publishQuickMeasureRequest(1000);
    Q_EMIT loaded.shot->changed();
    QCOMPARE(requests.count(), 1);
    QCOMPARE(changed.count(), 0);
}

void tst_ScopeScene::clear()
{
    LoadedShot first("1", 0, {{1.0, 2.0}});
    LoadedShot second("1", 0, {{1.0, 2.0}});
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(first.shot);
    scene.addShot(second.shot);
    QSignalSpy changed(&scene, &ScopeScene::sceneChanged);
    scene.clear();
    QCOMPARE(changed.count(), 2);
    QVERIFY(scene.shots().isEmpty());
    QCOMPARE(zoomBar.minimum(), 0);
    QCOMPARE(zoomBar.maximum(), 100);
    QCOMPARE(zoomBar.sliderLeft(), 0);
    QCOMPARE(zoomBar.sliderRight(), 100);
}

void tst_ScopeScene::zoomBarSetsViewRange()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-5000);
    zoomBar.setMaximum(5000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(-1200, 3400);
    QCOMPARE(scene.viewLeft(), -1200);
    QCOMPARE(scene.viewRight(), 3400);
}

void tst_ScopeScene::wheel_data()
{
    QTest::addColumn<qint64>("time");
    QTest::addColumn<int>("angle");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<qint64>("left");
    QTest::addColumn<qint64>("right");
    const int control = Qt::ControlModifier;
    QTest::newRow("forward zooms in") << qint64(150) << 120 << control << qint64(50) << qint64(250);
    QTest::newRow("backward zooms out") << qint64(150) << -120 << control << qint64(-75) << qint64(375);
    QTest::newRow("off centre") << qint64(30) << 120 << control << qint64(10) << qint64(210);
    QTest::newRow("truncated") << qint64(100) << 120 << control << qint64(34) << qint64(233);
    QTest::newRow("without control") << qint64(150) << 120 << int(Qt::NoModifier) << qint64(0) << qint64(300);
    QTest::newRow("shift only") << qint64(150) << 120 << int(Qt::ShiftModifier) << qint64(0) << qint64(300);
    QTest::newRow("at the left edge") << qint64(0) << 120 << control << qint64(0) << qint64(300);
    QTest::newRow("at the right edge") << qint64(300) << 120 << control << qint64(0) << qint64(300);
    QTest::newRow("outside") << qint64(500) << 120 << control << qint64(0) << qint64(300);
}

void tst_ScopeScene::wheel()
{
    QFETCH(qint64, time);
    QFETCH(int, angle);
    QFETCH(int, modifiers);
    QFETCH(qint64, left);
    QFETCH(qint64, right);
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 300);
    Plot plot;
    QWheelEvent event = wheelEvent(angle, Qt::KeyboardModifiers(modifiers));
    scene.wheel(&plot.widget, time, QPoint(), &event);
    QCOMPARE(zoomBar.sliderLeft(), left);
    QCOMPARE(zoomBar.sliderRight(), right);
    QCOMPARE(scene.viewLeft(), left);
    QCOMPARE(scene.viewRight(), right);
}

void tst_ScopeScene::wheelZoomsTracesWithShift()
{
    LoadedShot loaded("1", 0, {{0.0, 1.0, 2.0, 3.0}});
    ScopeTrace* trace = loaded.shot->trace(0);
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(loaded.shot);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 3000);
    Plot plot;
    plot.filter->addTrace(trace);
    const double factor = trace->scalingFactor();

    // Control alone zooms only the time axis.
    QWheelEvent plain = wheelEvent(120, Qt::ControlModifier);
    scene.wheel(&plot.widget, 1500, QPoint(), &plain);
    QCOMPARE(trace->scalingFactor(), factor);

    QWheelEvent in = wheelEvent(120, Qt::ControlModifier | Qt::ShiftModifier);
    scene.wheel(&plot.widget, 1500, QPoint(), &in);
    QVERIFY(trace->scalingFactor() > factor);
    QCOMPARE(trace->anchorTime(), 1500);
    const double zoomed = trace->scalingFactor();

    QWheelEvent out = wheelEvent(-120, Qt::ControlModifier | Qt::ShiftModifier);
    scene.wheel(&plot.widget, 1500, QPoint(), &out);
    QVERIFY(trace->scalingFactor() < zoomed);

    // When the slider cannot change, the traces stay as they are.
    zoomBar.setSlider(-1000, 10000);
    const double before = trace->scalingFactor();
    QWheelEvent blocked = wheelEvent(-120, Qt::ControlModifier | Qt::ShiftModifier);
    scene.wheel(&plot.widget, 1500, QPoint(), &blocked);
    QCOMPARE(zoomBar.sliderLeft(), -1000);
    QCOMPARE(zoomBar.sliderRight(), 10000);
    QCOMPARE(trace->scalingFactor(), before);
}

void tst_ScopeScene::panHorizontally()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 390);
    Plot plot;
    QCOMPARE(plot.layout->divisionSize().width(), 39);

    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    down.setAccepted(false);
    QVERIFY(scene.mousePressed(&plot.widget, 100, QPoint(100, 100), &down));
    QVERIFY(down.isAccepted());
    QCOMPARE(plot.widget.cursor().shape(), Qt::ClosedHandCursor);

    // 39 pixels to the right: one division, a tenth of the visible span,
    // towards earlier times.
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(139, 100), &drag));
    QCOMPARE(zoomBar.sliderLeft(), -39);
    QCOMPARE(zoomBar.sliderRight(), 351);
    // 79 pixels to the left: later times.
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(60, 100), &drag));
    QCOMPARE(zoomBar.sliderLeft(), 40);
    QCOMPARE(zoomBar.sliderRight(), 430);

    QMouseEvent up = mouse(QEvent::MouseButtonRelease, Qt::LeftButton, Qt::ControlModifier);
    up.setAccepted(false);
    QVERIFY(scene.mouseReleased(&plot.widget, 0, QPoint(60, 100), &up));
    QVERIFY(up.isAccepted());
    QVERIFY(!plot.widget.testAttribute(Qt::WA_SetCursor));
    // The gesture is over: moves go to the handlers again.
    QMouseEvent hover = mouse(QEvent::MouseMove, Qt::NoButton);
    QVERIFY(!scene.mouseMoved(&plot.widget, 5000, QPoint(0, 100), &hover));
    QCOMPARE(zoomBar.sliderLeft(), 40);
}

void tst_ScopeScene::panStopsAtLimits()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(-900, -510);
    Plot plot;
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 0, QPoint(100, 100), &down));
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    // 390 pixels would be 390 ns; only 100 are left to the minimum.
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(490, 100), &drag));
    QCOMPARE(zoomBar.sliderLeft(), -1000);
    QCOMPARE(zoomBar.sliderRight(), -610);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(590, 100), &drag));
    QCOMPARE(zoomBar.sliderLeft(), -1000);
    QCOMPARE(zoomBar.sliderRight(), -610);
    // The other way the maximum stops it.
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(-10000, 100), &drag));
    QCOMPARE(zoomBar.sliderLeft(), 610);
    QCOMPARE(zoomBar.sliderRight(), 1000);
    QVERIFY(scene.mouseReleased(&plot.widget, 0));
}

void tst_ScopeScene::panVertically()
{
    LoadedShot loaded("1", 0, {{0.0, 1.0}, {2.0, 3.0}});
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(loaded.shot);
    Plot plot;
    ScopeTrace* first = loaded.shot->trace(0);
    ScopeTrace* second = loaded.shot->trace(1);
    plot.filter->addTrace(first);
    const double firstOffset = first->verticalOffset();
    const double secondOffset = second->verticalOffset();
    QSignalSpy changed(first, &ScopeTrace::changed);

    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 0, QPoint(100, 100), &down));
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(100, 90), &drag));
    // Ten pixels up, at the trace's scale, without signals.
    QCOMPARE(first->verticalOffset(), firstOffset + 10 * first->unitsPerPixel());
    QCOMPARE(second->verticalOffset(), secondOffset);
    QCOMPARE(changed.count(), 0);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(100, 95), &drag));
    QCOMPARE(first->verticalOffset(), firstOffset + 5 * first->unitsPerPixel());
    QVERIFY(scene.mouseReleased(&plot.widget, 0));
    QCOMPARE(first->verticalOffset(), firstOffset + 5 * first->unitsPerPixel());
}

void tst_ScopeScene::pressDragsMarker()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-10000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 3910);
    ScopeMarker* marker = scene.markers().first();
    marker->setLimits(-10000, 10000);
    marker->setPosition(1, 3000);
    marker->setPosition(0, 1000);
    Plot plot;
    QSignalSpy positions(marker, &ScopeMarker::timePositionChanged);
    QSignalSpy requests(scene.quickMeasure(), &ScopeQuickMeasure::publishQuickMeasureRequest);

    // About three pixels (10 ns each) around A.
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    down.setAccepted(false);
    QVERIFY(scene.mousePressed(&plot.widget, 1025, QPoint(), &down));
    QVERIFY(down.isAccepted());
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton);
    QVERIFY(scene.mouseMoved(&plot.widget, 1530, QPoint(), &drag));
    // The scene's grid (100 without shots) snaps the marker.
    QCOMPARE(marker->position(0), 1500);
    QMouseEvent up = mouse(QEvent::MouseButtonRelease, Qt::LeftButton);
    up.setAccepted(false);
    QVERIFY(scene.mouseReleased(&plot.widget, 1570, QPoint(), &up));
    QVERIFY(up.isAccepted());
    QCOMPARE(marker->position(0), 1600);
    QCOMPARE(positions.count(), 2);
    QCOMPARE(requests.count(), 0);
}

void tst_ScopeScene::pressStartsQuickMeasure()
{
    LoadedShot loaded("1", 0, {{1.0, 2.0, 3.0}});
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(loaded.shot);
    zoomBar.setMinimum(-10000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 3910);
    Plot plot;
    QSignalSpy answers(loaded.shot->trace(0), &ScopeTrace::quickMeasureValue);
    QSignalSpy disabled(scene.quickMeasure(), &ScopeQuickMeasure::publishQuickMeasureDisabled);

    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(scene.mousePressed(&plot.widget, 1040, QPoint(), &down));
    QVERIFY(scene.quickMeasure()->isActive());
    // Snapped to the sampling grid of 1 µs, answered by the trace.
    QCOMPARE(answers.count(), 1);
    QCOMPARE(answers.at(0).at(0).value<qint64>(), qint64(1000));
    QCOMPARE(answers.at(0).at(2).toBool(), true);
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton);
    QVERIFY(scene.mouseMoved(&plot.widget, 2100, QPoint(), &drag));
    QCOMPARE(answers.count(), 2);
    QCOMPARE(answers.at(1).at(0).value<qint64>(), qint64(2000));
    QMouseEvent up = mouse(QEvent::MouseButtonRelease, Qt::LeftButton);
    up.setAccepted(false);
    QVERIFY(scene.mouseReleased(&plot.widget, 2100, QPoint(), &up));
    QVERIFY(up.isAccepted());
    QCOMPARE(disabled.count(), 1);
    QCOMPARE(answers.count(), 3);
    QCOMPARE(answers.at(2).at(2).toBool(), false);
}

void tst_ScopeScene::releaseWithoutGrabber()
{
    ScopeScene scene;
    Plot plot;
    // A right press is taken by nobody; its release is not accepted.
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::RightButton);
    down.setAccepted(false);
    QVERIFY(!scene.mousePressed(&plot.widget, 0, QPoint(), &down));
    QVERIFY(!down.isAccepted());
    QMouseEvent up = mouse(QEvent::MouseButtonRelease, Qt::RightButton);
    up.setAccepted(false);
    QVERIFY(!scene.mouseReleased(&plot.widget, 0, QPoint(), &up));
    QVERIFY(!up.isAccepted());
}

void tst_ScopeScene::hoverResetsCursor()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-10000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 3910);
    ScopeMarker* marker = scene.markers().first();
    marker->setLimits(-10000, 10000);
    marker->setPosition(1, 3000);
    Plot plot;
    QMouseEvent hover = mouse(QEvent::MouseMove, Qt::NoButton);
    QVERIFY(scene.mouseMoved(&plot.widget, 3010, QPoint(), &hover));
    QCOMPARE(plot.widget.cursor().shape(), Qt::SplitHCursor);
    QVERIFY(!scene.mouseMoved(&plot.widget, 2000, QPoint(), &hover));
    QVERIFY(!plot.widget.testAttribute(Qt::WA_SetCursor));
}

void tst_ScopeScene::controlPressPansOnMarker()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-10000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(0, 3910);
    ScopeMarker* marker = scene.markers().first();
    marker->setLimits(-10000, 10000);
    marker->setPosition(1, 3000);
    Plot plot;
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 3000, QPoint(100, 0), &down));
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mouseMoved(&plot.widget, 3500, QPoint(139, 0), &drag));
    QCOMPARE(marker->position(1), 3000);
    QCOMPARE(zoomBar.sliderLeft(), -391);
    // Control with Shift is not a pan: the marker takes the press.
    QVERIFY(scene.mouseReleased(&plot.widget, 0));
    zoomBar.setSlider(0, 3910);
    QMouseEvent shifted = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier | Qt::ShiftModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 3000, QPoint(100, 0), &shifted));
    QVERIFY(scene.mouseMoved(&plot.widget, 3500, QPoint(139, 0), &drag));
    QCOMPARE(marker->position(1), 3500);
    QCOMPARE(zoomBar.sliderLeft(), 0);
}

void tst_ScopeScene::readSection()
{
    KlIniParser::IniParser parser;
    parser.setIniText("[ScopeScene]\r\nViewSliderLeft=-400\r\nMarkerPosition_0A=-100\r\nMarkerPosition_0B=200\r\n"
                      "\r\n[ScopeShot]\r\nViewSliderLeft=-900\r\nViewSliderRight=700\r\n");
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    QSignalSpy positions(scene.markers().first(), &ScopeMarker::timePositionChanged);
    QVERIFY(scene.readSection(parser.section("ScopeScene"), parser.section("ScopeShot")));
    QCOMPARE(zoomBar.sliderLeft(), -400);
    QCOMPARE(zoomBar.sliderRight(), 700);
    QCOMPARE(scene.viewLeft(), -400);
    QCOMPARE(scene.viewRight(), 700);
    QCOMPARE(scene.markers().first()->position(0), -100);
    QCOMPARE(scene.markers().first()->position(1), 200);
    QCOMPARE(positions.count(), 2);
}

void tst_ScopeScene::readSectionDefaults()
{
    KlIniParser::IniParser parser;
    parser.setIniText("[ScopeScene]\r\nOther=1\r\n");
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(-10, 10);
    QVERIFY(scene.readSection(parser.section("ScopeScene"), nullptr));
    QCOMPARE(zoomBar.sliderLeft(), -1000);
    QCOMPARE(zoomBar.sliderRight(), 1000);
    QCOMPARE(scene.markers().first()->position(0), -10000000);
    QCOMPARE(scene.markers().first()->position(1), 10000000);
}

void tst_ScopeScene::writeSection()
{
    KlIniParser::IniParser parser;
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-1000);
    zoomBar.setMaximum(1000);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(-250, 750);
    ScopeMarker* marker = scene.markers().first();
    marker->setLimits(-1000, 1000);
    marker->setPosition(1, 600);
    marker->setPosition(0, -300);
    KlIniParser::IniSection* sceneSection = parser.findOrCreateSection("ScopeScene");
    KlIniParser::IniSection* shotSection = parser.findOrCreateSection("ScopeShot");
    scene.writeSection(sceneSection, shotSection);
    QCOMPARE(sceneSection->value("ViewSliderLeft"), QByteArray("-250"));
    QCOMPARE(sceneSection->value("ViewSliderRight"), QByteArray("750"));
    QCOMPARE(sceneSection->value("MarkerPosition_0A"), QByteArray("-300"));
    QCOMPARE(sceneSection->value("MarkerPosition_0B"), QByteArray("600"));
    QCOMPARE(shotSection->keys(), (QList<QByteArray>{"ViewSliderLeft", "ViewSliderRight"}));
    QCOMPARE(shotSection->value("ViewSliderRight"), QByteArray("750"));
    // One section only.
    KlIniParser::IniSection* other = parser.findOrCreateSection("Other");
    scene.writeSection(other, nullptr);
    QCOMPARE(other->count(), 4);
}

void tst_ScopeScene::paintTriggerIndicator_data()
{
    QTest::addColumn<qint64>("left");
    QTest::addColumn<QString>("where");
    QTest::newRow("inside") << qint64(-100) << QStringLiteral("T");
    QTest::newRow("left of the view") << qint64(10) << QStringLiteral("<");
    QTest::newRow("right of the view") << qint64(-500) << QStringLiteral(">");
}

void tst_ScopeScene::paintTriggerIndicator()
{
    QFETCH(qint64, left);
    QFETCH(QString, where);
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(-10000);
    zoomBar.setMaximum(10000);
    zoomBar.setMinimumSliderDifference(1);
    // One nanosecond per pixel; the markers far away.
    zoomBar.setSlider(left, left + 391);
    scene.markers().first()->setLimits(-100000, 100000);
    scene.markers().first()->setPosition(0, -90000);
    scene.markers().first()->setPosition(1, 90000);
    Plot plot;
    QImage image(400, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    {
        QPainter painter(&image);
        scene.paint(&plot.widget, &painter, {});
    }
    const QRect area = plot.layout->plotArea();
    const QRect ruler = plot.layout->topRuler();
    const QColor color = opaque(AppSettings::TriggerColor);
    auto nonBlack = [&](const QRect& rect) {
        int count = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                count += image.pixel(x, y) != qRgb(0, 0, 0) ? 1 : 0;
        return count;
    };
    if (where == QLatin1String("T")) {
        for (int y = area.top(); y <= area.bottom(); ++y)
            QCOMPARE(image.pixelColor(area.left() + 100, y), color);
        QCOMPARE(nonBlack(QRect(area.left(), area.top(), 99, area.height())), 0);
        QCOMPARE(nonBlack(QRect(area.left() + 101, area.top(), 290, area.height())), 0);
        QVERIFY(nonBlack(QRect(ruler.left() + 98, ruler.top(), 12, ruler.height())) > 0);
        QCOMPARE(nonBlack(QRect(ruler.left(), ruler.top(), 95, ruler.height())), 0);
    } else {
        // No line in the plot, a sign at one end of the ruler.
        QCOMPARE(nonBlack(area), 0);
        const QRect leftEnd(ruler.left(), ruler.top(), 10, ruler.height());
        const QRect rightEnd(ruler.right() - 10, ruler.top(), 10, ruler.height());
        const QRect middle(ruler.left() + 12, ruler.top(), ruler.width() - 24, ruler.height());
        QCOMPARE(nonBlack(leftEnd) > 0, where == QLatin1String("<"));
        QCOMPARE(nonBlack(rightEnd) > 0, where == QLatin1String(">"));
        QCOMPARE(nonBlack(middle), 0);
    }
    QCOMPARE(nonBlack(QRect(0, area.bottom() + 1, 400, 300 - area.bottom() - 1)), 0);
}

void tst_ScopeScene::paintTracesMarkersAndCursor()
{
    // Samples 0 … 3 µs with values 1 … 4.
    LoadedShot loaded("1", 0, {{1.0, 2.0, 3.0, 4.0}});
    ScopeTrace* trace = loaded.shot->trace(0);
    trace->setColor(QColor(0, 255, 0));
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    scene.addShot(loaded.shot);
    // The scene's range is 0 … 3 µs with a margin of 300 ns.
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(-1000, 4000);
    QCOMPARE(scene.viewLeft(), -300);
    QCOMPARE(scene.viewRight(), 3300);
    ScopeMarker* marker = scene.markers().first();
    marker->setPosition(0, 0);
    marker->setPosition(1, 3000);
    Plot plot;
    const QRect area = plot.layout->plotArea();
    auto render = [&](const QList<ScopeTrace*>& traces) {
        QImage image(400, 300, QImage::Format_RGB32);
        image.fill(Qt::black);
        QPainter painter(&image);
        scene.paint(&plot.widget, &painter, traces);
        return image;
    };
    auto count = [&](const QImage& image, const QColor& color, const QRect& rect) {
        int n = 0;
        for (int y = rect.top(); y <= rect.bottom(); ++y)
            for (int x = rect.left(); x <= rect.right(); ++x)
                n += image.pixelColor(x, y) == color ? 1 : 0;
        return n;
    };
    const QImage without = render({});
    const QImage with = render({trace});
    const QColor green(0, 255, 0);
    QCOMPARE(count(without, green, area), 0);
    QVERIFY(count(with, green, area) > 0);
    // Marker A lies at 0, on the trigger line, B at 3 µs.
    const QColor markerColor = opaque(AppSettings::MarkerColor);
    const int markerB = area.left() + int(qint64(area.width()) * 3300 / 3600);
    QVERIFY(count(without, markerColor, QRect(markerB - 1, area.top(), 3, area.height())) > area.height() / 4);
    // The quick-measure cursor shows while active.
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton);
    QVERIFY(scene.mousePressed(&plot.widget, 2000, QPoint(), &down));
    const QImage active = render({});
    const int cursor = area.left() + int(qint64(area.width()) * 2300 / 3600);
    QVERIFY(count(active, markerColor, QRect(cursor - 1, area.top(), 3, area.height())) >= area.height());
    QCOMPARE(count(without, markerColor, QRect(cursor - 1, area.top(), 3, area.height())), 0);
}

void tst_ScopeScene::noZoomBar()
{
    ScopeScene scene;
    Plot plot;
    QWheelEvent event = wheelEvent(120, Qt::ControlModifier);
    QVERIFY(!scene.wheel(&plot.widget, 150, QPoint(), &event));
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 0, QPoint(100, 100), &down));
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(200, 100), &drag));
    QVERIFY(scene.mouseReleased(&plot.widget, 0));
    KlIniParser::IniParser parser;
    KlIniParser::IniSection* section = parser.findOrCreateSection("ScopeScene");
    QVERIFY(scene.readSection(section, nullptr));
    scene.writeSection(section, nullptr);
    QCOMPARE(section->keys(), (QList<QByteArray>{"MarkerPosition_0A", "MarkerPosition_0B"}));
    scene.clear();
}

void tst_ScopeScene::extremeRange()
{
    // A visible range over the whole 64-bit axis neither overflows nor crashes.
    const qint64 lowest = std::numeric_limits<qint64>::min();
    const qint64 highest = std::numeric_limits<qint64>::max();
    ScopeScene scene;
    ZoomBar zoomBar;
    scene.setZoomBar(&zoomBar);
    zoomBar.setMinimum(lowest);
    zoomBar.setMaximum(highest);
    zoomBar.setMinimumSliderDifference(1);
    zoomBar.setSlider(lowest, highest);
    Plot plot;
    QWheelEvent out = wheelEvent(-120, Qt::ControlModifier);
    QVERIFY(scene.wheel(&plot.widget, 0, QPoint(), &out));
    QCOMPARE(zoomBar.sliderLeft(), lowest);
    QCOMPARE(zoomBar.sliderRight(), highest);
    QMouseEvent down = mouse(QEvent::MouseButtonPress, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mousePressed(&plot.widget, 0, QPoint(0, 0), &down));
    QMouseEvent drag = mouse(QEvent::MouseMove, Qt::LeftButton, Qt::ControlModifier);
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(100000, 0), &drag));
    QVERIFY(scene.mouseMoved(&plot.widget, 0, QPoint(-100000, 0), &drag));
    QVERIFY(scene.mouseReleased(&plot.widget, 0));
    QCOMPARE(zoomBar.sliderLeft(), lowest);
    QCOMPARE(zoomBar.sliderRight(), highest);
    QImage image(400, 300, QImage::Format_RGB32);
    QPainter painter(&image);
    scene.markers().first()->setLimits(lowest, highest);
    scene.markers().first()->setShowInterval(true);
    scene.paint(&plot.widget, &painter, {});
}

QTEST_MAIN(tst_ScopeScene)
#include "tst_scopescene.moc"
