// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeshotarchiveimplementation.h"

#include "scopearchivecodec.h"
#include "scopearchivekeys.h"
#include "scopecsvexport.h"
#include "scopeelementcomment.h"
#include "system.h"

#include <QtCore/QLocale>

#include <array>
#include <limits>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

namespace {

constexpr char TimeFormat[] = "yyyyMMdd_hhmmsszzz";

// Keys that identify the recorded source of a channel: a recipe's view
// settings only go onto a channel that recorded the same thing.
constexpr std::array<const char*, 9> IdentifyingKeys = {
    ScopeArchiveKeys::SourceType, ScopeArchiveKeys::ParameterValueAddress,
    ScopeArchiveKeys::SignalLabelName, ScopeArchiveKeys::PhysicalAddress,
    ScopeArchiveKeys::PhysicalDatatype, ScopeArchiveKeys::ChannelName,
    ScopeArchiveKeys::Measure, ScopeArchiveKeys::DecimalPlaces,
    ScopeArchiveKeys::ParameterKind};

// For the channels-only form only the shape of the value has to agree.
constexpr std::array<const char*, 3> ValueShapeKeys = {
    ScopeArchiveKeys::PhysicalDatatype, ScopeArchiveKeys::DecimalPlaces,
    ScopeArchiveKeys::ParameterKind};

// The per-trace view state.
constexpr std::array<const char*, 8> ChannelViewKeys = {
    ScopeArchiveKeys::ViewVerticalOffset, ScopeArchiveKeys::ViewScalingFactor,
    ScopeArchiveKeys::ViewOff, ScopeArchiveKeys::ViewGround,
    ScopeArchiveKeys::ViewInverted, ScopeArchiveKeys::BinaryView,
    ScopeArchiveKeys::BinaryViewMask, ScopeArchiveKeys::BinaryScalingFactorBackup};

// The view state plus the trace colour: what the full recipe form copies.
constexpr std::array<const char*, 9> RecipeViewKeys = {
    ScopeArchiveKeys::ViewVerticalOffset, ScopeArchiveKeys::ViewScalingFactor,
    ScopeArchiveKeys::ViewOff, ScopeArchiveKeys::ViewGround,
    ScopeArchiveKeys::ViewInverted, ScopeArchiveKeys::Color,
    ScopeArchiveKeys::BinaryView, ScopeArchiveKeys::BinaryViewMask,
    ScopeArchiveKeys::BinaryScalingFactorBackup};

// Everything a recipe carries of a channel: its view state and its identity.
constexpr std::array<const char*, 18> RecipeChannelKeys = {
    ScopeArchiveKeys::ViewVerticalOffset, ScopeArchiveKeys::ViewScalingFactor,
    ScopeArchiveKeys::ViewOff, ScopeArchiveKeys::ViewGround,
    ScopeArchiveKeys::ViewInverted, ScopeArchiveKeys::Color,
    ScopeArchiveKeys::BinaryView, ScopeArchiveKeys::BinaryViewMask,
    ScopeArchiveKeys::BinaryScalingFactorBackup, ScopeArchiveKeys::SourceType,
    ScopeArchiveKeys::ParameterValueAddress, ScopeArchiveKeys::SignalLabelName,
    ScopeArchiveKeys::PhysicalAddress, ScopeArchiveKeys::PhysicalDatatype,
    ScopeArchiveKeys::ChannelName, ScopeArchiveKeys::Measure,
    ScopeArchiveKeys::DecimalPlaces, ScopeArchiveKeys::ParameterKind};

constexpr std::array<const char*, 3> RecipeShotKeys = {
    ScopeArchiveKeys::TimeBase, ScopeArchiveKeys::ViewSliderLeft,
    ScopeArchiveKeys::ViewSliderRight};

bool isChannelSectionName(QByteArrayView name, quint32* index = nullptr)
{
    quint64 value = 0;
    if (!ScopeArchiveCodec::indexedName(name, ScopeArchiveKeys::ChannelSectionPrefix, &value,
                                        std::numeric_limits<quint32>::max()))
        return false;
    if (index)
        *index = quint32(value);
    return true;
}

template<std::size_t N>
bool keysMatch(const IniSection& a, const IniSection& b, const std::array<const char*, N>& keys)
{
    for (const char* key : keys) {
        if (!a.contains(key) || !b.contains(key) || a.valueView(key) != b.valueView(key))
            return false;
    }
    return true;
}

template<std::size_t N>
void copyPresentKeys(const IniSection& from, IniSection* to, const std::array<const char*, N>& keys)
{
    for (const char* key : keys) {
        if (from.contains(key))
            to->setValue(key, from.valueView(key));
    }
}

QByteArray indexedName(const char* prefix, quint32 index)
{
    return QByteArray(prefix) + QByteArray::number(index);
}

} // namespace

ScopeShotArchiveImplementation::ScopeShotArchiveImplementation(QObject* parent)
    : ScopeShotArchive(parent)
{
}

ScopeShotArchiveImplementation::~ScopeShotArchiveImplementation() = default;

QByteArray ScopeShotArchiveImplementation::archiveValue(QByteArrayView key) const
{
    const IniSection* section = archiveSection();
    return section ? section->value(key) : QByteArray();
}

QByteArray ScopeShotArchiveImplementation::id() const
{
    return archiveValue(ScopeArchiveKeys::Id);
}

QDateTime ScopeShotArchiveImplementation::timestamp() const
{
    return ScopeArchiveCodec::decodeTimestamp(archiveValue(ScopeArchiveKeys::ReadOutTimestamp));
}

QByteArray ScopeShotArchiveImplementation::readOutText() const
{
    return archiveValue(ScopeArchiveKeys::ReadOut);
}

QByteArray ScopeShotArchiveImplementation::hostName() const
{
    return archiveValue(ScopeArchiveKeys::HostName);
}

bool ScopeShotArchiveImplementation::fromByteArray(const QByteArray& bytes)
{
    // The type line is an ini comment: the parser skips it and the presence
    // of "Archive" alone decides.
    m_iniParser.setIniText(bytes);
    if (archiveSection())
        return true;
    m_iniParser.clear();
    return false;
}

QByteArray ScopeShotArchiveImplementation::toByteArray()
{
    return QByteArray(ScopeArchiveKeys::ShotTypeLine) + "\r\n\r\n"
        + m_iniParser.getIniTextWithoutByteOrderMarker();
}

QString ScopeShotArchiveImplementation::name() const
{
    return QString::fromLatin1(archiveValue(ScopeArchiveKeys::Name));
}

void ScopeShotArchiveImplementation::setName(const QString& name)
{
    if (name == this->name())
        return;
    m_iniParser.findOrCreateSection(ScopeArchiveKeys::ArchiveSection)
        ->setValue(ScopeArchiveKeys::Name, name.toLatin1());
    Q_EMIT scopeElementChanged();
}

QString ScopeShotArchiveImplementation::comment() const
{
    ScopeElementComment elementComment(const_cast<ScopeShotArchiveImplementation*>(this));
    return elementComment.comment();
}

bool ScopeShotArchiveImplementation::isCommentEmpty() const
{
    ScopeElementComment elementComment(const_cast<ScopeShotArchiveImplementation*>(this));
    return elementComment.isCommentEmpty();
}

void ScopeShotArchiveImplementation::setComment(const QString& comment)
{
    if (ScopeElementComment(this).changeComment(comment))
        Q_EMIT scopeElementChanged();
}

bool ScopeShotArchiveImplementation::editComment(QWidget* parent)
{
    if (!ScopeElementComment(this).editAndReportChange(parent))
        return false;
    Q_EMIT scopeElementChanged();
    return true;
}

bool ScopeShotArchiveImplementation::isPublic() const
{
    // Without an explicit flag an archive is public.
    const IniSection* section = archiveSection();
    if (!section || !section->contains(ScopeArchiveKeys::IsPublic))
        return true;
    return section->valueView(ScopeArchiveKeys::IsPublic) == QByteArrayView("1");
}

void ScopeShotArchiveImplementation::setPublic(bool isPublic)
{
    // Always signalled: the host stores the flag even when it did not change.
    m_iniParser.findOrCreateSection(ScopeArchiveKeys::ArchiveSection)
        ->setValue(ScopeArchiveKeys::IsPublic, isPublic ? QByteArrayView("1") : QByteArrayView("0"));
    Q_EMIT scopeElementChanged();
}

bool ScopeShotArchiveImplementation::createFromReadOut(const QByteArray& readOut)
{
    m_iniParser.setIniText(readOut);
    // A read-out that already is an archive is refused.
    if (archiveSection()) {
        m_iniParser.clear();
        return false;
    }
    IniSection* archive = m_iniParser.findOrCreateSection(ScopeArchiveKeys::ArchiveSection);

    const QByteArray host = System::instance()->hostName().toLatin1();
    const QDateTime now = QDateTime::currentDateTime();
    const QByteArray timestampHex = ScopeArchiveCodec::encodeTimestamp(now);
    const QByteArray timeText = now.toString(QLatin1String(TimeFormat)).toLatin1();

    QByteArray id = host + '_' + timeText;
    if (const IniSection* data = dataSection()) {
        id = data->value(ScopeArchiveKeys::SerialNumber) + '_'
            + data->value(ScopeArchiveKeys::LivingSpace) + '_'
            + data->value(ScopeArchiveKeys::StartTime) + '_'
            + data->value(ScopeArchiveKeys::TriggerTime);
    }
    archive->setValue(ScopeArchiveKeys::Id, id);

    const auto setIfEmpty = [archive](const char* key, const QByteArray& value) {
        if (archive->valueView(key).isEmpty())
            archive->setValue(key, value);
    };
    const QLocale locale;
    setIfEmpty(ScopeArchiveKeys::Name, timeText);
    setIfEmpty(ScopeArchiveKeys::HostName, host);
    setIfEmpty(ScopeArchiveKeys::ReadOut,
               (locale.toString(now.date(), QLocale::ShortFormat) + QLatin1Char(' ')
                + locale.toString(now.time(), QLocale::LongFormat)).toLatin1());
    setIfEmpty(ScopeArchiveKeys::ReadOutTimestamp, timestampHex);

    Q_EMIT scopeElementChanged();
    return true;
}

bool ScopeShotArchiveImplementation::exportCsv(const QString& fileName)
{
    return ScopeCsvExport::write(m_iniParser, name(), fileName);
}

bool ScopeShotArchiveImplementation::hasChannelViewSettings() const
{
    for (const QByteArray& sectionName : m_iniParser.sectionNames()) {
        if (!isChannelSectionName(sectionName))
            continue;
        const IniSection* section = m_iniParser.section(sectionName);
        for (const char* key : ChannelViewKeys) {
            if (section->contains(key))
                return true;
        }
    }
    return false;
}

QByteArray ScopeShotArchiveImplementation::viewRecipe() const
{
    IniParser recipe;
    IniSection* recipeShot = recipe.findOrCreateSection(ScopeArchiveKeys::ShotSection);
    if (const IniSection* shot = shotSection())
        copyPresentKeys(*shot, recipeShot, RecipeShotKeys);

    IniSection* recipeScene = recipe.findOrCreateSection(ScopeArchiveKeys::SceneSection);
    if (const IniSection* scene = sceneSection()) {
        for (qsizetype i = 0; i < scene->count(); ++i)
            recipeScene->setValue(scene->keyAt(i), scene->valueAt(i));
    }

    for (const QByteArray& sectionName : m_iniParser.sectionNames()) {
        if (!isChannelSectionName(sectionName))
            continue;
        IniSection* recipeChannel = recipe.findOrCreateSection(sectionName);
        copyPresentKeys(*m_iniParser.section(sectionName), recipeChannel, RecipeChannelKeys);
    }
    return recipe.getIniTextWithoutByteOrderMarker();
}

bool ScopeShotArchiveImplementation::applyViewRecipe(const QByteArray& recipe, bool channelsOnly)
{
    IniParser recipeParser;
    recipeParser.setIniText(recipe);

    int matchedChannels = 0;
    for (const QByteArray& sectionName : recipeParser.sectionNames()) {
        quint32 index = 0;
        if (!isChannelSectionName(sectionName, &index))
            continue;
        const IniSection* from = recipeParser.section(sectionName);
        IniSection* to = channelSection(index);
        if (!from || !to)
            continue;
        if (channelsOnly) {
            if (!keysMatch(*from, *to, ValueShapeKeys))
                continue;
            copyPresentKeys(*from, to, ChannelViewKeys);
        } else {
            if (!keysMatch(*from, *to, IdentifyingKeys))
                continue;
            copyPresentKeys(*from, to, RecipeViewKeys);
        }
        ++matchedChannels;
    }
    if (matchedChannels == 0)
        return false;

    if (channelsOnly) {
        Q_EMIT scopeElementsChanged();
        return true;
    }

    const IniSection* recipeShot = recipeParser.section(ScopeArchiveKeys::ShotSection);
    IniSection* shot = shotSection();
    if (recipeShot && shot) {
        for (const char* key : {ScopeArchiveKeys::ViewSliderLeft, ScopeArchiveKeys::ViewSliderRight}) {
            if (recipeShot->contains(key))
                shot->setValue(key, recipeShot->valueView(key));
        }
    }
    if (const IniSection* recipeScene = recipeParser.section(ScopeArchiveKeys::SceneSection)) {
        IniSection* scene = m_iniParser.findOrCreateSection(ScopeArchiveKeys::SceneSection);
        for (qsizetype i = 0; i < recipeScene->count(); ++i)
            scene->setValue(recipeScene->keyAt(i), recipeScene->valueAt(i));
    }
    Q_EMIT scopeElementChanged();
    return true;
}

KlIniParser::IniParser* ScopeShotArchiveImplementation::iniParser()
{
    return &m_iniParser;
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::archiveSection() const
{
    return m_iniParser.section(ScopeArchiveKeys::ArchiveSection);
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::sceneSection() const
{
    return m_iniParser.section(ScopeArchiveKeys::SceneSection);
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::shotSection() const
{
    return m_iniParser.section(ScopeArchiveKeys::ShotSection);
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::dataSection() const
{
    return m_iniParser.section(ScopeArchiveKeys::DataSection);
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::triggerLogicSection() const
{
    return m_iniParser.section(ScopeArchiveKeys::TriggerLogicSection);
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::triggerSection(quint32 index) const
{
    return m_iniParser.section(indexedName(ScopeArchiveKeys::TriggerSectionPrefix, index));
}

KlIniParser::IniSection* ScopeShotArchiveImplementation::channelSection(quint32 index) const
{
    return m_iniParser.section(indexedName(ScopeArchiveKeys::ChannelSectionPrefix, index));
}

void ScopeShotArchiveImplementation::setNeedSave()
{
    Q_EMIT scopeElementChanged();
}
