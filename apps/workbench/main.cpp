// SPDX-License-Identifier: GPL-3.0-or-later
#include "workbenchwindow.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>
#include <QtWidgets/QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Velkor"));
    QApplication::setApplicationName(QStringLiteral("OvScope Workbench"));
    QApplication::setDesktopFileName(QStringLiteral("ovscope-workbench"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QApplication::translate(
        "main", "Zeigt, misst und verwaltet die Scope-Aufnahmen eines Ordners."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("ORDNER"),
                                 QApplication::translate("main", "Ordner mit Aufnahmen (*.ovxshot, *.ovxcomp)"));
    parser.process(app);

    WorkbenchWindow window;
    QString folder = parser.positionalArguments().value(0);
    if (folder.isEmpty())
        folder = WorkbenchWindow::lastFolder();
    window.show();
    if (!folder.isEmpty())
        window.openFolder(QFileInfo(folder).absoluteFilePath());
    return app.exec();
}
