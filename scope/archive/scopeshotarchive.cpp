// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeshotarchive.h"

#include "scopeshotarchiveimplementation.h"

ScopeShotArchive::ScopeShotArchive(QObject* parent)
    : ScopeElementArchive(parent)
{
}

ScopeShotArchive::~ScopeShotArchive() = default;

ScopeShotArchive* ScopeShotArchive::create(QObject* parent)
{
    return new ScopeShotArchiveImplementation(parent);
}
