// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "scopelayout.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripesassignmentwidget.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopeviewtestsupport.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>

using namespace ScopeViewTest;

namespace {

struct Recording {
    ScopeShotArchive* archive = nullptr;
    QSharedPointer<ScopeShot> shot;
};

Recording makeRecording(QObject* parent, const QByteArray& serial, int channels = 3)
{
    Recording recording;
    recording.archive = ScopeShotArchive::create(parent);
    recording.archive->createFromReadOut(readOut(channels, 201, 100, "62.5", serial));
    recording.shot.reset(new ScopeShot);
    recording.shot->setArchive(recording.archive);
    recording.shot->load();
    return recording;
}

QStringList traceNames(const ScopeWidget* widget)
{
    QStringList names;
    const QList<ScopeTrace*> traces = widget->traceFilter()->traces();
    for (ScopeTrace* trace : traces) {
        auto* shot = qobject_cast<ScopeShot*>(trace->shot());
        names.append(QString::fromLatin1(shot->archive()->id().left(4)) + QLatin1Char(':') + trace->name());
    }
    return names;
}

} // namespace

class tst_ScopeStripesWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void fiveStripesAtMost();
    void newStripeFollowsZoomBar();
    void deletedStripeLeaves();
    void layoutWithoutEntriesShowsEverything();
    void stripeLayoutSurvives();
    void unknownReferencesAreSkipped();
    void assignmentMovesTraces();
};

void tst_ScopeStripesWidget::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeStripesWidget::fiveStripesAtMost()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    QSignalSpy changed(&stripes, &ScopeStripesWidget::scopeStripesChanged);
    for (int i = 0; i < 5; ++i) {
        ScopeWidget* widget = stripes.addStripe();
        QVERIFY(widget);
        QCOMPARE(stripes.scopeWidgets().size(), i + 1);
        QCOMPARE(stripes.scopeWidgets().last(), widget);
        QCOMPARE(widget->stripesWidget(), &stripes);
    }
    // Listeners hear of new stripes after the current event only.
    QCOMPARE(changed.count(), 0);
    QTRY_COMPARE(changed.count(), 5);
    QCOMPARE(stripes.addStripe(), nullptr);
    QCOMPARE(stripes.scopeWidgets().size(), 5);
    QCoreApplication::processEvents();
    QCOMPARE(changed.count(), 5);
    QCOMPARE(stripes.scopeWidgets().at(4)->name(), QStringLiteral("Streifen 5"));
}

void tst_ScopeStripesWidget::newStripeFollowsZoomBar()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    zoomBar.setRange(-1000000, 1000000);
    zoomBar.setMinimumSliderDifference(0);
    zoomBar.setSlider(-250000, 400000);
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    ScopeWidget* widget = stripes.addStripe();
    QCOMPARE(widget->leftIndex(), qint64(-250000));
    QCOMPARE(widget->rightIndex(), qint64(400000));
    zoomBar.setSlider(-100, 900);
    QCOMPARE(widget->leftIndex(), qint64(-100));
    QCOMPARE(widget->rightIndex(), qint64(900));
}

void tst_ScopeStripesWidget::deletedStripeLeaves()
{
    ScopeScene scene;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    stripes.addStripe();
    ScopeWidget* second = stripes.addStripe();
    QCoreApplication::processEvents();
    QSignalSpy changed(&stripes, &ScopeStripesWidget::scopeStripesChanged);
    second->deleteLater();
    QTRY_COMPARE(stripes.scopeWidgets().size(), 1);
    QTRY_COMPARE(changed.count(), 1);
    stripes.clear();
    QCOMPARE(stripes.scopeWidgets().size(), 0);
}

void tst_ScopeStripesWidget::layoutWithoutEntriesShowsEverything()
{
    QObject owner;
    Recording first = makeRecording(&owner, "1111");
    Recording second = makeRecording(&owner, "2222", 2);
    ScopeScene scene;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    stripes.setStripeLayout(nullptr, {first.shot.data(), second.shot.data()});
    QCOMPARE(stripes.scopeWidgets().size(), 1);
    QCOMPARE(traceNames(stripes.scopeWidgets().constFirst()),
             QStringList({QStringLiteral("1111:Kanal 1"), QStringLiteral("1111:Kanal 2"),
                          QStringLiteral("1111:Kanal 3"), QStringLiteral("2222:Kanal 1"),
                          QStringLiteral("2222:Kanal 2")}));
}

void tst_ScopeStripesWidget::stripeLayoutSurvives()
{
    QObject owner;
    Recording first = makeRecording(&owner, "1111");
    Recording second = makeRecording(&owner, "2222", 2);
    KlIniParser::IniParser document;
    KlIniParser::IniSection* section = document.findOrCreateSection("ScopeScene");
    section->setValue("ViewSliderLeft", "-5");
    {
        ScopeScene scene;
        ZoomBar zoomBar;
        ScopeStripesWidget stripes;
        stripes.setScene(&scene);
        stripes.setZoomBar(&zoomBar);
        stripes.setStripeLayout(nullptr, {first.shot.data(), second.shot.data()});
        ScopeWidget* top = stripes.scopeWidgets().constFirst();
        ScopeWidget* bottom = stripes.addStripe();
        bottom->setName(QStringLiteral("Ströme"));
        ScopeTrace* moved = second.shot->trace(1);
        top->traceFilter()->removeTrace(moved);
        bottom->traceFilter()->addTrace(moved);
        top->traceFilter()->removeTrace(first.shot->trace(2)); // shown nowhere
        moved->setScalingFactor(0.25);
        moved->setVerticalOffset(2.5);
        moved->setColor(QColor(10, 20, 30));
        first.shot->trace(2)->setInverted(true, false);
        stripes.writeStripeLayout(section, {first.shot.data(), second.shot.data()});
    }
    // Keys of others stay.
    QCOMPARE(section->value("ViewSliderLeft"), QByteArray("-5"));
    // The shot archives are not touched by a composition's layout.
    QVERIFY(!first.archive->toByteArray().contains("ViewInverted=1"));

    // Saved and opened again: fresh shots from the same archives.
    KlIniParser::IniParser reopened;
    reopened.setIniText(document.getIniText());
    Recording first2;
    first2.archive = first.archive;
    first2.shot.reset(new ScopeShot);
    first2.shot->setArchive(first.archive);
    first2.shot->load();
    Recording second2;
    second2.shot.reset(new ScopeShot);
    second2.shot->setArchive(second.archive);
    second2.shot->load();
    ScopeScene scene;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    stripes.setStripeLayout(reopened.section("ScopeScene"), {first2.shot.data(), second2.shot.data()});
    const QList<ScopeWidget*> widgets = stripes.scopeWidgets();
    QCOMPARE(widgets.size(), 2);
    QCOMPARE(widgets.at(0)->name(), QStringLiteral("Streifen 1"));
    QCOMPARE(widgets.at(1)->name(), QStringLiteral("Ströme"));
    QCOMPARE(traceNames(widgets.at(0)),
             QStringList({QStringLiteral("1111:Kanal 1"), QStringLiteral("1111:Kanal 2"),
                          QStringLiteral("2222:Kanal 1")}));
    QCOMPARE(traceNames(widgets.at(1)), QStringList({QStringLiteral("2222:Kanal 2")}));
    ScopeTrace* moved = second2.shot->trace(1);
    QCOMPARE(moved->scalingFactor(), 0.25);
    QCOMPARE(moved->verticalOffset(), 2.5);
    QCOMPARE(moved->color(), QColor(10, 20, 30));
    QVERIFY(first2.shot->trace(2)->isInverted());
}

void tst_ScopeStripesWidget::unknownReferencesAreSkipped()
{
    QObject owner;
    Recording first = makeRecording(&owner, "1111");
    KlIniParser::IniParser document;
    KlIniParser::IniSection* section = document.findOrCreateSection("ScopeScene");
    section->setValue("ScopeStripe_0_ScopeStripeName", "Oben");
    section->setValue("ScopeStripe_0_StripeTrace_0", first.archive->id());
    section->setValue("ScopeStripe_0_StripeTrace_0_TraceIndex", "7");
    section->setValue("ScopeStripe_0_StripeTrace_1", "no such shot");
    section->setValue("ScopeStripe_0_StripeTrace_1_TraceIndex", "0");
    section->setValue("ScopeStripe_0_StripeTrace_2", first.archive->id());
    section->setValue("ScopeStripe_0_StripeTrace_2_TraceIndex", "1");
    section->setValue("ScopeStripe_x_ScopeStripeName", "garbage");
    section->setValue("TraceView_zz_1_ViewScalingFactor", "garbage");
    ScopeScene scene;
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    stripes.setStripeLayout(section, {first.shot.data()});
    QCOMPARE(stripes.scopeWidgets().size(), 1);
    QCOMPARE(stripes.scopeWidgets().constFirst()->name(), QStringLiteral("Oben"));
    QCOMPARE(traceNames(stripes.scopeWidgets().constFirst()), QStringList({QStringLiteral("1111:Kanal 2")}));
}

void tst_ScopeStripesWidget::assignmentMovesTraces()
{
    QObject owner;
    Recording first = makeRecording(&owner, "1111");
    ScopeScene scene;
    scene.addShot(first.shot);
    ZoomBar zoomBar;
    ScopeStripesWidget stripes;
    stripes.setScene(&scene);
    stripes.setZoomBar(&zoomBar);
    stripes.setStripeLayout(nullptr, {first.shot.data()});
    ScopeWidget* bottom = stripes.addStripe();
    ScopeStripesAssignmentWidget assignment;
    assignment.setStripesWidget(&stripes);
    assignment.show();
    QVERIFY(QTest::qWaitForWindowExposed(&assignment));
    QCOMPARE(assignment.headerItem()->text(0), QStringLiteral("Name"));
    QCOMPARE(assignment.headerItem()->text(1), QStringLiteral("Streifen"));
    QVERIFY(assignment.isHeaderHidden());

    ScopeTrace* trace = first.shot->trace(1);
    QTreeWidgetItem* item = nullptr;
    QComboBox* combo = nullptr;
    // The rows are rebuilt once the new stripe has been announced.
    QTRY_VERIFY((item = assignment.itemOf(trace))
                && (combo = qobject_cast<QComboBox*>(assignment.itemWidget(item, 1)))
                && combo->count() == 3);
    QCOMPARE(item->text(0), QStringLiteral("Kanal 2"));
    QCOMPARE(item->parent()->text(0), first.archive->name());
    QCOMPARE(combo->itemText(0), QStringLiteral("Streifen 1"));
    QCOMPARE(combo->itemText(1), QStringLiteral("Streifen 2"));
    QCOMPARE(combo->itemText(2), QStringLiteral("nicht anzeigen"));
    QCOMPARE(combo->currentIndex(), 0);

    trace->setOff(true, false);
    combo->setCurrentIndex(1);
    QVERIFY(!stripes.scopeWidgets().constFirst()->traceFilter()->traces().contains(trace));
    QVERIFY(bottom->traceFilter()->traces().contains(trace));
    QVERIFY(!trace->isOff());

    QTRY_VERIFY((item = assignment.itemOf(trace))
                && (combo = qobject_cast<QComboBox*>(assignment.itemWidget(item, 1)))
                && combo->currentIndex() == 1);
    combo->setCurrentIndex(2);
    for (ScopeWidget* widget : stripes.scopeWidgets())
        QVERIFY(!widget->traceFilter()->traces().contains(trace));
    QTRY_VERIFY((item = assignment.itemOf(trace))
                && (combo = qobject_cast<QComboBox*>(assignment.itemWidget(item, 1)))
                && combo->currentIndex() == 2);

    // A colour change renews the row's icon.
    trace->setColor(QColor(Qt::magenta));
    QCOMPARE(assignment.itemOf(trace)->icon(0).pixmap(16, 16).toImage().pixelColor(8, 8), QColor(Qt::magenta));
}

QTEST_MAIN(tst_ScopeStripesWidget)
#include "tst_scopestripeswidget.moc"
