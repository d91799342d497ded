// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/*! \brief Stepping along the 1-2-5 series {1, 2, 5} × 10^k.

    Used by the time base, the frequency plot and the vertical scale of a
    trace. A value within three units in the last place (relative) of a series
    value counts as lying on it, so that a value that was itself produced by a
    step moves one step further instead of staying put.
*/
namespace ScopeSeries {

/*! \brief Relative tolerance within which a value lies on the series. */
constexpr double tolerance = 3 * 2.220446049250313e-16;

/*! \brief Whether \a a and \a b are equal within the series tolerance. */
bool fuzzyEqual(double a, double b);

/*! \brief The next series value of larger magnitude than \a value (sign kept).
    Zero, infinities and NaN are returned unchanged. */
double nextLarger(double value);

/*! \brief The next series value of smaller magnitude than \a value (sign kept).
    Zero, infinities and NaN are returned unchanged. */
double nextSmaller(double value);

/*! \brief The smallest series value whose magnitude is not below |value|
    (a value on the series is returned as it is). */
double ceil(double value);

/*! \brief The largest series value whose magnitude is not above |value|
    (a value on the series is returned as it is). */
double floor(double value);

/*! \brief Whether \a value lies on the series (within the tolerance). */
bool isOnSeries(double value);

/*! \brief Vertical scale factor one step down: the displayed units per
    division (1 ÷ factor) move to the next larger series value. */
double niceFactorDown(double factor);

/*! \brief Vertical scale factor one step up: the displayed units per
    division (1 ÷ factor) move to the next smaller series value. */
double niceFactorUp(double factor);

/*! \brief The largest factor whose units per division (1 ÷ factor) lie on
    the series and which does not exceed \a factor: used to fit a curve into
    a number of divisions. */
double niceFactorAtMost(double factor);

} // namespace ScopeSeries
