// SPDX-License-Identifier: GPL-3.0-or-later
#include "traceinformationimplemention.h"

#include "scopetrace.h"

TraceInformationImplemention::TraceInformationImplemention(ScopeTrace* trace, QObject* parent)
    : TraceInformation(parent)
    , m_trace(trace)
{
    if (!trace)
        return;
    m_color = trace->color();
    m_off = trace->isOff();
    setCachedEndTime(trace->endTime());
    // changed() follows colour and off-state changes alike (viewChanged()
    // would too, but not a change of samples, which is of no interest here).
    connect(trace, &ScopeTrace::changed, this, &TraceInformationImplemention::onScopeTraceChanged);
}

TraceInformationImplemention::~TraceInformationImplemention() = default;

ScopeTrace* TraceInformationImplemention::scopeTrace() const
{
    return m_trace.data();
}

QVector<double> TraceInformationImplemention::samples() const
{
    return m_trace ? m_trace->samples() : QVector<double>();
}

QString TraceInformationImplemention::name() const
{
    return m_trace ? m_trace->name() : QString();
}

QColor TraceInformationImplemention::color() const
{
    return m_trace ? m_trace->color() : QColor();
}

void TraceInformationImplemention::setColor(const QColor& color)
{
    if (color != m_color) {
        m_color = color;
        Q_EMIT colorChanged(color);
    }
    if (m_trace && m_trace->color() != m_color)
        m_trace->setColor(m_color);
}

double TraceInformationImplemention::samplingTime() const
{
    return m_trace ? static_cast<double>(m_trace->timeBase()) : 0.0;
}

qint64 TraceInformationImplemention::startTime() const
{
    return m_trace ? m_trace->startTime() : 0;
}

bool TraceInformationImplemention::isOff() const
{
    return m_trace ? m_trace->isOff() : false;
}

void TraceInformationImplemention::setOff(bool off)
{
    if (m_trace && m_trace->isOff() != off)
        m_trace->setOff(off, true);
}

void TraceInformationImplemention::onScopeTraceChanged()
{
    if (!m_trace)
        return;
    const QColor color = m_trace->color();
    if (color != m_color) {
        m_color = color;
        Q_EMIT colorChanged(color);
    }
    const bool off = m_trace->isOff();
    if (off != m_off) {
        m_off = off;
        Q_EMIT visibilityChanged();
    }
}
