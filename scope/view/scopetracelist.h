// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QTreeWidget>

class ScopeStripesWidget;
class ScopeTrace;
class ScopeTraceListPrivate;

/*! \brief The tree of stripes and their traces in the time-domain view.

    One top-level item per plot widget of the stripes container, with the
    traces of that stripe's trace filter under it. Check boxes and the context
    menu switch traces on and off, move them between stripes and add or delete
    stripes; column 1 shows each trace's quick-measure value.

    Wiring: setStripesWidget() with the view's ScopeStripesWidget (the list
    follows its stripes and their trace filters), scopeTraceSelected() to
    ScopeTraceWidget::setScopeTrace(), and setStripeEntriesEnabled(true) while
    a composition is shown (stripes can be added and deleted only then).
*/
class ScopeTraceList : public QTreeWidget
{
    Q_OBJECT

public:
    explicit ScopeTraceList(QWidget* parent = nullptr);
    ~ScopeTraceList() override;

    /*! \brief The container whose stripes are listed (not owned). */
    void setStripesWidget(ScopeStripesWidget* stripesWidget);
    ScopeStripesWidget* stripesWidget() const;

    /*! \brief The trace of the current item, or null (none, or a stripe item). */
    ScopeTrace* currentTrace() const;

    /*! \brief Switches the entries "Streifen löschen" and "neuen Streifen hinzufügen" of the context menu. */
    void setStripeEntriesEnabled(bool enabled);
    bool stripeEntriesEnabled() const;

    /*! \brief Rebuilds the items from the container now. */
    void updateItems();

Q_SIGNALS:
    /*! \brief The current item changed; \a pTrace is its trace, null for a stripe item. */
    void scopeTraceSelected(ScopeTrace* pTrace);

private:
    Q_DECLARE_PRIVATE(ScopeTraceList)
    ScopeTraceListPrivate* const d_ptr;
};
