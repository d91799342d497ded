// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyspectrum.h"
#include "frequencytrace.h"
#include "frequencyview.h"
#include "scopemarker.h"
#include "scopetofrequencyview.h"

#include "faketraceinformation.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTableWidget>
#include <QtWidgets/QVBoxLayout>

namespace {

const QString differs = QStringLiteral("Anzeige und Auswahl sind unterschiedlich");
const QString noValues = QStringLiteral("Es sind keine Messwerte vorhanden");
const QString matches = QStringLiteral("Anzeige entspricht der Auswahl");
const QString windowChanged = QStringLiteral("Fensterfunktion wurde geändert");
const QString recompute = QStringLiteral("Neu berechnen");
const QString dash = QString(QChar(0x2013));

// Traces of `count` samples at 10 µs (sampling time 100), starting at 0 ns.
QList<QSharedPointer<TraceInformation>> makeTraces(int count, int traceCount = 2)
{
    QList<QSharedPointer<TraceInformation>> traces;
    for (int t = 0; t < traceCount; ++t) {
        QVector<double> samples(count);
        for (int i = 0; i < count; ++i)
            samples[i] = std::sin(0.05 * i * (t + 1)) + t;
        traces << QSharedPointer<TraceInformation>(
            new FakeTraceInformation(samples, 100.0, QStringLiteral("Kanal %1").arg(t + 1)));
    }
    return traces;
}

} // namespace

class tst_ScopeToFrequencyView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void form();
    void placeholdersUntilFirstMarker();
    void intervalTexts_data();
    void intervalTexts();
    void otherMarkerIndexIsIgnored();
    void uncoveredSelectionDisablesApply();
    void windowFunctionSignalDoubled();
    void windowFunctionTooltipEvenWhenDisabled();
    void applyCreatesViewAndComputes();
    void applyAgainRecomputesInPlace();
    void markerMoveAfterApply();
    void closingViewAndApplyingAgain();
    void panelDestroyedLeavesViewAlone();
    void markersDriveThePanel();
    void zeroSamplingPeriodDoesNotCrash();
    void slotsInvocableByName();

private:
    QTableWidget* table(ScopeToFrequencyView& panel) const
    {
        return panel.findChild<QTableWidget*>(QStringLiteral("measureTable"));
    }
    QPushButton* button(ScopeToFrequencyView& panel) const
    {
        return panel.findChild<QPushButton*>(QStringLiteral("applyButton"));
    }
    QComboBox* combo(ScopeToFrequencyView& panel) const
    {
        return qobject_cast<QComboBox*>(table(panel)->cellWidget(2, 1));
    }
};

void tst_ScopeToFrequencyView::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeToFrequencyView::form()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    QVERIFY(!panel.parentWidget());
    QTableWidget* measureTable = table(panel);
    QVERIFY(measureTable);
    QCOMPARE(measureTable->columnCount(), 2);
    QCOMPARE(measureTable->rowCount(), 3);
    QCOMPARE(measureTable->item(0, 0)->text(), QStringLiteral("Intervall"));
    QCOMPARE(measureTable->item(1, 0)->text(), QStringLiteral("Messwerte"));
    QCOMPARE(measureTable->item(2, 0)->text(), QStringLiteral("FensterFunktion"));
    QCOMPARE(measureTable->frameShape(), QFrame::NoFrame);
    QCOMPARE(measureTable->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(measureTable->sizeAdjustPolicy(), QAbstractScrollArea::AdjustToContentsOnFirstShow);
    QCOMPARE(measureTable->editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(!measureTable->tabKeyNavigation());
    QCOMPARE(measureTable->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(measureTable->selectionBehavior(), QAbstractItemView::SelectRows);
    QVERIFY(measureTable->alternatingRowColors());
    QVERIFY(!measureTable->showGrid());
    QVERIFY(!measureTable->isCornerButtonEnabled());
    QVERIFY(!measureTable->isSortingEnabled());
    QCOMPARE(measureTable->horizontalHeader()->minimumSectionSize(), 0);
    QCOMPARE(measureTable->horizontalHeader()->defaultSectionSize(), 100);
    QVERIFY(measureTable->horizontalHeader()->stretchLastSection());
    QVERIFY(measureTable->verticalHeader()->cascadingSectionResizes());
    QCOMPARE(measureTable->verticalHeader()->minimumSectionSize(), 16);
    QCOMPARE(measureTable->verticalHeader()->defaultSectionSize(), 16);
    // The form's placeholder headers never show.
    QVERIFY(measureTable->horizontalHeader()->isHidden());
    QVERIFY(measureTable->verticalHeader()->isHidden());
    QComboBox* box = combo(panel);
    QVERIFY(box);
    QCOMPARE(box->count(), 2);
    QCOMPARE(box->itemText(0), QStringLiteral("Hamming"));
    QCOMPARE(box->itemText(1), QStringLiteral("Ohne"));
    QCOMPARE(box->currentIndex(), 0);
    QCOMPARE(button(panel)->text(), QStringLiteral("Anwenden"));
    auto* layout = qobject_cast<QVBoxLayout*>(panel.layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins(0, 0, 0, 9));
    QCOMPARE(panel.samplingPeriod(), 10000);
    QCOMPARE(panel.windowFunction(), Frequency::Hamming);
}

void tst_ScopeToFrequencyView::placeholdersUntilFirstMarker()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    QCOMPARE(table(panel)->item(0, 1)->text(), QStringLiteral("-10ms - 250ms(20ms)"));
    QCOMPARE(table(panel)->item(1, 1)->text(), QStringLiteral("6500"));
    QVERIFY(button(panel)->isEnabled());
    QVERIFY(button(panel)->toolTip().isEmpty());
}

void tst_ScopeToFrequencyView::intervalTexts_data()
{
    QTest::addColumn<qlonglong>("a");
    QTest::addColumn<qlonglong>("b");
    QTest::addColumn<QString>("interval");
    QTest::addColumn<QString>("count");
    QTest::newRow("20 ms") << 0LL << 20000000LL << QStringLiteral("0.00 ms bis 20.00 ms (20 ms)") << QStringLiteral("2001");
    QTest::newRow("2.5 ms") << 1000000LL << 3500000LL << QStringLiteral("1.00 ms bis 3.50 ms (2.500 ms)") << QStringLiteral("251");
    QTest::newRow("10 ms exactly") << 0LL << 10000000LL << QStringLiteral("0.00 ms bis 10.00 ms (10 ms)") << QStringLiteral("1001");
    QTest::newRow("just below 10 ms") << 0LL << 9990000LL << QStringLiteral("0.00 ms bis 9.99 ms (9.990 ms)") << QStringLiteral("1000");
    QTest::newRow("B before A") << 5000000LL << 2000000LL << QStringLiteral("5.00 ms bis 2.00 ms (-3.000 ms)") << QStringLiteral("-299");
    QTest::newRow("part of a period") << 0LL << 16000LL << QStringLiteral("0.00 ms bis 0.02 ms (0.016 ms)") << QStringLiteral("2");
}

void tst_ScopeToFrequencyView::intervalTexts()
{
    QFETCH(qlonglong, a);
    QFETCH(qlonglong, b);
    QFETCH(QString, interval);
    QFETCH(QString, count);
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(0, a);
    panel.onMarkerTimePositionChanged(1, b);
    QCOMPARE(panel.markerATime(), a);
    QCOMPARE(panel.markerBTime(), b);
    QCOMPARE(table(panel)->item(0, 1)->text(), interval);
    QCOMPARE(table(panel)->item(1, 1)->text(), count);
    QVERIFY(table(panel)->item(0, 1)->toolTip().isEmpty());
    QVERIFY(button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), differs);
}

void tst_ScopeToFrequencyView::otherMarkerIndexIsIgnored()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(2, 12345);
    QCOMPARE(panel.markerATime(), 0);
    QCOMPARE(panel.markerBTime(), 0);
    QCOMPARE(table(panel)->item(1, 1)->text(), QStringLiteral("6500"));
    QVERIFY(button(panel)->toolTip().isEmpty());
}

void tst_ScopeToFrequencyView::uncoveredSelectionDisablesApply()
{
    // The second trace is shorter: it ends at 9.99 ms.
    QList<QSharedPointer<TraceInformation>> traces = makeTraces(3000, 1);
    traces << makeTraces(1000, 1);
    ScopeToFrequencyView panel(traces);
    panel.onMarkerTimePositionChanged(1, 20000000);
    QVERIFY(!button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), noValues);
    for (int row = 0; row < 2; ++row) {
        QCOMPARE(table(panel)->item(row, 1)->text(), dash);
        QCOMPARE(table(panel)->item(row, 1)->toolTip(), noValues);
    }
    // Moving B back inside enables it again and clears the tool tips.
    panel.onMarkerTimePositionChanged(1, 5000000);
    QVERIFY(button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), differs);
    QCOMPARE(table(panel)->item(1, 1)->text(), QStringLiteral("501"));
    QVERIFY(table(panel)->item(1, 1)->toolTip().isEmpty());
    // A before the recording's start.
    panel.onMarkerTimePositionChanged(0, -10);
    QVERIFY(!button(panel)->isEnabled());
}

void tst_ScopeToFrequencyView::windowFunctionSignalDoubled()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    QSignalSpy spy(&panel, &ScopeToFrequencyView::windowFunctionChanged);
    combo(panel)->setCurrentIndex(1);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<Frequency::WindowFunctions>(), Frequency::NoWindow);
    QCOMPARE(spy.at(1).at(0).value<Frequency::WindowFunctions>(), Frequency::NoWindow);
    QCOMPARE(panel.windowFunction(), Frequency::NoWindow);
    // "Ohne" again: nothing.
    combo(panel)->setCurrentIndex(1);
    for (QObject* child : panel.children()) {
        if (child->metaObject()->indexOfSlot("onWindowFunktionComboBoxIndexChanged(int)") >= 0)
            QVERIFY(QMetaObject::invokeMethod(child, "onWindowFunktionComboBoxIndexChanged", Q_ARG(int, 1)));
    }
    QCOMPARE(spy.count(), 2);
    combo(panel)->setCurrentIndex(0);
    QCOMPARE(spy.count(), 4);
    QCOMPARE(spy.at(2).at(0).value<Frequency::WindowFunctions>(), Frequency::Hamming);
    QCOMPARE(spy.at(3).at(0).value<Frequency::WindowFunctions>(), Frequency::Hamming);
    QCOMPARE(button(panel)->toolTip(), windowChanged);
    QVERIFY(button(panel)->isEnabled());
    // The panel was updated: the texts replace the placeholders.
    QCOMPARE(table(panel)->item(0, 1)->text(), QStringLiteral("0.00 ms bis 0.00 ms (0.000 ms)"));
    QCOMPARE(table(panel)->item(1, 1)->text(), QStringLiteral("1"));
}

void tst_ScopeToFrequencyView::windowFunctionTooltipEvenWhenDisabled()
{
    ScopeToFrequencyView panel(makeTraces(100));
    panel.onMarkerTimePositionChanged(1, 20000000);
    QVERIFY(!button(panel)->isEnabled());
    combo(panel)->setCurrentIndex(1);
    QVERIFY(!button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), windowChanged);
}

void tst_ScopeToFrequencyView::applyCreatesViewAndComputes()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(0, 1000000);
    panel.onMarkerTimePositionChanged(1, 2270000);
    QSignalSpy created(&panel, &ScopeToFrequencyView::newFrequencyViewCreated);
    QTest::mouseClick(button(panel), Qt::LeftButton);
    QCOMPARE(created.count(), 1);
    auto* view = qobject_cast<FrequencyView*>(created.at(0).at(0).value<QWidget*>());
    QVERIFY(view);
    QCOMPARE(panel.frequencyView(), view);
    QVERIFY(view->isVisible()); // nobody took it: a window of its own
    // Samples 100 … 227: 128 samples, 64 amplitudes, Hamming window.
    FrequencyTrace* trace = view->spectrum()->traces().first();
    QCOMPARE(trace->firstIndex(), 100);
    QCOMPARE(trace->sampleCount(), 128);
    QCOMPARE(trace->amplitudes().size(), 64);
    QCOMPARE(view->spectrum()->traces().size(), 2);
    QVERIFY(!button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), matches);
    QVERIFY(!QApplication::overrideCursor());
    delete view;
}

void tst_ScopeToFrequencyView::applyAgainRecomputesInPlace()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(1, 630000);
    QSignalSpy created(&panel, &ScopeToFrequencyView::newFrequencyViewCreated);
    button(panel)->click();
    QPointer<FrequencyView> view = panel.frequencyView();
    QCOMPARE(view->spectrum()->traces().first()->amplitudes().size(), 32);
    combo(panel)->setCurrentIndex(1);
    QVERIFY(button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), windowChanged);
    panel.onMarkerTimePositionChanged(1, 1270000);
    button(panel)->click();
    QCOMPARE(created.count(), 1);
    QCOMPARE(panel.frequencyView(), view.data());
    QCOMPARE(view->spectrum()->traces().first()->amplitudes().size(), 64);
    QCOMPARE(button(panel)->toolTip(), matches);
    delete view.data();
}

void tst_ScopeToFrequencyView::markerMoveAfterApply()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(1, 630000);
    button(panel)->click();
    QVERIFY(!button(panel)->isEnabled());
    panel.onMarkerTimePositionChanged(0, 10000);
    QVERIFY(button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), differs);
    delete panel.frequencyView();
}

void tst_ScopeToFrequencyView::closingViewAndApplyingAgain()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    panel.onMarkerTimePositionChanged(1, 630000);
    QSignalSpy created(&panel, &ScopeToFrequencyView::newFrequencyViewCreated);
    button(panel)->click();
    QPointer<FrequencyView> first = panel.frequencyView();
    QVERIFY(first);
    first->close();
    QTRY_VERIFY(first.isNull());
    QVERIFY(!panel.frequencyView());
    QVERIFY(button(panel)->isEnabled());
    QCOMPARE(button(panel)->toolTip(), recompute);
    button(panel)->click();
    QCOMPARE(created.count(), 2);
    QVERIFY(panel.frequencyView());
    QCOMPARE(created.at(1).at(0).value<QWidget*>(), panel.frequencyView());
    QCOMPARE(button(panel)->toolTip(), matches);
    delete panel.frequencyView();
    QCOMPARE(button(panel)->toolTip(), recompute);
}

void tst_ScopeToFrequencyView::panelDestroyedLeavesViewAlone()
{
    auto* panel = new ScopeToFrequencyView(makeTraces(3000));
    panel->onMarkerTimePositionChanged(1, 630000);
    QPushButton* apply = panel->findChild<QPushButton*>(QStringLiteral("applyButton"));
    apply->click();
    QPointer<FrequencyView> view = panel->frequencyView();
    delete panel;
    QVERIFY(view);
    // The view keeps its copies of the trace informations.
    QCOMPARE(view->spectrum()->traces().size(), 2);
    delete view.data();
}

void tst_ScopeToFrequencyView::markersDriveThePanel()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    ScopeMarker marker;
    connect(&marker, &ScopeMarker::timePositionChanged, &panel, &ScopeToFrequencyView::onMarkerTimePositionChanged);
    Q_EMIT marker.timePositionChanged(1, 20000000);
    QCOMPARE(table(panel)->item(0, 1)->text(), QStringLiteral("0.00 ms bis 20.00 ms (20 ms)"));
    QCOMPARE(table(panel)->item(1, 1)->text(), QStringLiteral("2001"));
}

void tst_ScopeToFrequencyView::zeroSamplingPeriodDoesNotCrash()
{
    QList<QSharedPointer<TraceInformation>> traces{
        QSharedPointer<TraceInformation>(new FakeTraceInformation(QVector<double>(10, 1.0), 0.001))};
    ScopeToFrequencyView panel(traces);
    QCOMPARE(panel.samplingPeriod(), 0);
    panel.onMarkerTimePositionChanged(1, 1000);
    QVERIFY(!button(panel)->isEnabled());
    QCOMPARE(table(panel)->item(1, 1)->text(), dash);
}

void tst_ScopeToFrequencyView::slotsInvocableByName()
{
    ScopeToFrequencyView panel(makeTraces(3000));
    QObject* companion = nullptr;
    for (QObject* child : panel.children()) {
        if (child->metaObject()->indexOfSlot("onApplyChanges()") >= 0)
            companion = child;
    }
    QVERIFY(companion);
    QVERIFY(companion->metaObject()->indexOfSlot("onFequencyViewDestroyed()") >= 0);
    QVERIFY(companion->metaObject()->indexOfSlot("onWindowFunktionComboBoxIndexChanged(int)") >= 0);
    QVERIFY(QMetaObject::invokeMethod(&panel, "onMarkerTimePositionChanged", Q_ARG(uchar, 1), Q_ARG(qlonglong, 1000000)));
    QCOMPARE(panel.markerBTime(), 1000000);
}

QTEST_MAIN(tst_ScopeToFrequencyView)
#include "tst_scopetofrequencyview.moc"
