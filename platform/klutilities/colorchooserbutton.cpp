// SPDX-License-Identifier: GPL-3.0-or-later
#include "colorchooserbutton.h"
#include "colorchooserbutton_p.h"

#include <QtGui/QIcon>
#include <QtGui/QPainter>
#include <QtGui/QPixmap>
#include <QtWidgets/QColorDialog>

ColorChooserButtonPrivate::ColorChooserButtonPrivate(ColorChooserButton* q)
    : q_ptr(q)
    , color(Qt::black)
{
}

void ColorChooserButtonPrivate::updateSwatch()
{
    Q_Q(ColorChooserButton);
    // A framed swatch, so that a colour close to the button's own still shows.
    const QSize size = q->iconSize().expandedTo(QSize(32, 16));
    QPixmap swatch(size.width(), size.height());
    swatch.fill(Qt::transparent);
    QPainter painter(&swatch);
    painter.setPen(q->palette().color(QPalette::WindowText));
    painter.setBrush(color);
    painter.drawRect(QRect(0, 0, size.width() - 1, size.height() - 1));
    painter.end();
    q->setIconSize(size);
    q->setIcon(QIcon(swatch));
    q->setText(color.name());
}

void ColorChooserButtonPrivate::onClicked()
{
    Q_Q(ColorChooserButton);
    QColorDialog dialog(color, q);
    dialog.setWindowTitle(dialogTitle);
    // The toolkit's own dialog behaves alike on every platform.
    dialog.setOption(QColorDialog::DontUseNativeDialog);
    if (dialog.exec() != QDialog::Accepted)
        return;
    const QColor chosen = dialog.selectedColor();
    if (!chosen.isValid() || chosen == color)
        return;
    q->setColor(chosen);
    Q_EMIT colorChosen(chosen);
}

ColorChooserButton::ColorChooserButton(QWidget* parent)
    : QPushButton(parent)
    , d_ptr(std::make_unique<ColorChooserButtonPrivate>(this))
{
    Q_D(ColorChooserButton);
    connect(d, &ColorChooserButtonPrivate::colorChanged, this, &ColorChooserButton::colorChanged);
    connect(d, &ColorChooserButtonPrivate::colorChosen, this, &ColorChooserButton::colorChosen);
    connect(this, &QPushButton::clicked, d, &ColorChooserButtonPrivate::onClicked);
    d->updateSwatch();
}

ColorChooserButton::~ColorChooserButton() = default;

QColor ColorChooserButton::color() const
{
    Q_D(const ColorChooserButton);
    return d->color;
}

void ColorChooserButton::setColor(const QColor& color)
{
    Q_D(ColorChooserButton);
    if (!color.isValid() || color == d->color)
        return;
    d->color = color;
    d->updateSwatch();
    Q_EMIT d->colorChanged(color);
}

QString ColorChooserButton::dialogTitle() const
{
    Q_D(const ColorChooserButton);
    return d->dialogTitle;
}

void ColorChooserButton::setDialogTitle(const QString& title)
{
    Q_D(ColorChooserButton);
    d->dialogTitle = title;
}
