// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchwindow.h"
#include "workbenchwindow_p.h"

#include "workbenchicon.h"
#include "workbenchrepository.h"

#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
#include "scopeview.h"
#endif

#include <QtCore/QBuffer>
#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QCloseEvent>
#include <QtGui/QPixmap>
#include <QtWidgets/QApplication>
#include <QtWidgets/QFileDialog>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenuBar>
#include <QtWidgets/QMessageBox>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QStackedWidget>
#include <QtWidgets/QStatusBar>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace {
const QLatin1String geometryKey("Workbench/Geometry");
const QLatin1String stateKey("Workbench/WindowState");
const QLatin1String splitterKey("Workbench/SplitterState");
const QLatin1String folderKey("Workbench/LastFolder");
constexpr int pathRole = Qt::UserRole + 1;
}

WorkbenchWindowPrivate::WorkbenchWindowPrivate(WorkbenchWindow* q)
    : QObject(q)
    , q_ptr(q)
{
}

void WorkbenchWindowPrivate::buildUi()
{
    Q_Q(WorkbenchWindow);
    q->setObjectName(QStringLiteral("WorkbenchWindow"));
    q->setWindowIcon(WorkbenchIcon::icon());
    q->setWindowTitle(WorkbenchWindow::tr("OvScope Workbench"));

    splitter = new QSplitter(Qt::Horizontal, q);
    splitter->setObjectName(QStringLiteral("splitter"));
    splitter->setChildrenCollapsible(false);

    list = new QTreeWidget(splitter);
    list->setObjectName(QStringLiteral("recordingList"));
    list->setColumnCount(ColumnCount);
    list->setHeaderLabels({WorkbenchWindow::tr("Name"), WorkbenchWindow::tr("Art"),
                           WorkbenchWindow::tr("Ausgelesen"), WorkbenchWindow::tr("Rechner"),
                           WorkbenchWindow::tr("Öffentlich"), WorkbenchWindow::tr("Kommentar")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list->setContextMenuPolicy(Qt::ActionsContextMenu);
    list->header()->setStretchLastSection(true);
    list->header()->setSectionResizeMode(QHeaderView::Interactive);
    list->setMinimumWidth(260);

    stack = new QStackedWidget(splitter);
    stack->setObjectName(QStringLiteral("viewStack"));
    messageLabel = new QLabel(stack);
    messageLabel->setObjectName(QStringLiteral("messageLabel"));
    messageLabel->setAlignment(Qt::AlignCenter);
    messageLabel->setWordWrap(true);
    messageLabel->setMargin(24);
    stack->addWidget(messageLabel);
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
    view = ScopeView::create(stack, repository);
    view->setObjectName(QStringLiteral("scopeView"));
    viewPage = view;
    connect(view, &ScopeView::widgetCreated, q, &WorkbenchWindow::onWidgetCreated);
    connect(view, &ScopeView::recipeImportRequest, q, &WorkbenchWindow::onRecipeImportRequest);
#else
    viewPage = messageLabel;
#endif
    stack->addWidget(viewPage);
    splitter->addWidget(list);
    splitter->addWidget(stack);
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({460, 1000});
    q->setCentralWidget(splitter);

    QStyle* style = q->style();
    openAction = new QAction(style->standardIcon(QStyle::SP_DirOpenIcon), WorkbenchWindow::tr("Ordner öffnen…"), q);
    openAction->setObjectName(QStringLiteral("openFolderAction"));
    openAction->setShortcut(QKeySequence::Open);
    importAction = new QAction(style->standardIcon(QStyle::SP_FileDialogNewFolder),
                               WorkbenchWindow::tr("Aufnahme importieren…"), q);
    importAction->setObjectName(QStringLiteral("importAction"));
    compositionAction = new QAction(style->standardIcon(QStyle::SP_FileDialogListView),
                                    WorkbenchWindow::tr("Komposition erstellen…"), q);
    compositionAction->setObjectName(QStringLiteral("compositionAction"));
    renameAction = new QAction(WorkbenchWindow::tr("Umbenennen…"), q);
    renameAction->setObjectName(QStringLiteral("renameAction"));
    renameAction->setShortcut(Qt::Key_F2);
    deleteAction = new QAction(style->standardIcon(QStyle::SP_TrashIcon), WorkbenchWindow::tr("Löschen…"), q);
    deleteAction->setObjectName(QStringLiteral("deleteAction"));
    deleteAction->setShortcut(QKeySequence::Delete);
    csvAction = new QAction(WorkbenchWindow::tr("Als CSV exportieren…"), q);
    csvAction->setObjectName(QStringLiteral("exportCsvAction"));
    pngAction = new QAction(WorkbenchWindow::tr("Als PNG exportieren…"), q);
    pngAction->setObjectName(QStringLiteral("exportPngAction"));
    auto* quitAction = new QAction(WorkbenchWindow::tr("Beenden"), q);
    quitAction->setObjectName(QStringLiteral("quitAction"));
    quitAction->setShortcut(QKeySequence::Quit);

    QMenu* fileMenu = q->menuBar()->addMenu(WorkbenchWindow::tr("&Datei"));
    fileMenu->addAction(openAction);
    fileMenu->addAction(importAction);
    fileMenu->addSeparator();
    fileMenu->addAction(csvAction);
    fileMenu->addAction(pngAction);
    fileMenu->addSeparator();
    fileMenu->addAction(quitAction);
    QMenu* recordingMenu = q->menuBar()->addMenu(WorkbenchWindow::tr("&Aufnahme"));
    recordingMenu->addAction(compositionAction);
    recordingMenu->addAction(renameAction);
    recordingMenu->addAction(deleteAction);

    QToolBar* toolBar = q->addToolBar(WorkbenchWindow::tr("Werkzeuge"));
    toolBar->setObjectName(QStringLiteral("mainToolBar"));
    toolBar->addAction(openAction);
    toolBar->addAction(importAction);
    toolBar->addAction(compositionAction);
    toolBar->addAction(deleteAction);

    list->addAction(renameAction);
    list->addAction(deleteAction);
    list->addAction(compositionAction);
    list->addAction(csvAction);

    connect(openAction, &QAction::triggered, q, &WorkbenchWindow::onOpenFolder);
    connect(importAction, &QAction::triggered, q, &WorkbenchWindow::onImportReadOut);
    connect(compositionAction, &QAction::triggered, q, &WorkbenchWindow::onCreateComposition);
    connect(renameAction, &QAction::triggered, q, &WorkbenchWindow::onRename);
    connect(deleteAction, &QAction::triggered, q, &WorkbenchWindow::onDelete);
    connect(csvAction, &QAction::triggered, q, &WorkbenchWindow::onExportCsv);
    connect(pngAction, &QAction::triggered, q, &WorkbenchWindow::onExportPng);
    connect(quitAction, &QAction::triggered, q, &QWidget::close);
    connect(list, &QTreeWidget::itemSelectionChanged, this, &WorkbenchWindowPrivate::onCurrentItemChanged);

    q->statusBar()->setObjectName(QStringLiteral("statusBar"));
    showElement(nullptr, WorkbenchWindow::tr("Kein Ordner geöffnet."));
    updateActions();
}

void WorkbenchWindowPrivate::restoreSettings()
{
    Q_Q(WorkbenchWindow);
    QSettings settings;
    if (!q->restoreGeometry(settings.value(geometryKey).toByteArray()))
        q->resize(1400, 900);
    q->restoreState(settings.value(stateKey).toByteArray());
    splitter->restoreState(settings.value(splitterKey).toByteArray());
}

void WorkbenchWindowPrivate::saveSettings() const
{
    QSettings settings;
    settings.setValue(geometryKey, q_ptr->saveGeometry());
    settings.setValue(stateKey, q_ptr->saveState());
    settings.setValue(splitterKey, splitter->saveState());
    if (!repository->folder().isEmpty())
        settings.setValue(folderKey, repository->folder());
}

QTreeWidgetItem* WorkbenchWindowPrivate::itemForFile(const QString& path) const
{
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = list->topLevelItem(i);
        if (item->data(NameColumn, pathRole).toString() == path)
            return item;
    }
    return nullptr;
}

void WorkbenchWindowPrivate::fillItem(QTreeWidgetItem* item, const QString& path) const
{
    item->setData(NameColumn, pathRole, path);
    const QString fileName = QFileInfo(path).fileName();
    ScopeElementArchive* archive = repository->archive(path);
    if (!archive) {
        const QString error = repository->loadError(path);
        item->setText(NameColumn, fileName);
        item->setText(KindColumn, WorkbenchWindow::tr("Fehler"));
        // The error goes into the last column, which takes whatever width is left.
        item->setText(CommentColumn, error);
        item->setToolTip(CommentColumn, error);
        item->setIcon(NameColumn, q_ptr->style()->standardIcon(QStyle::SP_MessageBoxWarning));
        item->setToolTip(NameColumn, WorkbenchWindow::tr("%1 kann nicht geladen werden: %2").arg(path, error));
        for (int column = 0; column < ColumnCount; ++column)
            item->setForeground(column, QColor(0xb0, 0x00, 0x20));
        return;
    }
    const bool isComposition = qobject_cast<ScopeCompositionArchive*>(archive) != nullptr;
    const QString name = archive->name();
    item->setText(NameColumn, name.isEmpty() ? fileName : name);
    item->setToolTip(NameColumn, path);
    item->setIcon(NameColumn, WorkbenchIcon::kindIcon(isComposition));
    item->setText(KindColumn, isComposition ? WorkbenchWindow::tr("Komposition") : WorkbenchWindow::tr("Aufnahme"));
    QString readOut = QString::fromLatin1(archive->readOutText());
    if (readOut.isEmpty() && archive->timestamp().isValid())
        readOut = QLocale().toString(archive->timestamp(), QLocale::ShortFormat);
    item->setText(ReadOutColumn, readOut);
    item->setText(HostColumn, QString::fromLatin1(archive->hostName()));
    item->setText(PublicColumn, archive->isPublic() ? WorkbenchWindow::tr("ja") : WorkbenchWindow::tr("nein"));
    const bool hasComment = !archive->isCommentEmpty();
    item->setText(CommentColumn, hasComment ? WorkbenchWindow::tr("✎") : QString());
    item->setToolTip(CommentColumn, hasComment ? archive->comment() : QString());
}

void WorkbenchWindowPrivate::showElement(ScopeElementArchive* archive, const QString& message)
{
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
    if (view->currentScopeElement() != archive) {
        view->clearScopeElement();
        if (archive)
            view->setScopeElement(archive);
    }
    if (archive) {
        stack->setCurrentWidget(view);
        return;
    }
    messageLabel->setText(message);
#else
    messageLabel->setText(archive
        ? WorkbenchWindow::tr("Die Scope-Ansicht ist in diesem Build noch nicht enthalten.\n"
                              "Ausgewählt: %1").arg(archive->name())
        : message);
#endif
    stack->setCurrentWidget(messageLabel);
}

void WorkbenchWindowPrivate::showStatus(const QString& text, int timeout)
{
    q_ptr->statusBar()->showMessage(text, timeout);
}

void WorkbenchWindowPrivate::updateActions()
{
    const bool hasFolder = !repository->folder().isEmpty();
    ScopeElementArchive* current = q_ptr->currentElement();
    importAction->setEnabled(hasFolder);
    compositionAction->setEnabled(hasFolder);
    renameAction->setEnabled(current != nullptr);
    deleteAction->setEnabled(!q_ptr->currentFile().isEmpty());
    csvAction->setEnabled(qobject_cast<ScopeShotArchive*>(current) != nullptr);
    pngAction->setEnabled(current != nullptr);
}

bool WorkbenchWindowPrivate::askConfirmation(const QString& title, const QString& text)
{
    return QMessageBox::question(q_ptr, title, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
        == QMessageBox::Yes;
}

void WorkbenchWindowPrivate::onFilesChanged()
{
    const QStringList selected = q_ptr->selectedFiles();
    const QString current = q_ptr->currentFile();
    rebuilding = true;
    list->clear();
    const QStringList files = repository->files();
    for (const QString& path : files) {
        auto* item = new QTreeWidgetItem(list);
        fillItem(item, path);
    }
    for (int column = 0; column < ColumnCount - 1; ++column)
        list->resizeColumnToContents(column);
    list->setColumnWidth(NameColumn, qBound(120, list->columnWidth(NameColumn), 260));
    for (const QString& path : selected) {
        if (QTreeWidgetItem* item = itemForFile(path))
            item->setSelected(true);
    }
    if (QTreeWidgetItem* item = itemForFile(current))
        list->setCurrentItem(item, 0, QItemSelectionModel::NoUpdate);
    rebuilding = false;
    onCurrentItemChanged();
}

void WorkbenchWindowPrivate::onCurrentItemChanged()
{
    if (rebuilding)
        return;
    const QStringList selected = q_ptr->selectedFiles();
    QString path = q_ptr->currentFile();
    if (!selected.contains(path))
        path = selected.value(0);
    if (path.isEmpty()) {
        showElement(nullptr, repository->folder().isEmpty()
            ? WorkbenchWindow::tr("Kein Ordner geöffnet.")
            : (repository->files().isEmpty()
                ? WorkbenchWindow::tr("Dieser Ordner enthält keine Aufnahmen.\n"
                                      "Mit „Aufnahme importieren…“ wird ein Auslesedokument übernommen.")
                : WorkbenchWindow::tr("Keine Aufnahme ausgewählt.")));
    } else if (ScopeElementArchive* archive = repository->archive(path)) {
        showElement(archive, QString());
    } else {
        const QString message = WorkbenchWindow::tr("%1 kann nicht geladen werden:\n%2")
            .arg(QFileInfo(path).fileName(), repository->loadError(path));
        showElement(nullptr, message);
        showStatus(message.simplified(), 8000);
    }
    updateActions();
}

void WorkbenchWindowPrivate::onArchiveChanged(ScopeElementArchive* archive)
{
    if (QTreeWidgetItem* item = itemForFile(repository->filePath(archive)))
        fillItem(item, item->data(NameColumn, pathRole).toString());
}

void WorkbenchWindowPrivate::onArchiveAboutToBeRemoved(ScopeElementArchive* archive)
{
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
    // A composition's shots are read straight from their archives, so a shown
    // composition lets go of all of them as well.
    ScopeElementArchive* shown = view->currentScopeElement();
    if (shown == archive || qobject_cast<ScopeCompositionArchive*>(shown))
        view->clearScopeElement();
#else
    Q_UNUSED(archive)
#endif
}

void WorkbenchWindowPrivate::onArchiveSaved(const QString& path)
{
    showStatus(WorkbenchWindow::tr("Gespeichert: %1").arg(QFileInfo(path).fileName()), 4000);
}

void WorkbenchWindowPrivate::onSaveFailed(const QString& path, const QString& message)
{
    // Stays until the next message: the change is still only in memory.
    showStatus(WorkbenchWindow::tr("Speichern fehlgeschlagen: %1 (%2). Die vorige Fassung der Datei bleibt erhalten.")
                   .arg(QDir::toNativeSeparators(path), message));
}

WorkbenchWindow::WorkbenchWindow(QWidget* parent)
    : QMainWindow(parent)
    , d_ptr(new WorkbenchWindowPrivate(this))
{
    Q_D(WorkbenchWindow);
    d->repository = new WorkbenchRepository(this);
    d->buildUi();
    connect(d->repository, &WorkbenchRepository::filesChanged, d, &WorkbenchWindowPrivate::onFilesChanged);
    connect(d->repository, &WorkbenchRepository::archiveChanged, d, &WorkbenchWindowPrivate::onArchiveChanged);
    connect(d->repository, &WorkbenchRepository::archiveAboutToBeRemoved, d,
            &WorkbenchWindowPrivate::onArchiveAboutToBeRemoved);
    connect(d->repository, &WorkbenchRepository::archiveSaved, d, &WorkbenchWindowPrivate::onArchiveSaved);
    connect(d->repository, &WorkbenchRepository::saveFailed, d, &WorkbenchWindowPrivate::onSaveFailed);
    d->restoreSettings();
}

WorkbenchWindow::~WorkbenchWindow()
{
    Q_D(WorkbenchWindow);
    d->repository->saveNow();
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
    // The view goes before the archives it reads from.
    d->view->clearScopeElement();
    delete d->view;
    d->view = nullptr;
#endif
    for (const QPointer<QWidget>& window : std::as_const(d->frequencyWindows))
        delete window.data();
}

WorkbenchRepository* WorkbenchWindow::repository() const
{
    Q_D(const WorkbenchWindow);
    return d->repository;
}

ScopeView* WorkbenchWindow::scopeView() const
{
    Q_D(const WorkbenchWindow);
    return d->view;
}

bool WorkbenchWindow::openFolder(const QString& folder)
{
    Q_D(WorkbenchWindow);
    if (!d->repository->setFolder(folder)) {
        d->showStatus(tr("%1 ist kein Ordner.").arg(QDir::toNativeSeparators(folder)), 8000);
        return false;
    }
    const QString path = d->repository->folder();
    setWindowTitle(tr("OvScope Workbench – %1").arg(QDir::toNativeSeparators(path)));
    QSettings().setValue(folderKey, path);
    int failed = 0;
    const QStringList files = d->repository->files();
    for (const QString& file : files)
        failed += d->repository->archive(file) ? 0 : 1;
    d->showStatus(failed ? tr("%1 Aufnahmen, davon %2 nicht lesbar").arg(files.size()).arg(failed)
                         : tr("%1 Aufnahmen").arg(files.size()), 6000);
    if (!files.isEmpty() && d->list->selectedItems().isEmpty())
        selectFile(files.first());
    d->updateActions();
    return true;
}

QString WorkbenchWindow::lastFolder()
{
    return QSettings().value(folderKey).toString();
}

bool WorkbenchWindow::selectFile(const QString& path)
{
    Q_D(WorkbenchWindow);
    QTreeWidgetItem* item = d->itemForFile(QFileInfo(path).absoluteFilePath());
    if (!item)
        return false;
    d->list->setCurrentItem(item, 0, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    d->list->scrollToItem(item);
    return true;
}

QString WorkbenchWindow::currentFile() const
{
    Q_D(const WorkbenchWindow);
    QTreeWidgetItem* item = d->list->currentItem();
    if (!item || !item->isSelected()) {
        const QList<QTreeWidgetItem*> selected = d->list->selectedItems();
        item = selected.value(0);
    }
    return item ? item->data(WorkbenchWindowPrivate::NameColumn, pathRole).toString() : QString();
}

ScopeElementArchive* WorkbenchWindow::currentElement() const
{
    Q_D(const WorkbenchWindow);
    return d->repository->archive(currentFile());
}

QStringList WorkbenchWindow::selectedFiles() const
{
    Q_D(const WorkbenchWindow);
    QStringList result;
    for (int i = 0; i < d->list->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = d->list->topLevelItem(i);
        if (item->isSelected())
            result.append(item->data(WorkbenchWindowPrivate::NameColumn, pathRole).toString());
    }
    return result;
}

bool WorkbenchWindow::importReadOut(const QString& readOutFile)
{
    Q_D(WorkbenchWindow);
    QString error;
    ScopeShotArchive* shot = d->repository->importReadOut(readOutFile, &error);
    if (!shot) {
        d->showStatus(tr("Import von %1 fehlgeschlagen: %2").arg(QFileInfo(readOutFile).fileName(), error));
        return false;
    }
    const QString path = d->repository->filePath(shot);
    selectFile(path);
    d->showStatus(tr("Importiert als %1").arg(QFileInfo(path).fileName()), 6000);
    return true;
}

bool WorkbenchWindow::createComposition(const QStringList& shotFiles, const QString& name)
{
    Q_D(WorkbenchWindow);
    QList<ScopeShotArchive*> shots;
    for (const QString& file : shotFiles) {
        if (auto* shot = qobject_cast<ScopeShotArchive*>(d->repository->archive(file)))
            shots.append(shot);
    }
    QString error;
    ScopeCompositionArchive* composition = shots.isEmpty()
        ? nullptr
        : d->repository->createComposition(shots, name, &error);
    if (!composition) {
        d->showStatus(tr("Komposition nicht erstellt: %1")
                          .arg(shots.isEmpty() ? tr("Es ist keine lesbare Aufnahme ausgewählt.") : error));
        return false;
    }
    selectFile(d->repository->filePath(composition));
    d->showStatus(tr("Komposition „%1“ aus %2 Aufnahmen erstellt").arg(composition->name()).arg(shots.size()), 6000);
    return true;
}

bool WorkbenchWindow::renameFile(const QString& path, const QString& name)
{
    Q_D(WorkbenchWindow);
    ScopeElementArchive* archive = d->repository->archive(path);
    const QString trimmed = name.trimmed();
    if (!archive || trimmed.isEmpty())
        return false;
    archive->setName(trimmed);
    return true;
}

bool WorkbenchWindow::deleteFile(const QString& path)
{
    Q_D(WorkbenchWindow);
    QString error;
    if (!d->repository->removeFile(path, &error)) {
        d->showStatus(tr("%1 nicht gelöscht: %2").arg(QFileInfo(path).fileName(), error));
        return false;
    }
    d->showStatus(tr("Gelöscht: %1").arg(QFileInfo(path).fileName()), 6000);
    return true;
}

bool WorkbenchWindow::exportCsv(const QString& csvFile)
{
    Q_D(WorkbenchWindow);
    auto* shot = qobject_cast<ScopeShotArchive*>(currentElement());
    if (!shot) {
        d->showStatus(tr("CSV-Export gibt es nur für einzelne Aufnahmen."), 6000);
        return false;
    }
    if (!shot->exportCsv(csvFile)) {
        d->showStatus(tr("CSV-Export nach %1 fehlgeschlagen").arg(QDir::toNativeSeparators(csvFile)));
        return false;
    }
    d->showStatus(tr("Exportiert: %1").arg(QDir::toNativeSeparators(csvFile)), 6000);
    return true;
}

bool WorkbenchWindow::exportPng(const QString& pngFile)
{
    Q_D(WorkbenchWindow);
    if (!currentElement()) {
        d->showStatus(tr("Keine Aufnahme ausgewählt."), 6000);
        return false;
    }
    const QPixmap picture = d->stack->currentWidget()->grab();
    // Encoded in memory first: the PNG writer cannot recover cleanly from a
    // device that fails half-way. The bytes are written beside the target
    // and renamed over it only when complete, so a failed write keeps the
    // previous picture.
    QByteArray png;
    QBuffer buffer(&png);
    QSaveFile file(pngFile);
    if (picture.isNull() || !buffer.open(QIODevice::WriteOnly) || !picture.save(&buffer, "PNG")
        || !file.open(QIODevice::WriteOnly) || file.write(png) != png.size() || !file.commit()) {
        d->showStatus(tr("PNG-Export nach %1 fehlgeschlagen").arg(QDir::toNativeSeparators(pngFile)));
        return false;
    }
    d->showStatus(tr("Exportiert: %1").arg(QDir::toNativeSeparators(pngFile)), 6000);
    return true;
}

bool WorkbenchWindow::applyRecipe(ScopeShotArchive* target, ScopeShotArchive* source)
{
    Q_D(WorkbenchWindow);
    if (!target || !source || target == source)
        return false;
    if (!target->applyViewRecipe(source->viewRecipe(), false)) {
        d->showStatus(tr("Keine passenden Kanäle in „%1“ gefunden.").arg(source->name()), 8000);
        return false;
    }
#ifdef OVSCOPE_WORKBENCH_HAS_VIEW
    if (d->view->currentScopeElement() == target) {
        d->view->clearScopeElement();
        d->view->setScopeElement(target);
    }
#endif
    d->showStatus(tr("Kanaleinstellungen von „%1“ übernommen").arg(source->name()), 6000);
    return true;
}

void WorkbenchWindow::onOpenFolder()
{
    Q_D(WorkbenchWindow);
    QString start = d->repository->folder();
    if (start.isEmpty())
        start = QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
    const QString folder = QFileDialog::getExistingDirectory(this, tr("Ordner mit Aufnahmen öffnen"), start);
    if (!folder.isEmpty())
        openFolder(folder);
}

void WorkbenchWindow::onImportReadOut()
{
    const QString file = QFileDialog::getOpenFileName(
        this, tr("Aufnahme importieren"), QString(),
        tr("Auslesedokumente (*.ovxreadout *.ini *.txt);;Alle Dateien (*)"));
    if (!file.isEmpty())
        importReadOut(file);
}

void WorkbenchWindow::onCreateComposition()
{
    Q_D(WorkbenchWindow);
    QStringList shots;
    const QStringList selected = selectedFiles();
    for (const QString& file : selected) {
        if (qobject_cast<ScopeShotArchive*>(d->repository->archive(file)))
            shots.append(file);
    }
    if (shots.isEmpty()) {
        QMessageBox::information(this, tr("Komposition erstellen"),
                                 tr("Bitte zuerst eine oder mehrere Aufnahmen in der Liste auswählen."));
        return;
    }
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Komposition erstellen"),
                                               tr("Name der Komposition aus %1 Aufnahmen:").arg(shots.size()),
                                               QLineEdit::Normal, QString(), &ok);
    if (ok)
        createComposition(shots, name);
}

void WorkbenchWindow::onRename()
{
    ScopeElementArchive* archive = currentElement();
    if (!archive)
        return;
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Umbenennen"), tr("Name"), QLineEdit::Normal,
                                               archive->name(), &ok);
    if (ok)
        renameFile(currentFile(), name);
}

void WorkbenchWindow::onDelete()
{
    Q_D(WorkbenchWindow);
    const QStringList files = selectedFiles();
    if (files.isEmpty())
        return;
    const QString text = files.size() == 1
        ? tr("Soll „%1“ endgültig gelöscht werden?").arg(d->itemForFile(files.first())->text(0))
        : tr("Sollen die %1 ausgewählten Aufnahmen endgültig gelöscht werden?").arg(files.size());
    if (!d->askConfirmation(tr("Löschen"), text))
        return;
    for (const QString& file : files)
        deleteFile(file);
}

void WorkbenchWindow::onExportCsv()
{
    ScopeElementArchive* archive = currentElement();
    if (!archive)
        return;
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Als CSV exportieren"),
        QDir(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation)).filePath(archive->name() + QLatin1String(".csv")),
        tr("CSV-Dateien (*.csv)"));
    if (!file.isEmpty())
        exportCsv(file);
}

void WorkbenchWindow::onExportPng()
{
    ScopeElementArchive* archive = currentElement();
    if (!archive)
        return;
    const QString file = QFileDialog::getSaveFileName(
        this, tr("Als PNG exportieren"),
        QDir(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)).filePath(archive->name() + QLatin1String(".png")),
        tr("PNG-Bilder (*.png)"));
    if (!file.isEmpty())
        exportPng(file);
}

void WorkbenchWindow::onRecipeImportRequest(ScopeShotArchive* pScopeShotArchive)
{
    Q_D(WorkbenchWindow);
    if (!pScopeShotArchive) {
        d->showStatus(tr("Kanaleinstellungen lassen sich nur in eine einzelne Aufnahme übernehmen."), 6000);
        return;
    }
    QStringList names;
    QList<ScopeShotArchive*> sources;
    const QStringList files = d->repository->files();
    for (const QString& file : files) {
        auto* shot = qobject_cast<ScopeShotArchive*>(d->repository->archive(file));
        if (shot && shot != pScopeShotArchive) {
            names.append(tr("%1 (%2)").arg(shot->name(), QFileInfo(file).fileName()));
            sources.append(shot);
        }
    }
    if (sources.isEmpty()) {
        d->showStatus(tr("Keine andere Aufnahme im Ordner."), 6000);
        return;
    }
    bool ok = false;
    const QString chosen = QInputDialog::getItem(this, tr("Kanaleinstellungen importieren"),
                                                 tr("Ansicht übernehmen von:"), names, 0, false, &ok);
    const int index = names.indexOf(chosen);
    if (ok && index >= 0)
        applyRecipe(pScopeShotArchive, sources.at(index));
}

void WorkbenchWindow::onWidgetCreated(ScopeView* pView, QWidget* pWidget)
{
    Q_D(WorkbenchWindow);
    Q_UNUSED(pView)
    if (!pWidget)
        return;
    // The frequency view is a window of its own; it goes when the workbench closes.
    if (!pWidget->isWindow())
        pWidget->setWindowFlag(Qt::Window, true);
    // The window is named after the recording it analyses (the widget's own
    // title is only its form's name).
    ScopeElementArchive* archive = currentElement();
    pWidget->setWindowTitle(archive ? tr("Frequenzanalyse – %1").arg(archive->name()) : tr("Frequenzanalyse"));
    pWidget->setWindowIcon(windowIcon());
    if (pWidget->width() < 400 || pWidget->height() < 300)
        pWidget->resize(900, 600);
    d->frequencyWindows.removeAll(nullptr);
    d->frequencyWindows.append(pWidget);
    pWidget->show();
    pWidget->raise();
}

void WorkbenchWindow::closeEvent(QCloseEvent* event)
{
    Q_D(WorkbenchWindow);
    if (!d->repository->saveNow()) {
        const auto answer = QMessageBox::warning(
            this, tr("Speichern fehlgeschlagen"),
            tr("Nicht alle Änderungen konnten gespeichert werden. Trotzdem beenden?"),
            QMessageBox::Yes | QMessageBox::No, QMessageBox::No);
        if (answer != QMessageBox::Yes) {
            event->ignore();
            return;
        }
    }
    d->saveSettings();
    for (const QPointer<QWidget>& window : std::as_const(d->frequencyWindows)) {
        if (window)
            window->close();
    }
    QMainWindow::closeEvent(event);
}
