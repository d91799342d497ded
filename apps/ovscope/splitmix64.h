// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cmath>
#include <cstdint>

/*! \brief A small, fixed-seed random source (splitmix64) so that every run of
    the sample generator writes the same bytes on every machine. */
class SplitMix64
{
public:
    explicit SplitMix64(std::uint64_t seed)
        : m_state(seed)
    {
    }

    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }

    /*! \brief Uniform in [0, 1). */
    double uniform() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }

    /*! \brief Normal with mean 0 and standard deviation \a sigma (Box–Muller;
        the second value of each pair is kept for the next call). */
    double gaussian(double sigma)
    {
        if (m_hasSpare) {
            m_hasSpare = false;
            return m_spare * sigma;
        }
        double u = uniform();
        while (u <= 0.0)
            u = uniform();
        const double v = uniform();
        const double radius = std::sqrt(-2.0 * std::log(u));
        const double angle = 6.283185307179586 * v;
        m_spare = radius * std::sin(angle);
        m_hasSpare = true;
        return radius * std::cos(angle) * sigma;
    }

private:
    std::uint64_t m_state;
    double m_spare = 0.0;
    bool m_hasSpare = false;
};
