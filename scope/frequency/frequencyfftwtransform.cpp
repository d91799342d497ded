// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyfftwtransform.h"

#include <fftw3.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

namespace {

// Plans and chirp tables kept for earlier lengths, in bytes and in count.
constexpr qsizetype CacheBudget = qsizetype(256) << 20;
constexpr size_t CacheEntries = 16;
constexpr double Pi = 3.14159265358979323846;

bool hasOnlySmallFactors(qsizetype count, qsizetype largestFactor)
{
    qsizetype rest = count;
    for (qsizetype factor = 2; factor <= largestFactor && rest > 1; ++factor) {
        while (rest % factor == 0)
            rest /= factor;
    }
    return rest == 1;
}

struct FftwFree
{
    void operator()(void* p) const { fftw_free(p); }
};

} // namespace

struct FrequencyFftwTransform::Plan
{
    explicit Plan(qsizetype c) : count(c) {}
    virtual ~Plan()
    {
        if (plan)
            fftw_destroy_plan(plan);
    }
    virtual void execute(const double* input, std::complex<double>* output) = 0;
    virtual qsizetype bytes() const = 0;

    const qsizetype count;
    fftw_plan plan = nullptr;
};

// FFTW's real-input transform of the length itself.
struct FrequencyFftwTransform::RealPlan : FrequencyFftwTransform::Plan
{
    explicit RealPlan(qsizetype c)
        : Plan(c)
        , in(fftw_alloc_real(static_cast<size_t>(c)))
        , out(fftw_alloc_complex(static_cast<size_t>(c / 2 + 1)))
    {
        plan = fftw_plan_dft_r2c_1d(static_cast<int>(c), in.get(), out.get(), FFTW_ESTIMATE);
    }

    void execute(const double* input, std::complex<double>* output) override
    {
        std::memcpy(in.get(), input, sizeof(double) * static_cast<size_t>(count));
        fftw_execute(plan);
        std::memcpy(static_cast<void*>(output), out.get(),
                    sizeof(fftw_complex) * static_cast<size_t>(count / 2 + 1));
    }

    qsizetype bytes() const override { return count * qsizetype(sizeof(double)) * 2; }

    std::unique_ptr<double, FftwFree> in;
    std::unique_ptr<fftw_complex, FftwFree> out;
};

// Bluestein: with c[n] = e^(−iπn²/M), X[k] = c[k] · Σ x[n]·c[n]·conj(c[k − n]),
// a convolution computed with FFTs of a 5-smooth length L. Only the points
// 0 … M/2 are needed, so L ≥ M + M/2 suffices without wrap-around.
struct FrequencyFftwTransform::ChirpPlan : FrequencyFftwTransform::Plan
{
    explicit ChirpPlan(qsizetype c)
        : Plan(c)
        , bins(c / 2 + 1)
        , length(FrequencyFftwTransform::convolutionLength(c))
        , work(fftw_alloc_complex(static_cast<size_t>(length)))
        , chirpStorage(fftw_alloc_complex(static_cast<size_t>(c)))
        , filterStorage(fftw_alloc_complex(static_cast<size_t>(length)))
        , chirp(reinterpret_cast<std::complex<double>*>(chirpStorage.get()))
        , filter(reinterpret_cast<std::complex<double>*>(filterStorage.get()))
    {
        plan = fftw_plan_dft_1d(static_cast<int>(length), work.get(), work.get(), FFTW_FORWARD,
                                FFTW_ESTIMATE);
        computeChirp();
        // Filter: conj(c[|m|]) at m = −(M − 1) … bins − 1, wrapped around L,
        // zeros between.
        auto* w = reinterpret_cast<std::complex<double>*>(work.get());
        for (qsizetype m = 0; m < bins; ++m)
            w[m] = std::conj(chirp[m]);
        std::fill(w + bins, w + length - count + 1, std::complex<double>());
        for (qsizetype m = 1; m < count; ++m)
            w[length - m] = std::conj(chirp[m]);
        fftw_execute(plan);
        // The inverse transform is the forward one on conjugates; its 1/L
        // goes into the filter once.
        const double scale = 1.0 / static_cast<double>(length);
        for (qsizetype j = 0; j < length; ++j)
            filter[j] = w[j] * scale;
    }

    void computeChirp()
    {
        // The angle π·(n² mod 2M)/M is reduced exactly in integers, and
        // e^(−iπq/M) is put together from two short tables (q = hi·B + lo),
        // which keeps it accurate to a few units in the last place without
        // a sine and cosine per sample.
        const quint64 m = static_cast<quint64>(count);
        const quint64 period = 2 * m;
        const quint64 block = static_cast<quint64>(std::ceil(std::sqrt(double(period)))) + 1;
        const double step = Pi / double(m);
        std::vector<std::complex<double>> low(block);
        for (quint64 j = 0; j < block; ++j)
            low[j] = std::polar(1.0, -step * double(j));
        std::vector<std::complex<double>> high(period / block + 2);
        for (quint64 j = 0; j < high.size(); ++j)
            high[j] = std::polar(1.0, -Pi * (double(j * block) / double(m)));
        quint64 q = 0; // n² mod 2M, advanced by 2n + 1
        for (quint64 n = 0; n < m; ++n) {
            chirp[n] = high[q / block] * low[q % block];
            q = (q + 2 * n + 1) % period;
        }
    }

    void execute(const double* input, std::complex<double>* output) override
    {
        auto* w = reinterpret_cast<std::complex<double>*>(work.get());
        for (qsizetype n = 0; n < count; ++n)
            w[n] = input[n] * chirp[n];
        std::fill(w + count, w + length, std::complex<double>());
        fftw_execute(plan);
        for (qsizetype j = 0; j < length; ++j)
            w[j] = std::conj(w[j] * filter[j]);
        fftw_execute(plan);
        for (qsizetype k = 0; k < bins; ++k)
            output[k] = chirp[k] * std::conj(w[k]);
    }

    qsizetype bytes() const override
    {
        return (2 * length + count) * qsizetype(sizeof(std::complex<double>));
    }

    const qsizetype bins;
    const qsizetype length;
    std::unique_ptr<fftw_complex, FftwFree> work;
    std::unique_ptr<fftw_complex, FftwFree> chirpStorage;
    std::unique_ptr<fftw_complex, FftwFree> filterStorage;
    std::complex<double>* const chirp;  // c[n], n = 0 … M − 1
    std::complex<double>* const filter; // transform of the filter, ÷ L
};

// Short lengths go to FFTW whatever their factors: it is fast enough there
// and exact to the last bits. For longer lengths FFTW stays fast while the
// prime factors are moderate (a factor near 1000 costs about twice a power
// of two, still less than the three transforms of a chirp convolution);
// a large prime factor makes it fall back on slow algorithms (a prime near
// 10^6 takes a quarter of a second), so those take the chirp convolution.
FrequencyFftwTransform::FrequencyFftwTransform(qsizetype directLimit, qsizetype largestFastFactor)
    : m_directLimit(directLimit)
    , m_largestFastFactor(largestFastFactor)
{
}

FrequencyFftwTransform::~FrequencyFftwTransform() = default;

bool FrequencyFftwTransform::usesChirpConvolution(qsizetype count) const
{
    if (count <= m_directLimit || hasOnlySmallFactors(count, m_largestFastFactor))
        return false;
    return convolutionLength(count) <= INT_MAX;
}

qsizetype FrequencyFftwTransform::convolutionLength(qsizetype count)
{
    const qsizetype needed = std::max<qsizetype>(1, count + count / 2);
    // Beyond the processor caches FFTW's estimated plans for lengths with a
    // long run of twos (3·2^19, 2^21) take twice as long as for 5-smooth
    // lengths with more factors of 3 and 5, so long convolutions keep the
    // power of two short.
    const int maxTwos = needed > (qsizetype(1) << 17) ? 13 : 62;
    qsizetype best = std::numeric_limits<qsizetype>::max();
    for (qsizetype p5 = 1; p5 < 2 * needed; p5 *= 5) {
        for (qsizetype p35 = p5; p35 < 4 * needed; p35 *= 3) {
            qsizetype value = p35;
            int twos = 0;
            while (value < needed && twos < maxTwos) {
                value *= 2;
                ++twos;
            }
            if (value >= needed)
                best = std::min(best, value);
        }
    }
    return best;
}

FrequencyFftwTransform::Plan* FrequencyFftwTransform::plan(qsizetype count)
{
    for (auto it = m_plans.begin(); it != m_plans.end(); ++it) {
        if ((*it)->count == count) {
            if (it != m_plans.begin())
                m_plans.splice(m_plans.begin(), m_plans, it);
            return m_plans.front().get();
        }
    }
    if (usesChirpConvolution(count))
        m_plans.push_front(std::make_unique<ChirpPlan>(count));
    else
        m_plans.push_front(std::make_unique<RealPlan>(count));

    qsizetype total = 0;
    size_t kept = 0;
    for (auto it = m_plans.begin(); it != m_plans.end();) {
        const qsizetype bytes = (*it)->bytes();
        if (kept > 0 && (total + bytes > CacheBudget || kept >= CacheEntries)) {
            it = m_plans.erase(it);
        } else {
            total += bytes;
            ++kept;
            ++it;
        }
    }
    return m_plans.front().get();
}

void FrequencyFftwTransform::forwardReal(const double* input, qsizetype count,
                                         std::complex<double>* output)
{
    if (count <= 0)
        return;
    if (count > INT_MAX) {
        // Beyond what FFTW can plan; no recording comes near this.
        const double nan = std::numeric_limits<double>::quiet_NaN();
        std::fill(output, output + count / 2 + 1, std::complex<double>(nan, nan));
        return;
    }
    Plan* prepared = plan(count);
    prepared->execute(input, output);
    // A length whose plan alone exceeds the budget is not kept around.
    if (prepared->bytes() > CacheBudget)
        m_plans.pop_front();
}

void FrequencyFftwTransform::clearCache()
{
    m_plans.clear();
}

int FrequencyFftwTransform::cachedLengths() const
{
    return static_cast<int>(m_plans.size());
}
