// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSharedPointer>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

class FrequencyTracePrivate;
class QTreeWidgetItem;
class TraceInformation;

/*! \brief The amplitude spectrum of one trace over an interval of its
    samples.

    Samples, name, colour and sampling time are copied from the trace
    information at construction; later colour and off-state changes of the
    trace information keep reaching the frequency trace as long as the trace
    information lives, and hiding or recolouring the frequency trace is
    announced back through it. */
class FrequencyTrace : public QObject
{
    Q_OBJECT
public:
    explicit FrequencyTrace(const QSharedPointer<TraceInformation>& traceInformation,
                            QObject* parent = nullptr);
    ~FrequencyTrace() override;

    /*! \brief Spectrum of the samples \a first … \a last with the mean value
        removed; keeps the points 0 … (M − 1)/2 (one side of the spectrum). */
    void setInterval(int first, int last, int windowFunction);
    /*! \brief Spectrum of the stored interval again; keeps all M points. */
    void recalculate(bool meanValueFree, int windowFunction);

    QVector<double> amplitudes() const;
    /*! \brief Largest / smallest amplitude from index \a from to the end;
        NaN when there is none. Points that are not a number are passed over. */
    double maxAmplitude(int from) const;
    double minAmplitude(int from) const;
    /*! \brief 1 / (requested sample count × sampling time), Hz. */
    double frequencyResolution() const;
    /*! \brief frequencyResolution() × (number of amplitudes − 1), Hz. */
    double maxFrequency() const;

    /*! \brief Index of the first sample of the interval. */
    int firstIndex() const;
    /*! \brief Number of samples of the interval as requested (last − first + 1). */
    int sampleCount() const;
    /*! \brief Sampling period in seconds. */
    double samplingTime() const;

    QString name() const;
    QColor color() const;
    bool isHidden() const;
    /*! \brief The amplitude at the selected measure point, as shown in the
        trace list; empty until a point is selected. */
    QString amplitudeText() const;

    /*! \brief The item of the trace list that shows this trace (not owned). */
    void setTreeItem(QTreeWidgetItem* item);
    QTreeWidgetItem* treeItem() const;

    /*! \brief The trace information, or null once it has gone. */
    QSharedPointer<TraceInformation> traceInformation() const;

public Q_SLOTS:
    /*! \brief Stores \a color; true when it changed. */
    bool setColor(const QColor& color);
    /*! \brief Stores \a hidden and switches the time-domain trace to match;
        true when it changed. */
    bool setHidden(bool hidden);
    /*! \brief Shows the amplitude at index \a value, clamped to the existing
        points, as amplitudeText() and in column 1 of the tree item. */
    void setFrequencyAndAmplitude(int value);

Q_SIGNALS:
    void colorChanged(QColor color);
    void visibilityChanged();
    void selectedMeasurePointChanged();

private:
    Q_DECLARE_PRIVATE(FrequencyTrace)
    FrequencyTracePrivate* d_ptr;
};
