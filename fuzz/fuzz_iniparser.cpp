// SPDX-License-Identifier: GPL-3.0-or-later
// Fuzz target: FuzzPipelines::iniDocument.
#include "fuzzmain.h"

OVSCOPE_FUZZ_TARGET(FuzzPipelines::iniDocument)
