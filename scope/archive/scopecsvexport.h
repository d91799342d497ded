// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>

namespace KlIniParser {
class IniParser;
}

/*! \brief The comma-separated text export of a shot archive document. */
namespace ScopeCsvExport {

/*! \brief Writes \a document as CSV to \a fileName, naming the shot \a shotName.

    Sample values are copied as the text the document holds. A regular file
    is written through a temporary file and only replaced when the export is
    complete; a device or pipe is written directly. Returns false when the file cannot be opened for writing (or
    the finished file cannot be put in place); a document without "ScopeShot"
    or "Data" gives an empty file and true.
*/
bool write(const KlIniParser::IniParser& document, const QString& shotName, const QString& fileName);

} // namespace ScopeCsvExport
