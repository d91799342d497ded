// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "workbenchwindow.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>

class QAction;
class QLabel;
class QSplitter;
class QStackedWidget;
class QTreeWidget;
class QTreeWidgetItem;

class WorkbenchWindowPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(WorkbenchWindow)

public:
    enum Column { NameColumn, KindColumn, ReadOutColumn, HostColumn, PublicColumn, CommentColumn, ColumnCount };

    explicit WorkbenchWindowPrivate(WorkbenchWindow* q);

    void buildUi();
    void restoreSettings();
    void saveSettings() const;
    QTreeWidgetItem* itemForFile(const QString& path) const;
    void fillItem(QTreeWidgetItem* item, const QString& path) const;
    void showElement(ScopeElementArchive* archive, const QString& message);
    void showStatus(const QString& text, int timeout = 0);
    void updateActions();
    bool askConfirmation(const QString& title, const QString& text);

public Q_SLOTS:
    void onFilesChanged();
    void onCurrentItemChanged();
    void onArchiveChanged(ScopeElementArchive* archive);
    void onArchiveAboutToBeRemoved(ScopeElementArchive* archive);
    void onArchiveSaved(const QString& path);
    void onSaveFailed(const QString& path, const QString& message);

public:
    WorkbenchWindow* q_ptr;
    WorkbenchRepository* repository = nullptr;
    ScopeView* view = nullptr;
    QSplitter* splitter = nullptr;
    QTreeWidget* list = nullptr;
    QStackedWidget* stack = nullptr;
    QLabel* messageLabel = nullptr;
    QWidget* viewPage = nullptr;
    QAction* openAction = nullptr;
    QAction* importAction = nullptr;
    QAction* compositionAction = nullptr;
    QAction* renameAction = nullptr;
    QAction* deleteAction = nullptr;
    QAction* csvAction = nullptr;
    QAction* pngAction = nullptr;
    QList<QPointer<QWidget>> frequencyWindows;
    bool rebuilding = false;
};
