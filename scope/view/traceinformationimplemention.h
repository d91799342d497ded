// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "traceinformation.h"

#include <QtCore/QPointer>

class ScopeTrace;

/*! \brief TraceInformation of a ScopeTrace.

    Holds the trace through a guarded pointer: once the trace is deleted the
    handle answers like an empty trace (no samples, empty name, invalid
    colour, times 0, not off). Colour and off state are cached so that only
    real changes of the trace are announced. The end time is taken once, at
    construction. */
class TraceInformationImplemention : public TraceInformation
{
    Q_OBJECT
public:
    explicit TraceInformationImplemention(ScopeTrace* trace, QObject* parent = nullptr);
    ~TraceInformationImplemention() override;

    /*! \brief The trace, or null once it has been deleted. */
    ScopeTrace* scopeTrace() const;

    QVector<double> samples() const override;
    QString name() const override;
    QColor color() const override;
    void setColor(const QColor& color) override;
    double samplingTime() const override;
    qint64 startTime() const override;
    bool isOff() const override;
    void setOff(bool off) override;

private Q_SLOTS:
    void onScopeTraceChanged();

private:
    QPointer<ScopeTrace> m_trace;
    QColor m_color;
    bool m_off = false;
};
