// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopecompositionarchiveimplementation.h"

#include "scopearchivecodec.h"
#include "scopearchivekeys.h"
#include "scopeelementcomment.h"
#include "scopeshotarchive.h"
#include "system.h"


using KlIniParser::IniSection;

namespace {

// The text written by toByteArray() carries the ini text's byte-order mark
// after the type line, where the parser would take it for part of the first
// section's line: drop a mark that opens the first line after the leading
// comments and blank lines.
QByteArray withoutInnerByteOrderMark(const QByteArray& bytes)
{
    static constexpr char ByteOrderMark[] = "\xef\xbb\xbf";
    qsizetype lineStart = 0;
    while (lineStart < bytes.size()) {
        const qsizetype lineEnd = bytes.indexOf('\n', lineStart);
        const QByteArrayView line = QByteArrayView(bytes).sliced(
            lineStart, (lineEnd < 0 ? bytes.size() : lineEnd) - lineStart);
        if (line.startsWith(ByteOrderMark)) {
            if (lineStart == 0)
                return bytes; // a leading mark is the parser's own business
            QByteArray result = bytes;
            result.remove(lineStart, 3);
            return result;
        }
        if (!line.trimmed().isEmpty() && !line.trimmed().startsWith(';'))
            return bytes;
        if (lineEnd < 0)
            return bytes;
        lineStart = lineEnd + 1;
    }
    return bytes;
}

QByteArray shotIdKey(qsizetype position)
{
    return QByteArray(ScopeArchiveKeys::ShotIdPrefix) + QByteArray::number(position);
}

} // namespace

ScopeCompositionArchiveImplementation::ScopeCompositionArchiveImplementation(QObject* parent)
    : ScopeCompositionArchive(parent)
{
}

ScopeCompositionArchiveImplementation::~ScopeCompositionArchiveImplementation() = default;

QByteArray ScopeCompositionArchiveImplementation::id() const
{
    return m_id;
}

QDateTime ScopeCompositionArchiveImplementation::timestamp() const
{
    return m_createTimestamp;
}

QByteArray ScopeCompositionArchiveImplementation::readOutText() const
{
    // A composition is made, not read out: there is no read-out text.
    return {};
}

QByteArray ScopeCompositionArchiveImplementation::hostName() const
{
    return m_hostName.toLatin1();
}

bool ScopeCompositionArchiveImplementation::fromByteArray(const QByteArray& bytes)
{
    m_iniParser.setIniText(withoutInnerByteOrderMark(bytes));
    const IniSection* archive = m_iniParser.section(ScopeArchiveKeys::ArchiveSection);
    if (!archive) {
        m_iniParser.clear();
        return false;
    }

    m_id = archive->value(ScopeArchiveKeys::Id);
    // Written as Latin-1 but read as UTF-8: names beyond ASCII do not survive
    // a round trip, which older archives rely on staying as they are.
    m_name = QString::fromUtf8(archive->valueView(ScopeArchiveKeys::Name));
    m_hostName = QString::fromLatin1(archive->valueView(ScopeArchiveKeys::HostName));
    m_createUserName = QString::fromLatin1(archive->valueView(ScopeArchiveKeys::CreateUserName));
    m_isPublic = !archive->contains(ScopeArchiveKeys::IsPublic)
        || archive->valueView(ScopeArchiveKeys::IsPublic) == QByteArrayView("1");
    m_createTimestamp = ScopeArchiveCodec::decodeTimestamp(archive->valueView(ScopeArchiveKeys::CreateTimestamp));

    m_usedShotIdentifiers.clear();
    if (const IniSection* used = m_iniParser.section(ScopeArchiveKeys::UsedShotIdentifiersSection)) {
        m_usedShotIdentifiers.reserve(used->count());
        for (qsizetype i = 0; i < used->count(); ++i)
            m_usedShotIdentifiers.append(used->valueAt(i).toByteArray());
    }
    return true;
}

QByteArray ScopeCompositionArchiveImplementation::toByteArray()
{
    IniSection* archive = m_iniParser.findOrCreateSection(ScopeArchiveKeys::ArchiveSection);
    IniSection* used = m_iniParser.findOrCreateSection(ScopeArchiveKeys::UsedShotIdentifiersSection);

    archive->setValue(ScopeArchiveKeys::Name, m_name.toLatin1());
    archive->setValue(ScopeArchiveKeys::Id, m_id);
    archive->setValue(ScopeArchiveKeys::HostName, m_hostName.toLatin1());
    archive->setValue(ScopeArchiveKeys::CreateUserName, m_createUserName.toLatin1());
    archive->setValue(ScopeArchiveKeys::IsPublic, m_isPublic ? QByteArrayView("1") : QByteArrayView("0"));
    archive->setValue(ScopeArchiveKeys::CreateTimestamp, ScopeArchiveCodec::encodeTimestamp(m_createTimestamp));

    // The section is written anew from the list, in order: any key a loaded
    // document had there (foreign names, "ShotId_" N out of order) would
    // otherwise come back as an extra shot or in another place. The section
    // keeps its place among the others.
    for (const QByteArray& key : used->keys())
        used->remove(key);
    for (qsizetype i = 0; i < m_usedShotIdentifiers.size(); ++i)
        used->setValue(shotIdKey(i), m_usedShotIdentifiers.at(i));

    return QByteArray(ScopeArchiveKeys::CompositionTypeLine) + "\r\n\r\n" + m_iniParser.getIniText();
}

QString ScopeCompositionArchiveImplementation::name() const
{
    return m_name;
}

void ScopeCompositionArchiveImplementation::setName(const QString& name)
{
    if (name == m_name)
        return;
    m_name = name;
    Q_EMIT scopeElementChanged();
}

QString ScopeCompositionArchiveImplementation::comment() const
{
    ScopeElementComment elementComment(const_cast<ScopeCompositionArchiveImplementation*>(this));
    return elementComment.comment();
}

bool ScopeCompositionArchiveImplementation::isCommentEmpty() const
{
    ScopeElementComment elementComment(const_cast<ScopeCompositionArchiveImplementation*>(this));
    return elementComment.isCommentEmpty();
}

void ScopeCompositionArchiveImplementation::setComment(const QString& comment)
{
    if (ScopeElementComment(this).changeComment(comment))
        Q_EMIT scopeElementChanged();
}

bool ScopeCompositionArchiveImplementation::editComment(QWidget* parent)
{
    if (!ScopeElementComment(this).editAndReportChange(parent))
        return false;
    Q_EMIT scopeElementChanged();
    return true;
}

bool ScopeCompositionArchiveImplementation::isPublic() const
{
    return m_isPublic;
}

void ScopeCompositionArchiveImplementation::setPublic(bool isPublic)
{
    // Always signalled, as for shot archives.
    m_isPublic = isPublic;
    Q_EMIT scopeElementChanged();
}

bool ScopeCompositionArchiveImplementation::create(const QList<ScopeShotArchive*>& shots)
{
    System* system = System::instance();
    m_hostName = system->hostName();
    m_createUserName = system->userName();
    m_createTimestamp = QDateTime::currentDateTime();
    m_id = m_hostName.toLatin1() + '_'
        + m_createTimestamp.toString(QStringLiteral("yyyyMMdd_hhmmsszzz")).toLatin1();
    m_name = QString::fromLatin1(m_id);
    for (const ScopeShotArchive* shot : shots) {
        if (shot)
            m_usedShotIdentifiers.append(shot->id());
    }
    return true;
}

QList<QByteArray> ScopeCompositionArchiveImplementation::usedShotIdentifiers() const
{
    return m_usedShotIdentifiers;
}

KlIniParser::IniParser* ScopeCompositionArchiveImplementation::iniParser()
{
    return &m_iniParser;
}

QString ScopeCompositionArchiveImplementation::createUserName() const
{
    return m_createUserName;
}
