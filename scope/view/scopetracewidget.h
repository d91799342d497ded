// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

class ScopeTrace;
class ScopeTraceWidgetPrivate;

/*! \brief Control panel of the trace selected in the trace list.

    Position, scale, ground, off, invert, colour, display kind and binary view
    of one ScopeTrace. The controls only call the trace's operations; the panel
    re-reads the trace whenever it or its shot changes.

    Wiring: connect ScopeTraceList::scopeTraceSelected() to setScopeTrace().
*/
class ScopeTraceWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ScopeTraceWidget(QWidget* parent = nullptr);
    ~ScopeTraceWidget() override;

    /*! \brief The trace the controls work on, or null. */
    ScopeTrace* scopeTrace() const;

public Q_SLOTS:
    /*! \brief Makes the controls work on \a pScopeTrace (not owned; null for none). */
    void setScopeTrace(ScopeTrace* pScopeTrace);

private:
    Q_DECLARE_PRIVATE(ScopeTraceWidget)
    ScopeTraceWidgetPrivate* const d_ptr;
};
