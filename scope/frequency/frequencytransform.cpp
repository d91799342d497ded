// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencytransform.h"

#include "frequencyfftwtransform.h"

namespace {
FrequencyTransform* installedTransform = nullptr;
}

FrequencyTransform::~FrequencyTransform() = default;

FrequencyTransform* FrequencyTransform::instance()
{
    if (installedTransform)
        return installedTransform;
    static FrequencyFftwTransform builtIn;
    return &builtIn;
}

void FrequencyTransform::setInstance(FrequencyTransform* transform)
{
    installedTransform = transform;
}
