// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovdatatype_export.h"

#include <QtCore/QString>
#include <QtCore/QtGlobal>

/*! \brief How the values of a simple data type are to be read. */
enum eSimpleTypeKind {
    eSimpleTypeKindSigned = 0, //!< signed integer
    eSimpleTypeKindUnsigned = 1, //!< unsigned integer
    eSimpleTypeKindFractional = 2 //!< floating point
};

/*! \brief One of the drive's simple data types: number, name, size and kind.
 *
 * Instances belong to the DatatypeProvider and live as long as the process.
 */
class OVDATATYPE_EXPORT SimpleType
{
public:
    SimpleType(quint8 number, const QString& name, quint32 byteSize, eSimpleTypeKind kind);

    /*! \brief The type's number as the drive reports it (1 … 10). */
    quint8 number() const;
    /*! \brief The type's name, e.g. "INT16". */
    QString name() const;
    /*! \brief The size of one value in bytes. */
    quint32 byteSize() const;
    /*! \brief Signed, unsigned or fractional. */
    eSimpleTypeKind kind() const;

private:
    QString m_name;
    quint32 m_byteSize;
    eSimpleTypeKind m_kind;
    quint8 m_number;
};
