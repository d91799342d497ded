// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klcontrols_export.h"

#include <QtWidgets/QWidget>

class TextEditWidgetPrivate;

/*! \brief A small rich-text editor whose content is HTML.
 *
 * A tool bar above the text offers bold, italic, underline, a bullet list
 * and the text colour; its buttons show the format at the cursor.
 */
class KLCONTROLS_EXPORT TextEditWidget : public QWidget
{
    Q_OBJECT

public:
    explicit TextEditWidget(QWidget* parent = nullptr);
    ~TextEditWidget() override;

    /*! \brief The whole text as an HTML document. */
    QString html() const;
    /*! \brief Replaces the text by \a html. */
    void setHtml(const QString& html);
    /*! \brief The text without any formatting. */
    QString plainText() const;

Q_SIGNALS:
    /*! \brief The text or its formatting changed. */
    void textChanged();

private:
    Q_DECLARE_PRIVATE(TextEditWidget)
    TextEditWidgetPrivate* const d_ptr;
};
