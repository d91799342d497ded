// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "datatypeprovider.h"
#include "simpletype.h"

#include <QtCore/QObject>

#include <vector>

class DatatypeProviderPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(DatatypeProvider)

public:
    explicit DatatypeProviderPrivate(DatatypeProvider* q);

    // types[n - 1] is the type with number n.
    std::vector<SimpleType> types;

private:
    DatatypeProvider* const q_ptr;
};
