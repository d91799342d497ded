// SPDX-License-Identifier: GPL-3.0-or-later
// The sample generator on big recordings: the drive simulation with the
// read-out text it writes, and the whole shot archive made by the library.
#include "samplegenerator.h"

#include <QtCore/QCoreApplication>

#include <benchmark/benchmark.h>

namespace {

void readOut(benchmark::State& state)
{
    const SampleGenerator generator(state.range(0), int(state.range(1)));
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray text = generator.readOut(SampleGenerator::Recording::Step);
        bytes += text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(bytes);
}

void shotArchive(benchmark::State& state)
{
    const SampleGenerator generator(state.range(0), int(state.range(1)));
    qint64 bytes = 0;
    for (auto _ : state) {
        const QByteArray text = generator.shotArchive(SampleGenerator::Recording::Step);
        bytes += text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetBytesProcessed(bytes);
}

} // namespace

// Frames, channels (0 = the recording's own seven).
BENCHMARK(readOut)->Args({100000, 0})->Args({1000000, 0})->Unit(benchmark::kMillisecond);
BENCHMARK(shotArchive)->Args({100000, 0})->Args({1000000, 0})->Args({100000, 32})->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
