// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QScrollBar>

/*! \brief A scroll bar that stands for a visible window [lo, hi] inside a
    base range of real axis values.

    The bar works in integer slider units (resolution() units span the whole
    base range) and converts to and from axis values itself: its value is the
    centre of the window, its page step the window's width. A vertical bar
    counts from the other end, so that its top shows the high values.
    Programmatic changes (setBase(), moveSlider()) are silent; only user moves
    produce the double-valued signals. */
class AxisScrollbar : public QScrollBar
{
    Q_OBJECT
public:
    explicit AxisScrollbar(Qt::Orientation orientation, QWidget* parent = nullptr);
    ~AxisScrollbar() override;

    double baseMin() const;
    double baseMax() const;
    int resolution() const;
    bool isInverted() const;

public Q_SLOTS:
    /*! \brief Sets the base range; the handle keeps its place and size. */
    virtual void setBase(double min, double max);
    /*! \brief Shows the window [\a lo, \a hi] without emitting anything. */
    virtual void moveSlider(double lo, double hi);

    void catchSliderMoved(int value);
    void catchValueChanged(int value);

Q_SIGNALS:
    void sliderMoved(double lo, double hi);
    void valueChanged(double lo, double hi);

private:
    void windowOf(int value, double* lo, double* hi) const;

    bool m_inverted;
    double m_baseMin = 0.0;
    double m_baseMax = 1.0;
    qint32 m_resolution = 10000000;
};
