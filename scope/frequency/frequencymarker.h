// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QGraphicsItem>

/*! \brief The marker of the frequency chart: a vertical line over the plot
    area at the selected frequency, with the frequency as label above the
    plot. The label sits right of the line and flips to its left rather than
    leave the plot. */
class FrequencyMarker : public QGraphicsItem
{
public:
    explicit FrequencyMarker(QGraphicsItem* parent = nullptr);
    ~FrequencyMarker() override;

    /*! \brief Places the line at \a x (item coordinates of the chart) over
        \a plotArea with the label \a text. */
    void place(qreal x, const QRectF& plotArea, const QString& text);

    QString text() const;
    qreal lineX() const;
    /*! \brief Where the label is drawn, in item coordinates. */
    QRectF labelRect() const;

    void setColor(const QColor& color);

    QRectF boundingRect() const override;
    void paint(QPainter* painter, const QStyleOptionGraphicsItem* option, QWidget* widget) override;

    /*! \brief Distance that the label keeps from the line. */
    static constexpr qreal labelOffset = 20.0;

private:
    qreal m_x = 0.0;
    QRectF m_plotArea;
    QString m_text;
    QRectF m_labelRect;
    QColor m_color;
};
