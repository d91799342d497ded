// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplotview.h"

#include "appsettings.h"
#include "axisscrollbar.h"
#include "frequencymarker.h"
#include "frequencyplotchart.h"
#include "frequencyspectrum.h"

#include <QtCharts/QLogValueAxis>
#include <QtCharts/QValueAxis>
#include <QtCore/QLocale>
#include <QtGui/QMouseEvent>
#include <QtGui/QWheelEvent>

#include <cmath>
#include <limits>

namespace {

bool axisRange(const QAbstractAxis* axis, double* min, double* max, bool* logarithmic)
{
    if (const auto* log = qobject_cast<const QLogValueAxis*>(axis)) {
        *min = log->min();
        *max = log->max();
        *logarithmic = true;
        return *min > 0.0 && *max > *min;
    }
    if (const auto* linear = qobject_cast<const QValueAxis*>(axis)) {
        *min = linear->min();
        *max = linear->max();
        *logarithmic = false;
        return *max > *min;
    }
    return false;
}

} // namespace

FrequencyPlotView::FrequencyPlotView(FrequencySpectrum* spectrum, FrequencyPlotChart* chart, QWidget* parent)
    : QChartView(chart && chart->chart() ? chart->chart() : new QChart, parent)
    , m_spectrum(spectrum)
    , m_plotChart(chart)
{
    setRenderHint(QPainter::Antialiasing, false);
    setRubberBand(QChartView::NoRubberBand);
    setMouseTracking(false);
    if (chart && chart->chart()) {
        m_marker = new FrequencyMarker(chart->chart());
        connect(chart->chart(), &QChart::plotAreaChanged, this, &FrequencyPlotView::updateMarker);
        connect(chart, &FrequencyPlotChart::scrolled, this, &FrequencyPlotView::updateMarker);
        chart->horizontalScrollbar()->setParent(this);
        chart->verticalScrollbar()->setParent(this);
        chart->horizontalScrollbar()->show();
        chart->verticalScrollbar()->show();
    }
    connect(AppSettings::instance(), &AppSettings::changed, this, &FrequencyPlotView::onSettingChanged);
    onSettingChanged();
    placeScrollbars();
}

FrequencyPlotView::~FrequencyPlotView() = default;

FrequencyMarker* FrequencyPlotView::marker() const
{
    return m_marker;
}

FrequencyPlotChart* FrequencyPlotView::plotChart() const
{
    return m_plotChart.data();
}

double FrequencyPlotView::frequencyAt(qreal x) const
{
    if (!m_plotChart || !m_plotChart->chart())
        return std::numeric_limits<double>::quiet_NaN();
    QChart* chart = m_plotChart->chart();
    const QRectF area = chart->plotArea();
    double min = 0.0;
    double max = 0.0;
    bool logarithmic = false;
    if (area.width() <= 0.0 || !axisRange(m_plotChart->xAxis(), &min, &max, &logarithmic))
        return std::numeric_limits<double>::quiet_NaN();
    const qreal chartX = chart->mapFromScene(mapToScene(QPoint(int(std::round(x)), 0))).x();
    const double fraction = (chartX - area.left()) / area.width();
    if (logarithmic)
        return min * std::pow(max / min, fraction);
    return min + fraction * (max - min);
}

qreal FrequencyPlotView::positionOf(double frequency) const
{
    if (!m_plotChart || !m_plotChart->chart())
        return 0.0;
    QChart* chart = m_plotChart->chart();
    const QRectF area = chart->plotArea();
    double min = 0.0;
    double max = 0.0;
    bool logarithmic = false;
    if (!axisRange(m_plotChart->xAxis(), &min, &max, &logarithmic))
        return 0.0;
    double fraction = 0.0;
    if (logarithmic)
        fraction = frequency > 0.0 ? std::log(frequency / min) / std::log(max / min) : -1.0;
    else
        fraction = (frequency - min) / (max - min);
    const qreal chartX = area.left() + fraction * area.width();
    return mapFromScene(chart->mapToScene(QPointF(chartX, 0.0))).x();
}

void FrequencyPlotView::updateMarker()
{
    if (!m_marker || !m_plotChart || !m_plotChart->chart() || !m_spectrum || m_spectrum->traces().isEmpty())
        return;
    QChart* chart = m_plotChart->chart();
    const QRectF area = chart->plotArea();
    const double frequency = m_spectrum->selectedFrequency();
    double min = 0.0;
    double max = 0.0;
    bool logarithmic = false;
    if (!axisRange(m_plotChart->xAxis(), &min, &max, &logarithmic)) {
        m_marker->hide();
        return;
    }
    double fraction = 0.0;
    if (logarithmic)
        fraction = frequency > 0.0 ? std::log(frequency / min) / std::log(max / min) : -1.0;
    else
        fraction = (frequency - min) / (max - min);
    const QString text = tr("%1 Hz").arg(frequency).replace(QLatin1Char('.'), QLocale::system().decimalPoint());
    m_marker->place(area.left() + fraction * area.width(), area, text);
    m_marker->setVisible(std::isfinite(fraction) && fraction >= 0.0 && fraction <= 1.0);
}

void FrequencyPlotView::onSettingChanged()
{
    if (m_plotChart)
        m_plotChart->applySettings();
    if (m_marker)
        m_marker->setColor(AppSettings::instance()->color(AppSettings::MarkerColor));
}

void FrequencyPlotView::selectAt(qreal x)
{
    if (!m_spectrum || m_spectrum->traces().isEmpty())
        return;
    const double frequency = frequencyAt(x);
    const double resolution = m_spectrum->frequencyResolution();
    if (!std::isfinite(frequency) || !(resolution > 0.0))
        return;
    const double point = std::floor(frequency / resolution);
    // The spectrum clamps; keep the value inside int first.
    const int measurePoint = point < 0.0 ? -1 : (point > 2147483647.0 ? 2147483647 : int(point));
    m_spectrum->setSelectedMeasurePoint(measurePoint);
    updateMarker();
}

void FrequencyPlotView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        m_selecting = true;
        selectAt(event->position().x());
        event->accept();
        return;
    }
    QChartView::mousePressEvent(event);
}

void FrequencyPlotView::mouseMoveEvent(QMouseEvent* event)
{
    if (m_selecting && (event->buttons() & Qt::LeftButton)) {
        selectAt(event->position().x());
        event->accept();
        return;
    }
    QChartView::mouseMoveEvent(event);
}

void FrequencyPlotView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && m_selecting) {
        m_selecting = false;
        event->accept();
        return;
    }
    QChartView::mouseReleaseEvent(event);
}

void FrequencyPlotView::wheelEvent(QWheelEvent* event)
{
    if (m_plotChart && m_plotChart->chart() && event->angleDelta().y() != 0) {
        m_plotChart->chart()->zoom(event->angleDelta().y() > 0 ? 1.25 : 0.8);
        event->accept();
        return;
    }
    QChartView::wheelEvent(event);
}

void FrequencyPlotView::resizeEvent(QResizeEvent* event)
{
    QChartView::resizeEvent(event);
    placeScrollbars();
    // The chart fills the viewport, which leaves room for the scroll bars.
    if (QChart* shown = chart()) {
        shown->resize(viewport()->size());
        setSceneRect(shown->geometry());
    }
}

void FrequencyPlotView::placeScrollbars()
{
    if (!m_plotChart)
        return;
    AxisScrollbar* horizontal = m_plotChart->horizontalScrollbar();
    AxisScrollbar* vertical = m_plotChart->verticalScrollbar();
    if (!horizontal || !vertical)
        return;
    const int height = horizontal->sizeHint().height();
    const int width = vertical->sizeHint().width();
    setViewportMargins(0, 0, width, height);
    const QRect area = rect();
    horizontal->setGeometry(0, area.height() - height, area.width() - width, height);
    vertical->setGeometry(area.width() - width, 0, width, area.height() - height);
}
