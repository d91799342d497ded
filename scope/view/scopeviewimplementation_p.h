// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopeviewimplementation.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QSharedPointer>

#include <memory>

class ScopeCompositionArchive;
class ScopeScene;
class ScopeShot;

namespace Ui {
class ScopeViewImplementation;
}

namespace KlIniParser {
class IniParser;
class IniSection;
}

class ScopeViewImplementationPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeViewImplementation)

public:
    explicit ScopeViewImplementationPrivate(ScopeViewImplementation* view);
    ~ScopeViewImplementationPrivate() override;

    void showShot(ScopeShotArchive* archive);
    void showComposition(ScopeCompositionArchive* composition);
    void setUpFrequencyAnalysis(ScopeShot* shot);
    void finishShowing();
    QSharedPointer<ScopeShot> makeShot(ScopeShotArchive* archive);
    QList<ScopeShot*> shownShots() const;
    /*! The composition's own document, where its stripe layout is kept. */
    KlIniParser::IniParser* compositionDocument() const;

    std::unique_ptr<Ui::ScopeViewImplementation> ui;
    ScopeScene* scene = nullptr;
    ScopeRepository* repository = nullptr;
    QPointer<QWidget> frequencyView;
    QPointer<ScopeShotArchive> scopeShotArchive;
    QPointer<ScopeCompositionArchive> scopeCompositionArchive;

    QList<QSharedPointer<ScopeShot>> shots;
    // While an element is being shown, the view state comes from the archive
    // and must not be written back into it.
    bool restoring = false;
    ScopeViewImplementation* q_ptr = nullptr;

public Q_SLOTS:
    /*! Writes the whole view state into the shown archive and marks it as
        needing to be saved. */
    void saveViewState();
    void onCurrentTabChanged(int index);

Q_SIGNALS:
    void widgetCreated(ScopeView* pView, QWidget* pWidget);
    void recipeImportRequest(ScopeShotArchive* pApplicant);
};
