// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QString>

#include <optional>

class ScopeShot;
class ScopeShotArchive;
class ScopeTrace;

/*! \brief The ovscope commands that measure a shot: the measurement table
    between markers A and B, and the amplitude spectra of the frequency view. */
class AnalysisCommands
{
public:
    /*! \brief Marker times, nanoseconds from the trigger; unset ones come from the archive. */
    struct Markers
    {
        std::optional<qint64> a;
        std::optional<qint64> b;
    };

    /*! \brief Prints, for each trace in \a channels (all when empty), "# N name"
        and the twelve rows of the measurement table. */
    static int measure(const QString& shotPath, const Markers& markers, const QList<int>& channels);

    /*! \brief Writes the amplitude spectra of every trace between the markers
        as CSV to \a outputPath ("-" or empty for stdout). */
    static int spectrum(const QString& shotPath, const Markers& markers, int windowFunction,
                        const QString& outputPath);

    /*! \brief The marker positions stored in \a archive ("MarkerPosition_0A/B"
        of its scene section, read by the markers themselves), overridden by \a markers. */
    static void resolveMarkers(ScopeShotArchive* archive, const Markers& markers, qint64* a, qint64* b);

    /*! \brief The twelve "label<TAB>value" rows of the measurement table of
        \a trace for markers \a a and \a b. */
    static QByteArray measurementRows(ScopeTrace* trace, qint64 a, qint64 b);

    /*! \brief The spectrum CSV of every trace of \a shot for markers \a a and
        \a b; false with \a error when the traces do not cover the interval. */
    static bool spectrumCsv(ScopeShot* shot, qint64 a, qint64 b, int windowFunction, QByteArray* csv,
                            QString* error);
};
