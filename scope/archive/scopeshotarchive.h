// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementarchive.h"

namespace KlIniParser {
class IniParser;
class IniSection;
}

/*! \brief One oscilloscope recording ("shot") stored as an archive document. */
class OVSCOPE_EXPORT ScopeShotArchive : public ScopeElementArchive
{
    Q_OBJECT

public:
    explicit ScopeShotArchive(QObject* parent = nullptr);
    ~ScopeShotArchive() override;

    /*! \brief A new, empty shot archive owned by \a parent. */
    static ScopeShotArchive* create(QObject* parent);

public Q_SLOTS:
    /*! \brief Makes an archive of a raw read-out by adding its "Archive"
        section; false, leaving an empty archive, when the text already is one. */
    virtual bool createFromReadOut(const QByteArray& readOut) = 0;
    /*! \brief Writes the recording as CSV; false only when the file cannot
        be written. */
    virtual bool exportCsv(const QString& fileName) = 0;
    /*! \brief Whether any channel carries view settings of its own. */
    virtual bool hasChannelViewSettings() const = 0;
    /*! \brief The view settings (sliders, scene, channel views) as a
        separate ini text, to be applied to other recordings. */
    virtual QByteArray viewRecipe() const = 0;
    /*! \brief Applies a recipe to the channels that match it; false, with
        nothing changed, when none matches. The full form also takes the
        sliders and the scene and signals scopeElementChanged(); the
        channels-only form (\a channelsOnly) matches by value type alone and
        signals scopeElementsChanged(). */
    virtual bool applyViewRecipe(const QByteArray& recipe, bool channelsOnly) = 0;
    /*! \brief The archive's whole document. */
    virtual KlIniParser::IniParser* iniParser() = 0;
    /*! \brief Sections of the document, or null when missing; a look-up never
        creates a section. */
    virtual KlIniParser::IniSection* archiveSection() const = 0;
    virtual KlIniParser::IniSection* sceneSection() const = 0;
    virtual KlIniParser::IniSection* shotSection() const = 0;
    virtual KlIniParser::IniSection* dataSection() const = 0;
    virtual KlIniParser::IniSection* triggerLogicSection() const = 0;
    /*! \brief "Trigger_<index>". */
    virtual KlIniParser::IniSection* triggerSection(quint32 index) const = 0;
    /*! \brief "ScopeChannel_<index>". */
    virtual KlIniParser::IniSection* channelSection(quint32 index) const = 0;
};
