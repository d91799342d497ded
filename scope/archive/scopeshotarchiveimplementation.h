// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeshotarchive.h"

#include "iniparser.h"

/*! \brief The library's shot archive: the whole recording in one ini document.

    There is no cache beside the document: every getter reads it, every
    setter writes it and signals scopeElementChanged().
*/
class ScopeShotArchiveImplementation : public ScopeShotArchive
{
    Q_OBJECT

public:
    explicit ScopeShotArchiveImplementation(QObject* parent = nullptr);
    ~ScopeShotArchiveImplementation() override;

    QByteArray id() const override;
    QDateTime timestamp() const override;
    QByteArray readOutText() const override;
    QByteArray hostName() const override;
    bool fromByteArray(const QByteArray& bytes) override;
    QByteArray toByteArray() override;
    QString name() const override;
    void setName(const QString& name) override;
    QString comment() const override;
    bool isCommentEmpty() const override;
    void setComment(const QString& comment) override;
    bool editComment(QWidget* parent) override;
    bool isPublic() const override;
    void setPublic(bool isPublic) override;

    bool createFromReadOut(const QByteArray& readOut) override;
    bool exportCsv(const QString& fileName) override;
    bool hasChannelViewSettings() const override;
    QByteArray viewRecipe() const override;
    bool applyViewRecipe(const QByteArray& recipe, bool channelsOnly) override;
    KlIniParser::IniParser* iniParser() override;
    KlIniParser::IniSection* archiveSection() const override;
    KlIniParser::IniSection* sceneSection() const override;
    KlIniParser::IniSection* shotSection() const override;
    KlIniParser::IniSection* dataSection() const override;
    KlIniParser::IniSection* triggerLogicSection() const override;
    KlIniParser::IniSection* triggerSection(quint32 index) const override;
    KlIniParser::IniSection* channelSection(quint32 index) const override;

public Q_SLOTS:
    /*! \brief Marks the archive as needing to be saved (the scene's changes land here). */
    void setNeedSave();

private:
    QByteArray archiveValue(QByteArrayView key) const;

    KlIniParser::IniParser m_iniParser;
};
