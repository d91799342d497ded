// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracecalculator.h"

#include <QtCore/QPointer>

class ScopeTraceCalculatorPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceCalculator)
public:
    explicit ScopeTraceCalculatorPrivate(ScopeTraceCalculator* q);

    /*! \brief floor(t ÷ (timeBase × 100)) + triggerIndex; 0 without a trace. */
    qint64 indexOf(qint64 time) const;
    double valueAt(qint64 time) const;
    /*! \brief Runs the statistics update if something changed. */
    void update();
    /*! \brief Whether the last update found samples in the range. */
    bool hasRange() const;
    QString withDecimalPoint(QString text) const;

    ScopeTraceCalculator* q_ptr;
    // Guarded so that a deleted trace reads as no trace.
    QPointer<ScopeTrace> trace;
    qint64 markerA = 0;
    qint64 markerB = 0;
    bool dirty = true;
    qint32 startIndex = 0;
    qint32 endIndex = 0;
    quint32 sampleCount = 0;
    double minimum = qQNaN();
    double maximum = qQNaN();
    double sum = qQNaN();
    double integralSum = qQNaN();
    double rms = qQNaN();
};
