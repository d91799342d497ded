// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QDialog>

class ScopeSettingPagePrivate;

/*! \brief The dialog "Einstellungen: Scope".

    Hosts the scope settings page of the suite's settings library, where the
    plot colours ("Scope/BackgroundColor", "Scope/GridColor") are chosen. The
    plot widgets pick changed colours up through their settings watchers.
*/
class ScopeSettingPage : public QDialog
{
    Q_OBJECT

public:
    explicit ScopeSettingPage(QWidget* parent = nullptr);
    ~ScopeSettingPage() override;

    /*! \brief The hosted settings page (owned by the dialog). */
    QWidget* settingView() const;

private:
    Q_DECLARE_PRIVATE(ScopeSettingPage)
    ScopeSettingPagePrivate* const d_ptr;
};
