// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

/*! \brief Read-and-steer handle on one time-domain trace, as the frequency
    analysis sees it.

    The frequency analysis never holds a trace itself: it reads samples,
    name, colour and timing through this handle, switches the trace off and
    recolours it, and hears of colour and visibility changes. A handle whose
    trace has gone answers like an empty trace. */
class TraceInformation : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
public:
    ~TraceInformation() override;

    /*! \brief Whether the recording covers the interval from \a a to \a b
        (nanoseconds): startTime() <= a and the end time >= b. */
    bool covers(qint64 a, qint64 b) const;

public Q_SLOTS:
    /*! \brief The trace's sample values. */
    virtual QVector<double> samples() const = 0;
    virtual QString name() const = 0;
    virtual QColor color() const = 0;
    virtual void setColor(const QColor& color) = 0;
    /*! \brief Sampling period in units of 100 ns. */
    virtual double samplingTime() const = 0;
    /*! \brief Time of the first sample in nanoseconds. */
    virtual qint64 startTime() const = 0;
    virtual bool isOff() const = 0;
    virtual void setOff(bool off) = 0;

Q_SIGNALS:
    void visibilityChanged();
    void colorChanged(QColor color);

protected:
    explicit TraceInformation(QObject* parent = nullptr);

    /*! \brief The end time that covers() compares with, taken once. */
    void setCachedEndTime(qint64 endTime);
    qint64 cachedEndTime() const;

private:
    qint64 m_endTime = 0;
};
