// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovversion_export.h"

#include <QtCore/QString>

/*! \brief The suite's product name and version, e.g. "OvScope 0.1.0". */
OVVERSION_EXPORT QString productVersionText();

/*! \brief The bare version number, e.g. "0.1.0". */
OVVERSION_EXPORT QString productVersionNumber();
