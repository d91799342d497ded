// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencywindowfunctions.h"
#include "mouseeventhandler.h"

#include <QtCore/QObject>

class QPainter;
class ScopeLayout;
class ScopeMarkerPrivate;

namespace KlIniParser {
class IniSection;
}

/*! \brief The pair of time markers A and B that bound a measuring interval.

    Markers snap to the sampling grid (setStep()), keep A <= B, stay inside
    the limits and report every change of a position once through
    timePositionChanged() (index 0 for A, 1 for B). The plot hands mouse
    events in time coordinates through the MouseEventHandler operations.
*/
class ScopeMarker : public QObject, public MouseEventHandler
{
    Q_OBJECT

public:
    explicit ScopeMarker(QObject* parent = nullptr);
    ~ScopeMarker() override;

    /*! \brief Draws the interval (when shown), then A, then B into the plot
        area and top ruler of \a layout. The painter's state is kept. */
    void paint(const ScopeLayout& layout, QPainter* painter) const;

    /*! \brief Reads "MarkerPosition_<set>A/B"; always true. */
    bool readSection(KlIniParser::IniSection& section);
    /*! \brief Writes "MarkerPosition_<set>A/B" in decimal. */
    void writeSection(KlIniParser::IniSection& section) const;

    void setViewRange(qint64 left, qint64 right);
    void setShowInterval(bool show);
    bool showInterval() const;
    void setMarkerSet(int markerSet);
    int markerSet() const;
    void setStep(qint64 step);
    qint64 step() const;
    void setLimits(qint64 minTime, qint64 maxTime);
    qint64 minTime() const;
    qint64 maxTime() const;
    int windowFunction() const;

    /*! \brief Moves A (\a which 0) or B (\a which 1) to the snapped \a time. */
    void setPosition(quint8 which, qint64 time);
    /*! \brief A for 0, B for 1, 0 otherwise. */
    qint64 position(quint8 which) const;

public Q_SLOTS:
    bool mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;
    bool mouseReleased(QWidget* widget, qint64 time) override;
    bool mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;

    void onWindowFunktionChanged(Frequency::WindowFunctions currentWindowFuntion);

Q_SIGNALS:
    void timePositionChanged(quint8 index, qint64 value);

private:
    Q_DECLARE_PRIVATE(ScopeMarker)
    ScopeMarkerPrivate* d_ptr;
};
