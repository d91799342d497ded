// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementarchive.h"
#include "scoperepository.h"

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

class ScopeCompositionArchive;
class ScopeShotArchive;
class WorkbenchRepositoryPrivate;

/*! \brief The recordings of one folder (*.ovxshot, *.ovxcomp) as the
    workbench's repository.

    Every file is loaded into an archive object owned by the repository; a
    file that does not load stays listed with its error. Changes that an
    archive announces (scopeElementChanged, scopeElementsChanged) are written
    back after a short quiet period, atomically: a failed write leaves the
    previous file as it was and is reported by saveFailed(). The folder is
    watched, so files that other programs add or remove show up by themselves.
*/
class WorkbenchRepository : public ScopeRepository
{
    Q_OBJECT

public:
    explicit WorkbenchRepository(QObject* parent = nullptr);
    ~WorkbenchRepository() override;

    /*! \brief Reads \a folder; false (and nothing changed) when it is no folder. */
    bool setFolder(const QString& folder);
    QString folder() const;

    /*! \brief Absolute paths of the listed recordings, sorted by file name. */
    QStringList files() const;
    /*! \brief The archive loaded from \a path; null when it failed to load. */
    ScopeElementArchive* archive(const QString& path) const;
    /*! \brief Why \a path failed to load; empty when it loaded. */
    QString loadError(const QString& path) const;
    /*! \brief The file an archive of this repository is stored in. */
    QString filePath(const ScopeElementArchive* archive) const;

    /*! \brief Quiet period in milliseconds between the last change and the save. */
    int autosaveDelay() const;
    void setAutosaveDelay(int milliseconds);
    /*! \brief Whether changes are waiting to be written. */
    bool hasUnsavedChanges() const;
    /*! \brief Writes every changed archive now; false when a write failed. */
    bool saveNow();

    /*! \brief Makes a shot archive of the read-out document in \a readOutFile
        and stores it in the folder. Null with \a error set on failure. */
    ScopeShotArchive* importReadOut(const QString& readOutFile, QString* error);
    /*! \brief Stores a new composition of \a shots named \a name. */
    ScopeCompositionArchive* createComposition(const QList<ScopeShotArchive*>& shots,
                                               const QString& name, QString* error);
    /*! \brief Deletes the recording file \a path and its archive. */
    bool removeFile(const QString& path, QString* error);

    /*! \brief Reads the folder again now instead of after the watcher's delay. */
    void rescan();

    /*! \brief The largest file that is read (bigger files are listed as errors). */
    static qint64 maximumFileSize();

public Q_SLOTS:
    QList<ScopeElementArchive*> scopeElements() const override;
    ScopeElementArchive* findArchive(const QByteArray& id) const override;

Q_SIGNALS:
    /*! \brief Files were added or removed (the list has to be rebuilt). */
    void filesChanged();
    /*! \brief \a archive is about to be deleted; whoever shows it lets go now. */
    void archiveAboutToBeRemoved(ScopeElementArchive* archive);
    /*! \brief Name, public flag or comment of \a archive may have changed. */
    void archiveChanged(ScopeElementArchive* archive);
    void archiveSaved(const QString& path);
    void saveFailed(const QString& path, const QString& message);

private:
    Q_DECLARE_PRIVATE(WorkbenchRepository)
    WorkbenchRepositoryPrivate* const d_ptr;
};
