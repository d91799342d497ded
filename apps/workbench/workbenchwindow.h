// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QMainWindow>

class ScopeElementArchive;
class ScopeShotArchive;
class ScopeView;
class WorkbenchRepository;
class WorkbenchWindowPrivate;

/*! \brief The workbench's main window: the recordings of a folder on the
    left, the scope view of the selected one on the right.

    Every action of the menus has a programmatic twin without dialogs
    (openFolder(), importReadOut(), createComposition(), …); the menu entries
    ask the user and then call these.
*/
class WorkbenchWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit WorkbenchWindow(QWidget* parent = nullptr);
    ~WorkbenchWindow() override;

    WorkbenchRepository* repository() const;
    /*! \brief The embedded scope view; null when this build has none. */
    ScopeView* scopeView() const;

    /*! \brief Shows the recordings of \a folder and remembers it. */
    bool openFolder(const QString& folder);
    /*! \brief The folder of the last start, or the given default. */
    static QString lastFolder();

    /*! \brief Selects the recording in \a path and shows it. */
    bool selectFile(const QString& path);
    QString currentFile() const;
    ScopeElementArchive* currentElement() const;
    /*! \brief The files of the selected rows, in list order. */
    QStringList selectedFiles() const;

    bool importReadOut(const QString& readOutFile);
    bool createComposition(const QStringList& shotFiles, const QString& name);
    bool renameFile(const QString& path, const QString& name);
    bool deleteFile(const QString& path);
    bool exportCsv(const QString& csvFile);
    bool exportPng(const QString& pngFile);
    /*! \brief Applies the channel settings of \a source to \a target. */
    bool applyRecipe(ScopeShotArchive* target, ScopeShotArchive* source);

public Q_SLOTS:
    void onOpenFolder();
    void onImportReadOut();
    void onCreateComposition();
    void onRename();
    void onDelete();
    void onExportCsv();
    void onExportPng();

public:
    // Plain members rather than slots: the view's types need not be complete here.
    void onRecipeImportRequest(ScopeShotArchive* pScopeShotArchive);
    void onWidgetCreated(ScopeView* pView, QWidget* pWidget);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    Q_DECLARE_PRIVATE(WorkbenchWindow)
    WorkbenchWindowPrivate* const d_ptr;
};
