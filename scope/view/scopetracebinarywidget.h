// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

class ScopeTrace;
class ScopeTraceBinaryWidgetPrivate;

/*! \brief Chooses which bits of an integer trace are drawn as binary signals.

    One check box per bit; the group box switches the trace's binary view.
    Every change of a box is written to the trace at once. Without a parent
    the widget is a window of its own titled "Auswahl der Binärsignale".
*/
class ScopeTraceBinaryWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ScopeTraceBinaryWidget(QWidget* parent = nullptr);
    ~ScopeTraceBinaryWidget() override;

    /*! \brief The trace to work on (not owned; null makes every action a no-op). */
    void setScopeTrace(ScopeTrace* pScopeTrace);
    ScopeTrace* scopeTrace() const;

private:
    Q_DECLARE_PRIVATE(ScopeTraceBinaryWidget)
    ScopeTraceBinaryWidgetPrivate* const d_ptr;
};
