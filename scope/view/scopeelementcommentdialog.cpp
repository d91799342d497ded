// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeelementcommentdialog.h"
#include "scopeelementcommentdialog_p.h"

#include "scopearchivecodec.h"
#include "texteditwidget.h"

#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QVBoxLayout>

ScopeElementCommentDialogPrivate::ScopeElementCommentDialogPrivate(ScopeElementCommentDialog* q)
    : q_ptr(q)
{
}

ScopeElementCommentDialog::ScopeElementCommentDialog(const QString& elementName, const QString& html,
                                                     QWidget* parent)
    : QDialog(parent)
    , d_ptr(new ScopeElementCommentDialogPrivate(this))
{
    Q_D(ScopeElementCommentDialog);
    d->setParent(this);
    setObjectName(QStringLiteral("ScopeElementCommentDialog"));
    setWindowTitle(tr("Kommentar für Aufnahme \"%1\"").arg(elementName, 0, QLatin1Char(' ')));

    auto* layout = new QVBoxLayout(this);
    d->editor = new TextEditWidget(this);
    d->editor->setObjectName(QStringLiteral("commentEdit"));
    d->editor->setHtml(html);
    layout->addWidget(d->editor);

    d->tooLongLabel = new QLabel(this);
    d->tooLongLabel->setObjectName(QStringLiteral("tooLongLabel"));
    d->tooLongLabel->setText(tr("Der Kommentar ist zu lang: höchstens %1 KiB Text (mit Formatierung).")
                                 .arg(ScopeArchiveCodec::MaximumCommentSize / 1024));
    d->tooLongLabel->setWordWrap(true);
    d->tooLongLabel->setVisible(false);
    layout->addWidget(d->tooLongLabel);

    auto* buttonBox = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttonBox->setObjectName(QStringLiteral("buttonBox"));
    layout->addWidget(buttonBox);
    connect(buttonBox, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttonBox, &QDialogButtonBox::rejected, this, &QDialog::reject);
}

ScopeElementCommentDialog::~ScopeElementCommentDialog() = default;

QString ScopeElementCommentDialog::html() const
{
    Q_D(const ScopeElementCommentDialog);
    return d->editor->html();
}

void ScopeElementCommentDialog::accept()
{
    Q_D(ScopeElementCommentDialog);
    // A longer comment would be stored but read back as empty; the user
    // keeps the text in the editor and can shorten it.
    if (html().toUtf8().size() > ScopeArchiveCodec::MaximumCommentSize) {
        d->tooLongLabel->setVisible(true);
        return;
    }
    d->tooLongLabel->setVisible(false);
    QDialog::accept();
}
