// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

class ZoomBar;
class ScopeStripesWidget;
class ScopeTimeWidgetPrivate;

/*! \brief Shows and changes the horizontal scale of the time-domain view.

    The widget holds no time window of its own: the window is the slider range
    of the view's ZoomBar. Every control reads the zoom bar, computes a new
    slider range and sets it; the plot widgets follow the zoom bar.

    Wiring: setZoomBar() once after construction (fills the edit), then, when
    a recording is shown, setStripesWidget() (the grid's column count and cell
    width come from its first plot widget) and setTimeRaster() with the
    scene's time grid (ScopeScene::timeGrid()).
*/
class ScopeTimeWidget : public QWidget
{
    Q_OBJECT

public:
    explicit ScopeTimeWidget(QWidget* parent = nullptr);
    ~ScopeTimeWidget() override;

    /*! \brief Follows \a zoomBar (not owned) and shows its scale at once. */
    void setZoomBar(ZoomBar* zoomBar);
    ZoomBar* zoomBar() const;

    /*! \brief The container whose first plot widget gives the grid (not owned). */
    void setStripesWidget(ScopeStripesWidget* stripesWidget);
    ScopeStripesWidget* stripesWidget() const;

    /*! \brief The grid in nanoseconds to which Control-steps snap; initially 1. */
    void setTimeRaster(qint64 timeRaster);
    qint64 timeRaster() const;

Q_SIGNALS:
    /*! \brief The shown scale was rewritten. */
    void viewChanged();

private:
    Q_DECLARE_PRIVATE(ScopeTimeWidget)
    ScopeTimeWidgetPrivate* const d_ptr;
};
