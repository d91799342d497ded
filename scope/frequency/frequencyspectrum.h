// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>

class FrequencySpectrumPrivate;
class FrequencyTrace;

/*! \brief The spectra of all analysed traces with one selected measure point
    (a frequency index shared by all traces).

    Takes ownership of the traces it is given and deletes them with itself.
    Frequencies are those of the first trace. */
class FrequencySpectrum : public QObject
{
    Q_OBJECT
public:
    explicit FrequencySpectrum(const QList<FrequencyTrace*>& traces);
    ~FrequencySpectrum() override;

    /*! \brief The traces in their order; they stay owned by the spectrum. */
    QList<FrequencyTrace*> traces() const;

    /*! \brief Largest amplitude of all traces, hidden ones included; with
        \a skipFirst the point at 0 Hz is left out. NaN without amplitudes. */
    double maxAmplitude(bool skipFirst) const;
    double minAmplitude(bool skipFirst) const;
    double maxFrequency() const;
    double frequencyResolution() const;

    /*! \brief Number of amplitudes of the first trace at construction. */
    int pointCount() const;
    int selectedMeasurePoint() const;
    /*! \brief Clamps \a point to 0 … pointCount() and shows the amplitude
        there on every trace. Emits nothing itself. */
    void setSelectedMeasurePoint(int point);
    /*! \brief frequencyResolution() × selectedMeasurePoint(), Hz. */
    double selectedFrequency() const;

public Q_SLOTS:
    /*! \brief Computes every trace's spectrum again with the given settings
        (both halves), then emits dataChanged(). */
    void changeWindowFunction(bool meanValueFreeEnabled, int WindowFunction);

Q_SIGNALS:
    void dataChanged();

private:
    Q_DECLARE_PRIVATE(FrequencySpectrum)
    FrequencySpectrumPrivate* d_ptr;
};
