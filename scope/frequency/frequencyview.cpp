// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyview.h"
#include "frequencyview_p.h"

#include "frequencyplotadjustmentwidget.h"
#include "frequencyplotchart.h"
#include "frequencyplotview.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"
#include "frequencytracelist.h"
#include "frequencytracewidget.h"
#include "plotcontroller.h"
#include "traceinformation.h"
#include "ui_frequencyview.h"

#include <algorithm>

FrequencyViewPrivate::FrequencyViewPrivate(FrequencyView* q)
    : QObject(q)
    , q_ptr(q)
    , adjustmentWidget(new FrequencyPlotAdjustmentWidget(q))
    , ui(std::make_unique<Ui::FrequencyView>())
{
    ui->setupUi(q);
    q->resize(400, 300);
}

FrequencyViewPrivate::~FrequencyViewPrivate()
{
    clearAnalysis();
}

void FrequencyViewPrivate::clearAnalysis()
{
    delete chart;
    chart = nullptr;
    delete plotView;
    plotView = nullptr;
    delete controller;
    controller = nullptr;
    delete spectrum;
    spectrum = nullptr;
    delete traceWidget;
    traceWidget = nullptr;
    delete traceList;
    traceList = nullptr;
    ui->lowerLayout->removeWidget(adjustmentWidget);
    if (spacer) {
        ui->lowerLayout->removeItem(spacer);
        delete spacer;
        spacer = nullptr;
    }
}

FrequencyView::FrequencyView(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new FrequencyViewPrivate(this))
{
    // Closing the window ends the analysis; the panel hears of it through
    // destroyed().
    setAttribute(Qt::WA_DeleteOnClose);
}

FrequencyView::~FrequencyView()
{
    delete d_ptr;
}

void FrequencyView::setData(const QList<QSharedPointer<TraceInformation>>& traces, int first, int last,
                            int windowFunction)
{
    Q_D(FrequencyView);
    d->clearAnalysis();

    QList<FrequencyTrace*> frequencyTraces;
    frequencyTraces.reserve(traces.size());
    for (const QSharedPointer<TraceInformation>& information : traces) {
        if (!information)
            continue;
        auto* trace = new FrequencyTrace(information);
        frequencyTraces.append(trace);
        trace->setInterval(first, last, windowFunction);
    }
    // The spectrum and everything shown from it read its first trace.
    if (frequencyTraces.isEmpty())
        return;
    d->spectrum = new FrequencySpectrum(frequencyTraces);

    d->chart = new FrequencyPlotChart(d->spectrum);
    d->plotView = new FrequencyPlotView(d->spectrum, d->chart);
    d->controller = new PlotController(d->adjustmentWidget);
    d->controller->setChart(d->chart);
    d->ui->plotLayout->addWidget(d->plotView);

    connect(d->spectrum, &FrequencySpectrum::dataChanged, d->chart, &FrequencyPlotChart::updateAmplitudes);

    d->traceWidget = new FrequencyTraceWidget;
    connect(d->spectrum, &FrequencySpectrum::dataChanged, d->traceWidget, &FrequencyTraceWidget::updateAmplitudes);
    d->traceList = new FrequencyTraceList;
    connect(d->traceList, &FrequencyTraceList::traceSelected, d->traceWidget, &FrequencyTraceWidget::selectTrace);
    connect(d->spectrum, &FrequencySpectrum::dataChanged, d->traceList, &FrequencyTraceList::updateAmplitudes);
    d->traceList->setSpectrum(d->spectrum);

    d->ui->upperLayout->addWidget(d->traceList);
    d->ui->lowerLayout->addWidget(d->traceWidget);
    d->ui->lowerLayout->addWidget(d->adjustmentWidget);
    d->spacer = new QSpacerItem(40, 20, QSizePolicy::Expanding, QSizePolicy::Minimum);
    d->ui->lowerLayout->addItem(d->spacer);

    // The chart takes every extra pixel; the lists keep room for their texts.
    const QList<int> sizes = d->ui->splitter_2->sizes();
    const int wanted = std::max(d->ui->splitter->sizeHint().width(), 240);
    if (sizes.size() == 2 && sizes.at(1) < wanted && sizes.at(0) + sizes.at(1) > 2 * wanted)
        d->ui->splitter_2->setSizes({sizes.at(0) + sizes.at(1) - wanted, wanted});
}

FrequencySpectrum* FrequencyView::spectrum() const
{
    Q_D(const FrequencyView);
    return d->spectrum;
}

FrequencyPlotChart* FrequencyView::chart() const
{
    Q_D(const FrequencyView);
    return d->chart;
}

FrequencyPlotView* FrequencyView::plotView() const
{
    Q_D(const FrequencyView);
    return d->plotView;
}

PlotController* FrequencyView::plotController() const
{
    Q_D(const FrequencyView);
    return d->controller;
}

FrequencyTraceList* FrequencyView::traceList() const
{
    Q_D(const FrequencyView);
    return d->traceList;
}

FrequencyTraceWidget* FrequencyView::traceWidget() const
{
    Q_D(const FrequencyView);
    return d->traceWidget;
}

FrequencyPlotAdjustmentWidget* FrequencyView::adjustmentWidget() const
{
    Q_D(const FrequencyView);
    return d->adjustmentWidget;
}
