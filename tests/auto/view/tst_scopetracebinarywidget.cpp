// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"
#include "scopetracebinarywidget.h"
#include "scopetracebinarywidget_p.h"

#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QGroupBox>
#include <QtWidgets/QPushButton>

class tst_ScopeTraceBinaryWidget : public QObject
{
    Q_OBJECT

private:
    static QCheckBox* box(const QWidget& widget, int bit)
    {
        return widget.findChild<QCheckBox*>(QStringLiteral("bit%1checkBox").arg(bit, 2, 10, QLatin1Char('0')));
    }

private Q_SLOTS:
    void form();
    void rowsEnabledBySize_data();
    void rowsEnabledBySize();
    void viewReadsMask();
    void boxesWriteMask();
    void groupBoxSwitchesBinaryView();
    void allAndNone();
    void withoutTrace();
    void followsTrace();
};

void tst_ScopeTraceBinaryWidget::form()
{
    ScopeTraceBinaryWidget widget;
    QCOMPARE(widget.objectName(), QStringLiteral("ScopeTraceBinaryWidget"));
    QCOMPARE(widget.windowTitle(), QStringLiteral("Auswahl der Binärsignale"));
    QVERIFY(!widget.windowIcon().pixmap(24).isNull());
    auto* group = widget.findChild<QGroupBox*>(QStringLiteral("binaryGroupBox"));
    QVERIFY(group);
    QVERIFY(group->isCheckable());
    QCOMPARE(group->title(), QStringLiteral("Binäre Darstellung"));
    for (int row = 0; row < 4; ++row) {
        auto* rowWidget = widget.findChild<QWidget*>(QStringLiteral("binary%1Widget").arg(row));
        QVERIFY(rowWidget);
        for (int bit = 8 * row; bit < 8 * row + 8; ++bit) {
            QCheckBox* checkBox = box(widget, bit);
            QVERIFY2(checkBox, qPrintable(QString::number(bit)));
            QCOMPARE(checkBox->text(), QStringLiteral("Bit %1").arg(bit));
            QCOMPARE(checkBox->parentWidget(), rowWidget);
        }
    }
    QCOMPARE(widget.findChild<QPushButton*>(QStringLiteral("setAllButton"))->text(), QStringLiteral("alle Bits setzen"));
    QCOMPARE(widget.findChild<QPushButton*>(QStringLiteral("setNoneButton"))->text(), QStringLiteral("kein Bit setzen"));
    auto* d = widget.findChild<ScopeTraceBinaryWidgetPrivate*>();
    QVERIFY(d);
    QCOMPARE(d->bitOfCheckBox.size(), 32);
    QCOMPARE(d->bitOfCheckBox.value(box(widget, 17)), 17);
}

void tst_ScopeTraceBinaryWidget::rowsEnabledBySize_data()
{
    QTest::addColumn<int>("datatype");
    QTest::addColumn<QList<bool>>("rows");
    QTest::newRow("unknown type") << 0 << QList<bool>{false, false, false, false};
    QTest::newRow("INT8") << 1 << QList<bool>{true, false, false, false};
    QTest::newRow("INT16") << 2 << QList<bool>{true, true, false, false};
    QTest::newRow("INT32") << 3 << QList<bool>{true, true, true, true};
    QTest::newRow("INT64") << 5 << QList<bool>{true, true, true, true};
}

void tst_ScopeTraceBinaryWidget::rowsEnabledBySize()
{
    QFETCH(int, datatype);
    QFETCH(QList<bool>, rows);
    QObject owner;
    auto* trace = new ScopeTrace(&owner, 0);
    trace->setPhysicalDatatype(quint8(datatype));
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    for (int row = 0; row < 4; ++row)
        QCOMPARE(widget.findChild<QWidget*>(QStringLiteral("binary%1Widget").arg(row))->isEnabled(), rows.at(row));
}

void tst_ScopeTraceBinaryWidget::viewReadsMask()
{
    QObject owner;
    auto* trace = new ScopeTrace(&owner, 0);
    trace->setPhysicalDatatype(3);
    trace->setBinaryViewMask(0x80000005u);
    trace->setBinaryView(true);
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    QVERIFY(widget.findChild<QGroupBox*>(QStringLiteral("binaryGroupBox"))->isChecked());
    for (int bit = 0; bit < 32; ++bit)
        QCOMPARE(box(widget, bit)->isChecked(), bit == 0 || bit == 2 || bit == 31);
    QCOMPARE(trace->binaryViewMask(), 0x80000005u); // reading writes nothing back
}

void tst_ScopeTraceBinaryWidget::boxesWriteMask()
{
    QObject owner;
    auto* trace = new ScopeTrace(&owner, 0);
    trace->setPhysicalDatatype(2);
    trace->setBinaryViewMask(0x1u);
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    QTest::mouseClick(box(widget, 9), Qt::LeftButton, {}, QPoint(5, box(widget, 9)->height() / 2));
    QCOMPARE(trace->binaryViewMask(), 0x201u);
    box(widget, 0)->setChecked(false);
    QCOMPARE(trace->binaryViewMask(), 0x200u);
    QCOMPARE(trace->binaryBits(), QByteArray(1, char(9)));
}

void tst_ScopeTraceBinaryWidget::groupBoxSwitchesBinaryView()
{
    QObject owner;
    auto* trace = new ScopeTrace(&owner, 0);
    trace->setPhysicalDatatype(2);
    trace->setBinaryViewMask(0x3u);
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    auto* group = widget.findChild<QGroupBox*>(QStringLiteral("binaryGroupBox"));
    QVERIFY(!group->isChecked());
    group->setChecked(true);
    QVERIFY(trace->isBinaryView());
    QCOMPARE(trace->binaryViewMask(), 0x3u);
    group->setChecked(false);
    QVERIFY(!trace->isBinaryView());
    // Switched from the trace itself: the group box follows.
    trace->setBinaryView(true);
    QVERIFY(group->isChecked());
}

void tst_ScopeTraceBinaryWidget::allAndNone()
{
    QObject owner;
    auto* trace = new ScopeTrace(&owner, 0);
    trace->setPhysicalDatatype(3);
    trace->setBinaryViewMask(0x10u);
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    QSignalSpy spy(trace, &ScopeTrace::changed);
    QTest::mouseClick(widget.findChild<QPushButton*>(QStringLiteral("setAllButton")), Qt::LeftButton);
    QCOMPARE(trace->binaryViewMask(), 0xffffffffu);
    for (int bit = 0; bit < 32; ++bit)
        QVERIFY(box(widget, bit)->isChecked());
    QTest::mouseClick(widget.findChild<QPushButton*>(QStringLiteral("setNoneButton")), Qt::LeftButton);
    QCOMPARE(trace->binaryViewMask(), 0u);
    for (int bit = 0; bit < 32; ++bit)
        QVERIFY(!box(widget, bit)->isChecked());
    QVERIFY(spy.count() >= 2);
}

void tst_ScopeTraceBinaryWidget::withoutTrace()
{
    ScopeTraceBinaryWidget widget;
    auto* d = widget.findChild<ScopeTraceBinaryWidgetPrivate*>();
    for (const char* slot : {"updateView", "updateData", "checkAllCheckBoxes", "checkNoCheckBoxes"})
        QVERIFY(QMetaObject::invokeMethod(d, slot));
    QVERIFY(!box(widget, 0)->isChecked());
    QVERIFY(!widget.scopeTrace());
}

void tst_ScopeTraceBinaryWidget::followsTrace()
{
    auto owner = std::make_unique<QObject>();
    auto* trace = new ScopeTrace(owner.get(), 0);
    trace->setPhysicalDatatype(1);
    trace->setBinaryViewMask(0x2u);
    ScopeTraceBinaryWidget widget;
    widget.setScopeTrace(trace);
    QVERIFY(box(widget, 1)->isChecked());
    trace->setBinaryViewMask(0x4u);
    QVERIFY(!box(widget, 1)->isChecked());
    QVERIFY(box(widget, 2)->isChecked());
    owner.reset();
    QVERIFY(!widget.scopeTrace());
    QTest::mouseClick(widget.findChild<QPushButton*>(QStringLiteral("setAllButton")), Qt::LeftButton);
}

QTEST_MAIN(tst_ScopeTraceBinaryWidget)
#include "tst_scopetracebinarywidget.moc"
