// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchrepository.h"
#include "workbenchtestdata.h"

#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"
#include "iniparser.h"

#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

class tst_WorkbenchRepository : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void rejectsNoFolder_data();
    void rejectsNoFolder();
    void listsRecordingsOnly();
    void brokenFilesAreListedWithTheirError_data();
    void brokenFilesAreListedWithTheirError();
    void oversizedFileIsNotRead();
    void findsArchivesById();
    void autosaveIsDebounced();
    void elementsChangedIsSavedToo();
    void unchangedContentIsNotRewritten();
    void savedChangesSurviveReopening();
    void watcherSeesNewAndRemovedFiles();
    void vanishedFolderKeepsItsList();
    void failedSaveInPlaceKeepsThePreviousFile();
    void failedSaveToMissingFolderKeepsThePreviousFile();
    void importReadOut();
    void importRejectsNonReadOuts_data();
    void importRejectsNonReadOuts();
    void fileNamesAreSafeAndUnique();
    void createComposition();
    void compositionNeedsShots();
    void removeFile();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString& name) const { return QDir(m_dir->path()).filePath(name); }
};

void tst_WorkbenchRepository::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_WorkbenchRepository::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(fillTestFolder(m_dir->path()));
}

void tst_WorkbenchRepository::rejectsNoFolder_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("missing") << QStringLiteral("gibt-es-nicht");
    QTest::newRow("file") << QStringLiteral("a-sprung.ovxshot");
    QTest::newRow("empty") << QString();
}

void tst_WorkbenchRepository::rejectsNoFolder()
{
    QFETCH(QString, name);
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QVERIFY(!repository.setFolder(name.isEmpty() ? QString() : path(name)));
    QCOMPARE(repository.folder(), QDir(m_dir->path()).absolutePath());
    QCOMPARE(repository.files().size(), 3);
}

void tst_WorkbenchRepository::listsRecordingsOnly()
{
    WorkbenchRepository repository;
    QSignalSpy changed(&repository, &ScopeRepository::scopeRepositoryChanged);
    QVERIFY(repository.setFolder(m_dir->path()));
    QVERIFY(changed.count() >= 1);
    const QStringList expected {path(QStringLiteral("a-sprung.ovxshot")), path(QStringLiteral("b-sprung.ovxshot")),
                                path(QStringLiteral("c-kaputt.ovxshot"))};
    QCOMPARE(repository.files(), expected);
    QVERIFY(qobject_cast<ScopeShotArchive*>(repository.archive(expected.at(0))));
    QCOMPARE(repository.archive(expected.at(0))->name(), QStringLiteral("Sprung steif"));
    QCOMPARE(repository.archive(expected.at(1))->name(), QStringLiteral("Sprung weich"));
    QCOMPARE(repository.scopeElements().size(), 2);
    QCOMPARE(repository.filePath(repository.archive(expected.at(1))), expected.at(1));
    QCOMPARE(repository.filePath(nullptr), QString());
}

void tst_WorkbenchRepository::brokenFilesAreListedWithTheirError_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("error");
    QTest::newRow("no archive section") << QStringLiteral("x.ovxshot") << QByteArray("[Data]\nChannelCount=1\n")
                                        << QStringLiteral("Keine Scope-Aufnahme: der Abschnitt \"Archive\" fehlt.");
    QTest::newRow("empty") << QStringLiteral("x.ovxshot") << QByteArray() << QStringLiteral("Die Datei ist leer.");
    QTest::newRow("binary garbage") << QStringLiteral("x.ovxcomp") << QByteArray("\x00\xff\x01[[[\n=\n", 10)
                                    << QStringLiteral("Keine Scope-Aufnahme: der Abschnitt \"Archive\" fehlt.");
}

void tst_WorkbenchRepository::brokenFilesAreListedWithTheirError()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, bytes);
    QFETCH(QString, error);
    QVERIFY(writeTestFile(path(fileName), bytes));
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QVERIFY(repository.files().contains(path(fileName)));
    QCOMPARE(repository.archive(path(fileName)), nullptr);
    QCOMPARE(repository.loadError(path(fileName)), error);
    QCOMPARE(repository.loadError(path(QStringLiteral("a-sprung.ovxshot"))), QString());
}

void tst_WorkbenchRepository::oversizedFileIsNotRead()
{
    // A sparse file: big on paper, nothing on disk, and never read into memory.
    QFile big(path(QStringLiteral("riesig.ovxshot")));
    QVERIFY(big.open(QIODevice::WriteOnly));
    QVERIFY(big.resize(WorkbenchRepository::maximumFileSize() + 1));
    big.close();
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QCOMPARE(repository.archive(big.fileName()), nullptr);
    QCOMPARE(repository.loadError(big.fileName()), QStringLiteral("Die Datei ist mit 1024 MB zu groß."));
}

void tst_WorkbenchRepository::findsArchivesById()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    ScopeElementArchive* second = repository.archive(path(QStringLiteral("b-sprung.ovxshot")));
    QVERIFY(second);
    QCOMPARE(second->id(), QByteArray("SN2_7_1000_1500"));
    QCOMPARE(repository.findArchive("SN2_7_1000_1500"), second);
    QCOMPARE(repository.findArchive("SN9_7_1000_1500"), nullptr);
    QCOMPARE(repository.findArchive(QByteArray()), nullptr);
}

void tst_WorkbenchRepository::autosaveIsDebounced()
{
    WorkbenchRepository repository;
    repository.setAutosaveDelay(150);
    QVERIFY(repository.setFolder(m_dir->path()));
    const QString file = path(QStringLiteral("a-sprung.ovxshot"));
    ScopeElementArchive* archive = repository.archive(file);
    QSignalSpy saved(&repository, &WorkbenchRepository::archiveSaved);
    QSignalSpy changed(&repository, &WorkbenchRepository::archiveChanged);
    archive->setName(QStringLiteral("Erster Name"));
    archive->setName(QStringLiteral("Zweiter Name"));
    archive->setPublic(false);
    QCOMPARE(changed.count(), 3);
    QVERIFY(repository.hasUnsavedChanges());
    QCOMPARE(saved.count(), 0);
    QTRY_COMPARE(saved.count(), 1);
    QCOMPARE(saved.at(0).at(0).toString(), file);
    QVERIFY(!repository.hasUnsavedChanges());
    QCOMPARE(readTestFile(file), archive->toByteArray());
    QVERIFY(readTestFile(file).contains("Name=Zweiter Name"));
    // Nothing else is written while nothing changes.
    QVERIFY(!QTest::qWaitFor([&saved] { return saved.count() > 1; }, 400));
}

void tst_WorkbenchRepository::elementsChangedIsSavedToo()
{
    WorkbenchRepository repository;
    repository.setAutosaveDelay(0);
    QVERIFY(repository.setFolder(m_dir->path()));
    auto* target = qobject_cast<ScopeShotArchive*>(repository.archive(path(QStringLiteral("a-sprung.ovxshot"))));
    auto* source = qobject_cast<ScopeShotArchive*>(repository.archive(path(QStringLiteral("b-sprung.ovxshot"))));
    source->channelSection(0)->setValue("ViewScalingFactor", "4");
    QSignalSpy saved(&repository, &WorkbenchRepository::archiveSaved);
    QVERIFY(target->applyViewRecipe(source->viewRecipe(), true));
    QTRY_COMPARE(saved.count(), 1);
    QVERIFY(readTestFile(path(QStringLiteral("a-sprung.ovxshot"))).contains("ViewScalingFactor=4"));
}

void tst_WorkbenchRepository::unchangedContentIsNotRewritten()
{
    WorkbenchRepository repository;
    repository.setAutosaveDelay(0);
    QVERIFY(repository.setFolder(m_dir->path()));
    const QString file = path(QStringLiteral("a-sprung.ovxshot"));
    ScopeElementArchive* archive = repository.archive(file);
    const QDateTime modified = QFileInfo(file).lastModified();
    // Back-dated, so that any rewrite shows in the time stamp.
    QFile touch(file);
    QVERIFY(touch.open(QIODevice::ReadWrite));
    QVERIFY(touch.setFileTime(modified.addSecs(-3600), QFileDevice::FileModificationTime));
    touch.close();
    QSignalSpy saved(&repository, &WorkbenchRepository::archiveSaved);
    archive->setName(QStringLiteral("Zwischendurch"));
    archive->setName(QStringLiteral("Sprung steif"));
    QTRY_VERIFY(!repository.hasUnsavedChanges());
    QCOMPARE(saved.count(), 0);
    QCOMPARE(QFileInfo(file).lastModified(), modified.addSecs(-3600));
    // A change that stays is written.
    archive->setName(QStringLiteral("Bleibt"));
    QTRY_COMPARE(saved.count(), 1);
}

void tst_WorkbenchRepository::savedChangesSurviveReopening()
{
    {
        WorkbenchRepository repository;
        repository.setAutosaveDelay(60000);
        QVERIFY(repository.setFolder(m_dir->path()));
        repository.archive(path(QStringLiteral("b-sprung.ovxshot")))->setName(QStringLiteral("Geändert"));
        QVERIFY(repository.hasUnsavedChanges());
        // Leaving with changes still inside the quiet period writes them.
    }
    WorkbenchRepository reopened;
    QVERIFY(reopened.setFolder(m_dir->path()));
    QCOMPARE(reopened.archive(path(QStringLiteral("b-sprung.ovxshot")))->name(),
             QString::fromLatin1(QStringLiteral("Geändert").toLatin1()));
}

void tst_WorkbenchRepository::watcherSeesNewAndRemovedFiles()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QSignalSpy removed(&repository, &WorkbenchRepository::archiveAboutToBeRemoved);
    const QString added = path(QStringLiteral("d-neu.ovxshot"));
    QVERIFY(writeTestFile(added, testShot("SN4", QStringLiteral("Von außen"))));
    QTRY_VERIFY(repository.files().contains(added));
    QCOMPARE(repository.archive(added)->name(), QString::fromLatin1(QStringLiteral("Von außen").toLatin1()));
    ScopeElementArchive* first = repository.archive(path(QStringLiteral("a-sprung.ovxshot")));
    QVERIFY(QFile::remove(path(QStringLiteral("a-sprung.ovxshot"))));
    QTRY_VERIFY(!repository.files().contains(path(QStringLiteral("a-sprung.ovxshot"))));
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).value<ScopeElementArchive*>(), first);
    QCOMPARE(repository.findArchive("SN1_7_1000_1500"), nullptr);
}

void tst_WorkbenchRepository::vanishedFolderKeepsItsList()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    const QString moved = m_dir->path() + QStringLiteral("-weg");
    QVERIFY(QDir().rename(m_dir->path(), moved));
    repository.rescan();
    QCOMPARE(repository.files().size(), 3);
    QVERIFY(QDir().rename(moved, m_dir->path()));
}

void tst_WorkbenchRepository::failedSaveInPlaceKeepsThePreviousFile()
{
    WorkbenchRepository repository;
    repository.setAutosaveDelay(0);
    QVERIFY(repository.setFolder(m_dir->path()));
    const QString file = path(QStringLiteral("a-sprung.ovxshot"));
    const QByteArray before = readTestFile(file);
    QVERIFY(!before.isEmpty());
    QSignalSpy failed(&repository, &WorkbenchRepository::saveFailed);
    QSignalSpy saved(&repository, &WorkbenchRepository::archiveSaved);
    {
        FileSizeLimit limit;
        QVERIFY(limit.isActive());
        repository.archive(file)->setName(QStringLiteral("Geht nicht"));
        QTRY_COMPARE(failed.count(), 1);
    }
    QCOMPARE(failed.at(0).at(0).toString(), file);
    QVERIFY(!failed.at(0).at(1).toString().isEmpty());
    QCOMPARE(saved.count(), 0);
    QCOMPARE(readTestFile(file), before);
    QVERIFY(repository.hasUnsavedChanges());
    // No temporary file stays behind.
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), 4);
    // The change is still there and goes out with the next save.
    QVERIFY(repository.saveNow());
    QVERIFY(readTestFile(file).contains("Name=Geht nicht"));
}

void tst_WorkbenchRepository::failedSaveToMissingFolderKeepsThePreviousFile()
{
    WorkbenchRepository repository;
    repository.setAutosaveDelay(0);
    QVERIFY(repository.setFolder(m_dir->path()));
    const QByteArray before = readTestFile(path(QStringLiteral("b-sprung.ovxshot")));
    const QString moved = m_dir->path() + QStringLiteral("-weg");
    QVERIFY(QDir().rename(m_dir->path(), moved));
    QSignalSpy failed(&repository, &WorkbenchRepository::saveFailed);
    repository.archive(path(QStringLiteral("b-sprung.ovxshot")))->setName(QStringLiteral("Ins Leere"));
    QTRY_COMPARE(failed.count(), 1);
    QCOMPARE(readTestFile(QDir(moved).filePath(QStringLiteral("b-sprung.ovxshot"))), before);
    QVERIFY(!QFileInfo::exists(m_dir->path()));
    QVERIFY(QDir().rename(moved, m_dir->path()));
    QVERIFY(repository.saveNow());
}

void tst_WorkbenchRepository::importReadOut()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QSignalSpy files(&repository, &WorkbenchRepository::filesChanged);
    const QString readOut = QFINDTESTDATA("data/bremsung.ovxreadout");
    QVERIFY(!readOut.isEmpty());
    QString error;
    ScopeShotArchive* shot = repository.importReadOut(readOut, &error);
    QVERIFY2(shot, qPrintable(error));
    QCOMPARE(files.count(), 1);
    QCOMPARE(shot->id(), QByteArray("SN77_3_10_20"));
    const QString file = repository.filePath(shot);
    QCOMPARE(QFileInfo(file).absolutePath(), QDir(m_dir->path()).absolutePath());
    QCOMPARE(QFileInfo(file).suffix(), QStringLiteral("ovxshot"));
    QCOMPARE(QFileInfo(file).completeBaseName(), shot->name());
    QCOMPARE(readTestFile(file), shot->toByteArray());
    QCOMPARE(repository.findArchive("SN77_3_10_20"), shot);
    // Importing the same read-out again keeps the first file.
    ScopeShotArchive* again = repository.importReadOut(readOut, &error);
    QVERIFY(again);
    QVERIFY(repository.filePath(again) != file);
    QCOMPARE(repository.files().size(), 5);
}

void tst_WorkbenchRepository::importRejectsNonReadOuts_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QString>("error");
    QTest::newRow("already an archive") << QStringLiteral("a-sprung.ovxshot")
                                        << QStringLiteral("Kein Auslesedokument: die Datei ist leer oder schon eine Aufnahme.");
    QTest::newRow("no data") << QStringLiteral("notiz.txt")
                             << QStringLiteral("Kein Auslesedokument: der Abschnitt \"Data\" fehlt.");
    QTest::newRow("missing") << QStringLiteral("gibt-es-nicht.ovxreadout")
                             << QStringLiteral("Die Datei kann nicht gelesen werden: No such file or directory");
}

void tst_WorkbenchRepository::importRejectsNonReadOuts()
{
    QFETCH(QString, fileName);
    QFETCH(QString, error);
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QString message;
    QCOMPARE(repository.importReadOut(path(fileName), &message), nullptr);
    QCOMPARE(message, error);
    QCOMPARE(repository.files().size(), 3);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), 4);
}

void tst_WorkbenchRepository::fileNamesAreSafeAndUnique()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    QList<ScopeShotArchive*> shots {
        qobject_cast<ScopeShotArchive*>(repository.archive(path(QStringLiteral("a-sprung.ovxshot"))))};
    ScopeCompositionArchive* first = repository.createComposition(shots, QStringLiteral("../Vergleich: a/b"), nullptr);
    ScopeCompositionArchive* second = repository.createComposition(shots, QStringLiteral("../Vergleich: a/b"), nullptr);
    QVERIFY(first && second);
    QCOMPARE(QFileInfo(repository.filePath(first)).fileName(), QStringLiteral("_Vergleich_ a_b.ovxcomp"));
    QCOMPARE(QFileInfo(repository.filePath(second)).fileName(), QStringLiteral("_Vergleich_ a_b-2.ovxcomp"));
}

void tst_WorkbenchRepository::createComposition()
{
    QByteArray stored;
    QString file;
    {
        WorkbenchRepository repository;
        QVERIFY(repository.setFolder(m_dir->path()));
        QList<ScopeShotArchive*> shots;
        for (const char* name : {"a-sprung.ovxshot", "b-sprung.ovxshot"})
            shots.append(qobject_cast<ScopeShotArchive*>(repository.archive(path(QLatin1String(name)))));
        QString error;
        ScopeCompositionArchive* composition = repository.createComposition(shots, QStringLiteral("Vergleich"), &error);
        QVERIFY2(composition, qPrintable(error));
        QCOMPARE(composition->name(), QStringLiteral("Vergleich"));
        const QList<QByteArray> ids {"SN1_7_1000_1500", "SN2_7_1000_1500"};
        QCOMPARE(composition->usedShotIdentifiers(), ids);
        file = repository.filePath(composition);
        QCOMPARE(QFileInfo(file).fileName(), QStringLiteral("Vergleich.ovxcomp"));
        stored = readTestFile(file);
        QVERIFY(stored.startsWith(";type=\"ovx-scope-composition-archive\""));
    }
    WorkbenchRepository reopened;
    QVERIFY(reopened.setFolder(m_dir->path()));
    auto* composition = qobject_cast<ScopeCompositionArchive*>(reopened.archive(file));
    QVERIFY(composition);
    QCOMPARE(composition->usedShotIdentifiers().size(), 2);
    for (const QByteArray& id : composition->usedShotIdentifiers())
        QVERIFY(qobject_cast<ScopeShotArchive*>(reopened.findArchive(id)));
}

void tst_WorkbenchRepository::compositionNeedsShots()
{
    WorkbenchRepository repository;
    QString error;
    QCOMPARE(repository.createComposition({}, QStringLiteral("x"), &error), nullptr);
    QCOMPARE(error, QStringLiteral("Es ist kein Ordner geöffnet."));
    QVERIFY(repository.setFolder(m_dir->path()));
    QCOMPARE(repository.createComposition({}, QStringLiteral("x"), &error), nullptr);
    QCOMPARE(error, QStringLiteral("Für eine Komposition sind Aufnahmen auszuwählen."));
    QCOMPARE(repository.createComposition({nullptr}, QStringLiteral("x"), &error), nullptr);
    QCOMPARE(repository.files().size(), 3);
}

void tst_WorkbenchRepository::removeFile()
{
    WorkbenchRepository repository;
    QVERIFY(repository.setFolder(m_dir->path()));
    const QString file = path(QStringLiteral("b-sprung.ovxshot"));
    QSignalSpy removed(&repository, &WorkbenchRepository::archiveAboutToBeRemoved);
    QString error;
    QVERIFY(repository.removeFile(file, &error));
    QCOMPARE(removed.count(), 1);
    QVERIFY(!QFileInfo::exists(file));
    QVERIFY(!repository.files().contains(file));
    QVERIFY(!repository.removeFile(path(QStringLiteral("notiz.txt")), &error));
    QCOMPARE(error, QStringLiteral("Die Datei gehört nicht zu diesem Ordner."));
    QVERIFY(QFileInfo::exists(path(QStringLiteral("notiz.txt"))));
    // A broken file can be deleted as well.
    QVERIFY(repository.removeFile(path(QStringLiteral("c-kaputt.ovxshot")), &error));
    QCOMPARE(repository.files().size(), 1);
}

QTEST_GUILESS_MAIN(tst_WorkbenchRepository)
#include "tst_workbenchrepository.moc"
