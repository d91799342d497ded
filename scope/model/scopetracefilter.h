// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class ScopeShot;
class ScopeTrace;
class ScopeTraceFilterPrivate;

/*! \brief The ordered set of traces one consumer shows, e.g. one stripe.

    The traces are not owned; the filter must not outlive them. Every change
    is signalled through the event queue: scopeTracesChanged() arrives once
    per change, in a later pass of the event loop, when the list is final.
*/
class ScopeTraceFilter : public QObject
{
    Q_OBJECT

public:
    explicit ScopeTraceFilter(QObject* parent = nullptr);
    ~ScopeTraceFilter() override;

    /*! \brief Appends \a trace unless it is null or already listed. */
    void addTrace(ScopeTrace* trace);
    /*! \brief Removes \a trace if listed. */
    void removeTrace(ScopeTrace* trace);
    /*! \brief Replaces the list by all traces of \a shot, by channel number. */
    void setShot(ScopeShot* shot);
    /*! \brief A copy of the list. */
    QList<ScopeTrace*> traces() const;
    /*! \brief The shot whose traces the list holds all and only, else null. */
    ScopeShot* completeShot() const;

Q_SIGNALS:
    void scopeTracesChanged();

private:
    Q_DECLARE_PRIVATE(ScopeTraceFilter)
    ScopeTraceFilterPrivate* d_ptr;
};
