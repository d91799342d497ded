// SPDX-License-Identifier: GPL-3.0-or-later
#include "archivecommands.h"

#include "cliio.h"
#include "datatypeprovider.h"
#include "iniparser.h"
#include "scopearchivekeys.h"
#include "scopecompositionarchive.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "simpletype.h"

#include <QtCore/QDir>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtGui/QTextDocument>

#include <memory>

using KlIniParser::IniSection;

namespace {

// One "key<TAB>value" line; line breaks inside the value become blanks.
void appendField(QByteArray* text, const char* key, const QByteArray& value)
{
    QByteArray line = value;
    line.replace('\r', ' ').replace('\n', ' ').replace('\t', ' ');
    text->append(key);
    text->append('\t');
    text->append(line);
    text->append('\n');
}

void appendField(QByteArray* text, const char* key, const QString& value)
{
    appendField(text, key, value.toUtf8());
}

QString plainComment(const QString& html)
{
    QTextDocument document;
    document.setHtml(html);
    QString plain = document.toPlainText();
    plain.replace(QChar::ParagraphSeparator, QLatin1Char(' '))
        .replace(QChar::LineSeparator, QLatin1Char(' '))
        .replace(QChar::Nbsp, QLatin1Char(' '));
    return plain.simplified();
}

QByteArray timestampText(const QDateTime& time)
{
    return time.isValid() ? time.toUTC().toString(Qt::ISODateWithMs).toLatin1() : QByteArray();
}

QByteArray sectionValue(const IniSection* section, const char* key)
{
    return section ? section->value(key) : QByteArray();
}

// The shot archives that sit beside a composition, by ID.
QString findShotFile(const QString& compositionPath, const QByteArray& id)
{
    const QDir dir = QFileInfo(compositionPath).absoluteDir();
    const QStringList files = dir.entryList({QStringLiteral("*.ovxshot")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        QString error;
        std::unique_ptr<ScopeShotArchive> shot(CliIo::loadShot(dir.filePath(file), nullptr, &error));
        if (shot && shot->id() == id)
            return file;
    }
    return {};
}

} // namespace

QByteArray ArchiveCommands::kindName(int kind)
{
    switch (kind) {
    case 1:
        return "choice";
    case 3:
        return "hexadecimal";
    case 4:
        return "binary";
    case 7:
        return "time of day";
    default:
        return "number";
    }
}

QByteArray ArchiveCommands::infoText(ScopeElementArchive* element, const QString& path)
{
    QByteArray text;
    auto* composition = qobject_cast<ScopeCompositionArchive*>(element);
    appendField(&text, "kind", QByteArray(composition ? "composition" : "shot"));
    appendField(&text, "name", element->name());
    appendField(&text, "id", element->id());
    appendField(&text, "read-out", QString::fromLatin1(element->readOutText()));
    appendField(&text, "timestamp", timestampText(element->timestamp()));
    appendField(&text, "host", QString::fromLatin1(element->hostName()));
    appendField(&text, "public", QByteArray(element->isPublic() ? "yes" : "no"));
    appendField(&text, "comment", element->isCommentEmpty() ? QString() : plainComment(element->comment()));

    if (composition) {
        const QList<QByteArray> ids = composition->usedShotIdentifiers();
        appendField(&text, "shot count", QByteArray::number(ids.size()));
        for (const QByteArray& id : ids) {
            const QString file = findShotFile(path, id);
            text.append("shot\t" + id + '\t' + (file.isEmpty() ? QByteArray("(missing)") : file.toUtf8()) + '\n');
        }
        return text;
    }

    auto* archive = static_cast<ScopeShotArchive*>(element);
    ScopeShot shot;
    shot.setArchive(archive);
    shot.load();
    QByteArray timeBase = CliIo::shortestNumber(shot.timeBase() / 10.0);
    appendField(&text, "time base (us)", timeBase);
    const IniSection* data = archive->dataSection();
    appendField(&text, "trigger index", sectionValue(data, ScopeArchiveKeys::TriggerIndex));
    appendField(&text, "frame count", sectionValue(data, ScopeArchiveKeys::FrameCount));
    appendField(&text, "channel count", sectionValue(data, ScopeArchiveKeys::ChannelCount));
    const QList<int> numbers = shot.channelNumbers();
    appendField(&text, "trace count", QByteArray::number(numbers.size()));
    for (int number : numbers) {
        const ScopeTrace* trace = shot.trace(number);
        const SimpleType* type = DatatypeProvider::instance()->simpleType(trace->physicalDatatype());
        const QByteArray typeName = type ? type->name().toUtf8() : QByteArray::number(trace->physicalDatatype());
        QByteArray line = "trace\t" + QByteArray::number(number);
        for (const QByteArray& field : {trace->name().toUtf8(), trace->measure().toUtf8(), typeName,
                                        QByteArray::number(trace->decimalPlaces()),
                                        kindName(trace->parameterKind())}) {
            QByteArray clean = field;
            clean.replace('\t', ' ').replace('\n', ' ').replace('\r', ' ');
            line += '\t' + clean;
        }
        text.append(line + '\n');
    }
    return text;
}

int ArchiveCommands::info(const QString& path)
{
    QString error;
    std::unique_ptr<ScopeElementArchive> element(CliIo::loadElement(path, nullptr, &error));
    if (!element) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    CliIo::printOut(infoText(element.get(), path));
    return ExitStatus::Success;
}

int ArchiveCommands::createFromReadOut(const QString& readOutPath, const QString& outputPath)
{
    QByteArray readOut;
    QString error;
    if (!CliIo::readFile(readOutPath, &readOut, &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->createFromReadOut(readOut)) {
        CliIo::printError(QStringLiteral("%1: is already an archive, not a read-out").arg(readOutPath));
        return ExitStatus::Failure;
    }
    // A read-out always carries its data; anything else is not one.
    if (!archive->dataSection() || !archive->shotSection()) {
        CliIo::printError(QStringLiteral("%1: not a read-out (no [Data] or [ScopeShot] section)").arg(readOutPath));
        return ExitStatus::Failure;
    }
    if (!CliIo::writeFile(outputPath, archive->toByteArray(), &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}

int ArchiveCommands::exportCsv(const QString& shotPath, const QString& outputPath)
{
    QString error;
    std::unique_ptr<ScopeShotArchive> archive(CliIo::loadShot(shotPath, nullptr, &error));
    if (!archive) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    // The library writes the file itself; it goes to a scratch file first so
    // that the target is only ever replaced as a whole.
    QTemporaryDir scratch;
    if (!scratch.isValid()) {
        CliIo::printError(QStringLiteral("cannot create a temporary folder: %1").arg(scratch.errorString()));
        return ExitStatus::Failure;
    }
    const QString scratchFile = scratch.filePath(QStringLiteral("export.csv"));
    if (!archive->exportCsv(scratchFile)) {
        CliIo::printError(QStringLiteral("%1: cannot write the export").arg(outputPath));
        return ExitStatus::Failure;
    }
    QByteArray csv;
    if (!CliIo::readFile(scratchFile, &csv, &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    // The export names the file it was written to: name the real target.
    const QByteArray scratchLine = "*,path of file,\"" + scratchFile.toLatin1() + "\"\r\n";
    const QByteArray targetLine = "*,path of file,\"" + outputPath.toLatin1() + "\"\r\n";
    const qsizetype at = csv.indexOf(scratchLine);
    if (at >= 0)
        csv.replace(at, scratchLine.size(), targetLine);
    if (!CliIo::writeFile(outputPath, csv, &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}

int ArchiveCommands::exportRecipe(const QString& shotPath, const QString& outputPath)
{
    QString error;
    std::unique_ptr<ScopeShotArchive> archive(CliIo::loadShot(shotPath, nullptr, &error));
    if (!archive) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    if (!CliIo::writeFile(outputPath, archive->viewRecipe(), &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}

int ArchiveCommands::applyRecipe(const QString& recipePath, const QString& shotPath, bool channelsOnly)
{
    QByteArray recipe;
    QString error;
    if (!CliIo::readFile(recipePath, &recipe, &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    std::unique_ptr<ScopeShotArchive> archive(CliIo::loadShot(shotPath, nullptr, &error));
    if (!archive) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    if (!archive->applyViewRecipe(recipe, channelsOnly)) {
        CliIo::printError(QStringLiteral("%1: no channel of %2 matches the recipe").arg(recipePath, shotPath));
        return ExitStatus::Failure;
    }
    if (!CliIo::writeFile(shotPath, archive->toByteArray(), &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}
