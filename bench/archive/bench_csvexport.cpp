// SPDX-License-Identifier: GPL-3.0-or-later
// CSV export of a large shot archive: 1,000,000 frames × 8 channels.
// Reports the output rate (bytes_per_second) of exportCsv: into /dev/null
// (CPU time of the export itself) and into a regular file (real time, disk included).
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

std::unique_ptr<ScopeShotArchive> loadArchive(benchmark::State& state)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->fromByteArray(makeArchive(int(state.range(0)), int(state.range(1))))) {
        state.SkipWithError("archive did not load");
        return nullptr;
    }
    return archive;
}

// End to end into a regular file: temporary file, write, fsync and rename,
// so the figure depends on the disk as much as on the code.
void BM_ExportCsvToFile(benchmark::State& state)
{
    const auto archive = loadArchive(state);
    if (!archive)
        return;
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

// The export's own work: the same text written to /dev/null (a device is
// written directly), timed by CPU time of the exporting thread.
void BM_ExportCsvToNull(benchmark::State& state)
{
    const auto archive = loadArchive(state);
    if (!archive)
        return;
    QTemporaryDir dir(QDir::tempPath() + QStringLiteral("/bench_csvexport-XXXXXX"));
    const QString sizeFile = dir.filePath(QStringLiteral("size.csv"));
    if (!archive->exportCsv(sizeFile)) {
        state.SkipWithError("export failed");
        return;
    }
    const qint64 size = QFileInfo(sizeFile).size();
    const QString nullDevice = QStringLiteral("/dev/null");
    for (auto _ : state) {
        if (!archive->exportCsv(nullDevice)) {
            state.SkipWithError("export to /dev/null failed");
            return;
        }
    }
    state.SetBytesProcessed(size * qint64(state.iterations()));
    state.counters["file_MB"] = double(size) / 1e6;
}

} // namespace

BENCHMARK(BM_ExportCsvToNull)->Args({1000000, 8})->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ExportCsvToFile)->Args({1000000, 8})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(BM_ExportCsvToNull)->Args({10000, 8})->Unit(benchmark::kMillisecond);

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
