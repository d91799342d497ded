// SPDX-License-Identifier: GPL-3.0-or-later
// Fuzz target: FuzzPipelines::archiveCodec.
#include "fuzzmain.h"

OVSCOPE_FUZZ_TARGET(FuzzPipelines::archiveCodec)
