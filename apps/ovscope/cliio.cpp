// SPDX-License-Identifier: GPL-3.0-or-later
#include "cliio.h"

#include "scopearchivekeys.h"
#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <charconv>
#include <cmath>
#include <cstdio>

void CliIo::printError(const QString& message)
{
    const QByteArray text = "ovscope: " + message.toLocal8Bit() + '\n';
    std::fwrite(text.constData(), 1, size_t(text.size()), stderr);
    std::fflush(stderr);
}

void CliIo::printOut(const QByteArray& bytes)
{
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stdout);
    std::fflush(stdout);
}

bool CliIo::readFile(const QString& path, QByteArray* bytes, QString* error)
{
    const QFileInfo info(path);
    if (!info.exists()) {
        *error = QStringLiteral("%1: no such file").arg(path);
        return false;
    }
    if (info.isDir()) {
        *error = QStringLiteral("%1: is a directory").arg(path);
        return false;
    }
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("%1: cannot open: %2").arg(path, file.errorString());
        return false;
    }
    if (file.size() > MaximumFileSize) {
        *error = QStringLiteral("%1: file too large").arg(path);
        return false;
    }
    *bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        *error = QStringLiteral("%1: cannot read: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

bool CliIo::writeFile(const QString& path, const QByteArray& bytes, QString* error)
{
    if (path == QLatin1String("-")) {
        printOut(bytes);
        return true;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("%1: cannot write: %2").arg(path, file.errorString());
        return false;
    }
    if (file.write(bytes) != bytes.size() || !file.commit()) {
        *error = QStringLiteral("%1: cannot write: %2").arg(path, file.errorString());
        file.cancelWriting();
        return false;
    }
    return true;
}

QByteArray CliIo::shortestNumber(double value)
{
    if (std::isnan(value))
        return QByteArrayLiteral("nan");
    if (std::isinf(value))
        return value < 0 ? QByteArrayLiteral("-inf") : QByteArrayLiteral("inf");
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return QByteArray(buffer, int(result.ptr - buffer));
}

void CliIo::appendFixed(QByteArray* text, double value, int decimals)
{
    char buffer[64];
    auto result = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed, decimals);
    if (result.ec != std::errc())
        result = std::to_chars(buffer, buffer + sizeof buffer, value);
    // "-0.000" reads back as 0; keep the text as plain as the value.
    const char* begin = buffer;
    if (buffer[0] == '-') {
        bool allZero = true;
        for (const char* p = buffer + 1; p < result.ptr; ++p) {
            if (*p != '0' && *p != '.') {
                allZero = false;
                break;
            }
        }
        if (allZero)
            ++begin;
    }
    text->append(begin, int(result.ptr - begin));
}

void CliIo::appendInteger(QByteArray* text, qint64 value)
{
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    text->append(buffer, int(result.ptr - buffer));
}

bool CliIo::isCompositionText(const QByteArray& bytes)
{
    // Only the first line decides; the loader of either kind accepts the
    // other kind's document, so the type line is the one reliable mark.
    QByteArrayView head(bytes.constData(), qMin<qsizetype>(bytes.size(), 256));
    if (head.startsWith("\xEF\xBB\xBF"))
        head = head.sliced(3);
    return head.startsWith(QByteArrayView(ScopeArchiveKeys::CompositionTypeLine));
}

ScopeShotArchive* CliIo::loadShot(const QString& path, QObject* parent, QString* error)
{
    QByteArray bytes;
    if (!readFile(path, &bytes, error))
        return nullptr;
    if (isCompositionText(bytes)) {
        *error = QStringLiteral("%1: is a composition, not a shot archive").arg(path);
        return nullptr;
    }
    ScopeShotArchive* archive = ScopeShotArchive::create(parent);
    if (!archive->fromByteArray(bytes)) {
        delete archive;
        *error = QStringLiteral("%1: not a shot archive").arg(path);
        return nullptr;
    }
    return archive;
}

ScopeElementArchive* CliIo::loadElement(const QString& path, QObject* parent, QString* error)
{
    QByteArray bytes;
    if (!readFile(path, &bytes, error))
        return nullptr;
    if (isCompositionText(bytes)) {
        ScopeCompositionArchive* composition = ScopeCompositionArchive::create(parent);
        if (!composition->fromByteArray(bytes)) {
            delete composition;
            *error = QStringLiteral("%1: not a composition archive").arg(path);
            return nullptr;
        }
        return composition;
    }
    ScopeShotArchive* archive = ScopeShotArchive::create(parent);
    if (!archive->fromByteArray(bytes)) {
        delete archive;
        *error = QStringLiteral("%1: not an archive").arg(path);
        return nullptr;
    }
    return archive;
}
