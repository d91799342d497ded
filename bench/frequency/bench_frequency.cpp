// SPDX-License-Identifier: GPL-3.0-or-later
// Amplitude spectra: one channel of a long interval, and 16 channels of
// 65536 samples, each with the plans prepared from scratch ("cold") and with
// the plan of the length already cached ("warm").
#include "frequency.h"
#include "frequencytransform.h"

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <random>

namespace {

QVector<double> signal(qsizetype count, unsigned seed)
{
    QVector<double> x(count);
    std::mt19937_64 generator(seed);
    std::normal_distribution<double> noise(0.0, 0.1);
    for (qsizetype n = 0; n < count; ++n)
        x[n] = 3.0 * std::sin(0.01 * double(n)) + noise(generator) + 1.5;
    return x;
}

void forgetPlans()
{
    FrequencyTransform::instance()->clearCache();
    fftw_forget_wisdom();
}

void BM_OneChannelCold(benchmark::State& state)
{
    const QVector<double> x = signal(state.range(0), 1);
    for (auto _ : state) {
        state.PauseTiming();
        forgetPlans();
        state.ResumeTiming();
        benchmark::DoNotOptimize(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming));
    }
}

void BM_OneChannelWarm(benchmark::State& state)
{
    const QVector<double> x = signal(state.range(0), 1);
    forgetPlans();
    benchmark::DoNotOptimize(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming));
    for (auto _ : state)
        benchmark::DoNotOptimize(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming));
}

void BM_SixteenChannelsCold(benchmark::State& state)
{
    QVector<QVector<double>> channels;
    for (unsigned c = 0; c < 16; ++c)
        channels.append(signal(state.range(0), c + 1));
    for (auto _ : state) {
        state.PauseTiming();
        forgetPlans();
        state.ResumeTiming();
        for (const QVector<double>& x : channels)
            benchmark::DoNotOptimize(Frequency::meanFreeAmplitudeSpectrum(x, Frequency::Hamming));
    }
}

// Lengths: a power of two, 10^6, primes near 10^6 and 2^20, 2 × a large
// prime, 47 × a large prime (the chirp convolution), and lengths with
// moderate prime factors that FFTW transforms directly (37, 31, 41, 997,
// 1009 × 1021).
#define LENGTHS ->Arg(1 << 20)->Arg(1000000)->Arg(1000003)->Arg(1048573)->Arg(1000018)->Arg(1000019)->Arg(37 * 32768)->Arg(999999)->Arg(923521)->Arg(1048575)->Arg(1009 * 1021)->Arg(997 * 1024)

BENCHMARK(BM_OneChannelCold) LENGTHS ->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)->ReportAggregatesOnly(true)->UseRealTime();
BENCHMARK(BM_OneChannelWarm) LENGTHS ->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)->ReportAggregatesOnly(true)->UseRealTime();
BENCHMARK(BM_SixteenChannelsCold)->Arg(65536)->Unit(benchmark::kMillisecond)->Iterations(3)->Repetitions(5)->ReportAggregatesOnly(true)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
