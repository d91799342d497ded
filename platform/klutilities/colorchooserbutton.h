// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtGui/QColor>
#include <QtWidgets/QPushButton>

#include <memory>

class ColorChooserButtonPrivate;

/*! \brief A push button that shows a colour as a swatch and its name, and
    opens a colour dialog when clicked. */
class ColorChooserButton : public QPushButton
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ColorChooserButton)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)

public:
    explicit ColorChooserButton(QWidget* parent = nullptr);
    ~ColorChooserButton() override;

    QColor color() const;
    /*! \brief Shows \a color; invalid colours are ignored. */
    void setColor(const QColor& color);

    /*! \brief The title of the colour dialog. */
    QString dialogTitle() const;
    void setDialogTitle(const QString& title);

Q_SIGNALS:
    /*! \brief The shown colour changed, by the user or by setColor(). */
    void colorChanged(const QColor& color);
    /*! \brief The user chose \a color in the dialog (only when it differs). */
    void colorChosen(const QColor& color);

private:
    std::unique_ptr<ColorChooserButtonPrivate> d_ptr;
};
