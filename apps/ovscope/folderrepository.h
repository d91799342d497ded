// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementarchive.h"
#include "scoperepository.h"

#include <QtCore/QHash>
#include <QtCore/QString>

/*! \brief The shot archives (*.ovxshot) of one folder as a repository, so
    that a composition finds the shots stored beside it. The folder is read
    on the first request; files that do not load are left out. */
class FolderRepository : public ScopeRepository
{
    Q_OBJECT

public:
    explicit FolderRepository(const QString& folder, QObject* parent = nullptr);
    ~FolderRepository() override;

    QString folder() const;

public Q_SLOTS:
    QList<ScopeElementArchive*> scopeElements() const override;
    ScopeElementArchive* findArchive(const QByteArray& id) const override;

private:
    void load() const;

    QString m_folder;
    mutable bool m_loaded = false;
    mutable QList<ScopeElementArchive*> m_elements;
    mutable QHash<QByteArray, ScopeElementArchive*> m_byId;
};
