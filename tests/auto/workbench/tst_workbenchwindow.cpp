// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchwindow.h"
#include "workbenchrepository.h"
#include "workbenchtestdata.h"

#include "scopeview.h"

#include "iniparser.h"
#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QTreeWidget>

#include <algorithm>
#include <functional>
#include <unistd.h>

namespace {

// Waits for the next modal dialog of type T and hands it to \a handle.
template <typename T>
void whenDialogShows(std::function<void(T*)> handle)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    auto tries = std::make_shared<int>(0);
    QObject::connect(timer, &QTimer::timeout, [timer, handle, tries] {
        if (auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            handle(dialog);
        } else if (++*tries > 500) {
            timer->stop();
            timer->deleteLater();
        }
    });
    timer->start();
}

QTreeWidget* listOf(WorkbenchWindow& window)
{
    return window.findChild<QTreeWidget*>(QStringLiteral("recordingList"));
}

QStringList listColumn(WorkbenchWindow& window, int column)
{
    QStringList result;
    QTreeWidget* list = listOf(window);
    for (int i = 0; i < list->topLevelItemCount(); ++i)
        result.append(list->topLevelItem(i)->text(column));
    return result;
}

}

class tst_WorkbenchWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void opensAFolder();
    void rejectsAMissingFolder();
    void selectingShowsTheRecording();
    void brokenRecordingShowsItsError();
    void changeIsSavedAndSurvivesReopening();
    void geometryAndFolderAreRemembered();
    void importsAReadOut();
    void importFailureIsReported();
    void createsACompositionFromTheSelection();
    void compositionWithoutShotsIsRefused();
    void deleteAsksFirst_data();
    void deleteAsksFirst();
    void failedSaveToAReadOnlyFolder();
    void newFilesAppearByThemselves();
    void exportsCsv();
    void exportsPng();
    void failedPngExportKeepsThePreviousFile();
    void appliesAnotherRecordingsView();
    void recipeRequestWithoutShotIsRefused();
    void frequencyViewsBecomeWindows();
    void viewChangesAreSaved();
    void compositionIsShownWithItsShots();
    void frequencyAnalysisOpensAWindow();

private:
    std::unique_ptr<QTemporaryDir> m_dir;
    QString path(const QString& name) const { return QDir(m_dir->path()).filePath(name); }
};

void tst_WorkbenchWindow::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("Velkor"));
    QCoreApplication::setApplicationName(QStringLiteral("tst_workbenchwindow"));
}

void tst_WorkbenchWindow::init()
{
    QSettings().clear();
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(fillTestFolder(m_dir->path()));
}

void tst_WorkbenchWindow::cleanup()
{
    QFile::setPermissions(m_dir->path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
}

void tst_WorkbenchWindow::opensAFolder()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.currentElement(), nullptr);
    QVERIFY(window.openFolder(m_dir->path()));
    QCOMPARE(listColumn(window, 0),
             (QStringList {QStringLiteral("Sprung steif"), QStringLiteral("Sprung weich"), QStringLiteral("c-kaputt.ovxshot")}));
    QCOMPARE(listColumn(window, 1),
             (QStringList {QStringLiteral("Aufnahme"), QStringLiteral("Aufnahme"), QStringLiteral("Fehler")}));
    QCOMPARE(listColumn(window, 3).first(), QString::fromLatin1(window.repository()->archive(
                                                 path(QStringLiteral("a-sprung.ovxshot")))->hostName()));
    QCOMPARE(listColumn(window, 4).first(), QStringLiteral("ja"));
    // The first recording is shown right away.
    QCOMPARE(window.currentFile(), path(QStringLiteral("a-sprung.ovxshot")));
    QVERIFY(window.currentElement());
    QVERIFY(window.windowTitle().contains(m_dir->path()));
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("3 Aufnahmen, davon 1 nicht lesbar"));
    QCOMPARE(WorkbenchWindow::lastFolder(), QDir(m_dir->path()).absolutePath());
}

void tst_WorkbenchWindow::rejectsAMissingFolder()
{
    WorkbenchWindow window;
    QVERIFY(!window.openFolder(path(QStringLiteral("fehlt"))));
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("%1 ist kein Ordner.").arg(QDir::toNativeSeparators(path(QStringLiteral("fehlt")))));
    QCOMPARE(listOf(window)->topLevelItemCount(), 0);
    QCOMPARE(WorkbenchWindow::lastFolder(), QString());
}

void tst_WorkbenchWindow::selectingShowsTheRecording()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(window.openFolder(m_dir->path()));
    QTreeWidget* list = listOf(window);
    const QRect row = list->visualItemRect(list->topLevelItem(1));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(12, row.center().y()));
    QCOMPARE(window.currentFile(), path(QStringLiteral("b-sprung.ovxshot")));
    QCOMPARE(window.currentElement()->name(), QStringLiteral("Sprung weich"));
    if (window.scopeView())
        QCOMPARE(window.findChild<QWidget*>(QStringLiteral("viewStack"))->property("currentIndex").toInt(), 1);
    QVERIFY(window.selectFile(path(QStringLiteral("a-sprung.ovxshot"))));
    QCOMPARE(window.currentElement()->name(), QStringLiteral("Sprung steif"));
    QVERIFY(!window.selectFile(path(QStringLiteral("notiz.txt"))));
}

void tst_WorkbenchWindow::brokenRecordingShowsItsError()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(window.selectFile(path(QStringLiteral("c-kaputt.ovxshot"))));
    QCOMPARE(window.currentElement(), nullptr);
    auto* label = window.findChild<QLabel*>(QStringLiteral("messageLabel"));
    QVERIFY(label->isVisible());
    QCOMPARE(label->text(), QStringLiteral("c-kaputt.ovxshot kann nicht geladen werden:\n"
                                           "Keine Scope-Aufnahme: der Abschnitt \"Archive\" fehlt."));
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("c-kaputt.ovxshot kann nicht geladen werden: "
                                                                  "Keine Scope-Aufnahme: der Abschnitt \"Archive\" fehlt."));
    // Deleting and exporting stay possible only where they make sense.
    QVERIFY(window.findChild<QAction*>(QStringLiteral("deleteAction"))->isEnabled());
    QVERIFY(!window.findChild<QAction*>(QStringLiteral("exportCsvAction"))->isEnabled());
    QVERIFY(!window.findChild<QAction*>(QStringLiteral("renameAction"))->isEnabled());
}

void tst_WorkbenchWindow::changeIsSavedAndSurvivesReopening()
{
    {
        WorkbenchWindow window;
        window.show();
        window.repository()->setAutosaveDelay(50);
        QVERIFY(window.openFolder(m_dir->path()));
        QSignalSpy saved(window.repository(), &WorkbenchRepository::archiveSaved);
        QSignalSpy changed(window.repository(), &WorkbenchRepository::archiveChanged);
        QVERIFY(window.renameFile(path(QStringLiteral("b-sprung.ovxshot")), QStringLiteral("  Neuer Name ")));
        QCOMPARE(listColumn(window, 0).at(1), QStringLiteral("Neuer Name"));
        QCOMPARE(changed.count(), 1);
        // Showing a recording may store its view state as well; b is the one renamed.
        QTRY_VERIFY(std::any_of(saved.cbegin(), saved.cend(), [this](const QList<QVariant>& arguments) {
            return arguments.at(0).toString() == path(QStringLiteral("b-sprung.ovxshot"));
        }));
        QVERIFY(!window.renameFile(path(QStringLiteral("b-sprung.ovxshot")), QStringLiteral("   ")));
        QVERIFY(!window.renameFile(path(QStringLiteral("c-kaputt.ovxshot")), QStringLiteral("x")));
    }
    WorkbenchWindow reopened;
    QVERIFY(reopened.openFolder(m_dir->path()));
    QCOMPARE(listColumn(reopened, 0).at(1), QStringLiteral("Neuer Name"));
}

void tst_WorkbenchWindow::geometryAndFolderAreRemembered()
{
    QRect geometry;
    {
        WorkbenchWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(window.openFolder(m_dir->path()));
        // Above the view's minimum height and away from the first-start size.
        const QSize wanted = window.minimumSizeHint().expandedTo(QSize(1037, 863));
        window.setGeometry(60, 70, wanted.width(), wanted.height());
        QTRY_COMPARE(window.size(), wanted);
        geometry = window.geometry();
        QVERIFY(window.close());
    }
    WorkbenchWindow window;
    QCOMPARE(window.geometry().size(), geometry.size());
    QCOMPARE(WorkbenchWindow::lastFolder(), QDir(m_dir->path()).absolutePath());
}

void tst_WorkbenchWindow::importsAReadOut()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(window.importReadOut(QFINDTESTDATA("data/bremsung.ovxreadout")));
    QCOMPARE(listOf(window)->topLevelItemCount(), 4);
    auto* shot = qobject_cast<ScopeShotArchive*>(window.currentElement());
    QVERIFY(shot);
    QCOMPARE(shot->id(), QByteArray("SN77_3_10_20"));
    QVERIFY(QFileInfo::exists(window.currentFile()));
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("Importiert als %1").arg(QFileInfo(window.currentFile()).fileName()));
}

void tst_WorkbenchWindow::importFailureIsReported()
{
    WorkbenchWindow window;
    QVERIFY(!window.importReadOut(path(QStringLiteral("a-sprung.ovxshot"))));
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("Import von a-sprung.ovxshot fehlgeschlagen: Es ist kein Ordner geöffnet."));
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(!window.importReadOut(path(QStringLiteral("a-sprung.ovxshot"))));
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("Import von a-sprung.ovxshot fehlgeschlagen: "
                            "Kein Auslesedokument: die Datei ist leer oder schon eine Aufnahme."));
    QCOMPARE(listOf(window)->topLevelItemCount(), 3);
}

void tst_WorkbenchWindow::createsACompositionFromTheSelection()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(window.openFolder(m_dir->path()));
    QTreeWidget* list = listOf(window);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, QPoint(12, list->visualItemRect(list->topLevelItem(0)).center().y()));
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      QPoint(12, list->visualItemRect(list->topLevelItem(1)).center().y()));
    // The broken file in the selection is left out.
    QTest::mouseClick(list->viewport(), Qt::LeftButton, Qt::ControlModifier,
                      QPoint(12, list->visualItemRect(list->topLevelItem(2)).center().y()));
    QCOMPARE(window.selectedFiles().size(), 3);
    bool asked = false;
    whenDialogShows<QInputDialog>([&asked](QInputDialog* dialog) {
        asked = true;
        QCOMPARE(dialog->labelText(), QStringLiteral("Name der Komposition aus 2 Aufnahmen:"));
        dialog->setTextValue(QStringLiteral("Sprungvergleich"));
        dialog->accept();
    });
    window.onCreateComposition();
    QVERIFY(asked);
    QCOMPARE(listOf(window)->topLevelItemCount(), 4);
    auto* composition = qobject_cast<ScopeCompositionArchive*>(window.currentElement());
    QVERIFY(composition);
    QCOMPARE(composition->name(), QStringLiteral("Sprungvergleich"));
    QCOMPARE(composition->usedShotIdentifiers(), (QList<QByteArray> {"SN1_7_1000_1500", "SN2_7_1000_1500"}));
    QCOMPARE(window.currentFile(), path(QStringLiteral("Sprungvergleich.ovxcomp")));
    QCOMPARE(listColumn(window, 1).count(QStringLiteral("Komposition")), 1);
    QVERIFY(!window.findChild<QAction*>(QStringLiteral("exportCsvAction"))->isEnabled());
    QVERIFY(!window.exportCsv(path(QStringLiteral("x.csv"))));
    QVERIFY(!QFileInfo::exists(path(QStringLiteral("x.csv"))));
}

void tst_WorkbenchWindow::compositionWithoutShotsIsRefused()
{
    WorkbenchWindow window;
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(!window.createComposition({path(QStringLiteral("c-kaputt.ovxshot"))}, QStringLiteral("x")));
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("Komposition nicht erstellt: Es ist keine lesbare Aufnahme ausgewählt."));
    QCOMPARE(listOf(window)->topLevelItemCount(), 3);
}

void tst_WorkbenchWindow::deleteAsksFirst_data()
{
    QTest::addColumn<bool>("confirm");
    QTest::newRow("confirmed") << true;
    QTest::newRow("cancelled") << false;
}

void tst_WorkbenchWindow::deleteAsksFirst()
{
    QFETCH(bool, confirm);
    WorkbenchWindow window;
    window.show();
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(window.selectFile(path(QStringLiteral("b-sprung.ovxshot"))));
    QString question;
    whenDialogShows<QMessageBox>([&question, confirm](QMessageBox* box) {
        question = box->text();
        box->button(confirm ? QMessageBox::Yes : QMessageBox::No)->click();
    });
    window.onDelete();
    QCOMPARE(question, QStringLiteral("Soll „Sprung weich“ endgültig gelöscht werden?"));
    QCOMPARE(QFileInfo::exists(path(QStringLiteral("b-sprung.ovxshot"))), !confirm);
    QCOMPARE(listOf(window)->topLevelItemCount(), confirm ? 2 : 3);
}

void tst_WorkbenchWindow::failedSaveToAReadOnlyFolder()
{
    WorkbenchWindow window;
    window.show();
    window.repository()->setAutosaveDelay(0);
    QVERIFY(window.openFolder(m_dir->path()));
    const QString file = path(QStringLiteral("a-sprung.ovxshot"));
    const QByteArray before = readTestFile(file);
    QVERIFY(QFile::setPermissions(m_dir->path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    QSignalSpy failed(window.repository(), &WorkbenchRepository::saveFailed);
    {
        // Root writes into read-only folders; a file size limit stops it as well.
        std::unique_ptr<FileSizeLimit> limit;
        if (geteuid() == 0) {
            limit = std::make_unique<FileSizeLimit>();
            QVERIFY(limit->isActive());
        }
        window.currentElement()->setName(QStringLiteral("Nicht gespeichert"));
        QTRY_COMPARE(failed.count(), 1);
    }
    QVERIFY(window.statusBar()->currentMessage().startsWith(
        QStringLiteral("Speichern fehlgeschlagen: %1 (").arg(QDir::toNativeSeparators(file))));
    QVERIFY(window.statusBar()->currentMessage().endsWith(
        QStringLiteral("). Die vorige Fassung der Datei bleibt erhalten.")));
    QCOMPARE(readTestFile(file), before);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), 4);
    QVERIFY(window.repository()->hasUnsavedChanges());
    // Writable again: the change is not lost.
    QVERIFY(QFile::setPermissions(m_dir->path(),
                                  QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner));
    QVERIFY(window.repository()->saveNow());
    QVERIFY(readTestFile(file).contains("Name=Nicht gespeichert"));
}

void tst_WorkbenchWindow::newFilesAppearByThemselves()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(writeTestFile(path(QStringLiteral("0-neu.ovxshot")), testShot("SN9", QStringLiteral("Neu"))));
    QTRY_COMPARE(listOf(window)->topLevelItemCount(), 4);
    QCOMPARE(listColumn(window, 0).first(), QStringLiteral("Neu"));
    // The selection stays where it was.
    QCOMPARE(window.currentFile(), path(QStringLiteral("a-sprung.ovxshot")));
    QVERIFY(QFile::remove(path(QStringLiteral("a-sprung.ovxshot"))));
    QTRY_COMPARE(listOf(window)->topLevelItemCount(), 3);
    QVERIFY(window.currentFile() != path(QStringLiteral("a-sprung.ovxshot")));
}

void tst_WorkbenchWindow::exportsCsv()
{
    WorkbenchWindow window;
    QVERIFY(window.openFolder(m_dir->path()));
    const QString csv = path(QStringLiteral("export.csv"));
    QVERIFY(window.exportCsv(csv));
    const QList<QByteArray> lines = readTestFile(csv).split('\n');
    QCOMPARE(lines.first(), QByteArray("*,\"Velkor\"\r"));
    // 15 header lines, 2 × 2 channel lines, one empty line, 400 rows and the end.
    QCOMPARE(lines.size(), 15 + 4 + 400 + 1);
    QVERIFY(lines.contains("*,source parameter 1, Drehzahl in 1/min\r"));
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("Exportiert: %1").arg(QDir::toNativeSeparators(csv)));
    QVERIFY(!window.exportCsv(path(QStringLiteral("fehlt/export.csv"))));
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("CSV-Export nach %1 fehlgeschlagen")
                                                       .arg(QDir::toNativeSeparators(path(QStringLiteral("fehlt/export.csv")))));
}

void tst_WorkbenchWindow::exportsPng()
{
    WorkbenchWindow window;
    window.resize(1200, 800);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(!window.exportPng(path(QStringLiteral("leer.png"))));
    QVERIFY(window.openFolder(m_dir->path()));
    const QString png = path(QStringLiteral("bild.png"));
    QVERIFY(window.exportPng(png));
    const QImage image(png);
    QVERIFY(!image.isNull());
    QVERIFY(image.width() > 200 && image.height() > 200);
    QVERIFY(!window.exportPng(path(QStringLiteral("fehlt/bild.png"))));
}

void tst_WorkbenchWindow::failedPngExportKeepsThePreviousFile()
{
    WorkbenchWindow window;
    window.resize(1200, 800);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QVERIFY(window.openFolder(m_dir->path()));
    const QString png = path(QStringLiteral("bild.png"));
    QVERIFY(window.exportPng(png));
    const QByteArray before = readTestFile(png);
    QVERIFY(before.size() > 16);
    const int files = QDir(m_dir->path()).entryList(QDir::Files).size();
    {
        // A file size limit makes every write past 16 bytes fail, for root as well.
        FileSizeLimit limit;
        QVERIFY(limit.isActive());
        QVERIFY(!window.exportPng(png));
    }
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("PNG-Export nach %1 fehlgeschlagen").arg(QDir::toNativeSeparators(png)));
    QCOMPARE(readTestFile(png), before);
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files).size(), files);
}

void tst_WorkbenchWindow::appliesAnotherRecordingsView()
{
    WorkbenchWindow window;
    window.repository()->setAutosaveDelay(0);
    QVERIFY(window.openFolder(m_dir->path()));
    auto* target = qobject_cast<ScopeShotArchive*>(window.repository()->archive(path(QStringLiteral("a-sprung.ovxshot"))));
    auto* source = qobject_cast<ScopeShotArchive*>(window.repository()->archive(path(QStringLiteral("b-sprung.ovxshot"))));
    source->channelSection(1)->setValue("ViewScalingFactor", "5");
    source->channelSection(1)->setValue("ViewOff", "1");
    QSignalSpy saved(window.repository(), &WorkbenchRepository::archiveSaved);
    bool asked = false;
    whenDialogShows<QInputDialog>([&asked](QInputDialog* dialog) {
        asked = true;
        QCOMPARE(dialog->comboBoxItems(), (QStringList {QStringLiteral("Sprung weich (b-sprung.ovxshot)")}));
        dialog->accept();
    });
    window.onRecipeImportRequest(target);
    QVERIFY(asked);
    QCOMPARE(target->channelSection(1)->value("ViewScalingFactor"), QByteArray("5"));
    QTRY_VERIFY(readTestFile(path(QStringLiteral("a-sprung.ovxshot"))).contains("ViewOff=1"));
    QCOMPARE(window.statusBar()->currentMessage(), QStringLiteral("Gespeichert: a-sprung.ovxshot"));
    QVERIFY(!window.applyRecipe(target, target));
    QVERIFY(!window.applyRecipe(nullptr, source));
}

void tst_WorkbenchWindow::recipeRequestWithoutShotIsRefused()
{
    WorkbenchWindow window;
    QVERIFY(window.openFolder(m_dir->path()));
    window.onRecipeImportRequest(nullptr);
    QCOMPARE(window.statusBar()->currentMessage(),
             QStringLiteral("Kanaleinstellungen lassen sich nur in eine einzelne Aufnahme übernehmen."));
}

void tst_WorkbenchWindow::frequencyViewsBecomeWindows()
{
    QPointer<QWidget> frequencyView = new QWidget;
    {
        WorkbenchWindow window;
        window.show();
        QVERIFY(window.openFolder(m_dir->path()));
        window.onWidgetCreated(window.scopeView(), frequencyView);
        QVERIFY(frequencyView->isWindow());
        QVERIFY(frequencyView->isVisible());
        QCOMPARE(frequencyView->windowTitle(), QStringLiteral("Frequenzanalyse – Sprung steif"));
        window.onWidgetCreated(window.scopeView(), nullptr);
        QVERIFY(window.close());
        QVERIFY(!frequencyView->isVisible());
    }
    QVERIFY(frequencyView.isNull());
}

void tst_WorkbenchWindow::viewChangesAreSaved()
{
    const QString file = path(QStringLiteral("a-sprung.ovxshot"));
    QByteArray scaling;
    {
        WorkbenchWindow window;
        window.repository()->setAutosaveDelay(50);
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        if (!window.scopeView())
            QSKIP("This build has no scope view.");
        QVERIFY(window.openFolder(m_dir->path()));
        QCOMPARE(window.scopeView()->currentScopeElement(), window.currentElement());
        QVERIFY(window.scopeView()->isVisible());
        auto* shot = qobject_cast<ScopeShotArchive*>(window.currentElement());
        const QByteArray before = shot->channelSection(0)->value("ViewScalingFactor");

        // Pick the first trace in the view's list and scale it up once.
        auto* traces = window.scopeView()->findChild<QTreeWidget*>(QStringLiteral("channelsWidget"));
        QVERIFY(traces);
        QTRY_VERIFY(traces->topLevelItemCount() > 0);
        QTreeWidgetItem* first = traces->topLevelItem(0);
        while (first->childCount() > 0)
            first = first->child(0);
        traces->setCurrentItem(nullptr);
        traces->setCurrentItem(first);
        auto* scaleUp = window.scopeView()->findChild<QAbstractButton*>(QStringLiteral("scaleUpButton"));
        QVERIFY(scaleUp);
        QTRY_VERIFY(scaleUp->isEnabled());
        QSignalSpy saved(window.repository(), &WorkbenchRepository::archiveSaved);
        QTest::mouseClick(scaleUp, Qt::LeftButton);
        scaling = shot->channelSection(0)->value("ViewScalingFactor");
        QVERIFY(scaling != before);
        QTRY_VERIFY(readTestFile(file).contains("ViewScalingFactor=" + scaling));
        QVERIFY(saved.count() >= 1);

        // Another recording and back: the view shows the stored state.
        QVERIFY(window.selectFile(path(QStringLiteral("b-sprung.ovxshot"))));
        QCOMPARE(window.scopeView()->currentScopeElement(), window.currentElement());
        QVERIFY(window.selectFile(file));
        QCOMPARE(window.scopeView()->currentScopeElement(), shot);
    }
    // Reopened, the change is there.
    WorkbenchRepository reopened;
    QVERIFY(reopened.setFolder(m_dir->path()));
    auto* shot = qobject_cast<ScopeShotArchive*>(reopened.archive(file));
    QCOMPARE(shot->channelSection(0)->value("ViewScalingFactor"), scaling);
}

void tst_WorkbenchWindow::compositionIsShownWithItsShots()
{
    WorkbenchWindow window;
    window.show();
    if (!window.scopeView())
        QSKIP("This build has no scope view.");
    QVERIFY(window.openFolder(m_dir->path()));
    QVERIFY(window.createComposition({path(QStringLiteral("a-sprung.ovxshot")), path(QStringLiteral("b-sprung.ovxshot"))},
                                     QStringLiteral("Vergleich")));
    QCOMPARE(window.scopeView()->currentScopeElement(), window.currentElement());
    // Deleting one of its shots lets the view go of the composition first.
    QVERIFY(window.deleteFile(path(QStringLiteral("a-sprung.ovxshot"))));
    QVERIFY(window.scopeView()->currentScopeElement() == window.currentElement());
    QVERIFY(window.selectFile(path(QStringLiteral("Vergleich.ovxcomp"))));
    QCOMPARE(window.scopeView()->currentScopeElement(), window.currentElement());
    QVERIFY(window.exportPng(path(QStringLiteral("vergleich.png"))));
    QVERIFY(!QImage(path(QStringLiteral("vergleich.png"))).isNull());
}

void tst_WorkbenchWindow::frequencyAnalysisOpensAWindow()
{
    WorkbenchWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    if (!window.scopeView())
        QSKIP("This build has no scope view.");
    QVERIFY(window.openFolder(m_dir->path()));
    auto* tabs = window.scopeView()->findChild<QTabWidget*>(QStringLiteral("ViewModeTabWidget"));
    QVERIFY(tabs);
    QCOMPARE(tabs->count(), 2);
    tabs->setCurrentIndex(1);
    auto* apply = tabs->widget(1)->findChild<QPushButton*>(QStringLiteral("applyButton"));
    QVERIFY(apply);
    QTRY_VERIFY(apply->isEnabled());
    QTest::mouseClick(apply, Qt::LeftButton);
    QWidget* frequencyWindow = nullptr;
    QTRY_VERIFY((frequencyWindow = [] {
        const QList<QWidget*> windows = QApplication::topLevelWidgets();
        for (QWidget* candidate : windows) {
            if (candidate->isVisible() && candidate->windowTitle().startsWith(QStringLiteral("Frequenzanalyse")))
                return candidate;
        }
        return static_cast<QWidget*>(nullptr);
    }()) != nullptr);
    QCOMPARE(frequencyWindow->windowTitle(), QStringLiteral("Frequenzanalyse – Sprung steif"));
    QPointer<QWidget> guard(frequencyWindow);
    QVERIFY(window.close());
    QVERIFY(guard.isNull() || !guard->isVisible());
}

QTEST_MAIN(tst_WorkbenchWindow)
#include "tst_workbenchwindow.moc"
