// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopequickmeasure.h"
#include "scopequickmeasure_p.h"

#include "appsettings.h"
#include "scopelayout.h"

#include <QtGui/QMouseEvent>
#include <QtGui/QPainter>

ScopeQuickMeasurePrivate::ScopeQuickMeasurePrivate(ScopeQuickMeasure* q)
    : QObject(q)
    , q_ptr(q)
{
}

ScopeQuickMeasure::ScopeQuickMeasure(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeQuickMeasurePrivate(this))
{
    Q_D(ScopeQuickMeasure);
    connect(d, &ScopeQuickMeasurePrivate::publishQuickMeasureRequest, this,
            &ScopeQuickMeasure::publishQuickMeasureRequest);
    connect(d, &ScopeQuickMeasurePrivate::publishQuickMeasureDisabled, this,
            &ScopeQuickMeasure::publishQuickMeasureDisabled);
}

ScopeQuickMeasure::~ScopeQuickMeasure() = default;

void ScopeQuickMeasure::paint(const ScopeLayout& layout, QPainter* painter) const
{
    Q_D(const ScopeQuickMeasure);
    const QRect area = layout.plotArea();
    if (!painter || !d->active || area.isEmpty() || d->viewRight <= d->viewLeft)
        return;
    if (d->position < d->viewLeft || d->position > d->viewRight)
        return;
    painter->save();
    painter->resetTransform();
    painter->setClipRect(area, Qt::ReplaceClip);
    const QRectF areaF(area);
    painter->translate(areaF.bottomLeft());
    painter->scale(areaF.width() / double(__int128(d->viewRight) - d->viewLeft), -1.0);
    QPen pen(AppSettings::instance()->color(AppSettings::MarkerColor), 0, Qt::SolidLine);
    pen.setCosmetic(true);
    painter->setPen(pen);
    const qreal x = qreal(double(__int128(d->position) - d->viewLeft));
    painter->drawLine(QPointF(x, 0.0), QPointF(x, areaF.height()));
    painter->restore();
}

void ScopeQuickMeasure::setViewRange(qint64 left, qint64 right)
{
    Q_D(ScopeQuickMeasure);
    d->viewLeft = left;
    d->viewRight = right;
}

void ScopeQuickMeasure::setStep(qint64 step)
{
    Q_D(ScopeQuickMeasure);
    d->step = step;
}

qint64 ScopeQuickMeasure::step() const
{
    Q_D(const ScopeQuickMeasure);
    return d->step;
}

bool ScopeQuickMeasure::isActive() const
{
    Q_D(const ScopeQuickMeasure);
    return d->active;
}

qint64 ScopeQuickMeasure::position() const
{
    Q_D(const ScopeQuickMeasure);
    return d->position;
}

bool ScopeQuickMeasure::mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_UNUSED(widget)
    Q_UNUSED(position)
    Q_D(ScopeQuickMeasure);
    if (!event || !(event->buttons() & Qt::LeftButton))
        return false;
    d->active = true;
    d->position = snapToGrid(time, d->step);
    Q_EMIT d->publishQuickMeasureRequest(d->position);
    return true;
}

bool ScopeQuickMeasure::mouseReleased(QWidget* widget, qint64 time)
{
    Q_UNUSED(widget)
    Q_D(ScopeQuickMeasure);
    if (!d->active)
        return false;
    d->active = false;
    d->position = snapToGrid(time, d->step);
    Q_EMIT d->publishQuickMeasureDisabled();
    return true;
}

bool ScopeQuickMeasure::mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event)
{
    Q_UNUSED(widget)
    Q_UNUSED(position)
    Q_D(ScopeQuickMeasure);
    if (!event || !(event->buttons() & Qt::LeftButton))
        return false;
    d->position = snapToGrid(time, d->step);
    if (d->active)
        Q_EMIT d->publishQuickMeasureRequest(d->position);
    return d->active;
}
