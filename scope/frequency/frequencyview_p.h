// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencyview.h"

#include <memory>

namespace Ui {
class FrequencyView;
}
class QSpacerItem;

class FrequencyViewPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(FrequencyView)
public:
    explicit FrequencyViewPrivate(FrequencyView* q);
    ~FrequencyViewPrivate() override;

    /*! \brief Deletes the objects of the shown analysis. */
    void clearAnalysis();

    FrequencyView* q_ptr;
    FrequencyPlotAdjustmentWidget* adjustmentWidget;
    FrequencyTraceList* traceList = nullptr;
    FrequencyPlotChart* chart = nullptr;
    FrequencyPlotView* plotView = nullptr;
    PlotController* controller = nullptr;
    FrequencySpectrum* spectrum = nullptr;
    FrequencyTraceWidget* traceWidget = nullptr;
    std::unique_ptr<Ui::FrequencyView> ui;
    QSpacerItem* spacer = nullptr;
};
