// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencyspectrum.h"

class FrequencySpectrumPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(FrequencySpectrum)
public:
    FrequencySpectrumPrivate(FrequencySpectrum* q, const QList<FrequencyTrace*>& traces);
    ~FrequencySpectrumPrivate() override;

    FrequencySpectrum* q_ptr;
    QList<FrequencyTrace*> traces;
    qint32 pointCount = 0;
    qint32 selectedMeasurePoint = 0;

public Q_SLOTS:
    void onTraceDestroyed(QObject* trace);

Q_SIGNALS:
    void dataChanged();
};
