// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeseries.h"

#include <cmath>

namespace ScopeSeries {

namespace {

// Splits |value| into mantissa × 10^exponent with the mantissa in [1, 10),
// correcting the rounding of log10 near powers of ten.
void decompose(double value, double* mantissa, int* exponent)
{
    const double magnitude = std::fabs(value);
    int e = static_cast<int>(std::floor(std::log10(magnitude)));
    double p = std::pow(10.0, e);
    if (magnitude / p >= 10.0) {
        ++e;
        p = std::pow(10.0, e);
    } else if (magnitude / p < 1.0) {
        --e;
        p = std::pow(10.0, e);
    }
    *mantissa = magnitude / p;
    *exponent = e;
}

bool usable(double value)
{
    return std::isfinite(value) && value != 0.0;
}

// The series value r' (already on the series) rewritten as digit × 10^e with
// the digit 1, 2 or 5.
void seriesDigit(double value, int* digit, int* exponent)
{
    double mantissa = 0.0;
    decompose(value, &mantissa, exponent);
    int rounded = static_cast<int>(std::round(mantissa)); // half away from zero
    if (rounded >= 10) {
        rounded = 1;
        ++*exponent;
    }
    *digit = rounded;
}

double compose(double sign, int digit, int exponent)
{
    return sign * digit * std::pow(10.0, exponent);
}

} // namespace

bool fuzzyEqual(double a, double b)
{
    return std::fabs(a - b) <= std::fmax(std::fabs(a), std::fabs(b)) * tolerance;
}

double nextLarger(double value)
{
    if (!usable(value))
        return value;
    const double sign = value < 0 ? -1.0 : 1.0;
    double m = 0.0;
    int e = 0;
    decompose(value, &m, &e);
    const double step = m < 1.0 ? 1.0 : m < 2.0 ? 2.0 : m < 5.0 ? 5.0 : 10.0;
    const double result = sign * step * std::pow(10.0, e);
    if (!fuzzyEqual(result, value))
        return result;
    int digit = 0;
    seriesDigit(result, &digit, &e);
    switch (digit) {
    case 1:
        return compose(sign, 2, e);
    case 2:
        return compose(sign, 5, e);
    default:
        return compose(sign, 1, e + 1);
    }
}

double nextSmaller(double value)
{
    if (!usable(value))
        return value;
    const double sign = value < 0 ? -1.0 : 1.0;
    double m = 0.0;
    int e = 0;
    decompose(value, &m, &e);
    const double step = m < 2.0 ? 1.0 : m < 5.0 ? 2.0 : 5.0;
    const double result = sign * step * std::pow(10.0, e);
    if (!fuzzyEqual(result, value))
        return result;
    int digit = 0;
    seriesDigit(result, &digit, &e);
    switch (digit) {
    case 1:
        return compose(sign, 5, e - 1);
    case 2:
        return compose(sign, 1, e);
    default:
        return compose(sign, 2, e);
    }
}

bool isOnSeries(double value)
{
    if (!usable(value))
        return false;
    int digit = 0;
    int e = 0;
    seriesDigit(value, &digit, &e);
    if (digit != 1 && digit != 2 && digit != 5)
        return false;
    return fuzzyEqual(compose(value < 0 ? -1.0 : 1.0, digit, e), value);
}

double ceil(double value)
{
    if (!usable(value))
        return value;
    if (isOnSeries(value)) {
        int digit = 0;
        int e = 0;
        seriesDigit(value, &digit, &e);
        return compose(value < 0 ? -1.0 : 1.0, digit, e);
    }
    return nextLarger(value);
}

double floor(double value)
{
    if (!usable(value))
        return value;
    if (isOnSeries(value)) {
        int digit = 0;
        int e = 0;
        seriesDigit(value, &digit, &e);
        return compose(value < 0 ? -1.0 : 1.0, digit, e);
    }
    return nextSmaller(value);
}

double niceFactorDown(double factor)
{
    if (!usable(factor))
        return factor;
    return 1.0 / nextLarger(1.0 / factor);
}

double niceFactorUp(double factor)
{
    if (!usable(factor))
        return factor;
    return 1.0 / nextSmaller(1.0 / factor);
}

double niceFactorAtMost(double factor)
{
    if (!usable(factor))
        return factor;
    return 1.0 / ceil(1.0 / factor);
}

} // namespace ScopeSeries
