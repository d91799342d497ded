// SPDX-License-Identifier: GPL-3.0-or-later
// Painting one stripe of 16 traces with the whole recording visible, 1600
// pixels wide: the cost must not grow with the sample count.
#include "scopelayout.h"
#include "scopetrace.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPainter>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int traceCount = 16;

struct Stripe
{
    ScopeLayout layout;
    std::vector<std::unique_ptr<ScopeTrace>> traces;
    QImage image{1604 + 0, 600, QImage::Format_ARGB32_Premultiplied};
    qint64 right = 0;

    Stripe(int samples, bool noisy)
    {
        // 1604 pixels give divisions of 160 and a grid 1601 pixels wide.
        layout.setGeometry(QRect(0, 0, image.width(), image.height()));
        std::mt19937 random(1);
        std::normal_distribution<double> noise(0.0, 0.5);
        for (int t = 0; t < traceCount; ++t) {
            QVector<double> values(samples);
            for (int i = 0; i < samples; ++i)
                values[i] = 10.0 * std::sin(i * 6.283185307179586 * (t + 1) / samples)
                            + (noisy ? noise(random) : 0.0);
            auto trace = std::make_unique<ScopeTrace>(nullptr, unsigned(t));
            trace->setColor(QColor::fromHsv(t * 22, 255, 255));
            trace->setSamples(values);
            trace->autoScale();
            traces.push_back(std::move(trace));
        }
        right = qint64(samples - 1) * 100;
    }

    void paint(bool everySample, qint64 shift = 0)
    {
        image.fill(Qt::black);
        QPainter painter(&image);
        for (const auto& trace : traces) {
            if (everySample)
                trace->paintEverySample(&layout, &painter, shift, right + shift);
            else
                trace->paint(&layout, &painter, shift, right + shift);
        }
    }
};

// Smooth curves: sines of one to sixteen periods over the recording.
void BM_PaintStripe(benchmark::State& state)
{
    Stripe stripe(int(state.range(0)), false);
    for (auto _ : state) {
        stripe.paint(false);
        benchmark::DoNotOptimize(stripe.image.constBits());
    }
    state.SetLabel("16 traces, envelope");
}

// The same with a time range that moves by one sample at every paint, as
// while panning: the pixel columns are recomputed from the envelope each time.
void BM_PaintStripePanning(benchmark::State& state)
{
    Stripe stripe(int(state.range(0)), false);
    qint64 shift = 0;
    for (auto _ : state) {
        shift = (shift + 100) % 100000;
        stripe.paint(false, shift);
        benchmark::DoNotOptimize(stripe.image.constBits());
    }
    state.SetLabel("16 traces, envelope, range moving");
}

// Noisy curves: every pixel column of a dense recording holds a band some
// 40 pixels high, so the picture itself has many more pixels to fill.
void BM_PaintStripeNoisy(benchmark::State& state)
{
    Stripe stripe(int(state.range(0)), true);
    for (auto _ : state) {
        stripe.paint(false);
        benchmark::DoNotOptimize(stripe.image.constBits());
    }
    state.SetLabel("16 noisy traces, envelope");
}

void BM_PaintStripeEverySample(benchmark::State& state)
{
    Stripe stripe(int(state.range(0)), false);
    for (auto _ : state) {
        stripe.paint(true);
        benchmark::DoNotOptimize(stripe.image.constBits());
    }
    state.SetLabel("16 traces, every sample");
}

void BM_SetSamples(benchmark::State& state)
{
    QVector<double> values(int(state.range(0)));
    for (int i = 0; i < values.size(); ++i)
        values[i] = std::sin(i * 0.001);
    for (auto _ : state) {
        ScopeTrace trace(nullptr, 0);
        values[0] += 1.0; // a new vector every time
        trace.setSamples(values);
        benchmark::DoNotOptimize(trace.samples().constData());
    }
}

} // namespace

BENCHMARK(BM_PaintStripe)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_PaintStripePanning)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_PaintStripeNoisy)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(5)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_PaintStripeEverySample)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(3)
    ->ReportAggregatesOnly(true);
BENCHMARK(BM_SetSamples)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(3)->ReportAggregatesOnly(true);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
