// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

class ScopeElementArchive;

/*! \brief The ovscope commands that work on archive text alone: info,
    create-from-readout, export-csv and the view recipes. Each returns an
    exit status (ExitStatus) and reports failures on stderr. */
class ArchiveCommands
{
public:
    /*! \brief Describes the shot or composition archive in \a path on stdout. */
    static int info(const QString& path);
    /*! \brief The info text of \a element, as info() prints it; \a path is
        used to find the shots of a composition beside it. */
    static QByteArray infoText(ScopeElementArchive* element, const QString& path);

    /*! \brief Makes the shot archive \a outputPath from the read-out \a readOutPath. */
    static int createFromReadOut(const QString& readOutPath, const QString& outputPath);

    /*! \brief Writes the CSV export of the shot archive \a shotPath to \a outputPath. */
    static int exportCsv(const QString& shotPath, const QString& outputPath);

    /*! \brief Writes the view recipe of \a shotPath to \a outputPath. */
    static int exportRecipe(const QString& shotPath, const QString& outputPath);

    /*! \brief Applies the recipe \a recipePath to \a shotPath and rewrites it atomically. */
    static int applyRecipe(const QString& recipePath, const QString& shotPath, bool channelsOnly);

    /*! \brief The name of display kind \a kind as info prints it. */
    static QByteArray kindName(int kind);
};
