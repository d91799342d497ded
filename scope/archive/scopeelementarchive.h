// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ovscope_export.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QObject>
#include <QtCore/QString>

class QWidget;

/*! \brief Any stored scope element (a shot or a composition) as the host sees it.

    The host creates archives through the factories of the derived interfaces,
    hands them their stored text with fromByteArray() and stores toByteArray()
    when scopeElementChanged() or scopeElementsChanged() tells it to.
*/
class OVSCOPE_EXPORT ScopeElementArchive : public QObject
{
    Q_OBJECT

public:
    explicit ScopeElementArchive(QObject* parent = nullptr);
    ~ScopeElementArchive() override;

public Q_SLOTS:
    virtual QByteArray id() const = 0;
    virtual QDateTime timestamp() const = 0;
    virtual QByteArray readOutText() const = 0;
    virtual QByteArray hostName() const = 0;
    virtual bool fromByteArray(const QByteArray& bytes) = 0;
    virtual QByteArray toByteArray() = 0;
    virtual QString name() const = 0;
    virtual void setName(const QString& name) = 0;
    virtual QString comment() const = 0;
    virtual bool isCommentEmpty() const = 0;
    virtual void setComment(const QString& comment) = 0;
    virtual bool editComment(QWidget* parent) = 0;
    virtual bool isPublic() const = 0;
    virtual void setPublic(bool isPublic) = 0;

Q_SIGNALS:
    /*! \brief This element changed and needs to be saved. */
    void scopeElementChanged();
    /*! \brief Several elements may have changed and need to be saved. */
    void scopeElementsChanged();
};
