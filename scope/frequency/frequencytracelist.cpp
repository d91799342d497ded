// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencytracelist.h"
#include "frequencytracelist_p.h"

#include "frequencyspectrum.h"
#include "frequencytrace.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QMenu>

FrequencyTraceListPrivate::FrequencyTraceListPrivate(FrequencyTraceList* q)
    : QObject(q)
    , q_ptr(q)
{
}

QIcon FrequencyTraceListPrivate::colorIcon(const QColor& color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return QIcon(pixmap);
}

void FrequencyTraceListPrivate::showContextMenu(const QPoint& position)
{
    Q_Q(FrequencyTraceList);
    if (!menu)
        menu = new QMenu(q);
    menu->clear();
    contextTrace = nullptr;
    FrequencyTrace* trace = items.value(q->itemAt(position), nullptr);
    if (trace) {
        contextTrace = trace;
        QAction* toggle = menu->addAction(trace->isHidden() ? tr("Kanal anzeigen") : tr("Kanal ausblenden"));
        connect(toggle, &QAction::triggered, this, &FrequencyTraceListPrivate::onContextMenuToggleOff);
        QAction* exclusive = menu->addAction(tr("Nur diesen Kanal anzeigen"));
        connect(exclusive, &QAction::triggered, this, &FrequencyTraceListPrivate::onContextMenuShowExclusive);
        menu->addSeparator();
    }
    QAction* all = menu->addAction(tr("Alle Kanäle anzeigen"));
    connect(all, &QAction::triggered, this, &FrequencyTraceListPrivate::onContextMenuShowAll);
    if (popupMenus)
        menu->popup(q->viewport()->mapToGlobal(position) + QPoint(0, q->header()->height()));
}

void FrequencyTraceListPrivate::onCurrentItemChanged(QTreeWidgetItem* pItem)
{
    if (FrequencyTrace* trace = items.value(pItem, nullptr))
        Q_EMIT traceSelected(trace);
}

void FrequencyTraceListPrivate::onContextMenuToggleOff()
{
    if (contextTrace)
        contextTrace->setHidden(!contextTrace->isHidden());
}

void FrequencyTraceListPrivate::onContextMenuShowExclusive()
{
    if (!contextTrace)
        return;
    FrequencyTrace* chosen = contextTrace.data();
    for (const QPointer<FrequencyTrace>& trace : std::as_const(traces)) {
        if (trace)
            trace->setHidden(trace != chosen);
    }
}

void FrequencyTraceListPrivate::onContextMenuShowAll()
{
    for (const QPointer<FrequencyTrace>& trace : std::as_const(traces)) {
        if (trace)
            trace->setHidden(false);
    }
}

void FrequencyTraceListPrivate::onVisibilyChanged()
{
    auto* trace = qobject_cast<FrequencyTrace*>(sender());
    QTreeWidgetItem* item = trace ? items.key(trace, nullptr) : nullptr;
    if (!item)
        return;
    const Qt::CheckState state = trace->isHidden() ? Qt::Unchecked : Qt::Checked;
    if (item->checkState(0) != state)
        item->setCheckState(0, state);
}

void FrequencyTraceListPrivate::onColorChanged()
{
    auto* trace = qobject_cast<FrequencyTrace*>(sender());
    QTreeWidgetItem* item = trace ? items.key(trace, nullptr) : nullptr;
    if (item)
        item->setIcon(0, colorIcon(trace->color()));
}

void FrequencyTraceListPrivate::onCheckBoxClicked(QTreeWidgetItem* pItem)
{
    FrequencyTrace* trace = items.value(pItem, nullptr);
    if (!trace)
        return;
    const bool hidden = pItem->checkState(0) == Qt::Unchecked;
    if (hidden != trace->isHidden())
        trace->setHidden(hidden);
}

FrequencyTraceList::FrequencyTraceList(QWidget* parent)
    : QTreeWidget(parent)
    , d_ptr(new FrequencyTraceListPrivate(this))
{
    Q_D(FrequencyTraceList);
    setColumnCount(2);
    setHeaderLabels({tr("Name"), tr("Amplitude")});
    setRootIsDecorated(false);
    setIndentation(16);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSortingEnabled(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QTreeWidget::currentItemChanged, d, &FrequencyTraceListPrivate::onCurrentItemChanged);
    connect(this, &QWidget::customContextMenuRequested, d, &FrequencyTraceListPrivate::showContextMenu);
    connect(this, &QTreeWidget::itemChanged, d, &FrequencyTraceListPrivate::onCheckBoxClicked);
    connect(d, &FrequencyTraceListPrivate::traceSelected, this, &FrequencyTraceList::traceSelected);
}

FrequencyTraceList::~FrequencyTraceList()
{
    Q_D(FrequencyTraceList);
    // Items die with the tree: the traces must not keep pointers to them.
    for (const QPointer<FrequencyTrace>& trace : std::as_const(d->traces)) {
        if (trace && trace->treeItem() && trace->treeItem() == d->items.key(trace, nullptr))
            trace->setTreeItem(nullptr);
    }
    disconnect(this, nullptr, d, nullptr);
    delete d_ptr;
}

void FrequencyTraceList::setSpectrum(FrequencySpectrum* spectrum)
{
    Q_D(FrequencyTraceList);
    for (const QPointer<FrequencyTrace>& trace : std::as_const(d->traces)) {
        if (!trace)
            continue;
        disconnect(trace, nullptr, d, nullptr);
        if (trace->treeItem() && trace->treeItem() == d->items.key(trace, nullptr))
            trace->setTreeItem(nullptr);
    }
    {
        const QSignalBlocker blocker(this);
        clear();
    }
    d->items.clear();
    d->contextTrace = nullptr;
    d->spectrum = spectrum;
    d->traces.clear();
    if (spectrum) {
        for (FrequencyTrace* trace : spectrum->traces())
            d->traces.append(trace);
    }

    {
        // Filling the items must not count as the user ticking boxes.
        const QSignalBlocker blocker(this);
        for (FrequencyTrace* trace : std::as_const(d->traces)) {
            auto* item = new QTreeWidgetItem;
            connect(trace, &FrequencyTrace::visibilityChanged, d, &FrequencyTraceListPrivate::onVisibilyChanged);
            connect(trace, &FrequencyTrace::colorChanged, d, &FrequencyTraceListPrivate::onColorChanged);
            trace->setTreeItem(item);
            item->setIcon(0, FrequencyTraceListPrivate::colorIcon(trace->color()));
            item->setText(0, trace->name());
            item->setText(1, trace->amplitudeText());
            item->setCheckState(0, trace->isHidden() ? Qt::Unchecked : Qt::Checked);
            addTopLevelItem(item);
            d->items.insert(item, trace);
        }
    }
    sortItems(0, Qt::AscendingOrder);

    QTreeWidgetItem* first = topLevelItem(0);
    FrequencyTrace* firstTrace = d->items.value(first, nullptr);
    if (first && d->items.value(currentItem(), nullptr) == firstTrace)
        return;
    {
        const QSignalBlocker blocker(this);
        setCurrentItem(first);
    }
    if (firstTrace)
        Q_EMIT d->traceSelected(firstTrace);
}

FrequencySpectrum* FrequencyTraceList::spectrum() const
{
    Q_D(const FrequencyTraceList);
    return d->spectrum.data();
}

QTreeWidgetItem* FrequencyTraceList::itemOf(FrequencyTrace* trace) const
{
    Q_D(const FrequencyTraceList);
    return d->items.key(trace, nullptr);
}

FrequencyTrace* FrequencyTraceList::traceOf(QTreeWidgetItem* item) const
{
    Q_D(const FrequencyTraceList);
    return d->items.value(item, nullptr);
}

QMenu* FrequencyTraceList::contextMenu() const
{
    Q_D(const FrequencyTraceList);
    return d->menu;
}

void FrequencyTraceList::updateAmplitudes()
{
    Q_D(FrequencyTraceList);
    if (!d->spectrum)
        return;
    const int point = d->spectrum->selectedMeasurePoint();
    for (const QPointer<FrequencyTrace>& trace : std::as_const(d->traces)) {
        if (trace)
            trace->setFrequencyAndAmplitude(point);
    }
}
