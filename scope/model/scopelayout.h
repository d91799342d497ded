// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QRect>
#include <QtCore/QSize>

class ScopeLayoutPrivate;

/*! \brief Geometry of one time-domain plot: a grid of 10 × 8 divisions
    framed by a top and bottom ruler, a left and right column and four
    corner fields, all kept apart by a fixed spacing.

    The plot widget hands in its rectangle and the ruler and column sizes;
    traces, markers and the cursor draw into the rectangles computed here.
    The grid area is one pixel wider and higher than its divisions so that
    the last grid line lies inside it; pixels left over by the integer
    division stay outside the grid, to the right and at the bottom.
*/
class ScopeLayout : public QObject
{
    Q_OBJECT
public:
    explicit ScopeLayout(QObject* parent = nullptr);
    ~ScopeLayout() override;

    /*! \brief Number of divisions across and down (10 × 8). */
    QSize divisions() const;
    /*! \brief Gap between the grid and the rulers and columns (2 × 2). */
    QSize spacing() const;

    /*! \brief The widget rectangle; null until the first setGeometry(). */
    QRect geometry() const;
    /*! \brief Stores \a geometry and recomputes if any coordinate differs. */
    void setGeometry(const QRect& geometry);

    int topHeight() const;
    void setTopHeight(int height);
    int bottomHeight() const;
    void setBottomHeight(int height);
    int leftWidth() const;
    void setLeftWidth(int width);
    int rightWidth() const;
    void setRightWidth(int width);

    /*! \brief Pixel size of one division. */
    QSize divisionSize() const;
    /*! \brief The grid area: divisions × divisionSize plus one pixel. */
    QRect plotArea() const;
    QRect topRuler() const;
    QRect bottomRuler() const;
    QRect leftColumn() const;
    QRect rightColumn() const;
    QRect topLeftCorner() const;
    QRect topRightCorner() const;
    QRect bottomLeftCorner() const;
    QRect bottomRightCorner() const;

Q_SIGNALS:
    /*! \brief Emitted at the end of every recomputation, also when nothing
        could be computed for want of a valid geometry. */
    void changed();

private:
    Q_DECLARE_PRIVATE(ScopeLayout)
    ScopeLayoutPrivate* d_ptr;
};
