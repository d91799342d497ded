// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "zoombar.h"

#include <QtCore/QObject>
#include <QtCore/QRectF>

class ZoomBarPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ZoomBar)

public:
    // Wide enough for any sum or difference of two qint64 values and for
    // products of a pixel count and a range width.
    using Wide = __int128;

    enum class Part { None, LeftHandle, RightHandle, Span, TrackBefore, TrackAfter };

    explicit ZoomBarPrivate(ZoomBar* q);

    // Orders, cuts and widens the edges as setSlider() promises, then commits.
    void applySlider(Wide left, Wide right);
    // Moves the slider by delta keeping its width; stops at the range's ends.
    void moveBy(Wide delta);
    // Stores the slider and emits the edge signals and sliderChanged().
    void commitSlider(qint64 left, qint64 right);
    void setRange(qint64 min, qint64 max);

    // Geometry: the handles sit outside the span, so the span maps the slider
    // exactly and the handles stay apart even when the slider is 0 wide.
    QRectF trackRect() const;
    qreal pixelSpan() const;
    qreal xForValue(qint64 value) const;
    QRectF leftHandleRect() const;
    QRectF rightHandleRect() const;
    QRectF spanRect() const;
    Part partAt(const QPointF& pos) const;
    // The value difference that dx pixels stand for, rounded to the nearest integer.
    Wide valueDelta(qreal dx) const;

    static qint64 clampToInt64(Wide value);
    static Wide rangeWidth(qint64 min, qint64 max) { return Wide(max) - Wide(min); }

Q_SIGNALS:
    void minimumChanged(qint64 minimum);
    void maximumChanged(qint64 maximum);
    void sliderLeftChanged(qint64 left);
    void sliderRightChanged(qint64 right);
    void sliderChanged(qint64 left, qint64 right);

public:
    ZoomBar* const q_ptr;

    qint64 minimum = 0;
    qint64 maximum = 100;
    qint64 left = 0;
    qint64 right = 100;
    qint64 smallStep = 1;
    qint64 largeStep = 10;
    qint64 minimumSliderDifference = 0;

    // The gesture in progress.
    Part grab = Part::None;
    qreal pressX = 0;
    qint64 pressLeft = 0;
    qint64 pressRight = 0;
    Part hover = Part::None;
    int wheelRemainder = 0;

    static constexpr int handleWidth = 10;
};
