// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

class ScopeTrace;
class ScopeTraceCalculatorPrivate;

/*! \brief Measurements of one trace between the time markers A and B: the
    values at the markers, their difference and gradient, and statistics
    over the samples between them, with their display texts.

    Statistics are computed lazily, on the first request after the trace or
    a marker changed. NaN stands for no result everywhere. */
class ScopeTraceCalculator : public QObject
{
    Q_OBJECT
public:
    explicit ScopeTraceCalculator(QObject* parent = nullptr);
    ~ScopeTraceCalculator() override;

    ScopeTrace* scopeTrace() const;
    /*! \brief Sets the measured trace (not owned; null for none). */
    void setScopeTrace(ScopeTrace* trace);
    /*! \brief Marker times in nanoseconds relative to the trigger. */
    void setMarkerTimes(qint64 a, qint64 b);
    qint64 markerTimeA() const;
    qint64 markerTimeB() const;

    double valueAtA() const;
    double valueAtB() const;
    /*! \brief Value at B − value at A. */
    double valueDifference() const;
    /*! \brief Value units per microsecond over the sample count of the last
        statistics update (ask for a statistic first). */
    double gradient() const;
    double average() const;
    /*! \brief Value × microseconds: a rectangle sum over the walked samples
        except the last. */
    double integral() const;
    double minimum() const;
    double maximum() const;
    /*! \brief maximum() − minimum(). */
    double peak() const;
    double rmsValue() const;
    double standardDeviation() const;

    /*! \brief The evaluated range of the last statistics update. */
    int startIndex() const;
    int endIndex() const;
    unsigned sampleCount() const;

    QString gradientText(double value, bool withUnit) const;
    QString integralText(double value, bool withUnit) const;
    /*! \brief The trace's own formatting of \a value; "---" without a trace. */
    QString valueText(double value, bool withUnit) const;

private:
    Q_DECLARE_PRIVATE(ScopeTraceCalculator)
    ScopeTraceCalculatorPrivate* d_ptr;
};
