// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracefilter.h"
#include "scopetracefilter_p.h"

#include "scopeshot.h"
#include "scopetrace.h"

#include <QtCore/QMetaObject>

ScopeTraceFilterPrivate::ScopeTraceFilterPrivate(ScopeTraceFilter* q)
    : QObject(q)
    , q_ptr(q)
{
}

bool ScopeTraceFilterPrivate::insert(ScopeTrace* trace)
{
    if (!trace || traceList.contains(trace))
        return false;
    traceList.append(trace);
    return true;
}

void ScopeTraceFilterPrivate::updateCompleteShot()
{
    completeShot = nullptr;
    if (traceList.isEmpty())
        return;
    QObject* shot = traceList.first()->shot();
    for (const ScopeTrace* trace : std::as_const(traceList)) {
        if (trace->shot() != shot)
            return;
    }
    ScopeShot* scopeShot = qobject_cast<ScopeShot*>(shot);
    if (scopeShot && scopeShot->channelNumbers().size() == traceList.size())
        completeShot = scopeShot;
}

void ScopeTraceFilterPrivate::signalChange()
{
    // Queued, so that users see the list only in its final state.
    QMetaObject::invokeMethod(q_ptr, "scopeTracesChanged", Qt::QueuedConnection);
}

ScopeTraceFilter::ScopeTraceFilter(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeTraceFilterPrivate(this))
{
}

ScopeTraceFilter::~ScopeTraceFilter() = default;

void ScopeTraceFilter::addTrace(ScopeTrace* trace)
{
    Q_D(ScopeTraceFilter);
    if (!d->insert(trace))
        return;
    d->updateCompleteShot();
    d->signalChange();
}

void ScopeTraceFilter::removeTrace(ScopeTrace* trace)
{
    Q_D(ScopeTraceFilter);
    if (!trace || d->traceList.removeAll(trace) == 0)
        return;
    d->updateCompleteShot();
    d->signalChange();
}

void ScopeTraceFilter::setShot(ScopeShot* shot)
{
    Q_D(ScopeTraceFilter);
    d->traceList.clear();
    if (shot) {
        const QList<int> numbers = shot->channelNumbers();
        for (int number : numbers)
            d->insert(shot->trace(number));
    }
    d->updateCompleteShot();
    d->signalChange();
}

QList<ScopeTrace*> ScopeTraceFilter::traces() const
{
    Q_D(const ScopeTraceFilter);
    return d->traceList;
}

ScopeShot* ScopeTraceFilter::completeShot() const
{
    Q_D(const ScopeTraceFilter);
    return d->completeShot;
}
