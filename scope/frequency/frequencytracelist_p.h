// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencytracelist.h"

#include <QtCore/QHash>
#include <QtCore/QPointer>

class FrequencyTraceListPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(FrequencyTraceList)
public:
    explicit FrequencyTraceListPrivate(FrequencyTraceList* q);

    static QIcon colorIcon(const QColor& color);

    FrequencyTraceList* q_ptr;
    QList<QPointer<FrequencyTrace>> traces;
    QMenu* menu = nullptr;
    QPointer<FrequencyTrace> contextTrace;
    QHash<QTreeWidgetItem*, FrequencyTrace*> items;
    QPointer<FrequencySpectrum> spectrum;
    // Kept so that a popup can be checked without being executed.
    bool popupMenus = true;

Q_SIGNALS:
    void traceSelected(FrequencyTrace* pTrace);

public Q_SLOTS:
    void showContextMenu(const QPoint& position);
    void onCurrentItemChanged(QTreeWidgetItem* pItem);
    void onContextMenuToggleOff();
    void onContextMenuShowExclusive();
    void onContextMenuShowAll();
    void onVisibilyChanged();
    void onColorChanged();
    void onCheckBoxClicked(QTreeWidgetItem* pItem);
};
