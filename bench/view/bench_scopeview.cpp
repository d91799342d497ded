// SPDX-License-Identifier: GPL-3.0-or-later
// Responsiveness of the time analysis with a deep recording: 16 traces of
// 1,000,000 samples each. One iteration is one frame of a gesture: the model
// change (zoom-bar slider or marker drag step) followed by a synchronous
// repaint of every stripe.
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopeview.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <benchmark/benchmark.h>

#include <QtCore/QSettings>
#include <QtGui/QMouseEvent>
#include <QtWidgets/QApplication>

#include <cmath>
#include <memory>

namespace {

constexpr int channelCount = 16;
constexpr int frameCount = 1000000;

// Realistic: one to four periods over the whole recording with a ripple of a
// few percent, as drive currents and speeds look. Dense: 250 to 1000 periods,
// so that every pixel column of the whole recording spans the full amplitude
// (the worst case for drawing).
int sampleValue(bool dense, int channel, int frame)
{
    const double periods = double(channel % 4 + 1) * (dense ? 250.0 : 1.0);
    const double phase = 2.0 * M_PI * periods * double(frame) / double(frameCount);
    double value = channel % 3 == 1 ? (std::sin(phase) >= 0 ? 1000.0 : -1000.0) : 1000.0 * std::sin(phase);
    if (!dense)
        value += 30.0 * std::sin(2.0 * M_PI * double(frame % 500) / 500.0);
    return qRound(value);
}

QByteArray deepReadOut(bool dense)
{
    QByteArray text;
    text.reserve(qsizetype(frameCount) * (channelCount * 5 + 16));
    text += "[Data]\r\nChannelCount=" + QByteArray::number(channelCount) + "\r\nFrameCount="
        + QByteArray::number(frameCount) + "\r\nTriggerIndex=100000\r\nSerialNumber=1\r\n";
    for (int f = 0; f < frameCount; ++f) {
        text += "Data_";
        text += QByteArray::number(f);
        text += "=0";
        for (int c = 0; c < channelCount; ++c) {
            text += ';';
            text += QByteArray::number(sampleValue(dense, c, f));
        }
        text += "\r\n";
    }
    text += "\r\n[ScopeShot]\r\nTimeBase=1\r\n";
    for (int c = 0; c < channelCount; ++c) {
        text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\nName=Signal "
            + QByteArray::number(c) + "\r\nMeasure=A\r\nPhysicalDatatype=3\r\nDecimalPlaces=0\r\n";
    }
    return text;
}

struct DeepView {
    QObject owner;
    std::unique_ptr<ScopeView> view;
    ScopeShotArchive* archive = nullptr;
    ScopeStripesWidget* stripes = nullptr;
    ZoomBar* zoomBar = nullptr;

    explicit DeepView(bool dense)
    {
        archive = ScopeShotArchive::create(&owner);
        archive->createFromReadOut(deepReadOut(dense));
        view.reset(ScopeView::create(nullptr, nullptr));
        view->resize(1600, 1000);
        view->show();
        QCoreApplication::processEvents();
        view->setScopeElement(archive);
        stripes = view->findChild<ScopeStripesWidget*>(QStringLiteral("scopeStripesWidget"));
        zoomBar = view->findChild<ZoomBar*>(QStringLiteral("zoomBar"));
        QCoreApplication::processEvents();
    }

    // The traces of the shot spread over five stripes, as a composition may show them.
    void spreadOverFiveStripes()
    {
        while (stripes->scopeWidgets().size() < 5)
            stripes->addStripe();
        const QList<ScopeWidget*> widgets = stripes->scopeWidgets();
        const QList<ScopeTrace*> traces = widgets.constFirst()->traceFilter()->traces();
        for (int i = 0; i < traces.size(); ++i) {
            if (i % 5 == 0)
                continue;
            widgets.constFirst()->traceFilter()->removeTrace(traces.at(i));
            widgets.at(i % 5)->traceFilter()->addTrace(traces.at(i));
        }
        QCoreApplication::processEvents();
    }

    void repaintAll()
    {
        for (ScopeWidget* widget : stripes->scopeWidgets())
            widget->repaint();
    }
};

DeepView* deepView(bool dense = false)
{
    // One recording at a time keeps the memory bounded.
    static std::unique_ptr<DeepView> view;
    static bool viewIsDense = false;
    if (!view || viewIsDense != dense) {
        view.reset();
        view.reset(new DeepView(dense));
        viewIsDense = dense;
    }
    return view.get();
}

void zoomBarDrag(benchmark::State& state, bool fiveStripes, double windowFraction, bool dense = false)
{
    DeepView* view = deepView(dense);
    if (fiveStripes)
        view->spreadOverFiveStripes();
    ZoomBar* zoomBar = view->zoomBar;
    const qint64 width = qint64(double(zoomBar->maximum() - zoomBar->minimum()) / windowFraction);
    qint64 left = zoomBar->minimum();
    const qint64 step = std::max<qint64>(1, (zoomBar->maximum() - zoomBar->minimum() - width) / 200);
    view->repaintAll();
    // Each frame moves the window, as a drag of the zoom bar's span does.
    for (auto _ : state) {
        left += step;
        if (left + width > zoomBar->maximum())
            left = zoomBar->minimum();
        zoomBar->setSlider(left, left + width);
        view->repaintAll();
    }
    state.counters["stripes"] = double(view->stripes->scopeWidgets().size());
}

void markerDrag(benchmark::State& state, bool fiveStripes)
{
    DeepView* view = deepView();
    if (fiveStripes)
        view->spreadOverFiveStripes();
    ZoomBar* zoomBar = view->zoomBar;
    zoomBar->setSlider(zoomBar->minimum(), zoomBar->maximum());
    ScopeWidget* stripe = view->stripes->scopeWidgets().constFirst();
    view->repaintAll();
    ScopeMarker* marker = view->stripes->scene()->markers().constFirst();
    const QRect plot = stripe->layout()->plotArea();
    marker->setPosition(0, stripe->timeAt(QPoint(plot.left() + 100, 0)));
    marker->setPosition(1, stripe->timeAt(QPoint(plot.right() - 10, 0)));
    const int startX = plot.left() + int((marker->position(0) - stripe->leftIndex()) * plot.width()
                                         / (stripe->rightIndex() - stripe->leftIndex()));
    const QPointF start(startX, plot.center().y());
    QMouseEvent press(QEvent::MouseButtonPress, start, stripe->mapToGlobal(start), Qt::LeftButton, Qt::LeftButton,
                      Qt::NoModifier);
    QCoreApplication::sendEvent(stripe, &press);
    int dx = 0;
    for (auto _ : state) {
        dx = (dx + 3) % 600;
        const QPointF position(startX + dx, plot.center().y());
        QMouseEvent move(QEvent::MouseMove, position, stripe->mapToGlobal(position), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(stripe, &move);
        view->repaintAll();
    }
    QMouseEvent release(QEvent::MouseButtonRelease, start, stripe->mapToGlobal(start), Qt::LeftButton, Qt::NoButton,
                        Qt::NoModifier);
    QCoreApplication::sendEvent(stripe, &release);
    state.counters["stripes"] = double(view->stripes->scopeWidgets().size());
}

void BM_ZoomBarDragWholeRecording(benchmark::State& state) { zoomBarDrag(state, false, 1.05); }
void BM_ZoomBarDragTenthOfRecording(benchmark::State& state) { zoomBarDrag(state, false, 10.0); }
void BM_MarkerDrag(benchmark::State& state) { markerDrag(state, false); }
void BM_ZoomBarDragFiveStripes(benchmark::State& state) { zoomBarDrag(state, true, 10.0); }
void BM_ZoomBarDragFiveStripesWholeRecording(benchmark::State& state) { zoomBarDrag(state, true, 1.05); }
void BM_MarkerDragFiveStripes(benchmark::State& state) { markerDrag(state, true); }
void BM_DenseZoomBarDragWholeRecording(benchmark::State& state) { zoomBarDrag(state, false, 1.05, true); }
void BM_DenseZoomBarDragFiveStripesWholeRecording(benchmark::State& state) { zoomBarDrag(state, true, 1.05, true); }

} // namespace

BENCHMARK(BM_ZoomBarDragWholeRecording)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ZoomBarDragTenthOfRecording)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_MarkerDrag)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ZoomBarDragFiveStripes)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_ZoomBarDragFiveStripesWholeRecording)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_MarkerDragFiveStripes)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_DenseZoomBarDragWholeRecording)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_DenseZoomBarDragFiveStripesWholeRecording)->Unit(benchmark::kMillisecond)->Iterations(60)->Repetitions(5)->ReportAggregatesOnly(true);

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeBench"));
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
