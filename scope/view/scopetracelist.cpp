// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracelist.h"
#include "scopetracelist_p.h"

#include "scopeshot.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopewidget.h"

#include <QtCore/QLocale>
#include <QtCore/QSettings>
#include <QtGui/QPixmap>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QMenu>

#include <limits>

namespace {

enum Column { NameColumn = 0, ValueColumn = 1, ChannelColumn = 2, ShotColumn = 3 };

const char headerStateKey[] = "Scope/ScopeTraceList/HeaderState";

// No quick-measure time stamp shown yet.
constexpr qint64 noTimeStamp = std::numeric_limits<qint64>::min();

QObject* objectOf(const QTreeWidgetItem* item)
{
    return item ? item->data(NameColumn, Qt::UserRole).value<QObject*>() : nullptr;
}

// Stripe items keep the order of the container's plot widgets whatever
// column the list is sorted by; trace items sort by the chosen column.
constexpr int stripeOrderRole = Qt::UserRole + 1;

class ListItem : public QTreeWidgetItem
{
public:
    bool operator<(const QTreeWidgetItem& other) const override
    {
        if (!parent() && !other.parent()) {
            const int order = data(NameColumn, stripeOrderRole).toInt();
            const int otherOrder = other.data(NameColumn, stripeOrderRole).toInt();
            const QTreeWidget* tree = treeWidget();
            const bool descending = tree && tree->header()->sortIndicatorOrder() == Qt::DescendingOrder;
            // A descending sort asks "other < this": answer so that the
            // result is the container's order either way.
            return descending ? otherOrder < order : order < otherOrder;
        }
        return QTreeWidgetItem::operator<(other);
    }
};

QIcon colorIcon(const QColor& color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return QIcon(pixmap);
}

} // namespace

ScopeTraceListPrivate::ScopeTraceListPrivate(ScopeTraceList* list)
    : QObject(list)
    , quickMeasureTimeStamp(noTimeStamp)
    , q_ptr(list)
{
}

ScopeTraceListPrivate::~ScopeTraceListPrivate() = default;

void ScopeTraceListPrivate::watch(QObject* stripe)
{
    if (alive.contains(stripe))
        return;
    alive.insert(stripe);
    connect(stripe, &QObject::destroyed, this, [this](QObject* gone) {
        alive.remove(gone);
        deletedStripes.remove(gone);
        itemIndex.remove(gone);
        // The container may still list the widget while it is being
        // destroyed: rebuild once the deletion is over.
        scheduleUpdate();
    });
}

QTreeWidgetItem* ScopeTraceListPrivate::findItem(const QObject* object) const
{
    Q_Q(const ScopeTraceList);
    if (!object)
        return nullptr;
    // Quick-measure answers look up every trace's item at each pointer move:
    // remember where each object's item is. A persistent index follows the
    // item through sorting and becomes invalid when the item goes.
    const auto known = itemIndex.constFind(object);
    if (known != itemIndex.cend() && known->isValid()) {
        QTreeWidgetItem* item = q->itemFromIndex(*known);
        if (item && objectOf(item) == object)
            return item;
    }
    for (int i = 0; i < q->topLevelItemCount(); ++i) {
        QTreeWidgetItem* stripeItem = q->topLevelItem(i);
        if (objectOf(stripeItem) == object) {
            itemIndex.insert(object, QPersistentModelIndex(q->indexFromItem(stripeItem)));
            return stripeItem;
        }
        for (int j = 0; j < stripeItem->childCount(); ++j) {
            if (objectOf(stripeItem->child(j)) == object) {
                itemIndex.insert(object, QPersistentModelIndex(q->indexFromItem(stripeItem->child(j))));
                return stripeItem->child(j);
            }
        }
    }
    itemIndex.remove(object);
    return nullptr;
}

void ScopeTraceListPrivate::scheduleUpdate()
{
    // Many changes in one pass of the event loop (an animation frame of
    // several traces, a menu action on a whole stripe) rebuild once.
    if (updatePending)
        return;
    updatePending = true;
    QMetaObject::invokeMethod(
        this,
        [this]() {
            if (updatePending)
                updateItems();
        },
        Qt::QueuedConnection);
}

ScopeTrace* ScopeTraceListPrivate::traceOf(const QTreeWidgetItem* item) const
{
    QObject* object = objectOf(item);
    if (!object || !alive.contains(object) || !item->parent())
        return nullptr;
    return static_cast<ScopeTrace*>(object);
}

ScopeWidget* ScopeTraceListPrivate::stripeOf(const QTreeWidgetItem* item) const
{
    QObject* object = objectOf(item);
    if (!object || !alive.contains(object) || item->parent())
        return nullptr;
    return static_cast<ScopeWidget*>(object);
}

QList<ScopeWidget*> ScopeTraceListPrivate::stripes() const
{
    QList<ScopeWidget*> result;
    if (!stripesWidget)
        return result;
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    for (ScopeWidget* widget : widgets) {
        if (widget && !deletedStripes.contains(widget))
            result.append(widget);
    }
    return result;
}

ScopeWidget* ScopeTraceListPrivate::stripeOfTrace(const ScopeTrace* trace) const
{
    if (!trace)
        return nullptr;
    const QList<ScopeWidget*> widgets = stripes();
    for (ScopeWidget* widget : widgets) {
        if (widget->traceFilter() && widget->traceFilter()->traces().contains(const_cast<ScopeTrace*>(trace)))
            return widget;
    }
    return nullptr;
}

void ScopeTraceListPrivate::setStripesWidget(ScopeStripesWidget* container)
{
    if (stripesWidget == container)
        return;
    if (stripesWidget)
        disconnect(stripesWidget, nullptr, this, nullptr);
    stripesWidget = container;
    if (container) {
        connect(container, &ScopeStripesWidget::scopeStripesChanged, this, &ScopeTraceListPrivate::updateItems);
        connect(container, &QObject::destroyed, this, &ScopeTraceListPrivate::scheduleUpdate);
    }
    updateItems();
}

void ScopeTraceListPrivate::updateItems()
{
    Q_Q(ScopeTraceList);
    if (updating)
        return;
    updating = true;
    updatePending = false;
    const QSignalBlocker blocker(q);

    QTreeWidgetItem* current = q->currentItem();
    const QObject* currentObject = objectOf(current);
    const bool currentWasTrace = current && current->parent();
    q->setCurrentItem(nullptr);

    QSet<QTreeWidgetItem*> keep;
    const QList<ScopeWidget*> widgets = stripes();
    for (int index = 0; index < widgets.size(); ++index) {
        ScopeWidget* widget = widgets.at(index);
        watch(widget);
        QTreeWidgetItem* stripeItem = findItem(widget);
        if (!stripeItem || stripeItem->parent()) {
            stripeItem = new ListItem();
            stripeItem->setData(NameColumn, stripeOrderRole, index);
            stripeItem->setData(NameColumn, Qt::UserRole, QVariant::fromValue(static_cast<QObject*>(widget)));
            stripeItem->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable);
            q->addTopLevelItem(stripeItem);
            stripeItem->setFirstColumnSpanned(true);
            stripeItem->setExpanded(true);
        }
        stripeItem->setData(NameColumn, stripeOrderRole, index);
        stripeItem->setText(NameColumn, widget->name());
        keep.insert(stripeItem);

        ScopeTraceFilter* filter = widget->traceFilter();
        if (filter) {
            // The filter signals every change of its list: follow it.
            connect(filter, &ScopeTraceFilter::scopeTracesChanged, this, &ScopeTraceListPrivate::updateItems,
                Qt::UniqueConnection);
        }
        const QList<ScopeTrace*> traces = filter ? filter->traces() : QList<ScopeTrace*>();
        for (ScopeTrace* trace : traces) {
            if (!trace)
                continue;
            alive.insert(trace);
            QTreeWidgetItem* item = findItem(trace);
            if (item && keep.contains(item))
                continue; // listed under an earlier stripe already: a trace appears once
            if (!item) {
                item = new ListItem();
                item->setData(NameColumn, Qt::UserRole, QVariant::fromValue(static_cast<QObject*>(trace)));
                item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
                stripeItem->addChild(item);
            } else if (item->parent() != stripeItem) {
                QTreeWidgetItem* oldParent = item->parent();
                oldParent->takeChild(oldParent->indexOfChild(item));
                stripeItem->addChild(item);
            }
            keep.insert(item);
            updateTrace(trace);
        }
    }

    // Drop the items of stripes and traces that are no longer shown.
    for (int i = q->topLevelItemCount() - 1; i >= 0; --i) {
        QTreeWidgetItem* stripeItem = q->topLevelItem(i);
        if (!keep.contains(stripeItem)) {
            // Its traces may have moved elsewhere already; the rest goes with it.
            for (int j = stripeItem->childCount() - 1; j >= 0; --j) {
                QTreeWidgetItem* child = stripeItem->child(j);
                if (keep.contains(child))
                    stripeItem->takeChild(j);
            }
            delete q->takeTopLevelItem(i);
            continue;
        }
        for (int j = stripeItem->childCount() - 1; j >= 0; --j) {
            if (!keep.contains(stripeItem->child(j)))
                delete stripeItem->takeChild(j);
        }
    }
    q->resizeColumnToContents(ChannelColumn);

    QTreeWidgetItem* restored = findItem(currentObject);
    if (restored)
        q->setCurrentItem(restored);
    updating = false;

    // The selection survives a rebuild silently; only a trace that vanished
    // is reported, so that nobody keeps working on it.
    if (!restored && currentWasTrace) {
        QMetaObject::invokeMethod(this, [this]() { Q_EMIT scopeTraceSelected(nullptr); }, Qt::QueuedConnection);
    }
}

void ScopeTraceListPrivate::updateTrace(ScopeTrace* trace)
{
    Q_Q(ScopeTraceList);
    QTreeWidgetItem* item = findItem(trace);
    if (!item || !item->parent() || !alive.contains(trace))
        return;
    const QSignalBlocker blocker(q);
    item->setText(NameColumn, trace->name());
    item->setCheckState(NameColumn, trace->isOff() ? Qt::Unchecked : Qt::Checked);
    item->setIcon(NameColumn, colorIcon(trace->color()));
    item->setData(ChannelColumn, Qt::DisplayRole, trace->number() + 1);
    const auto* shot = qobject_cast<const ScopeShot*>(trace->shot());
    item->setText(ShotColumn, shot ? shot->name() : QString());

    // One connection of each kind, however often the item is refilled.
    disconnect(trace, nullptr, this, nullptr);
    connect(trace, &ScopeTrace::quickMeasureValue, this, &ScopeTraceListPrivate::onQuickMeasureValueChanged);
    // Deferred: a trace changes inside our own handlers (check boxes, menu),
    // and during animations many times in a row.
    connect(trace, &ScopeTrace::changed, this, &ScopeTraceListPrivate::scheduleUpdate);
    connect(trace, &QObject::destroyed, this, [this](QObject* gone) {
        alive.remove(gone);
        itemIndex.remove(gone);
        scheduleUpdate();
    });
}

void ScopeTraceListPrivate::onItemChanged(QTreeWidgetItem* item, int column)
{
    Q_Q(ScopeTraceList);
    if (updating || column != NameColumn)
        return;
    ScopeTrace* trace = traceOf(item);
    if (!trace)
        return;
    const bool checked = item->checkState(NameColumn) == Qt::Checked;
    {
        const QSignalBlocker blocker(q);
        if (!checked != trace->isOff())
            trace->setOff(!checked, true);
    }
    if (checked)
        q->setCurrentItem(item);
}

void ScopeTraceListPrivate::onCurrentItemChanged(QTreeWidgetItem* pItem)
{
    if (updating || !pItem)
        return;
    Q_EMIT scopeTraceSelected(traceOf(pItem));
}

void ScopeTraceListPrivate::onQuickMeasureValueChanged(qint64 timeStamp, QString value, bool isValid)
{
    Q_Q(ScopeTraceList);
    auto* trace = qobject_cast<ScopeTrace*>(sender());
    if (QTreeWidgetItem* item = findItem(trace)) {
        if (item->parent()) {
            const QSignalBlocker blocker(q);
            item->setText(ValueColumn, value);
        }
    }
    if (isValid) {
        if (timeStamp != quickMeasureTimeStamp) {
            quickMeasureTimeStamp = timeStamp;
            QString milliseconds = QString::number(timeStamp / 1000.0 / 1000.0, 'f', 2);
            milliseconds.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
            q->headerItem()->setText(ValueColumn, ScopeTraceList::tr("Messwert bei %1 ms").arg(milliseconds));
        }
    } else {
        // Forget the time stamp, so that the next value names it again.
        quickMeasureTimeStamp = noTimeStamp;
        q->headerItem()->setText(ValueColumn, ScopeTraceList::tr("Messwert"));
    }
}

void ScopeTraceListPrivate::showContextMenu(const QPoint& position)
{
    Q_Q(ScopeTraceList);
    if (!contextMenu)
        contextMenu = new QMenu(q);
    contextMenu->clear();
    contextTrace = nullptr;
    contextStripe = nullptr;

    QTreeWidgetItem* item = q->itemAt(position);
    if (ScopeTrace* trace = traceOf(item)) {
        contextTrace = trace;
        QAction* toggle = contextMenu->addAction(
            trace->isOff() ? ScopeTraceList::tr("Kanal anzeigen") : ScopeTraceList::tr("Kanal ausblenden"));
        connect(toggle, &QAction::triggered, this, &ScopeTraceListPrivate::onContextMenuToggleOff);
        connect(contextMenu->addAction(ScopeTraceList::tr("Nur diesen Kanal anzeigen")), &QAction::triggered, this,
            &ScopeTraceListPrivate::onContextMenuShowExclusive);
        contextMenu->addSeparator();
        connect(contextMenu->addAction(ScopeTraceList::tr("Alle Kanäle anzeigen")), &QAction::triggered, this,
            &ScopeTraceListPrivate::onContextMenuShowAll);
        connect(contextMenu->addAction(ScopeTraceList::tr("Anzeige der Kanäle invertieren")), &QAction::triggered,
            this, &ScopeTraceListPrivate::onContextMenuShowInverted);

        const QList<ScopeWidget*> widgets = stripes();
        if (widgets.size() >= 2) {
            ScopeWidget* source = stripeOfTrace(trace);
            contextMenu->addSeparator();
            QMenu* moveMenu = contextMenu->addMenu(ScopeTraceList::tr("Verschieben nach ..."));
            for (ScopeWidget* target : widgets) {
                if (target == source)
                    continue;
                QAction* action = moveMenu->addAction(target->name());
                action->setProperty("targetstripe", QVariant::fromValue(static_cast<QObject*>(target)));
                action->setProperty("sourcestripe", QVariant::fromValue(static_cast<QObject*>(source)));
                connect(action, &QAction::triggered, this, &ScopeTraceListPrivate::onContextMenuMoveTo);
            }
        }
    } else if (ScopeWidget* stripe = stripeOf(item)) {
        contextStripe = stripe;
        if (stripeEntriesEnabled) {
            connect(contextMenu->addAction(ScopeTraceList::tr("Streifen löschen")), &QAction::triggered, this,
                &ScopeTraceListPrivate::onDeleteLastContextStripe);
        }
    }
    if (stripeEntriesEnabled) {
        QAction* add = contextMenu->addAction(ScopeTraceList::tr("neuen Streifen hinzufügen"));
        add->setEnabled(stripesWidget && stripes().size() < ScopeStripesWidget::maximumStripeCount);
        connect(add, &QAction::triggered, this, &ScopeTraceListPrivate::onNewStripeClicked);
    }
    if (!contextMenu->isEmpty())
        contextMenu->popup(q->mapToGlobal(position + QPoint(0, q->header()->height())));
}

void ScopeTraceListPrivate::onContextMenuToggleOff()
{
    Q_Q(ScopeTraceList);
    if (!contextTrace || !stripesWidget)
        return;
    contextTrace->setOff(!contextTrace->isOff(), true);
    if (contextTrace->isOff()) {
        if (QTreeWidgetItem* item = findItem(contextTrace))
            q->setCurrentItem(item);
    }
}

void ScopeTraceListPrivate::onContextMenuShowExclusive()
{
    if (!contextTrace || !stripesWidget)
        return;
    ScopeWidget* stripe = stripeOfTrace(contextTrace);
    if (!stripe)
        return;
    const QList<ScopeTrace*> traces = stripe->traceFilter()->traces();
    for (ScopeTrace* trace : traces)
        trace->setOff(trace != contextTrace, true);
}

void ScopeTraceListPrivate::onContextMenuShowInverted()
{
    if (!contextTrace || !stripesWidget)
        return;
    ScopeWidget* stripe = stripeOfTrace(contextTrace);
    if (!stripe)
        return;
    const QList<ScopeTrace*> traces = stripe->traceFilter()->traces();
    for (ScopeTrace* trace : traces)
        trace->setOff(!trace->isOff(), true);
}

void ScopeTraceListPrivate::onContextMenuShowAll()
{
    if (!contextTrace || !stripesWidget)
        return;
    ScopeWidget* stripe = stripeOfTrace(contextTrace);
    if (!stripe)
        return;
    const QList<ScopeTrace*> traces = stripe->traceFilter()->traces();
    for (ScopeTrace* trace : traces)
        trace->setOff(false, true);
}

void ScopeTraceListPrivate::onContextMenuMoveTo()
{
    if (!contextTrace || !stripesWidget)
        return;
    auto* action = qobject_cast<QAction*>(sender());
    if (!action)
        return;
    QObject* target = action->property("targetstripe").value<QObject*>();
    QObject* source = action->property("sourcestripe").value<QObject*>();
    if (!target || !source || !alive.contains(target) || !alive.contains(source))
        return;
    auto* targetStripe = static_cast<ScopeWidget*>(target);
    auto* sourceStripe = static_cast<ScopeWidget*>(source);
    // Switched off and on again, so that a moved trace always ends up shown
    // (fading in at its new place).
    contextTrace->setOff(true, false);
    sourceStripe->traceFilter()->removeTrace(contextTrace);
    targetStripe->traceFilter()->addTrace(contextTrace);
    contextTrace->setOff(false, true);
    updateItems();
}

void ScopeTraceListPrivate::onNewStripeClicked()
{
    if (stripesWidget)
        stripesWidget->addStripe();
}

void ScopeTraceListPrivate::onDeleteLastContextStripe()
{
    if (!contextStripe || !stripesWidget)
        return;
    ScopeWidget* stripe = contextStripe;
    ScopeTraceFilter* filter = stripe->traceFilter();
    const QList<ScopeTrace*> traces = filter->traces();
    for (ScopeTrace* trace : traces)
        filter->removeTrace(trace);
    deletedStripes.insert(stripe);
    stripe->deleteLater();
    contextStripe = nullptr;
    updateItems();
}

ScopeTraceList::ScopeTraceList(QWidget* parent)
    : QTreeWidget(parent)
    , d_ptr(new ScopeTraceListPrivate(this))
{
    Q_D(ScopeTraceList);
    setColumnCount(4);
    setHeaderLabels({tr("Name"), tr("Messwert"), tr("Kanal"), tr("Aufnahme")});
    setRootIsDecorated(true);
    setIndentation(16);
    header()->resizeSection(NameColumn, 160);
    header()->resizeSection(ValueColumn, 120);
    resizeColumnToContents(ChannelColumn);
    // Stripes keep the container's order (they have no channel) and traces
    // sort by channel number, unless the user chose another column.
    header()->setSortIndicator(ChannelColumn, Qt::AscendingOrder);
    header()->restoreState(QSettings().value(QLatin1String(headerStateKey)).toByteArray());
    setSortingEnabled(true);
    setContextMenuPolicy(Qt::CustomContextMenu);

    connect(d, &ScopeTraceListPrivate::scopeTraceSelected, this, &ScopeTraceList::scopeTraceSelected);
    connect(this, &QWidget::customContextMenuRequested, d, &ScopeTraceListPrivate::showContextMenu);
    connect(this, &QTreeWidget::currentItemChanged, d, &ScopeTraceListPrivate::onCurrentItemChanged);
    connect(this, &QTreeWidget::itemChanged, d, &ScopeTraceListPrivate::onItemChanged);
}

ScopeTraceList::~ScopeTraceList()
{
    QSettings().setValue(QLatin1String(headerStateKey), header()->saveState());
}

void ScopeTraceList::setStripesWidget(ScopeStripesWidget* stripesWidget)
{
    Q_D(ScopeTraceList);
    d->setStripesWidget(stripesWidget);
}

ScopeStripesWidget* ScopeTraceList::stripesWidget() const
{
    Q_D(const ScopeTraceList);
    return d->stripesWidget;
}

ScopeTrace* ScopeTraceList::currentTrace() const
{
    Q_D(const ScopeTraceList);
    return d->traceOf(currentItem());
}

void ScopeTraceList::setStripeEntriesEnabled(bool enabled)
{
    Q_D(ScopeTraceList);
    d->stripeEntriesEnabled = enabled;
}

bool ScopeTraceList::stripeEntriesEnabled() const
{
    Q_D(const ScopeTraceList);
    return d->stripeEntriesEnabled;
}

void ScopeTraceList::updateItems()
{
    Q_D(ScopeTraceList);
    d->updateItems();
}
