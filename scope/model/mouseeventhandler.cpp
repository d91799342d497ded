// SPDX-License-Identifier: GPL-3.0-or-later
#include "mouseeventhandler.h"

#include "scopelayout.h"
#include "scopetracefilter.h"

#include <QtWidgets/QWidget>

#include <cmath>
#include <limits>

MouseEventHandler::~MouseEventHandler() = default;

ScopeLayout* MouseEventHandler::layoutOf(const QWidget* widget)
{
    if (!widget)
        return nullptr;
    return widget->findChild<ScopeLayout*>(QString(), Qt::FindDirectChildrenOnly);
}

ScopeTraceFilter* MouseEventHandler::traceFilterOf(const QWidget* widget)
{
    if (!widget)
        return nullptr;
    return widget->findChild<ScopeTraceFilter*>(QString(), Qt::FindDirectChildrenOnly);
}

int MouseEventHandler::plotWidthOf(const QWidget* widget)
{
    int width = 0;
    if (const ScopeLayout* layout = layoutOf(widget))
        width = layout->plotArea().width();
    if (width <= 0 && widget)
        width = widget->width();
    return qMax(width, 1);
}

qint64 MouseEventHandler::snapToGrid(qint64 time, qint64 step)
{
    if (step < 1)
        return time;
    const double snapped = std::round(double(time) / double(step)) * double(step);
    // Keep far-away times representable instead of overflowing.
    if (snapped >= 9.2e18)
        return std::numeric_limits<qint64>::max() / step * step;
    if (snapped <= -9.2e18)
        return std::numeric_limits<qint64>::min() / step * step;
    return qint64(snapped);
}
