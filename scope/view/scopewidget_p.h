// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopewidget.h"

#include <QtCore/QObject>
#include <QtCore/QList>
#include <QtCore/QPair>
#include <QtCore/QPoint>
#include <QtCore/QPointer>
#include <QtCore/QRect>
#include <QtCore/QString>
#include <QtGui/QPixmap>

class QFileSystemWatcher;
class QMenu;
class QPainter;
class ScopeScene;
class ScopeTrace;

class ScopeWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeWidget)

public:
    explicit ScopeWidgetPrivate(ScopeWidget* widget);

    QString defaultName() const;
    qint64 timeAt(const QPoint& position) const;
    void paintFrame(QPainter* painter);
    void applyBackgroundColor(const QColor& color);
    void goToMarker(quint8 which);
    void setMarkerHere(quint8 which);
    void paintScene(QPainter* painter);
    void invalidateTraceLayer();

    QString name;
    QFileSystemWatcher* settingsWatcher = nullptr;
    ScopeStripesWidget* stripesWidget = nullptr;
    ScopeScene* scene = nullptr;
    ScopeLayout* layout = nullptr;
    ScopeTraceFilter* traceFilter = nullptr;
    qint64 leftIndex = 0;
    qint64 rightIndex = 1;
    QMenu* contextMenu = nullptr;
    QPoint contextMenuPosition;
    bool suppressContextMenu = false;
    ScopeWidget* q_ptr = nullptr;

    // The traces drawn once per view range, size and trace state: dragging a
    // marker or the quick-measure cursor only draws them over this layer.
    QPixmap traceLayer;
    bool traceLayerValid = false;
    QRect traceLayerPlot;
    qint64 traceLayerLeft = 0;
    qint64 traceLayerRight = 0;

    // A Control+drag pans: the scene moves the curves vertically with their
    // signals blocked, so the widget redraws them itself and announces the
    // new offsets once the gesture ends.
    bool panning = false;
    QList<QPair<QPointer<ScopeTrace>, double>> panStartOffsets;

public Q_SLOTS:
    void showContextMenu(const QPoint& position);
    void onContextMenuSetHereMarkerA();
    void onContextMenuSetHereMarkerB();
    void onContextMenuMoveToMarkerA();
    void onContextMenuMoveToMarkerB();
    void onSettingChanged();
};
