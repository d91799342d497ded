// SPDX-License-Identifier: GPL-3.0-or-later
// Fuzz target: FuzzPipelines::shotArchive.
#include "fuzzmain.h"

OVSCOPE_FUZZ_TARGET(FuzzPipelines::shotArchive)
