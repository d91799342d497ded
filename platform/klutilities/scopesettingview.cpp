// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopesettingview.h"
#include "scopesettingview_p.h"

#include "appsettings.h"
#include "colorchooserbutton.h"

#include <QtWidgets/QFormLayout>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

ScopeSettingViewPrivate::ScopeSettingViewPrivate(ScopeSettingView* q)
    : q_ptr(q)
{
}

void ScopeSettingViewPrivate::addChooser(QFormLayout* layout, const QString& label, const QString& objectName,
                                         int target)
{
    Q_Q(ScopeSettingView);
    auto* button = new ColorChooserButton(q);
    button->setObjectName(objectName);
    button->setDialogTitle(label);
    // All choosers alike wide, whatever the labels beside them.
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button->setColor(storedColor(target));
    auto* text = new QLabel(label, q);
    text->setBuddy(button);
    layout->addRow(text, button);
    connect(button, &ColorChooserButton::colorChosen, this,
            [this, target](const QColor& color) { applyColor(target, color); });
    choosers.append(Chooser{button, text, target});
}

QColor ScopeSettingViewPrivate::storedColor(int target)
{
    AppSettings* settings = AppSettings::instance();
    switch (target) {
    case BackgroundTarget:
        return settings->backgroundColor();
    case GridTarget:
        return settings->gridColor();
    default:
        return settings->color(target);
    }
}

void ScopeSettingViewPrivate::updateButtons()
{
    for (const Chooser& chooser : std::as_const(choosers))
        chooser.button->setColor(storedColor(chooser.target));
}

void ScopeSettingViewPrivate::applyColor(int target, const QColor& color)
{
    // The setters write and sync the settings file at once.
    AppSettings* settings = AppSettings::instance();
    switch (target) {
    case BackgroundTarget:
        settings->setBackgroundColor(color);
        break;
    case GridTarget:
        settings->setGridColor(color);
        break;
    default:
        settings->setColor(target, color);
        break;
    }
}

void ScopeSettingViewPrivate::alignLabels()
{
    // One label width for both groups, so that the choosers line up.
    int width = 0;
    for (const Chooser& chooser : std::as_const(choosers))
        width = qMax(width, chooser.label->sizeHint().width());
    for (const Chooser& chooser : std::as_const(choosers))
        chooser.label->setMinimumWidth(width);
}

void ScopeSettingViewPrivate::onRestoreDefaultsClicked()
{
    AppSettings::instance()->restoreDefaults();
    updateButtons();
}

void ScopeSettingViewPrivate::onSettingsChanged()
{
    updateButtons();
}

ScopeSettingView::ScopeSettingView(QWidget* parent)
    : QWidget(parent)
    , d_ptr(std::make_unique<ScopeSettingViewPrivate>(this))
{
    Q_D(ScopeSettingView);
    setObjectName(QStringLiteral("scopeSettingPage"));

    AppSettings* settings = AppSettings::instance();
    // Plot widgets apply whatever the settings hold; give them real colours.
    settings->seedDefaults();

    auto* timeGroup = new QGroupBox(tr("Zeitanalyse"), this);
    auto* timeLayout = new QFormLayout(timeGroup);
    d->addChooser(timeLayout, tr("Hintergrundfarbe:"), QStringLiteral("backgroundColorButton"),
                  ScopeSettingViewPrivate::BackgroundTarget);
    d->addChooser(timeLayout, tr("Gitterfarbe:"), QStringLiteral("gridColorButton"),
                  ScopeSettingViewPrivate::GridTarget);
    d->addChooser(timeLayout, tr("Marker und Schnellmessung:"), QStringLiteral("markerColorButton"),
                  AppSettings::MarkerColor);
    d->addChooser(timeLayout, tr("Triggeranzeige:"), QStringLiteral("triggerColorButton"),
                  AppSettings::TriggerColor);

    auto* frequencyGroup = new QGroupBox(tr("Frequenzanalyse"), this);
    auto* frequencyLayout = new QFormLayout(frequencyGroup);
    d->addChooser(frequencyLayout, tr("Diagrammhintergrund:"), QStringLiteral("chartBackgroundColorButton"),
                  AppSettings::ChartBackgroundColor);
    d->addChooser(frequencyLayout, tr("Zeichenfläche:"), QStringLiteral("chartPlotAreaColorButton"),
                  AppSettings::ChartPlotAreaColor);
    d->addChooser(frequencyLayout, tr("Gitterlinien:"), QStringLiteral("chartGridColorButton"),
                  AppSettings::ChartGridColor);
    d->addChooser(frequencyLayout, tr("Beschriftung:"), QStringLiteral("chartLabelColorButton"),
                  AppSettings::ChartLabelColor);

    d->alignLabels();

    d->restoreButton = new QPushButton(tr("Standardfarben wiederherstellen"), this);
    d->restoreButton->setObjectName(QStringLiteral("restoreDefaultsButton"));
    connect(d->restoreButton, &QPushButton::clicked, d, &ScopeSettingViewPrivate::onRestoreDefaultsClicked);

    auto* buttonRow = new QHBoxLayout;
    buttonRow->addStretch();
    buttonRow->addWidget(d->restoreButton);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(timeGroup);
    layout->addWidget(frequencyGroup);
    layout->addLayout(buttonRow);
    layout->addStretch();

    // Changes made elsewhere (another page, a plot widget, another program).
    connect(settings, &AppSettings::changed, d, &ScopeSettingViewPrivate::onSettingsChanged);
}

ScopeSettingView::~ScopeSettingView() = default;
