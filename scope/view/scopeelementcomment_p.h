// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeelementcomment.h"

#include <QtCore/QByteArrayView>

class ScopeCompositionArchive;
class ScopeShotArchive;

namespace KlIniParser {
class IniSection;
}

class ScopeElementCommentPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeElementComment)

public:
    ScopeElementCommentPrivate(ScopeElementComment* q, QObject* element);

    /*! The "Archive" section of the element's document; created on request. */
    KlIniParser::IniSection* archiveSection(bool create) const;
    QString elementName() const;

    QObject* const element;
    ScopeShotArchive* const shotArchive;
    ScopeCompositionArchive* const compositionArchive;

private:
    ScopeElementComment* const q_ptr;
};
