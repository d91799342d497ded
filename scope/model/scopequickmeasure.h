// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "mouseeventhandler.h"

#include <QtCore/QObject>

class QPainter;
class ScopeLayout;
class ScopeQuickMeasurePrivate;

/*! \brief The quick-measure cursor.

    While the left button is held in a plot the cursor follows the mouse,
    snapped to the grid, and asks every trace for its value at that time
    (publishQuickMeasureRequest()); on release it withdraws the request
    (publishQuickMeasureDisabled()). Connect both signals to the shots'
    signals of the same names.
*/
class ScopeQuickMeasure : public QObject, public MouseEventHandler
{
    Q_OBJECT

public:
    explicit ScopeQuickMeasure(QObject* parent = nullptr);
    ~ScopeQuickMeasure() override;

    /*! \brief Draws the cursor line into the plot area of \a layout while
        the cursor is active and visible. The painter's state is kept. */
    void paint(const ScopeLayout& layout, QPainter* painter) const;

    void setViewRange(qint64 left, qint64 right);
    void setStep(qint64 step);
    qint64 step() const;
    bool isActive() const;
    qint64 position() const;

public Q_SLOTS:
    bool mousePressed(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;
    bool mouseReleased(QWidget* widget, qint64 time) override;
    bool mouseMoved(QWidget* widget, qint64 time, const QPoint& position, QMouseEvent* event) override;

Q_SIGNALS:
    void publishQuickMeasureRequest(qint64 timeStamp);
    void publishQuickMeasureDisabled();

private:
    Q_DECLARE_PRIVATE(ScopeQuickMeasure)
    ScopeQuickMeasurePrivate* d_ptr;
};
