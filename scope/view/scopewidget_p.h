// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopewidget.h"

#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QString>

class QFileSystemWatcher;
class QMenu;
class QPainter;
class ScopeScene;

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

public Q_SLOTS:
    void showContextMenu(const QPoint& position);
    void onContextMenuSetHereMarkerA();
    void onContextMenuSetHereMarkerB();
    void onContextMenuMoveToMarkerA();
    void onContextMenuMoveToMarkerB();
    void onSettingChanged();
};
