// SPDX-License-Identifier: GPL-3.0-or-later
#include "scoperepository.h"

ScopeRepository::ScopeRepository(QObject* parent)
    : QObject(parent)
{
}

ScopeRepository::~ScopeRepository() = default;
