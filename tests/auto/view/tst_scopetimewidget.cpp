// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopelayout.h"
#include "scopestripeswidget.h"
#include "scopetimewidget.h"
#include "scopetimewidget_p.h"
#include "lineedit.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QLocale>
#include <QtCore/QRandomGenerator>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

class tst_ScopeTimeWidget : public QObject
{
    Q_OBJECT

private:
    struct Fixture {
        ZoomBar zoomBar;
        ScopeTimeWidget widget;
        QLineEdit* edit = nullptr;

        Fixture(qint64 minimum, qint64 maximum, qint64 left, qint64 right, qint64 minimumDifference = 10)
        {
            zoomBar.setRange(minimum, maximum);
            zoomBar.setMinimumSliderDifference(minimumDifference);
            zoomBar.setSlider(left, right);
            widget.setZoomBar(&zoomBar);
            edit = widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"));
        }
        QAbstractButton* button(const char* name) const
        {
            return widget.findChild<QAbstractButton*>(QLatin1String(name));
        }
        qint64 span() const { return zoomBar.sliderRight() - zoomBar.sliderLeft(); }
        void enter(const QString& text)
        {
            edit->selectAll();
            QTest::keyClicks(edit, text);
            QTest::keyClick(edit, Qt::Key_Return);
        }
    };

    static QString local(QString text)
    {
        return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
    }
    static bool commaLocale() { return QLocale::system().decimalPoint() == QLatin1String(","); }

private Q_SLOTS:
    void form();
    void metaMethodOrder();
    void showsTimePerDivision_data();
    void showsTimePerDivision();
    void noZoomBarDoesNothing();
    void divisionsFromFirstPlotWidget();
    void scaleSteps_data();
    void scaleSteps();
    void scaleStepsOffSeries();
    void scaleKeepsCentre();
    void editWithUnits_data();
    void editWithUnits();
    void editCommaDecimalPoint();
    void editRejected_data();
    void editRejected();
    void scaleBeyondRecordingShowsWhole();
    void scaleBelowMinimumDifference();
    void moveByDivision_data();
    void moveByDivision();
    void moveStopsAtEnd();
    void moveByPixel();
    void moveToRaster_data();
    void moveToRaster();
    void rasterOnEdgeMovesNothing();
    void rasterWidensWindowToRaster();
    void viewChangedSignal();
    void garbageInEdit();
};

void tst_ScopeTimeWidget::form()
{
    ScopeTimeWidget widget;
    const char* names[] = {"scaleDownButton", "scaleUpButton", "moveLeftButton", "moveRightButton"};
    for (const char* name : names) {
        auto* button = widget.findChild<QPushButton*>(QLatin1String(name));
        QVERIFY2(button, name);
        QVERIFY2(!button->icon().isNull(), name);
        QVERIFY2(!button->icon().pixmap(24).isNull(), name);
    }
    auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"));
    QVERIFY(edit);
    QCOMPARE(edit->styleSheet(), QStringLiteral("background-color:palette(button)"));
    QVERIFY(widget.findChild<QLayout*>(QStringLiteral("gridLayout_3")));
    QCOMPARE(widget.timeRaster(), qint64(1));
    // Without a zoom bar the edit stays empty.
    QVERIFY(edit->text().isEmpty());
}

void tst_ScopeTimeWidget::metaMethodOrder()
{
    ScopeTimeWidget widget;
    auto* d = widget.findChild<ScopeTimeWidgetPrivate*>();
    QVERIFY(d);
    const QMetaObject* meta = d->metaObject();
    const char* expected[] = {"viewChanged()", "updateControls()", "onScaleUpClicked()", "onScaleDownClicked()",
        "onMoveLeftClicked()", "onMoveRightClicked()", "onScalingEditCommitted()"};
    for (int i = 0; i < int(std::size(expected)); ++i)
        QCOMPARE(meta->method(meta->methodOffset() + i).methodSignature(), QByteArray(expected[i]));
    QCOMPARE(meta->method(meta->methodOffset()).methodType(), QMetaMethod::Signal);
}

void tst_ScopeTimeWidget::showsTimePerDivision_data()
{
    QTest::addColumn<qint64>("left");
    QTest::addColumn<qint64>("right");
    QTest::addColumn<QString>("text");
    QTest::newRow("10 ms") << qint64(0) << qint64(100000000) << QStringLiteral("10.00 ms/div");
    QTest::newRow("truncated per division") << qint64(0) << qint64(19) << QStringLiteral("0.00 ms/div");
    QTest::newRow("250 us") << qint64(-1000000) << qint64(1500000) << QStringLiteral("0.25 ms/div");
    QTest::newRow("1 s") << qint64(-5000000000) << qint64(5000000000) << QStringLiteral("1000.00 ms/div");
}

void tst_ScopeTimeWidget::showsTimePerDivision()
{
    QFETCH(qint64, left);
    QFETCH(qint64, right);
    QFETCH(QString, text);
    Fixture f(-10000000000, 10000000000, left, right, 1);
    QCOMPARE(f.edit->text(), local(text));
}

void tst_ScopeTimeWidget::noZoomBarDoesNothing()
{
    ScopeTimeWidget widget;
    // Every control works without a zoom bar, doing nothing.
    for (const char* name : {"scaleDownButton", "scaleUpButton", "moveLeftButton", "moveRightButton"})
        QTest::mouseClick(widget.findChild<QAbstractButton*>(QLatin1String(name)), Qt::LeftButton);
    auto* edit = widget.findChild<QLineEdit*>(QStringLiteral("scalingEdit"));
    QTest::keyClicks(edit, QStringLiteral("5 ms"));
    QTest::keyClick(edit, Qt::Key_Return);
    QCOMPARE(edit->text(), QStringLiteral("5 ms"));
    QVERIFY(!widget.zoomBar());
}

void tst_ScopeTimeWidget::divisionsFromFirstPlotWidget()
{
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    ScopeStripesWidget stripes;
    stripes.setZoomBar(&f.zoomBar);
    f.widget.setStripesWidget(&stripes);
    QCOMPARE(f.widget.stripesWidget(), &stripes);
    // An empty container counts as 10 divisions.
    QCOMPARE(f.edit->text(), local(QStringLiteral("10.00 ms/div")));
    ScopeWidget* plot = stripes.addStripe();
    QVERIFY(plot);
    QCOMPARE(plot->layout()->divisions().width(), 10);
    f.zoomBar.setSlider(0, 50000000);
    QCOMPARE(f.edit->text(), local(QStringLiteral("5.00 ms/div")));
}

void tst_ScopeTimeWidget::scaleSteps_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("down") << QStringLiteral("scaleDownButton")
                          << QStringList{QStringLiteral("20.00 ms/div"), QStringLiteral("50.00 ms/div"),
                                 QStringLiteral("100.00 ms/div")};
    QTest::newRow("up") << QStringLiteral("scaleUpButton")
                        << QStringList{QStringLiteral("5.00 ms/div"), QStringLiteral("2.00 ms/div"),
                               QStringLiteral("1.00 ms/div"), QStringLiteral("0.50 ms/div")};
}

void tst_ScopeTimeWidget::scaleSteps()
{
    QFETCH(QString, buttonName);
    QFETCH(QStringList, texts);
    Fixture f(-10000000000, 10000000000, 0, 100000000);
    QCOMPARE(f.edit->text(), local(QStringLiteral("10.00 ms/div")));
    for (const QString& text : std::as_const(texts)) {
        QTest::mouseClick(f.button(buttonName.toLatin1().constData()), Qt::LeftButton);
        QCOMPARE(f.edit->text(), local(text));
        const double milliseconds = QString(text).remove(QStringLiteral(" ms/div")).toDouble();
        QCOMPARE(f.span(), qint64(milliseconds * 10 * 1000000));
    }
}

void tst_ScopeTimeWidget::scaleStepsOffSeries()
{
    Fixture down(-1000000000, 1000000000, 0, 30000000);
    QCOMPARE(down.edit->text(), local(QStringLiteral("3.00 ms/div")));
    QTest::mouseClick(down.button("scaleDownButton"), Qt::LeftButton);
    QCOMPARE(down.edit->text(), local(QStringLiteral("5.00 ms/div")));
    QCOMPARE(down.span(), qint64(50000000));

    Fixture up(-1000000000, 1000000000, 0, 30000000);
    QTest::mouseClick(up.button("scaleUpButton"), Qt::LeftButton);
    QCOMPARE(up.edit->text(), local(QStringLiteral("2.00 ms/div")));
    QCOMPARE(up.span(), qint64(20000000));
}

void tst_ScopeTimeWidget::scaleKeepsCentre()
{
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    QTest::mouseClick(f.button("scaleDownButton"), Qt::LeftButton);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(-50000000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(150000000));
}

void tst_ScopeTimeWidget::editWithUnits_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<qint64>("span");
    QTest::addColumn<QString>("text");
    QTest::newRow("us") << QStringLiteral("250 us") << qint64(2500000) << QStringLiteral("0.25 ms/div");
    QTest::newRow("micro sign") << QStringLiteral("250\u00b5s") << qint64(2500000) << QStringLiteral("0.25 ms/div");
    QTest::newRow("ns") << QStringLiteral("50000 ns") << qint64(500000) << QStringLiteral("0.05 ms/div");
    QTest::newRow("ms") << QStringLiteral("2 ms") << qint64(20000000) << QStringLiteral("2.00 ms/div");
    QTest::newRow("s") << QStringLiteral("0.01 s") << qint64(100000000) << QStringLiteral("10.00 ms/div");
    QTest::newRow("point, suffix") << QStringLiteral("2.5ms/DIV") << qint64(25000000) << QStringLiteral("2.50 ms/div");
    QTest::newRow("own text") << QStringLiteral("20.00 ms/div") << qint64(200000000) << QStringLiteral("20.00 ms/div");
    QTest::newRow("surrounding text") << QStringLiteral("etwa 5 ms bitte") << qint64(50000000)
                                      << QStringLiteral("5.00 ms/div");
}

void tst_ScopeTimeWidget::editWithUnits()
{
    QFETCH(QString, input);
    QFETCH(qint64, span);
    QFETCH(QString, text);
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    f.enter(input);
    QCOMPARE(f.span(), span);
    QCOMPARE(f.edit->text(), local(text));
}

void tst_ScopeTimeWidget::editCommaDecimalPoint()
{
    if (!commaLocale())
        QSKIP("needs a locale with a comma as decimal point (the _de run)");
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    f.enter(QStringLiteral("2,5ms/DIV"));
    QCOMPARE(f.span(), qint64(25000000));
    QCOMPARE(f.edit->text(), QStringLiteral("2,50 ms/div"));
}

void tst_ScopeTimeWidget::editRejected_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("letters") << QStringLiteral("abc");
    QTest::newRow("zero") << QStringLiteral("0 ms");
    QTest::newRow("no unit") << QStringLiteral("5");
    QTest::newRow("unit case") << QStringLiteral("5 MS");
    QTest::newRow("empty") << QString();
    QTest::newRow("huge") << QStringLiteral("999999999999999999999999999999 s");
}

void tst_ScopeTimeWidget::editRejected()
{
    QFETCH(QString, input);
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    const QString before = f.edit->text();
    f.enter(input);
    if (QTest::currentDataTag() == QLatin1String("huge")) {
        // Wider than the recording: the whole recording, never an overflow.
        QCOMPARE(f.zoomBar.sliderLeft(), f.zoomBar.minimum());
        QCOMPARE(f.zoomBar.sliderRight(), f.zoomBar.maximum());
        return;
    }
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(0));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(100000000));
    QCOMPARE(f.edit->text(), before);
}

void tst_ScopeTimeWidget::scaleBeyondRecordingShowsWhole()
{
    Fixture f(-20000000, 180000000, 0, 100000000);
    f.enter(QStringLiteral("50 ms"));
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(-20000000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(180000000));

    // A window that would touch an end exactly also shows the whole recording.
    Fixture exact(0, 100000001, 25000000, 75000000);
    exact.enter(QStringLiteral("10 ms"));
    QCOMPARE(exact.zoomBar.sliderLeft(), qint64(0));
    QCOMPARE(exact.zoomBar.sliderRight(), qint64(100000001));
}

void tst_ScopeTimeWidget::scaleBelowMinimumDifference()
{
    Fixture f(-1000000000, 1000000000, 0, 100000000, 1000000);
    f.enter(QStringLiteral("10 us"));
    // 10 divisions of 10 us are narrower than the minimum difference: the
    // minimum width around the old centre (50 ms).
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(49500000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(50500000));
    QCOMPARE(f.edit->text(), local(QStringLiteral("0.10 ms/div")));
}

void tst_ScopeTimeWidget::moveByDivision_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<qint64>("left");
    QTest::newRow("left shows later times") << QStringLiteral("moveLeftButton") << qint64(10000000);
    QTest::newRow("right shows earlier times") << QStringLiteral("moveRightButton") << qint64(-10000000);
}

void tst_ScopeTimeWidget::moveByDivision()
{
    QFETCH(QString, buttonName);
    QFETCH(qint64, left);
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    QTest::mouseClick(f.button(buttonName.toLatin1().constData()), Qt::LeftButton, Qt::NoModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), left);
    QCOMPARE(f.span(), qint64(100000000));
}

void tst_ScopeTimeWidget::moveStopsAtEnd()
{
    Fixture f(0, 1000000000, 905000000, 995000000);
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(910000000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(1000000000));
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(910000000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(1000000000));

    Fixture start(0, 1000000000, 5000000, 95000000);
    QTest::mouseClick(start.button("moveRightButton"), Qt::LeftButton);
    QCOMPARE(start.zoomBar.sliderLeft(), qint64(0));
    QCOMPARE(start.zoomBar.sliderRight(), qint64(90000000));
}

void tst_ScopeTimeWidget::moveByPixel()
{
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    // No plot widget: a division is taken as 10 pixels wide.
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(1000000));
    QTest::mouseClick(f.button("moveRightButton"), Qt::LeftButton, Qt::ShiftModifier);
    QTest::mouseClick(f.button("moveRightButton"), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(-1000000));
    QCOMPARE(f.span(), qint64(100000000));

    // With a laid-out plot widget the pixel is a cell width's share.
    ScopeStripesWidget stripes;
    stripes.setZoomBar(&f.zoomBar);
    ScopeWidget* plot = stripes.addStripe();
    plot->layout()->setGeometry(QRect(0, 0, 1004, 600)); // cells of 100 pixels
    QCOMPARE(plot->layout()->divisionSize().width(), 100);
    f.widget.setStripesWidget(&stripes);
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton, Qt::ShiftModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(-1000000 + 100000));
}

void tst_ScopeTimeWidget::moveToRaster_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<qint64>("left");
    QTest::newRow("left") << QStringLiteral("moveLeftButton") << qint64(3000);
    QTest::newRow("right") << QStringLiteral("moveRightButton") << qint64(2000);
}

void tst_ScopeTimeWidget::moveToRaster()
{
    QFETCH(QString, buttonName);
    QFETCH(qint64, left);
    Fixture f(-1000000, 1000000, 2500, 102500);
    f.widget.setTimeRaster(1000);
    QTest::mouseClick(f.button(buttonName.toLatin1().constData()), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), left);
    QCOMPARE(f.span(), qint64(100000));
}

void tst_ScopeTimeWidget::rasterOnEdgeMovesNothing()
{
    Fixture f(-1000000, 1000000, 3000, 103000);
    f.widget.setTimeRaster(1000);
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(3000));
    QTest::mouseClick(f.button("moveRightButton"), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(3000));
    QCOMPARE(f.zoomBar.sliderRight(), qint64(103000));
}

void tst_ScopeTimeWidget::rasterWidensWindowToRaster()
{
    // 10.4 raster steps per division: the window first becomes 10 steps per
    // division wide around its centre, then its left edge moves onto the raster.
    Fixture f(-1000000, 1000000, 2500, 106500);
    f.widget.setTimeRaster(1000);
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.span(), qint64(100000));
    QCOMPARE(f.zoomBar.sliderLeft() % 1000, qint64(0));
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(5000));
    // A zero raster counts as 1 and never divides by zero.
    f.widget.setTimeRaster(0);
    QTest::mouseClick(f.button("moveLeftButton"), Qt::LeftButton, Qt::ControlModifier);
    QCOMPARE(f.zoomBar.sliderLeft(), qint64(5000));
}

void tst_ScopeTimeWidget::viewChangedSignal()
{
    Fixture f(-1000000000, 1000000000, 0, 100000000);
    QSignalSpy spy(&f.widget, &ScopeTimeWidget::viewChanged);
    f.zoomBar.setSlider(0, 200000000);
    QVERIFY(spy.count() >= 1);
    QCOMPARE(f.edit->text(), local(QStringLiteral("20.00 ms/div")));
    f.zoomBar.setRange(-2000000000, 2000000000);
    QVERIFY(spy.count() >= 2);
}

void tst_ScopeTimeWidget::garbageInEdit()
{
    // Whatever is typed, the window stays inside the recording, keeps at
    // least the minimum width and the edit shows the scale that results.
    Fixture f(-1000000000, 1000000000, 0, 100000000, 1000);
    QRandomGenerator random(4711);
    const QString alphabet = QStringLiteral("0123456789.,; -+eE/msnu\u00b5DIVdiv\u0660\u0969 \t");
    for (int round = 0; round < 500; ++round) {
        QString text;
        const int length = random.bounded(40);
        for (int i = 0; i < length; ++i)
            text += alphabet.at(random.bounded(alphabet.size()));
        f.edit->setText(text);
        Q_EMIT qobject_cast<LineEdit*>(f.edit)->textCommited(text);
        QVERIFY(f.zoomBar.sliderLeft() >= f.zoomBar.minimum());
        QVERIFY(f.zoomBar.sliderRight() <= f.zoomBar.maximum());
        QVERIFY(f.span() >= 1000);
        QVERIFY2(f.edit->text().endsWith(QStringLiteral(" ms/div")), qPrintable(text));
    }
}

QTEST_MAIN(tst_ScopeTimeWidget)
#include "tst_scopetimewidget.moc"
