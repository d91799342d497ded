// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopesettingpage.h"

#include <QtCore/QObject>

#include <memory>

namespace Ui {
class ScopeSettingPage;
}

class ScopeSettingPagePrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeSettingPage)

public:
    explicit ScopeSettingPagePrivate(ScopeSettingPage* page);
    ~ScopeSettingPagePrivate() override;

    std::unique_ptr<Ui::ScopeSettingPage> ui;
    QWidget* settingView = nullptr;

private:
    ScopeSettingPage* q_ptr = nullptr;
};
