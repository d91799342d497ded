// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetofrequencyview.h"

#include <QtCore/QPointer>

#include <memory>

namespace Ui {
class ScopeToFrequencyView;
}
class QComboBox;

class ScopeToFrequencyViewPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeToFrequencyView)
public:
    ScopeToFrequencyViewPrivate(ScopeToFrequencyView* q, const QList<QSharedPointer<TraceInformation>>& traces);
    ~ScopeToFrequencyViewPrivate() override;

    void update();

    qint32 windowFunction = Frequency::Hamming;
    qint64 samplingPeriod = 0;
    qint64 markerATime = 0;
    qint64 markerBTime = 0;
    QPointer<FrequencyView> frequencyView;
    QString format;
    std::unique_ptr<Ui::ScopeToFrequencyView> ui;
    ScopeToFrequencyView* q_ptr;
    QList<QSharedPointer<TraceInformation>> traces;
    QComboBox* windowFunctionBox = nullptr;

Q_SIGNALS:
    void windowFunctionChanged(Frequency::WindowFunctions windowFunction);
    void newFrequencyViewCreated(QWidget* pWidget);

public Q_SLOTS:
    void onApplyChanges();
    void onWindowFunktionComboBoxIndexChanged(int index);
    void onFequencyViewDestroyed();
};
