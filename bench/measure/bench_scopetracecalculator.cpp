// SPDX-License-Identifier: GPL-3.0-or-later
// Statistics of the trace calculator over 1,000,000 samples: the update that
// a marker move triggers, and everything the measurement table asks for.
#include "scopetrace.h"
#include "scopetracecalculator.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QStandardPaths>

#include <benchmark/benchmark.h>

#include <cmath>

namespace {

constexpr int SampleCount = 1000000;

struct Fixture
{
    Fixture()
    {
        QVector<double> samples(SampleCount);
        for (int k = 0; k < SampleCount; ++k)
            samples[k] = 100.0 * std::sin(0.001 * k) + 0.01 * (k % 17);
        trace = new ScopeTrace(&shot, 0);
        trace->setSamples(samples);
        trace->setTimeBase(10);
        calculator.setScopeTrace(trace);
    }

    QObject shot;
    ScopeTrace* trace = nullptr;
    ScopeTraceCalculator calculator;
};

void BM_StatisticsUpdate(benchmark::State& state)
{
    Fixture fixture;
    // Markers span the whole recording; B alternates by one sample so that
    // every iteration runs the full update.
    qint64 b = qint64(SampleCount - 1) * 1000;
    for (auto _ : state) {
        b ^= 1000;
        fixture.calculator.setMarkerTimes(0, b);
        benchmark::DoNotOptimize(fixture.calculator.average());
    }
    state.SetItemsProcessed(state.iterations() * SampleCount);
}

void BM_AllMeasurements(benchmark::State& state)
{
    Fixture fixture;
    qint64 b = qint64(SampleCount - 1) * 1000;
    for (auto _ : state) {
        b ^= 1000;
        fixture.calculator.setMarkerTimes(0, b);
        ScopeTraceCalculator& c = fixture.calculator;
        benchmark::DoNotOptimize(c.valueAtA() + c.valueAtB() + c.valueDifference() + c.average()
                                 + c.gradient() + c.integral() + c.minimum() + c.maximum() + c.peak()
                                 + c.rmsValue() + c.standardDeviation());
    }
    state.SetItemsProcessed(state.iterations() * SampleCount);
}

BENCHMARK(BM_StatisticsUpdate)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_AllMeasurements)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

} // namespace

int main(int argc, char** argv)
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
