// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeview.h"

#include "scopeviewimplementation.h"

ScopeView::ScopeView(QWidget* parent)
    : QWidget(parent)
{
}

ScopeView::~ScopeView() = default;

ScopeView* ScopeView::create(QWidget* parent, ScopeRepository* repository)
{
    auto* view = new ScopeViewImplementation(parent);
    view->setRepository(repository);
    return view;
}
