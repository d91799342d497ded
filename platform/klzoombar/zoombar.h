// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klzoombar_export.h"

#include <QtWidgets/QWidget>

class ZoomBarPrivate;

/*! \brief A horizontal range slider with two handles over a signed 64-bit range.
 *
 * The slider [sliderLeft(), sliderRight()] always lies inside
 * [minimum(), maximum()] and is at least minimumSliderDifference() wide when
 * the range allows it. The user drags either handle to resize the slider,
 * drags the span between them to move it, clicks the track beside it to move
 * by the large step, and turns the wheel or presses the arrow keys to move by
 * the small step.
 */
class KLZOOMBAR_EXPORT ZoomBar : public QWidget
{
    Q_OBJECT

public:
    explicit ZoomBar(QWidget* parent = nullptr);
    ~ZoomBar() override;

    qint64 minimum() const;
    qint64 maximum() const;
    qint64 sliderLeft() const;
    qint64 sliderRight() const;
    qint64 smallStep() const;
    qint64 largeStep() const;
    qint64 minimumSliderDifference() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    /*! \brief Sets the lower end of the range; a maximum below it follows. */
    void setMinimum(qint64 minimum);
    /*! \brief Sets the upper end of the range; a minimum above it follows. */
    void setMaximum(qint64 maximum);
    /*! \brief Sets the range; the slider is kept inside it. */
    void setRange(qint64 minimum, qint64 maximum);
    /*! \brief Sets the slider; edges are ordered, cut to the range and widened
     *  about their centre to the minimum difference where the range allows. */
    void setSlider(qint64 left, qint64 right);
    /*! \brief The move of a wheel notch or an arrow key (negative counts as 0). */
    void setSmallStep(qint64 step);
    /*! \brief The move of a click on the track or a page key (negative counts as 0). */
    void setLargeStep(qint64 step);
    /*! \brief The least width of the slider (negative counts as 0). */
    void setMinimumSliderDifference(qint64 difference);

Q_SIGNALS:
    void minimumChanged(qint64 minimum);
    void maximumChanged(qint64 maximum);
    void sliderLeftChanged(qint64 left);
    void sliderRightChanged(qint64 right);
    /*! \brief Comes once after every change of the slider, after the edge signals. */
    void sliderChanged(qint64 left, qint64 right);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    Q_DECLARE_PRIVATE(ZoomBar)
    ZoomBarPrivate* const d_ptr;
};
