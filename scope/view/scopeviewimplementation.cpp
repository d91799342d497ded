// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeviewimplementation.h"
#include "scopeviewimplementation_p.h"

#include "ui_scopeviewimplementation.h"

#include "appsettings.h"
#include "iniparser.h"
#include "scopecompositionarchive.h"
#include "scopecompositionarchiveimplementation.h"
#include "scopemarker.h"
#include "scopequickmeasure.h"
#include "scoperepository.h"
#include "scopescene.h"
#include "scopesettingpage.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripesassignmentwidget.h"
#include "scopestripeswidget.h"
#include "scopetimewidget.h"
#include "scopetracecalculatorwidget.h"
#include "scopetofrequencyview.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopetracelist.h"
#include "scopetracewidget.h"
#include "scopewidget.h"
#include "traceinformationimplemention.h"
#include "zoombar.h"

#include <QtCore/QSettings>
#include <QtGui/QColor>
#include <QtWidgets/QInputDialog>

namespace {

const QString geometryKey()
{
    return QStringLiteral("Scope/scopeViewGeometry");
}

const QByteArray sceneSectionName("ScopeScene");
const QByteArray stripeNameKey("ScopeStripe_0_ScopeStripeName");

// Seeds the plot colours of a fresh installation with the suite's defaults
// (a dark oscilloscope screen); colours chosen by the user are never touched.
void seedPlotColors()
{
    QSettings settings;
    if (!settings.contains(QStringLiteral("Scope/BackgroundColor")))
        settings.setValue(QStringLiteral("Scope/BackgroundColor"), AppSettings::defaultBackgroundColor());
    if (!settings.contains(QStringLiteral("Scope/GridColor")))
        settings.setValue(QStringLiteral("Scope/GridColor"), AppSettings::defaultGridColor());
}

} // namespace

ScopeViewImplementationPrivate::ScopeViewImplementationPrivate(ScopeViewImplementation* view)
    : QObject(view)
    , ui(new Ui::ScopeViewImplementation)
    , q_ptr(view)
{
    seedPlotColors();
    scene = new ScopeScene(this);
    ui->setupUi(view);
    // Only the time tab until a shot is shown; the tab bar hides itself.
    ui->ViewModeTabWidget->removeTab(1);
    ui->Frequenzanalyse->hide();

    ui->scopeStripesWidget->setScene(scene);
    ui->scopeStripesWidget->setZoomBar(ui->zoomBar);
    scene->setZoomBar(ui->zoomBar);
    ui->timeWidget->setZoomBar(ui->zoomBar);
    ui->channelsWidget->setStripesWidget(ui->scopeStripesWidget);
    ui->scopeStripesAssignmentWidget->setStripesWidget(ui->scopeStripesWidget);

    connect(ui->channelsWidget, &ScopeTraceList::scopeTraceSelected, ui->channelWidget,
            &ScopeTraceWidget::setScopeTrace);
    // The measurement table follows the selected trace and the markers.
    connect(ui->channelsWidget, &ScopeTraceList::scopeTraceSelected, ui->measureWidget,
            &ScopeTraceCalculatorWidget::onScopeTraceSelected);
    for (ScopeMarker* marker : scene->markers())
        connect(marker, &ScopeMarker::timePositionChanged, ui->measureWidget,
                &ScopeTraceCalculatorWidget::onMarkerTimePositionChanged);
    connect(scene, &ScopeScene::sceneChanged, view, &ScopeViewImplementation::onChanged);
    connect(ui->showSetting, &QPushButton::clicked, view, &ScopeViewImplementation::showScopePage);
    connect(ui->commentButton, &QPushButton::clicked, view, &ScopeViewImplementation::editCurrentElementComment);
    connect(ui->setElementPublicButton, &QPushButton::clicked, view,
            &ScopeViewImplementation::setCurrentElementPublic);
    connect(ui->importViewRecipe, &QPushButton::clicked, view, &ScopeViewImplementation::emitRecipeImportRequest);
    connect(this, &ScopeViewImplementationPrivate::widgetCreated, view, &ScopeViewImplementation::widgetCreated);
    connect(this, &ScopeViewImplementationPrivate::recipeImportRequest, view,
            &ScopeViewImplementation::recipeImportRequest);
    connect(ui->ViewModeTabWidget, &QTabWidget::currentChanged, this,
            &ScopeViewImplementationPrivate::onCurrentTabChanged);

    // Everything the user changes in the view is written into the shown
    // archive at once: trace settings (through the scene), the zoom window,
    // the markers and the stripes.
    connect(ui->zoomBar, &ZoomBar::sliderChanged, this, &ScopeViewImplementationPrivate::saveViewState);
    const QList<ScopeMarker*> markers = scene->markers();
    for (ScopeMarker* marker : markers)
        connect(marker, &ScopeMarker::timePositionChanged, this, &ScopeViewImplementationPrivate::saveViewState);
    connect(ui->scopeStripesWidget, &ScopeStripesWidget::scopeStripesChanged, this,
            &ScopeViewImplementationPrivate::saveViewState);

    ui->commentButton->setToolTip(tr("Kommentar bearbeiten"));
    view->restoreGeometry(QSettings().value(geometryKey()).toByteArray());
}

ScopeViewImplementationPrivate::~ScopeViewImplementationPrivate()
{
    QSettings().setValue(geometryKey(), q_ptr->saveGeometry());
}

QSharedPointer<ScopeShot> ScopeViewImplementationPrivate::makeShot(ScopeShotArchive* archive)
{
    // The scene shares the shot; deleteLater lets pending queued signals of
    // its traces drain before it goes.
    QSharedPointer<ScopeShot> shot(new ScopeShot, &QObject::deleteLater);
    shot->setArchive(archive);
    shot->load();
    shots.append(shot);
    scene->addShot(shot);
    return shot;
}

QList<ScopeShot*> ScopeViewImplementationPrivate::shownShots() const
{
    QList<ScopeShot*> result;
    for (const auto& shot : shots)
        result.append(shot.data());
    return result;
}

KlIniParser::IniParser* ScopeViewImplementationPrivate::compositionDocument() const
{
    auto* composition = qobject_cast<ScopeCompositionArchiveImplementation*>(scopeCompositionArchive.data());
    return composition ? composition->iniParser() : nullptr;
}

void ScopeViewImplementationPrivate::showShot(ScopeShotArchive* archive)
{
    QSharedPointer<ScopeShot> shot = makeShot(archive);
    if (ScopeWidget* stripe = ui->scopeStripesWidget->addStripe()) {
        stripe->traceFilter()->setShot(shot.data());
        if (const KlIniParser::IniSection* section = archive->sceneSection())
            stripe->setName(QString::fromLatin1(section->valueView(stripeNameKey)));
    }
    KlIniParser::IniParser scratch;
    KlIniParser::IniSection* empty = scratch.findOrCreateSection(sceneSectionName);
    KlIniParser::IniSection* sceneSection = archive->sceneSection();
    KlIniParser::IniSection* shotSection = archive->shotSection();
    scene->readSection(sceneSection ? sceneSection : empty, shotSection ? shotSection : empty);
    setUpFrequencyAnalysis(shot.data());
    finishShowing();
    ui->traceControlFrame->hide();
    ui->channelsWidget->setStripeEntriesEnabled(false);
    ui->importViewRecipe->show();
}

void ScopeViewImplementationPrivate::showComposition(ScopeCompositionArchive* composition)
{
    const QList<QByteArray> identifiers = composition->usedShotIdentifiers();
    for (const QByteArray& identifier : identifiers) {
        auto* archive = repository ? qobject_cast<ScopeShotArchive*>(repository->findArchive(identifier)) : nullptr;
        if (archive)
            makeShot(archive);
    }
    KlIniParser::IniParser scratch;
    KlIniParser::IniSection* section = scratch.findOrCreateSection(sceneSectionName);
    if (KlIniParser::IniParser* document = compositionDocument()) {
        if (KlIniParser::IniSection* stored = document->section(sceneSectionName))
            section = stored;
    }
    ui->scopeStripesWidget->setStripeLayout(section, shownShots());
    scene->readSection(section, section);
    finishShowing();
    ui->traceControlFrame->show();
    ui->channelsWidget->setStripeEntriesEnabled(true);
    ui->importViewRecipe->hide();
}

void ScopeViewImplementationPrivate::finishShowing()
{
    if (!scene->markers().isEmpty()) {
        const ScopeMarker* marker = scene->markers().constFirst();
        ui->measureWidget->onMarkerTimePositionChanged(0, marker->position(0));
        ui->measureWidget->onMarkerTimePositionChanged(1, marker->position(1));
    }
    ui->timeWidget->setStripesWidget(ui->scopeStripesWidget);
    ui->timeWidget->setTimeRaster(scene->timeGrid());
    ScopeElementArchive* element = q_ptr->currentScopeElement();
    ui->setElementPublicButton->setVisible(element && !element->isPublic());
    ui->setElementPublicButton->setEnabled(true);
}

void ScopeViewImplementationPrivate::setUpFrequencyAnalysis(ScopeShot* shot)
{
    Q_Q(ScopeViewImplementation);
    QList<QSharedPointer<TraceInformation>> traces;
    const QList<int> channels = shot->channelNumbers();
    for (int channel : channels) {
        if (ScopeTrace* trace = shot->trace(channel))
            traces.append(QSharedPointer<TraceInformation>(new TraceInformationImplemention(trace)));
    }
    // The panel needs a trace for its sampling period; a recording without
    // traces keeps the empty page in the panel's place.
    if (traces.isEmpty() || scene->markers().isEmpty()) {
        ui->ViewModeTabWidget->addTab(ui->Frequenzanalyse, tr("Frequenzanalyse"));
        return;
    }
    auto* panel = new ScopeToFrequencyView(traces);
    frequencyView = panel;
    ui->ViewModeTabWidget->addTab(panel, tr("Frequenzanalyse"));
    ScopeMarker* marker = scene->markers().constFirst();
    connect(marker, &ScopeMarker::timePositionChanged, panel, &ScopeToFrequencyView::onMarkerTimePositionChanged);
    panel->onMarkerTimePositionChanged(0, marker->position(0));
    panel->onMarkerTimePositionChanged(1, marker->position(1));
    connect(panel, &ScopeToFrequencyView::windowFunctionChanged, marker, &ScopeMarker::onWindowFunktionChanged);
    connect(panel, &ScopeToFrequencyView::newFrequencyViewCreated, q,
            &ScopeViewImplementation::onNewFrequencyViewCreated);
}

void ScopeViewImplementationPrivate::saveViewState()
{
    if (restoring)
        return;
    if (scopeShotArchive) {
        for (const auto& shot : std::as_const(shots))
            shot->saveTraceViews();
        KlIniParser::IniParser* document = scopeShotArchive->iniParser();
        if (!document)
            return;
        KlIniParser::IniSection* sceneSection = document->findOrCreateSection(sceneSectionName);
        scene->writeSection(sceneSection, scopeShotArchive->shotSection());
        // One stripe only: its name is all of the stripe layout a shot keeps.
        const QList<ScopeWidget*> stripes = ui->scopeStripesWidget->scopeWidgets();
        if (!stripes.isEmpty() && (!stripes.constFirst()->storedName().isEmpty() || sceneSection->contains(stripeNameKey)))
            sceneSection->setValue(stripeNameKey, stripes.constFirst()->storedName().toLatin1());
        QMetaObject::invokeMethod(scopeShotArchive.data(), "setNeedSave");
    } else if (scopeCompositionArchive) {
        KlIniParser::IniParser* document = compositionDocument();
        if (!document)
            return;
        KlIniParser::IniSection* sceneSection = document->findOrCreateSection(sceneSectionName);
        scene->writeSection(sceneSection, nullptr);
        ui->scopeStripesWidget->writeStripeLayout(sceneSection, shownShots());
        Q_EMIT scopeCompositionArchive->scopeElementChanged();
    }
}

void ScopeViewImplementationPrivate::onCurrentTabChanged(int index)
{
    const bool frequencyTab = index == 1;
    const QList<ScopeMarker*> markers = scene->markers();
    for (ScopeMarker* marker : markers)
        marker->setShowInterval(frequencyTab);
    for (ScopeWidget* stripe : ui->scopeStripesWidget->scopeWidgets())
        stripe->update();
}

ScopeViewImplementation::ScopeViewImplementation(QWidget* parent)
    : ScopeView(parent)
    , d_ptr(new ScopeViewImplementationPrivate(this))
{
    // Hosts listen on the exported interface's signals.
    connect(this, &ScopeViewImplementation::widgetCreated, this, &ScopeView::widgetCreated);
    connect(this, &ScopeViewImplementation::recipeImportRequest, this, &ScopeView::recipeImportRequest);
}

ScopeViewImplementation::~ScopeViewImplementation()
{
    Q_D(ScopeViewImplementation);
    // Stop writing into archives the host may already have deleted.
    d->restoring = true;
    clearScopeElement();
}

void ScopeViewImplementation::setRepository(ScopeRepository* repository)
{
    Q_D(ScopeViewImplementation);
    d->repository = repository;
}

ScopeRepository* ScopeViewImplementation::repository() const
{
    Q_D(const ScopeViewImplementation);
    return d->repository;
}

void ScopeViewImplementation::setScopeElement(ScopeElementArchive* element)
{
    Q_D(ScopeViewImplementation);
    if (currentScopeElement())
        clearScopeElement();
    if (!element)
        return;
    d->scopeShotArchive = qobject_cast<ScopeShotArchive*>(element);
    d->scopeCompositionArchive = qobject_cast<ScopeCompositionArchive*>(element);
    const bool wasRestoring = d->restoring;
    d->restoring = true;
    if (d->scopeShotArchive)
        d->showShot(d->scopeShotArchive);
    else if (d->scopeCompositionArchive)
        d->showComposition(d->scopeCompositionArchive);
    d->restoring = wasRestoring;
}

void ScopeViewImplementation::refreshScopeElement()
{
    ScopeElementArchive* element = currentScopeElement();
    if (!element)
        return;
    setScopeElement(element);
}

void ScopeViewImplementation::clearScopeElement()
{
    Q_D(ScopeViewImplementation);
    const bool wasRestoring = d->restoring;
    d->restoring = true;
    d->scene->clear();
    d->ui->scopeStripesWidget->clear();
    d->shots.clear();
    delete d->frequencyView.data();
    while (d->ui->ViewModeTabWidget->count() > 1)
        d->ui->ViewModeTabWidget->removeTab(1);
    d->ui->channelWidget->setScopeTrace(nullptr);
    d->ui->measureWidget->onScopeTraceSelected(nullptr);
    d->scopeShotArchive = nullptr;
    d->scopeCompositionArchive = nullptr;
    d->restoring = wasRestoring;
}

ScopeElementArchive* ScopeViewImplementation::currentScopeElement()
{
    Q_D(ScopeViewImplementation);
    if (d->scopeShotArchive)
        return d->scopeShotArchive.data();
    if (d->scopeCompositionArchive)
        return d->scopeCompositionArchive.data();
    return nullptr;
}

QHBoxLayout* ScopeViewImplementation::externalButtonLayout()
{
    Q_D(ScopeViewImplementation);
    return d->ui->externalButtonLayout;
}

void ScopeViewImplementation::onChanged()
{
    Q_D(ScopeViewImplementation);
    d->saveViewState();
    const QList<ScopeWidget*> stripes = d->ui->scopeStripesWidget->scopeWidgets();
    for (ScopeWidget* stripe : stripes)
        stripe->update();
}

void ScopeViewImplementation::showScopePage()
{
    ScopeSettingPage page(this);
    page.exec();
}

void ScopeViewImplementation::editCurrentElementComment()
{
    if (ScopeElementArchive* element = currentScopeElement())
        element->editComment(this);
}

void ScopeViewImplementation::setCurrentElementPublic()
{
    Q_D(ScopeViewImplementation);
    ScopeElementArchive* element = currentScopeElement();
    if (!element)
        return;
    bool ok = false;
    const QString name = QInputDialog::getText(this, tr("Direktaufnahme ablegen"), tr("Name"), QLineEdit::Normal,
                                               element->name(), &ok);
    if (!ok || name.isEmpty() || !currentScopeElement())
        return;
    element->setName(name);
    element->setPublic(true);
    d->ui->setElementPublicButton->setEnabled(false);
}

void ScopeViewImplementation::emitRecipeImportRequest()
{
    Q_D(ScopeViewImplementation);
    Q_EMIT d->recipeImportRequest(d->scopeShotArchive.data());
}

void ScopeViewImplementation::onNewFrequencyViewCreated(QWidget* pWidget)
{
    Q_D(ScopeViewImplementation);
    Q_EMIT d->widgetCreated(this, pWidget);
}
