// SPDX-License-Identifier: GPL-3.0-or-later
// How long the workbench takes to list a folder that holds one big recording,
// and how long one autosave of such a recording blocks the GUI thread.
#include "workbenchrepository.h"

#include "scopeshotarchive.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

#include <benchmark/benchmark.h>

#include <map>
#include <memory>

namespace {

constexpr int channelCount = 8;

QByteArray readOut(int frames)
{
    QByteArray text;
    text.reserve(qsizetype(frames) * 80);
    text += "[Data]\r\nChannelCount=" + QByteArray::number(channelCount) + "\r\nFrameCount="
        + QByteArray::number(frames) + "\r\nTriggerIndex=" + QByteArray::number(frames / 5)
        + "\r\nSerialNumber=B1\r\nLivingSpace=1\r\nStartTime=1\r\nTriggerTime=2\r\n";
    quint32 state = 12345;
    for (int i = 0; i < frames; ++i) {
        text += "Data_" + QByteArray::number(i) + '=' + QByteArray::number(i);
        for (int c = 0; c < channelCount; ++c) {
            state = state * 1664525u + 1013904223u;
            text += ';' + QByteArray::number(double(state >> 8) / 65536.0 - 128.0, 'f', 3);
        }
        text += "\r\n";
    }
    text += "\r\n[ScopeShot]\r\nTimeBase=62.5\r\n";
    for (int c = 0; c < channelCount; ++c) {
        text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\nName=Kanal "
            + QByteArray::number(c + 1) + "\r\nMeasure=V\r\nDecimalPlaces=3\r\nPhysicalDatatype=8\r\n";
    }
    return text;
}

// One folder per size, made once.
const QString& folderWith(int frames)
{
    static std::map<int, std::unique_ptr<QTemporaryDir>> folders;
    static std::map<int, QString> paths;
    auto it = paths.find(frames);
    if (it != paths.end())
        return it->second;
    auto dir = std::make_unique<QTemporaryDir>();
    std::unique_ptr<ScopeShotArchive> shot(ScopeShotArchive::create(nullptr));
    shot->createFromReadOut(readOut(frames));
    QFile file(QDir(dir->path()).filePath(QStringLiteral("gross.ovxshot")));
    if (file.open(QIODevice::WriteOnly))
        file.write(shot->toByteArray());
    const QString path = dir->path();
    folders.emplace(frames, std::move(dir));
    return paths.emplace(frames, path).first->second;
}

void BM_OpenFolder(benchmark::State& state)
{
    const QString& folder = folderWith(int(state.range(0)));
    for (auto _ : state) {
        WorkbenchRepository repository;
        repository.setFolder(folder);
        benchmark::DoNotOptimize(repository.files().size());
    }
    state.SetLabel("8 channels");
}

void BM_Autosave(benchmark::State& state)
{
    const QString& folder = folderWith(int(state.range(0)));
    WorkbenchRepository repository;
    repository.setFolder(folder);
    ScopeElementArchive* archive = repository.archive(repository.files().value(0));
    int n = 0;
    for (auto _ : state) {
        archive->setName(QStringLiteral("Name %1").arg(++n));
        if (!repository.saveNow())
            state.SkipWithError("save failed");
    }
    state.SetLabel("8 channels, atomic write");
}

}

BENCHMARK(BM_OpenFolder)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime()
    ->Iterations(3)->Repetitions(5)->ReportAggregatesOnly(true);
BENCHMARK(BM_Autosave)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond)->UseRealTime()
    ->Iterations(3)->Repetitions(5)->ReportAggregatesOnly(true);

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
