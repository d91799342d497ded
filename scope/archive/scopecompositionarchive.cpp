// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopecompositionarchive.h"

#include "scopecompositionarchiveimplementation.h"

ScopeCompositionArchive::ScopeCompositionArchive(QObject* parent)
    : ScopeElementArchive(parent)
{
}

ScopeCompositionArchive::~ScopeCompositionArchive() = default;

ScopeCompositionArchive* ScopeCompositionArchive::create(QObject* parent)
{
    return new ScopeCompositionArchiveImplementation(parent);
}
