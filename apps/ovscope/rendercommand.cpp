// SPDX-License-Identifier: GPL-3.0-or-later
#include "rendercommand.h"

#include "cliio.h"
#include "folderrepository.h"
#include "scopecompositionarchive.h"
#include "scopemarker.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracelist.h"
#include "scopeview.h"

#include <QtCore/QBuffer>
#include <QtCore/QCoreApplication>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QFileInfo>
#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtCore/QTemporaryDir>
#include <QtGui/QPixmap>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QTabWidget>
#include <QtWidgets/QTreeWidget>

#include <memory>

namespace {

// Lets the queued work of the view (shot reloads, filter and stripe
// updates, layouts) run to the end.
void settle()
{
    for (int round = 0; round < 5; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    }
}

bool savePng(QWidget* widget, const QString& outputPath, QString* error)
{
    const QPixmap picture = widget->grab();
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (picture.isNull() || !picture.save(&buffer, "PNG")) {
        *error = QStringLiteral("%1: cannot encode the picture").arg(outputPath);
        return false;
    }
    return CliIo::writeFile(outputPath, png, error);
}

} // namespace

int RenderCommand::run(const QString& path, const QString& outputPath, const Options& options)
{
    // The view keeps its geometry in the application settings: a render
    // neither reads nor changes the user's.
    QTemporaryDir settingsFolder;
    if (settingsFolder.isValid()) {
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settingsFolder.path());
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settingsFolder.path());
    }

    QString error;
    QObject owner;
    ScopeElementArchive* element = CliIo::loadElement(path, &owner, &error);
    if (!element) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    FolderRepository repository(QFileInfo(path).absolutePath());
    if (auto* composition = qobject_cast<ScopeCompositionArchive*>(element)) {
        int found = 0;
        for (const QByteArray& id : composition->usedShotIdentifiers())
            found += qobject_cast<ScopeShotArchive*>(repository.findArchive(id)) ? 1 : 0;
        if (found == 0) {
            CliIo::printError(QStringLiteral("%1: none of the composition's shots is in %2")
                                  .arg(path, repository.folder()));
            return ExitStatus::Failure;
        }
    }

    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &repository));
    QPointer<QWidget> frequencyWidget;
    QObject::connect(view.get(), &ScopeView::widgetCreated, view.get(),
                     [&frequencyWidget](ScopeView*, QWidget* widget) { frequencyWidget = widget; });
    view->setAttribute(Qt::WA_DontShowOnScreen);
    view->resize(options.size);
    view->setScopeElement(element);
    view->show();
    view->resize(options.size);
    settle();

    if (options.a || options.b) {
        for (ScopeMarker* marker : view->findChildren<ScopeMarker*>()) {
            if (options.a)
                marker->setPosition(0, *options.a);
            if (options.b)
                marker->setPosition(1, *options.b);
        }
        settle();
    }

    // The measurement table shows the chosen trace (the first by default),
    // as after a click on it in the trace list.
    if (auto* list = view->findChild<ScopeTraceList*>(QStringLiteral("channelsWidget"))) {
        bool found = false;
        for (int stripe = 0; stripe < list->topLevelItemCount() && !found; ++stripe) {
            QTreeWidgetItem* stripeItem = list->topLevelItem(stripe);
            for (int row = 0; row < stripeItem->childCount() && !found; ++row) {
                list->setCurrentItem(stripeItem->child(row));
                const ScopeTrace* trace = list->currentTrace();
                found = !options.trace || (trace && trace->number() == *options.trace);
            }
        }
        if (!found) {
            CliIo::printError(QStringLiteral("%1: no such trace: %2").arg(path).arg(*options.trace));
            return ExitStatus::Failure;
        }
        settle();
    }

    QWidget* target = view.get();
    if (options.tab == Tab::Frequency) {
        auto* tabs = view->findChild<QTabWidget*>(QStringLiteral("ViewModeTabWidget"));
        if (!tabs || tabs->count() < 2) {
            CliIo::printError(QStringLiteral("%1: the view offers no frequency analysis for this element").arg(path));
            return ExitStatus::Failure;
        }
        tabs->setCurrentIndex(1);
        settle();
        auto* apply = view->findChild<QAbstractButton*>(QStringLiteral("applyButton"));
        if (!apply) {
            CliIo::printError(QStringLiteral("%1: the view offers no frequency analysis").arg(path));
            return ExitStatus::Failure;
        }
        if (!apply->isEnabled()) {
            CliIo::printError(QStringLiteral("%1: no measured values between the markers").arg(path));
            return ExitStatus::Failure;
        }
        apply->click();
        settle();
        if (!frequencyWidget) {
            CliIo::printError(QStringLiteral("%1: the view made no frequency view").arg(path));
            return ExitStatus::Failure;
        }
        frequencyWidget->setAttribute(Qt::WA_DontShowOnScreen);
        frequencyWidget->resize(options.size);
        frequencyWidget->show();
        settle();
        target = frequencyWidget;
    }

    const bool saved = savePng(target, outputPath, &error);
    if (frequencyWidget)
        delete frequencyWidget.data();
    if (!saved) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}
