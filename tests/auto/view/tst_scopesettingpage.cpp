// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopesettingpage.h"
#include "scopewidget.h"

#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QLayout>
#include <QtWidgets/QPushButton>

class tst_ScopeSettingPage : public QObject
{
    Q_OBJECT

private:
    static QColor plotBackground(const ScopeWidget& widget)
    {
        return widget.palette().color(widget.backgroundRole());
    }

private Q_SLOTS:
    void initTestCase();
    void init();
    void dialog();
    void seedsAbsentColours();
    void restoredDefaultsReachPlotWidgets();
    void chosenColourReachesPlotWidgets();
};

void tst_ScopeSettingPage::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeSettingPage::init()
{
    QSettings settings;
    settings.remove(QStringLiteral("Scope"));
    settings.sync();
}

void tst_ScopeSettingPage::dialog()
{
    QWidget parent;
    ScopeSettingPage page(&parent);
    QCOMPARE(page.objectName(), QStringLiteral("ScopeSettingPage"));
    QCOMPARE(page.windowTitle(), QStringLiteral("Einstellungen: Scope"));
    QVERIFY(!(page.windowFlags() & Qt::WindowContextHelpButtonHint));
    QCOMPARE(page.size(), QSize(94, 71));
    QWidget* view = page.settingView();
    QVERIFY(view);
    QCOMPARE(view->objectName(), QStringLiteral("scopeSettingPage"));
    QCOMPARE(view->parentWidget(), &page);
    auto* layout = qobject_cast<QVBoxLayout*>(page.layout());
    QVERIFY(layout);
    QCOMPARE(layout->indexOf(view), 0);
    QVERIFY(view->findChild<QPushButton*>(QStringLiteral("backgroundColorButton")));
    QVERIFY(view->findChild<QPushButton*>(QStringLiteral("gridColorButton")));
}

void tst_ScopeSettingPage::seedsAbsentColours()
{
    QVERIFY(!QSettings().contains(QStringLiteral("Scope/BackgroundColor")));
    ScopeSettingPage page;
    QSettings settings;
    settings.sync();
    QVERIFY(settings.value(QStringLiteral("Scope/BackgroundColor")).value<QColor>().isValid());
    QVERIFY(settings.value(QStringLiteral("Scope/GridColor")).value<QColor>().isValid());
}

void tst_ScopeSettingPage::restoredDefaultsReachPlotWidgets()
{
    {
        QSettings settings;
        settings.setValue(QStringLiteral("Scope/BackgroundColor"), QColor(200, 0, 0));
        settings.setValue(QStringLiteral("Scope/GridColor"), QColor(0, 200, 0));
    }
    ScopeWidget first;
    ScopeWidget second;
    first.show();
    second.show();
    QVERIFY(QTest::qWaitForWindowExposed(&first));
    QCOMPARE(plotBackground(first), QColor(200, 0, 0));

    ScopeSettingPage page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    auto* restore = page.settingView()->findChild<QPushButton*>(QStringLiteral("restoreDefaultsButton"));
    QVERIFY(restore);
    QTest::mouseClick(restore, Qt::LeftButton);

    const QColor background = QSettings().value(QStringLiteral("Scope/BackgroundColor")).value<QColor>();
    QVERIFY(background.isValid());
    QVERIFY(background != QColor(200, 0, 0));
    QTRY_COMPARE(plotBackground(first), background);
    QTRY_COMPARE(plotBackground(second), background);
    QVERIFY(first.gridColor() != QColor(0, 200, 0));
    QCOMPARE(first.gridColor(), QSettings().value(QStringLiteral("Scope/GridColor")).value<QColor>());
}

void tst_ScopeSettingPage::chosenColourReachesPlotWidgets()
{
    ScopeWidget plot;
    plot.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plot));
    ScopeSettingPage page;
    page.show();
    QVERIFY(QTest::qWaitForWindowExposed(&page));
    const QColor chosen(10, 20, 30);
    QTimer::singleShot(0, this, [chosen]() {
        if (auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget())) {
            dialog->setCurrentColor(chosen);
            dialog->accept();
        }
    });
    QTest::mouseClick(page.settingView()->findChild<QPushButton*>(QStringLiteral("backgroundColorButton")),
        Qt::LeftButton);
    QCOMPARE(QSettings().value(QStringLiteral("Scope/BackgroundColor")).value<QColor>(), chosen);
    QTRY_COMPARE(plotBackground(plot), chosen);
    QCOMPARE(plot.backgroundColor(), chosen);
}

QTEST_MAIN(tst_ScopeSettingPage)
#include "tst_scopesettingpage.moc"
