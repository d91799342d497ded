// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencyplotadjustmentwidget.h"
#include "frequencyplotchart.h"
#include "frequencyplotview.h"
#include "frequencyspectrum.h"
#include "frequencytrace.h"
#include "frequencytracelist.h"
#include "frequencytracewidget.h"
#include "frequencyview.h"
#include "plotcontroller.h"
#include "scopetrace.h"
#include "traceinformationimplemention.h"

#include "faketraceinformation.h"
#include "frequencywindowfunctions.h"

#include <QtCharts/QChart>
#include <QtCharts/QLineSeries>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QtTest>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QLabel>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QSplitter>

#include <cmath>
#include <memory>

namespace {

QVector<double> wave(int count, double cycles, double amplitude)
{
    QVector<double> samples(count);
    for (int i = 0; i < count; ++i)
        samples[i] = amplitude * std::sin(2.0 * M_PI * cycles * i / count) + 0.1 * std::cos(0.3 * i);
    return samples;
}

QList<QSharedPointer<TraceInformation>> fakeTraces(QList<QSharedPointer<FakeTraceInformation>>* fakes)
{
    const QStringList names{QStringLiteral("Strom"), QStringLiteral("Drehzahl"), QStringLiteral("Spannung")};
    const QList<QColor> colors{Qt::red, Qt::green, Qt::blue};
    QList<QSharedPointer<TraceInformation>> traces;
    for (int i = 0; i < names.size(); ++i) {
        auto fake = QSharedPointer<FakeTraceInformation>::create(wave(256, 10.0 + 5 * i, 1.0 + i), 10.0, names.at(i),
                                                                 colors.at(i));
        *fakes << fake;
        traces << fake;
    }
    return traces;
}

QStringList actionTexts(const QMenu* menu)
{
    QStringList texts;
    for (QAction* action : menu->actions())
        texts << (action->isSeparator() ? QStringLiteral("|") : action->text());
    return texts;
}

QAction* actionNamed(const QMenu* menu, const QString& text)
{
    for (QAction* action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

} // namespace

class tst_FrequencyView : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void form();
    void setDataBuildsTheAnalysis();
    void setDataReplacesTheAnalysis();
    void listIsSortedAndFirstRowCurrent();
    void listSettings();
    void selectingARowSelectsTheTrace();
    void contextMenuOnTrace();
    void contextMenuOnEmptySpace();
    void showExclusiveOnHiddenTrace();
    void showAll();
    void toggleOff();
    void uncheckingHidesTraceAndSwitchesOffScopeTrace();
    void scopeTraceOffUnchecksItem();
    void colourFollowsTimeDomain();
    void amplitudeColumnFollowsMeasurePoint();
    void measurePointBeyondLastShowsLastAmplitude();
    void dataChangedUpdatesAmplitudes();
    void traceWidgetShowsSelectedTrace();
    void traceWidgetHideButton();
    void traceWidgetColourDialog();
    void traceWidgetFollowsTrace();
    void closingDeletesTheView();
    void setDataWithManyTraces();
};

void tst_FrequencyView::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_FrequencyView::form()
{
    FrequencyView view;
    QCOMPARE(view.objectName(), QStringLiteral("FrequencyView"));
    QCOMPARE(view.windowTitle(), QStringLiteral("Form"));
    QCOMPARE(view.size(), QSize(400, 300));
    QVERIFY(!view.parentWidget());
    auto* outer = view.findChild<QSplitter*>(QStringLiteral("splitter_2"));
    auto* inner = view.findChild<QSplitter*>(QStringLiteral("splitter"));
    QVERIFY(outer && inner);
    QCOMPARE(outer->orientation(), Qt::Horizontal);
    QVERIFY(outer->opaqueResize());
    QVERIFY(!outer->childrenCollapsible());
    QCOMPARE(inner->orientation(), Qt::Vertical);
    QVERIFY(!inner->childrenCollapsible());
    auto* plotArea = view.findChild<QWidget*>(QStringLiteral("SpectrumPlotView"));
    auto* lower = view.findChild<QWidget*>(QStringLiteral("LowerWidget"));
    QVERIFY(plotArea && lower && view.findChild<QWidget*>(QStringLiteral("upperWidget")));
    QCOMPARE(plotArea->sizePolicy().horizontalStretch(), 2);
    QCOMPARE(lower->sizePolicy().horizontalStretch(), 2);
    QCOMPARE(lower->minimumWidth(), 20);
    QVERIFY(view.adjustmentWidget());
    QVERIFY(!view.spectrum());
    QVERIFY(!view.chart());
    QVERIFY(!view.traceList());
}

void tst_FrequencyView::setDataBuildsTheAnalysis()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    QVERIFY(view.spectrum());
    QCOMPARE(view.spectrum()->traces().size(), 3);
    QCOMPARE(view.spectrum()->traces().first()->amplitudes().size(), 128);
    QVERIFY(view.chart() && view.plotView() && view.plotController() && view.traceList() && view.traceWidget());
    QCOMPARE(view.plotController()->chart(), view.chart());
    QCOMPARE(view.plotView()->parentWidget(), view.findChild<QWidget*>(QStringLiteral("SpectrumPlotView")));
    QCOMPARE(view.traceList()->parentWidget(), view.findChild<QWidget*>(QStringLiteral("upperWidget")));
    QWidget* lower = view.findChild<QWidget*>(QStringLiteral("LowerWidget"));
    QCOMPARE(view.traceWidget()->parentWidget(), lower);
    QCOMPARE(view.adjustmentWidget()->parentWidget(), lower);
    QCOMPARE(view.plotView()->chart(), view.chart()->chart());
    QCOMPARE(view.chart()->chart()->series().size(), 3);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
}

void tst_FrequencyView::setDataReplacesTheAnalysis()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    const auto traces = fakeTraces(&fakes);
    FrequencyView view;
    view.show();
    view.setData(traces, 0, 255, Frequency::Hamming);
    QPointer<FrequencySpectrum> spectrum = view.spectrum();
    QPointer<FrequencyPlotChart> chart = view.chart();
    QPointer<FrequencyPlotView> plotView = view.plotView();
    QPointer<PlotController> controller = view.plotController();
    QPointer<FrequencyTraceList> list = view.traceList();
    QPointer<FrequencyTraceWidget> traceWidget = view.traceWidget();
    FrequencyPlotAdjustmentWidget* adjustment = view.adjustmentWidget();
    // The scale choice of the first analysis carries over.
    adjustment->findChild<QAbstractButton*>(QStringLiteral("xAxisLinButton"))->click();
    QVERIFY(!view.chart()->isXAxisLogarithmic());

    QTest::failOnWarning(QRegularExpression(QStringLiteral("layout")));
    view.setData(traces, 10, 73, Frequency::NoWindow);
    QVERIFY(!spectrum && !chart && !plotView && !controller && !list && !traceWidget);
    QCOMPARE(view.adjustmentWidget(), adjustment);
    QCOMPARE(view.spectrum()->traces().first()->amplitudes().size(), 32);
    QVERIFY(!view.chart()->isXAxisLogarithmic());
    QCOMPARE(view.findChild<QWidget*>(QStringLiteral("LowerWidget"))->findChildren<FrequencyPlotAdjustmentWidget*>().size(), 1);
    // The new list is complete again.
    QCOMPARE(view.traceList()->topLevelItemCount(), 3);
}

void tst_FrequencyView::listIsSortedAndFirstRowCurrent()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    const auto traces = fakeTraces(&fakes);
    FrequencyView view;
    view.setData(traces, 0, 255, Frequency::Hamming);
    FrequencyTraceList* list = view.traceList();
    QCOMPARE(list->topLevelItem(0)->text(0), QStringLiteral("Drehzahl"));
    QCOMPARE(list->topLevelItem(1)->text(0), QStringLiteral("Spannung"));
    QCOMPARE(list->topLevelItem(2)->text(0), QStringLiteral("Strom"));
    QCOMPARE(list->currentItem(), list->topLevelItem(0));
    // The trace widget got the selection.
    QCOMPARE(view.traceWidget()->trace()->name(), QStringLiteral("Drehzahl"));

    // After every new analysis, with traceSelected emitted.
    FrequencyTraceList standalone;
    QSignalSpy selected(&standalone, &FrequencyTraceList::traceSelected);
    standalone.setSpectrum(view.spectrum());
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).value<FrequencyTrace*>()->name(), QStringLiteral("Drehzahl"));
    QCOMPARE(standalone.currentItem(), standalone.topLevelItem(0));
    view.setData(traces, 0, 99, Frequency::Hamming);
    QSignalSpy selectedAgain(view.traceList(), &FrequencyTraceList::traceSelected);
    view.traceList()->setSpectrum(view.spectrum());
    QCOMPARE(selectedAgain.count(), 1);
    QCOMPARE(view.traceList()->currentItem(), view.traceList()->topLevelItem(0));
    QCOMPARE(view.traceWidget()->trace(), selectedAgain.at(0).at(0).value<FrequencyTrace*>());
}

void tst_FrequencyView::listSettings()
{
    FrequencyTraceList list;
    QCOMPARE(list.headerItem()->text(0), QStringLiteral("Name"));
    QCOMPARE(list.headerItem()->text(1), QStringLiteral("Amplitude"));
    QVERIFY(!list.rootIsDecorated());
    QCOMPARE(list.indentation(), 16);
    QCOMPARE(list.editTriggers(), QAbstractItemView::NoEditTriggers);
    QVERIFY(list.isSortingEnabled());
    QCOMPARE(list.contextMenuPolicy(), Qt::CustomContextMenu);
}

void tst_FrequencyView::selectingARowSelectsTheTrace()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    FrequencyTraceList* list = view.traceList();
    QSignalSpy selected(list, &FrequencyTraceList::traceSelected);
    list->setCurrentItem(list->topLevelItem(2));
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).value<FrequencyTrace*>()->name(), QStringLiteral("Strom"));
    QCOMPARE(view.traceWidget()->trace()->name(), QStringLiteral("Strom"));
    QCOMPARE(list->topLevelItem(2)->icon(0).pixmap(16, 16).toImage().pixelColor(8, 8), QColor(Qt::red));
}

void tst_FrequencyView::contextMenuOnTrace()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    FrequencyTraceList* list = view.traceList();
    const QPoint position = list->visualItemRect(list->topLevelItem(0)).center();
    Q_EMIT list->customContextMenuRequested(position);
    QMenu* menu = list->contextMenu();
    QVERIFY(menu);
    QCOMPARE(actionTexts(menu), QStringList({QStringLiteral("Kanal ausblenden"), QStringLiteral("Nur diesen Kanal anzeigen"),
                                             QStringLiteral("|"), QStringLiteral("Alle Kanäle anzeigen")}));
    menu->close();
    list->traceOf(list->topLevelItem(0))->setHidden(true);
    Q_EMIT list->customContextMenuRequested(position);
    QCOMPARE(actionTexts(menu).first(), QStringLiteral("Kanal anzeigen"));
    menu->close();
}

void tst_FrequencyView::contextMenuOnEmptySpace()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view.resize(600, 600);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    FrequencyTraceList* list = view.traceList();
    const QPoint empty(5, list->viewport()->height() - 3);
    QVERIFY(!list->itemAt(empty));
    Q_EMIT list->customContextMenuRequested(empty);
    QCOMPARE(actionTexts(list->contextMenu()), QStringList({QStringLiteral("Alle Kanäle anzeigen")}));
    list->contextMenu()->close();
}

void tst_FrequencyView::showExclusiveOnHiddenTrace()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    FrequencyTraceList* list = view.traceList();
    FrequencyTrace* chosen = list->traceOf(list->topLevelItem(1));
    chosen->setHidden(true);
    QCOMPARE(list->topLevelItem(1)->checkState(0), Qt::Unchecked);
    Q_EMIT list->customContextMenuRequested(list->visualItemRect(list->topLevelItem(1)).center());
    QAction* exclusive = actionNamed(list->contextMenu(), QStringLiteral("Nur diesen Kanal anzeigen"));
    QVERIFY(exclusive);
    exclusive->trigger();
    list->contextMenu()->close();
    for (FrequencyTrace* trace : view.spectrum()->traces())
        QCOMPARE(trace->isHidden(), trace != chosen);
    QCOMPARE(list->topLevelItem(1)->checkState(0), Qt::Checked);
    QCOMPARE(list->topLevelItem(0)->checkState(0), Qt::Unchecked);
    // The time-domain traces follow.
    for (const auto& fake : std::as_const(fakes))
        QCOMPARE(fake->isOff(), fake->name() != chosen->name());
    // The chart shows only the chosen one.
    for (QAbstractSeries* series : view.chart()->chart()->series())
        QCOMPARE(series->isVisible(), series->name() == chosen->name());
}

void tst_FrequencyView::showAll()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    for (FrequencyTrace* trace : view.spectrum()->traces())
        trace->setHidden(true);
    FrequencyTraceList* list = view.traceList();
    Q_EMIT list->customContextMenuRequested(QPoint(5, list->viewport()->height() - 3));
    actionNamed(list->contextMenu(), QStringLiteral("Alle Kanäle anzeigen"))->trigger();
    list->contextMenu()->close();
    for (FrequencyTrace* trace : view.spectrum()->traces())
        QVERIFY(!trace->isHidden());
    for (int row = 0; row < 3; ++row)
        QCOMPARE(list->topLevelItem(row)->checkState(0), Qt::Checked);
}

void tst_FrequencyView::toggleOff()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    FrequencyTraceList* list = view.traceList();
    FrequencyTrace* trace = list->traceOf(list->topLevelItem(2));
    const QPoint position = list->visualItemRect(list->topLevelItem(2)).center();
    Q_EMIT list->customContextMenuRequested(position);
    actionNamed(list->contextMenu(), QStringLiteral("Kanal ausblenden"))->trigger();
    QVERIFY(trace->isHidden());
    Q_EMIT list->customContextMenuRequested(position);
    actionNamed(list->contextMenu(), QStringLiteral("Kanal anzeigen"))->trigger();
    list->contextMenu()->close();
    QVERIFY(!trace->isHidden());
}

void tst_FrequencyView::uncheckingHidesTraceAndSwitchesOffScopeTrace()
{
    QObject shot;
    auto* scopeTrace = new ScopeTrace(&shot, 0);
    scopeTrace->setName(QStringLiteral("Drehzahl"));
    scopeTrace->setSamples(wave(128, 8.0, 3.0));
    scopeTrace->setTimeBase(10);
    scopeTrace->setColor(QColor(Qt::yellow));
    QList<QSharedPointer<TraceInformation>> traces{
        QSharedPointer<TraceInformation>(new TraceInformationImplemention(scopeTrace))};
    FrequencyView view;
    view.setData(traces, 0, 127, Frequency::Hamming);
    FrequencyTraceList* list = view.traceList();
    QTreeWidgetItem* item = list->topLevelItem(0);
    FrequencyTrace* trace = list->traceOf(item);
    QCOMPARE(item->checkState(0), Qt::Checked);
    QVERIFY(!scopeTrace->isOff());

    item->setCheckState(0, Qt::Unchecked);
    QVERIFY(trace->isHidden());
    QVERIFY(scopeTrace->isOff());
    QVERIFY(!view.chart()->chart()->series().first()->isVisible());
    auto* hideButton = view.traceWidget()->findChild<QPushButton*>(QStringLiteral("hideButton"));
    QVERIFY(hideButton->isChecked());

    item->setCheckState(0, Qt::Checked);
    QVERIFY(!trace->isHidden());
    QVERIFY(!scopeTrace->isOff());
    QVERIFY(view.chart()->chart()->series().first()->isVisible());
}

void tst_FrequencyView::scopeTraceOffUnchecksItem()
{
    QObject shot;
    auto* scopeTrace = new ScopeTrace(&shot, 0);
    scopeTrace->setName(QStringLiteral("Strom"));
    scopeTrace->setSamples(wave(64, 4.0, 1.0));
    scopeTrace->setTimeBase(10);
    QList<QSharedPointer<TraceInformation>> traces{
        QSharedPointer<TraceInformation>(new TraceInformationImplemention(scopeTrace))};
    FrequencyView view;
    view.setData(traces, 0, 63, Frequency::NoWindow);
    QTreeWidgetItem* item = view.traceList()->topLevelItem(0);
    scopeTrace->setOff(true, false);
    QTRY_COMPARE(item->checkState(0), Qt::Unchecked);
    QVERIFY(view.spectrum()->traces().first()->isHidden());
    scopeTrace->setOff(false, false);
    QTRY_COMPARE(item->checkState(0), Qt::Checked);
    // A trace that has gone leaves the analysis working.
    delete scopeTrace;
    view.traceList()->topLevelItem(0)->setCheckState(0, Qt::Unchecked);
    QVERIFY(view.spectrum()->traces().first()->isHidden());
}

void tst_FrequencyView::colourFollowsTimeDomain()
{
    QObject shot;
    auto* scopeTrace = new ScopeTrace(&shot, 0);
    scopeTrace->setName(QStringLiteral("Strom"));
    scopeTrace->setSamples(wave(64, 4.0, 1.0));
    scopeTrace->setTimeBase(10);
    scopeTrace->setColor(QColor(Qt::red));
    QList<QSharedPointer<TraceInformation>> traces{
        QSharedPointer<TraceInformation>(new TraceInformationImplemention(scopeTrace))};
    FrequencyView view;
    view.setData(traces, 0, 63, Frequency::NoWindow);
    scopeTrace->setColor(QColor(Qt::darkCyan));
    QTreeWidgetItem* item = view.traceList()->topLevelItem(0);
    QTRY_COMPARE(view.spectrum()->traces().first()->color(), QColor(Qt::darkCyan));
    QCOMPARE(item->icon(0).pixmap(16, 16).toImage().pixelColor(8, 8), QColor(Qt::darkCyan));
    QCOMPARE(qobject_cast<QLineSeries*>(view.chart()->chart()->series().first())->color(), QColor(Qt::darkCyan));
    // And back: a colour chosen in the frequency view is announced through
    // the trace information.
    QSignalSpy announced(traces.first().data(), &TraceInformation::colorChanged);
    view.spectrum()->traces().first()->setColor(QColor(Qt::darkMagenta));
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0).at(0).value<QColor>(), QColor(Qt::darkMagenta));
}

void tst_FrequencyView::amplitudeColumnFollowsMeasurePoint()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::NoWindow);
    view.spectrum()->setSelectedMeasurePoint(10);
    FrequencyTraceList* list = view.traceList();
    for (int row = 0; row < 3; ++row) {
        FrequencyTrace* trace = list->traceOf(list->topLevelItem(row));
        QCOMPARE(list->topLevelItem(row)->text(1), QString::number(trace->amplitudes().at(10), 'g', 6));
    }
    auto* measure = view.traceWidget()->findChild<QLabel*>(QStringLiteral("measureLabel"));
    QCOMPARE(measure->text(), view.traceWidget()->trace()->amplitudeText());
}

void tst_FrequencyView::measurePointBeyondLastShowsLastAmplitude()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::NoWindow);
    view.spectrum()->setSelectedMeasurePoint(100000);
    FrequencyTraceList* list = view.traceList();
    FrequencyTrace* trace = list->traceOf(list->topLevelItem(0));
    QCOMPARE(list->topLevelItem(0)->text(1), QString::number(trace->amplitudes().last(), 'g', 6));
}

void tst_FrequencyView::dataChangedUpdatesAmplitudes()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    FrequencyView view;
    view.setData(fakeTraces(&fakes), 0, 255, Frequency::NoWindow);
    view.spectrum()->setSelectedMeasurePoint(200); // beyond the one-sided spectrum
    FrequencyTraceList* list = view.traceList();
    FrequencyTrace* trace = list->traceOf(list->topLevelItem(0));
    QCOMPARE(list->topLevelItem(0)->text(1), QString::number(trace->amplitudes().at(127), 'g', 6));
    view.spectrum()->changeWindowFunction(true, Frequency::NoWindow);
    // Both halves now: the point exists and the texts follow.
    QCOMPARE(trace->amplitudes().size(), 256);
    QCOMPARE(list->topLevelItem(0)->text(1), QString::number(trace->amplitudes().at(128), 'g', 6));
    QCOMPARE(view.traceWidget()->findChild<QLabel*>(QStringLiteral("measureLabel"))->text(),
             view.traceWidget()->trace()->amplitudeText());
}

void tst_FrequencyView::traceWidgetShowsSelectedTrace()
{
    FrequencyTraceWidget widget;
    QCOMPARE(widget.windowTitle(), QStringLiteral("Form"));
    auto* hideButton = widget.findChild<QPushButton*>(QStringLiteral("hideButton"));
    QVERIFY(hideButton && hideButton->isCheckable());
    QCOMPARE(hideButton->text(), QStringLiteral("OFF"));
    QVERIFY(widget.findChild<QPushButton*>(QStringLiteral("colorButton")));
    QVERIFY(widget.findChild<QFrame*>(QStringLiteral("frame")));

    auto information = QSharedPointer<FakeTraceInformation>::create(wave(64, 3.0, 1.0), 10.0,
                                                                    QStringLiteral("Moment"), QColor(Qt::blue));
    information->setOff(true);
    FrequencyTrace trace(information);
    trace.setInterval(0, 63, Frequency::NoWindow);
    trace.setFrequencyAndAmplitude(3);
    widget.selectTrace(&trace);
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("nameLabel"))->text(), QStringLiteral("Moment"));
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("measureLabel"))->text(), trace.amplitudeText());
    QVERIFY(hideButton->isChecked());
    auto* colorButton = widget.findChild<QPushButton*>(QStringLiteral("colorButton"));
    QCOMPARE(colorButton->palette().color(QPalette::Active, QPalette::Button), QColor(Qt::blue));
    QCOMPARE(colorButton->palette().color(QPalette::Inactive, QPalette::Button), QColor(Qt::blue));
    QVERIFY(colorButton->autoFillBackground());
}

void tst_FrequencyView::traceWidgetHideButton()
{
    auto information = QSharedPointer<FakeTraceInformation>::create(wave(64, 3.0, 1.0), 10.0);
    FrequencyTrace trace(information);
    trace.setInterval(0, 63, Frequency::NoWindow);
    FrequencyTraceWidget widget;
    widget.selectTrace(&trace);
    auto* hideButton = widget.findChild<QPushButton*>(QStringLiteral("hideButton"));
    hideButton->click();
    QVERIFY(trace.isHidden());
    QVERIFY(information->isOff());
    hideButton->click();
    QVERIFY(!trace.isHidden());

    // A newly selected trace takes the button over; the old one no longer listens.
    auto other = QSharedPointer<FakeTraceInformation>::create(wave(64, 5.0, 1.0), 10.0);
    FrequencyTrace second(other);
    second.setInterval(0, 63, Frequency::NoWindow);
    widget.selectTrace(&second);
    hideButton->click();
    QVERIFY(second.isHidden());
    QVERIFY(!trace.isHidden());
    trace.setFrequencyAndAmplitude(5);
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("measureLabel"))->text(), second.amplitudeText());
}

void tst_FrequencyView::traceWidgetColourDialog()
{
    auto information = QSharedPointer<FakeTraceInformation>::create(wave(64, 3.0, 1.0), 10.0);
    FrequencyTrace trace(information);
    FrequencyTraceWidget widget;
    widget.selectTrace(&trace);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QSignalSpy announced(information.data(), &TraceInformation::colorChanged);
    bool seen = false;
    QTimer::singleShot(0, this, [&seen] {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen = dialog->currentColor() == QColor(Qt::blue);
        dialog->setCurrentColor(QColor(Qt::darkGreen));
        dialog->accept();
    });
    widget.findChild<QPushButton*>(QStringLiteral("colorButton"))->click();
    QVERIFY(seen);
    QCOMPARE(trace.color(), QColor(Qt::darkGreen));
    QCOMPARE(announced.count(), 1);
    QCOMPARE(announced.at(0).at(0).value<QColor>(), QColor(Qt::darkGreen));
    QCOMPARE(widget.findChild<QPushButton*>(QStringLiteral("colorButton"))->palette().color(QPalette::Button),
             QColor(Qt::darkGreen));

    // Cancelling keeps the colour.
    QTimer::singleShot(0, this, [] {
        if (auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget())) {
            dialog->setCurrentColor(QColor(Qt::black));
            dialog->reject();
        }
    });
    widget.findChild<QPushButton*>(QStringLiteral("colorButton"))->click();
    QCOMPARE(trace.color(), QColor(Qt::darkGreen));
}

void tst_FrequencyView::traceWidgetFollowsTrace()
{
    auto information = QSharedPointer<FakeTraceInformation>::create(wave(64, 3.0, 1.0), 10.0);
    FrequencyTrace trace(information);
    trace.setInterval(0, 63, Frequency::NoWindow);
    FrequencyTraceWidget widget;
    widget.selectTrace(&trace);
    information->setOff(true);
    QVERIFY(widget.findChild<QPushButton*>(QStringLiteral("hideButton"))->isChecked());
    information->setColor(QColor(Qt::darkYellow));
    QCOMPARE(widget.findChild<QPushButton*>(QStringLiteral("colorButton"))->palette().color(QPalette::Button),
             QColor(Qt::darkYellow));
    trace.setFrequencyAndAmplitude(2);
    QCOMPARE(widget.findChild<QLabel*>(QStringLiteral("measureLabel"))->text(), trace.amplitudeText());
}

void tst_FrequencyView::closingDeletesTheView()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    QPointer<FrequencyView> view = new FrequencyView;
    view->setData(fakeTraces(&fakes), 0, 255, Frequency::Hamming);
    view->show();
    QVERIFY(QTest::qWaitForWindowExposed(view));
    QSignalSpy destroyed(view.data(), &QObject::destroyed);
    view->close();
    QTRY_VERIFY(view.isNull());
    QCOMPARE(destroyed.count(), 1);
    // The trace informations survive the view.
    QVERIFY(!fakes.first()->name().isEmpty());
}

void tst_FrequencyView::setDataWithManyTraces()
{
    QList<QSharedPointer<FakeTraceInformation>> fakes;
    QList<QSharedPointer<TraceInformation>> traces;
    for (int i = 0; i < 16; ++i) {
        auto fake = QSharedPointer<FakeTraceInformation>::create(wave(65536, 100.0 + i, 1.0), 10.0,
                                                                 QStringLiteral("Kanal %1").arg(i, 2, 10, QLatin1Char('0')));
        fakes << fake;
        traces << fake;
    }
    FrequencyView view;
    view.resize(900, 600);
    view.show();
    view.setData(traces, 0, 65535, Frequency::Hamming);
    QCOMPARE(view.traceList()->topLevelItemCount(), 16);
    for (QAbstractSeries* series : view.chart()->chart()->series())
        QVERIFY(qobject_cast<QLineSeries*>(series)->count() <= 2 * view.chart()->pixelColumns() + 2);
}

QTEST_MAIN(tst_FrequencyView)
#include "tst_frequencyview.moc"
