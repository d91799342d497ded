// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace Frequency {

/*! \brief Window functions of the frequency analysis, by combo box index.
    Any value other than Hamming means that no window is applied. */
enum WindowFunctions : int {
    Hamming = 0,
    NoWindow = 1
};

} // namespace Frequency
