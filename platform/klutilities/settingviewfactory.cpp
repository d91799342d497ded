// SPDX-License-Identifier: GPL-3.0-or-later
#include "settingviewfactory.h"

#include "scopesettingview.h"

QWidget* SettingViewFactory::createScopePage(QWidget* parent)
{
    return new ScopeSettingView(parent);
}
