// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopestripesassignmentwidget.h"
#include "scopestripesassignmentwidget_p.h"

#include "scopescene.h"
#include "scopeshot.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopewidget.h"

#include <QtGui/QPixmap>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMenu>

#include <type_traits>

namespace {

template<typename Pointer>
ScopeShot* rawShot(const Pointer& pointer)
{
    if constexpr (std::is_pointer_v<Pointer>)
        return pointer;
    else
        return pointer.data();
}

QList<ScopeShot*> shotsOf(const ScopeScene* scene)
{
    QList<ScopeShot*> shots;
    if (!scene)
        return shots;
    const auto sceneShots = scene->shots();
    for (const auto& shot : sceneShots) {
        if (ScopeShot* raw = rawShot(shot))
            shots.append(raw);
    }
    return shots;
}

QIcon colorIcon(const QColor& color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return QIcon(pixmap);
}

QObject* objectOf(const QTreeWidgetItem* item)
{
    return item ? item->data(0, Qt::UserRole).value<QObject*>() : nullptr;
}

} // namespace

ScopeStripesAssignmentWidgetPrivate::ScopeStripesAssignmentWidgetPrivate(ScopeStripesAssignmentWidget* widget)
    : QObject(widget)
    , q_ptr(widget)
{
}

QTreeWidgetItem* ScopeStripesAssignmentWidgetPrivate::findItem(const QObject* object) const
{
    Q_Q(const ScopeStripesAssignmentWidget);
    if (!object)
        return nullptr;
    const QList<QTreeWidgetItem*> items =
        q->findItems(QStringLiteral("*"), Qt::MatchWildcard | Qt::MatchRecursive, 0);
    for (QTreeWidgetItem* item : items) {
        if (objectOf(item) == object)
            return item;
    }
    return nullptr;
}

ScopeWidget* ScopeStripesAssignmentWidgetPrivate::stripeOf(const ScopeTrace* trace) const
{
    if (!stripesWidget)
        return nullptr;
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    for (ScopeWidget* widget : widgets) {
        if (widget->traceFilter()->traces().contains(const_cast<ScopeTrace*>(trace)))
            return widget;
    }
    return nullptr;
}

void ScopeStripesAssignmentWidgetPrivate::fillComboBox(QComboBox* comboBox, ScopeTrace* trace)
{
    const QSignalBlocker blocker(comboBox);
    comboBox->clear();
    const QList<ScopeWidget*> widgets = stripesWidget ? stripesWidget->scopeWidgets() : QList<ScopeWidget*>();
    ScopeWidget* current = stripeOf(trace);
    for (ScopeWidget* widget : widgets)
        comboBox->addItem(widget->name(), QVariant::fromValue<QObject*>(widget));
    comboBox->addItem(tr("nicht anzeigen"), QVariant::fromValue<QObject*>(nullptr));
    const int index = current ? int(widgets.indexOf(current)) : int(widgets.size());
    comboBox->setCurrentIndex(index);
}

void ScopeStripesAssignmentWidgetPrivate::fillTraceItem(QTreeWidgetItem* item, ScopeTrace* trace)
{
    item->setText(0, trace->name());
    item->setIcon(0, colorIcon(trace->color()));
}

void ScopeStripesAssignmentWidgetPrivate::updateItems()
{
    Q_Q(ScopeStripesAssignmentWidget);
    q->clear();
    if (!stripesWidget)
        return;
    const QList<ScopeShot*> shots = shotsOf(stripesWidget->scene());
    for (ScopeShot* shot : shots) {
        auto* shotItem = new QTreeWidgetItem(q);
        shotItem->setText(0, shot->name());
        shotItem->setIcon(0, QIcon(QStringLiteral(":/Resources/Scope/Scope.png")));
        shotItem->setData(0, Qt::UserRole, QVariant::fromValue<QObject*>(shot));
        shotItem->setFirstColumnSpanned(false);
        const QList<int> channels = shot->channelNumbers();
        for (int channel : channels) {
            ScopeTrace* trace = shot->trace(channel);
            if (!trace)
                continue;
            auto* traceItem = new QTreeWidgetItem(shotItem);
            traceItem->setData(0, Qt::UserRole, QVariant::fromValue<QObject*>(trace));
            fillTraceItem(traceItem, trace);
            auto* comboBox = new QComboBox;
            comboBox->setProperty("scopeTrace", QVariant::fromValue<QObject*>(trace));
            fillComboBox(comboBox, trace);
            q->setItemWidget(traceItem, 1, comboBox);
            connect(comboBox, qOverload<int>(&QComboBox::currentIndexChanged), this,
                    &ScopeStripesAssignmentWidgetPrivate::onComboBoxCurrentIndexChanged);
            disconnect(trace, &ScopeTrace::changed, this, &ScopeStripesAssignmentWidgetPrivate::onScopeTraceChanged);
            connect(trace, &ScopeTrace::changed, this, &ScopeStripesAssignmentWidgetPrivate::onScopeTraceChanged);
        }
        shotItem->setExpanded(true);
    }
}

void ScopeStripesAssignmentWidgetPrivate::onScopeTraceChanged()
{
    auto* trace = qobject_cast<ScopeTrace*>(sender());
    if (QTreeWidgetItem* item = findItem(trace))
        fillTraceItem(item, trace);
}

void ScopeStripesAssignmentWidgetPrivate::showContextMenu(const QPoint& position)
{
    Q_Q(ScopeStripesAssignmentWidget);
    if (!stripesWidget)
        return;
    if (!contextMenu)
        contextMenu = new QMenu(q);
    contextMenu->clear();
    QAction* add = contextMenu->addAction(tr("neuen Streifen hinzufügen"), this, [this] {
        if (stripesWidget)
            stripesWidget->addStripe();
    });
    add->setEnabled(stripesWidget->scopeWidgets().size() < ScopeStripesWidget::maximumStripeCount);
    QMenu* rename = contextMenu->addMenu(tr("Streifen umbenennen"));
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    for (ScopeWidget* widget : widgets) {
        rename->addAction(widget->name(), this, [this, widget = QPointer<ScopeWidget>(widget)] {
            if (!widget)
                return;
            bool ok = false;
            const QString name = QInputDialog::getText(q_ptr, tr("Streifen umbenennen"), tr("Name"),
                                                       QLineEdit::Normal, widget->name(), &ok);
            if (!ok || !widget || !stripesWidget)
                return;
            widget->setName(name);
            widget->update();
            // Names are part of the stripe layout: listeners rebuild and the
            // element is marked as changed.
            QMetaObject::invokeMethod(stripesWidget.data(), &ScopeStripesWidget::scopeStripesChanged,
                                      Qt::QueuedConnection);
        });
    }
    rename->setEnabled(!widgets.isEmpty());
    contextMenu->popup(q->viewport()->mapToGlobal(position));
}

void ScopeStripesAssignmentWidgetPrivate::onComboBoxCurrentIndexChanged(int index)
{
    auto* comboBox = qobject_cast<QComboBox*>(sender());
    if (!comboBox || !stripesWidget)
        return;
    auto* trace = qobject_cast<ScopeTrace*>(comboBox->property("scopeTrace").value<QObject*>());
    if (!trace)
        return;
    auto* target = qobject_cast<ScopeWidget*>(comboBox->itemData(index).value<QObject*>());
    // As the trace list moves a trace: out of every stripe first, then into
    // the chosen one, and a moved trace is always shown.
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    for (ScopeWidget* widget : widgets) {
        if (widget != target)
            widget->traceFilter()->removeTrace(trace);
    }
    if (target) {
        target->traceFilter()->addTrace(trace);
        if (trace->isOff())
            trace->setOff(false, true);
    }
}

ScopeStripesAssignmentWidget::ScopeStripesAssignmentWidget(QWidget* parent)
    : QTreeWidget(parent)
    , d_ptr(new ScopeStripesAssignmentWidgetPrivate(this))
{
    Q_D(ScopeStripesAssignmentWidget);
    setColumnCount(2);
    setHeaderLabels({tr("Name"), tr("Streifen")});
    setHeaderHidden(true);
    setRootIsDecorated(false);
    setColumnWidth(0, 160);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSortingEnabled(false);
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, d, &ScopeStripesAssignmentWidgetPrivate::showContextMenu);
}

ScopeStripesAssignmentWidget::~ScopeStripesAssignmentWidget() = default;

void ScopeStripesAssignmentWidget::setStripesWidget(ScopeStripesWidget* stripesWidget)
{
    Q_D(ScopeStripesAssignmentWidget);
    if (d->stripesWidget == stripesWidget)
        return;
    if (d->stripesWidget)
        disconnect(d->stripesWidget, nullptr, d, nullptr);
    d->stripesWidget = stripesWidget;
    if (stripesWidget)
        connect(stripesWidget, &ScopeStripesWidget::scopeStripesChanged, d,
                &ScopeStripesAssignmentWidgetPrivate::updateItems);
    d->updateItems();
}

ScopeStripesWidget* ScopeStripesAssignmentWidget::stripesWidget() const
{
    Q_D(const ScopeStripesAssignmentWidget);
    return d->stripesWidget;
}

QTreeWidgetItem* ScopeStripesAssignmentWidget::itemOf(const ScopeTrace* trace) const
{
    Q_D(const ScopeStripesAssignmentWidget);
    return d->findItem(trace);
}
