// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopescene.h"

#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QPointer>

class ScopeScenePrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeScene)

public:
    explicit ScopeScenePrivate(ScopeScene* q);

    void recomputeRange();
    void startPan(QWidget* widget, const QPoint& position);
    void panTo(QWidget* widget, const QPoint& position);
    void endPan(QWidget* widget);
    void paintTrigger(const ScopeLayout& layout, QPainter* painter) const;

    ScopeScene* q_ptr;
    QList<QSharedPointer<ScopeShot>> shots;
    QList<ScopeMarker*> markers;
    ScopeQuickMeasure* quickMeasure = nullptr;
    qint64 startTime = 0;
    qint64 endTime = 0;
    qint64 timeGrid = 1;
    qint64 viewLeft = 0;
    qint64 viewRight = 0;
    bool panning = false;
    QPoint lastMousePoint;
    QPointer<ZoomBar> zoomBar;

    // Pointer dispatch: handlers in the order of registration and the one
    // that owns the current gesture (the scene itself while panning).
    QList<MouseEventHandler*> handlers;
    MouseEventHandler* grabber = nullptr;
};
