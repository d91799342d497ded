// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracefilter.h"

#include <QtCore/QObject>

class ScopeTraceFilterPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceFilter)

public:
    explicit ScopeTraceFilterPrivate(ScopeTraceFilter* q);

    bool insert(ScopeTrace* trace);
    void updateCompleteShot();
    void signalChange();

    ScopeTraceFilter* q_ptr;
    ScopeShot* completeShot = nullptr;
    QList<ScopeTrace*> traceList;
};
