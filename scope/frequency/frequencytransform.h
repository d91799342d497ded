// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGlobal>

#include <complex>

/*! \brief The fast discrete Fourier transform behind the amplitude spectra.

    One interface so that the transform library can be replaced without
    touching the spectrum routine. The transform is unnormalised:
    X[k] = Σ x[n]·e^(−2πi·n·k/M). */
class FrequencyTransform
{
public:
    virtual ~FrequencyTransform();

    /*! \brief Writes the points 0 … count/2 of the transform of the \a count
        real values at \a input to \a output (count/2 + 1 values). The other
        points are the complex conjugates of these. */
    virtual void forwardReal(const double* input, qsizetype count, std::complex<double>* output) = 0;

    /*! \brief Forgets whatever the backend prepared for earlier lengths. */
    virtual void clearCache() = 0;

    /*! \brief The backend the spectrum routine uses: the one installed with
        setInstance(), else the built-in FFTW backend. */
    static FrequencyTransform* instance();
    /*! \brief Installs \a transform (not owned); null restores the built-in one. */
    static void setInstance(FrequencyTransform* transform);

protected:
    FrequencyTransform() = default;
    FrequencyTransform(const FrequencyTransform&) = delete;
    FrequencyTransform& operator=(const FrequencyTransform&) = delete;
};
