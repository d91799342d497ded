// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopewidget.h"
#include "scopewidget_p.h"

#include "scopelayout.h"
#include "scopemarker.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopetrace.h"
#include "scopestripeswidget.h"
#include "scopetracefilter.h"
#include "zoombar.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QSettings>
#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QMenu>

#include <cmath>
#include <limits>
#include <utility>

namespace {

const QString backgroundColorKey()
{
    return QStringLiteral("Scope/BackgroundColor");
}

const QString gridColorKey()
{
    return QStringLiteral("Scope/GridColor");
}

QColor storedColor(const QString& key)
{
    return QSettings().value(key).value<QColor>();
}

QString timeLabel(qint64 time, int precision)
{
    return QString::number(time / 1000.0 / 1000.0, 'f', precision) + QStringLiteral(" ms");
}

} // namespace

ScopeWidgetPrivate::ScopeWidgetPrivate(ScopeWidget* widget)
    : QObject(widget)
    , q_ptr(widget)
{
}

QString ScopeWidgetPrivate::defaultName() const
{
    Q_Q(const ScopeWidget);
    int position = -1;
    if (stripesWidget) {
        const int index = stripesWidget->scopeWidgets().indexOf(const_cast<ScopeWidget*>(q));
        if (index >= 0)
            position = index;
    }
    return tr("Streifen %1").arg(position + 1, 0, 10, QLatin1Char(' '));
}

qint64 ScopeWidgetPrivate::timeAt(const QPoint& position) const
{
    const QRect plot = layout->plotArea();
    // A null plot rectangle only exists before the first paint; map to the
    // left edge rather than dividing by zero.
    if (plot.width() <= 0)
        return leftIndex;
    // In 128 bits: the span times the pixel offset does not fit into 64.
    const __int128 time = leftIndex
        + (__int128(rightIndex) - leftIndex) * (position.x() - plot.left()) / plot.width();
    return qint64(qBound<__int128>(std::numeric_limits<qint64>::min(), time, std::numeric_limits<qint64>::max()));
}

void ScopeWidgetPrivate::paintFrame(QPainter* painter)
{
    painter->save();
    QPen pen(storedColor(gridColorKey()));
    pen.setWidth(0);
    painter->setPen(pen);
    painter->resetTransform();
    const QRect plot = layout->plotArea();
    painter->setClipRect(plot, Qt::ReplaceClip);

    const int precision = (__int128(rightIndex) - leftIndex) < 10000000 ? 3 : 0;
    const QRect textRect = plot.adjusted(5, 5, -5, -5);
    painter->drawText(textRect, Qt::AlignTop | Qt::AlignLeft, name.isEmpty() ? defaultName() : name);
    painter->drawText(textRect, Qt::AlignBottom | Qt::AlignLeft, timeLabel(leftIndex, precision));
    painter->drawText(textRect, Qt::AlignBottom | Qt::AlignRight, timeLabel(rightIndex, precision));

    painter->translate(plot.topLeft());
    const QSize cell = layout->divisionSize();
    const QSize divisions = layout->divisions();
    const int w = cell.width();
    const int h = cell.height();
    const int width = plot.width();
    const int height = plot.height();
    for (int i = 0; i <= divisions.height(); ++i) {
        painter->drawLine(0, i * h, width, i * h);
        painter->drawLine(width / 2 - 3, i * h + h / 2, width / 2 + 3, i * h + h / 2);
    }
    for (int i = 0; i <= divisions.width(); ++i) {
        painter->drawLine(i * w, 0, i * w, height);
        painter->drawLine(i * w + w / 2, height / 2 - 3, i * w + w / 2, height / 2 + 3);
    }
    painter->restore();
}

void ScopeWidgetPrivate::applyBackgroundColor(const QColor& color)
{
    Q_Q(ScopeWidget);
    if (storedColor(backgroundColorKey()) != color)
        QSettings().setValue(backgroundColorKey(), color);
    QPalette palette = q->palette();
    palette.setBrush(QPalette::All, q->backgroundRole(), QBrush(color, Qt::SolidPattern));
    q->setPalette(palette);
    q->update();
}

void ScopeWidgetPrivate::invalidateTraceLayer()
{
    traceLayerValid = false;
}

void ScopeWidgetPrivate::paintScene(QPainter* painter)
{
    Q_Q(ScopeWidget);
    const QRect plot = layout->plotArea();
    const qint64 left = scene->viewLeft();
    const qint64 right = scene->viewRight();
    const qreal ratio = q->devicePixelRatioF();
    if (!traceLayerValid || traceLayerPlot != plot || traceLayerLeft != left || traceLayerRight != right
        || traceLayer.size() != q->size() * ratio) {
        if (traceLayer.size() != q->size() * ratio) {
            traceLayer = QPixmap(q->size() * ratio);
            traceLayer.setDevicePixelRatio(ratio);
        }
        traceLayer.fill(Qt::transparent);
        if (right > left) {
            QPainter layerPainter(&traceLayer);
            const QList<ScopeTrace*> traces = traceFilter->traces();
            const auto shots = scene->shots();
            for (const auto& shot : shots)
                shot->paint(layout, &layerPainter, traces, left, right);
        }
        traceLayerValid = true;
        traceLayerPlot = plot;
        traceLayerLeft = left;
        traceLayerRight = right;
    }
    painter->drawPixmap(0, 0, traceLayer);
    // Trigger indicator, markers and cursor: the scene with no traces of its own.
    scene->paint(q, painter, QList<ScopeTrace*>());
}

void ScopeWidgetPrivate::setMarkerHere(quint8 which)
{
    if (!scene || scene->markers().isEmpty())
        return;
    scene->markers().constFirst()->setPosition(which, timeAt(contextMenuPosition));
}

void ScopeWidgetPrivate::goToMarker(quint8 which)
{
    if (!scene || scene->markers().isEmpty())
        return;
    ZoomBar* zoomBar = scene->zoomBar();
    if (!zoomBar)
        return;
    const qint64 marker = scene->markers().constFirst()->position(which);
    const qint64 left = zoomBar->sliderLeft();
    const qint64 span = zoomBar->sliderRight() - left;
    zoomBar->setSlider(marker - span / 2, marker - span / 2 + span);
}

void ScopeWidgetPrivate::showContextMenu(const QPoint& position)
{
    Q_Q(ScopeWidget);
    if (suppressContextMenu) {
        suppressContextMenu = false;
        return;
    }
    if (!contextMenu)
        contextMenu = new QMenu(q);
    contextMenu->clear();
    contextMenu->addAction(tr("Marker A hier setzen"), this, &ScopeWidgetPrivate::onContextMenuSetHereMarkerA);
    contextMenu->addAction(tr("Marker B hier setzen"), this, &ScopeWidgetPrivate::onContextMenuSetHereMarkerB);
    contextMenu->addSeparator();
    contextMenu->addAction(tr("Zu Marker A gehen"), this, &ScopeWidgetPrivate::onContextMenuMoveToMarkerA);
    contextMenu->addAction(tr("Zu Marker B gehen"), this, &ScopeWidgetPrivate::onContextMenuMoveToMarkerB);
    if (!contextMenu->isEmpty()) {
        contextMenuPosition = position;
        contextMenu->popup(q->mapToGlobal(position));
    }
    suppressContextMenu = false;
}

void ScopeWidgetPrivate::onContextMenuSetHereMarkerA()
{
    setMarkerHere(0);
}

void ScopeWidgetPrivate::onContextMenuSetHereMarkerB()
{
    setMarkerHere(1);
}

void ScopeWidgetPrivate::onContextMenuMoveToMarkerA()
{
    goToMarker(0);
}

void ScopeWidgetPrivate::onContextMenuMoveToMarkerB()
{
    goToMarker(1);
}

void ScopeWidgetPrivate::onSettingChanged()
{
    Q_Q(ScopeWidget);
    // Settings are saved by writing a new file and renaming it over the old
    // one, which ends the watch on the old file: watch the new one again.
    const QString fileName = QSettings().fileName();
    if (!settingsWatcher->files().contains(fileName))
        settingsWatcher->addPath(fileName);
    q->setBackgroundColor(storedColor(backgroundColorKey()));
}

ScopeWidget::ScopeWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeWidgetPrivate(this))
{
    Q_D(ScopeWidget);
    d->traceFilter = new ScopeTraceFilter(this);
    connect(d->traceFilter, &ScopeTraceFilter::scopeTracesChanged, d, &ScopeWidgetPrivate::invalidateTraceLayer);
    const QString settingsFile = QSettings().fileName();
    d->settingsWatcher = new QFileSystemWatcher(QStringList(settingsFile), d);
    connect(d->settingsWatcher, &QFileSystemWatcher::fileChanged, d, &ScopeWidgetPrivate::onSettingChanged);
    d->layout = new ScopeLayout(this);
    connect(d->layout, &ScopeLayout::changed, this, qOverload<>(&QWidget::update));
    setBackgroundColor(storedColor(backgroundColorKey()));
    {
        // A plain write, even when nothing changed: every plot widget hears it.
        QSettings settings;
        settings.setValue(gridColorKey(), settings.value(gridColorKey()));
    }
    // The settings file may only exist now.
    if (d->settingsWatcher->files().isEmpty())
        d->settingsWatcher->addPath(settingsFile);
    update();
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, d, &ScopeWidgetPrivate::showContextMenu);
    setMouseTracking(true);
}

ScopeWidget::~ScopeWidget() = default;

QColor ScopeWidget::backgroundColor() const
{
    return storedColor(backgroundColorKey());
}

void ScopeWidget::setBackgroundColor(const QColor& color)
{
    Q_D(ScopeWidget);
    d->applyBackgroundColor(color);
}

QColor ScopeWidget::gridColor() const
{
    return storedColor(gridColorKey());
}

void ScopeWidget::setGridColor(const QColor& color)
{
    QSettings().setValue(gridColorKey(), color);
    update();
}

void ScopeWidget::setStripesWidget(ScopeStripesWidget* stripesWidget)
{
    Q_D(ScopeWidget);
    d->stripesWidget = stripesWidget;
    d->scene = stripesWidget ? stripesWidget->scene() : nullptr;
    if (d->scene) {
        // Every change of a trace (also each animation frame) reaches the scene.
        connect(d->scene, &ScopeScene::sceneChanged, d, &ScopeWidgetPrivate::invalidateTraceLayer);
        connect(d->scene, &ScopeScene::sceneChanged, this, qOverload<>(&QWidget::update));
    }
}

ScopeStripesWidget* ScopeWidget::stripesWidget() const
{
    Q_D(const ScopeWidget);
    return d->stripesWidget;
}

void ScopeWidget::setName(const QString& name)
{
    Q_D(ScopeWidget);
    d->name = name;
}

QString ScopeWidget::name() const
{
    Q_D(const ScopeWidget);
    return d->name.isEmpty() ? d->defaultName() : d->name;
}

QString ScopeWidget::storedName() const
{
    Q_D(const ScopeWidget);
    return d->name;
}

ScopeLayout* ScopeWidget::layout() const
{
    Q_D(const ScopeWidget);
    return d->layout;
}

ScopeTraceFilter* ScopeWidget::traceFilter() const
{
    Q_D(const ScopeWidget);
    return d->traceFilter;
}

qint64 ScopeWidget::leftIndex() const
{
    Q_D(const ScopeWidget);
    return d->leftIndex;
}

qint64 ScopeWidget::rightIndex() const
{
    Q_D(const ScopeWidget);
    return d->rightIndex;
}

qint64 ScopeWidget::timeAt(const QPoint& position) const
{
    Q_D(const ScopeWidget);
    return d->timeAt(position);
}

void ScopeWidget::setLeftIndex(qint64 value)
{
    Q_D(ScopeWidget);
    d->leftIndex = value;
    update();
}

void ScopeWidget::setRightIndex(qint64 value)
{
    Q_D(ScopeWidget);
    d->rightIndex = value;
    update();
}

void ScopeWidget::paintEvent(QPaintEvent*)
{
    Q_D(ScopeWidget);
    QPainter painter(this);
    painter.eraseRect(rect());
    d->layout->setGeometry(rect());
    d->paintFrame(&painter);
    if (d->scene)
        d->paintScene(&painter);
}

void ScopeWidget::mousePressEvent(QMouseEvent* event)
{
    Q_D(ScopeWidget);
    // Events before the container is set have nowhere to go.
    if (!d->scene)
        return;
    const QPoint position = event->position().toPoint();
    if (event->button() == Qt::LeftButton && event->modifiers() == Qt::ControlModifier) {
        d->panning = true;
        d->panStartOffsets.clear();
        const QList<ScopeTrace*> traces = d->traceFilter->traces();
        for (ScopeTrace* trace : traces)
            d->panStartOffsets.append(qMakePair(QPointer<ScopeTrace>(trace), trace->verticalOffset()));
    }
    d->scene->mousePressed(this, d->timeAt(position), position - d->layout->plotArea().topLeft(), event);
    update();
}

void ScopeWidget::mouseMoveEvent(QMouseEvent* event)
{
    Q_D(ScopeWidget);
    const QPoint position = event->position().toPoint();
    // Hovering over the margins costs nothing: no time arithmetic outside the plot.
    if (!d->layout->plotArea().contains(position) || !d->scene)
        return;
    d->scene->mouseMoved(this, d->timeAt(position), position - d->layout->plotArea().topLeft(), event);
    if (d->panning)
        d->invalidateTraceLayer();
    update();
}

void ScopeWidget::mouseReleaseEvent(QMouseEvent* event)
{
    Q_D(ScopeWidget);
    event->setAccepted(false);
    if (!d->scene)
        return;
    const QPoint position = event->position().toPoint();
    d->scene->mouseReleased(this, d->timeAt(position), position - d->layout->plotArea().topLeft(), event);
    if (d->panning) {
        d->panning = false;
        d->invalidateTraceLayer();
        const auto offsets = std::exchange(d->panStartOffsets, {});
        for (const auto& start : offsets) {
            // The offsets are part of what is saved: changed() carries them
            // through the shot and the scene to the archive.
            if (start.first && start.first->verticalOffset() != start.second)
                Q_EMIT start.first->changed();
        }
    }
    update();
    if (event->isAccepted() && event->button() == Qt::RightButton)
        d->suppressContextMenu = true;
}

void ScopeWidget::wheelEvent(QWheelEvent* event)
{
    Q_D(ScopeWidget);
    if (!d->scene)
        return;
    const QPointF exact = event->position();
    const QPoint position(int(std::round(exact.x())), int(std::round(exact.y())));
    d->scene->wheel(this, d->timeAt(position), position - d->layout->plotArea().topLeft(), event);
    update();
}
