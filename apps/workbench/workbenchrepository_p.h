// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbenchrepository.h"

#include <QtCore/QFileSystemWatcher>
#include <QtCore/QHash>
#include <QtCore/QPair>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtCore/QTimer>

class WorkbenchRepositoryPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(WorkbenchRepository)

public:
    struct Entry
    {
        ScopeElementArchive* archive = nullptr;
        QString error;
    };

    explicit WorkbenchRepositoryPrivate(WorkbenchRepository* q);

    static bool isRecordingFile(const QString& fileName);
    static bool writeFile(const QString& path, const QByteArray& bytes, QString* error);
    static bool readFile(const QString& path, QByteArray* bytes, QString* error);

    Entry load(const QString& path, QByteArray* bytes);
    void adopt(const QString& path, ScopeElementArchive* archive, const QByteArray& bytes);
    static QPair<qsizetype, size_t> fingerprint(const QByteArray& bytes);
    void drop(const QString& path);
    QString freeFileName(const QString& name, const QString& suffix) const;
    bool saveArchive(ScopeElementArchive* archive);

public Q_SLOTS:
    void onArchiveChanged();
    void onSaveTimeout();
    void onDirectoryChanged();

Q_SIGNALS:
    void filesChanged();
    void archiveAboutToBeRemoved(ScopeElementArchive* archive);
    void archiveChanged(ScopeElementArchive* archive);
    void archiveSaved(const QString& path);
    void saveFailed(const QString& path, const QString& message);

public:
    WorkbenchRepository* q_ptr;
    QString folder;
    QMap<QString, Entry> entries;
    QSet<ScopeElementArchive*> unsaved;
    // Fingerprint of what each archive's file holds, so that a change that
    // ends where it began (or view state that is written back unchanged)
    // does not rewrite the file.
    QHash<const ScopeElementArchive*, QPair<qsizetype, size_t>> stored;
    QFileSystemWatcher watcher;
    QTimer saveTimer;
    QTimer rescanTimer;
};
