// SPDX-License-Identifier: GPL-3.0-or-later
#include "lineedit.h"
#include "scopeseries.h"
#include "scopeshot.h"
#include "scopetrace.h"
#include "scopetracebinarywidget.h"
#include "scopetracewidget.h"
#include "scopetracewidget_p.h"

#include <QtCore/QLocale>
#include <QtCore/QRandomGenerator>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QToolButton>

#include <cmath>
#include <memory>

class tst_ScopeTraceWidget : public QObject
{
    Q_OBJECT

private:
    struct Fixture {
        QObject owner;
        ScopeTrace* trace = nullptr;
        ScopeTraceWidget widget;

        explicit Fixture(quint8 datatype = 2)
        {
            trace = new ScopeTrace(&owner, 0);
            trace->setName(QStringLiteral("Drehzahl"));
            trace->setMeasure(QStringLiteral("U/min"));
            trace->setPhysicalDatatype(datatype);
            trace->setSamples({-3.0, 0.0, 3.0});
            widget.setScopeTrace(trace);
        }
        QAbstractButton* button(const QString& name) const { return widget.findChild<QAbstractButton*>(name); }
        QLineEdit* edit() const { return widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit")); }
        void enter(const QString& text)
        {
            edit()->selectAll();
            QTest::keyClicks(edit(), text);
            QTest::keyClick(edit(), Qt::Key_Return);
        }
        QAction* kindAction(const QString& text) const
        {
            auto* kind = widget.findChild<QToolButton*>(QStringLiteral("kindButton"));
            const QList<QAction*> actions = kind->menu()->actions();
            for (QAction* action : actions) {
                if (action->text() == text)
                    return action;
            }
            return nullptr;
        }
    };

    static bool commaLocale() { return QLocale::system().decimalPoint() == QLatin1String(","); }

private Q_SLOTS:
    void form();
    void slotOrder();
    void verticalMoves_data();
    void verticalMoves();
    void scaleButtons_data();
    void scaleButtons();
    void scalingEdit_data();
    void scalingEdit();
    void scalingEditComma();
    void scalingEditShowsUnitsPerDivision();
    void toggles();
    void togglesIgnoredWhileUpdating();
    void selectingTraceWritesNothing();
    void binaryButton();
    void displayKinds();
    void kindOnlyForIntegerTypes();
    void colorDialog_data();
    void colorDialog();
    void followsTraceAndShot();
    void withoutTrace();
    void traceDeleted();
    void binaryWindow();
    void garbageInScalingEdit();
};

void tst_ScopeTraceWidget::form()
{
    ScopeTraceWidget widget;
    const QStringList buttons = {QStringLiteral("moveUpButton"), QStringLiteral("moveDownButton"),
        QStringLiteral("scaleUpButton"), QStringLiteral("scaleDownButton"), QStringLiteral("groundButton"),
        QStringLiteral("offButton"), QStringLiteral("invertButton"), QStringLiteral("binaryButton"),
        QStringLiteral("colorButton")};
    for (const QString& name : buttons) {
        auto* button = widget.findChild<QPushButton*>(name);
        QVERIFY2(button, qPrintable(name));
        QVERIFY2(!button->icon().pixmap(16).isNull(), qPrintable(name));
    }
    auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"));
    QVERIFY(edit);
    QVERIFY(edit->inherits("LineEdit"));
    QCOMPARE(edit->styleSheet(), QStringLiteral("background-color:palette(button)"));

    const QString moveLines = QStringLiteral(
        "\n- Umschalttaste: verschieben der Kurve um einen Pixel"
        "\n- Strg-Taste: verschieben der Kurve auf die nächste Gitterlinie"
        "\n- Strg+Umschalt: verschieben der Kurve auf die Mitte des Bildes");
    const QString scaleLine = QStringLiteral("\n- Strg-Taste: Führt eine Autoskalierung des Kanals durch");
    QCOMPARE(widget.findChild<QWidget*>(QStringLiteral("scaleUpButton"))->toolTip(),
        QStringLiteral("Vergrößert die Darstellung des Kanals") + scaleLine);
    QCOMPARE(widget.findChild<QWidget*>(QStringLiteral("scaleDownButton"))->toolTip(),
        QStringLiteral("Verkleinert die Darstellung des Kanals") + scaleLine);
    QCOMPARE(widget.findChild<QWidget*>(QStringLiteral("moveUpButton"))->toolTip(),
        QStringLiteral("Verschiebt die Kurve des Kanals um einen Gitterabstand nach oben") + moveLines);
    QCOMPARE(widget.findChild<QWidget*>(QStringLiteral("moveDownButton"))->toolTip(),
        QStringLiteral("Verschiebt die Kurve des Kanals um einen Gitterabstand nach unten") + moveLines);
    QVERIFY(!widget.scopeTrace());
}

void tst_ScopeTraceWidget::slotOrder()
{
    ScopeTraceWidget widget;
    auto* d = widget.findChild<ScopeTraceWidgetPrivate*>();
    QVERIFY(d);
    const QMetaObject* meta = d->metaObject();
    const char* expected[] = {"updateControls()", "onMoveUpClicked()", "onMoveDownClicked()", "onScaleUpClicked()",
        "onScaleDownClicked()", "onGroundToggled(bool)", "onOffToggled(bool)", "onInvertToggled(bool)",
        "onBinaryClicked()", "onColorButtonClicked()", "onScalingEditCommitted()", "onKindSetDecimal()",
        "onKindSetBinary()", "onKindSetHexadecimal()"};
    for (int i = 0; i < int(std::size(expected)); ++i)
        QCOMPARE(meta->method(meta->methodOffset() + i).methodSignature(), QByteArray(expected[i]));
}

void tst_ScopeTraceWidget::verticalMoves_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("expected");
    QTest::addColumn<bool>("pixel");
    const int none = Qt::NoModifier;
    const int shift = Qt::ShiftModifier;
    const int control = Qt::ControlModifier;
    const int both = Qt::ShiftModifier | Qt::ControlModifier;
    const QString up = QStringLiteral("moveUpButton");
    const QString down = QStringLiteral("moveDownButton");
    QTest::newRow("up, none") << up << none << 2.0 << 3.0 << false;
    QTest::newRow("down, none") << down << none << 2.0 << 1.0 << false;
    QTest::newRow("up, none, fraction") << up << none << 2.3 << 3.3 << false;
    QTest::newRow("up, shift") << up << shift << 2.0 << 1.0 << true;
    QTest::newRow("down, shift") << down << shift << 2.0 << -1.0 << true;
    QTest::newRow("down, control, on line") << down << control << 2.0 << 2.0 << false;
    QTest::newRow("up, control, on line") << up << control << 2.0 << 3.0 << false;
    QTest::newRow("down, control, off line") << down << control << 2.3 << 2.0 << false;
    QTest::newRow("up, control, off line") << up << control << 2.3 << 3.0 << false;
    QTest::newRow("down, control, negative") << down << control << -0.5 << -1.0 << false;
    QTest::newRow("up, control+shift") << up << both << 2.3 << 4.0 << false;
    QTest::newRow("down, control+shift") << down << both << 7.0 << 4.0 << false;
    QTest::newRow("up, alt counts as none") << up << int(Qt::AltModifier) << 2.0 << 3.0 << false;
}

void tst_ScopeTraceWidget::verticalMoves()
{
    QFETCH(QString, buttonName);
    QFETCH(int, modifiers);
    QFETCH(double, start);
    QFETCH(double, expected);
    QFETCH(bool, pixel);
    Fixture f;
    f.trace->setVerticalOffset(start);
    QCOMPARE(f.trace->verticalOffset(), start);
    QTest::mouseClick(f.button(buttonName), Qt::LeftButton, Qt::KeyboardModifiers(modifiers));
    // A pixel move goes by the trace's units per pixel of its last paint.
    const double wanted = pixel ? start + expected * f.trace->unitsPerPixel() : expected;
    QVERIFY2(qAbs(f.trace->verticalOffset() - wanted) < 1e-12,
        qPrintable(QStringLiteral("%1 instead of %2").arg(f.trace->verticalOffset()).arg(wanted)));
}

void tst_ScopeTraceWidget::scaleButtons_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<bool>("autoScale");
    const QString up = QStringLiteral("scaleUpButton");
    const QString down = QStringLiteral("scaleDownButton");
    QTest::newRow("up, none") << up << int(Qt::NoModifier) << false;
    QTest::newRow("down, none") << down << int(Qt::NoModifier) << false;
    QTest::newRow("up, control") << up << int(Qt::ControlModifier) << true;
    QTest::newRow("down, control") << down << int(Qt::ControlModifier) << true;
    QTest::newRow("up, shift") << up << int(Qt::ShiftModifier) << false;
    QTest::newRow("down, control+shift") << down << int(Qt::ShiftModifier | Qt::ControlModifier) << false;
}

void tst_ScopeTraceWidget::scaleButtons()
{
    QFETCH(QString, buttonName);
    QFETCH(int, modifiers);
    QFETCH(bool, autoScale);
    Fixture f;
    f.trace->setVerticalOffset(0.0);
    f.trace->setScalingFactor(0.5);
    const double before = f.trace->scalingFactor();
    QTest::mouseClick(f.button(buttonName), Qt::LeftButton, Qt::KeyboardModifiers(modifiers));
    if (autoScale) {
        // Samples −3 … 3 fit six divisions at factor 1 with offset 4.
        QCOMPARE(f.trace->scalingFactor(), 1.0);
        QCOMPARE(f.trace->verticalOffset(), 4.0);
    } else if (buttonName == QLatin1String("scaleUpButton")) {
        QCOMPARE(f.trace->scalingFactor(), ScopeSeries::niceFactorUp(before));
    } else {
        QCOMPARE(f.trace->scalingFactor(), ScopeSeries::niceFactorDown(before));
    }
}

void tst_ScopeTraceWidget::scalingEdit_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<double>("factor");
    QTest::newRow("zero") << QStringLiteral("0") << 0.5;
    QTest::newRow("letters") << QStringLiteral("abc") << 0.5;
    QTest::newRow("empty") << QString() << 0.5;
    QTest::newRow("blanks") << QStringLiteral("   ") << 0.5;
    QTest::newRow("not a number") << QStringLiteral("nan") << 0.5;
    QTest::newRow("infinite") << QStringLiteral("inf V/div") << 0.5;
    QTest::newRow("float overflow") << QStringLiteral("1e39") << 0.5;
    QTest::newRow("reciprocal overflow") << QStringLiteral("1e-39") << 0.5;
    QTest::newRow("with unit") << QStringLiteral("0.5 V/div") << 2.0;
    QTest::newRow("leading blanks") << QStringLiteral("  4   U/min/div") << double(1.0f / 4.0f);
    QTest::newRow("single precision") << QStringLiteral("3") << double(1.0f / 3.0f);
}

void tst_ScopeTraceWidget::scalingEdit()
{
    QFETCH(QString, input);
    QFETCH(double, factor);
    Fixture f;
    f.trace->setScalingFactor(0.5);
    const QString shown = f.edit()->text();
    f.enter(input);
    QCOMPARE(f.trace->scalingFactor(), factor);
    if (factor == 0.5)
        QCOMPARE(f.edit()->text(), shown); // the current scaling again
}

void tst_ScopeTraceWidget::scalingEditComma()
{
    if (!commaLocale())
        QSKIP("needs a locale with a comma as decimal point (the _de run)");
    Fixture f;
    f.enter(QStringLiteral("2,5"));
    QCOMPARE(f.trace->scalingFactor(), double(1.0f / 2.5f));
    QVERIFY(qAbs(f.trace->scalingFactor() - 0.4) < 1e-7);
    QVERIFY(f.edit()->text().startsWith(QStringLiteral("2,5 ")));
}

void tst_ScopeTraceWidget::scalingEditShowsUnitsPerDivision()
{
    Fixture f;
    f.trace->setScalingFactor(0.5);
    QCOMPARE(f.edit()->text(), QStringLiteral("2 U/min/div"));
    f.trace->setScalingFactor(4.0);
    const QString text = QStringLiteral("0.25 U/min/div").replace(QLatin1Char('.'), QLocale::system().decimalPoint());
    QCOMPARE(f.edit()->text(), text);
    // The text that is shown reads back to the same scaling.
    f.enter(f.edit()->text());
    QCOMPARE(f.trace->scalingFactor(), 4.0);
}

void tst_ScopeTraceWidget::toggles()
{
    Fixture f;
    QTest::mouseClick(f.button(QStringLiteral("groundButton")), Qt::LeftButton);
    QVERIFY(f.trace->isGround());
    QTest::mouseClick(f.button(QStringLiteral("invertButton")), Qt::LeftButton);
    QVERIFY(f.trace->isInverted());
    QTest::mouseClick(f.button(QStringLiteral("offButton")), Qt::LeftButton);
    QVERIFY(f.trace->isOff());
    QVERIFY(f.button(QStringLiteral("offButton"))->isChecked());
    QTest::mouseClick(f.button(QStringLiteral("offButton")), Qt::LeftButton);
    QVERIFY(!f.trace->isOff());
    QTest::mouseClick(f.button(QStringLiteral("groundButton")), Qt::LeftButton);
    QVERIFY(!f.trace->isGround());
}

void tst_ScopeTraceWidget::togglesIgnoredWhileUpdating()
{
    Fixture f;
    auto* d = f.widget.findChild<ScopeTraceWidgetPrivate*>();
    QVERIFY(d);
    d->updating = true;
    QTest::mouseClick(f.button(QStringLiteral("offButton")), Qt::LeftButton);
    QTest::mouseClick(f.button(QStringLiteral("groundButton")), Qt::LeftButton);
    QTest::mouseClick(f.button(QStringLiteral("invertButton")), Qt::LeftButton);
    QVERIFY(!f.trace->isOff());
    QVERIFY(!f.trace->isGround());
    QVERIFY(!f.trace->isInverted());
    d->updating = false;
    d->updateControls();
    QVERIFY(!d->updating);
    QVERIFY(!f.button(QStringLiteral("offButton"))->isChecked());
}

void tst_ScopeTraceWidget::selectingTraceWritesNothing()
{
    // Filling the controls from a trace that is off, grounded and inverted
    // toggles the buttons; none of that reaches either trace.
    QObject owner;
    auto* first = new ScopeTrace(&owner, 0);
    first->setOff(true, false);
    first->setGround(true, false);
    first->setInverted(true, false);
    auto* second = new ScopeTrace(&owner, 1);
    ScopeTraceWidget widget;
    QSignalSpy firstSpy(first, &ScopeTrace::changed);
    QSignalSpy secondSpy(second, &ScopeTrace::changed);
    widget.setScopeTrace(first);
    QVERIFY(widget.findChild<QAbstractButton*>(QStringLiteral("offButton"))->isChecked());
    QVERIFY(widget.findChild<QAbstractButton*>(QStringLiteral("groundButton"))->isChecked());
    widget.setScopeTrace(second);
    QVERIFY(!widget.findChild<QAbstractButton*>(QStringLiteral("offButton"))->isChecked());
    widget.setScopeTrace(first);
    QCOMPARE(firstSpy.count(), 0);
    QCOMPARE(secondSpy.count(), 0);
    QVERIFY(first->isOff() && first->isGround() && first->isInverted());
    QVERIFY(!second->isOff() && !second->isGround() && !second->isInverted());
}

void tst_ScopeTraceWidget::binaryButton()
{
    Fixture f;
    QAbstractButton* button = f.button(QStringLiteral("binaryButton"));
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(f.trace->isBinaryView());
    QVERIFY(button->isChecked());
    QTest::mouseClick(button, Qt::LeftButton);
    QVERIFY(!f.trace->isBinaryView());
    QVERIFY(!button->isChecked());
}

void tst_ScopeTraceWidget::displayKinds()
{
    Fixture f;
    QAction* binary = f.kindAction(QStringLiteral("Binär"));
    QAction* hexadecimal = f.kindAction(QStringLiteral("Hexadezimal"));
    QAction* decimal = f.kindAction(QStringLiteral("Dezimal"));
    QVERIFY(binary && hexadecimal && decimal);
    QVERIFY(decimal->isChecked());
    binary->trigger();
    QCOMPARE(f.trace->parameterKind(), 4);
    QVERIFY(binary->isChecked());
    hexadecimal->trigger();
    QCOMPARE(f.trace->parameterKind(), 3);
    QVERIFY(hexadecimal->isChecked());
    decimal->trigger();
    QCOMPARE(f.trace->parameterKind(), 0);
}

void tst_ScopeTraceWidget::kindOnlyForIntegerTypes()
{
    Fixture integer(2);
    QVERIFY(integer.widget.findChild<QToolButton*>(QStringLiteral("kindButton"))->isEnabled());
    Fixture fractional(7);
    QVERIFY(!fractional.widget.findChild<QToolButton*>(QStringLiteral("kindButton"))->isEnabled());
}

void tst_ScopeTraceWidget::colorDialog_data()
{
    QTest::addColumn<bool>("accept");
    QTest::newRow("accepted") << true;
    QTest::newRow("cancelled") << false;
}

void tst_ScopeTraceWidget::colorDialog()
{
    QFETCH(bool, accept);
    Fixture f;
    const QColor before = f.trace->color();
    const QColor chosen(12, 34, 56);
    bool seen = false;
    QTimer::singleShot(0, this, [&]() {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen = dialog->currentColor() == before;
        dialog->setCurrentColor(chosen);
        if (accept)
            dialog->accept();
        else
            dialog->reject();
    });
    QTest::mouseClick(f.button(QStringLiteral("colorButton")), Qt::LeftButton);
    QVERIFY(seen);
    QCOMPARE(f.trace->color(), accept ? chosen : before);
}

void tst_ScopeTraceWidget::followsTraceAndShot()
{
    ScopeShot shot;
    auto* trace = new ScopeTrace(&shot, 0);
    ScopeTraceWidget widget;
    widget.setScopeTrace(trace);
    widget.setScopeTrace(trace); // a second selection makes no second connection
    trace->setGround(true, false);
    QVERIFY(widget.findChild<QAbstractButton*>(QStringLiteral("groundButton"))->isChecked());
    trace->setScalingFactor(0.25);
    QVERIFY(widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"))->text().startsWith(QStringLiteral("4 ")));

    // A change signalled by the shot alone also refreshes the controls.
    auto* offButton = widget.findChild<QAbstractButton*>(QStringLiteral("offButton"));
    {
        const QSignalBlocker blocker(trace);
        trace->setOff(true, false);
    }
    QVERIFY(!offButton->isChecked());
    Q_EMIT shot.changed();
    QVERIFY(offButton->isChecked());

    // Another trace: the first no longer reaches the controls.
    QObject owner;
    auto* other = new ScopeTrace(&owner, 1);
    widget.setScopeTrace(other);
    QCOMPARE(widget.scopeTrace(), other);
    trace->setGround(false, false);
    trace->setInverted(true, false);
    QVERIFY(!widget.findChild<QAbstractButton*>(QStringLiteral("invertButton"))->isChecked());
}

void tst_ScopeTraceWidget::withoutTrace()
{
    ScopeTraceWidget widget;
    const QStringList names = {QStringLiteral("moveUpButton"), QStringLiteral("moveDownButton"),
        QStringLiteral("scaleUpButton"), QStringLiteral("scaleDownButton"), QStringLiteral("binaryButton")};
    for (const QString& name : names)
        QVERIFY(!widget.findChild<QWidget*>(name)->isEnabled());
    auto* d = widget.findChild<ScopeTraceWidgetPrivate*>();
    // Every slot is safe without a trace.
    for (const char* slot : {"onMoveUpClicked", "onMoveDownClicked", "onScaleUpClicked", "onScaleDownClicked",
             "onBinaryClicked", "onColorButtonClicked", "onScalingEditCommitted", "onKindSetDecimal",
             "onKindSetBinary", "onKindSetHexadecimal", "updateControls"})
        QVERIFY(QMetaObject::invokeMethod(d, slot));
    for (const char* slot : {"onGroundToggled", "onOffToggled", "onInvertToggled"})
        QVERIFY(QMetaObject::invokeMethod(d, slot, Q_ARG(bool, true)));
}

void tst_ScopeTraceWidget::traceDeleted()
{
    auto owner = std::make_unique<QObject>();
    auto* trace = new ScopeTrace(owner.get(), 0);
    ScopeTraceWidget widget;
    widget.setScopeTrace(trace);
    owner.reset();
    QVERIFY(!widget.scopeTrace());
    QTest::mouseClick(widget.findChild<QAbstractButton*>(QStringLiteral("moveUpButton")), Qt::LeftButton);
    auto* d = widget.findChild<ScopeTraceWidgetPrivate*>();
    QVERIFY(QMetaObject::invokeMethod(d, "onMoveUpClicked"));
    QVERIFY(QMetaObject::invokeMethod(d, "onOffToggled", Q_ARG(bool, true)));
}

void tst_ScopeTraceWidget::binaryWindow()
{
    Fixture f;
    QAction* select = f.kindAction(QStringLiteral("Binärsignale auswählen ..."));
    QVERIFY(select);
    select->trigger();
    auto* binary = f.widget.findChild<ScopeTraceBinaryWidget*>();
    QVERIFY(binary);
    QVERIFY(binary->isWindow());
    QVERIFY(binary->isVisible());
    QCOMPARE(binary->windowTitle(), QStringLiteral("Auswahl der Binärsignale"));
    QVERIFY(!binary->windowIcon().isNull());
    QCOMPARE(binary->scopeTrace(), f.trace);
    // It follows the selection of another trace.
    QObject owner;
    auto* other = new ScopeTrace(&owner, 1);
    f.widget.setScopeTrace(other);
    QCOMPARE(binary->scopeTrace(), other);
    f.widget.setScopeTrace(nullptr);
}

void tst_ScopeTraceWidget::garbageInScalingEdit()
{
    Fixture f;
    QRandomGenerator random(815);
    const QString alphabet = QStringLiteral("0123456789.,; -+eE/Vdivnaf\u0660 \t");
    for (int round = 0; round < 500; ++round) {
        QString text;
        const int length = random.bounded(30);
        for (int i = 0; i < length; ++i)
            text += alphabet.at(random.bounded(alphabet.size()));
        f.edit()->setText(text);
        Q_EMIT qobject_cast<LineEdit*>(f.edit())->textCommited(text);
        QVERIFY2(std::isfinite(f.trace->scalingFactor()), qPrintable(text));
        QVERIFY2(f.trace->scalingFactor() != 0.0, qPrintable(text));
        QVERIFY2(f.edit()->text().endsWith(QStringLiteral(" U/min/div")), qPrintable(text));
    }
}

QTEST_MAIN(tst_ScopeTraceWidget)
#include "tst_scopetracewidget.moc"
