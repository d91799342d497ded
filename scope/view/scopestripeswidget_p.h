// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopestripeswidget.h"

#include <QtCore/QObject>

class QSplitter;

class ScopeStripesWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeStripesWidget)

public:
    explicit ScopeStripesWidgetPrivate(ScopeStripesWidget* widget);

    void notifyChanged();
    void updateColumns();

    ScopeStripesWidget* q_ptr = nullptr;
    ScopeScene* scene = nullptr;
    ZoomBar* zoomBar = nullptr;
    QSplitter* splitter = nullptr;

public Q_SLOTS:
    void onStripeDestroyed();
    void onTraceFilterChanged();
};
