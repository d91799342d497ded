// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>

class ScopeShotArchive;

/*! \brief Writes the sample recordings of a drive: deterministic read-outs of
    simulated drive physics, turned into shot archives and a composition by
    the library's own archive classes.

    Recordings (file base names):
    - "antrieb-sprung": speed step 0 → 1500 1/min with a stiff speed controller;
    - "antrieb-sprung-weich": the same step with a soft controller setting;
    - "phasenstrom": phase currents U, V, W with 5th and 7th harmonics;
    - "antrieb-bremsung": a read-out document (no archive yet) of a braking
      run that ends in a DC-link overvoltage fault;
    - "sprungvergleich": a composition of the two steps.
*/
class SampleGenerator
{
public:
    /*! \brief Sampling period of every recording, in microseconds. */
    static constexpr double TimeBaseMicroseconds = 62.5;
    static constexpr qint64 DefaultFrames = 4000;
    static constexpr qint64 MinimumFrames = 2;
    static constexpr qint64 MaximumFrames = 20000000;
    static constexpr int MaximumChannels = 64;
    /*! \brief Upper bound of frames × channels of one recording. */
    static constexpr qint64 MaximumValues = 100000000;

    enum class Recording { Step, SoftStep, PhaseCurrents, Braking };

    /*! \brief \a frames per recording; \a channels per recording, 0 for each
        recording's own set (fewer takes the first ones, more adds
        measurement channels). */
    explicit SampleGenerator(qint64 frames = DefaultFrames, int channels = 0);

    /*! \brief The read-out document (sections "ScopeShot", "TriggerLogic",
        "Trigger_0", "ScopeChannel_" N and "Data") of \a recording. */
    QByteArray readOut(Recording recording) const;

    /*! \brief The shot archive text of \a recording, made from its read-out
        by ScopeShotArchive::createFromReadOut, named, commented and stamped
        with a fixed read-out time. Empty when the library refuses. */
    QByteArray shotArchive(Recording recording) const;

    /*! \brief The composition of the two step recordings. */
    QByteArray composition() const;

    /*! \brief Writes every recording into \a folder (created when missing);
        \a written receives the paths in the order written. With
        \a keepExisting, files that are already there stay as they are (a
        user's edited samples) and are not listed. */
    bool writeAll(const QString& folder, QStringList* written, QString* error, bool keepExisting = false) const;

    /*! \brief File base name of \a recording. */
    static QString baseName(Recording recording);
    /*! \brief Fixed read-out time of \a recording. */
    static QDateTime readOutTime(Recording recording);

    /*! \brief The fixed host name written into the samples. */
    static QByteArray hostName();

private:
    std::unique_ptr<ScopeShotArchive> makeShotArchive(Recording recording) const;
    /*! A small archive with nothing but the ID of \a archive. */
    static std::unique_ptr<ScopeShotArchive> identityOf(ScopeShotArchive* archive);
    static QByteArray compositionOf(ScopeShotArchive* step, ScopeShotArchive* soft);

    qint64 m_frames;
    int m_channels;
};
