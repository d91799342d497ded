// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencytransform.h"

#include <list>
#include <memory>

/*! \brief FrequencyTransform on FFTW (double precision).

    Lengths whose prime factors do not exceed 1024 go straight to FFTW's
    real transform. Longer lengths with a larger prime factor, which FFTW
    handles only slowly (a prime near 10^6 takes a quarter of a second), are
    computed as a chirp convolution (Bluestein) of a 5-smooth length, which
    keeps every length at O(M log M). Prepared plans
    and chirp tables are kept per length, the most recently used first,
    within a memory budget. */
class FrequencyFftwTransform : public FrequencyTransform
{
public:
    /*! \brief Lengths up to \a directLimit, and lengths whose prime factors
        do not exceed \a largestFastFactor, go straight to FFTW; all others
        are computed as a chirp convolution. The defaults are what the
        spectra use; tests force either way with (0, 1) or (INT_MAX, 0). */
    explicit FrequencyFftwTransform(qsizetype directLimit = DefaultDirectLimit,
                                    qsizetype largestFastFactor = DefaultLargestFastFactor);
    ~FrequencyFftwTransform() override;

    static constexpr qsizetype DefaultDirectLimit = 16384;
    static constexpr qsizetype DefaultLargestFastFactor = 1024;

    void forwardReal(const double* input, qsizetype count, std::complex<double>* output) override;
    void clearCache() override;

    /*! \brief Number of lengths with a prepared plan. */
    int cachedLengths() const;

    /*! \brief Whether \a count is computed as a chirp convolution. */
    bool usesChirpConvolution(qsizetype count) const;
    /*! \brief Convolution length used for \a count: the smallest 5-smooth
        number of at least count + count/2 (the upper half of the spectrum is
        not needed). */
    static qsizetype convolutionLength(qsizetype count);

private:
    struct Plan;
    struct RealPlan;
    struct ChirpPlan;

    Plan* plan(qsizetype count);

    const qsizetype m_directLimit;
    const qsizetype m_largestFastFactor;
    std::list<std::unique_ptr<Plan>> m_plans;
};
