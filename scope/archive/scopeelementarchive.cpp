// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeelementarchive.h"

ScopeElementArchive::ScopeElementArchive(QObject* parent)
    : QObject(parent)
{
}

ScopeElementArchive::~ScopeElementArchive() = default;
