// SPDX-License-Identifier: GPL-3.0-or-later
#include "ovversion.h"

#include "ovversion_config.h"

QString productVersionText()
{
    return QStringLiteral(OVVERSION_PRODUCT_NAME " " OVVERSION_PRODUCT_VERSION);
}

QString productVersionNumber()
{
    return QStringLiteral(OVVERSION_PRODUCT_VERSION);
}
