// SPDX-License-Identifier: GPL-3.0-or-later
// Fuzz target: FuzzPipelines::compositionArchive.
#include "fuzzmain.h"

OVSCOPE_FUZZ_TARGET(FuzzPipelines::compositionArchive)
