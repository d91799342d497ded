// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencywindowfunctions.h"

#include <QtCore/QVector>

#include <complex>

/*! \brief Amplitude spectra of sampled signals.

    The spectrum that callers get is the discrete Fourier transform of exactly
    the samples handed in, computed by the fast transform backend
    (FrequencyTransform) for every length in O(M log M). The step functions
    below are the building blocks of the routine; directTransform() and
    radix2Transform() are the slow textbook transforms that the fast backend
    is checked against. */
namespace Frequency {

/*! \brief Amplitude spectrum of \a samples: optional zero padding, mean
    removal, Hamming window, transform, magnitude ÷ M. Returns all M points
    (both halves). With \a useFft and fewer than two samples the samples come
    back unchanged. */
QVector<double> amplitudeSpectrum(QVector<double> samples, int paddingExponent, bool noWindow,
                                  bool meanValueFree, bool useFft);

/*! \brief amplitudeSpectrum(samples, -1, windowFunction != Hamming, true, false). */
QVector<double> meanFreeAmplitudeSpectrum(QVector<double> samples, int windowFunction);

/*! \brief The same routine with the textbook transforms: the twiddle
    recurrence for the direct transform, the in-place radix-2 routine for
    \a useFft. O(M²) without \a useFft: for tests and comparisons only. */
QVector<double> referenceAmplitudeSpectrum(QVector<double> samples, int paddingExponent, bool noWindow,
                                           bool meanValueFree, bool useFft);

/*! \brief Length after zero padding of \a count samples to a power of two with
    \a addedExponent added to the truncated binary logarithm; never shorter
    than \a count. The length is capped at maxPaddedLength(). */
qsizetype paddedLength(qsizetype count, int addedExponent);
/*! \brief The largest length that zero padding produces (2^23). */
qsizetype maxPaddedLength();
/*! \brief Extends \a samples with zeros to paddedLength(). */
void padToPowerOfTwo(QVector<double>& samples, int addedExponent);
/*! \brief Subtracts the mean, summed as x[i] ÷ N. */
void removeMeanValue(QVector<double>& samples);
/*! \brief Multiplies by the Hamming weights 0.54 − 0.46 cos(i·2π/(N − 1)),
    with 2π cut to 6.2831853071794; no gain correction. */
void applyHammingWindow(QVector<double>& samples);

/*! \brief Direct transform by the twiddle recurrence, O(M²). */
QVector<std::complex<double>> directTransform(const QVector<double>& samples);
/*! \brief Radix-2 decimation in frequency in place, then bit reversal.
    Meaningful for power-of-two lengths. */
void radix2Transform(QVector<std::complex<double>>& values);
/*! \brief |X[k]| ÷ M for every point. */
QVector<double> magnitudes(const QVector<std::complex<double>>& spectrum);

} // namespace Frequency
