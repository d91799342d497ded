// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequency.h"

#include "frequencytransform.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Frequency {

namespace {

// 2π and π cut after 13 decimals: the window and the transforms use them as
// they are, so that spectra stay comparable with earlier releases.
constexpr double TwoPi = 6.2831853071794;
constexpr double Pi = 3.1415926535897;

// Zero padding never grows a list beyond 2^23 samples, whatever exponent is
// asked for: a mistyped exponent must not allocate gigabytes.
constexpr int MaxPaddingExponent = 23;

QVector<double> fastMagnitudes(const QVector<double>& samples)
{
    const qsizetype count = samples.size();
    QVector<double> result;
    if (count == 0)
        return result;
    const qsizetype bins = count / 2 + 1;
    std::vector<std::complex<double>> half(static_cast<size_t>(bins));
    FrequencyTransform::instance()->forwardReal(samples.constData(), count, half.data());
    result.resize(count);
    double* out = result.data();
    const double m = static_cast<double>(count);
    for (qsizetype k = 0; k < bins; ++k)
        out[k] = std::hypot(half[k].real(), half[k].imag()) / m;
    // The spectrum of real samples is conjugate symmetric: the upper half
    // mirrors the lower one exactly.
    for (qsizetype k = bins; k < count; ++k)
        out[k] = out[count - k];
    return result;
}

void prepare(QVector<double>& samples, int paddingExponent, bool noWindow, bool meanValueFree,
             bool useFft)
{
    if (paddingExponent > -1)
        padToPowerOfTwo(samples, paddingExponent);
    else if (useFft)
        padToPowerOfTwo(samples, 0);
    if (meanValueFree)
        removeMeanValue(samples);
    if (!noWindow)
        applyHammingWindow(samples);
}

} // namespace

QVector<double> amplitudeSpectrum(QVector<double> samples, int paddingExponent, bool noWindow,
                                  bool meanValueFree, bool useFft)
{
    if (useFft && samples.size() < 2)
        return samples;
    prepare(samples, paddingExponent, noWindow, meanValueFree, useFft);
    // Whether radix-2 or direct was asked for, the result is the exact
    // transform of the (padded) list; the backend is fast for every length.
    return fastMagnitudes(samples);
}

QVector<double> meanFreeAmplitudeSpectrum(QVector<double> samples, int windowFunction)
{
    return amplitudeSpectrum(std::move(samples), -1, windowFunction != Hamming, true, false);
}

QVector<double> referenceAmplitudeSpectrum(QVector<double> samples, int paddingExponent, bool noWindow,
                                           bool meanValueFree, bool useFft)
{
    if (useFft && samples.size() < 2)
        return samples;
    prepare(samples, paddingExponent, noWindow, meanValueFree, useFft);
    if (!useFft)
        return magnitudes(directTransform(samples));
    QVector<std::complex<double>> values(samples.size());
    for (qsizetype i = 0; i < samples.size(); ++i)
        values[i] = std::complex<double>(samples.at(i), 0.0);
    radix2Transform(values);
    return magnitudes(values);
}

qsizetype maxPaddedLength()
{
    return qsizetype(1) << MaxPaddingExponent;
}

qsizetype paddedLength(qsizetype count, int addedExponent)
{
    if (count <= 0)
        return count;
    const double exponent = std::trunc(std::log(static_cast<double>(count)) / std::log(2.0))
                            + static_cast<double>(addedExponent);
    const int p = static_cast<int>(std::clamp(exponent, 0.0, double(MaxPaddingExponent)));
    return std::max(count, qsizetype(1) << p);
}

void padToPowerOfTwo(QVector<double>& samples, int addedExponent)
{
    const qsizetype target = paddedLength(samples.size(), addedExponent);
    if (target > samples.size())
        samples.resize(target, 0.0);
}

void removeMeanValue(QVector<double>& samples)
{
    const qsizetype count = samples.size();
    if (count == 0)
        return;
    const double n = static_cast<double>(count);
    double* x = samples.data();
    // Each sample is divided before it is added, as the stored spectra of
    // earlier releases were computed.
    double mean = 0.0;
    for (qsizetype i = 0; i < count; ++i)
        mean += x[i] / n;
    for (qsizetype i = 0; i < count; ++i)
        x[i] -= mean;
}

void applyHammingWindow(QVector<double>& samples)
{
    const qsizetype count = samples.size();
    if (count == 0)
        return;
    // A single sample gives r = ∞ and a weight that is not a number; the
    // amplitude then shows as NaN, which is what the user gets to see.
    const double r = 1.0 / (static_cast<double>(count) - 1.0);
    double* x = samples.data();
    for (qsizetype i = 0; i < count; ++i)
        x[i] *= 0.54 - 0.46 * std::cos(static_cast<double>(i) * TwoPi * r);
}

QVector<std::complex<double>> directTransform(const QVector<double>& samples)
{
    const qsizetype count = samples.size();
    QVector<std::complex<double>> result(count);
    const double m = static_cast<double>(count);
    for (qsizetype k = 0; k < count; ++k) {
        const double a = static_cast<double>(k) * (-TwoPi) / m;
        const double cs = std::cos(a);
        const double sn = std::sin(a);
        double wr = 1.0;
        double wi = 0.0;
        double sr = 0.0;
        double si = 0.0;
        for (qsizetype n = 0; n < count; ++n) {
            const double x = samples.at(n);
            sr += x * wr;
            si += x * wi;
            const double nr = wr * cs - wi * sn;
            const double ni = wi * cs + wr * sn;
            wr = nr;
            wi = ni;
        }
        result[k] = std::complex<double>(sr, si);
    }
    return result;
}

void radix2Transform(QVector<std::complex<double>>& values)
{
    const qsizetype count = values.size();
    if (count == 0)
        return;
    std::complex<double>* x = values.data();
    qsizetype half = count / 2;
    while (half > 0) {
        const double a = -Pi / static_cast<double>(half);
        const double cs = std::cos(a);
        const double sn = std::sin(a);
        double wr = 1.0;
        double wi = 0.0;
        for (qsizetype j = 0; j < half; ++j) {
            for (qsizetype i = j; i < count; i += 2 * half) {
                if (i + half >= count)
                    break; // lengths that are no power of two: stay inside the list
                const std::complex<double> t = x[i];
                x[i] = t + x[i + half];
                const std::complex<double> d = t - x[i + half];
                x[i + half] = std::complex<double>(d.real() * wr - d.imag() * wi,
                                                   d.real() * wi + d.imag() * wr);
            }
            const double nr = wr * cs - wi * sn;
            const double ni = wi * cs + wr * sn;
            wr = nr;
            wi = ni;
        }
        if (half < 2)
            break;
        half /= 2;
    }
    qsizetype j = 0;
    for (qsizetype i = 0; i < count; ++i) {
        if (j > i && j < count)
            std::swap(x[i], x[j]);
        qsizetype m = count / 2;
        while (m >= 2 && j >= m) {
            j -= m;
            m /= 2;
        }
        j += m;
    }
}

QVector<double> magnitudes(const QVector<std::complex<double>>& spectrum)
{
    const qsizetype count = spectrum.size();
    QVector<double> result(count);
    const double m = static_cast<double>(count);
    for (qsizetype k = 0; k < count; ++k)
        result[k] = std::hypot(spectrum.at(k).real(), spectrum.at(k).imag()) / m;
    return result;
}

} // namespace Frequency
