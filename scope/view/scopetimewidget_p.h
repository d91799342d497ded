// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetimewidget.h"

#include <QtCore/QObject>
#include <QtCore/QPointer>

#include <memory>

namespace Ui {
class ScopeTimeWidget;
}

class ScopeTimeWidgetPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTimeWidget)

public:
    explicit ScopeTimeWidgetPrivate(ScopeTimeWidget* widget);
    ~ScopeTimeWidgetPrivate() override;

    /*! \brief Columns of the first plot widget's grid, 10 without one. */
    int divisions() const;
    /*! \brief Pixel width of one division of the first plot widget, 10 without one. */
    int cellWidth() const;
    /*! \brief Time per division in nanoseconds, from the zoom bar's window. */
    double timePerDivision() const;
    /*! \brief Sets the window to \a value nanoseconds per division around the old centre. */
    void setTimePerDivision(double value);
    /*! \brief Moves the window by \a delta nanoseconds, kept inside the recording. */
    void applyMove(qint64 delta);
    /*! \brief One move step; \a direction +1 shows later times, −1 earlier. */
    void move(int direction);

Q_SIGNALS:
    void viewChanged();

public Q_SLOTS:
    void updateControls();
    void onScaleUpClicked();
    void onScaleDownClicked();
    void onMoveLeftClicked();
    void onMoveRightClicked();
    void onScalingEditCommitted();

public:
    std::unique_ptr<Ui::ScopeTimeWidget> ui;
    QPointer<ZoomBar> zoomBar;
    QPointer<ScopeStripesWidget> stripesWidget;
    qint64 timeRaster = 1;

private:
    ScopeTimeWidget* q_ptr = nullptr; // the public widget
    QList<QMetaObject::Connection> zoomBarConnections;
};
