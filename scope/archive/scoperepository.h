// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovscope_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QObject>

class ScopeElementArchive;

/*! \brief The host's store of scope elements; implemented by the host. */
class OVSCOPE_EXPORT ScopeRepository : public QObject
{
    Q_OBJECT

public:
    explicit ScopeRepository(QObject* parent = nullptr);
    ~ScopeRepository() override;

public Q_SLOTS:
    /*! \brief Every stored element, for the host's own lists. */
    virtual QList<ScopeElementArchive*> scopeElements() const = 0;
    /*! \brief The stored element with \a id, or null. */
    virtual ScopeElementArchive* findArchive(const QByteArray& id) const = 0;

Q_SIGNALS:
    /*! \brief The set of stored elements changed. */
    void scopeRepositoryChanged();
};
