// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"
#include "scopetracecalculator.h"
#include "scopetracecalculatorwidget.h"

#include <QtCore/QLocale>
#include <QtCore/QStandardPaths>
#include <QtCore/QTranslator>
#include <QtTest/QtTest>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QLayout>
#include <QtWidgets/QTreeWidget>

namespace {

QString local(QString text)
{
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

// Translates the table's texts in the widget's own context only.
class TableTranslator : public QTranslator
{
public:
    QString translate(const char* context, const char* sourceText, const char* = nullptr, int = -1) const override
    {
        if (qstrcmp(context, "ScopeTraceCalculatorWidget") != 0)
            return QString();
        if (qstrcmp(sourceText, "Mittelwert") == 0)
            return QStringLiteral("Average");
        if (qstrcmp(sourceText, "Wert in %1") == 0)
            return QStringLiteral("Value at %1");
        if (qstrcmp(sourceText, "Messgröße") == 0)
            return QStringLiteral("Quantity");
        return QString();
    }
    bool isEmpty() const override { return false; }
};

} // namespace

class tst_ScopeTraceCalculatorWidget : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void twelveRowsInOrder();
    void construction();
    void noTraceShowsDashes();
    void intervalText_data();
    void intervalText();
    void traceSelectionShowsValues();
    void headerCarriesTraceName();
    void traceChangeRefreshes();
    void switchingTraceDisconnectsThePrevious();
    void deletedTrace();
    void slotsInvocableByName();
    void textsTranslatedInWidgetContext();

private:
    ScopeTrace* makeTrace(const QString& name, const QVector<double>& samples);
    QObject* m_shot = nullptr;
};

void tst_ScopeTraceCalculatorWidget::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeTraceCalculatorWidget::init()
{
    m_shot = new QObject;
}

void tst_ScopeTraceCalculatorWidget::cleanup()
{
    delete m_shot;
    m_shot = nullptr;
}

ScopeTrace* tst_ScopeTraceCalculatorWidget::makeTrace(const QString& name, const QVector<double>& samples)
{
    auto* trace = new ScopeTrace(m_shot, 0);
    trace->setName(name);
    trace->setSamples(samples);
    trace->setTimeBase(10); // 1 µs per sample
    trace->setMeasure(QStringLiteral("A"));
    trace->setPhysicalDatatype(8); // FLOAT64
    trace->setDecimalPlaces(2);
    return trace;
}

void tst_ScopeTraceCalculatorWidget::twelveRowsInOrder()
{
    ScopeTraceCalculatorWidget widget;
    const QStringList keys = {"time_difference", "value_at_a", "value_at_b", "value_difference", "gradient",
                              "average", "integral", "minimum", "maximum", "peak", "rms_value",
                              "standard_deviation"};
    const QStringList labels = {QStringLiteral("Intervall"), QStringLiteral("Wert in A"), QStringLiteral("Wert in B"),
                                QStringLiteral("Wertdifferenz Marker A/B"), QStringLiteral("Steigung"),
                                QStringLiteral("Mittelwert"), QStringLiteral("Integral"), QStringLiteral("Minimalwert"),
                                QStringLiteral("Maximalwert"), QStringLiteral("Wertdifferenz min/max"),
                                QStringLiteral("Effektivwert"), QStringLiteral("Standardabweichung")};
    QCOMPARE(ScopeTraceCalculatorWidget::rowKeys(), keys);
    QTreeWidget* tree = widget.treeWidget();
    QCOMPARE(tree->topLevelItemCount(), 12);
    for (int i = 0; i < 12; ++i) {
        QCOMPARE(tree->topLevelItem(i)->text(0), labels.at(i));
        QCOMPARE(tree->topLevelItem(i)->data(0, Qt::UserRole).toString(), keys.at(i));
        QCOMPARE(widget.labelText(keys.at(i)), labels.at(i));
    }
}

void tst_ScopeTraceCalculatorWidget::construction()
{
    ScopeTraceCalculatorWidget widget;
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    QTreeWidget* tree = widget.treeWidget();
    QVERIFY(!tree->rootIsDecorated());
    QVERIFY(tree->alternatingRowColors());
    QCOMPARE(tree->columnCount(), 2);
    QCOMPARE(tree->headerItem()->text(0), QStringLiteral("Messgröße"));
    QCOMPARE(tree->headerItem()->text(1), QString());
    const QMargins margins = widget.layout()->contentsMargins();
    QCOMPARE(margins, QMargins(0, 0, 0, 0));
    QVERIFY(qobject_cast<QVBoxLayout*>(widget.layout()));
    QCOMPARE(widget.calculator()->scopeTrace(), nullptr);
}

void tst_ScopeTraceCalculatorWidget::noTraceShowsDashes()
{
    ScopeTraceCalculatorWidget widget;
    widget.onMarkerTimePositionChanged(0, 1500000);
    widget.onMarkerTimePositionChanged(1, 4000000);
    for (const QString& key : ScopeTraceCalculatorWidget::rowKeys()) {
        if (key == QLatin1String("time_difference"))
            QCOMPARE(widget.valueText(key), local(QStringLiteral("1.50 ms bis 4.00 ms (2.50 ms)")));
        else
            QCOMPARE(widget.valueText(key), QStringLiteral("---"));
    }
}

void tst_ScopeTraceCalculatorWidget::intervalText_data()
{
    QTest::addColumn<QList<qint64>>("moves"); // marker, time, marker, time, …
    QTest::addColumn<QString>("expected");
    QTest::newRow("nothing reported") << QList<qint64>{} << QStringLiteral("0.00 ms bis 0.00 ms (0.00 ms)");
    QTest::newRow("only B") << QList<qint64>{1, 12500000} << QStringLiteral("0.00 ms bis 12.50 ms (12.50 ms)");
    QTest::newRow("A and B") << QList<qint64>{0, -2000000, 1, 3456000}
                             << QStringLiteral("-2.00 ms bis 3.46 ms (5.46 ms)");
    QTest::newRow("B before A") << QList<qint64>{0, 5000000, 1, 1000000}
                                << QStringLiteral("5.00 ms bis 1.00 ms (-4.00 ms)");
    QTest::newRow("A moved twice") << QList<qint64>{0, 1000000, 1, 2000000, 0, 1500000}
                                   << QStringLiteral("1.50 ms bis 2.00 ms (0.50 ms)");
}

void tst_ScopeTraceCalculatorWidget::intervalText()
{
    QFETCH(QList<qint64>, moves);
    QFETCH(QString, expected);
    ScopeTraceCalculatorWidget widget;
    for (int i = 0; i + 1 < moves.size(); i += 2)
        widget.onMarkerTimePositionChanged(quint8(moves.at(i)), moves.at(i + 1));
    QCOMPARE(widget.valueText(QStringLiteral("time_difference")), local(expected));
}

void tst_ScopeTraceCalculatorWidget::traceSelectionShowsValues()
{
    ScopeTrace* trace = makeTrace(QStringLiteral("Strom"), {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10});
    ScopeTraceCalculatorWidget widget;
    widget.onMarkerTimePositionChanged(0, 0);
    widget.onMarkerTimePositionChanged(1, 10000);
    widget.onScopeTraceSelected(trace);
    QCOMPARE(widget.scopeTrace(), trace);
    QCOMPARE(widget.calculator()->scopeTrace(), trace);
    const ScopeTraceCalculator* c = widget.calculator();
    QCOMPARE(widget.valueText(QStringLiteral("value_at_a")), trace->valueText(0.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("value_at_b")), trace->valueText(10.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("value_difference")), trace->valueText(10.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("average")), trace->valueText(4.5, true));
    // The gradient sees the count of the update the average ran: 1 A/µs.
    QCOMPARE(widget.valueText(QStringLiteral("gradient")), local(QStringLiteral("1.000 A/us")));
    QCOMPARE(widget.valueText(QStringLiteral("integral")), local(QStringLiteral("36.000 Aus")));
    QCOMPARE(widget.valueText(QStringLiteral("minimum")), trace->valueText(0.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("maximum")), trace->valueText(10.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("peak")), trace->valueText(10.0, true));
    QCOMPARE(widget.valueText(QStringLiteral("rms_value")), trace->valueText(c->rmsValue(), true));
    QCOMPARE(widget.valueText(QStringLiteral("standard_deviation")), trace->valueText(c->standardDeviation(), true));
    QCOMPARE(widget.valueText(QStringLiteral("average")), local(QStringLiteral("4.50 A")));
}

void tst_ScopeTraceCalculatorWidget::headerCarriesTraceName()
{
    ScopeTraceCalculatorWidget widget;
    ScopeTrace* trace = makeTrace(QStringLiteral("Drehzahl Ist"), {1, 2, 3});
    widget.onScopeTraceSelected(trace);
    QCOMPARE(widget.treeWidget()->headerItem()->text(0), QStringLiteral("Messgröße"));
    QCOMPARE(widget.treeWidget()->headerItem()->text(1), QStringLiteral("Drehzahl Ist"));
    widget.onScopeTraceSelected(nullptr);
    QCOMPARE(widget.treeWidget()->headerItem()->text(1), QString());
    QCOMPARE(widget.valueText(QStringLiteral("average")), QStringLiteral("---"));
}

void tst_ScopeTraceCalculatorWidget::traceChangeRefreshes()
{
    ScopeTrace* trace = makeTrace(QStringLiteral("Strom"), {1, 2, 3, 4});
    ScopeTraceCalculatorWidget widget;
    widget.onMarkerTimePositionChanged(0, 1000);
    widget.onMarkerTimePositionChanged(1, 3000);
    widget.onScopeTraceSelected(trace);
    QCOMPARE(widget.valueText(QStringLiteral("value_at_a")), trace->valueText(2.0, true));
    trace->setSamples({5, 6, 7, 8}); // emits changed()
    QCOMPARE(widget.valueText(QStringLiteral("value_at_a")), trace->valueText(6.0, true));
    trace->setMeasure(QStringLiteral("V"));
    widget.onCurrentScopeTraceChanged();
    QVERIFY(widget.valueText(QStringLiteral("value_at_a")).endsWith(QStringLiteral(" V")));
}

void tst_ScopeTraceCalculatorWidget::switchingTraceDisconnectsThePrevious()
{
    ScopeTrace* first = makeTrace(QStringLiteral("Eins"), {1, 2, 3, 4});
    ScopeTrace* second = makeTrace(QStringLiteral("Zwei"), {10, 20, 30, 40});
    ScopeTraceCalculatorWidget widget;
    widget.onMarkerTimePositionChanged(0, 1000);
    widget.onScopeTraceSelected(first);
    widget.onScopeTraceSelected(second);
    QCOMPARE(widget.valueText(QStringLiteral("value_at_a")), second->valueText(20.0, true));
    // Changing the first trace no longer reaches the table; its values stay.
    QSignalSpy spy(first, &ScopeTrace::changed);
    first->setSamples({7, 7, 7, 7});
    QCOMPARE(spy.count(), 1);
    QCOMPARE(widget.valueText(QStringLiteral("value_at_a")), second->valueText(20.0, true));
    QCOMPARE(widget.treeWidget()->headerItem()->text(1), QStringLiteral("Zwei"));
}

void tst_ScopeTraceCalculatorWidget::deletedTrace()
{
    ScopeTrace* trace = makeTrace(QStringLiteral("Strom"), {1, 2, 3, 4});
    ScopeTraceCalculatorWidget widget;
    widget.onScopeTraceSelected(trace);
    delete trace;
    widget.onMarkerTimePositionChanged(1, 2000);
    QCOMPARE(widget.scopeTrace(), nullptr);
    QCOMPARE(widget.valueText(QStringLiteral("average")), QStringLiteral("---"));
}

void tst_ScopeTraceCalculatorWidget::slotsInvocableByName()
{
    ScopeTraceCalculatorWidget widget;
    QVERIFY(QMetaObject::invokeMethod(&widget, "onMarkerTimePositionChanged", Q_ARG(quint8, 1), Q_ARG(qint64, 3000000)));
    QCOMPARE(widget.valueText(QStringLiteral("time_difference")), local(QStringLiteral("0.00 ms bis 3.00 ms (3.00 ms)")));
    QVERIFY(QMetaObject::invokeMethod(&widget, "onScopeTraceSelected", Q_ARG(ScopeTrace*, nullptr)));
    QVERIFY(QMetaObject::invokeMethod(&widget, "onCurrentScopeTraceChanged"));
}

void tst_ScopeTraceCalculatorWidget::textsTranslatedInWidgetContext()
{
    TableTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    ScopeTraceCalculatorWidget widget;
    QCoreApplication::removeTranslator(&translator);
    QCOMPARE(widget.labelText(QStringLiteral("average")), QStringLiteral("Average"));
    QCOMPARE(widget.labelText(QStringLiteral("value_at_a")), QStringLiteral("Value at A"));
    QCOMPARE(widget.labelText(QStringLiteral("value_at_b")), QStringLiteral("Value at B"));
    QCOMPARE(widget.labelText(QStringLiteral("integral")), QStringLiteral("Integral"));
    QCOMPARE(widget.treeWidget()->headerItem()->text(0), QStringLiteral("Quantity"));
}

QTEST_MAIN(tst_ScopeTraceCalculatorWidget)
#include "tst_scopetracecalculatorwidget.moc"
