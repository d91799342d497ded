// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopelayout.h"
#include "scopelayout_p.h"

ScopeLayoutPrivate::ScopeLayoutPrivate(ScopeLayout* q)
    : QObject(q)
    , q_ptr(q)
{
    connect(this, &ScopeLayoutPrivate::changed, q, &ScopeLayout::changed);
}

void ScopeLayoutPrivate::recompute()
{
    if (geometry.isValid() && divisions.width() > 0 && divisions.height() > 0) {
        divisionSize.setWidth((geometry.width() - 2 * spacing.width() - leftWidth - rightWidth)
                              / divisions.width());
        divisionSize.setHeight((geometry.height() - 2 * spacing.height() - bottomHeight - topHeight)
                               / divisions.height());

        leftColumn = QRect(0, topHeight + spacing.height(), leftWidth,
                           divisions.height() * divisionSize.height() + 1);
        topRuler = QRect(leftWidth + spacing.width(), 0,
                         divisions.width() * divisionSize.width() + 1, topHeight);
        plotArea = QRect(topRuler.left(), leftColumn.top(), topRuler.width(), leftColumn.height());
        rightColumn = QRect(plotArea.right() + spacing.width() + 1, leftColumn.top(), rightWidth,
                            plotArea.height());
        bottomRuler = QRect(topRuler.left(), plotArea.bottom() + spacing.height() + 1,
                            plotArea.width(), bottomHeight);
        topLeftCorner = QRect(leftColumn.left(), topRuler.top(), leftColumn.width(), topRuler.height());
        topRightCorner = QRect(rightColumn.left(), topRuler.top(), rightColumn.width(), topRuler.height());
        bottomLeftCorner = QRect(leftColumn.left(), bottomRuler.top(), leftColumn.width(),
                                 bottomRuler.height());
        bottomRightCorner = QRect(rightColumn.left(), bottomRuler.top(), rightColumn.width(),
                                  bottomRuler.height());
    }
    Q_EMIT changed();
}

ScopeLayout::ScopeLayout(QObject* parent)
    : QObject(parent)
    , d_ptr(new ScopeLayoutPrivate(this))
{
}

ScopeLayout::~ScopeLayout() = default;

QSize ScopeLayout::divisions() const
{
    Q_D(const ScopeLayout);
    return d->divisions;
}

QSize ScopeLayout::spacing() const
{
    Q_D(const ScopeLayout);
    return d->spacing;
}

QRect ScopeLayout::geometry() const
{
    Q_D(const ScopeLayout);
    return d->geometry;
}

void ScopeLayout::setGeometry(const QRect& geometry)
{
    Q_D(ScopeLayout);
    if (d->geometry == geometry)
        return;
    d->geometry = geometry;
    d->recompute();
}

int ScopeLayout::topHeight() const
{
    Q_D(const ScopeLayout);
    return d->topHeight;
}

void ScopeLayout::setTopHeight(int height)
{
    Q_D(ScopeLayout);
    if (d->topHeight == height)
        return;
    d->topHeight = height;
    d->recompute();
}

int ScopeLayout::bottomHeight() const
{
    Q_D(const ScopeLayout);
    return d->bottomHeight;
}

void ScopeLayout::setBottomHeight(int height)
{
    Q_D(ScopeLayout);
    if (d->bottomHeight == height)
        return;
    d->bottomHeight = height;
    d->recompute();
}

int ScopeLayout::leftWidth() const
{
    Q_D(const ScopeLayout);
    return d->leftWidth;
}

void ScopeLayout::setLeftWidth(int width)
{
    Q_D(ScopeLayout);
    if (d->leftWidth == width)
        return;
    d->leftWidth = width;
    d->recompute();
}

int ScopeLayout::rightWidth() const
{
    Q_D(const ScopeLayout);
    return d->rightWidth;
}

void ScopeLayout::setRightWidth(int width)
{
    Q_D(ScopeLayout);
    if (d->rightWidth == width)
        return;
    d->rightWidth = width;
    d->recompute();
}

QSize ScopeLayout::divisionSize() const
{
    Q_D(const ScopeLayout);
    return d->divisionSize;
}

QRect ScopeLayout::plotArea() const
{
    Q_D(const ScopeLayout);
    return d->plotArea;
}

QRect ScopeLayout::topRuler() const
{
    Q_D(const ScopeLayout);
    return d->topRuler;
}

QRect ScopeLayout::bottomRuler() const
{
    Q_D(const ScopeLayout);
    return d->bottomRuler;
}

QRect ScopeLayout::leftColumn() const
{
    Q_D(const ScopeLayout);
    return d->leftColumn;
}

QRect ScopeLayout::rightColumn() const
{
    Q_D(const ScopeLayout);
    return d->rightColumn;
}

QRect ScopeLayout::topLeftCorner() const
{
    Q_D(const ScopeLayout);
    return d->topLeftCorner;
}

QRect ScopeLayout::topRightCorner() const
{
    Q_D(const ScopeLayout);
    return d->topRightCorner;
}

QRect ScopeLayout::bottomLeftCorner() const
{
    Q_D(const ScopeLayout);
    return d->bottomLeftCorner;
}

QRect ScopeLayout::bottomRightCorner() const
{
    Q_D(const ScopeLayout);
    return d->bottomRightCorner;
}
