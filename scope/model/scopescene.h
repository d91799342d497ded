// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mouseeventhandler.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QSharedPointer>

class QPainter;
class QWheelEvent;
class ScopeLayout;
class ScopeMarker;
class ScopeQuickMeasure;
class ScopeScenePrivate;
class ScopeShot;
class ScopeTrace;
class ZoomBar;

namespace KlIniParser {
class IniSection;
}

/*! \brief What one time-domain view shows: shots on a common time axis with
    one marker pair and the quick-measure cursor.

    The scene computes the common time range (with a margin of a tenth on
    either side) and the common time grid (the greatest common divisor of all
    sampling periods), drives the horizontal zoom bar, and turns pointer
    gestures into zooming, panning, marker dragging and quick measure.

    Contract with the plot widget: the widget forwards
    - every paint to paint(widget, painter, its filtered traces);
    - press, move, release and wheel to mousePressed(), mouseMoved(),
      mouseReleased() and wheel(), each with the widget, the time under the
      pointer, the pointer position relative to the top-left corner of its
      plot rectangle and the event.
    The widget owns, as direct children, one ScopeLayout (its geometry) and
    one ScopeTraceFilter (its traces); the scene finds them there (see
    MouseEventHandler). The visible time range is the zoom bar's slider.
*/
class ScopeScene : public QObject, public MouseEventHandler
{
    Q_OBJECT

public:
    explicit ScopeScene(QObject* parent = nullptr);
    ~ScopeScene() override;

    /*! \brief Adds \a shot (shared with the view) unless already shown. */
    void addShot(const QSharedPointer<ScopeShot>& shot);
    /*! \brief Removes \a shot and cuts all its connections to the scene. */
    void removeShot(const QSharedPointer<ScopeShot>& shot);
    QList<QSharedPointer<ScopeShot>> shots() const;
    /*! \brief Removes every shot and resets the zoom bar to 0 … 100. */
    void clear();

    /*! \brief The common time step in nanoseconds. */
    qint64 timeGrid() const;
    /*! \brief The time range, margins included. */
    qint64 startTime() const;
    qint64 endTime() const;
    /*! \brief The visible range, as last taken from the zoom bar. */
    qint64 viewLeft() const;
    qint64 viewRight() const;

    /*! \brief The marker pairs; the first is A/B. */
    QList<ScopeMarker*> markers() const;
    ScopeQuickMeasure* quickMeasure() const;

    /*! \brief The zoom bar of the view (not owned); its slider is the
        visible range. */
    void setZoomBar(ZoomBar* zoomBar);
    ZoomBar* zoomBar() const;

    /*! \brief Reads "ViewSliderLeft/Right" from \a section, else from
        \a fallback, then the markers from \a section. Always true. */
    bool readSection(KlIniParser::IniSection* section, KlIniParser::IniSection* fallback);
    /*! \brief Writes the slider into both sections given, then the markers
        into \a section. */
    void writeSection(KlIniParser::IniSection* section, KlIniParser::IniSection* secondSection) const;

    /*! \brief Draws the trigger indicator, \a traces of every shot, the
        markers and the cursor into \a plot's layout. */
    void paint(QWidget* plot, QPainter* painter, const QList<ScopeTrace*>& traces) const;
    /*! \brief The same for a bare layout. */
    void paint(const ScopeLayout* layout, QPainter* painter, const QList<ScopeTrace*>& traces) const;

public Q_SLOTS:
    bool mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;
    bool mouseReleased(QWidget* widget, qint64 time) override;
    bool mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;
    /*! \brief Release with the event, which is accepted when the gesture had
        an owner. */
    bool mouseReleased(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event);
    /*! \brief Control + wheel zooms about \a time; with Shift as well the
        widget's traces zoom vertically too. */
    bool wheel(QWidget* widget, qint64 time, const QPoint& position, QWheelEvent* event);
    /*! \brief Takes the zoom bar's slider as the visible range. */
    void onZoomBarChanged();

Q_SIGNALS:
    void sceneChanged();

private:
    Q_DECLARE_PRIVATE(ScopeScene)
    ScopeScenePrivate* d_ptr;
};
