// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopesettingpage.h"
#include "scopesettingpage_p.h"

#include "settingviewfactory.h"
#include "ui_scopesettingpage.h"

ScopeSettingPagePrivate::ScopeSettingPagePrivate(ScopeSettingPage* page)
    : QObject(page)
    , ui(std::make_unique<Ui::ScopeSettingPage>())
    , q_ptr(page)
{
    ui->setupUi(page);
    // The suite's settings library makes the page; it also seeds absent
    // colour keys with their defaults.
    settingView = SettingViewFactory::createScopePage(page);
    ui->verticalLayout->addWidget(settingView);
    page->setWindowFlags(page->windowFlags() & ~Qt::WindowContextHelpButtonHint);
}

ScopeSettingPagePrivate::~ScopeSettingPagePrivate() = default;

ScopeSettingPage::ScopeSettingPage(QWidget* parent)
    : QDialog(parent)
    , d_ptr(new ScopeSettingPagePrivate(this))
{
}

ScopeSettingPage::~ScopeSettingPage() = default;

QWidget* ScopeSettingPage::settingView() const
{
    Q_D(const ScopeSettingPage);
    return d->settingView;
}
