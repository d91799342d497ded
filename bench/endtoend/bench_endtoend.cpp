// SPDX-License-Identifier: GPL-3.0-or-later
// Opening a deep recording end to end, and painting a stripe zoomed in.
//
//   BM_OpenRecording   the file's bytes → shot archive → traces → first
//                      paint of the scope view. The recording is the file
//                      named by OVSCOPE_BENCH_SHOT (scripts/bench writes it
//                      with "ovscope sample --frames 1000000 --channels 16").
//                      peak_rss_per_file is the growth of the peak resident
//                      memory over the process before the file was read,
//                      divided by the file size; archive_peak_per_file and
//                      loaded_peak_per_file are the same after the archive
//                      took the bytes and after the view loaded the traces.
//   BM_PaintStripeZoomed  one stripe of 16 traces × 1,000,000 samples with
//                      1 % of the recording visible (10,000 samples across
//                      1600 pixels); the range moves every paint.
#include "scopelayout.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopeview.h"
#include "scopewidget.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

#include <cmath>
#include <malloc.h>
#include <memory>
#include <vector>

namespace {

qint64 statusKiB(const char* field)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith(field))
            return line.mid(int(qstrlen(field))).trimmed().split(' ').constFirst().toLongLong();
    }
    return 0;
}

// Freed heap memory is handed back first, then the peak is reset to the
// resident memory now (Linux >= 4.0).
void resetPeak()
{
    malloc_trim(0);
    QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
    if (clearRefs.open(QIODevice::WriteOnly))
        clearRefs.write("5");
}

void BM_OpenRecording(benchmark::State& state)
{
    const QString fileName = qEnvironmentVariable("OVSCOPE_BENCH_SHOT");
    if (fileName.isEmpty() || !QFileInfo::exists(fileName)) {
        state.SkipWithError("OVSCOPE_BENCH_SHOT names no file");
        return;
    }
    const double fileSize = double(QFileInfo(fileName).size());
    double ratio = 0.0;
    double archiveRatio = 0.0;
    double loadedRatio = 0.0;
    int stripes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        resetPeak();
        const qint64 baseline = statusKiB("VmRSS:");
        state.ResumeTiming();
        {
            QObject owner;
            QByteArray bytes;
            {
                QFile file(fileName);
                if (!file.open(QIODevice::ReadOnly)) {
                    state.SkipWithError("cannot read the recording");
                    return;
                }
                bytes = file.readAll();
            }
            ScopeShotArchive* archive = ScopeShotArchive::create(&owner);
            if (!archive->fromByteArray(bytes)) {
                state.SkipWithError("the archive refused the recording");
                return;
            }
            // The view holds what it needs; the file's bytes are not kept.
            bytes = QByteArray();
            state.PauseTiming();
            archiveRatio = double(statusKiB("VmHWM:") - baseline) * 1024.0 / fileSize;
            state.ResumeTiming();
            std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, nullptr));
            view->resize(1600, 1000);
            view->setScopeElement(archive);
            state.PauseTiming();
            loadedRatio = double(statusKiB("VmHWM:") - baseline) * 1024.0 / fileSize;
            state.ResumeTiming();
            view->show();
            QCoreApplication::processEvents();
            const QList<ScopeWidget*> widgets = view->findChildren<ScopeWidget*>();
            for (ScopeWidget* widget : widgets)
                widget->repaint();
            stripes = int(widgets.size());
            state.PauseTiming();
            ratio = double(statusKiB("VmHWM:") - baseline) * 1024.0 / fileSize;
        }
        state.ResumeTiming();
    }
    state.counters["file_MB"] = fileSize / 1e6;
    state.counters["peak_rss_per_file"] = ratio;
    state.counters["archive_peak_per_file"] = archiveRatio;
    state.counters["loaded_peak_per_file"] = loadedRatio;
    state.counters["stripes"] = stripes;
}
BENCHMARK(BM_OpenRecording)->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(5)->UseRealTime();

void BM_PaintStripeZoomed(benchmark::State& state)
{
    constexpr int traceCount = 16;
    const int samples = int(state.range(0));
    ScopeLayout layout;
    QImage image(1604, 600, QImage::Format_ARGB32_Premultiplied);
    layout.setGeometry(QRect(0, 0, image.width(), image.height()));
    std::vector<std::unique_ptr<ScopeTrace>> traces;
    for (int t = 0; t < traceCount; ++t) {
        QVector<double> values(samples);
        for (int i = 0; i < samples; ++i)
            values[i] = 10.0 * std::sin(i * 6.283185307179586 * (t + 1) / samples)
                        + 0.3 * std::sin(i * 6.283185307179586 / 500.0);
        auto trace = std::make_unique<ScopeTrace>(nullptr, unsigned(t));
        trace->setColor(QColor::fromHsv(t * 22, 255, 255));
        trace->setSamples(values);
        trace->autoScale();
        traces.push_back(std::move(trace));
    }
    // A time base of 100 per sample; one hundredth of the recording is shown.
    const qint64 width = qint64(samples - 1) * 100 / 100;
    const qint64 span = qint64(samples - 1) * 100 - width;
    qint64 left = 0;
    for (auto _ : state) {
        left = (left + 100 * 997) % span;
        image.fill(Qt::black);
        QPainter painter(&image);
        for (const auto& trace : traces)
            trace->paint(&layout, &painter, left, left + width);
        painter.end();
        benchmark::DoNotOptimize(image.constBits());
    }
    state.SetLabel("16 traces, 1 % of the recording, range moving");
}
BENCHMARK(BM_PaintStripeZoomed)->Arg(1000000)->Unit(benchmark::kMillisecond)->Repetitions(5)->ReportAggregatesOnly(true);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeBench"));
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
