// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopetracelist.h"
#include "scopetracelist_p.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QLocale>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QMenu>

#include <memory>

class tst_ScopeTraceList : public QObject
{
    Q_OBJECT

private:
    // Two stripes: stripe 1 holds traces 0 and 1, stripe 2 holds trace 2.
    struct Fixture {
        QObject owner;
        ScopeShotArchive* archive = nullptr;
        ScopeShot* shot = nullptr;
        QList<ScopeTrace*> traces;
        ZoomBar zoomBar;
        ScopeStripesWidget stripes;
        ScopeTraceList list;

        explicit Fixture(int stripeCount = 2)
        {
            archive = ScopeShotArchive::create(&owner);
            archive->setName(QStringLiteral("Aufnahme 7"));
            shot = new ScopeShot(&owner);
            shot->setArchive(archive);
            const QStringList names = {QStringLiteral("Drehzahl"), QStringLiteral("Strom"), QStringLiteral("Lage")};
            for (int i = 0; i < names.size(); ++i) {
                auto* trace = new ScopeTrace(shot, unsigned(i));
                trace->setName(names.at(i));
                trace->setPhysicalDatatype(7);
                trace->setDecimalPlaces(2);
                trace->setTimeBase(1250);
                QVector<double> samples;
                for (int k = 0; k < 200; ++k)
                    samples.append(k * (i + 1));
                trace->setSamples(samples);
                traces.append(trace);
            }
            zoomBar.setRange(-1000000000, 1000000000);
            stripes.setZoomBar(&zoomBar);
            for (int i = 0; i < stripeCount; ++i)
                stripes.addStripe();
            stripe(0)->traceFilter()->addTrace(traces.at(0));
            stripe(0)->traceFilter()->addTrace(traces.at(1));
            if (stripeCount > 1)
                stripe(1)->traceFilter()->addTrace(traces.at(2));
            list.setStripesWidget(&stripes);
            list.resize(600, 400);
        }
        ScopeWidget* stripe(int index) const { return stripes.scopeWidgets().at(index); }
        ScopeTraceListPrivate* d() const { return list.findChild<ScopeTraceListPrivate*>(); }
        QTreeWidgetItem* item(const QObject* object) const { return d()->findItem(object); }
        int traceItemCount() const
        {
            int count = 0;
            for (int i = 0; i < list.topLevelItemCount(); ++i)
                count += list.topLevelItem(i)->childCount();
            return count;
        }
        // Opens the context menu on \a item (or on empty space) and returns its entry texts.
        QStringList openMenu(QTreeWidgetItem* at)
        {
            QPoint position(5, list.viewport()->height() - 2);
            if (at)
                position = list.visualItemRect(at).center();
            d()->showContextMenu(position);
            QMenu* menu = d()->contextMenu;
            QStringList texts;
            if (!menu)
                return texts;
            const QList<QAction*> actions = menu->actions();
            for (QAction* action : actions)
                texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
            menu->hide();
            return texts;
        }
        QAction* entry(const QString& text) const
        {
            const QList<QAction*> actions = d()->contextMenu->actions();
            for (QAction* action : actions) {
                if (action->text() == text)
                    return action;
            }
            return nullptr;
        }
    };

    static QString local(QString text) { return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint()); }

private Q_SLOTS:
    void initTestCase();
    void init();
    void columns();
    void items();
    void slotOrder();
    void followsTraceFilters();
    void checkBoxSwitchesTrace();
    void selection();
    void quickMeasureValues();
    void quickMeasureHeaderComma();
    void traceMenu();
    void moveMenuOnlyWithTwoStripes();
    void stripeEntries();
    void newStripeDisabledAtFive();
    void showExclusiveOnlyOwnStripe();
    void showAllAndInverted();
    void toggleOff();
    void moveToStripe();
    void deleteStripeRemovesTraces();
    void traceChangesRefreshItems();
    void headerStateRestoredAndSaved();
    void traceDeleted();
};

void tst_ScopeTraceList::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeTraceList::init()
{
    QSettings().remove(QStringLiteral("Scope/ScopeTraceList/HeaderState"));
}

void tst_ScopeTraceList::columns()
{
    ScopeTraceList list;
    QCOMPARE(list.columnCount(), 4);
    QCOMPARE(list.headerItem()->text(0), QStringLiteral("Name"));
    QCOMPARE(list.headerItem()->text(1), QStringLiteral("Messwert"));
    QCOMPARE(list.headerItem()->text(2), QStringLiteral("Kanal"));
    QCOMPARE(list.headerItem()->text(3), QStringLiteral("Aufnahme"));
    QVERIFY(list.rootIsDecorated());
    QCOMPARE(list.indentation(), 16);
    QCOMPARE(list.header()->sectionSize(0), 160);
    QCOMPARE(list.header()->sectionSize(1), 120);
    QVERIFY(list.isSortingEnabled());
    QCOMPARE(list.contextMenuPolicy(), Qt::CustomContextMenu);
    QVERIFY(!list.stripeEntriesEnabled());
    QVERIFY(!list.currentTrace());
    list.updateItems(); // without a container
    QCOMPARE(list.topLevelItemCount(), 0);
}

void tst_ScopeTraceList::items()
{
    Fixture f;
    QCOMPARE(f.list.topLevelItemCount(), 2);
    QTreeWidgetItem* first = f.list.topLevelItem(0);
    QTreeWidgetItem* second = f.list.topLevelItem(1);
    QCOMPARE(first->text(0), QStringLiteral("Streifen 1"));
    QCOMPARE(second->text(0), QStringLiteral("Streifen 2"));
    QVERIFY(first->isFirstColumnSpanned());
    QVERIFY(first->isExpanded());
    QCOMPARE(first->data(0, Qt::UserRole).value<QObject*>(), f.stripe(0));
    QCOMPARE(first->childCount(), 2);
    QCOMPARE(second->childCount(), 1);

    QTreeWidgetItem* strom = f.item(f.traces.at(1));
    QVERIFY(strom);
    QCOMPARE(strom->parent(), first);
    QCOMPARE(strom->text(0), QStringLiteral("Strom"));
    QCOMPARE(strom->checkState(0), Qt::Checked);
    QCOMPARE(strom->data(2, Qt::DisplayRole).userType(), QMetaType::Int);
    QCOMPARE(strom->data(2, Qt::DisplayRole).toInt(), 2);
    QCOMPARE(strom->text(3), QStringLiteral("Aufnahme 7"));
    QVERIFY(strom->text(1).isEmpty());
    const QImage icon = strom->icon(0).pixmap(16, 16).toImage();
    QCOMPARE(icon.size(), QSize(16, 16));
    QCOMPARE(icon.pixelColor(8, 8), f.traces.at(1)->color());
    QCOMPARE(strom->data(0, Qt::UserRole).value<QObject*>(), f.traces.at(1));

    // Stripes keep the container's order whichever way the list is sorted.
    f.list.sortItems(0, Qt::DescendingOrder);
    QCOMPARE(f.list.topLevelItem(0)->text(0), QStringLiteral("Streifen 1"));
    // Traces sort by channel number, numerically.
    f.list.sortItems(2, Qt::DescendingOrder);
    QCOMPARE(f.list.topLevelItem(0)->child(0)->text(0), QStringLiteral("Strom"));
}

void tst_ScopeTraceList::slotOrder()
{
    ScopeTraceList list;
    const QMetaObject* meta = list.findChild<ScopeTraceListPrivate*>()->metaObject();
    const char* expected[] = {"scopeTraceSelected(ScopeTrace*)", "updateItems()", "showContextMenu(QPoint)",
        "onCurrentItemChanged(QTreeWidgetItem*)", "onQuickMeasureValueChanged(qlonglong,QString,bool)",
        "onContextMenuToggleOff()", "onContextMenuShowExclusive()", "onContextMenuShowInverted()",
        "onContextMenuShowAll()", "onContextMenuMoveTo()", "onNewStripeClicked()", "onDeleteLastContextStripe()",
        "updateTrace(ScopeTrace*)"};
    for (int i = 0; i < int(std::size(expected)); ++i)
        QCOMPARE(meta->method(meta->methodOffset() + i).methodSignature(), QByteArray(expected[i]));
}

void tst_ScopeTraceList::followsTraceFilters()
{
    Fixture f;
    f.stripe(1)->traceFilter()->addTrace(f.traces.at(0));
    f.stripe(0)->traceFilter()->removeTrace(f.traces.at(0));
    QTRY_COMPARE(f.item(f.traces.at(0))->parent(), f.list.topLevelItem(1));
    QCOMPARE(f.traceItemCount(), 3);
    ScopeWidget* third = f.stripes.addStripe();
    QTRY_COMPARE(f.list.topLevelItemCount(), 3);
    QCOMPARE(f.item(third)->text(0), QStringLiteral("Streifen 3"));
    third->setName(QStringLiteral("Ströme"));
    f.list.updateItems();
    QCOMPARE(f.item(third)->text(0), QStringLiteral("Ströme"));
}

void tst_ScopeTraceList::checkBoxSwitchesTrace()
{
    Fixture f;
    QTreeWidgetItem* item = f.item(f.traces.at(0));
    item->setCheckState(0, Qt::Unchecked);
    QVERIFY(f.traces.at(0)->isOff());
    QTRY_COMPARE(f.item(f.traces.at(0))->checkState(0), Qt::Unchecked);
    QSignalSpy spy(&f.list, &ScopeTraceList::scopeTraceSelected);
    f.item(f.traces.at(0))->setCheckState(0, Qt::Checked);
    QVERIFY(!f.traces.at(0)->isOff());
    QCOMPARE(f.list.currentItem(), f.item(f.traces.at(0)));
    QCOMPARE(f.list.currentTrace(), f.traces.at(0));
    QCOMPARE(spy.count(), 1);
    // The trace switched elsewhere: the box follows.
    f.traces.at(2)->setOff(true, false);
    QTRY_COMPARE(f.item(f.traces.at(2))->checkState(0), Qt::Unchecked);
}

void tst_ScopeTraceList::selection()
{
    Fixture f;
    QSignalSpy spy(&f.list, &ScopeTraceList::scopeTraceSelected);
    f.list.setCurrentItem(f.item(f.traces.at(2)));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<ScopeTrace*>(), f.traces.at(2));
    f.list.setCurrentItem(f.item(f.stripe(0)));
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).value<ScopeTrace*>(), nullptr);
    QVERIFY(!f.list.currentTrace());
    f.list.setCurrentItem(f.item(f.traces.at(1)));
    spy.clear();
    // A rebuild keeps the current item and reports nothing new.
    f.list.updateItems();
    QCOMPARE(f.list.currentTrace(), f.traces.at(1));
    QCOMPARE(spy.count(), 0);
}

void tst_ScopeTraceList::quickMeasureValues()
{
    Fixture f;
    QCoreApplication::processEvents();
    // Values reach the right rows also after the rows were sorted around.
    f.list.sortItems(2, Qt::DescendingOrder);
    for (ScopeTrace* trace : std::as_const(f.traces))
        trace->publishQuickMeasureRequest(12500000);
    for (ScopeTrace* trace : std::as_const(f.traces))
        QCOMPARE(f.item(trace)->text(1), trace->valueText(trace->samples().at(100), true));
    QVERIFY(!f.item(f.traces.at(1))->text(1).isEmpty());
    QCOMPARE(f.list.headerItem()->text(1), local(QStringLiteral("Messwert bei 12.50 ms")));

    for (ScopeTrace* trace : std::as_const(f.traces))
        trace->publishQuickMeasureRequest(-5000000); // before the first sample
    QCOMPARE(f.list.headerItem()->text(1), QStringLiteral("Messwert"));
    QVERIFY(f.item(f.traces.at(0))->text(1).isEmpty());

    // The same time stamp again after an invalid answer is named again.
    f.traces.at(0)->publishQuickMeasureRequest(12500000);
    QCOMPARE(f.list.headerItem()->text(1), local(QStringLiteral("Messwert bei 12.50 ms")));
    f.traces.at(0)->publishQuickMeasureDisabled();
    QCOMPARE(f.list.headerItem()->text(1), QStringLiteral("Messwert"));
}

void tst_ScopeTraceList::quickMeasureHeaderComma()
{
    if (QLocale::system().decimalPoint() != QLatin1String(","))
        QSKIP("needs a locale with a comma as decimal point (the _de run)");
    Fixture f;
    f.traces.at(0)->publishQuickMeasureRequest(12500000);
    QCOMPARE(f.list.headerItem()->text(1), QStringLiteral("Messwert bei 12,50 ms"));
}

void tst_ScopeTraceList::traceMenu()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    QStringList texts = f.openMenu(f.item(f.traces.at(0)));
    QCOMPARE(texts.mid(0, 5),
        (QStringList{QStringLiteral("Kanal ausblenden"), QStringLiteral("Nur diesen Kanal anzeigen"), QStringLiteral("-"),
            QStringLiteral("Alle Kanäle anzeigen"), QStringLiteral("Anzeige der Kanäle invertieren")}));
    QCOMPARE(f.d()->contextTrace.data(), f.traces.at(0));
    f.traces.at(0)->setOff(true, false);
    texts = f.openMenu(f.item(f.traces.at(0)));
    QCOMPARE(texts.first(), QStringLiteral("Kanal anzeigen"));
}

void tst_ScopeTraceList::moveMenuOnlyWithTwoStripes()
{
    Fixture one(1);
    one.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&one.list));
    QStringList texts = one.openMenu(one.item(one.traces.at(0)));
    QVERIFY(!texts.contains(QStringLiteral("Verschieben nach ...")));
    QCOMPARE(texts.size(), 5);

    Fixture two;
    two.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&two.list));
    texts = two.openMenu(two.item(two.traces.at(0)));
    QCOMPARE(texts.mid(5), (QStringList{QStringLiteral("-"), QStringLiteral("Verschieben nach ...")}));
    QMenu* moveMenu = two.entry(QStringLiteral("Verschieben nach ..."))->menu();
    QVERIFY(moveMenu);
    QCOMPARE(moveMenu->actions().size(), 1);
    QAction* target = moveMenu->actions().first();
    QCOMPARE(target->text(), QStringLiteral("Streifen 2"));
    QCOMPARE(target->property("targetstripe").value<QObject*>(), two.stripe(1));
    QCOMPARE(target->property("sourcestripe").value<QObject*>(), two.stripe(0));
}

void tst_ScopeTraceList::stripeEntries()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    // Switched off (a shot is shown): no stripe entries anywhere.
    QStringList texts = f.openMenu(f.item(f.stripe(0)));
    QVERIFY(texts.isEmpty());
    QVERIFY(!f.openMenu(f.item(f.traces.at(0))).contains(QStringLiteral("neuen Streifen hinzufügen")));

    f.list.setStripeEntriesEnabled(true);
    QVERIFY(f.list.stripeEntriesEnabled());
    texts = f.openMenu(f.item(f.stripe(0)));
    QCOMPARE(texts, (QStringList{QStringLiteral("Streifen löschen"), QStringLiteral("neuen Streifen hinzufügen")}));
    QCOMPARE(f.d()->contextStripe.data(), f.stripe(0));
    QVERIFY(f.openMenu(f.item(f.traces.at(0))).endsWith(QStringLiteral("neuen Streifen hinzufügen")));
    texts = f.openMenu(nullptr);
    QCOMPARE(texts, QStringList{QStringLiteral("neuen Streifen hinzufügen")});
    QVERIFY(f.entry(QStringLiteral("neuen Streifen hinzufügen"))->isEnabled());
    f.entry(QStringLiteral("neuen Streifen hinzufügen"))->trigger();
    QCOMPARE(f.stripes.scopeWidgets().size(), 3);
    QTRY_COMPARE(f.list.topLevelItemCount(), 3);
}

void tst_ScopeTraceList::newStripeDisabledAtFive()
{
    Fixture f(5);
    f.list.setStripeEntriesEnabled(true);
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    QTRY_COMPARE(f.list.topLevelItemCount(), 5);
    f.openMenu(f.item(f.stripe(4)));
    QAction* add = f.entry(QStringLiteral("neuen Streifen hinzufügen"));
    QVERIFY(add);
    QVERIFY(!add->isEnabled());
    QVERIFY(f.entry(QStringLiteral("Streifen löschen")));
}

void tst_ScopeTraceList::showExclusiveOnlyOwnStripe()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    f.traces.at(0)->setOff(true, false);
    f.list.updateItems();
    f.openMenu(f.item(f.traces.at(0)));
    f.entry(QStringLiteral("Nur diesen Kanal anzeigen"))->trigger();
    QVERIFY(!f.traces.at(0)->isOff());
    QVERIFY(f.traces.at(1)->isOff());
    QVERIFY(!f.traces.at(2)->isOff()); // another stripe: untouched
    QTRY_COMPARE(f.item(f.traces.at(1))->checkState(0), Qt::Unchecked);
}

void tst_ScopeTraceList::showAllAndInverted()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    f.traces.at(1)->setOff(true, false);
    f.traces.at(2)->setOff(true, false);
    f.list.updateItems();
    f.openMenu(f.item(f.traces.at(0)));
    f.entry(QStringLiteral("Anzeige der Kanäle invertieren"))->trigger();
    QVERIFY(f.traces.at(0)->isOff());
    QVERIFY(!f.traces.at(1)->isOff());
    QVERIFY(f.traces.at(2)->isOff());
    f.openMenu(f.item(f.traces.at(1)));
    f.entry(QStringLiteral("Alle Kanäle anzeigen"))->trigger();
    QVERIFY(!f.traces.at(0)->isOff());
    QVERIFY(!f.traces.at(1)->isOff());
    QVERIFY(f.traces.at(2)->isOff());
}

void tst_ScopeTraceList::toggleOff()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    f.list.setCurrentItem(f.item(f.traces.at(2)));
    f.openMenu(f.item(f.traces.at(1)));
    f.entry(QStringLiteral("Kanal ausblenden"))->trigger();
    QVERIFY(f.traces.at(1)->isOff());
    QCOMPARE(f.list.currentTrace(), f.traces.at(1));
    f.openMenu(f.item(f.traces.at(1)));
    f.entry(QStringLiteral("Kanal anzeigen"))->trigger();
    QVERIFY(!f.traces.at(1)->isOff());
}

void tst_ScopeTraceList::moveToStripe()
{
    Fixture f;
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    f.traces.at(0)->setOff(true, false);
    f.openMenu(f.item(f.traces.at(0)));
    f.entry(QStringLiteral("Verschieben nach ..."))->menu()->actions().first()->trigger();
    QVERIFY(!f.stripe(0)->traceFilter()->traces().contains(f.traces.at(0)));
    QVERIFY(f.stripe(1)->traceFilter()->traces().contains(f.traces.at(0)));
    QVERIFY(!f.traces.at(0)->isOff()); // a moved trace always ends up shown
    QCOMPARE(f.item(f.traces.at(0))->parent(), f.item(f.stripe(1)));
    QCOMPARE(f.item(f.traces.at(0))->checkState(0), Qt::Checked);
    QCOMPARE(f.traceItemCount(), 3);
}

void tst_ScopeTraceList::deleteStripeRemovesTraces()
{
    Fixture f;
    f.list.setStripeEntriesEnabled(true);
    f.list.show();
    QVERIFY(QTest::qWaitForWindowExposed(&f.list));
    QPointer<ScopeWidget> first = f.stripe(0);
    f.openMenu(f.item(first));
    f.entry(QStringLiteral("Streifen löschen"))->trigger();
    QVERIFY(first->traceFilter()->traces().isEmpty());
    // The stripe leaves the list at once; its widget goes with the event loop.
    QCOMPARE(f.list.topLevelItemCount(), 1);
    QVERIFY(!f.item(f.traces.at(0)));
    QVERIFY(!f.item(f.traces.at(1)));
    QVERIFY(f.item(f.traces.at(2)));
    QTRY_VERIFY(first.isNull());
    QTRY_COMPARE(f.stripes.scopeWidgets().size(), 1);
    QCOMPARE(f.list.topLevelItemCount(), 1);
    // The remaining stripe is the first now and renamed by default.
    QTRY_COMPARE(f.list.topLevelItem(0)->text(0), QStringLiteral("Streifen 1"));
    QCOMPARE(f.traceItemCount(), 1);
}

void tst_ScopeTraceList::traceChangesRefreshItems()
{
    Fixture f;
    f.traces.at(0)->setColor(QColor(1, 2, 3));
    QTRY_COMPARE(f.item(f.traces.at(0))->icon(0).pixmap(16, 16).toImage().pixelColor(3, 3), QColor(1, 2, 3));
    f.traces.at(0)->setName(QStringLiteral("Moment"));
    f.traces.at(0)->setOff(true, false);
    QTRY_COMPARE(f.item(f.traces.at(0))->text(0), QStringLiteral("Moment"));
}

void tst_ScopeTraceList::headerStateRestoredAndSaved()
{
    {
        ScopeTraceList list;
        list.header()->resizeSection(0, 211);
    }
    QVERIFY(QSettings().contains(QStringLiteral("Scope/ScopeTraceList/HeaderState")));
    ScopeTraceList restored;
    QCOMPARE(restored.header()->sectionSize(0), 211);
}

void tst_ScopeTraceList::traceDeleted()
{
    auto f = std::make_unique<Fixture>();
    f->list.setCurrentItem(f->item(f->traces.at(2)));
    QSignalSpy spy(&f->list, &ScopeTraceList::scopeTraceSelected);
    ScopeTrace* gone = f->traces.takeLast();
    f->stripe(1)->traceFilter()->removeTrace(gone);
    delete gone;
    QVERIFY(!f->list.currentTrace());
    QTRY_VERIFY(!f->item(gone));
    QTRY_COMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<ScopeTrace*>(), nullptr);
    QCOMPARE(f->traceItemCount(), 2);
}

QTEST_MAIN(tst_ScopeTraceList)
#include "tst_scopetracelist.moc"
