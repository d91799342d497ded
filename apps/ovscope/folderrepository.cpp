// SPDX-License-Identifier: GPL-3.0-or-later
#include "folderrepository.h"

#include "cliio.h"
#include "scopeshotarchive.h"

#include <QtCore/QDir>

FolderRepository::FolderRepository(const QString& folder, QObject* parent)
    : ScopeRepository(parent)
    , m_folder(folder)
{
}

FolderRepository::~FolderRepository() = default;

QString FolderRepository::folder() const
{
    return m_folder;
}

void FolderRepository::load() const
{
    if (m_loaded)
        return;
    m_loaded = true;
    const QDir dir(m_folder);
    const QStringList files = dir.entryList({QStringLiteral("*.ovxshot")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        QString error;
        ScopeShotArchive* archive = CliIo::loadShot(dir.filePath(file), const_cast<FolderRepository*>(this), &error);
        if (!archive)
            continue;
        m_elements.append(archive);
        // The first file with an ID wins, as in a sorted listing.
        if (!m_byId.contains(archive->id()))
            m_byId.insert(archive->id(), archive);
    }
}

QList<ScopeElementArchive*> FolderRepository::scopeElements() const
{
    load();
    return m_elements;
}

ScopeElementArchive* FolderRepository::findArchive(const QByteArray& id) const
{
    load();
    return m_byId.value(id);
}
