// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopemarker.h"
#include "scopemarker_p.h"

#include "appsettings.h"
#include "iniparser.h"
#include "scopelayout.h"
#include "scopenumbers.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtWidgets/QWidget>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr qint64 defaultPositionA = -10000000;
constexpr qint64 defaultPositionB = 10000000;

// The difference of two times as a double, without 64-bit overflow.
inline double difference(qint64 a, qint64 b)
{
    return double(__int128(a) - b);
}

QByteArray markerKey(int markerSet, char letter)
{
    return QByteArrayLiteral("MarkerPosition_") + QByteArray::number(markerSet) + letter;
}

} // namespace

ScopeMarkerPrivate::ScopeMarkerPrivate(ScopeMarker* q)
    : QObject(q)
    , q_ptr(q)
{
}

qint64 ScopeMarkerPrivate::snap(qint64 time) const
{
    return MouseEventHandler::snapToGrid(time, step);
}

qint64 ScopeMarkerPrivate::tolerance(const QWidget* widget) const
{
    // About three pixels of the plot, in time.
    const __int128 tolerance = (__int128(viewRight) - viewLeft) / MouseEventHandler::plotWidthOf(widget) * 3;
    return qint64(std::clamp<__int128>(tolerance, 0, std::numeric_limits<qint64>::max() / 2));
}

bool ScopeMarkerPrivate::isHit(qint64 position, qint64 time, qint64 tolerance) const
{
    const __int128 distance = __int128(position) - time;
    return distance >= -__int128(tolerance) && distance <= tolerance;
}

void ScopeMarkerPrivate::applyLimitsAndReport()
{
    // Ordering first, clamping second: with both markers beyond a limit A can
    // end up greater than B, which is accepted.
    if (positionA > positionB)
        std::swap(positionA, positionB);
    if (positionA < minTime)
        positionA = minTime;
    if (positionB > maxTime)
        positionB = maxTime;
    if (positionA != reportedA) {
        reportedA = positionA;
        Q_EMIT timePositionChanged(0, positionA);
    }
    if (positionB != reportedB) {
        reportedB = positionB;
        Q_EMIT timePositionChanged(1, positionB);
    }
}

void ScopeMarkerPrivate::computeWindowCurve()
{
    windowCurve.resize(windowPoints);
    for (qint32 i = 0; i < windowPoints; ++i)
        windowCurve[i] = 0.54 - 0.46 * std::cos(2.0 * M_PI * i / windowPoints);
}

void ScopeMarkerPrivate::paintInterval(QPainter* painter, qreal height) const
{
    if (positionA > viewRight || positionB < viewLeft)
        return;
    const double span = difference(viewRight, viewLeft);
    const qreal left = std::max(difference(positionA, viewLeft), 0.0);
    const qreal right = std::min(difference(positionB, viewLeft), span);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0, 122, 204, 100));
    painter->drawRect(QRectF(left, 0.0, right - left, height));

    if (windowFunction != Frequency::Hamming || positionB <= positionA || windowCurve.isEmpty())
        return;
    const double pointsPerTime = double(windowPoints) / difference(positionB, positionA);
    qint64 first = 0;
    if (positionA < viewLeft)
        first = qint64(std::min(difference(viewLeft, positionA) * pointsPerTime, double(windowPoints)));
    QPainterPath path(QPointF(left, height * 0.5));
    for (qint64 k = first, n = 0; k < windowCurve.size(); ++k, ++n) {
        const qreal x = qreal(n) / pointsPerTime + left;
        if (x < 0.0)
            continue;
        if (x > right)
            break;
        path.lineTo(x, height * windowCurve.at(int(k)) * 0.25 + height * 0.5);
    }
    path.lineTo(right, height * 0.5);
    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->setBrush(Qt::NoBrush);
    QPen pen(AppSettings::instance()->color(AppSettings::MarkerColor), 0);
    pen.setCosmetic(true);
    painter->setPen(pen);
    painter->drawPath(path);
    painter->setRenderHint(QPainter::Antialiasing, false);
}

void ScopeMarkerPrivate::paintMarker(const ScopeLayout& layout, QPainter* painter, qint64 position,
                                     const QString& letter) const
{
    if (position < viewLeft || position > viewRight)
        return;
    const QRectF area(layout.plotArea());
    const qreal x = difference(position, viewLeft);
    QPen pen(AppSettings::instance()->color(AppSettings::MarkerColor), 0, Qt::DashLine);
    pen.setCosmetic(true);
    painter->setPen(pen);
    painter->drawLine(QPointF(x, 0.0), QPointF(x, area.height()));

    const QRect ruler = layout.topRuler();
    if (ruler.height() == 0)
        return;
    painter->save();
    painter->resetTransform();
    painter->setClipRect(ruler, Qt::ReplaceClip);
    painter->translate(ruler.bottomLeft());
    const qint64 rulerX = qint64(__int128(ruler.width()) * (__int128(position) - viewLeft) / (__int128(viewRight) - viewLeft));
    painter->setPen(AppSettings::instance()->color(AppSettings::MarkerColor));
    painter->drawText(QPoint(int(rulerX), 0), letter);
    painter->restore();
}

ScopeMarker::ScopeMarker(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeMarkerPrivate(this))
{
    Q_D(ScopeMarker);
    connect(d, &ScopeMarkerPrivate::timePositionChanged, this, &ScopeMarker::timePositionChanged);
    d->computeWindowCurve();
}

ScopeMarker::~ScopeMarker() = default;

void ScopeMarker::paint(const ScopeLayout& layout, QPainter* painter) const
{
    Q_D(const ScopeMarker);
    const QRect area = layout.plotArea();
    if (!painter || area.isEmpty() || d->viewRight <= d->viewLeft)
        return;
    painter->save();
    painter->resetTransform();
    painter->setClipRect(area, Qt::ReplaceClip);
    // Origin at the bottom left, one unit of x is one nanosecond, y upwards.
    const QRectF areaF(area);
    painter->translate(areaF.bottomLeft());
    painter->scale(areaF.width() / difference(d->viewRight, d->viewLeft), -1.0);
    if (d->showInterval)
        d->paintInterval(painter, areaF.height());
    d->paintMarker(layout, painter, d->positionA, QStringLiteral("A"));
    d->paintMarker(layout, painter, d->positionB, QStringLiteral("B"));
    painter->restore();
}

bool ScopeMarker::readSection(KlIniParser::IniSection& section)
{
    Q_D(ScopeMarker);
    const QByteArray keyA = markerKey(d->markerSet, 'A');
    const QByteArray keyB = markerKey(d->markerSet, 'B');
    qint64 a = defaultPositionA;
    qint64 b = defaultPositionB;
    if (section.contains(keyA))
        a = ScopeNumbers::toLongLong(section.valueView(keyA));
    if (section.contains(keyB))
        b = ScopeNumbers::toLongLong(section.valueView(keyB));
    // Stored as they are: the archive is trusted to hold snapped, ordered values.
    d->positionA = a;
    d->positionB = b;
    if (d->positionA != d->reportedA) {
        d->reportedA = d->positionA;
        Q_EMIT d->timePositionChanged(0, d->positionA);
    }
    if (d->positionB != d->reportedB) {
        d->reportedB = d->positionB;
        Q_EMIT d->timePositionChanged(1, d->positionB);
    }
    return true;
}

void ScopeMarker::writeSection(KlIniParser::IniSection& section) const
{
    Q_D(const ScopeMarker);
    section.setValue(markerKey(d->markerSet, 'A'), QByteArray::number(d->positionA));
    section.setValue(markerKey(d->markerSet, 'B'), QByteArray::number(d->positionB));
}

void ScopeMarker::setViewRange(qint64 left, qint64 right)
{
    Q_D(ScopeMarker);
    d->viewLeft = left;
    d->viewRight = right;
}

void ScopeMarker::setShowInterval(bool show)
{
    Q_D(ScopeMarker);
    d->showInterval = show;
}

bool ScopeMarker::showInterval() const
{
    Q_D(const ScopeMarker);
    return d->showInterval;
}

void ScopeMarker::setMarkerSet(int markerSet)
{
    Q_D(ScopeMarker);
    d->markerSet = markerSet;
}

int ScopeMarker::markerSet() const
{
    Q_D(const ScopeMarker);
    return d->markerSet;
}

void ScopeMarker::setStep(qint64 step)
{
    Q_D(ScopeMarker);
    d->step = step;
}

qint64 ScopeMarker::step() const
{
    Q_D(const ScopeMarker);
    return d->step;
}

void ScopeMarker::setLimits(qint64 minTime, qint64 maxTime)
{
    Q_D(ScopeMarker);
    d->minTime = minTime;
    d->maxTime = maxTime;
}

qint64 ScopeMarker::minTime() const
{
    Q_D(const ScopeMarker);
    return d->minTime;
}

qint64 ScopeMarker::maxTime() const
{
    Q_D(const ScopeMarker);
    return d->maxTime;
}

int ScopeMarker::windowFunction() const
{
    Q_D(const ScopeMarker);
    return d->windowFunction;
}

void ScopeMarker::setPosition(quint8 which, qint64 time)
{
    Q_D(ScopeMarker);
    if (which == 0)
        d->positionA = d->snap(time);
    else if (which == 1)
        d->positionB = d->snap(time);
    d->applyLimitsAndReport();
}

qint64 ScopeMarker::position(quint8 which) const
{
    Q_D(const ScopeMarker);
    if (which == 0)
        return d->positionA;
    if (which == 1)
        return d->positionB;
    return 0;
}

bool ScopeMarker::mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_UNUSED(position)
    Q_D(ScopeMarker);
    if (!event || !(event->buttons() & Qt::LeftButton))
        return false;
    const qint64 tolerance = d->tolerance(widget);
    if (d->isHit(d->positionA, time, tolerance)) {
        d->draggingA = true;
        return true;
    }
    if (d->isHit(d->positionB, time, tolerance)) {
        d->draggingB = true;
        return true;
    }
    return false;
}

bool ScopeMarker::mouseReleased(QWidget* widget, qint64 time)
{
    Q_D(ScopeMarker);
    if (d->draggingA)
        setPosition(0, time);
    else if (d->draggingB)
        setPosition(1, time);
    d->draggingA = false;
    d->draggingB = false;
    const qint64 tolerance = d->tolerance(widget);
    const bool hit = d->isHit(d->positionA, time, tolerance) || d->isHit(d->positionB, time, tolerance);
    if (widget) {
        if (hit)
            widget->setCursor(Qt::SplitHCursor);
        else
            widget->unsetCursor();
    }
    return hit;
}

bool ScopeMarker::mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_UNUSED(position)
    Q_D(ScopeMarker);
    if (event && (event->buttons() & Qt::LeftButton) && (d->draggingA || d->draggingB)) {
        if (d->draggingA)
            d->positionA = d->snap(time);
        else
            d->positionB = d->snap(time);
        if (d->positionA > d->positionB) {
            // The marker under the mouse keeps following it under its new name.
            std::swap(d->positionA, d->positionB);
            d->draggingA = !d->draggingA;
            d->draggingB = !d->draggingB;
        }
        d->applyLimitsAndReport();
    }
    const qint64 tolerance = d->tolerance(widget);
    const bool hit = d->isHit(d->positionA, time, tolerance) || d->isHit(d->positionB, time, tolerance);
    if (hit && widget)
        widget->setCursor(Qt::SplitHCursor);
    return hit;
}

void ScopeMarker::onWindowFunktionChanged(Frequency::WindowFunctions currentWindowFuntion)
{
    Q_D(ScopeMarker);
    d->windowFunction = currentWindowFuntion;
    Q_EMIT d->timePositionChanged(0, d->positionA);
}
