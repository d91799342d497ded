// SPDX-License-Identifier: GPL-3.0-or-later
// Loading a recording: the data rows of a shot archive into traces.
//
//   BM_LoadRows        ScopeShot::load() on an archive whose text is already
//                      parsed: the row parsing and trace creation alone;
//                      bytes_per_second counts the row text.
//   BM_ReadFields      ScopeNumbers::readField() over the row text joined into
//                      one field list: the number reading alone.
//   BM_LoadFromBytes   fromByteArray() + load(): what opening a recording
//                      costs; peak_rss_ratio is the growth of the peak
//                      resident memory over the process before the text was
//                      made, divided by the text size.
// archive_rss_ratio is the same after fromByteArray() alone;
// archive_steady_ratio and loaded_steady_ratio are the resident memory (not
// the peak) after fromByteArray() and after load(). All on
// 1,000,000 frames × 8 channels. Times and rates are CPU time of the one
// thread that does the work (the machine may be shared). Run with
//   bench_shotload --benchmark_repetitions=5 --benchmark_report_aggregates_only=true

#include "scopenumbers.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>

#include <benchmark/benchmark.h>

#include <cmath>
#include <malloc.h>
#include <cstdio>
#include <memory>

namespace {

constexpr int frameCount = 1000000;
constexpr int channelCount = 8;

qint64 statusKiB(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').first().toLongLong();
    }
    return 0;
}

void resetPeak()
{
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    if (clearRefs.open(QIODevice::WriteOnly))
        clearRefs.write("5");
}

qint64 baselineKiB = 0;
qint64 rowBytes = 0;

// A recording as the drive's read-out writes it: a frame counter and eight
// values with three decimals per row.
const QByteArray& archiveText()
{
    static const QByteArray text = [] {
        baselineKiB = statusKiB("VmRSS:");
        QByteArray t;
        t.reserve(qsizetype(frameCount) * 80 + 4096);
        t += ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n[Archive]\r\nID=bench\r\nName=bench\r\n\r\n"
             "[ScopeShot]\r\nTimeBase=62.5\r\n\r\n[Data]\r\nChannelCount=8\r\nFrameCount=1000000\r\n"
             "TriggerIndex=500000\r\n";
        char row[256];
        for (int f = 0; f < frameCount; ++f) {
            int n = std::snprintf(row, sizeof row, "%d", f);
            for (int c = 0; c < channelCount; ++c)
                n += std::snprintf(row + n, sizeof row - size_t(n), ";%.3f",
                                   (c + 1) * 100.0 * std::sin(f * 0.001 * (c + 1)));
            t += "Data_";
            t += QByteArray::number(f);
            t += '=';
            t.append(row, n);
            t += "\r\n";
            rowBytes += n;
        }
        for (int c = 0; c < channelCount; ++c)
            t += "\r\n[ScopeChannel_" + QByteArray::number(c)
                + "]\r\nSourceType=1\r\nName=Channel\r\nPhysicalDatatype=6\r\nDecimalPlaces=3\r\n";
        return t;
    }();
    return text;
}

void BM_ReadFields(benchmark::State& state)
{
    // The row values (after "Data_N=") joined by ";".
    const QByteArray& text = archiveText();
    QByteArray fields;
    fields.reserve(rowBytes + frameCount);
    qsizetype pos = 0;
    while ((pos = text.indexOf("\nData_", pos)) >= 0) {
        const qsizetype begin = text.indexOf('=', pos) + 1;
        const qsizetype end = text.indexOf('\r', begin);
        fields += text.mid(begin, end - begin);
        fields += ';';
        pos = end;
    }
    for (auto _ : state) {
        const char* p = fields.constData();
        const char* const end = p + fields.size();
        double sum = 0.0;
        while (p < end) {
            double value = 0.0;
            p = ScopeNumbers::readField(p, end, ';', &value) + 1;
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetBytesProcessed(state.iterations() * fields.size());
}
BENCHMARK(BM_ReadFields)->Unit(benchmark::kMillisecond);

void BM_LoadRows(benchmark::State& state)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->fromByteArray(archiveText())) {
        state.SkipWithError("archive text not accepted");
        return;
    }
    for (auto _ : state) {
        ScopeShot shot;
        shot.setArchive(archive.get());
        benchmark::DoNotOptimize(shot.load());
        state.PauseTiming();
        if (shot.channelNumbers().size() != channelCount || shot.trace(7)->samples().size() != frameCount)
            state.SkipWithError("incomplete recording");
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * rowBytes);
}
BENCHMARK(BM_LoadRows)->Unit(benchmark::kMillisecond);

void BM_LoadFromBytes(benchmark::State& state)
{
    const QByteArray& text = archiveText();
    double ratio = 0.0;
    double archiveRatio = 0.0;
    double archiveSteadyRatio = 0.0;
    double loadedRatio = 0.0;
    for (auto _ : state) {
        state.PauseTiming();
        // Hand memory freed by the last iteration back, so that it does not
        // count as resident in this one.
        malloc_trim(0);
        resetPeak();
        state.ResumeTiming();
        {
            std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
            archive->fromByteArray(text);
            state.PauseTiming();
            archiveRatio = double(statusKiB("VmHWM:") - baselineKiB) * 1024.0 / double(text.size());
            archiveSteadyRatio = double(statusKiB("VmRSS:") - baselineKiB) * 1024.0 / double(text.size());
            state.ResumeTiming();
            ScopeShot shot;
            shot.setArchive(archive.get());
            benchmark::DoNotOptimize(shot.load());
            state.PauseTiming();
            ratio = double(statusKiB("VmHWM:") - baselineKiB) * 1024.0 / double(text.size());
            loadedRatio = double(statusKiB("VmRSS:") - baselineKiB) * 1024.0 / double(text.size());
        }
        state.ResumeTiming();
    }
    state.counters["text_MB"] = double(text.size()) / 1e6;
    state.counters["peak_rss_ratio"] = ratio;
    state.counters["archive_rss_ratio"] = archiveRatio;
    state.counters["archive_steady_ratio"] = archiveSteadyRatio;
    state.counters["loaded_steady_ratio"] = loadedRatio;
    state.SetBytesProcessed(state.iterations() * text.size());
}
BENCHMARK(BM_LoadFromBytes)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QStandardPaths::setTestModeEnabled(true);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    archiveText();
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
