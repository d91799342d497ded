// SPDX-License-Identifier: GPL-3.0-or-later
#include "datatypeprovider.h"
#include "datatypeprovider_p.h"

DatatypeProviderPrivate::DatatypeProviderPrivate(DatatypeProvider* q)
    : QObject(q)
    , q_ptr(q)
{
    // The drive's type numbers are dense from 1; the table is filled once and
    // never changes, so the pointers handed out stay valid.
    types = {
        { 1, QStringLiteral("INT8"), 1, eSimpleTypeKindSigned },
        { 2, QStringLiteral("INT16"), 2, eSimpleTypeKindSigned },
        { 3, QStringLiteral("INT32"), 4, eSimpleTypeKindSigned },
        { 4, QStringLiteral("UINT32"), 4, eSimpleTypeKindUnsigned },
        { 5, QStringLiteral("INT64"), 8, eSimpleTypeKindSigned },
        { 6, QStringLiteral("UINT64"), 8, eSimpleTypeKindUnsigned },
        { 7, QStringLiteral("FLOAT32"), 4, eSimpleTypeKindFractional },
        { 8, QStringLiteral("FLOAT64"), 8, eSimpleTypeKindFractional },
        { 9, QStringLiteral("UINT8"), 1, eSimpleTypeKindUnsigned },
        { 10, QStringLiteral("UINT16"), 2, eSimpleTypeKindUnsigned },
    };
}

DatatypeProvider::DatatypeProvider()
    : QObject(nullptr)
    , d_ptr(new DatatypeProviderPrivate(this))
{
}

DatatypeProvider::~DatatypeProvider() = default;

DatatypeProvider* DatatypeProvider::instance()
{
    static DatatypeProvider provider;
    return &provider;
}

quint32 DatatypeProvider::byteSize(quint32 number) const
{
    const SimpleType* type = simpleType(number);
    return type ? type->byteSize() : 0;
}

const SimpleType* DatatypeProvider::simpleType(quint32 number) const
{
    Q_D(const DatatypeProvider);
    // Compared as quint32, so that 257 is not mistaken for 1.
    if (number == 0 || number > d->types.size())
        return nullptr;
    return &d->types[number - 1];
}
