// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeview.h"

class ScopeViewImplementationPrivate;

/*! \brief The scope view: stripes with markers, zoom bar, trace list, trace
    controls, time base, measurement table and the frequency analysis tab.
*/
class ScopeViewImplementation : public ScopeView
{
    Q_OBJECT

public:
    explicit ScopeViewImplementation(QWidget* parent = nullptr);
    ~ScopeViewImplementation() override;

    void setRepository(ScopeRepository* repository);
    ScopeRepository* repository() const;

    void setScopeElement(ScopeElementArchive* element) override;
    void refreshScopeElement() override;
    void clearScopeElement() override;
    ScopeElementArchive* currentScopeElement() override;
    QHBoxLayout* externalButtonLayout() override;

public Q_SLOTS:
    void onChanged();
    void showScopePage();
    void editCurrentElementComment();
    void setCurrentElementPublic();
    void emitRecipeImportRequest();
    void onNewFrequencyViewCreated(QWidget* pWidget);

Q_SIGNALS:
    void widgetCreated(ScopeView* pView, QWidget* pWidget);
    void recipeImportRequest(ScopeShotArchive* pApplicant);

private:
    Q_DECLARE_PRIVATE(ScopeViewImplementation)
    ScopeViewImplementationPrivate* d_ptr;
};
