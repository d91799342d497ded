// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplotaxis.h"

#include <QtGui/QPen>

FrequencyPlotAxis::FrequencyPlotAxis(QObject* parent)
    : QLogValueAxis(parent)
{
    const QColor grey(128, 128, 128);
    setBase(10.0);
    setMinorTickCount(-1);
    setGridLineColor(grey);
    setMinorGridLinePen(QPen(grey, 1.0));
    setLabelFormat(QStringLiteral("%g"));
}

FrequencyPlotAxis::~FrequencyPlotAxis() = default;
