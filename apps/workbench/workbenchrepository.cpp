// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchrepository.h"
#include "workbenchrepository_p.h"

#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QSaveFile>

namespace {
const QLatin1String shotSuffix("ovxshot");
const QLatin1String compositionSuffix("ovxcomp");
constexpr int defaultAutosaveDelay = 800;
// Another program writing a file fires the watcher several times; one read is enough.
constexpr int rescanDelay = 250;
}

WorkbenchRepositoryPrivate::WorkbenchRepositoryPrivate(WorkbenchRepository* q)
    : QObject(q)
    , q_ptr(q)
{
    saveTimer.setSingleShot(true);
    saveTimer.setInterval(defaultAutosaveDelay);
    rescanTimer.setSingleShot(true);
    rescanTimer.setInterval(rescanDelay);
    connect(&saveTimer, &QTimer::timeout, this, &WorkbenchRepositoryPrivate::onSaveTimeout);
    connect(&rescanTimer, &QTimer::timeout, this, &WorkbenchRepositoryPrivate::onDirectoryChanged);
    connect(&watcher, &QFileSystemWatcher::directoryChanged, &rescanTimer, qOverload<>(&QTimer::start));
}

bool WorkbenchRepositoryPrivate::isRecordingFile(const QString& fileName)
{
    const QString suffix = QFileInfo(fileName).suffix();
    return suffix == shotSuffix || suffix == compositionSuffix;
}

bool WorkbenchRepositoryPrivate::readFile(const QString& path, QByteArray* bytes, QString* error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = WorkbenchRepository::tr("Die Datei kann nicht gelesen werden: %1").arg(file.errorString());
        return false;
    }
    if (file.size() > WorkbenchRepository::maximumFileSize()) {
        *error = WorkbenchRepository::tr("Die Datei ist mit %1 MB zu groß.").arg(file.size() / (1024 * 1024));
        return false;
    }
    *bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = WorkbenchRepository::tr("Die Datei kann nicht gelesen werden: %1").arg(file.errorString());
        return false;
    }
    return true;
}

bool WorkbenchRepositoryPrivate::writeFile(const QString& path, const QByteArray& bytes, QString* error)
{
    // QSaveFile writes a temporary file beside the target and renames it over
    // the target only when everything was written: the old file survives any failure.
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = file.errorString();
        return false;
    }
    // A write that the system cuts short (file size limit, full quota) can
    // still look successful to QIODevice: check what really reached the disk
    // before the temporary file replaces the old one.
    if (file.write(bytes) != bytes.size() || !file.flush() || file.size() != bytes.size()) {
        *error = file.error() != QFileDevice::NoError
            ? file.errorString()
            : WorkbenchRepository::tr("Die Datei wurde nur zum Teil geschrieben.");
        file.cancelWriting();
        return false;
    }
    if (!file.commit()) {
        *error = file.errorString();
        return false;
    }
    return true;
}

WorkbenchRepositoryPrivate::Entry WorkbenchRepositoryPrivate::load(const QString& path, QByteArray* bytesOut)
{
    Q_Q(WorkbenchRepository);
    Entry entry;
    QByteArray& bytes = *bytesOut;
    if (!readFile(path, &bytes, &entry.error))
        return entry;
    ScopeElementArchive* archive = nullptr;
    if (QFileInfo(path).suffix() == shotSuffix)
        archive = ScopeShotArchive::create(q);
    else
        archive = ScopeCompositionArchive::create(q);
    if (!archive->fromByteArray(bytes)) {
        delete archive;
        entry.error = bytes.isEmpty()
            ? WorkbenchRepository::tr("Die Datei ist leer.")
            : WorkbenchRepository::tr("Keine Scope-Aufnahme: der Abschnitt \"Archive\" fehlt.");
        return entry;
    }
    entry.archive = archive;
    return entry;
}

QPair<qsizetype, size_t> WorkbenchRepositoryPrivate::fingerprint(const QByteArray& bytes)
{
    return qMakePair(bytes.size(), qHash(bytes, 0x4f76u));
}

void WorkbenchRepositoryPrivate::adopt(const QString& path, ScopeElementArchive* archive, const QByteArray& bytes)
{
    Entry entry;
    entry.archive = archive;
    entries.insert(path, entry);
    if (!archive)
        return;
    stored.insert(archive, fingerprint(bytes));
    connect(archive, &ScopeElementArchive::scopeElementChanged, this, &WorkbenchRepositoryPrivate::onArchiveChanged);
    connect(archive, &ScopeElementArchive::scopeElementsChanged, this, &WorkbenchRepositoryPrivate::onArchiveChanged);
}

void WorkbenchRepositoryPrivate::drop(const QString& path)
{
    const auto it = entries.find(path);
    if (it == entries.end())
        return;
    ScopeElementArchive* archive = it->archive;
    entries.erase(it);
    if (archive) {
        Q_EMIT archiveAboutToBeRemoved(archive);
        unsaved.remove(archive);
        stored.remove(archive);
        archive->disconnect(this);
        archive->deleteLater();
    }
}

QString WorkbenchRepositoryPrivate::freeFileName(const QString& name, const QString& suffix) const
{
    // File names follow the recording's name, limited to characters that every
    // file system takes.
    static const QRegularExpression unsafe(QStringLiteral("[^\\w\\-. ]+"));
    QString base = name;
    base.replace(unsafe, QStringLiteral("_"));
    base = base.trimmed();
    while (base.startsWith(QLatin1Char('.')))
        base.remove(0, 1);
    base.truncate(100);
    if (base.isEmpty())
        base = QStringLiteral("Aufnahme");
    const QDir dir(folder);
    QString candidate = dir.filePath(base + QLatin1Char('.') + suffix);
    for (int n = 2; QFileInfo::exists(candidate) || entries.contains(candidate); ++n)
        candidate = dir.filePath(QStringLiteral("%1-%2.%3").arg(base).arg(n).arg(suffix));
    return candidate;
}

bool WorkbenchRepositoryPrivate::saveArchive(ScopeElementArchive* archive)
{
    const QString path = q_ptr->filePath(archive);
    if (path.isEmpty()) {
        unsaved.remove(archive);
        return true;
    }
    const QByteArray bytes = archive->toByteArray();
    const auto print = fingerprint(bytes);
    if (stored.value(archive) == print) {
        unsaved.remove(archive);
        return true;
    }
    QString error;
    if (!writeFile(path, bytes, &error)) {
        Q_EMIT saveFailed(path, error);
        return false;
    }
    stored.insert(archive, print);
    unsaved.remove(archive);
    Q_EMIT archiveSaved(path);
    return true;
}

void WorkbenchRepositoryPrivate::onArchiveChanged()
{
    auto* archive = qobject_cast<ScopeElementArchive*>(sender());
    if (!archive)
        return;
    unsaved.insert(archive);
    saveTimer.start();
    Q_EMIT archiveChanged(archive);
}

void WorkbenchRepositoryPrivate::onSaveTimeout()
{
    q_ptr->saveNow();
}

void WorkbenchRepositoryPrivate::onDirectoryChanged()
{
    q_ptr->rescan();
}

WorkbenchRepository::WorkbenchRepository(QObject* parent)
    : ScopeRepository(parent)
    , d_ptr(new WorkbenchRepositoryPrivate(this))
{
    Q_D(WorkbenchRepository);
    connect(d, &WorkbenchRepositoryPrivate::filesChanged, this, &WorkbenchRepository::filesChanged);
    connect(d, &WorkbenchRepositoryPrivate::filesChanged, this, &ScopeRepository::scopeRepositoryChanged);
    connect(d, &WorkbenchRepositoryPrivate::archiveAboutToBeRemoved, this, &WorkbenchRepository::archiveAboutToBeRemoved);
    connect(d, &WorkbenchRepositoryPrivate::archiveChanged, this, &WorkbenchRepository::archiveChanged);
    connect(d, &WorkbenchRepositoryPrivate::archiveSaved, this, &WorkbenchRepository::archiveSaved);
    connect(d, &WorkbenchRepositoryPrivate::saveFailed, this, &WorkbenchRepository::saveFailed);
}

WorkbenchRepository::~WorkbenchRepository()
{
    // Changes still waiting for their quiet period are written now.
    saveNow();
}

qint64 WorkbenchRepository::maximumFileSize()
{
    return qint64(1) << 30;
}

bool WorkbenchRepository::setFolder(const QString& folder)
{
    Q_D(WorkbenchRepository);
    const QFileInfo info(folder);
    if (!info.isDir())
        return false;
    const QString path = info.absoluteFilePath();
    saveNow();
    if (!d->folder.isEmpty())
        d->watcher.removePath(d->folder);
    const QStringList old = d->entries.keys();
    for (const QString& file : old)
        d->drop(file);
    d->folder = path;
    d->watcher.addPath(path);
    rescan();
    Q_EMIT d->filesChanged();
    return true;
}

QString WorkbenchRepository::folder() const
{
    Q_D(const WorkbenchRepository);
    return d->folder;
}

QStringList WorkbenchRepository::files() const
{
    Q_D(const WorkbenchRepository);
    return d->entries.keys();
}

ScopeElementArchive* WorkbenchRepository::archive(const QString& path) const
{
    Q_D(const WorkbenchRepository);
    return d->entries.value(path).archive;
}

QString WorkbenchRepository::loadError(const QString& path) const
{
    Q_D(const WorkbenchRepository);
    return d->entries.value(path).error;
}

QString WorkbenchRepository::filePath(const ScopeElementArchive* archive) const
{
    Q_D(const WorkbenchRepository);
    if (!archive)
        return QString();
    for (auto it = d->entries.cbegin(); it != d->entries.cend(); ++it) {
        if (it->archive == archive)
            return it.key();
    }
    return QString();
}

int WorkbenchRepository::autosaveDelay() const
{
    Q_D(const WorkbenchRepository);
    return d->saveTimer.interval();
}

void WorkbenchRepository::setAutosaveDelay(int milliseconds)
{
    Q_D(WorkbenchRepository);
    d->saveTimer.setInterval(qMax(0, milliseconds));
}

bool WorkbenchRepository::hasUnsavedChanges() const
{
    Q_D(const WorkbenchRepository);
    return !d->unsaved.isEmpty();
}

bool WorkbenchRepository::saveNow()
{
    Q_D(WorkbenchRepository);
    d->saveTimer.stop();
    bool ok = true;
    const QList<ScopeElementArchive*> pending = d->unsaved.values();
    for (ScopeElementArchive* archive : pending)
        ok = d->saveArchive(archive) && ok;
    return ok;
}

ScopeShotArchive* WorkbenchRepository::importReadOut(const QString& readOutFile, QString* error)
{
    Q_D(WorkbenchRepository);
    QString message;
    if (d->folder.isEmpty()) {
        message = tr("Es ist kein Ordner geöffnet.");
    } else {
        QByteArray bytes;
        if (WorkbenchRepositoryPrivate::readFile(readOutFile, &bytes, &message)) {
            ScopeShotArchive* shot = ScopeShotArchive::create(this);
            if (!shot->createFromReadOut(bytes)) {
                message = tr("Kein Auslesedokument: die Datei ist leer oder schon eine Aufnahme.");
            } else if (!shot->dataSection()) {
                message = tr("Kein Auslesedokument: der Abschnitt \"Data\" fehlt.");
            } else {
                const QString name = shot->name().isEmpty() ? QFileInfo(readOutFile).completeBaseName() : shot->name();
                const QString path = d->freeFileName(name, shotSuffix);
                const QByteArray stored = shot->toByteArray();
                if (WorkbenchRepositoryPrivate::writeFile(path, stored, &message)) {
                    d->adopt(path, shot, stored);
                    Q_EMIT d->filesChanged();
                    return shot;
                }
                message = tr("Speichern fehlgeschlagen: %1").arg(message);
            }
            delete shot;
        }
    }
    if (error)
        *error = message;
    return nullptr;
}

ScopeCompositionArchive* WorkbenchRepository::createComposition(const QList<ScopeShotArchive*>& shots,
                                                                const QString& name, QString* error)
{
    Q_D(WorkbenchRepository);
    QString message;
    if (d->folder.isEmpty()) {
        message = tr("Es ist kein Ordner geöffnet.");
    } else if (shots.isEmpty() || shots.contains(nullptr)) {
        message = tr("Für eine Komposition sind Aufnahmen auszuwählen.");
    } else {
        ScopeCompositionArchive* composition = ScopeCompositionArchive::create(this);
        composition->create(shots);
        if (!name.trimmed().isEmpty())
            composition->setName(name.trimmed());
        const QString path = d->freeFileName(composition->name(), compositionSuffix);
        const QByteArray stored = composition->toByteArray();
        if (WorkbenchRepositoryPrivate::writeFile(path, stored, &message)) {
            d->adopt(path, composition, stored);
            Q_EMIT d->filesChanged();
            return composition;
        }
        message = tr("Speichern fehlgeschlagen: %1").arg(message);
        delete composition;
    }
    if (error)
        *error = message;
    return nullptr;
}

bool WorkbenchRepository::removeFile(const QString& path, QString* error)
{
    Q_D(WorkbenchRepository);
    if (!d->entries.contains(path)) {
        if (error)
            *error = tr("Die Datei gehört nicht zu diesem Ordner.");
        return false;
    }
    QFile file(path);
    if (file.exists() && !file.remove()) {
        if (error)
            *error = file.errorString();
        return false;
    }
    d->drop(path);
    Q_EMIT d->filesChanged();
    return true;
}

void WorkbenchRepository::rescan()
{
    Q_D(WorkbenchRepository);
    d->rescanTimer.stop();
    const QDir dir(d->folder);
    // A folder that vanished (unmounted, renamed) keeps its list: the user
    // still sees the recordings, and saving reports why it fails.
    if (d->folder.isEmpty() || !dir.exists())
        return;
    QSet<QString> present;
    const QFileInfoList infos = dir.entryInfoList(
        {QStringLiteral("*.") + shotSuffix, QStringLiteral("*.") + compositionSuffix},
        QDir::Files | QDir::Readable | QDir::Hidden | QDir::System, QDir::Name);
    bool changed = false;
    for (const QFileInfo& info : infos) {
        const QString path = info.absoluteFilePath();
        present.insert(path);
        if (d->entries.contains(path))
            continue;
        QByteArray bytes;
        const WorkbenchRepositoryPrivate::Entry entry = d->load(path, &bytes);
        d->adopt(path, entry.archive, bytes);
        d->entries[path].error = entry.error;
        changed = true;
    }
    const QStringList known = d->entries.keys();
    for (const QString& path : known) {
        if (!present.contains(path)) {
            d->drop(path);
            changed = true;
        }
    }
    if (changed)
        Q_EMIT d->filesChanged();
}

QList<ScopeElementArchive*> WorkbenchRepository::scopeElements() const
{
    Q_D(const WorkbenchRepository);
    QList<ScopeElementArchive*> result;
    for (const auto& entry : d->entries) {
        if (entry.archive)
            result.append(entry.archive);
    }
    return result;
}

ScopeElementArchive* WorkbenchRepository::findArchive(const QByteArray& id) const
{
    Q_D(const WorkbenchRepository);
    if (id.isEmpty())
        return nullptr;
    for (const auto& entry : d->entries) {
        if (entry.archive && entry.archive->id() == id)
            return entry.archive;
    }
    return nullptr;
}
