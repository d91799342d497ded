// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QtGlobal>

class QMouseEvent;
class QPoint;
class QWidget;
class ScopeLayout;
class ScopeTraceFilter;

/*! \brief Something on the time axis of a plot that reacts to the mouse.

    The plot widget converts every pointer event into the time under the
    pointer (nanoseconds from the trigger instant) and hands it over together
    with the pointer position relative to the top-left corner of its plot
    rectangle and the original event. A handler returns true when it takes
    the event; the scene then makes it the grabber of the gesture.

    Contract with the plot widget: the widget passed in owns, as direct
    children, exactly one ScopeLayout (the geometry of its grid) and one
    ScopeTraceFilter (the traces it shows). Handlers find them with
    layoutOf() and traceFilterOf(); a widget without them simply gets the
    behaviour that needs no geometry.

    Implementations declare the three operations as slots, in this order.
*/
class MouseEventHandler
{
public:
    virtual ~MouseEventHandler();

    /*! \brief A button went down at \a time; \a position is relative to the
        plot rectangle (not used by markers and cursor). */
    virtual bool mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) = 0;
    /*! \brief The button went up at \a time. */
    virtual bool mouseReleased(QWidget* widget, qint64 time) = 0;
    /*! \brief The pointer moved to \a time, with or without buttons held. */
    virtual bool mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) = 0;

    /*! \brief The plot layout owned by \a widget, or null. */
    static ScopeLayout* layoutOf(const QWidget* widget);
    /*! \brief The trace filter owned by \a widget, or null. */
    static ScopeTraceFilter* traceFilterOf(const QWidget* widget);
    /*! \brief Pixel width of the plot rectangle of \a widget (its own width
        without a layout), at least 1. */
    static int plotWidthOf(const QWidget* widget);
    /*! \brief \a time rounded to the nearest multiple of \a step, halves
        away from zero; a step below 1 leaves the time as it is. */
    static qint64 snapToGrid(qint64 time, qint64 step);
};
