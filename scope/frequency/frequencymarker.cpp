// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencymarker.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>

FrequencyMarker::FrequencyMarker(QGraphicsItem* parent)
    : QGraphicsItem(parent)
    , m_color(Qt::white)
{
    setZValue(100.0);
    setAcceptedMouseButtons(Qt::NoButton);
}

FrequencyMarker::~FrequencyMarker() = default;

void FrequencyMarker::place(qreal x, const QRectF& plotArea, const QString& text)
{
    prepareGeometryChange();
    m_x = x;
    m_plotArea = plotArea;
    m_text = text;
    const QFontMetricsF metrics(QGuiApplication::font());
    const qreal width = metrics.horizontalAdvance(text) + 4.0;
    const qreal height = metrics.height();
    qreal left = x + 4.0;
    // Near the right edge the label goes to the left of the line.
    if (left + width > plotArea.right() + labelOffset)
        left = x - 4.0 - width;
    m_labelRect = QRectF(left, plotArea.top() - height, width, height);
    update();
}

QString FrequencyMarker::text() const
{
    return m_text;
}

qreal FrequencyMarker::lineX() const
{
    return m_x;
}

QRectF FrequencyMarker::labelRect() const
{
    return m_labelRect;
}

void FrequencyMarker::setColor(const QColor& color)
{
    m_color = color;
    update();
}

QRectF FrequencyMarker::boundingRect() const
{
    return QRectF(m_x - 1.0, m_plotArea.top(), 2.0, m_plotArea.height()).united(m_labelRect).adjusted(-1, -1, 1, 1);
}

void FrequencyMarker::paint(QPainter* painter, const QStyleOptionGraphicsItem*, QWidget*)
{
    if (m_plotArea.isEmpty())
        return;
    painter->setPen(QPen(m_color, 1.0, Qt::DashLine));
    painter->drawLine(QPointF(m_x, m_plotArea.top()), QPointF(m_x, m_plotArea.bottom()));
    painter->setFont(QGuiApplication::font());
    painter->setPen(m_color);
    painter->drawText(m_labelRect, Qt::AlignCenter, m_text);
}
