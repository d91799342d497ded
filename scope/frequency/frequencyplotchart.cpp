// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplotchart.h"
#include "frequencyplotchart_p.h"

#include "appsettings.h"
#include "axisscrollbar.h"
#include "frequencyplotaxis.h"
#include "frequencyplottrace.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"

#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCharts/QValueAxis>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QGraphicsLayout>

#include <cmath>
#include <limits>

namespace {

QPair<double, double> rangeOf(const QAbstractAxis* axis)
{
    if (const auto* logarithmic = qobject_cast<const QLogValueAxis*>(axis))
        return {logarithmic->min(), logarithmic->max()};
    if (const auto* linear = qobject_cast<const QValueAxis*>(axis))
        return {linear->min(), linear->max()};
    return {0.0, 1.0};
}

bool usable(double low, double high, bool logarithmic)
{
    return std::isfinite(low) && std::isfinite(high) && high > low && (!logarithmic || low > 0.0);
}

} // namespace

FrequencyPlotChartPrivate::FrequencyPlotChartPrivate(FrequencyPlotChart* q, FrequencySpectrum* spectrum)
    : QObject(q)
    , q_ptr(q)
    , chart(new QChart)
    , horizontalScrollbar(new AxisScrollbar(Qt::Horizontal))
    , verticalScrollbar(new AxisScrollbar(Qt::Vertical))
    , spectrum(spectrum)
{
    chart->legend()->hide();
    connect(horizontalScrollbar.data(), qOverload<double, double>(&AxisScrollbar::valueChanged),
            this, &FrequencyPlotChartPrivate::scrollInXDir);
    connect(verticalScrollbar.data(), qOverload<double, double>(&AxisScrollbar::valueChanged),
            this, &FrequencyPlotChartPrivate::scrollInYDir);

    const QList<FrequencyTrace*> frequencyTraces = spectrum ? spectrum->traces() : QList<FrequencyTrace*>();
    const double resolution = frequencyTraces.isEmpty() ? 0.0 : spectrum->frequencyResolution();
    for (FrequencyTrace* trace : frequencyTraces) {
        connect(trace, &FrequencyTrace::colorChanged, this, &FrequencyPlotChartPrivate::onColorChange);
        connect(trace, &FrequencyTrace::visibilityChanged, this, &FrequencyPlotChartPrivate::onVisibiliyChanged);
        auto* plotTrace = new FrequencyPlotTrace(trace, this);
        plotTrace->setAmplitudes(trace->amplitudes(), resolution);
        plotTrace->series()->setPen(QPen(trace->color(), 1.0));
        traces.insert(trace, plotTrace);
        traceOrder.append(plotTrace);
        chart->addSeries(plotTrace->series());
        plotTrace->series()->setVisible(!trace->isHidden());
    }

    installXAxis(true);
    installYAxis(true);
    const int top = QGuiApplication::font().pointSize();
    chart->layout()->setContentsMargins(0, top > 0 ? top : 10, 0, 0);

    connect(chart.data(), &QChart::plotAreaChanged, this, &FrequencyPlotChartPrivate::onPlotAreaChanged);
    connect(this, &FrequencyPlotChartPrivate::scrolled, q, &FrequencyPlotChart::scrolled);
    connect(q, &FrequencyPlotChart::updateAmplitudes, this, &FrequencyPlotChartPrivate::onUpdateAmplitudes);
}

FrequencyPlotChartPrivate::~FrequencyPlotChartPrivate()
{
    // The plot view owns the chart once it shows it; a chart that was never
    // shown is ours.
    if (chart && !chart->scene())
        delete chart.data();
    delete horizontalScrollbar.data();
    delete verticalScrollbar.data();
}

QAbstractAxis* FrequencyPlotChartPrivate::axis(Qt::Orientation orientation) const
{
    const QList<QAbstractAxis*> axes = chart ? chart->axes(orientation) : QList<QAbstractAxis*>();
    return axes.isEmpty() ? nullptr : axes.constFirst();
}

int FrequencyPlotChartPrivate::columns() const
{
    const qreal width = chart ? chart->plotArea().width() : 0.0;
    // Before the first layout there is no plot area yet: assume a wide one.
    return width >= 1.0 ? int(std::ceil(width)) : 1000;
}

QPair<double, double> FrequencyPlotChartPrivate::xRange() const
{
    const bool haveTraces = spectrum && !spectrum->traces().isEmpty();
    const double resolution = haveTraces ? spectrum->frequencyResolution() : 0.0;
    const double maxFrequency = haveTraces ? spectrum->maxFrequency() : 0.0;
    double low = linearX ? -resolution : resolution * 0.8;
    double high = linearX ? maxFrequency + resolution : maxFrequency * 1.2;
    if (usable(low, high, !linearX))
        return {low, high};
    // A spectrum of one point (or none) has no frequency span: show the
    // neighbourhood of its resolution.
    const double base = (std::isfinite(resolution) && resolution > 0.0) ? resolution : 1.0;
    if (linearX)
        return {-base, 2.0 * base};
    return {base * 0.8, base * 12.0};
}

QPair<double, double> FrequencyPlotChartPrivate::yRange() const
{
    const int from = linearX ? 1 : 0;
    double minimum = std::numeric_limits<double>::quiet_NaN();
    double maximum = std::numeric_limits<double>::quiet_NaN();
    bool anyVisible = false;
    for (FrequencyPlotTrace* plotTrace : traceOrder)
        anyVisible = anyVisible || !plotTrace->trace()->isHidden();
    // The range follows the visible traces; with none visible, all of them.
    for (FrequencyPlotTrace* plotTrace : traceOrder) {
        if (anyVisible && plotTrace->trace()->isHidden())
            continue;
        const double low = plotTrace->minAmplitude(from, logarithmicY);
        const double high = plotTrace->maxAmplitude(from, logarithmicY);
        if (std::isfinite(low) && !(low >= minimum))
            minimum = low;
        if (std::isfinite(high) && !(high <= maximum))
            maximum = high;
    }
    const double low = minimum * 0.8;
    const double high = maximum * 1.2;
    if (usable(low, high, logarithmicY))
        return {low, high};
    const bool positiveMaximum = std::isfinite(maximum) && maximum > 0.0;
    if (logarithmicY)
        return positiveMaximum ? qMakePair(maximum * 0.1, maximum * 1.2) : qMakePair(0.001, 1.0);
    return {0.0, positiveMaximum ? maximum * 1.2 : 1.0};
}

void FrequencyPlotChartPrivate::installXAxis(bool logarithmic)
{
    clearSeries();
    chart->zoomReset();
    linearX = !logarithmic;
    const QPair<double, double> range = xRange();
    const QString format = QStringLiteral("%g Hz");
    QAbstractAxis* axis = nullptr;
    if (logarithmic) {
        auto* logAxis = new FrequencyPlotAxis;
        logAxis->setLabelFormat(format);
        logAxis->setRange(range.first, range.second);
        connect(logAxis, &QLogValueAxis::minChanged, this, &FrequencyPlotChartPrivate::onXRangeChanging);
        connect(logAxis, &QLogValueAxis::maxChanged, this, &FrequencyPlotChartPrivate::onXRangeChanging);
        connect(logAxis, &QLogValueAxis::rangeChanged, this, &FrequencyPlotChartPrivate::xChangeRange);
        axis = logAxis;
    } else {
        auto* linearAxis = new QValueAxis;
        linearAxis->setLabelFormat(format);
        linearAxis->setTickCount(9);
        linearAxis->setGridLineColor(QColor(128, 128, 128));
        linearAxis->setRange(range.first, range.second);
        connect(linearAxis, &QValueAxis::minChanged, this, &FrequencyPlotChartPrivate::onXRangeChanging);
        connect(linearAxis, &QValueAxis::maxChanged, this, &FrequencyPlotChartPrivate::onXRangeChanging);
        connect(linearAxis, &QValueAxis::rangeChanged, this, &FrequencyPlotChartPrivate::xChangeRange);
        axis = linearAxis;
    }
    const QList<QAbstractAxis*> oldAxes = chart->axes(Qt::Horizontal);
    for (QAbstractAxis* old : oldAxes) {
        chart->removeAxis(old);
        delete old;
    }
    axis->setLabelsBrush(AppSettings::instance()->color(AppSettings::ChartLabelColor));
    chart->addAxis(axis, Qt::AlignBottom);
    horizontalScrollbar->setBase(range.first, range.second);
    horizontalScrollbar->moveSlider(range.first, range.second);
    attachSeries();
    rebuildSeries();
}

void FrequencyPlotChartPrivate::installYAxis(bool logarithmic)
{
    clearSeries();
    chart->zoomReset();
    logarithmicY = logarithmic;
    const QPair<double, double> range = yRange();
    QAbstractAxis* axis = nullptr;
    if (logarithmic) {
        auto* logAxis = new FrequencyPlotAxis;
        logAxis->setRange(range.first, range.second);
        connect(logAxis, &QLogValueAxis::rangeChanged, this, &FrequencyPlotChartPrivate::yChangeRange);
        axis = logAxis;
    } else {
        auto* linearAxis = new QValueAxis;
        linearAxis->setTickCount(7);
        linearAxis->setGridLineColor(QColor(128, 128, 128));
        linearAxis->setRange(range.first, range.second);
        connect(linearAxis, &QValueAxis::rangeChanged, this, &FrequencyPlotChartPrivate::yChangeRange);
        axis = linearAxis;
    }
    const QList<QAbstractAxis*> oldAxes = chart->axes(Qt::Vertical);
    for (QAbstractAxis* old : oldAxes) {
        chart->removeAxis(old);
        delete old;
    }
    axis->setLabelsBrush(AppSettings::instance()->color(AppSettings::ChartLabelColor));
    chart->addAxis(axis, Qt::AlignLeft);
    verticalScrollbar->setBase(range.first, range.second);
    verticalScrollbar->moveSlider(range.first, range.second);
    attachSeries();
    // Which amplitudes can be drawn depends on the amplitude scale.
    rebuildSeries();
}

void FrequencyPlotChartPrivate::attachSeries()
{
    const QList<QAbstractAxis*> horizontal = chart->axes(Qt::Horizontal);
    const QList<QAbstractAxis*> vertical = chart->axes(Qt::Vertical);
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder)) {
        QLineSeries* series = plotTrace->series();
        const QList<QAbstractAxis*> attached = series->attachedAxes();
        for (QAbstractAxis* axis : attached)
            series->detachAxis(axis);
        if (!horizontal.isEmpty())
            series->attachAxis(horizontal.constFirst());
        if (!vertical.isEmpty())
            series->attachAxis(vertical.constFirst());
    }
}

// Every change of points or axes makes the chart lay out all series again,
// which costs far more than finding the points. So series are emptied before
// the axes change and filled once afterwards; hidden series stay empty.
void FrequencyPlotChartPrivate::setRanges()
{
    settingRanges = true;
    clearSeries();
    const QPair<double, double> x = xRange();
    horizontalScrollbar->setBase(x.first, x.second);
    if (QAbstractAxis* horizontal = axis(Qt::Horizontal))
        horizontal->setRange(x.first, x.second);
    horizontalScrollbar->moveSlider(x.first, x.second);

    // Finding the points scans every amplitude of the (whole) frequency
    // range and leaves the extremes that the amplitude range needs.
    QList<QList<QPointF>> reduced;
    reduced.reserve(traceOrder.size());
    const int pixelColumns = columns();
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder)) {
        reduced.append(plotTrace->trace()->isHidden()
                           ? QList<QPointF>()
                           : plotTrace->points(x.first, x.second, !linearX, logarithmicY, pixelColumns));
    }

    const QPair<double, double> y = yRange();
    verticalScrollbar->setBase(y.first, y.second);
    if (QAbstractAxis* vertical = axis(Qt::Vertical))
        vertical->setRange(y.first, y.second);
    verticalScrollbar->moveSlider(y.first, y.second);
    settingRanges = false;

    for (qsizetype i = 0; i < traceOrder.size(); ++i) {
        if (!reduced.at(i).isEmpty())
            traceOrder.at(i)->series()->replace(reduced.at(i));
    }
    Q_EMIT scrolled();
}

void FrequencyPlotChartPrivate::clearSeries()
{
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder)) {
        if (plotTrace->series()->count() > 0)
            plotTrace->series()->clear();
    }
}

void FrequencyPlotChartPrivate::rebuildSeries()
{
    const QAbstractAxis* horizontal = axis(Qt::Horizontal);
    if (!horizontal)
        return;
    const QPair<double, double> range = rangeOf(horizontal);
    const int pixelColumns = columns();
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder)) {
        if (plotTrace->trace()->isHidden()) {
            if (plotTrace->series()->count() > 0)
                plotTrace->series()->clear();
            continue;
        }
        plotTrace->rebuild(range.first, range.second, !linearX, logarithmicY, pixelColumns);
    }
}

void FrequencyPlotChartPrivate::scrollInXDir(double low, double high)
{
    QAbstractAxis* horizontal = axis(Qt::Horizontal);
    if (!horizontal)
        return;
    // Blocked, so that the axis's rangeChanged does not drive the bar back.
    horizontal->blockSignals(true);
    clearSeries();
    horizontal->setRange(low, high);
    rebuildSeries();
    Q_EMIT scrolled();
    horizontal->blockSignals(false);
}

void FrequencyPlotChartPrivate::scrollInYDir(double low, double high)
{
    QAbstractAxis* vertical = axis(Qt::Vertical);
    if (!vertical)
        return;
    vertical->blockSignals(true);
    vertical->setRange(low, high);
    vertical->blockSignals(false);
}

void FrequencyPlotChartPrivate::xChangeRange(qreal newMin, qreal newMax)
{
    horizontalScrollbar->moveSlider(newMin, newMax);
    if (settingRanges)
        return;
    rebuildSeries();
    Q_EMIT scrolled();
}

void FrequencyPlotChartPrivate::onXRangeChanging()
{
    // The axis announces its new ends before the chart lays the series out
    // for them: the points of the old window would be laid out in vain.
    if (!settingRanges)
        clearSeries();
}

void FrequencyPlotChartPrivate::yChangeRange(qreal newMin, qreal newMax)
{
    verticalScrollbar->moveSlider(newMin, newMax);
}

void FrequencyPlotChartPrivate::onColorChange()
{
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder))
        plotTrace->series()->setColor(plotTrace->trace()->color());
}

void FrequencyPlotChartPrivate::onVisibiliyChanged()
{
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder))
        plotTrace->series()->setVisible(!plotTrace->trace()->isHidden());
    setRanges();
}

void FrequencyPlotChartPrivate::onUpdateAmplitudes()
{
    const double resolution = (spectrum && !spectrum->traces().isEmpty()) ? spectrum->frequencyResolution() : 0.0;
    for (FrequencyPlotTrace* plotTrace : std::as_const(traceOrder))
        plotTrace->setAmplitudes(plotTrace->trace()->amplitudes(), resolution);
    setRanges();
}

void FrequencyPlotChartPrivate::onPlotAreaChanged(const QRectF& plotArea)
{
    // Axis labels of another width move the plot's edge by a few pixels at
    // every zoom; the series are only worth rebuilding for a real resize.
    const qreal width = plotArea.width();
    if (lastPlotWidth > 0.0 && std::abs(width - lastPlotWidth) <= std::max<qreal>(4.0, lastPlotWidth * 0.02))
        return;
    lastPlotWidth = width;
    rebuildSeries();
}

FrequencyPlotChart::FrequencyPlotChart(FrequencySpectrum* spectrum, QObject* parent)
    : QObject(parent)
    , d_ptr(nullptr)
{
    d_ptr = new FrequencyPlotChartPrivate(this, spectrum);
    applySettings();
}

FrequencyPlotChart::~FrequencyPlotChart()
{
    delete d_ptr;
}

QChart* FrequencyPlotChart::chart() const
{
    Q_D(const FrequencyPlotChart);
    return d->chart.data();
}

FrequencySpectrum* FrequencyPlotChart::spectrum() const
{
    Q_D(const FrequencyPlotChart);
    return d->spectrum;
}

AxisScrollbar* FrequencyPlotChart::horizontalScrollbar() const
{
    Q_D(const FrequencyPlotChart);
    return d->horizontalScrollbar.data();
}

AxisScrollbar* FrequencyPlotChart::verticalScrollbar() const
{
    Q_D(const FrequencyPlotChart);
    return d->verticalScrollbar.data();
}

QAbstractAxis* FrequencyPlotChart::xAxis() const
{
    Q_D(const FrequencyPlotChart);
    return d->axis(Qt::Horizontal);
}

QAbstractAxis* FrequencyPlotChart::yAxis() const
{
    Q_D(const FrequencyPlotChart);
    return d->axis(Qt::Vertical);
}

bool FrequencyPlotChart::isXAxisLogarithmic() const
{
    Q_D(const FrequencyPlotChart);
    return !d->linearX;
}

bool FrequencyPlotChart::isYAxisLogarithmic() const
{
    Q_D(const FrequencyPlotChart);
    return d->logarithmicY;
}

void FrequencyPlotChart::setXAxisLogarithmic(bool logarithmic)
{
    Q_D(FrequencyPlotChart);
    if (logarithmic == !d->linearX)
        return;
    d->installXAxis(logarithmic);
    Q_EMIT d->scrolled();
}

void FrequencyPlotChart::setYAxisLogarithmic(bool logarithmic)
{
    Q_D(FrequencyPlotChart);
    if (logarithmic == d->logarithmicY)
        return;
    d->installYAxis(logarithmic);
}

QList<FrequencyPlotTrace*> FrequencyPlotChart::plotTraces() const
{
    Q_D(const FrequencyPlotChart);
    return d->traceOrder;
}

FrequencyPlotTrace* FrequencyPlotChart::plotTrace(FrequencyTrace* trace) const
{
    Q_D(const FrequencyPlotChart);
    return d->traces.value(trace, nullptr);
}

int FrequencyPlotChart::pixelColumns() const
{
    Q_D(const FrequencyPlotChart);
    return d->columns();
}

void FrequencyPlotChart::applySettings()
{
    Q_D(FrequencyPlotChart);
    if (!d->chart)
        return;
    AppSettings* settings = AppSettings::instance();
    d->chart->setBackgroundBrush(settings->color(AppSettings::ChartBackgroundColor));
    d->chart->setPlotAreaBackgroundBrush(settings->color(AppSettings::ChartPlotAreaColor));
    d->chart->setPlotAreaBackgroundVisible(true);
    const QColor labels = settings->color(AppSettings::ChartLabelColor);
    const QList<QAbstractAxis*> axes = d->chart->axes();
    for (QAbstractAxis* axis : axes)
        axis->setLabelsBrush(labels);
}
