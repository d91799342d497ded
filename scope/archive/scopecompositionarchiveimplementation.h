// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopecompositionarchive.h"

#include "iniparser.h"

/*! \brief The library's composition archive.

    Unlike the shot archive it keeps its properties in members and writes
    them into its document only in toByteArray(); the comment lives in the
    document's "Archive" section all the time.
*/
class ScopeCompositionArchiveImplementation : public ScopeCompositionArchive
{
    Q_OBJECT

public:
    explicit ScopeCompositionArchiveImplementation(QObject* parent = nullptr);
    ~ScopeCompositionArchiveImplementation() override;

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

    bool create(const QList<ScopeShotArchive*>& shots) override;
    QList<QByteArray> usedShotIdentifiers() const override;

    using ScopeCompositionArchive::create;

    /*! \brief The archive's document (the comment and the view read it). */
    KlIniParser::IniParser* iniParser();

    /*! \brief The user who created the composition. */
    QString createUserName() const;

private:
    QByteArray m_id;
    QString m_name;
    bool m_isPublic = true;
    QDateTime m_createTimestamp;
    QString m_hostName;
    QString m_createUserName;
    QList<QByteArray> m_usedShotIdentifiers;
    KlIniParser::IniParser m_iniParser;
};
