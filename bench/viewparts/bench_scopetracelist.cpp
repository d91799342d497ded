// SPDX-License-Identifier: GPL-3.0-or-later
// The time-domain side panels under load: the trace list with five full
// stripes (160 traces), its quick-measure column at a pointer move, and the
// time base edit.
#include "scopestripeswidget.h"
#include "scopetimewidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopetracelist.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QStandardPaths>
#include <QtWidgets/QApplication>
#include <QtWidgets/QLineEdit>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int stripeCount = 5;
constexpr int tracesPerStripe = 32;
constexpr int sampleCount = 10000;

struct Scene {
    QObject owner;
    QList<ScopeTrace*> traces;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;

    Scene()
    {
        zoomBar.setRange(-1000000000, 1000000000);
        stripes.setZoomBar(&zoomBar);
        for (int s = 0; s < stripeCount; ++s) {
            ScopeWidget* stripe = stripes.addStripe();
            for (int t = 0; t < tracesPerStripe; ++t) {
                auto* trace = new ScopeTrace(&owner, unsigned(s * tracesPerStripe + t));
                trace->setName(QStringLiteral("Kanal %1").arg(traces.size()));
                trace->setPhysicalDatatype(7);
                trace->setDecimalPlaces(3);
                trace->setTimeBase(10);
                QVector<double> samples(sampleCount);
                for (int k = 0; k < sampleCount; ++k)
                    samples[k] = k * 0.25 + t;
                trace->setSamples(samples);
                stripe->traceFilter()->addTrace(trace);
                traces.append(trace);
            }
        }
        QCoreApplication::processEvents();
    }
};

void BM_TraceListFirstBuild(benchmark::State& state)
{
    Scene scene;
    for (auto _ : state) {
        ScopeTraceList list;
        list.setStripesWidget(&scene.stripes);
        benchmark::DoNotOptimize(list.topLevelItemCount());
    }
    state.counters["traces"] = double(scene.traces.size());
}
BENCHMARK(BM_TraceListFirstBuild)->Unit(benchmark::kMillisecond);

void BM_TraceListRebuild(benchmark::State& state)
{
    Scene scene;
    ScopeTraceList list;
    list.setStripesWidget(&scene.stripes);
    for (auto _ : state) {
        list.updateItems();
        benchmark::DoNotOptimize(list.topLevelItemCount());
    }
    state.counters["traces"] = double(scene.traces.size());
}
BENCHMARK(BM_TraceListRebuild)->Unit(benchmark::kMillisecond);

// One pointer move of the quick-measure cursor: every trace answers and the
// list shows the 160 values and the time in its header.
void BM_TraceListQuickMeasureMove(benchmark::State& state)
{
    Scene scene;
    ScopeTraceList list;
    list.setStripesWidget(&scene.stripes);
    qint64 time = 0;
    for (auto _ : state) {
        time = (time + 1000) % (sampleCount * 1000);
        for (ScopeTrace* trace : std::as_const(scene.traces))
            trace->publishQuickMeasureRequest(time);
    }
    state.counters["traces"] = double(scene.traces.size());
}
BENCHMARK(BM_TraceListQuickMeasureMove)->Unit(benchmark::kMicrosecond);

void BM_TimeWidgetEdit(benchmark::State& state)
{
    ZoomBar zoomBar;
    zoomBar.setRange(-1000000000, 1000000000);
    zoomBar.setSlider(0, 100000000);
    ScopeTimeWidget widget;
    widget.setZoomBar(&zoomBar);
    auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"));
    const QString texts[] = {QStringLiteral("2.5 ms/DIV"), QStringLiteral("250 us")};
    int i = 0;
    for (auto _ : state) {
        edit->setText(texts[i++ % 2]);
        QMetaObject::invokeMethod(edit, "textCommited", Q_ARG(QString, edit->text()));
        benchmark::DoNotOptimize(zoomBar.sliderLeft());
    }
}
BENCHMARK(BM_TimeWidgetEdit)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
