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
    /*! \brief The element's identity; empty for an empty archive. */
    virtual QByteArray id() const = 0;
    /*! \brief When the element was read out (shot) or made (composition);
        invalid when unknown or unreadable. */
    virtual QDateTime timestamp() const = 0;
    /*! \brief The read-out time as text for people; empty for compositions. */
    virtual QByteArray readOutText() const = 0;
    /*! \brief The computer on which the element was made (Latin-1). */
    virtual QByteArray hostName() const = 0;
    /*! \brief Loads stored text; false, leaving an empty archive, when the
        text has no "Archive" section. */
    virtual bool fromByteArray(const QByteArray& bytes) = 0;
    /*! \brief The text to store: type line, empty line, ini text. */
    virtual QByteArray toByteArray() = 0;
    /*! \brief The display name. */
    virtual QString name() const = 0;
    /*! \brief Renames; signals scopeElementChanged() only when the name changes. */
    virtual void setName(const QString& name) = 0;
    /*! \brief The rich-text (HTML) comment; empty when there is none. */
    virtual QString comment() const = 0;
    /*! \brief Whether the comment holds no text (markup alone counts as empty). */
    virtual bool isCommentEmpty() const = 0;
    /*! \brief Stores the comment; signals scopeElementChanged() only when it changes. */
    virtual void setComment(const QString& comment) = 0;
    /*! \brief Opens the modal comment dialog over \a parent; true (and
        scopeElementChanged()) when it was accepted with a changed comment. */
    virtual bool editComment(QWidget* parent) = 0;
    /*! \brief Whether other users see the element; true unless stored otherwise. */
    virtual bool isPublic() const = 0;
    /*! \brief Sets the public flag; always signals scopeElementChanged(). */
    virtual void setPublic(bool isPublic) = 0;

Q_SIGNALS:
    /*! \brief This element changed and needs to be saved. */
    void scopeElementChanged();
    /*! \brief Several elements may have changed and need to be saved. */
    void scopeElementsChanged();
};
