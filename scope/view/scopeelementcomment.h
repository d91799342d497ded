// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>

class QWidget;
class ScopeElementCommentPrivate;

/*! \brief The rich-text comment of a shot or composition archive.

    The comment lives in the element's own document, section "Archive", key
    "Comment", as the hex text of its compressed UTF-8 HTML. The object is a
    child of the element; it is cheap to make one whenever it is needed.
*/
class ScopeElementComment : public QObject
{
    Q_OBJECT

public:
    /*! \brief The comment of \a element, which also becomes the parent. */
    explicit ScopeElementComment(QObject* element);
    ~ScopeElementComment() override;

    /*! \brief The stored comment as HTML; empty when there is none. */
    QString comment() const;

    /*! \brief Whether the comment holds no text (markup alone counts as empty). */
    bool isCommentEmpty() const;

    /*! \brief Stores \a html as the comment; without an archive behind the element, nothing. */
    void setComment(const QString& html);

    /*! \brief Opens the comment dialog modally over \a parent and stores the
        text when it is accepted; returns whether it was accepted. */
    bool editComment(QWidget* parent = nullptr);

    /*! \brief Stores \a html unless it is the stored comment already;
        returns whether the comment changed. */
    bool changeComment(const QString& html);

    /*! \brief Opens the comment dialog like editComment(); returns whether
        the dialog was accepted with a text that differs from the stored one. */
    bool editAndReportChange(QWidget* parent = nullptr);

private:
    Q_DECLARE_PRIVATE(ScopeElementComment)
    ScopeElementCommentPrivate* const d_ptr;
};
