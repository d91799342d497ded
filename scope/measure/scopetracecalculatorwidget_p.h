// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetracecalculatorwidget.h"

#include <QtCore/QHash>
#include <QtCore/QMap>
#include <QtCore/QMetaObject>
#include <QtCore/QPointer>

class QTreeWidgetItem;

class ScopeTraceCalculatorWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTraceCalculatorWidget)
public:
    explicit ScopeTraceCalculatorWidgetPrivate(ScopeTraceCalculatorWidget* q);

    void addRows();
    void updateHeader();
    void refresh();
    void setValue(const QString& key, const QString& text);

    ScopeTraceCalculatorWidget* q_ptr;
    ScopeTraceCalculator* calculator = nullptr;
    QPointer<ScopeTrace> trace;
    QMetaObject::Connection traceConnection;
    QHash<quint8, qint64> markerTimes;
    QMap<QString, QTreeWidgetItem*> rows;
    QTreeWidget* tree = nullptr;
};
