// SPDX-License-Identifier: GPL-3.0-or-later
// The shared library's own translation unit: every object of OvScopeInternal is
// linked in whole, and only what carries OVSCOPE_EXPORT is visible to a host.
#include "ovscope_export.h"
