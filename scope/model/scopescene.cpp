// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopescene.h"

#include "appsettings.h"
#include "iniparser.h"
#include "scopearchivekeys.h"
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopenumbers.h"
#include "scopequickmeasure.h"
#include "scopeshot.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "zoombar.h"

#include "scopescene_p.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace {

const QByteArrayView sliderLeftKey(ScopeArchiveKeys::ViewSliderLeft);
const QByteArrayView sliderRightKey(ScopeArchiveKeys::ViewSliderRight);

qint64 clampTime(__int128 time)
{
    return qint64(std::clamp<__int128>(time, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max()));
}

// Pixel column of \a time in a plot of \a width pixels showing left … right.
qint64 columnOf(qint64 time, qint64 left, qint64 right, int width)
{
    return qint64(__int128(width) * (__int128(time) - left) / (__int128(right) - left));
}

} // namespace

ScopeScenePrivate::ScopeScenePrivate(ScopeScene* q)
    : QObject(q)
    , q_ptr(q)
{
}

void ScopeScenePrivate::recomputeRange()
{
    startTime = 0;
    endTime = 0;
    std::vector<quint64> timeBases;
    for (const auto& shot : std::as_const(shots)) {
        startTime = std::min(startTime, shot->startTime());
        endTime = std::max(endTime, shot->endTime());
        const QList<int> numbers = shot->channelNumbers();
        for (int number : numbers) {
            if (const ScopeTrace* trace = shot->trace(number))
                timeBases.push_back(trace->timeBase());
        }
    }
    const __int128 margin = __int128(double(__int128(endTime) - startTime) * 0.1);
    startTime = clampTime(startTime - margin);
    endTime = clampTime(endTime + margin);

    std::sort(timeBases.begin(), timeBases.end());
    timeBases.erase(std::unique(timeBases.begin(), timeBases.end()), timeBases.end());
    while (timeBases.size() > 1) {
        const quint64 last = timeBases.back();
        timeBases.pop_back();
        timeBases.back() = std::gcd(timeBases.back(), last);
    }
    const quint64 divisor = timeBases.empty() || timeBases.front() == 0 ? 1 : timeBases.front();
    timeGrid = qint64(divisor) * 100;

    quickMeasure->setStep(timeGrid);
    for (ScopeMarker* marker : std::as_const(markers)) {
        marker->setLimits(startTime, endTime);
        marker->setStep(timeGrid);
    }
    if (zoomBar) {
        zoomBar->setMinimum(startTime);
        zoomBar->setMaximum(endTime);
        zoomBar->setSmallStep(timeGrid);
        zoomBar->setLargeStep(timeGrid * 10);
        zoomBar->setMinimumSliderDifference(timeGrid * 10);
    }
}

void ScopeScenePrivate::startPan(QWidget* widget, const QPoint& position)
{
    panning = true;
    lastMousePoint = position;
    if (widget)
        widget->setCursor(Qt::ClosedHandCursor);
}

void ScopeScenePrivate::panTo(QWidget* widget, const QPoint& position)
{
    const QPoint last = lastMousePoint;
    lastMousePoint = position;

    if (ScopeTraceFilter* filter = MouseEventHandler::traceFilterOf(widget)) {
        const int pixels = last.y() - position.y();
        const QList<ScopeTrace*> traces = filter->traces();
        for (ScopeTrace* trace : traces) {
            const bool blocked = trace->blockSignals(true);
            trace->shiftVerticalOffset(pixels);
            trace->blockSignals(blocked);
        }
    }

    const ScopeLayout* layout = MouseEventHandler::layoutOf(widget);
    if (!zoomBar || !layout)
        return;
    const qint64 divisionsAcross = layout->divisions().width();
    const qint64 divisionWidth = layout->divisionSize().width();
    if (divisionsAcross <= 0 || divisionWidth <= 0)
        return;
    const qint64 dx = last.x() - position.x();
    const qint64 left = zoomBar->sliderLeft();
    const qint64 right = zoomBar->sliderRight();
    const __int128 shift = __int128(dx) * (__int128(right) - left) / divisionsAcross / divisionWidth;
    // The shift is cut at the zoom bar's limits.
    __int128 move = 0;
    if (shift < 1)
        move = -std::min<__int128>(-shift, __int128(left) - zoomBar->minimum());
    else
        move = std::min<__int128>(shift, __int128(zoomBar->maximum()) - right);
    zoomBar->setSlider(clampTime(left + move), clampTime(right + move));
}

void ScopeScenePrivate::endPan(QWidget* widget)
{
    panning = false;
    if (ScopeTraceFilter* filter = MouseEventHandler::traceFilterOf(widget)) {
        const QList<ScopeTrace*> traces = filter->traces();
        for (ScopeTrace* trace : traces)
            trace->shiftVerticalOffset(0);
    }
    if (widget)
        widget->unsetCursor();
}

void ScopeScenePrivate::paintTrigger(const ScopeLayout& layout, QPainter* painter) const
{
    const QRect area = layout.plotArea();
    const QColor color = AppSettings::instance()->color(AppSettings::TriggerColor);
    painter->save();
    painter->resetTransform();
    const bool visible = viewLeft <= 0 && 0 <= viewRight;
    if (visible && !area.isEmpty()) {
        painter->setClipRect(area, Qt::ReplaceClip);
        const qint64 x = area.left() + columnOf(0, viewLeft, viewRight, area.width());
        QPen pen(color, 0);
        pen.setCosmetic(true);
        painter->setPen(pen);
        painter->drawLine(QPoint(int(x), area.top()), QPoint(int(x), area.bottom()));
    }
    const QRect ruler = layout.topRuler();
    if (ruler.height() > 0) {
        painter->setClipRect(ruler, Qt::ReplaceClip);
        painter->resetTransform();
        painter->translate(ruler.topLeft());
        painter->setPen(color);
        const int ascent = painter->fontMetrics().ascent();
        if (0 < viewLeft)
            painter->drawText(QPoint(0, 2 + ascent), QStringLiteral("<"));
        else if (0 > viewRight)
            painter->drawText(QPoint(ruler.width() - 10, 2 + ascent), QStringLiteral(">"));
        else
            painter->drawText(QPoint(int(columnOf(0, viewLeft, viewRight, ruler.width())), 2 + ascent),
                              QStringLiteral("T"));
    }
    painter->restore();
}

ScopeScene::ScopeScene(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeScenePrivate(this))
{
    Q_D(ScopeScene);
    d->quickMeasure = new ScopeQuickMeasure(this);
    ScopeMarker* marker = new ScopeMarker(this);
    d->markers.append(marker);
    // Markers first: a press on a marker drags it instead of measuring.
    d->handlers.append(marker);
    d->handlers.append(d->quickMeasure);
    d->recomputeRange();
}

ScopeScene::~ScopeScene() = default;

void ScopeScene::addShot(const QSharedPointer<ScopeShot>& shot)
{
    Q_D(ScopeScene);
    if (!shot || d->shots.contains(shot))
        return;
    d->shots.append(shot);
    d->recomputeRange();
    connect(shot.data(), &ScopeShot::changed, this, &ScopeScene::sceneChanged);
    connect(d->quickMeasure, &ScopeQuickMeasure::publishQuickMeasureRequest, shot.data(),
            &ScopeShot::publishQuickMeasureRequest);
    connect(d->quickMeasure, &ScopeQuickMeasure::publishQuickMeasureDisabled, shot.data(),
            &ScopeShot::publishQuickMeasureDisabled);
    Q_EMIT sceneChanged();
}

void ScopeScene::removeShot(const QSharedPointer<ScopeShot>& shot)
{
    Q_D(ScopeScene);
    if (!shot || !d->shots.removeOne(shot))
        return;
    d->recomputeRange();
    disconnect(shot.data(), nullptr, this, nullptr);
    disconnect(this, nullptr, shot.data(), nullptr);
    disconnect(d->quickMeasure, nullptr, shot.data(), nullptr);
    Q_EMIT sceneChanged();
}

QList<QSharedPointer<ScopeShot>> ScopeScene::shots() const
{
    Q_D(const ScopeScene);
    return d->shots;
}

void ScopeScene::clear()
{
    Q_D(ScopeScene);
    const QList<QSharedPointer<ScopeShot>> shots = d->shots;
    for (const auto& shot : shots)
        removeShot(shot);
    if (d->zoomBar) {
        d->zoomBar->setMinimum(0);
        d->zoomBar->setMaximum(100);
        d->zoomBar->setSlider(0, 100);
    }
}

qint64 ScopeScene::timeGrid() const
{
    Q_D(const ScopeScene);
    return d->timeGrid;
}

qint64 ScopeScene::startTime() const
{
    Q_D(const ScopeScene);
    return d->startTime;
}

qint64 ScopeScene::endTime() const
{
    Q_D(const ScopeScene);
    return d->endTime;
}

qint64 ScopeScene::viewLeft() const
{
    Q_D(const ScopeScene);
    return d->viewLeft;
}

qint64 ScopeScene::viewRight() const
{
    Q_D(const ScopeScene);
    return d->viewRight;
}

QList<ScopeMarker*> ScopeScene::markers() const
{
    Q_D(const ScopeScene);
    return d->markers;
}

ScopeQuickMeasure* ScopeScene::quickMeasure() const
{
    Q_D(const ScopeScene);
    return d->quickMeasure;
}

void ScopeScene::setZoomBar(ZoomBar* zoomBar)
{
    Q_D(ScopeScene);
    if (d->zoomBar == zoomBar)
        return;
    if (d->zoomBar)
        disconnect(d->zoomBar, nullptr, this, nullptr);
    d->zoomBar = zoomBar;
    if (!zoomBar)
        return;
    connect(zoomBar, &ZoomBar::sliderChanged, this, &ScopeScene::onZoomBarChanged);
    d->recomputeRange();
    onZoomBarChanged();
}

ZoomBar* ScopeScene::zoomBar() const
{
    Q_D(const ScopeScene);
    return d->zoomBar;
}

bool ScopeScene::readSection(KlIniParser::IniSection* section, KlIniParser::IniSection* fallback)
{
    Q_D(ScopeScene);
    if (d->zoomBar) {
        auto read = [&](QByteArrayView key, qint64 missing) {
            if (section && section->contains(key))
                return ScopeNumbers::toLongLong(section->valueView(key));
            if (fallback && fallback->contains(key))
                return ScopeNumbers::toLongLong(fallback->valueView(key));
            return missing;
        };
        const qint64 left = read(sliderLeftKey, d->zoomBar->minimum());
        const qint64 right = read(sliderRightKey, d->zoomBar->maximum());
        d->zoomBar->setSlider(left, right);
    }
    if (section) {
        for (ScopeMarker* marker : std::as_const(d->markers))
            marker->readSection(*section);
    }
    return true;
}

void ScopeScene::writeSection(KlIniParser::IniSection* section, KlIniParser::IniSection* secondSection) const
{
    Q_D(const ScopeScene);
    if (d->zoomBar) {
        const QByteArray left = QByteArray::number(d->zoomBar->sliderLeft());
        const QByteArray right = QByteArray::number(d->zoomBar->sliderRight());
        for (KlIniParser::IniSection* target : {section, secondSection}) {
            if (!target)
                continue;
            target->setValue(sliderLeftKey, left);
            target->setValue(sliderRightKey, right);
        }
    }
    if (section) {
        for (ScopeMarker* marker : std::as_const(d->markers))
            marker->writeSection(*section);
    }
}

void ScopeScene::paint(QWidget* plot, QPainter* painter, const QList<ScopeTrace*>& traces) const
{
    paint(layoutOf(plot), painter, traces);
}

void ScopeScene::paint(const ScopeLayout* layout, QPainter* painter, const QList<ScopeTrace*>& traces) const
{
    Q_D(const ScopeScene);
    if (!layout || !painter || d->viewRight <= d->viewLeft)
        return;
    d->paintTrigger(*layout, painter);
    for (const auto& shot : std::as_const(d->shots))
        shot->paint(layout, painter, traces, d->viewLeft, d->viewRight);
    for (const ScopeMarker* marker : std::as_const(d->markers))
        marker->paint(*layout, painter);
    d->quickMeasure->paint(*layout, painter);
}

bool ScopeScene::mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_D(ScopeScene);
    if (!event)
        return false;
    if (event->button() == Qt::LeftButton && event->modifiers() == Qt::ControlModifier) {
        d->grabber = this;
        d->startPan(widget, position);
        event->accept();
        return true;
    }
    for (MouseEventHandler* handler : std::as_const(d->handlers)) {
        if (handler->mousePressed(widget, time, position, event)) {
            d->grabber = handler;
            event->accept();
            return true;
        }
    }
    return false;
}

bool ScopeScene::mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_D(ScopeScene);
    if (d->grabber == this) {
        d->panTo(widget, position);
        return true;
    }
    if (d->grabber)
        return d->grabber->mouseMoved(widget, time, position, event);
    for (MouseEventHandler* handler : std::as_const(d->handlers)) {
        if (handler->mouseMoved(widget, time, position, event))
            return true;
    }
    // No hit zone under the pointer any more: drop a handler's hover cursor.
    if (widget)
        widget->unsetCursor();
    return false;
}

bool ScopeScene::mouseReleased(QWidget* widget, qint64 time)
{
    Q_D(ScopeScene);
    MouseEventHandler* grabber = d->grabber;
    d->grabber = nullptr;
    if (!grabber)
        return false;
    if (grabber == this)
        d->endPan(widget);
    else
        grabber->mouseReleased(widget, time);
    return true;
}

bool ScopeScene::mouseReleased(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_UNUSED(position)
    const bool taken = mouseReleased(widget, time);
    if (taken && event)
        event->accept();
    return taken;
}

bool ScopeScene::wheel(QWidget* widget, qint64 time, const QPoint& position, QWheelEvent* event)
{
    Q_UNUSED(position)
    Q_D(ScopeScene);
    if (!event || !d->zoomBar || !(event->modifiers() & Qt::ControlModifier))
        return false;
    const qint64 left = d->zoomBar->sliderLeft();
    const qint64 right = d->zoomBar->sliderRight();
    const __int128 distanceLeft = __int128(time) - d->viewLeft;
    const __int128 distanceRight = __int128(d->viewRight) - time;
    if (distanceLeft < 1 || distanceRight < 1)
        return false;
    const bool forward = event->angleDelta().y() > 0;
    const double factor = forward ? 1.0 / 1.5 : 1.5;
    const __int128 newLeft = __int128(double(distanceLeft) * factor);
    const __int128 newRight = __int128(double(distanceRight) * factor);
    d->zoomBar->setSlider(clampTime(time - newLeft), clampTime(time + newRight));
    event->accept();
    const bool changed = d->zoomBar->sliderLeft() != left || d->zoomBar->sliderRight() != right;
    if (changed && (event->modifiers() & Qt::ShiftModifier)) {
        if (ScopeTraceFilter* filter = traceFilterOf(widget)) {
            const QList<ScopeTrace*> traces = filter->traces();
            for (ScopeTrace* trace : traces) {
                if (forward)
                    trace->zoomIn(time);
                else
                    trace->zoomOut(time);
            }
        }
    }
    return true;
}

void ScopeScene::onZoomBarChanged()
{
    Q_D(ScopeScene);
    if (!d->zoomBar)
        return;
    d->viewLeft = d->zoomBar->sliderLeft();
    d->viewRight = d->zoomBar->sliderRight();
    for (ScopeMarker* marker : std::as_const(d->markers))
        marker->setViewRange(d->viewLeft, d->viewRight);
    d->quickMeasure->setViewRange(d->viewLeft, d->viewRight);
}
