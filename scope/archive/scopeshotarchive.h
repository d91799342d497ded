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
    virtual bool createFromReadOut(const QByteArray& readOut) = 0;
    virtual bool exportCsv(const QString& fileName) = 0;
    virtual bool hasChannelViewSettings() const = 0;
    virtual QByteArray viewRecipe() const = 0;
    virtual bool applyViewRecipe(const QByteArray& recipe, bool channelsOnly) = 0;
    virtual KlIniParser::IniParser* iniParser() = 0;
    virtual KlIniParser::IniSection* archiveSection() const = 0;
    virtual KlIniParser::IniSection* sceneSection() const = 0;
    virtual KlIniParser::IniSection* shotSection() const = 0;
    virtual KlIniParser::IniSection* dataSection() const = 0;
    virtual KlIniParser::IniSection* triggerLogicSection() const = 0;
    virtual KlIniParser::IniSection* triggerSection(quint32 index) const = 0;
    virtual KlIniParser::IniSection* channelSection(quint32 index) const = 0;
};
