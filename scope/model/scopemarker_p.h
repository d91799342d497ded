// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopemarker.h"

#include <QtCore/QObject>
#include <QtCore/QVector>

class ScopeMarkerPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeMarker)

public:
    explicit ScopeMarkerPrivate(ScopeMarker* q);

    qint64 snap(qint64 time) const;
    qint64 tolerance(const QWidget* widget) const;
    bool isHit(qint64 position, qint64 time, qint64 tolerance) const;
    void applyLimitsAndReport();
    void computeWindowCurve();

    void paintInterval(QPainter* painter, qreal height) const;
    void paintMarker(const ScopeLayout& layout, QPainter* painter, qint64 position, const QString& letter) const;

    qint32 markerSet = 0;
    qint64 viewLeft = 0;
    qint64 viewRight = 0;
    qint64 minTime = 0;
    qint64 maxTime = 0;
    qint64 step = 1;
    qint64 positionA = 0;
    qint64 positionB = 0;
    qint64 reportedA = 0;
    qint64 reportedB = 0;
    bool draggingA = false;
    bool draggingB = false;
    ScopeMarker* q_ptr;
    QVector<double> windowCurve;
    qint32 windowPoints = 9999;
    bool showInterval = false;
    qint32 windowFunction = Frequency::Hamming;

Q_SIGNALS:
    void timePositionChanged(quint8 index, qint64 value);
};
