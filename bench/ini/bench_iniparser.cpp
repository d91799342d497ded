// SPDX-License-Identifier: GPL-3.0-or-later
// Parsing, looking up and writing a shot archive's worth of data rows:
// one section of 1,000,000 "Data_N" keys, about 100 MB of text.
#include "iniparser.h"

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>

#include <benchmark/benchmark.h>

#include <malloc.h>

#include <vector>

using KlIniParser::IniParser;

namespace {

constexpr int RowCount = 1000000;

const QByteArray& documentText()
{
    static const QByteArray text = [] {
        QByteArray result;
        result.reserve(qsizetype(RowCount) * 104 + 1024);
        result += ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n";
        result += "[Archive]\r\nID={5d9e7a2c-1b44-4c1e-9a0e-7f3c2b1a0d99}\r\nName=Bench\r\n\r\n";
        result += "[Data]\r\n";
        QRandomGenerator random(17);
        for (int i = 0; i < RowCount; ++i) {
            result += "Data_";
            result += QByteArray::number(i);
            result += '=';
            // Eight channel values, as a recording row holds them.
            for (int c = 0; c < 8; ++c) {
                if (c)
                    result += ';';
                result += QByteArray::number(random.bounded(2000000) - 1000000.0 + 0.125, 'g', 9);
            }
            result += "\r\n";
        }
        return result;
    }();
    return text;
}

// The peak resident set size since the last reset, in bytes.
double peakResidentBytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').constFirst().toDouble() * 1024.0;
    }
    return 0;
}

// Writing 5 to clear_refs resets the peak resident set size (Linux >= 4.0).
// Freed heap memory is handed back first, so that an iteration does not
// inherit the last one's leftovers.
void resetPeakResident()
{
    malloc_trim(0);
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    if (clearRefs.open(QIODevice::WriteOnly))
        clearRefs.write("5");
}

void reportMemory(benchmark::State& state, double peak)
{
    const double textBytes = double(documentText().size());
    state.counters["text_MB"] = textBytes / 1e6;
    state.counters["peak_RSS_MB"] = peak / 1e6;
    state.counters["peak_RSS_per_text"] = peak / textBytes;
}

void BM_Parse(benchmark::State& state)
{
    const QByteArray& text = documentText();
    double peak = 0;
    for (auto _ : state) {
        resetPeakResident();
        IniParser parser;
        parser.setIniText(text);
        benchmark::DoNotOptimize(parser.sectionCount());
        peak = std::max(peak, peakResidentBytes());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * text.size());
    reportMemory(state, peak);
}
BENCHMARK(BM_Parse)->Unit(benchmark::kMillisecond);

void BM_Lookup(benchmark::State& state)
{
    IniParser parser;
    parser.setIniText(documentText());
    const KlIniParser::IniSection* data = parser.section("Data");
    std::vector<QByteArray> keys;
    keys.reserve(RowCount);
    QRandomGenerator random(23);
    for (int i = 0; i < RowCount; ++i)
        keys.push_back("Data_" + QByteArray::number(random.bounded(RowCount)));
    for (auto _ : state) {
        qsizetype total = 0;
        for (const QByteArray& key : keys)
            total += data->valueView(key).size();
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * RowCount);
}
BENCHMARK(BM_Lookup)->Unit(benchmark::kMillisecond);

void BM_IterateRows(benchmark::State& state)
{
    // The model's way through the data rows: in document order, by index.
    IniParser parser;
    parser.setIniText(documentText());
    const KlIniParser::IniSection* data = parser.section("Data");
    for (auto _ : state) {
        qsizetype total = 0;
        for (qsizetype i = 0, n = data->count(); i < n; ++i)
            total += data->keyAt(i).size() + data->valueAt(i).size();
        benchmark::DoNotOptimize(total);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * data->count());
}
BENCHMARK(BM_IterateRows)->Unit(benchmark::kMillisecond);

void BM_Write(benchmark::State& state)
{
    IniParser parser;
    parser.setIniText(documentText());
    double peak = 0;
    qsizetype written = 0;
    for (auto _ : state) {
        resetPeakResident();
        const QByteArray text = parser.getIniTextWithoutByteOrderMarker();
        written = text.size();
        benchmark::DoNotOptimize(text.constData());
        peak = std::max(peak, peakResidentBytes());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * written);
    reportMemory(state, peak);
}
BENCHMARK(BM_Write)->Unit(benchmark::kMillisecond);

void BM_SetValueRows(benchmark::State& state)
{
    // The model writing every row back with a new value.
    IniParser parser;
    parser.setIniText(documentText());
    KlIniParser::IniSection* data = parser.section("Data");
    std::vector<QByteArray> keys;
    keys.reserve(RowCount);
    for (int i = 0; i < RowCount; ++i)
        keys.push_back("Data_" + QByteArray::number(i));
    int round = 0;
    for (auto _ : state) {
        const QByteArray value = "1;2;3;" + QByteArray::number(++round);
        for (const QByteArray& key : keys)
            data->setValue(key, value);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * RowCount);
}
BENCHMARK(BM_SetValueRows)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    // A fixed threshold: large blocks are always mapped and unmapped again
    // (glibc would otherwise raise it after the first large free and keep
    // freed blocks in the heap), so the peak RSS is that of the code measured.
    mallopt(M_MMAP_THRESHOLD, 1024 * 1024);
    documentText();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
