// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "traceinformation.h"

// A trace information over plain values, standing in for a time-domain trace.
class FakeTraceInformation : public TraceInformation
{
    Q_OBJECT
public:
    FakeTraceInformation(const QVector<double>& samples, double samplingTime,
                         const QString& name = QStringLiteral("Kanal"),
                         const QColor& color = QColor(Qt::blue))
        : m_samples(samples), m_name(name), m_color(color), m_samplingTime(samplingTime)
    {
        setCachedEndTime(qint64(samples.size() - 1) * qint64(samplingTime) * 100);
    }

    QVector<double> samples() const override { return m_samples; }
    QString name() const override { return m_name; }
    QColor color() const override { return m_color; }
    void setColor(const QColor& color) override
    {
        if (color == m_color)
            return;
        m_color = color;
        Q_EMIT colorChanged(color);
    }
    double samplingTime() const override { return m_samplingTime; }
    qint64 startTime() const override { return 0; }
    bool isOff() const override { return m_off; }
    void setOff(bool off) override
    {
        ++setOffCalls;
        if (off == m_off)
            return;
        m_off = off;
        Q_EMIT visibilityChanged();
    }

    int setOffCalls = 0;

private:
    QVector<double> m_samples;
    QString m_name;
    QColor m_color;
    double m_samplingTime;
    bool m_off = false;
};
