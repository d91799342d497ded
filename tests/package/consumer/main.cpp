// SPDX-License-Identifier: GPL-3.0-or-later
// A minimal host: uses only what the installed OvScope package exports.
#include <OvScope/ovscope_export.h>
#include <OvScope/scopeshotarchive.h>
#include <ovversion.h>

#include <QtCore/QCoreApplication>
#include <cstdio>
#include <memory>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QString version = productVersionText();
    std::printf("%s\n", qPrintable(version));
    if (!version.startsWith(QLatin1String("OvScope ")))
        return 1;

    // A stored shot archive goes in as text and comes out as the same text.
    const QByteArray text = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n"
                            "[Archive]\r\nID=consumer_1\r\nName=Paketprobe\r\nIsPublic=0\r\n\r\n"
                            "[ScopeShot]\r\nTimeBase=62.5\r\n";
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive) {
        std::printf("no archive\n");
        return 2;
    }
    if (!archive->fromByteArray(text)) {
        std::printf("archive text not loaded\n");
        return 3;
    }
    if (archive->name() != QLatin1String("Paketprobe") || archive->id() != "consumer_1" || archive->isPublic()) {
        std::printf("unexpected properties: %s\n", qPrintable(archive->name()));
        return 4;
    }
    if (archive->toByteArray() != text) {
        std::printf("archive text changed:\n%s\n", archive->toByteArray().constData());
        return 5;
    }
    std::printf("archive %s\n", qPrintable(archive->name()));
    return 0;
}
