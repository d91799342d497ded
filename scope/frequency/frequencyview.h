// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QSharedPointer>
#include <QtWidgets/QWidget>

class FrequencyPlotAdjustmentWidget;
class FrequencyPlotChart;
class FrequencyPlotView;
class FrequencySpectrum;
class FrequencyTraceList;
class FrequencyTraceWidget;
class FrequencyViewPrivate;
class PlotController;
class TraceInformation;

/*! \brief The window with the result of a frequency analysis: the spectrum
    chart on the left; on the right the list of analysed traces, the details
    of the selected trace and the scale choice of the axes.

    A top-level window without parent; every setData() replaces the whole
    analysis (spectra, chart, lists), the scale choice stays. */
class FrequencyView : public QWidget
{
    Q_OBJECT
public:
    explicit FrequencyView(QWidget* parent = nullptr);
    ~FrequencyView() override;

    /*! \brief Computes the spectra of samples \a first … \a last of every
        trace in \a traces with \a windowFunction and shows them. */
    void setData(const QList<QSharedPointer<TraceInformation>>& traces, int first, int last, int windowFunction);

    FrequencySpectrum* spectrum() const;
    FrequencyPlotChart* chart() const;
    FrequencyPlotView* plotView() const;
    PlotController* plotController() const;
    FrequencyTraceList* traceList() const;
    FrequencyTraceWidget* traceWidget() const;
    FrequencyPlotAdjustmentWidget* adjustmentWidget() const;

private:
    Q_DECLARE_PRIVATE(FrequencyView)
    FrequencyViewPrivate* d_ptr;
};
