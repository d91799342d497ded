// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeshot.h"

#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QSharedPointer>

class ScopeShotPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeShot)

public:
    explicit ScopeShotPrivate(ScopeShot* q);

    /*! Builds or (with \a reuse) refreshes the traces from the archive. */
    bool readTraces(bool reuse);
    void addTrace(int number, const QSharedPointer<ScopeTrace>& trace);
    void dropTrace(ScopeTrace* trace);
    QSharedPointer<ScopeTrace> makeTrace(int number);

    ScopeShot* q_ptr;
    QMap<qint32, QSharedPointer<ScopeTrace>> traceMap;
    qint32 timeBase = 0;
    ScopeShotArchive* archive = nullptr;
    void* readOutSource = nullptr;
    // Set while the shot is destroyed: the traces are then deleted as its
    // children (in one pass) instead of one by one by their shared pointers.
    bool destroying = false;

public Q_SLOTS:
    void traceViewChanged();
    void onScopeElementsChanged();

Q_SIGNALS:
    void publishQuickMeasureRequest(qint64 timeStamp);
    void publishQuickMeasureDisabled();
};
