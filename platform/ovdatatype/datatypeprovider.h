// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovdatatype_export.h"

#include <QtCore/QObject>

class DatatypeProviderPrivate;
class SimpleType;

/*! \brief The registry of the drive's data types, looked up by type number. */
class OVDATATYPE_EXPORT DatatypeProvider : public QObject
{
    Q_OBJECT

public:
    /*! \brief The one registry of the process; never null. */
    static DatatypeProvider* instance();

    ~DatatypeProvider() override;

    /*! \brief The size in bytes of one value of type \a number; 0 for an unknown number. */
    quint32 byteSize(quint32 number) const;

    /*! \brief The simple type with \a number, or null for an unknown number. */
    const SimpleType* simpleType(quint32 number) const;

private:
    DatatypeProvider();

    Q_DECLARE_PRIVATE(DatatypeProvider)
    DatatypeProviderPrivate* const d_ptr;
};
