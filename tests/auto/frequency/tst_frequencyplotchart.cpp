// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "axisscrollbar.h"
#include "frequencymarker.h"
#include "frequencyplotadjustmentwidget.h"
#include "frequencyplotaxis.h"
#include "frequencyplotchart.h"
#include "frequencyplottrace.h"
#include "frequencyplotview.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"
#include "plotcontroller.h"

#include "faketraceinformation.h"
#include "frequencywindowfunctions.h"

#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <QtWidgets/QGraphicsLayout>
#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QRadioButton>

#include <cmath>
#include <memory>

namespace {

QVector<double> sine(int count, double cycles, double amplitude, double offset = 0.0)
{
    QVector<double> samples(count);
    for (int i = 0; i < count; ++i)
        samples[i] = offset + amplitude * std::sin(2.0 * M_PI * cycles * i / count);
    return samples;
}

QPair<double, double> rangeOf(const QAbstractAxis* axis)
{
    if (const auto* log = qobject_cast<const QLogValueAxis*>(axis))
        return {log->min(), log->max()};
    if (const auto* linear = qobject_cast<const QValueAxis*>(axis))
        return {linear->min(), linear->max()};
    return {0.0, 0.0};
}

bool fuzzy(double a, double b, double tolerance = 1e-9)
{
    return std::abs(a - b) <= tolerance * std::max({1.0, std::abs(a), std::abs(b)});
}

// Spectra of two traces, 1000 samples at 1 µs: resolution 1000 Hz.
struct Fixture
{
    Fixture(int count = 1000, int first = 0, int last = 999)
    {
        informations << QSharedPointer<FakeTraceInformation>::create(sine(count, 50.0, 2.0, 1.0), 10.0,
                                                                     QStringLiteral("Strom"), QColor(Qt::red))
                     << QSharedPointer<FakeTraceInformation>::create(sine(count, 120.0, 0.5), 10.0,
                                                                     QStringLiteral("Drehzahl"), QColor(Qt::green));
        QList<FrequencyTrace*> traces;
        for (const auto& information : std::as_const(informations)) {
            auto* trace = new FrequencyTrace(information);
            trace->setInterval(first, last, Frequency::NoWindow);
            traces << trace;
        }
        spectrum = std::make_unique<FrequencySpectrum>(traces);
    }
    QList<QSharedPointer<FakeTraceInformation>> informations;
    std::unique_ptr<FrequencySpectrum> spectrum;
};

} // namespace

class tst_FrequencyPlotChart : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void plotAxisProperties();
    void newChartHasLogarithmicAxes();
    void seriesPerTraceWithoutZeroHertz();
    void axisRanges();
    void switchingAxesLeavesOneAxisPerOrientation_data();
    void switchingAxesLeavesOneAxisPerOrientation();
    void linearRangesAfterSwitch();
    void singlePointSpectrumGivesEmptySeries();
    void nonFiniteAmplitudesWithoutWarnings();
    void zoomMovesScrollbar();
    void sliderScrollsAxisWithoutFeedback();
    void verticalSliderScrollsAmplitudeAxis();
    void colourAndVisibilityFollowTraces();
    void rangesFollowVisibleTraces();
    void updateAmplitudesRebuildsSeries();
    void seriesFollowPlotWidth();
    void adjustmentWidgetForm();
    void adjustmentWidgetSignals();
    void controllerSwitchesAxes();
    void controllerAppliesShownChoiceToNewChart();
    void plotViewSelectsMeasurePoint();
    void markerFollowsScrolling();
    void markerLabelFlipsAtRightEdge();
    void chartColoursFromSettings();
    void privateSlotsInvocableByName();
};

void tst_FrequencyPlotChart::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_FrequencyPlotChart::plotAxisProperties()
{
    FrequencyPlotAxis axis;
    QCOMPARE(axis.base(), 10.0);
    QCOMPARE(axis.minorTickCount(), -1);
    QCOMPARE(axis.gridLineColor(), QColor(128, 128, 128));
    QCOMPARE(axis.minorGridLinePen().color(), QColor(128, 128, 128));
    QCOMPARE(axis.minorGridLinePen().widthF(), 1.0);
    QCOMPARE(axis.labelFormat(), QStringLiteral("%g"));
}

void tst_FrequencyPlotChart::newChartHasLogarithmicAxes()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    QCOMPARE(chart.chart()->axes(Qt::Horizontal).size(), 1);
    QCOMPARE(chart.chart()->axes(Qt::Vertical).size(), 1);
    QVERIFY(qobject_cast<FrequencyPlotAxis*>(chart.xAxis()));
    QVERIFY(qobject_cast<FrequencyPlotAxis*>(chart.yAxis()));
    QVERIFY(chart.isXAxisLogarithmic());
    QVERIFY(chart.isYAxisLogarithmic());
    QCOMPARE(qobject_cast<FrequencyPlotAxis*>(chart.xAxis())->labelFormat(), QStringLiteral("%g Hz"));
    qreal left = -1, top = -1, right = -1, bottom = -1;
    chart.chart()->layout()->getContentsMargins(&left, &top, &right, &bottom);
    QCOMPARE(top, qreal(QGuiApplication::font().pointSize()));
    QCOMPARE(left, 0.0);
    QCOMPARE(bottom, 0.0);
}

void tst_FrequencyPlotChart::seriesPerTraceWithoutZeroHertz()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    QCOMPARE(chart.chart()->series().size(), 2);
    const QList<FrequencyTrace*> traces = fixture.spectrum->traces();
    for (FrequencyTrace* trace : traces) {
        FrequencyPlotTrace* plotTrace = chart.plotTrace(trace);
        QVERIFY(plotTrace);
        QCOMPARE(plotTrace->series()->color(), trace->color());
        QCOMPARE(plotTrace->series()->attachedAxes().size(), 2);
        // 500 amplitudes: the 499 points above 0 Hz, all shown (fewer than the columns).
        const QList<QPointF> points = plotTrace->series()->points();
        QVERIFY(!points.isEmpty());
        QVERIFY(points.first().x() > 0.0);
        QCOMPARE(points.first().x(), 1000.0);
        for (const QPointF& point : points)
            QVERIFY(point.y() > 0.0);
    }
}

void tst_FrequencyPlotChart::axisRanges()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    const double r = fixture.spectrum->frequencyResolution();
    QVERIFY(fuzzy(r, 1000.0));
    const QPair<double, double> x = rangeOf(chart.xAxis());
    QVERIFY(fuzzy(x.first, r * 0.8));
    QVERIFY(fuzzy(x.second, fixture.spectrum->maxFrequency() * 1.2));
    // The y range spans the positive amplitudes of the visible traces.
    const QPair<double, double> y = rangeOf(chart.yAxis());
    double minimum = 1e300, maximum = 0.0;
    for (FrequencyTrace* trace : fixture.spectrum->traces()) {
        for (double value : trace->amplitudes()) {
            if (value > 0.0)
                minimum = std::min(minimum, value);
            maximum = std::max(maximum, value);
        }
    }
    QVERIFY(fuzzy(y.first, minimum * 0.8));
    QVERIFY(fuzzy(y.second, maximum * 1.2));
    // The scroll bars span the whole range.
    QVERIFY(fuzzy(chart.horizontalScrollbar()->baseMin(), x.first));
    QVERIFY(fuzzy(chart.horizontalScrollbar()->baseMax(), x.second));
    QVERIFY(fuzzy(chart.verticalScrollbar()->baseMin(), y.first));
    QCOMPARE(chart.horizontalScrollbar()->pageStep(), chart.horizontalScrollbar()->resolution());
}

void tst_FrequencyPlotChart::switchingAxesLeavesOneAxisPerOrientation_data()
{
    QTest::addColumn<bool>("xAxis");
    QTest::newRow("x axis") << true;
    QTest::newRow("y axis") << false;
}

void tst_FrequencyPlotChart::switchingAxesLeavesOneAxisPerOrientation()
{
    QFETCH(bool, xAxis);
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    QPointer<QAbstractAxis> original = xAxis ? chart.xAxis() : chart.yAxis();
    if (xAxis)
        chart.setXAxisLogarithmic(false);
    else
        chart.setYAxisLogarithmic(false);
    QVERIFY(original.isNull()); // the old axis is deleted
    QCOMPARE(chart.chart()->axes(Qt::Horizontal).size(), 1);
    QCOMPARE(chart.chart()->axes(Qt::Vertical).size(), 1);
    QAbstractAxis* linear = xAxis ? chart.xAxis() : chart.yAxis();
    QVERIFY(qobject_cast<QValueAxis*>(linear));
    QVERIFY(!qobject_cast<QLogValueAxis*>(linear));
    if (xAxis)
        QCOMPARE(qobject_cast<QValueAxis*>(linear)->labelFormat(), QStringLiteral("%g Hz"));
    if (xAxis)
        chart.setXAxisLogarithmic(true);
    else
        chart.setYAxisLogarithmic(true);
    QCOMPARE(chart.chart()->axes(Qt::Horizontal).size(), 1);
    QCOMPARE(chart.chart()->axes(Qt::Vertical).size(), 1);
    QVERIFY(qobject_cast<FrequencyPlotAxis*>(chart.xAxis()));
    QVERIFY(qobject_cast<FrequencyPlotAxis*>(chart.yAxis()));
    for (QAbstractSeries* series : chart.chart()->series()) {
        QCOMPARE(series->attachedAxes().size(), 2);
        QVERIFY(series->attachedAxes().contains(chart.xAxis()));
        QVERIFY(series->attachedAxes().contains(chart.yAxis()));
    }
    // Switching to the scale in use changes nothing.
    QAbstractAxis* current = chart.xAxis();
    chart.setXAxisLogarithmic(true);
    QCOMPARE(chart.xAxis(), current);
}

void tst_FrequencyPlotChart::linearRangesAfterSwitch()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setXAxisLogarithmic(false);
    chart.setYAxisLogarithmic(false);
    const double r = fixture.spectrum->frequencyResolution();
    const QPair<double, double> x = rangeOf(chart.xAxis());
    QVERIFY(fuzzy(x.first, -r));
    QVERIFY(fuzzy(x.second, fixture.spectrum->maxFrequency() + r));
    // Linear x: the amplitude range leaves the 0 Hz point out.
    double minimum = 1e300, maximum = 0.0;
    for (FrequencyTrace* trace : fixture.spectrum->traces()) {
        minimum = std::min(minimum, trace->minAmplitude(1));
        maximum = std::max(maximum, trace->maxAmplitude(1));
    }
    const QPair<double, double> y = rangeOf(chart.yAxis());
    QVERIFY(fuzzy(y.first, minimum * 0.8, 1e-6) || std::abs(y.first - minimum * 0.8) < 1e-12);
    QVERIFY(fuzzy(y.second, maximum * 1.2));
    QVERIFY(fuzzy(chart.horizontalScrollbar()->baseMin(), -r));
}

void tst_FrequencyPlotChart::singlePointSpectrumGivesEmptySeries()
{
    Fixture fixture(1000, 10, 10);
    QCOMPARE(fixture.spectrum->traces().first()->amplitudes().size(), 1);
    FrequencyPlotChart chart(fixture.spectrum.get());
    for (FrequencyPlotTrace* plotTrace : chart.plotTraces())
        QCOMPARE(plotTrace->series()->count(), 0);
    const QPair<double, double> x = rangeOf(chart.xAxis());
    QVERIFY(x.first > 0.0 && x.second > x.first);
    chart.setXAxisLogarithmic(false);
    chart.setYAxisLogarithmic(false);
    for (FrequencyPlotTrace* plotTrace : chart.plotTraces())
        QCOMPARE(plotTrace->series()->count(), 0);
}

void tst_FrequencyPlotChart::nonFiniteAmplitudesWithoutWarnings()
{
    // Any warning but the offscreen platform's own notes fails the test.
    QTest::failOnWarning(QRegularExpression(QStringLiteral("^(?!This plugin does not support).*")));
    // One sample with the Hamming window: the amplitude is not a number.
    auto information = QSharedPointer<FakeTraceInformation>::create(QVector<double>{1.0, 2.0, 3.0}, 10.0);
    auto* trace = new FrequencyTrace(information);
    trace->setInterval(0, 0, Frequency::Hamming);
    FrequencySpectrum spectrum({trace});
    FrequencyPlotChart chart(&spectrum);
    FrequencyPlotView view(&spectrum, &chart);
    view.resize(600, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    chart.setYAxisLogarithmic(false);
    chart.setXAxisLogarithmic(false);
    Q_EMIT chart.updateAmplitudes();
    QCOMPARE(chart.plotTraces().first()->series()->count(), 0);
    const QPair<double, double> y = rangeOf(chart.yAxis());
    QVERIFY(std::isfinite(y.first) && std::isfinite(y.second) && y.second > y.first);
    view.grab();
}

void tst_FrequencyPlotChart::zoomMovesScrollbar()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    FrequencyPlotView view(fixture.spectrum.get(), &chart);
    view.resize(700, 450);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    AxisScrollbar* bar = chart.horizontalScrollbar();
    const int pageBefore = bar->pageStep();
    QSignalSpy barValues(bar, qOverload<double, double>(&AxisScrollbar::valueChanged));
    chart.chart()->zoomIn();
    QVERIFY(bar->pageStep() < pageBefore);
    QVERIFY(chart.verticalScrollbar()->pageStep() < chart.verticalScrollbar()->resolution());
    // The handle stands for the zoomed window; nothing was sent back.
    QCOMPARE(barValues.count(), 0);
    const QPair<double, double> x = rangeOf(chart.xAxis());
    const double width = bar->baseMax() - bar->baseMin();
    QVERIFY(std::abs(bar->pageStep() - (x.second - x.first) / width * bar->resolution()) <= 1.0);
}

void tst_FrequencyPlotChart::sliderScrollsAxisWithoutFeedback()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setXAxisLogarithmic(false);
    FrequencyPlotView view(fixture.spectrum.get(), &chart);
    view.resize(700, 450);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    auto* axis = qobject_cast<QValueAxis*>(chart.xAxis());
    QVERIFY(axis);
    const double low = axis->min();
    const double high = axis->max();
    axis->setRange(low, low + (high - low) / 4.0);
    AxisScrollbar* bar = chart.horizontalScrollbar();
    const int page = bar->pageStep();
    QSignalSpy axisRanges(axis, &QValueAxis::rangeChanged);
    QSignalSpy scrolled(&chart, &FrequencyPlotChart::scrolled);
    bar->setValue(bar->value() + page / 2);
    // The axis moved by half a window ...
    const double expectedLow = low + (high - low) / 8.0;
    QVERIFY(std::abs(axis->min() - expectedLow) < (high - low) * 1e-6);
    QVERIFY(std::abs(axis->max() - (expectedLow + (high - low) / 4.0)) < (high - low) * 1e-6);
    // ... without the axis announcing it back to the bar.
    QCOMPARE(axisRanges.count(), 0);
    QCOMPARE(bar->pageStep(), page);
    QCOMPARE(scrolled.count(), 1);
    // The series follow the window: its points lie around it.
    const QList<QPointF> points = chart.plotTraces().first()->series()->points();
    QVERIFY(!points.isEmpty());
    QVERIFY(points.first().x() >= axis->min() - fixture.spectrum->frequencyResolution());
    // The chart itself draws the new window.
    const QPointF left = chart.chart()->mapToPosition(QPointF(axis->min(), 1.0), chart.chart()->series().first());
    QVERIFY(std::abs(left.x() - chart.chart()->plotArea().left()) < 1.0);
}

void tst_FrequencyPlotChart::verticalSliderScrollsAmplitudeAxis()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setYAxisLogarithmic(false);
    auto* axis = qobject_cast<QValueAxis*>(chart.yAxis());
    QVERIFY(axis);
    const double low = axis->min();
    const double high = axis->max();
    axis->setRange(low, low + (high - low) / 2.0);
    AxisScrollbar* bar = chart.verticalScrollbar();
    QSignalSpy axisRanges(axis, &QValueAxis::rangeChanged);
    // The top of a vertical bar shows the high values: a smaller value scrolls up.
    bar->setValue(bar->minimum());
    QCOMPARE(axisRanges.count(), 0);
    QVERIFY(std::abs(axis->max() - high) < (high - low) * 1e-6);
    QVERIFY(std::abs(axis->min() - (low + (high - low) / 2.0)) < (high - low) * 1e-6);
}

void tst_FrequencyPlotChart::colourAndVisibilityFollowTraces()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    FrequencyTrace* trace = fixture.spectrum->traces().first();
    FrequencyPlotTrace* plotTrace = chart.plotTrace(trace);
    trace->setColor(QColor(Qt::cyan));
    QCOMPARE(plotTrace->series()->color(), QColor(Qt::cyan));
    // Through the trace information, as from the time-domain view.
    fixture.informations.first()->setColor(QColor(Qt::magenta));
    QCOMPARE(plotTrace->series()->color(), QColor(Qt::magenta));
    QVERIFY(plotTrace->series()->isVisible());
    trace->setHidden(true);
    QVERIFY(!plotTrace->series()->isVisible());
    fixture.informations.first()->setOff(false);
    QVERIFY(plotTrace->series()->isVisible());
}

void tst_FrequencyPlotChart::rangesFollowVisibleTraces()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setYAxisLogarithmic(false);
    chart.setXAxisLogarithmic(false);
    FrequencyTrace* large = fixture.spectrum->traces().at(0); // amplitude 2 sine
    FrequencyTrace* small = fixture.spectrum->traces().at(1); // amplitude 0.5 sine
    QVERIFY(fuzzy(rangeOf(chart.yAxis()).second, large->maxAmplitude(1) * 1.2));
    large->setHidden(true);
    QVERIFY(fuzzy(rangeOf(chart.yAxis()).second, small->maxAmplitude(1) * 1.2));
    large->setHidden(false);
    QVERIFY(fuzzy(rangeOf(chart.yAxis()).second, large->maxAmplitude(1) * 1.2));
}

void tst_FrequencyPlotChart::updateAmplitudesRebuildsSeries()
{
    Fixture fixture(200, 0, 199);
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setXAxisLogarithmic(false);
    QObject::connect(fixture.spectrum.get(), &FrequencySpectrum::dataChanged, &chart, &FrequencyPlotChart::updateAmplitudes);
    FrequencyPlotTrace* plotTrace = chart.plotTraces().first();
    QCOMPARE(plotTrace->amplitudes().size(), 100);
    const double maxBefore = rangeOf(chart.xAxis()).second;
    fixture.spectrum->changeWindowFunction(true, Frequency::NoWindow);
    // Both halves now: the range reaches almost the sampling frequency.
    QCOMPARE(plotTrace->amplitudes().size(), 200);
    QVERIFY(rangeOf(chart.xAxis()).second > maxBefore * 1.9);
    QCOMPARE(plotTrace->series()->count(), 199);
}

void tst_FrequencyPlotChart::seriesFollowPlotWidth()
{
    // 100,000 amplitudes: far more points than pixels.
    QVector<double> samples(200000);
    for (int i = 0; i < samples.size(); ++i)
        samples[i] = std::sin(i * 0.01) + 0.001 * ((i * 7919) % 1000);
    auto information = QSharedPointer<FakeTraceInformation>::create(samples, 10.0);
    auto* trace = new FrequencyTrace(information);
    trace->setInterval(0, samples.size() - 1, Frequency::NoWindow);
    FrequencySpectrum spectrum({trace});
    FrequencyPlotChart chart(&spectrum);
    FrequencyPlotView view(&spectrum, &chart);
    view.resize(500, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QLineSeries* series = chart.plotTraces().first()->series();
    QTRY_VERIFY(chart.chart()->plotArea().width() > 100);
    const int columns = chart.pixelColumns();
    QVERIFY(columns <= 500);
    QVERIFY2(series->count() <= 2 * columns + 2, qPrintable(QString::number(series->count())));
    QVERIFY(series->count() > columns / 2);
    const int narrowCount = series->count();
    view.resize(900, 400);
    QTRY_VERIFY(chart.pixelColumns() > columns);
    QVERIFY(series->count() <= 2 * chart.pixelColumns() + 2);
    QVERIFY(series->count() > narrowCount);
}

void tst_FrequencyPlotChart::adjustmentWidgetForm()
{
    FrequencyPlotAdjustmentWidget widget;
    QCOMPARE(widget.objectName(), QStringLiteral("SpectrumPlotAdjustmentWidget"));
    QCOMPARE(widget.windowTitle(), QStringLiteral("SpectrumPlotCortroller"));
    auto* yBox = widget.findChild<QGroupBox*>(QStringLiteral("groupBox_2"));
    auto* xBox = widget.findChild<QGroupBox*>(QStringLiteral("groupBox"));
    QVERIFY(yBox && xBox);
    QCOMPARE(yBox->title(), QStringLiteral("Y-Achse:"));
    QCOMPARE(xBox->title(), QStringLiteral("X-Achse:"));
    const QStringList names{QStringLiteral("yAxisLogButton"), QStringLiteral("yAxisLinButton"),
                            QStringLiteral("xAxisLogButton"), QStringLiteral("xAxisLinButton")};
    const QStringList texts{QStringLiteral("Log"), QStringLiteral("Lin"), QStringLiteral("Log"), QStringLiteral("Lin")};
    for (int i = 0; i < names.size(); ++i) {
        auto* button = widget.findChild<QAbstractButton*>(names.at(i));
        QVERIFY2(button, qPrintable(names.at(i)));
        QCOMPARE(button->text(), texts.at(i));
        QCOMPARE(button->isChecked(), texts.at(i) == QLatin1String("Log"));
    }
    QVERIFY(widget.isXAxisLogarithmic());
    QVERIFY(widget.isYAxisLogarithmic());
}

void tst_FrequencyPlotChart::adjustmentWidgetSignals()
{
    FrequencyPlotAdjustmentWidget widget;
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QSignalSpy y(&widget, &FrequencyPlotAdjustmentWidget::yAxisScaleChanged);
    QSignalSpy x(&widget, &FrequencyPlotAdjustmentWidget::xAxisScaleChanged);
    auto* yLin = widget.findChild<QAbstractButton*>(QStringLiteral("yAxisLinButton"));
    auto* xLin = widget.findChild<QAbstractButton*>(QStringLiteral("xAxisLinButton"));
    auto* xLog = widget.findChild<QAbstractButton*>(QStringLiteral("xAxisLogButton"));
    QTest::mouseClick(yLin, Qt::LeftButton);
    QCOMPARE(y.count(), 1);
    QCOMPARE(y.at(0).at(0).toBool(), false);
    QCOMPARE(x.count(), 0);
    QTest::mouseClick(xLin, Qt::LeftButton);
    QCOMPARE(x.count(), 1);
    QCOMPARE(x.at(0).at(0).toBool(), false);
    QTest::mouseClick(xLog, Qt::LeftButton);
    QCOMPARE(x.count(), 2);
    QCOMPARE(x.at(1).at(0).toBool(), true);
    QVERIFY(!widget.isYAxisLogarithmic());
}

void tst_FrequencyPlotChart::controllerSwitchesAxes()
{
    Fixture fixture;
    FrequencyPlotAdjustmentWidget widget;
    FrequencyPlotChart chart(fixture.spectrum.get());
    PlotController controller(&widget);
    controller.setChart(&chart);
    QCOMPARE(controller.chart(), &chart);
    widget.findChild<QAbstractButton*>(QStringLiteral("yAxisLinButton"))->click();
    QVERIFY(!chart.isYAxisLogarithmic());
    QVERIFY(chart.isXAxisLogarithmic());
    widget.findChild<QAbstractButton*>(QStringLiteral("xAxisLinButton"))->click();
    QVERIFY(!chart.isXAxisLogarithmic());
    widget.findChild<QAbstractButton*>(QStringLiteral("xAxisLogButton"))->click();
    widget.findChild<QAbstractButton*>(QStringLiteral("yAxisLogButton"))->click();
    QVERIFY(chart.isXAxisLogarithmic());
    QVERIFY(chart.isYAxisLogarithmic());
    QCOMPARE(chart.chart()->axes(Qt::Horizontal).size(), 1);
    QCOMPARE(chart.chart()->axes(Qt::Vertical).size(), 1);
}

void tst_FrequencyPlotChart::controllerAppliesShownChoiceToNewChart()
{
    Fixture fixture;
    FrequencyPlotAdjustmentWidget widget;
    widget.findChild<QAbstractButton*>(QStringLiteral("xAxisLinButton"))->click();
    FrequencyPlotChart chart(fixture.spectrum.get());
    PlotController controller(&widget);
    controller.setChart(&chart);
    QVERIFY(!chart.isXAxisLogarithmic());
    QVERIFY(chart.isYAxisLogarithmic());
}

void tst_FrequencyPlotChart::plotViewSelectsMeasurePoint()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setXAxisLogarithmic(false);
    FrequencyPlotView view(fixture.spectrum.get(), &chart);
    view.resize(800, 500);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTRY_VERIFY(chart.chart()->plotArea().width() > 100);
    const double r = fixture.spectrum->frequencyResolution();
    // Aim a little above 50 points: rounded down to point 50.
    const int x = int(std::round(view.positionOf(50.3 * r)));
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, QPoint(x, 200));
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, QPoint(x, 200));
    const double frequencyUnder = view.frequencyAt(x);
    QCOMPARE(fixture.spectrum->selectedMeasurePoint(), int(std::floor(frequencyUnder / r)));
    QVERIFY(std::abs(fixture.spectrum->selectedMeasurePoint() - 50) <= 1);
    const int point = fixture.spectrum->selectedMeasurePoint();
    QCOMPARE(view.marker()->text(), QStringLiteral("%1 Hz").arg(r * point));
    QVERIFY(view.marker()->isVisible());
    QVERIFY(std::abs(view.marker()->lineX() - chart.chart()->mapToPosition(QPointF(r * point, 1.0), chart.chart()->series().first()).x()) < 1.0);
    // The traces show their amplitude at the point.
    FrequencyTrace* trace = fixture.spectrum->traces().first();
    QCOMPARE(trace->amplitudeText(), QString::number(trace->amplitudes().at(point), 'g', 6));

    // Dragging left of the plot clamps to point 0.
    QTest::mousePress(view.viewport(), Qt::LeftButton, {}, QPoint(x, 200));
    QMouseEvent move(QEvent::MouseMove, QPointF(1, 200), view.viewport()->mapToGlobal(QPointF(1, 200)),
                     Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &move);
    QTest::mouseRelease(view.viewport(), Qt::LeftButton, {}, QPoint(1, 200));
    QCOMPARE(fixture.spectrum->selectedMeasurePoint(), 0);
    QCOMPARE(view.marker()->text(), QStringLiteral("0 Hz"));

    // Moving without a button pressed does not select.
    QMouseEvent hover(QEvent::MouseMove, QPointF(x, 200), view.viewport()->mapToGlobal(QPointF(x, 200)),
                      Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &hover);
    QCOMPARE(fixture.spectrum->selectedMeasurePoint(), 0);
}

void tst_FrequencyPlotChart::markerFollowsScrolling()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    chart.setXAxisLogarithmic(false);
    FrequencyPlotView view(fixture.spectrum.get(), &chart);
    view.resize(800, 500);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QTRY_VERIFY(chart.chart()->plotArea().width() > 100);
    const double r = fixture.spectrum->frequencyResolution();
    fixture.spectrum->setSelectedMeasurePoint(100);
    view.updateMarker();
    QVERIFY(view.marker()->isVisible());
    const qreal before = view.marker()->lineX();
    // Zoomed in around the point: the marker moves with its frequency.
    auto* axis = qobject_cast<QValueAxis*>(chart.xAxis());
    axis->setRange(50 * r, 150 * r);
    QVERIFY(view.marker()->isVisible());
    QVERIFY(std::abs(view.marker()->lineX() - (chart.chart()->plotArea().left() + chart.chart()->plotArea().width() / 2.0)) < 2.0);
    QVERIFY(view.marker()->lineX() != before);
    // Scrolled away from it: hidden.
    chart.horizontalScrollbar()->setValue(chart.horizontalScrollbar()->maximum());
    QVERIFY(axis->min() > 100 * r);
    QVERIFY(!view.marker()->isVisible());
}

void tst_FrequencyPlotChart::markerLabelFlipsAtRightEdge()
{
    FrequencyMarker marker;
    const QRectF area(50, 20, 400, 300);
    marker.place(100, area, QStringLiteral("1000 Hz"));
    QVERIFY(marker.labelRect().left() > 100);
    QVERIFY(marker.labelRect().bottom() <= area.top() + 0.5);
    marker.place(449, area, QStringLiteral("123456789 Hz"));
    QVERIFY(marker.labelRect().right() < 449);
}

void tst_FrequencyPlotChart::chartColoursFromSettings()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    FrequencyPlotView view(fixture.spectrum.get(), &chart);
    AppSettings* settings = AppSettings::instance();
    settings->setColor(AppSettings::ChartBackgroundColor, QColor(1, 2, 3));
    settings->setColor(AppSettings::ChartPlotAreaColor, QColor(4, 5, 6));
    view.onSettingChanged();
    QCOMPARE(chart.chart()->backgroundBrush().color(), QColor(1, 2, 3));
    QCOMPARE(chart.chart()->plotAreaBackgroundBrush().color(), QColor(4, 5, 6));
}

void tst_FrequencyPlotChart::privateSlotsInvocableByName()
{
    Fixture fixture;
    FrequencyPlotChart chart(fixture.spectrum.get());
    QObject* companion = nullptr;
    for (QObject* child : chart.children()) {
        if (child->metaObject()->indexOfSlot("onVisibiliyChanged()") >= 0)
            companion = child;
    }
    QVERIFY(companion);
    const QMetaObject* meta = companion->metaObject();
    for (const char* slot : {"scrollInXDir(double,double)", "scrollInYDir(double,double)", "xChangeRange(qreal,qreal)",
                             "yChangeRange(qreal,qreal)", "onColorChange()", "onVisibiliyChanged()"})
        QVERIFY2(meta->indexOfSlot(slot) >= 0, slot);
    QVERIFY(meta->indexOfSignal("scrolled()") >= 0);
    QVERIFY(meta->indexOfSignal("updateAmplitudes()") >= 0);
    QVERIFY(QMetaObject::invokeMethod(companion, "onColorChange"));
}

QTEST_MAIN(tst_FrequencyPlotChart)
#include "tst_frequencyplotchart.moc"
