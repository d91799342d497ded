// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencytrace.h"

#include <QtCore/QWeakPointer>

#include <complex>

class FrequencyTracePrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(FrequencyTrace)
public:
    FrequencyTracePrivate(FrequencyTrace* q, const QSharedPointer<TraceInformation>& traceInformation);

    /*! \brief The stored samples from firstIndex, at most sampleCount of them. */
    QVector<double> intervalSamples() const;

    FrequencyTrace* q_ptr;
    QWeakPointer<TraceInformation> traceInformation;
    bool hidden = false;
    QString amplitudeText;
    QVector<std::complex<double>> spectrumBuffer;
    QVector<std::complex<double>> transformBuffer;
    QVector<double> amplitudes;
    qint32 firstIndex = 0;
    qint32 sampleCount = 0;
    QColor color;
    QString name;
    double samplingTime = 0.0;
    QVector<double> samples;
    QTreeWidgetItem* treeItem = nullptr;

public Q_SLOTS:
    void onTraceInformationColorChanged(QColor color);
    void onTraceInformationVisibilityChanged();

Q_SIGNALS:
    void colorChanged(QColor color);
    void visibilityChanged();
    void selectedMeasurePointChanged();
};
