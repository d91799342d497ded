// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QWidget>

class ScopeLayout;
class ScopeStripesWidget;
class ScopeTraceFilter;
class ScopeWidgetPrivate;

/*! \brief The plot area of one stripe of the time-domain view.

    Draws background, the 10 × 8 division grid, the stripe name and the times
    of the left and right plot edge; traces, markers and the quick-measure
    cursor are drawn by the scene of its stripes container, which also gets
    every pointer event translated into a time (nanoseconds) and a position
    relative to the plot rectangle. The two plot colours live in the
    application settings and are shared by every plot widget.
*/
class ScopeWidget : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor)
    Q_PROPERTY(QColor gridColor READ gridColor WRITE setGridColor)

public:
    explicit ScopeWidget(QWidget* parent = nullptr);
    ~ScopeWidget() override;

    QColor backgroundColor() const;
    /*! \brief Stores \a color under "Scope/BackgroundColor" when it differs
        from the stored one and paints the background with it. */
    void setBackgroundColor(const QColor& color);
    QColor gridColor() const;
    /*! \brief Stores \a color under "Scope/GridColor" (always) and repaints. */
    void setGridColor(const QColor& color);

    /*! \brief Attaches the widget to its container and takes its scene. */
    void setStripesWidget(ScopeStripesWidget* stripesWidget);
    ScopeStripesWidget* stripesWidget() const;

    /*! \brief Sets the stripe name; an empty name shows the default name. */
    void setName(const QString& name);
    /*! \brief The stripe name, or "Streifen <position>" when it is empty. */
    QString name() const;
    /*! \brief The name as set, empty when the default name is shown. */
    QString storedName() const;

    ScopeLayout* layout() const;
    ScopeTraceFilter* traceFilter() const;

    qint64 leftIndex() const;
    qint64 rightIndex() const;
    /*! \brief Time under the widget column of \a position (not clamped). */
    qint64 timeAt(const QPoint& position) const;

public Q_SLOTS:
    void setLeftIndex(qint64 value);
    void setRightIndex(qint64 value);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    Q_DECLARE_PRIVATE(ScopeWidget)
    ScopeWidgetPrivate* d_ptr;
};
