// SPDX-License-Identifier: GPL-3.0-or-later
#include "traceinformation.h"

TraceInformation::TraceInformation(QObject* parent)
    : QObject(parent)
{
}

TraceInformation::~TraceInformation() = default;

bool TraceInformation::covers(qint64 a, qint64 b) const
{
    return startTime() <= a && m_endTime >= b;
}

void TraceInformation::setCachedEndTime(qint64 endTime)
{
    m_endTime = endTime;
}

qint64 TraceInformation::cachedEndTime() const
{
    return m_endTime;
}
