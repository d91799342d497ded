// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracelist.h"

#include <QtCore/QHash>
#include <QtCore/QObject>
#include <QtCore/QPersistentModelIndex>
#include <QtCore/QPointer>
#include <QtCore/QSet>

class QMenu;
class ScopeWidget;

class ScopeTraceListPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceList)

public:
    explicit ScopeTraceListPrivate(ScopeTraceList* list);
    ~ScopeTraceListPrivate() override;

    /*! \brief The item that carries \a object (a trace or a plot widget), or null. */
    QTreeWidgetItem* findItem(const QObject* object) const;
    /*! \brief The live trace of \a item, null for stripe items and for traces that are gone. */
    ScopeTrace* traceOf(const QTreeWidgetItem* item) const;
    /*! \brief The live plot widget of \a item, or null. */
    ScopeWidget* stripeOf(const QTreeWidgetItem* item) const;
    /*! \brief The plot widgets of the container that are not about to be deleted. */
    QList<ScopeWidget*> stripes() const;
    /*! \brief The stripe whose trace filter holds \a trace, or null. */
    ScopeWidget* stripeOfTrace(const ScopeTrace* trace) const;
    void setStripesWidget(ScopeStripesWidget* stripesWidget);
    /*! \brief Rebuilds once, in a later pass of the event loop. */
    void scheduleUpdate();
    void watch(QObject* object);

Q_SIGNALS:
    void scopeTraceSelected(ScopeTrace* pTrace);

public Q_SLOTS:
    void updateItems();
    void showContextMenu(const QPoint& position);
    void onCurrentItemChanged(QTreeWidgetItem* pItem);
    void onQuickMeasureValueChanged(qint64 timeStamp, QString value, bool isValid);
    void onContextMenuToggleOff();
    void onContextMenuShowExclusive();
    void onContextMenuShowInverted();
    void onContextMenuShowAll();
    void onContextMenuMoveTo();
    void onNewStripeClicked();
    void onDeleteLastContextStripe();
    void updateTrace(ScopeTrace* trace);
    void onItemChanged(QTreeWidgetItem* item, int column);

public:
    QPointer<ScopeStripesWidget> stripesWidget;
    QMenu* contextMenu = nullptr;
    QPointer<ScopeTrace> contextTrace;
    QPointer<ScopeWidget> contextStripe;
    bool stripeEntriesEnabled = false;
    qint64 quickMeasureTimeStamp;

    /*! \brief Traces and plot widgets that items may point to and that are
        still alive; items keep plain pointers, which are only dereferenced
        while listed here. */
    QSet<const QObject*> alive;
    /*! \brief Stripes deleted from the menu whose widgets are still pending deletion. */
    QSet<const QObject*> deletedStripes;
    bool updating = false;
    bool updatePending = false;
    /*! \brief Where the item of each listed object was last found. */
    mutable QHash<const QObject*, QPersistentModelIndex> itemIndex;

private:
    ScopeTraceList* q_ptr = nullptr;
};
