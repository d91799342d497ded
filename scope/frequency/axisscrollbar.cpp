// SPDX-License-Identifier: GPL-3.0-or-later
#include "axisscrollbar.h"

#include <QtCore/QSignalBlocker>

#include <algorithm>
#include <cmath>

AxisScrollbar::AxisScrollbar(Qt::Orientation orientation, QWidget* parent)
    : QScrollBar(orientation, parent)
    , m_inverted(orientation == Qt::Vertical)
{
    {
        const QSignalBlocker blocker(this);
        setRange(5000000, m_resolution - 5000000);
        setSingleStep(50000);
        setPageStep(10000000);
        int position = int(std::trunc((0.5 - m_baseMin) / (m_baseMax - m_baseMin) * m_resolution));
        if (m_inverted)
            position = m_resolution - position;
        setSliderPosition(position);
    }
    // Connected by signature: the double-valued signals share their names with
    // the integer ones of the slider base class.
    connect(this, SIGNAL(sliderMoved(int)), this, SLOT(catchSliderMoved(int)));
    connect(this, SIGNAL(valueChanged(int)), this, SLOT(catchValueChanged(int)));
}

AxisScrollbar::~AxisScrollbar() = default;

double AxisScrollbar::baseMin() const
{
    return m_baseMin;
}

double AxisScrollbar::baseMax() const
{
    return m_baseMax;
}

int AxisScrollbar::resolution() const
{
    return m_resolution;
}

bool AxisScrollbar::isInverted() const
{
    return m_inverted;
}

void AxisScrollbar::windowOf(int value, double* lo, double* hi) const
{
    const qint64 p = m_inverted ? qint64(m_resolution) - value : qint64(value);
    const qint64 half = pageStep() / 2;
    const double width = m_baseMax - m_baseMin;
    *lo = double(p - half) * width / m_resolution + m_baseMin;
    *hi = double(p + half) * width / m_resolution + m_baseMin;
}

void AxisScrollbar::setBase(double min, double max)
{
    if (min == m_baseMin && max == m_baseMax)
        return;
    m_baseMin = min;
    m_baseMax = max;
    double lo = 0.0;
    double hi = 0.0;
    windowOf(value(), &lo, &hi);
    moveSlider(lo, hi);
}

void AxisScrollbar::moveSlider(double lo, double hi)
{
    const double width = m_baseMax - m_baseMin;
    const double pageValue = std::round((hi - lo) / width * m_resolution);
    // A window far outside the base (or a degenerate base) must not overflow.
    const qint32 page = std::isfinite(pageValue)
        ? qint32(std::clamp(pageValue, -2147483647.0, 2147483647.0))
        : 0;
    const QSignalBlocker blocker(this);
    setRange(page / 2, m_resolution - page / 2);
    setSingleStep(std::max(1, page / 200));
    setPageStep(page);
    const double positionValue = std::trunc(((hi - lo) * 0.5 + lo - m_baseMin) / width * m_resolution);
    qint32 position = std::isfinite(positionValue)
        ? qint32(std::clamp(positionValue, -2147483647.0, 2147483647.0))
        : 0;
    if (m_inverted)
        position = m_resolution - position;
    setSliderPosition(position);
}

void AxisScrollbar::catchSliderMoved(int value)
{
    double lo = 0.0;
    double hi = 0.0;
    windowOf(value, &lo, &hi);
    Q_EMIT sliderMoved(lo, hi);
}

void AxisScrollbar::catchValueChanged(int value)
{
    double lo = 0.0;
    double hi = 0.0;
    windowOf(value, &lo, &hi);
    Q_EMIT valueChanged(lo, hi);
}
