// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopestripesassignmentwidget.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

class QComboBox;
class QMenu;
class ScopeWidget;

class ScopeStripesAssignmentWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeStripesAssignmentWidget)

public:
    explicit ScopeStripesAssignmentWidgetPrivate(ScopeStripesAssignmentWidget* widget);

    QTreeWidgetItem* findItem(const QObject* object) const;
    void fillTraceItem(QTreeWidgetItem* item, ScopeTrace* trace);
    void fillComboBox(QComboBox* comboBox, ScopeTrace* trace);
    ScopeWidget* stripeOf(const ScopeTrace* trace) const;

    ScopeStripesAssignmentWidget* q_ptr = nullptr;
    QPointer<ScopeStripesWidget> stripesWidget;
    QMenu* contextMenu = nullptr;

public Q_SLOTS:
    void updateItems();
    void onScopeTraceChanged();
    void showContextMenu(const QPoint& position);
    void onComboBoxCurrentIndexChanged(int index);
};
