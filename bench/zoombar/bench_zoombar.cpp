// SPDX-License-Identifier: GPL-3.0-or-later
// The zoom bar sits on the hot path of every pan and zoom gesture: each mouse
// move sets the slider, fans out the change signals and repaints the bar.
#include "zoombar.h"

#include <QtGui/QImage>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QApplication>

#include <benchmark/benchmark.h>

#include <limits>

namespace {

constexpr qint64 kMin = std::numeric_limits<qint64>::min();
constexpr qint64 kMax = std::numeric_limits<qint64>::max();

void BM_SetSlider(benchmark::State& state)
{
    ZoomBar bar;
    bar.setRange(kMin, kMax);
    bar.setMinimumSliderDifference(1000);
    qint64 sink = 0;
    QObject::connect(&bar, &ZoomBar::sliderChanged, [&sink](qint64 l, qint64 r) { sink += r - l; });
    qint64 i = 0;
    for (auto _ : state) {
        ++i;
        bar.setSlider(-i * 1000, i * 1000 + 7);
        benchmark::DoNotOptimize(sink);
    }
}
BENCHMARK(BM_SetSlider);

// One drag step of the span: a mouse move event through the widget.
void BM_DragSpanMove(benchmark::State& state)
{
    ZoomBar bar;
    bar.resize(1000, 24);
    bar.setRange(kMin, kMax);
    bar.setSlider(-1000000000000LL, 1000000000000LL);
    const QPointF centre(500, 12);
    QMouseEvent press(QEvent::MouseButtonPress, centre, centre, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&bar, &press);
    int x = 0;
    for (auto _ : state) {
        x = (x + 1) % 200;
        const QPointF pos(400 + x, 12);
        QMouseEvent move(QEvent::MouseMove, pos, pos, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&bar, &move);
    }
    QMouseEvent release(QEvent::MouseButtonRelease, centre, centre, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&bar, &release);
}
BENCHMARK(BM_DragSpanMove);

// Painting the bar at a typical view width.
void BM_Paint(benchmark::State& state)
{
    ZoomBar bar;
    bar.resize(int(state.range(0)), 24);
    bar.setRange(kMin, kMax);
    bar.setSlider(kMin / 3, kMax / 2);
    QImage image(bar.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
        QPainter painter(&image);
        bar.render(&painter);
    }
}
BENCHMARK(BM_Paint)->Arg(1000)->Arg(2500)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
