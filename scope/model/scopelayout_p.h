// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopelayout.h"

class ScopeLayoutPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeLayout)
public:
    explicit ScopeLayoutPrivate(ScopeLayout* q);

    void recompute();

    ScopeLayout* q_ptr;
    QSize divisions{10, 8};
    QSize spacing{2, 2};
    QRect geometry;
    int topHeight = 13;
    int bottomHeight = 10;
    int leftWidth = 0;
    int rightWidth = 0;
    QSize divisionSize;
    QRect plotArea;
    QRect topRuler;
    QRect bottomRuler;
    QRect leftColumn;
    QRect rightColumn;
    QRect topLeftCorner;
    QRect topRightCorner;
    QRect bottomLeftCorner;
    QRect bottomRightCorner;

Q_SIGNALS:
    void changed();
};
