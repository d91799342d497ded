// SPDX-License-Identifier: GPL-3.0-or-later
// A minimal host: uses only what the installed OvScope package exports.
#include <OvScope/ovscope_export.h>
#include <ovversion.h>

#include <QtCore/QCoreApplication>
#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString version = productVersionText();
    std::printf("%s\n", qPrintable(version));
    return version.startsWith(QLatin1String("OvScope ")) ? 0 : 1;
}
