// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

#include <memory>

class ScopeCompositionArchive;
class ScopeElementArchive;
class ScopeShotArchive;
class QObject;

/*! \brief Exit statuses of the ovscope tool. */
namespace ExitStatus {
inline constexpr int Success = 0;
inline constexpr int Failure = 1; //!< bad input: missing file, not an archive, no such trace …
inline constexpr int Usage = 2; //!< bad command line
}

/*! \brief File access, messages and number texts shared by the commands. */
class CliIo
{
public:
    /*! \brief Writes "ovscope: <message>" and a line end to stderr. */
    static void printError(const QString& message);
    /*! \brief Writes \a bytes to stdout as they are. */
    static void printOut(const QByteArray& bytes);

    /*! \brief Reads the whole file \a path; on failure \a error says why.
        Files beyond MaximumFileSize are refused before anything is read. */
    static bool readFile(const QString& path, QByteArray* bytes, QString* error);

    /*! \brief Writes \a bytes to \a path through a QSaveFile, so a failed write
        never replaces the previous file; "-" writes to stdout. */
    static bool writeFile(const QString& path, const QByteArray& bytes, QString* error);

    /*! \brief The shortest text that reads back as exactly \a value, with "."
        whatever the locale; "nan", "inf", "-inf" for the special values. */
    static QByteArray shortestNumber(double value);

    /*! \brief Appends \a value with \a decimals fixed decimals ("." always). */
    static void appendFixed(QByteArray* text, double value, int decimals);
    /*! \brief Appends \a value in decimal. */
    static void appendInteger(QByteArray* text, qint64 value);

    /*! \brief Whether \a bytes hold a composition archive (its type line). */
    static bool isCompositionText(const QByteArray& bytes);

    /*! \brief Loads the shot archive in \a path, child of \a parent.
        Null with \a error set when the file is missing, unreadable, not an
        archive or a composition. */
    static ScopeShotArchive* loadShot(const QString& path, QObject* parent, QString* error);

    /*! \brief Loads a shot or composition archive from \a path. */
    static ScopeElementArchive* loadElement(const QString& path, QObject* parent, QString* error);

    /*! \brief Largest file the tool reads (archives are text; a bigger file
        is not one of ours). */
    static constexpr qint64 MaximumFileSize = qint64(1) << 31;
};
