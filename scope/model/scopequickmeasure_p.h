// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopequickmeasure.h"

#include <QtCore/QObject>

class ScopeQuickMeasurePrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeQuickMeasure)

public:
    explicit ScopeQuickMeasurePrivate(ScopeQuickMeasure* q);

    qint64 viewLeft = 0;
    qint64 viewRight = 0;
    bool active = false;
    qint64 step = 1;
    qint64 position = 0;
    ScopeQuickMeasure* q_ptr;

Q_SIGNALS:
    void publishQuickMeasureRequest(qint64 timeStamp);
    void publishQuickMeasureDisabled();
};
