// SPDX-License-Identifier: GPL-3.0-or-later
#include "simpletype.h"

SimpleType::SimpleType(quint8 number, const QString& name, quint32 byteSize, eSimpleTypeKind kind)
    : m_name(name)
    , m_byteSize(byteSize)
    , m_kind(kind)
    , m_number(number)
{
}

quint8 SimpleType::number() const
{
    return m_number;
}

QString SimpleType::name() const
{
    return m_name;
}

quint32 SimpleType::byteSize() const
{
    return m_byteSize;
}

eSimpleTypeKind SimpleType::kind() const
{
    return m_kind;
}
