// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QWidget>

#include <memory>

class ScopeSettingViewPrivate;

/*! \brief The scope settings page: colour choosers for the plot colours and
    the numbered application colours of the scope, and a button that restores
    the default colours. */
class ScopeSettingView : public QWidget
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(ScopeSettingView)

public:
    explicit ScopeSettingView(QWidget* parent = nullptr);
    ~ScopeSettingView() override;

private:
    std::unique_ptr<ScopeSettingViewPrivate> d_ptr;
};
