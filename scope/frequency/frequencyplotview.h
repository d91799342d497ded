// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCharts/QChartView>
#include <QtCore/QPointer>

class FrequencyMarker;
class FrequencyPlotChart;
class FrequencySpectrum;

/*! \brief The chart view of a frequency view: shows the chart with its two
    scroll bars (below and right of the plot) and the frequency marker.

    Pressing or dragging with the left button selects the measure point under
    the pointer (rounded down to a point of the spectrum); the wheel zooms
    the chart in and out. */
class FrequencyPlotView : public QChartView
{
    Q_OBJECT
public:
    FrequencyPlotView(FrequencySpectrum* spectrum, FrequencyPlotChart* chart, QWidget* parent = nullptr);
    ~FrequencyPlotView() override;

    FrequencyMarker* marker() const;
    FrequencyPlotChart* plotChart() const;

    /*! \brief The frequency under view position \a x (pixels); NaN outside
        the plot's axes. */
    double frequencyAt(qreal x) const;
    /*! \brief The view position (pixels) of frequency \a frequency. */
    qreal positionOf(double frequency) const;

public Q_SLOTS:
    void updateMarker();
    void onSettingChanged();

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void selectAt(qreal x);
    void placeScrollbars();

    FrequencySpectrum* m_spectrum;
    QPointer<FrequencyPlotChart> m_plotChart;
    FrequencyMarker* m_marker = nullptr;
    bool m_selecting = false;
};
