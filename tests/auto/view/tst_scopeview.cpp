// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "scopecompositionarchive.h"
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripesassignmentwidget.h"
#include "scopestripeswidget.h"
#include "scopetofrequencyview.h"
#include "scopetrace.h"
#include "scopetracecalculatorwidget.h"
#include "scopetracefilter.h"
#include "scopetracelist.h"
#include "scopeview.h"
#include "scopeviewtestsupport.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QDir>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtGui/QImage>
#include <QtGui/QWheelEvent>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QInputDialog>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QTabBar>
#include <QtWidgets/QTabWidget>

#include <functional>
#include <memory>

using namespace ScopeViewTest;

namespace {

// A host: it keeps every element's saved text and saves whenever an element
// says that it changed.
struct Host {
    Repository repository;
    QHash<ScopeElementArchive*, QByteArray> saved;

    void track(ScopeElementArchive* archive)
    {
        repository.add(archive);
        saved[archive] = archive->toByteArray();
        QObject::connect(archive, &ScopeElementArchive::scopeElementChanged, &repository,
                         [this, archive] { saved[archive] = archive->toByteArray(); });
    }
};

// Runs \a handle on the next modal dialog of type T as soon as it is shown.
template<typename T>
void whenModal(std::function<void(T*)> handle)
{
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, handle] {
        if (auto* dialog = qobject_cast<T*>(QApplication::activeModalWidget())) {
            timer->stop();
            timer->deleteLater();
            handle(dialog);
        }
    });
    timer->start();
}

template<typename T>
T* child(QWidget* parent, const char* name)
{
    return parent->findChild<T*>(QLatin1String(name));
}

ScopeStripesWidget* stripesOf(ScopeView* view)
{
    return child<ScopeStripesWidget>(view, "scopeStripesWidget");
}

QTreeWidgetItem* traceItem(ScopeTraceList* list, const QString& name, int stripe = -1)
{
    for (int i = 0; i < list->topLevelItemCount(); ++i) {
        if (stripe >= 0 && i != stripe)
            continue;
        QTreeWidgetItem* stripeItem = list->topLevelItem(i);
        for (int k = 0; k < stripeItem->childCount(); ++k) {
            if (stripeItem->child(k)->text(0) == name)
                return stripeItem->child(k);
        }
    }
    return nullptr;
}

// What the user sees of a view: stripes with their names and traces, and the
// display settings of every shown trace, markers and zoom window.
QStringList picture(ScopeView* view)
{
    QStringList lines;
    auto* zoomBar = child<ZoomBar>(view, "zoomBar");
    lines.append(QStringLiteral("zoom %1 %2").arg(zoomBar->sliderLeft()).arg(zoomBar->sliderRight()));
    ScopeStripesWidget* stripes = stripesOf(view);
    const ScopeMarker* marker = stripes->scene()->markers().constFirst();
    lines.append(QStringLiteral("markers %1 %2").arg(marker->position(0)).arg(marker->position(1)));
    for (ScopeWidget* widget : stripes->scopeWidgets()) {
        lines.append(QStringLiteral("stripe ") + widget->name());
        for (ScopeTrace* trace : widget->traceFilter()->traces()) {
            auto* shot = qobject_cast<ScopeShot*>(trace->shot());
            lines.append(QStringLiteral("  %1/%2 scale %3 offset %4 colour %5 off %6 ground %7 inverted %8 "
                                        "binary %9 mask %10")
                             .arg(shot->name(), trace->name())
                             .arg(trace->scalingFactor())
                             .arg(trace->verticalOffset())
                             .arg(trace->color().name())
                             .arg(trace->isOff())
                             .arg(trace->isGround())
                             .arg(trace->isInverted())
                             .arg(trace->isBinaryView())
                             .arg(trace->binaryViewMask()));
        }
    }
    return lines;
}

QPoint pointAt(ScopeWidget* widget, qint64 time)
{
    const QRect plot = widget->layout()->plotArea();
    const qint64 span = widget->rightIndex() - widget->leftIndex();
    return QPoint(plot.left() + int((time - widget->leftIndex()) * plot.width() / span), plot.center().y());
}

} // namespace

class tst_ScopeView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();

    void widgetTree();
    void tabsAppearWithAShot();
    void buttonsWithoutElement();
    void recipeImportRequest();
    void setElementPublic_data();
    void setElementPublic();
    void externalButtons();
    void clearAndSwitch();
    void quickMeasureInTraceList();
    void frequencyAnalysis();
    void nothingIsLostInAShot();
    void compositionWithoutLayout();
    void nothingIsLostInAComposition();
    void geometryIsKept();
    void damagedElements();
    void screenshot();
};

void tst_ScopeView::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeTest"));
    QCoreApplication::setApplicationName(QStringLiteral("tst_scopeview"));
}

void tst_ScopeView::init()
{
    QSettings settings;
    settings.setValue(QStringLiteral("Scope/BackgroundColor"), QColor(Qt::black));
    settings.setValue(QStringLiteral("Scope/GridColor"), QColor(128, 128, 128));
}

void tst_ScopeView::widgetTree()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    const char* const names[] = {"splitter", "traceControlFrame", "scopeStripesAssignmentWidget", "scopeFrame",
                                 "scopeStripesWidget", "zoomBar", "channelsFrame", "toolBarWidget", "showSetting",
                                 "commentButton", "importViewRecipe", "setElementPublicButton",
                                 "externalButtonWidget", "splitterChannels", "channelsWidget", "layoutWidget",
                                 "channelWidget", "timeWidget", "ViewModeTabWidget", "Zeitanalyse", "scrollArea",
                                 "measureWidget", "Frequenzanalyse"};
    for (const char* name : names)
        QVERIFY2(view->findChild<QWidget*>(QLatin1String(name)), name);
    QCOMPARE(child<QPushButton>(view.get(), "commentButton")->toolTip(), QStringLiteral("Kommentar bearbeiten"));
    QCOMPARE(child<QPushButton>(view.get(), "setElementPublicButton")->toolTip(),
             QStringLiteral("In Aufnahmen übernehmen"));
    QCOMPARE(child<QPushButton>(view.get(), "importViewRecipe")->toolTip(),
             QStringLiteral("<html><head/><body><p>Kanaleinstellungen importieren ... </p></body></html>"));
    QVERIFY(!child<QPushButton>(view.get(), "showSetting")->icon().isNull());
    QVERIFY(child<QPushButton>(view.get(), "showSetting")->text().isEmpty());
    QCOMPARE(child<QFrame>(view.get(), "scopeFrame")->minimumHeight(), 444);
    QCOMPARE(child<QFrame>(view.get(), "traceControlFrame")->minimumHeight(), 100);
    QCOMPARE(child<QFrame>(view.get(), "channelsFrame")->minimumHeight(), 160);
    QCOMPARE(child<QSplitter>(view.get(), "splitterChannels")->handleWidth(), 5);
    QVERIFY(!child<QSplitter>(view.get(), "splitter")->childrenCollapsible());
    QVERIFY(view->findChild<ScopeTraceCalculatorWidget*>(QStringLiteral("measureWidget")));
    QCOMPARE(view->currentScopeElement(), nullptr);
}

void tst_ScopeView::tabsAppearWithAShot()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->resize(1000, 900);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* tabs = child<QTabWidget>(view.get(), "ViewModeTabWidget");
    QCOMPARE(tabs->count(), 1);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Default"));
    QVERIFY(!tabs->tabBar()->isVisible());

    auto* archive = ScopeShotArchive::create(view.get());
    QVERIFY(archive->createFromReadOut(readOut(3, 501, 100, "62.5")));
    host.track(archive);
    view->setScopeElement(archive);
    QCOMPARE(view->currentScopeElement(), archive);
    QCOMPARE(tabs->count(), 2);
    QCOMPARE(tabs->tabText(0), QStringLiteral("Default"));
    QCOMPARE(tabs->tabText(1), QStringLiteral("Frequenzanalyse"));
    QTRY_VERIFY(tabs->tabBar()->isVisible());
    QCOMPARE(tabs->currentIndex(), 0);
    // A shot has one stripe; the assignment of traces to stripes is for compositions.
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);
    QVERIFY(!child<QWidget>(view.get(), "traceControlFrame")->isVisible());
    QVERIFY(child<QWidget>(view.get(), "importViewRecipe")->isVisible());

    // Only the frequency tab shows the measuring interval.
    tabs->setCurrentIndex(1);
    QVERIFY(stripesOf(view.get())->scene()->markers().constFirst()->showInterval());
    tabs->setCurrentIndex(0);
    QVERIFY(!stripesOf(view.get())->scene()->markers().constFirst()->showInterval());
}

void tst_ScopeView::buttonsWithoutElement()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    QSignalSpy recipe(view.get(), &ScopeView::recipeImportRequest);
    bool dialogSeen = false;
    auto* watch = new QTimer(view.get());
    connect(watch, &QTimer::timeout, watch, [&dialogSeen] {
        if (QWidget* modal = QApplication::activeModalWidget()) {
            dialogSeen = true;
            modal->close();
        }
    });
    watch->start(5);
    QTest::mouseClick(child<QPushButton>(view.get(), "commentButton"), Qt::LeftButton);
    QTest::mouseClick(child<QPushButton>(view.get(), "setElementPublicButton"), Qt::LeftButton);
    QCOMPARE(recipe.count(), 0);
    QTest::mouseClick(child<QPushButton>(view.get(), "importViewRecipe"), Qt::LeftButton);
    QCOMPARE(recipe.count(), 1);
    QCOMPARE(recipe.at(0).at(0).value<ScopeShotArchive*>(), nullptr);
    QCoreApplication::processEvents();
    QVERIFY(!dialogSeen);
    QCOMPARE(view->currentScopeElement(), nullptr);
}

void tst_ScopeView::recipeImportRequest()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* archive = ScopeShotArchive::create(view.get());
    archive->createFromReadOut(readOut(2, 101, 10, "62.5"));
    host.track(archive);
    QSignalSpy recipe(view.get(), &ScopeView::recipeImportRequest);
    view->setScopeElement(archive);
    QTest::mouseClick(child<QPushButton>(view.get(), "importViewRecipe"), Qt::LeftButton);
    QCOMPARE(recipe.count(), 1);
    QCOMPARE(recipe.at(0).at(0).value<ScopeShotArchive*>(), archive);

    auto* composition = ScopeCompositionArchive::create(view.get());
    composition->create({archive});
    host.track(composition);
    view->setScopeElement(composition);
    QVERIFY(!child<QWidget>(view.get(), "importViewRecipe")->isVisible());
    QVERIFY(child<QWidget>(view.get(), "traceControlFrame")->isVisible());
    QVERIFY(QMetaObject::invokeMethod(view.get(), "emitRecipeImportRequest"));
    QCOMPARE(recipe.count(), 2);
    QCOMPARE(recipe.at(1).at(0).value<ScopeShotArchive*>(), nullptr);
}

void tst_ScopeView::setElementPublic_data()
{
    QTest::addColumn<bool>("accept");
    QTest::addColumn<QString>("name");
    QTest::newRow("accepted") << true << QStringLiteral("Hochlauf Achse 2");
    QTest::newRow("empty name") << true << QString();
    QTest::newRow("cancelled") << false << QStringLiteral("Hochlauf Achse 2");
}

void tst_ScopeView::setElementPublic()
{
    QFETCH(bool, accept);
    QFETCH(QString, name);
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* archive = ScopeShotArchive::create(view.get());
    archive->createFromReadOut(readOut(2, 101, 10, "62.5"));
    archive->setPublic(false);
    const QString oldName = archive->name();
    host.track(archive);
    view->setScopeElement(archive);
    auto* button = child<QPushButton>(view.get(), "setElementPublicButton");
    QVERIFY(button->isVisible());
    QVERIFY(button->isEnabled());
    QString title;
    QString label;
    QString preset;
    whenModal<QInputDialog>([&](QInputDialog* dialog) {
        title = dialog->windowTitle();
        label = dialog->labelText();
        preset = dialog->textValue();
        dialog->setTextValue(name);
        if (accept)
            dialog->accept();
        else
            dialog->reject();
    });
    QTest::mouseClick(button, Qt::LeftButton);
    QCOMPARE(title, QStringLiteral("Direktaufnahme ablegen"));
    QCOMPARE(label, QStringLiteral("Name"));
    QCOMPARE(preset, oldName);
    const bool changes = accept && !name.isEmpty();
    QCOMPARE(archive->isPublic(), changes);
    QCOMPARE(archive->name(), changes ? name : oldName);
    QCOMPARE(button->isEnabled(), !changes);
    if (changes) {
        // The host heard of it and saved the new name.
        QVERIFY(host.saved.value(archive).contains("Name=" + name.toLatin1()));
    }
    // A public element offers no such button.
    view->setScopeElement(archive);
    QCOMPARE(button->isVisible(), !changes);
}

void tst_ScopeView::externalButtons()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    QHBoxLayout* layout = view->externalButtonLayout();
    QVERIFY(layout);
    QCOMPARE(layout->objectName(), QStringLiteral("externalButtonLayout"));
    auto* button = new QPushButton(QStringLiteral("Host"));
    layout->addWidget(button);
    QCOMPARE(button->parentWidget(), child<QWidget>(view.get(), "externalButtonWidget"));
}

void tst_ScopeView::clearAndSwitch()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* first = ScopeShotArchive::create(view.get());
    first->createFromReadOut(readOut(3, 201, 10, "62.5", "1"));
    auto* second = ScopeShotArchive::create(view.get());
    second->createFromReadOut(readOut(2, 201, 10, "62.5", "2"));
    host.track(first);
    host.track(second);
    view->setScopeElement(first);
    view->setScopeElement(second);
    QCOMPARE(view->currentScopeElement(), second);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().constFirst()->traceFilter()->traces().size(), 2);
    QCOMPARE(stripesOf(view.get())->scene()->shots().size(), 1);
    auto* list = child<ScopeTraceList>(view.get(), "channelsWidget");
    QTRY_COMPARE(list->topLevelItemCount(), 1);
    QTRY_COMPARE(list->topLevelItem(0)->childCount(), 2);

    view->refreshScopeElement();
    QCOMPARE(view->currentScopeElement(), second);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);

    const QByteArray before = host.saved.value(second);
    view->clearScopeElement();
    QCOMPARE(view->currentScopeElement(), nullptr);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 0);
    QCOMPARE(stripesOf(view.get())->scene()->shots().size(), 0);
    QCOMPARE(child<QTabWidget>(view.get(), "ViewModeTabWidget")->count(), 1);
    QTRY_COMPARE(list->topLevelItemCount(), 0);
    // Clearing is not a change of the element.
    QCOMPARE(host.saved.value(second), before);
    // Nothing needs an element any more.
    QVERIFY(QMetaObject::invokeMethod(view.get(), "editCurrentElementComment"));
    QVERIFY(QMetaObject::invokeMethod(view.get(), "setCurrentElementPublic"));
    view->refreshScopeElement();
    QCOMPARE(view->currentScopeElement(), nullptr);
}

void tst_ScopeView::quickMeasureInTraceList()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->resize(1100, 900);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* archive = ScopeShotArchive::create(view.get());
    archive->createFromReadOut(readOut(3, 1001, 500, "0.1"));
    host.track(archive);
    view->setScopeElement(archive);
    auto* list = child<ScopeTraceList>(view.get(), "channelsWidget");
    ScopeWidget* stripe = stripesOf(view.get())->scopeWidgets().constFirst();
    QTRY_VERIFY(stripe->layout()->plotArea().width() > 0);
    QTRY_VERIFY(traceItem(list, QStringLiteral("Kanal 3")));
    // Channel 3 is a ramp from −3 to 3 over the recording: 0 at the trigger.
    const QPoint position = pointAt(stripe, 0);
    QTest::mousePress(stripe, Qt::LeftButton, Qt::NoModifier, position);
    const qint64 time = qint64(std::llround(stripe->timeAt(position) / 100.0)) * 100;
    const double expected = -3.0 + 6.0 * double(time / 100 + 500) / 1000.0;
    const QString text = QString::number(expected, 'f', 3).replace(QLatin1Char('.'), QLocale().decimalPoint())
        + QStringLiteral(" V");
    QTRY_COMPARE(traceItem(list, QStringLiteral("Kanal 3"))->text(1), text);
    QVERIFY(list->headerItem()->text(1).startsWith(QStringLiteral("Messwert bei ")));
    QTest::mouseMove(stripe, position + QPoint(100, 0));
    QTRY_VERIFY(traceItem(list, QStringLiteral("Kanal 3"))->text(1) != text);
    QTest::mouseRelease(stripe, Qt::LeftButton, Qt::NoModifier, position + QPoint(100, 0));
    QTRY_COMPARE(list->headerItem()->text(1), QStringLiteral("Messwert"));
}

void tst_ScopeView::frequencyAnalysis()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->resize(1100, 900);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* archive = ScopeShotArchive::create(view.get());
    archive->createFromReadOut(readOut(3, 1024, 100, "62.5"));
    host.track(archive);
    view->setScopeElement(archive);
    auto* tabs = child<QTabWidget>(view.get(), "ViewModeTabWidget");
    QCOMPARE(tabs->count(), 2);
    auto* panel = qobject_cast<ScopeToFrequencyView*>(tabs->widget(1));
    QVERIFY(panel);
    ScopeMarker* marker = stripesOf(view.get())->scene()->markers().constFirst();
    QCOMPARE(panel->markerATime(), marker->position(0));
    QCOMPARE(panel->markerBTime(), marker->position(1));
    marker->setPosition(0, -62500 * 50);
    marker->setPosition(1, 62500 * 500);
    QCOMPARE(panel->markerATime(), qint64(-62500 * 50));
    QCOMPARE(panel->markerBTime(), qint64(62500 * 500));

    // "Anwenden" makes the frequency view, which the host hears of.
    QSignalSpy created(view.get(), &ScopeView::widgetCreated);
    tabs->setCurrentIndex(1);
    auto* apply = panel->findChild<QPushButton*>(QStringLiteral("applyButton"));
    QVERIFY(apply);
    QTest::mouseClick(apply, Qt::LeftButton);
    QTRY_COMPARE(created.count(), 1);
    QCOMPARE(created.at(0).at(0).value<ScopeView*>(), view.get());
    QPointer<QWidget> frequencyView = created.at(0).at(1).value<QWidget*>();
    QVERIFY(frequencyView);
    delete frequencyView.data();

    // Clearing removes the panel; the tab bar hides again.
    view->clearScopeElement();
    QCOMPARE(tabs->count(), 1);
    QTRY_VERIFY(!tabs->tabBar()->isVisible());
}

void tst_ScopeView::nothingIsLostInAShot()
{
    Host host;
    QObject archives;
    auto* archive = ScopeShotArchive::create(&archives);
    QVERIFY(archive->createFromReadOut(readOut(4, 2001, 400, "62.5")));
    host.track(archive);
    QStringList shown;
    {
        std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
        view->resize(1100, 900);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        view->setScopeElement(archive);
        ScopeWidget* stripe = stripesOf(view.get())->scopeWidgets().constFirst();
        QTRY_VERIFY(stripe->layout()->plotArea().width() > 0);
        auto* zoomBar = child<ZoomBar>(view.get(), "zoomBar");

        // Zoom window: Control + wheel in the stripe.
        const QPoint wheelAt = pointAt(stripe, 20000000);
        QWheelEvent wheel(QPointF(wheelAt), QPointF(stripe->mapToGlobal(wheelAt)), QPoint(), QPoint(0, 120),
                          Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(stripe, &wheel);
        const qint64 zoomLeft = zoomBar->sliderLeft();
        QVERIFY(zoomLeft > zoomBar->minimum());

        // Markers: "Marker A hier setzen" from the context menu, B dragged.
        ScopeMarker* marker = stripesOf(view.get())->scene()->markers().constFirst();
        Q_EMIT stripe->customContextMenuRequested(pointAt(stripe, zoomLeft + (zoomBar->sliderRight() - zoomLeft) / 4));
        auto* menu = stripe->findChild<QMenu*>();
        QVERIFY(menu);
        menu->hide();
        menu->actions().at(0)->trigger();
        const qint64 markerA = marker->position(0);
        QVERIFY(markerA > zoomLeft);
        marker->setPosition(1, zoomBar->sliderRight() - (zoomBar->sliderRight() - zoomLeft) / 4);
        const QPoint b = pointAt(stripe, marker->position(1));
        QTest::mousePress(stripe, Qt::LeftButton, Qt::NoModifier, b);
        QTest::mouseMove(stripe, b + QPoint(-30, 0));
        QTest::mouseRelease(stripe, Qt::LeftButton, Qt::NoModifier, b + QPoint(-30, 0));

        // Trace settings through the trace controls of the selected trace.
        auto* list = child<ScopeTraceList>(view.get(), "channelsWidget");
        auto* controls = child<QWidget>(view.get(), "channelWidget");
        QTRY_VERIFY(traceItem(list, QStringLiteral("Kanal 2")));
        list->setCurrentItem(traceItem(list, QStringLiteral("Kanal 2")));
        ScopeTrace* trace = list->currentTrace();
        QVERIFY(trace);
        QCOMPARE(trace->name(), QStringLiteral("Kanal 2"));
        const double scale = trace->scalingFactor();
        QTest::mouseClick(child<QPushButton>(controls, "scaleUpButton"), Qt::LeftButton);
        QVERIFY(trace->scalingFactor() != scale);
        const double offset = trace->verticalOffset();
        QTest::mouseClick(child<QPushButton>(controls, "moveUpButton"), Qt::LeftButton);
        QCOMPARE(trace->verticalOffset(), offset + 1.0);
        QTest::mouseClick(child<QPushButton>(controls, "invertButton"), Qt::LeftButton);
        QVERIFY(trace->isInverted());
        whenModal<QColorDialog>([](QColorDialog* dialog) {
            dialog->setCurrentColor(QColor(200, 100, 50));
            dialog->accept();
        });
        QTest::mouseClick(child<QPushButton>(controls, "colorButton"), Qt::LeftButton);
        QCOMPARE(trace->color(), QColor(200, 100, 50));

        list->setCurrentItem(traceItem(list, QStringLiteral("Kanal 3")));
        ScopeTrace* third = list->currentTrace();
        QTest::mouseClick(child<QPushButton>(controls, "groundButton"), Qt::LeftButton);
        QVERIFY(third->isGround());
        QTest::mouseClick(child<QPushButton>(controls, "binaryButton"), Qt::LeftButton);
        QVERIFY(third->isBinaryView());
        third->setBinaryViewMask(0x5);

        list->setCurrentItem(traceItem(list, QStringLiteral("Kanal 4")));
        QTest::mouseClick(child<QPushButton>(controls, "offButton"), Qt::LeftButton);
        QVERIFY(list->currentTrace()->isOff());
        // Animations end; their last frame is what is kept.
        QTRY_COMPARE(list->currentTrace()->offAlphaFactor(), 0.0);
        QTRY_COMPARE(third->groundScalingFactor(), 0.0);
        // Control+drag upwards moves the curves of the stripe up.
        const double panned = trace->verticalOffset();
        const QPoint panStart = stripe->layout()->plotArea().center();
        QTest::mousePress(stripe, Qt::LeftButton, Qt::ControlModifier, panStart);
        QTest::mouseMove(stripe, panStart + QPoint(0, -15));
        QTest::mouseRelease(stripe, Qt::LeftButton, Qt::ControlModifier, panStart + QPoint(0, -15));
        QVERIFY(trace->verticalOffset() != panned);

        QCoreApplication::processEvents();
        shown = picture(view.get());
    }
    const QByteArray saved = host.saved.value(archive);
    QVERIFY(saved.contains("MarkerPosition_0A"));
    QVERIFY(saved.contains("ViewSliderLeft"));

    // Recreate everything from the saved text, as the host does on its next start.
    Host again;
    auto* reopened = ScopeShotArchive::create(&archives);
    QVERIFY(reopened->fromByteArray(saved));
    again.track(reopened);
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &again.repository));
    view->resize(1100, 900);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    view->setScopeElement(reopened);
    QCoreApplication::processEvents();
    const QStringList reshown = picture(view.get());
    QCOMPARE(reshown, shown);
    // Showing it again is no change.
    QCOMPARE(again.saved.value(reopened), reopened->toByteArray());
}

void tst_ScopeView::compositionWithoutLayout()
{
    Host host;
    QObject archives;
    auto* first = ScopeShotArchive::create(&archives);
    first->createFromReadOut(readOut(3, 301, 100, "62.5", "11"));
    auto* second = ScopeShotArchive::create(&archives);
    second->createFromReadOut(readOut(2, 301, 100, "125", "22"));
    host.track(first);
    host.track(second);
    auto* composition = ScopeCompositionArchive::create(&archives);
    composition->create({first, second});
    host.track(composition);
    // An identifier the repository does not know is skipped.
    auto* missing = ScopeShotArchive::create(&archives);
    missing->createFromReadOut(readOut(1, 11, 1, "62.5", "33"));
    auto* withMissing = ScopeCompositionArchive::create(&archives);
    withMissing->create({first, missing, second});

    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->setScopeElement(withMissing);
    QCOMPARE(stripesOf(view.get())->scene()->shots().size(), 2);
    view->setScopeElement(composition);
    QCOMPARE(view->currentScopeElement(), composition);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().constFirst()->traceFilter()->traces().size(), 5);
    auto* assignment = child<ScopeStripesAssignmentWidget>(view.get(), "scopeStripesAssignmentWidget");
    QTRY_COMPARE(assignment->topLevelItemCount(), 2);
    QCOMPARE(assignment->topLevelItem(0)->text(0), first->name());
    QCOMPARE(assignment->topLevelItem(0)->childCount(), 3);
    QCOMPARE(assignment->topLevelItem(1)->childCount(), 2);
    // Two time bases: the common grid is their greatest common divisor.
    QCOMPARE(stripesOf(view.get())->scene()->timeGrid(), qint64(62500));
}

void tst_ScopeView::nothingIsLostInAComposition()
{
    Host host;
    QObject archives;
    auto* first = ScopeShotArchive::create(&archives);
    first->createFromReadOut(readOut(3, 301, 100, "62.5", "11"));
    auto* second = ScopeShotArchive::create(&archives);
    second->createFromReadOut(readOut(2, 301, 100, "62.5", "22"));
    host.track(first);
    host.track(second);
    const QByteArray firstBefore = first->toByteArray();
    const QByteArray secondBefore = second->toByteArray();
    auto* composition = ScopeCompositionArchive::create(&archives);
    composition->create({first, second});
    host.track(composition);

    QStringList shown;
    {
        std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
        view->resize(1100, 1000);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
        view->setScopeElement(composition);
        auto* assignment = child<ScopeStripesAssignmentWidget>(view.get(), "scopeStripesAssignmentWidget");
        QTRY_COMPARE(assignment->topLevelItemCount(), 2);

        // A new stripe from the assignment's context menu, then renamed.
        Q_EMIT assignment->customContextMenuRequested(QPoint(5, 5));
        auto* menu = assignment->findChild<QMenu*>();
        QVERIFY(menu);
        menu->hide();
        QAction* add = nullptr;
        QMenu* rename = nullptr;
        for (QAction* action : menu->actions()) {
            if (action->text() == QStringLiteral("neuen Streifen hinzufügen"))
                add = action;
            if (action->menu() && action->text() == QStringLiteral("Streifen umbenennen"))
                rename = action->menu();
        }
        QVERIFY(add && rename);
        add->trigger();
        QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 2);
        Q_EMIT assignment->customContextMenuRequested(QPoint(5, 5));
        menu->hide();
        for (QAction* action : menu->actions()) {
            if (action->menu())
                rename = action->menu();
        }
        QCOMPARE(rename->actions().size(), 2);
        whenModal<QInputDialog>([](QInputDialog* dialog) {
            dialog->setTextValue(QStringLiteral("Drehzahl"));
            dialog->accept();
        });
        rename->actions().at(1)->trigger();
        QCOMPARE(stripesOf(view.get())->scopeWidgets().at(1)->name(), QStringLiteral("Drehzahl"));

        // Channel 2 of the second shot goes to the new stripe, channel 3 of the
        // first nowhere.
        ScopeTrace* moved = nullptr;
        ScopeTrace* hidden = nullptr;
        for (ScopeTrace* trace : stripesOf(view.get())->scopeWidgets().at(0)->traceFilter()->traces()) {
            auto* shot = qobject_cast<ScopeShot*>(trace->shot());
            if (shot->archive() == second && trace->number() == 1)
                moved = trace;
            if (shot->archive() == first && trace->number() == 2)
                hidden = trace;
        }
        QVERIFY(moved && hidden);
        QComboBox* combo = nullptr;
        QTRY_VERIFY((combo = qobject_cast<QComboBox*>(assignment->itemWidget(assignment->itemOf(moved), 1)))
                    && combo->count() == 3);
        combo->setCurrentIndex(1);
        QTRY_VERIFY((combo = qobject_cast<QComboBox*>(assignment->itemWidget(assignment->itemOf(hidden), 1)))
                    && combo->count() == 3 && combo->currentIndex() == 0);
        combo->setCurrentIndex(2);

        // Display settings of a trace inside the composition.
        auto* list = child<ScopeTraceList>(view.get(), "channelsWidget");
        QTRY_VERIFY(list->topLevelItemCount() == 2 && traceItem(list, moved->name(), 1));
        list->setCurrentItem(traceItem(list, moved->name(), 1));
        QCOMPARE(list->currentTrace(), moved);
        auto* controls = child<QWidget>(view.get(), "channelWidget");
        QTest::mouseClick(child<QPushButton>(controls, "scaleDownButton"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(controls, "moveDownButton"), Qt::LeftButton);
        QTest::mouseClick(child<QPushButton>(controls, "invertButton"), Qt::LeftButton);
        QVERIFY(moved->isInverted());

        // Marker and zoom window.
        auto* zoomBar = child<ZoomBar>(view.get(), "zoomBar");
        zoomBar->setSlider(zoomBar->minimum() / 2, zoomBar->maximum() / 2);
        stripesOf(view.get())->scene()->markers().constFirst()->setPosition(0, -1000000);
        QCoreApplication::processEvents();
        shown = picture(view.get());
    }
    // The shots themselves are untouched.
    QCOMPARE(first->toByteArray(), firstBefore);
    QCOMPARE(second->toByteArray(), secondBefore);
    const QByteArray saved = host.saved.value(composition);
    QVERIFY(saved.contains("ScopeStripe_1_ScopeStripeName=Drehzahl"));

    auto* reopened = ScopeCompositionArchive::create(&archives);
    QVERIFY(reopened->fromByteArray(saved));
    // Fresh shot archives from their own saved texts.
    Host again;
    auto* first2 = ScopeShotArchive::create(&archives);
    first2->fromByteArray(host.saved.value(first));
    auto* second2 = ScopeShotArchive::create(&archives);
    second2->fromByteArray(host.saved.value(second));
    again.track(first2);
    again.track(second2);
    again.track(reopened);
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &again.repository));
    view->resize(1100, 1000);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    view->setScopeElement(reopened);
    QCoreApplication::processEvents();
    QCOMPARE(picture(view.get()), shown);
}

void tst_ScopeView::geometryIsKept()
{
    Host host;
    {
        std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
        view->resize(900, 950);
        view->show();
        QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    }
    QVERIFY(!QSettings().value(QStringLiteral("Scope/scopeViewGeometry")).toByteArray().isEmpty());
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    QCOMPARE(view->size(), QSize(900, 950));
}

void tst_ScopeView::damagedElements()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, nullptr));
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    // An archive without data: an empty stripe, the frequency tab keeps its place.
    auto* empty = ScopeShotArchive::create(view.get());
    QVERIFY(empty->fromByteArray("[Archive]\r\nName=leer\r\n[ScopeScene]\r\nMarkerPosition_0A=abc\r\n"
                                 "ViewSliderLeft=99999999999999999999999\r\nScopeStripe_0_ScopeStripeName=\r\n"));
    view->setScopeElement(empty);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().constFirst()->traceFilter()->traces().size(), 0);
    QCOMPARE(child<QTabWidget>(view.get(), "ViewModeTabWidget")->count(), 2);
    stripesOf(view.get())->scopeWidgets().constFirst()->repaint();

    // A composition without a repository shows nothing, and says so nowhere.
    auto* composition = ScopeCompositionArchive::create(view.get());
    composition->create({empty});
    view->setScopeElement(composition);
    QCOMPARE(view->currentScopeElement(), composition);
    QCOMPARE(stripesOf(view.get())->scene()->shots().size(), 0);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 1);

    // A stored layout that is garbage is skipped key by key.
    auto* garbage = ScopeCompositionArchive::create(view.get());
    QVERIFY(garbage->fromByteArray("[Archive]\r\nID=g\r\n[ScopeScene]\r\nScopeStripe_9999999999_ScopeStripeName=x\r\n"
                                   "ScopeStripe_-3_StripeTrace_0=y\r\nScopeStripe_1_StripeTrace_z_TraceIndex=q\r\n"
                                   "TraceView_zz_x_Color=1\r\nScopeStripe_2_ScopeStripeName=Zwei\r\n"));
    view->setScopeElement(garbage);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().size(), 2);
    QCOMPARE(stripesOf(view.get())->scopeWidgets().at(1)->name(), QStringLiteral("Zwei"));
    view->setScopeElement(nullptr);
    QCOMPARE(view->currentScopeElement(), nullptr);
}

void tst_ScopeView::screenshot()
{
    Host host;
    std::unique_ptr<ScopeView> view(ScopeView::create(nullptr, &host.repository));
    view->resize(1200, 1000);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view.get()));
    auto* archive = ScopeShotArchive::create(view.get());
    archive->createFromReadOut(readOut(4, 2001, 400, "62.5"));
    host.track(archive);
    view->setScopeElement(archive);
    ScopeWidget* stripe = stripesOf(view.get())->scopeWidgets().constFirst();
    QTRY_VERIFY(stripe->layout()->plotArea().width() > 0);
    ScopeMarker* marker = stripesOf(view.get())->scene()->markers().constFirst();
    auto* zoomBar = child<ZoomBar>(view.get(), "zoomBar");
    zoomBar->setSlider(zoomBar->minimum(), zoomBar->maximum());
    marker->setPosition(0, 0);
    marker->setPosition(1, 50000000);
    QCoreApplication::processEvents();

    const QImage image = view->grab().toImage();
    image.save(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("tst_scopeview_screenshot.png")));
    const QPoint origin = stripe->mapTo(view.get(), QPoint(0, 0));
    const QRect plot = stripe->layout()->plotArea().translated(origin);
    const QSize cell = stripe->layout()->divisionSize();
    const QColor grid(128, 128, 128);
    const QColor background(Qt::black);
    auto near = [](const QColor& a, const QColor& b) {
        return qAbs(a.red() - b.red()) < 40 && qAbs(a.green() - b.green()) < 40 && qAbs(a.blue() - b.blue()) < 40;
    };

    // Background inside a division, away from lines and curves.
    QCOMPARE(image.pixelColor(plot.left() + cell.width() / 4, plot.top() + cell.height() + 3), background);
    // Grid lines: every division, across and down.
    int gridHits = 0;
    for (int i = 0; i <= 10; ++i)
        gridHits += near(image.pixelColor(plot.left() + i * cell.width(), plot.top() + cell.height() / 3), grid);
    for (int i = 0; i <= 8; ++i)
        gridHits += near(image.pixelColor(plot.left() + cell.width() / 3, plot.top() + i * cell.height()), grid);
    QVERIFY2(gridHits >= 18, qPrintable(QString::number(gridHits)));

    // The trigger line (application colour 3) at time 0, the marker B line
    // (colour 2) at its time.
    const qint64 left = stripe->leftIndex();
    const qint64 span = stripe->rightIndex() - left;
    auto column = [&](qint64 time) { return plot.left() + int((time - left) * plot.width() / span); };
    const QColor markerColor = AppSettings::instance()->color(2);
    int markerHits = 0;
    for (int dx = -1; dx <= 1; ++dx) {
        for (int y = plot.top() + 5; y < plot.bottom() - 5; y += 3)
            markerHits += near(image.pixelColor(column(50000000) + dx, y), markerColor);
    }
    QVERIFY2(markerHits > 10, qPrintable(QString::number(markerHits)));

    // Each trace leaves pixels of its own colour inside the plot.
    for (ScopeTrace* trace : stripe->traceFilter()->traces()) {
        int hits = 0;
        for (int y = plot.top(); y <= plot.bottom(); ++y) {
            for (int x = plot.left(); x <= plot.right(); x += 2)
                hits += image.pixelColor(x, y) == trace->color();
        }
        QVERIFY2(hits > 50, qPrintable(trace->name()));
    }

    // Channel 3 is a ramp: its colour lies low at the left and high at the right.
    ScopeTrace* ramp = stripe->traceFilter()->traces().at(2);
    auto rowOf = [&](int x) {
        for (int y = plot.top(); y <= plot.bottom(); ++y) {
            for (int dx = -2; dx <= 2; ++dx) {
                if (image.pixelColor(x + dx, y) == ramp->color())
                    return y;
            }
        }
        return -1;
    };
    const int startRow = rowOf(column(ramp->startTime() + 2000000));
    const int endRow = rowOf(column(ramp->endTime() - 2000000));
    QVERIFY(startRow > 0 && endRow > 0);
    QVERIFY2(startRow > endRow + plot.height() / 4, qPrintable(QStringLiteral("%1 %2").arg(startRow).arg(endRow)));
}

QTEST_MAIN(tst_ScopeView)
#include "tst_scopeview.moc"
