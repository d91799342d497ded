// SPDX-License-Identifier: GPL-3.0-or-later
// The frequency view with many long spectra: a chart update with 16 spectra
// of 500,000 points (series rebuilt for the plot's pixel columns and both
// axis ranges set again), a zoom and a scroll of the frequency axis, drawing
// the chart,
// and a whole analysis (setData) of 16 traces × 65,536 samples.
#include "axisscrollbar.h"
#include "frequencyplotchart.h"
#include "frequencyplottrace.h"
#include "frequencyplotview.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"
#include "frequencyview.h"
#include "traceinformation.h"

#include <QtCharts/QChart>
#include <QtCharts/QLogValueAxis>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>

namespace {

class BenchTraceInformation : public TraceInformation
{
public:
    BenchTraceInformation(const QVector<double>& samples, int number)
        : m_samples(samples), m_name(QStringLiteral("Kanal %1").arg(number)),
          m_color(QColor::fromHsv((number * 37) % 360, 200, 230))
    {
        setCachedEndTime(qint64(samples.size() - 1) * 1000);
    }
    QVector<double> samples() const override { return m_samples; }
    QString name() const override { return m_name; }
    QColor color() const override { return m_color; }
    void setColor(const QColor& color) override { m_color = color; }
    double samplingTime() const override { return 10.0; }
    qint64 startTime() const override { return 0; }
    bool isOff() const override { return false; }
    void setOff(bool) override {}

private:
    QVector<double> m_samples;
    QString m_name;
    QColor m_color;
};

QVector<double> signal(qsizetype count, unsigned seed)
{
    QVector<double> x(count);
    std::mt19937_64 generator(seed);
    std::normal_distribution<double> noise(0.0, 0.1);
    for (qsizetype n = 0; n < count; ++n)
        x[n] = 3.0 * std::sin(0.01 * double(n) * (1 + seed % 5)) + noise(generator) + 1.5;
    return x;
}

QList<QSharedPointer<TraceInformation>> traces(int count, qsizetype samples)
{
    QList<QSharedPointer<TraceInformation>> list;
    for (int i = 0; i < count; ++i)
        list << QSharedPointer<TraceInformation>(new BenchTraceInformation(signal(samples, unsigned(i + 1)), i));
    return list;
}

// 16 spectra of 500,000 points, computed once for all chart benchmarks.
struct LongSpectra
{
    LongSpectra()
        : informations(traces(16, 1000000))
    {
        QList<FrequencyTrace*> list;
        for (const auto& information : std::as_const(informations)) {
            auto* trace = new FrequencyTrace(information);
            trace->setInterval(0, 999999, 0);
            list << trace;
        }
        spectrum = std::make_unique<FrequencySpectrum>(list);
        chart = std::make_unique<FrequencyPlotChart>(spectrum.get());
        view = std::make_unique<FrequencyPlotView>(spectrum.get(), chart.get());
        view->resize(1200, 700);
        view->show();
        QApplication::processEvents();
    }
    ~LongSpectra()
    {
        view.reset();
        chart.reset();
        spectrum.reset();
    }
    QList<QSharedPointer<TraceInformation>> informations;
    std::unique_ptr<FrequencySpectrum> spectrum;
    std::unique_ptr<FrequencyPlotChart> chart;
    std::unique_ptr<FrequencyPlotView> view;
};

// Made on first use and deleted before the application object goes.
LongSpectra* sharedSpectra = nullptr;

LongSpectra& longSpectra()
{
    if (!sharedSpectra)
        sharedSpectra = new LongSpectra;
    return *sharedSpectra;
}

void BM_ChartUpdate16x500k(benchmark::State& state)
{
    LongSpectra& spectra = longSpectra();
    for (auto _ : state)
        Q_EMIT spectra.chart->updateAmplitudes();
    state.counters["columns"] = spectra.chart->pixelColumns();
}

// The reduction alone: every amplitude of 16 spectra looked at once.
void BM_ReduceSeries16x500k(benchmark::State& state)
{
    LongSpectra& spectra = longSpectra();
    const QList<FrequencyTrace*> list = spectra.spectrum->traces();
    const double resolution = spectra.spectrum->frequencyResolution();
    const double high = spectra.spectrum->maxFrequency() * 1.2;
    for (auto _ : state) {
        for (FrequencyTrace* trace : list)
            benchmark::DoNotOptimize(FrequencyPlotTrace::reducedPoints(trace->amplitudes(), resolution,
                                                                       resolution * 0.8, high, true, true, 1063));
    }
}

void BM_ChartScroll16x500k(benchmark::State& state)
{
    LongSpectra& spectra = longSpectra();
    // Every repetition starts from the whole frequency range.
    Q_EMIT spectra.chart->updateAmplitudes();
    auto* axis = qobject_cast<QLogValueAxis*>(spectra.chart->xAxis());
    const double low = axis->min();
    const double high = axis->max();
    bool flip = false;
    for (auto _ : state) {
        // A zoom of the frequency axis: the series are rebuilt for the window.
        axis->setRange(flip ? low : low * 10.0, flip ? high : high / 10.0);
        flip = !flip;
    }
}

// The user drags the frequency scroll bar of a zoomed chart.
void BM_ChartScrollbar16x500k(benchmark::State& state)
{
    LongSpectra& spectra = longSpectra();
    Q_EMIT spectra.chart->updateAmplitudes();
    auto* axis = qobject_cast<QLogValueAxis*>(spectra.chart->xAxis());
    axis->setRange(axis->min() * 4.0, axis->max() / 4.0);
    AxisScrollbar* bar = spectra.chart->horizontalScrollbar();
    const int low = bar->minimum();
    const int high = bar->maximum();
    bool flip = false;
    for (auto _ : state) {
        bar->setValue(flip ? low : high);
        flip = !flip;
    }
    Q_EMIT spectra.chart->updateAmplitudes();
}

void BM_ChartDraw16x500k(benchmark::State& state)
{
    LongSpectra& spectra = longSpectra();
    for (auto _ : state)
        benchmark::DoNotOptimize(spectra.view->grab());
}

void BM_FrequencyViewSetData16x65536(benchmark::State& state)
{
    const QList<QSharedPointer<TraceInformation>> informations = traces(16, 65536);
    FrequencyView view;
    view.resize(1200, 700);
    view.show();
    for (auto _ : state) {
        view.setData(informations, 0, 65535, 0);
        QApplication::processEvents();
    }
}

} // namespace

BENCHMARK(BM_ChartUpdate16x500k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReduceSeries16x500k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChartScroll16x500k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChartScrollbar16x500k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ChartDraw16x500k)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_FrequencyViewSetData16x65536)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    delete sharedSpectra;
    return 0;
}
