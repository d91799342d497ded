// SPDX-License-Identifier: GPL-3.0-or-later
// CSV export of a large shot archive: 1,000,000 frames × 8 channels.
// Reports the output rate (bytes_per_second) of exportCsv, file writing included.
#include "scopeshotarchive.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>

namespace {

QByteArray makeArchive(int frames, int channels)
{
    QByteArray text;
    text.reserve(qsizetype(frames) * (12 + channels * 11) + 4096);
    text += ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n";
    text += "[Archive]\r\nID=bench\r\nName=Benchmark\r\n\r\n";
    text += "[ScopeShot]\r\nTimeBase=62.5\r\n\r\n";
    for (int c = 0; c < channels; ++c) {
        text += "[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\nName=Kanal "
            + QByteArray::number(c) + "\r\nMeasure=V\r\n\r\n";
    }
    text += "[Data]\r\nChannelCount=" + QByteArray::number(channels) + "\r\nFrameCount="
        + QByteArray::number(frames) + "\r\nTriggerIndex=" + QByteArray::number(frames / 4) + "\r\n";
    std::mt19937 random(42);
    std::uniform_real_distribution<double> value(-3000.0, 3000.0);
    for (int i = 0; i < frames; ++i) {
        text += "Data_";
        text += QByteArray::number(i);
        text += '=';
        text += QByteArray::number(i);
        for (int c = 0; c < channels; ++c) {
            text += ';';
            text += QByteArray::number(value(random), 'f', 4);
        }
        text += "\r\n";
    }
    return text;
}

void BM_ExportCsv(benchmark::State& state)
{
    const int frames = int(state.range(0));
    const int channels = int(state.range(1));
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->fromByteArray(makeArchive(frames, channels))) {
        state.SkipWithError("archive did not load");
        return;
    }
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/bench_csvexport-XXXXXX"));
    const QString fileName = dir.filePath(QStringLiteral("export.csv"));
    qint64 written = 0;
    for (auto _ : state) {
        if (!archive->exportCsv(fileName)) {
            state.SkipWithError("export failed");
            return;
        }
        written += QFileInfo(fileName).size();
    }
    state.SetBytesProcessed(written);
    state.counters["file_MB"] = double(QFileInfo(fileName).size()) / 1e6;
}

} // namespace

BENCHMARK(BM_ExportCsv)->Args({1000000, 8})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ExportCsv)->Args({10000, 8})->Unit(benchmark::kMillisecond)->UseRealTime();

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
