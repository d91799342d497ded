// SPDX-License-Identifier: GPL-3.0-or-later
// Writes the workbench icon as PNG files for the desktop entry: iconwriter DIR SIZE…
#include "workbenchicon.h"

#include <QtCore/QDir>
#include <QtGui/QGuiApplication>

#include <cstdio>

int main(int argc, char* argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.size() < 3) {
        std::fputs("usage: ovscope-workbench-iconwriter DIR SIZE...\n", stderr);
        return 2;
    }
    const QDir dir(args.at(1));
    for (qsizetype i = 2; i < args.size(); ++i) {
        const int size = args.at(i).toInt();
        const QString file = dir.filePath(QStringLiteral("ovscope-workbench-%1.png").arg(size));
        if (size < 8 || size > 1024 || !WorkbenchIcon::render(size).save(file, "PNG")) {
            std::fprintf(stderr, "cannot write %s\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
