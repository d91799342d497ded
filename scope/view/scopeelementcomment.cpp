// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeelementcomment.h"
#include "scopeelementcomment_p.h"

#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopearchivekeys.h"
#include "scopecompositionarchiveimplementation.h"
#include "scopeelementcommentdialog.h"
#include "scopeshotarchive.h"

#include <QtGui/QTextDocument>

ScopeElementCommentPrivate::ScopeElementCommentPrivate(ScopeElementComment* q, QObject* element)
    : element(element)
    , shotArchive(qobject_cast<ScopeShotArchive*>(element))
    , compositionArchive(qobject_cast<ScopeCompositionArchive*>(element))
    , q_ptr(q)
{
}

KlIniParser::IniSection* ScopeElementCommentPrivate::archiveSection(bool create) const
{
    KlIniParser::IniParser* document = nullptr;
    if (shotArchive) {
        document = shotArchive->iniParser();
    } else if (auto* composition = qobject_cast<ScopeCompositionArchiveImplementation*>(compositionArchive)) {
        document = composition->iniParser();
    }
    if (!document)
        return nullptr;
    return create ? document->findOrCreateSection(ScopeArchiveKeys::ArchiveSection)
                  : document->section(ScopeArchiveKeys::ArchiveSection);
}

QString ScopeElementCommentPrivate::elementName() const
{
    if (shotArchive)
        return shotArchive->name();
    if (compositionArchive)
        return compositionArchive->name();
    return {};
}

ScopeElementComment::ScopeElementComment(QObject* element)
    : QObject(element)
    , d_ptr(new ScopeElementCommentPrivate(this, element))
{
    d_ptr->setParent(this);
}

ScopeElementComment::~ScopeElementComment() = default;

QString ScopeElementComment::comment() const
{
    Q_D(const ScopeElementComment);
    const KlIniParser::IniSection* section = d->archiveSection(false);
    if (!section)
        return {};
    return ScopeArchiveCodec::decodeComment(section->valueView(ScopeArchiveKeys::Comment));
}

bool ScopeElementComment::isCommentEmpty() const
{
    const QString html = comment();
    if (html.isEmpty())
        return true;
    QTextDocument document;
    document.setHtml(html);
    return document.toPlainText().isEmpty();
}

void ScopeElementComment::setComment(const QString& html)
{
    Q_D(ScopeElementComment);
    if (KlIniParser::IniSection* section = d->archiveSection(true))
        section->setValue(ScopeArchiveKeys::Comment, ScopeArchiveCodec::encodeComment(html));
}

bool ScopeElementComment::editComment(QWidget* parent)
{
    Q_D(ScopeElementComment);
    ScopeElementCommentDialog dialog(d->elementName(), comment(), parent);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    setComment(dialog.html());
    return true;
}

bool ScopeElementComment::changeComment(const QString& html)
{
    if (html == comment())
        return false;
    setComment(html);
    return true;
}

bool ScopeElementComment::editAndReportChange(QWidget* parent)
{
    const QString before = comment();
    return editComment(parent) && comment() != before;
}
