// SPDX-License-Identifier: GPL-3.0-or-later
#include "texteditwidget.h"
#include "texteditwidget_p.h"

#include <QtGui/QAction>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCharFormat>
#include <QtGui/QTextCursor>
#include <QtGui/QTextList>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QTextEdit>
#include <QtWidgets/QToolBar>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace {

// The tool buttons carry letters rather than theme icons, so that they are
// legible on every desktop, in the letter's own style.
QAction* makeFormatAction(QToolBar* bar, const QString& letter, const QString& toolTip,
                          const QString& objectName, const QKeySequence& shortcut)
{
    QAction* action = bar->addAction(letter);
    action->setObjectName(objectName);
    action->setToolTip(toolTip);
    action->setCheckable(true);
    action->setShortcut(shortcut);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    return action;
}

} // namespace

TextEditWidgetPrivate::TextEditWidgetPrivate(TextEditWidget* q)
    : QObject(q)
    , q_ptr(q)
{
}

void TextEditWidgetPrivate::mergeFormat(const QTextCharFormat& format)
{
    // With a selection the format goes onto the selected text; without one it
    // becomes the format of what is typed next.
    textEdit->mergeCurrentCharFormat(format);
    textEdit->setFocus();
}

void TextEditWidgetPrivate::onBoldTriggered(bool checked)
{
    QTextCharFormat format;
    format.setFontWeight(checked ? QFont::Bold : QFont::Normal);
    mergeFormat(format);
}

void TextEditWidgetPrivate::onItalicTriggered(bool checked)
{
    QTextCharFormat format;
    format.setFontItalic(checked);
    mergeFormat(format);
}

void TextEditWidgetPrivate::onUnderlineTriggered(bool checked)
{
    QTextCharFormat format;
    format.setFontUnderline(checked);
    mergeFormat(format);
}

void TextEditWidgetPrivate::onBulletListTriggered(bool checked)
{
    QTextCursor cursor = textEdit->textCursor();
    cursor.beginEditBlock();
    if (checked) {
        QTextListFormat listFormat;
        if (QTextList* current = cursor.currentList())
            listFormat = current->format();
        listFormat.setStyle(QTextListFormat::ListDisc);
        cursor.createList(listFormat);
    } else {
        // Take every block of the selection out of its list.
        const int start = qMin(cursor.anchor(), cursor.position());
        const int end = qMax(cursor.anchor(), cursor.position());
        QTextBlock block = textEdit->document()->findBlock(start);
        while (block.isValid() && block.position() <= end) {
            if (QTextList* list = block.textList()) {
                list->remove(block);
                QTextCursor blockCursor(block);
                QTextBlockFormat blockFormat = blockCursor.blockFormat();
                blockFormat.setIndent(0);
                blockCursor.setBlockFormat(blockFormat);
            }
            block = block.next();
        }
    }
    cursor.endEditBlock();
    textEdit->setFocus();
    updateActions();
}

void TextEditWidgetPrivate::onTextColorTriggered()
{
    Q_Q(TextEditWidget);
    QColorDialog dialog(textEdit->textColor(), q);
    dialog.setWindowTitle(tr("Textfarbe"));
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QColor color = dialog.selectedColor();
    if (!color.isValid())
        return;
    QTextCharFormat format;
    format.setForeground(color);
    mergeFormat(format);
    updateColorIcon(color);
}

void TextEditWidgetPrivate::updateActions()
{
    const QTextCharFormat format = textEdit->currentCharFormat();
    boldAction->setChecked(format.fontWeight() >= QFont::Bold);
    italicAction->setChecked(format.fontItalic());
    underlineAction->setChecked(format.fontUnderline());
    bulletListAction->setChecked(textEdit->textCursor().currentList() != nullptr);
    const QBrush foreground = format.foreground();
    updateColorIcon(foreground.style() == Qt::NoBrush ? textEdit->palette().color(QPalette::Text)
                                                      : foreground.color());
}

void TextEditWidgetPrivate::updateColorIcon(const QColor& color)
{
    if (color == iconColor)
        return;
    iconColor = color;
    // An "A" over a bar in the current text colour.
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(11);
    painter.setFont(font);
    painter.setPen(toolBar->palette().color(QPalette::ButtonText));
    painter.drawText(QRect(0, 0, 16, 12), Qt::AlignCenter, QStringLiteral("A"));
    painter.fillRect(QRect(1, 12, 14, 4), color);
    painter.end();
    textColorAction->setIcon(QIcon(pixmap));
}

TextEditWidget::TextEditWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new TextEditWidgetPrivate(this))
{
    Q_D(TextEditWidget);

    d->toolBar = new QToolBar(this);
    d->toolBar->setObjectName(QStringLiteral("toolBar"));
    d->toolBar->setIconSize(QSize(16, 16));
    d->toolBar->setToolButtonStyle(Qt::ToolButtonIconOnly);

    d->boldAction = makeFormatAction(d->toolBar, tr("F"), tr("Fett"), QStringLiteral("boldAction"),
                                     QKeySequence::Bold);
    d->italicAction = makeFormatAction(d->toolBar, tr("K"), tr("Kursiv"), QStringLiteral("italicAction"),
                                       QKeySequence::Italic);
    d->underlineAction = makeFormatAction(d->toolBar, tr("U"), tr("Unterstrichen"),
                                          QStringLiteral("underlineAction"), QKeySequence::Underline);
    QFont boldFont = font();
    boldFont.setBold(true);
    d->boldAction->setFont(boldFont);
    QFont italicFont = font();
    italicFont.setItalic(true);
    d->italicAction->setFont(italicFont);
    QFont underlineFont = font();
    underlineFont.setUnderline(true);
    d->underlineAction->setFont(underlineFont);

    d->toolBar->addSeparator();
    d->bulletListAction = makeFormatAction(d->toolBar, QStringLiteral("\u2022"), tr("Aufzählung"),
                                           QStringLiteral("bulletListAction"), QKeySequence());
    d->textColorAction = d->toolBar->addAction(tr("Textfarbe"));
    d->textColorAction->setObjectName(QStringLiteral("textColorAction"));
    d->textColorAction->setToolTip(tr("Textfarbe"));

    // Buttons without an icon show their letter.
    for (QAction* action : { d->boldAction, d->italicAction, d->underlineAction, d->bulletListAction }) {
        if (auto* button = qobject_cast<QToolButton*>(d->toolBar->widgetForAction(action))) {
            button->setToolButtonStyle(Qt::ToolButtonTextOnly);
            button->setObjectName(action->objectName().replace(QLatin1String("Action"), QLatin1String("Button")));
        }
    }
    if (QWidget* button = d->toolBar->widgetForAction(d->textColorAction))
        button->setObjectName(QStringLiteral("textColorButton"));

    // The format shortcuts work anywhere in this widget, not only on the tool bar.
    addActions({ d->boldAction, d->italicAction, d->underlineAction });

    d->textEdit = new QTextEdit(this);
    d->textEdit->setObjectName(QStringLiteral("textEdit"));
    d->textEdit->setAcceptRichText(true);
    setFocusProxy(d->textEdit);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(2);
    layout->addWidget(d->toolBar);
    layout->addWidget(d->textEdit);

    connect(d->boldAction, &QAction::triggered, d, &TextEditWidgetPrivate::onBoldTriggered);
    connect(d->italicAction, &QAction::triggered, d, &TextEditWidgetPrivate::onItalicTriggered);
    connect(d->underlineAction, &QAction::triggered, d, &TextEditWidgetPrivate::onUnderlineTriggered);
    connect(d->bulletListAction, &QAction::triggered, d, &TextEditWidgetPrivate::onBulletListTriggered);
    connect(d->textColorAction, &QAction::triggered, d, &TextEditWidgetPrivate::onTextColorTriggered);
    connect(d->textEdit, &QTextEdit::currentCharFormatChanged, d, &TextEditWidgetPrivate::updateActions);
    connect(d->textEdit, &QTextEdit::cursorPositionChanged, d, &TextEditWidgetPrivate::updateActions);
    connect(d->textEdit, &QTextEdit::textChanged, d, &TextEditWidgetPrivate::textChanged);
    connect(d, &TextEditWidgetPrivate::textChanged, this, &TextEditWidget::textChanged);

    d->updateActions();
}

TextEditWidget::~TextEditWidget() = default;

QString TextEditWidget::html() const
{
    Q_D(const TextEditWidget);
    return d->textEdit->toHtml();
}

void TextEditWidget::setHtml(const QString& html)
{
    Q_D(TextEditWidget);
    d->textEdit->setHtml(html);
    d->updateActions();
}

QString TextEditWidget::plainText() const
{
    Q_D(const TextEditWidget);
    return d->textEdit->toPlainText();
}
