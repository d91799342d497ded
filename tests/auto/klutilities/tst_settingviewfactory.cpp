// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "settingviewfactory.h"

#include <QtCore/QFile>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QPointer>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QApplication>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QLabel>

#include <functional>
#include <memory>

namespace {

void clearSettings()
{
    QSettings settings;
    settings.clear();
    settings.sync();
    AppSettings::instance()->reload();
}

QColor stored(const QString& key)
{
    return QSettings().value(key).value<QColor>();
}

/* Waits for the modal colour dialog that a click opens and hands it to
   action; polls through the event loop, since the dialog only appears once
   the click has entered its exec(). */
class DialogDriver : public QObject
{
public:
    explicit DialogDriver(std::function<void(QColorDialog*)> action)
        : m_action(std::move(action))
    {
        m_timer.setInterval(10);
        connect(&m_timer, &QTimer::timeout, this, &DialogDriver::poll);
        m_timer.start();
    }

    bool handled() const { return m_handled; }
    QString title() const { return m_title; }
    QColor initialColor() const { return m_initial; }

private:
    void poll()
    {
        auto* dialog = qobject_cast<QColorDialog*>(QApplication::activeModalWidget());
        if (!dialog || !dialog->isVisible())
            return;
        m_timer.stop();
        m_handled = true;
        m_title = dialog->windowTitle();
        m_initial = dialog->currentColor();
        m_action(dialog);
    }

    std::function<void(QColorDialog*)> m_action;
    QTimer m_timer;
    bool m_handled = false;
    QString m_title;
    QColor m_initial;
};

} // namespace

class tst_SettingViewFactory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void createsPage();
    void labels();
    void seedsAbsentKeys();
    void keepsPresentKeys();
    void buttonsShowStoredColours();
    void choosingWritesSettings_data();
    void choosingWritesSettings();
    void rejectedDialogChangesNothing();
    void watchersOfTheFileAreNotified();
    void restoreDefaults();
    void followsChangesMadeElsewhere();

private:
    std::unique_ptr<QWidget> m_page;
    QAbstractButton* button(const char* name) const
    {
        return m_page->findChild<QAbstractButton*>(QLatin1String(name));
    }
    void showPage()
    {
        m_page.reset(SettingViewFactory::createScopePage());
        m_page->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_page.get()));
    }
};

void tst_SettingViewFactory::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeTest"));
    QCoreApplication::setApplicationName(QStringLiteral("tst_settingviewfactory"));
    QFile::remove(QSettings().fileName());
}

void tst_SettingViewFactory::init()
{
    clearSettings();
}

void tst_SettingViewFactory::cleanup()
{
    m_page.reset();
}

void tst_SettingViewFactory::createsPage()
{
    QWidget parent;
    QWidget* page = SettingViewFactory::createScopePage(&parent);
    QVERIFY(page);
    QCOMPARE(page->parent(), &parent);
    QCOMPARE(page->objectName(), QStringLiteral("scopeSettingPage"));

    m_page.reset(SettingViewFactory::createScopePage());
    QVERIFY(m_page);
    QVERIFY(!m_page->parent());
    for (const char* name : {"backgroundColorButton", "gridColorButton", "markerColorButton", "triggerColorButton",
                             "chartBackgroundColorButton", "chartPlotAreaColorButton", "chartGridColorButton",
                             "chartLabelColorButton", "restoreDefaultsButton"})
        QVERIFY2(button(name), name);
    QCOMPARE(button("restoreDefaultsButton")->text(), QStringLiteral("Standardfarben wiederherstellen"));
}

void tst_SettingViewFactory::labels()
{
    m_page.reset(SettingViewFactory::createScopePage());
    const QList<std::pair<const char*, QString>> expected = {
        {"backgroundColorButton", QStringLiteral("Hintergrundfarbe:")},
        {"gridColorButton", QStringLiteral("Gitterfarbe:")},
        {"markerColorButton", QStringLiteral("Marker und Schnellmessung:")},
        {"triggerColorButton", QStringLiteral("Triggeranzeige:")},
        {"chartBackgroundColorButton", QStringLiteral("Diagrammhintergrund:")},
        {"chartPlotAreaColorButton", QStringLiteral("Zeichenfläche:")},
        {"chartGridColorButton", QStringLiteral("Gitterlinien:")},
        {"chartLabelColorButton", QStringLiteral("Beschriftung:")},
    };
    const QList<QLabel*> labels = m_page->findChildren<QLabel*>();
    for (const auto& [name, text] : expected) {
        QAbstractButton* chooser = button(name);
        QVERIFY(chooser);
        bool found = false;
        for (QLabel* label : labels)
            found = found || (label->buddy() == chooser && label->text() == text);
        QVERIFY2(found, name);
    }
}

void tst_SettingViewFactory::seedsAbsentKeys()
{
    QVERIFY(!QSettings().contains(AppSettings::backgroundColorKey()));
    m_page.reset(SettingViewFactory::createScopePage());
    QCOMPARE(stored(QStringLiteral("Scope/BackgroundColor")), AppSettings::defaultBackgroundColor());
    QCOMPARE(stored(QStringLiteral("Scope/GridColor")), AppSettings::defaultGridColor());
    for (int i = 0; i < AppSettings::ColorCount; ++i)
        QCOMPARE(stored(AppSettings::colorKey(i)), AppSettings::defaultColor(i));
    // Written through to the file, where plot widgets read it.
    QSettings file(AppSettings::instance()->settingsFileName(), QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("Scope/GridColor")).value<QColor>(), AppSettings::defaultGridColor());
}

void tst_SettingViewFactory::keepsPresentKeys()
{
    {
        QSettings settings;
        settings.setValue(QStringLiteral("Scope/BackgroundColor"), QColor(Qt::darkBlue));
        settings.sync();
    }
    AppSettings::instance()->reload();
    showPage();
    QCOMPARE(stored(QStringLiteral("Scope/BackgroundColor")), QColor(Qt::darkBlue));
    QCOMPARE(button("backgroundColorButton")->property("color").value<QColor>(), QColor(Qt::darkBlue));
}

void tst_SettingViewFactory::buttonsShowStoredColours()
{
    AppSettings::instance()->setColor(AppSettings::TriggerColor, QColor(Qt::magenta));
    showPage();
    AppSettings* settings = AppSettings::instance();
    QCOMPARE(button("backgroundColorButton")->property("color").value<QColor>(), settings->backgroundColor());
    QCOMPARE(button("gridColorButton")->property("color").value<QColor>(), settings->gridColor());
    QCOMPARE(button("markerColorButton")->property("color").value<QColor>(), settings->color(2));
    QCOMPARE(button("triggerColorButton")->property("color").value<QColor>(), QColor(Qt::magenta));
    QCOMPARE(button("chartBackgroundColorButton")->property("color").value<QColor>(), settings->color(0));
    QCOMPARE(button("chartPlotAreaColorButton")->property("color").value<QColor>(), settings->color(1));
    QCOMPARE(button("chartGridColorButton")->property("color").value<QColor>(), settings->color(4));
    QCOMPARE(button("chartLabelColorButton")->property("color").value<QColor>(), settings->color(5));

    // The swatch shows the colour.
    QAbstractButton* trigger = button("triggerColorButton");
    QVERIFY(!trigger->icon().isNull());
    const QImage swatch = trigger->icon().pixmap(trigger->iconSize()).toImage();
    QCOMPARE(swatch.pixelColor(swatch.width() / 2, swatch.height() / 2), QColor(Qt::magenta));
    QCOMPARE(trigger->text(), QColor(Qt::magenta).name());
}

void tst_SettingViewFactory::choosingWritesSettings_data()
{
    QTest::addColumn<QByteArray>("buttonName");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QColor>("color");

    QTest::newRow("background") << QByteArray("backgroundColorButton") << QStringLiteral("Scope/BackgroundColor")
                                << QColor(12, 34, 56);
    QTest::newRow("grid") << QByteArray("gridColorButton") << QStringLiteral("Scope/GridColor") << QColor(200, 0, 0);
    QTest::newRow("markers (2)") << QByteArray("markerColorButton") << AppSettings::colorKey(2) << QColor(0, 255, 0);
    QTest::newRow("trigger (3)") << QByteArray("triggerColorButton") << AppSettings::colorKey(3) << QColor(0, 0, 255);
    QTest::newRow("chart background (0)") << QByteArray("chartBackgroundColorButton") << AppSettings::colorKey(0)
                                          << QColor(1, 1, 1);
    QTest::newRow("chart plot area (1)") << QByteArray("chartPlotAreaColorButton") << AppSettings::colorKey(1)
                                         << QColor(2, 2, 2);
    QTest::newRow("chart grid (4)") << QByteArray("chartGridColorButton") << AppSettings::colorKey(4)
                                    << QColor(3, 3, 3);
    QTest::newRow("chart labels (5)") << QByteArray("chartLabelColorButton") << AppSettings::colorKey(5)
                                      << QColor(250, 250, 4);
}

void tst_SettingViewFactory::choosingWritesSettings()
{
    QFETCH(QByteArray, buttonName);
    QFETCH(QString, key);
    QFETCH(QColor, color);

    showPage();
    QAbstractButton* chooser = button(buttonName.constData());
    QVERIFY(chooser);
    const QColor before = chooser->property("color").value<QColor>();
    QSignalSpy changed(AppSettings::instance(), &AppSettings::changed);

    DialogDriver driver([color](QColorDialog* dialog) {
        dialog->setCurrentColor(color);
        dialog->accept();
    });
    QTest::mouseClick(chooser, Qt::LeftButton);
    QTRY_VERIFY(driver.handled());

    QCOMPARE(driver.initialColor(), before);
    QVERIFY(!driver.title().isEmpty());
    QCOMPARE(stored(key), color);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(chooser->property("color").value<QColor>(), color);
    // Synced: the file itself holds the new colour.
    QSettings file(AppSettings::instance()->settingsFileName(), QSettings::IniFormat);
    QCOMPARE(file.value(key).value<QColor>(), color);
}

void tst_SettingViewFactory::rejectedDialogChangesNothing()
{
    showPage();
    QAbstractButton* chooser = button("gridColorButton");
    const QColor before = stored(QStringLiteral("Scope/GridColor"));
    QSignalSpy changed(AppSettings::instance(), &AppSettings::changed);
    DialogDriver driver([](QColorDialog* dialog) {
        dialog->setCurrentColor(QColor(Qt::red));
        dialog->reject();
    });
    QTest::mouseClick(chooser, Qt::LeftButton);
    QTRY_VERIFY(driver.handled());
    QCOMPARE(stored(QStringLiteral("Scope/GridColor")), before);
    QCOMPARE(chooser->property("color").value<QColor>(), before);
    QCOMPARE(changed.count(), 0);
}

void tst_SettingViewFactory::watchersOfTheFileAreNotified()
{
    // A plot widget watches the settings file and rereads the background colour.
    showPage();
    const QString fileName = AppSettings::instance()->settingsFileName();
    QVERIFY(QFile::exists(fileName));
    QFileSystemWatcher watcher({fileName});
    QColor seen;
    connect(&watcher, &QFileSystemWatcher::fileChanged, this, [&](const QString& path) {
        seen = QSettings().value(QStringLiteral("Scope/BackgroundColor")).value<QColor>();
        // The file is replaced on every write: watch the new one.
        if (!watcher.files().contains(path) && QFile::exists(path))
            watcher.addPath(path);
    });

    for (const QColor& color : {QColor(10, 20, 30), QColor(40, 50, 60)}) {
        DialogDriver driver([color](QColorDialog* dialog) {
            dialog->setCurrentColor(color);
            dialog->accept();
        });
        QTest::mouseClick(button("backgroundColorButton"), Qt::LeftButton);
        QTRY_VERIFY(driver.handled());
        QTRY_COMPARE(seen, color);
    }
}

void tst_SettingViewFactory::restoreDefaults()
{
    AppSettings* settings = AppSettings::instance();
    settings->setBackgroundColor(QColor(Qt::white));
    settings->setGridColor(QColor(Qt::black));
    settings->setColor(AppSettings::MarkerColor, QColor(Qt::red));
    settings->setColor(AppSettings::ChartLabelColor, QColor(Qt::blue));
    showPage();
    QCOMPARE(button("markerColorButton")->property("color").value<QColor>(), QColor(Qt::red));

    QTest::mouseClick(button("restoreDefaultsButton"), Qt::LeftButton);

    QCOMPARE(stored(QStringLiteral("Scope/BackgroundColor")), AppSettings::defaultBackgroundColor());
    QCOMPARE(stored(QStringLiteral("Scope/GridColor")), AppSettings::defaultGridColor());
    for (int i = 0; i < AppSettings::ColorCount; ++i)
        QCOMPARE(stored(AppSettings::colorKey(i)), AppSettings::defaultColor(i));
    QCOMPARE(button("backgroundColorButton")->property("color").value<QColor>(), AppSettings::defaultBackgroundColor());
    QCOMPARE(button("gridColorButton")->property("color").value<QColor>(), AppSettings::defaultGridColor());
    QCOMPARE(button("markerColorButton")->property("color").value<QColor>(), AppSettings::defaultColor(2));
    QCOMPARE(button("chartLabelColorButton")->property("color").value<QColor>(), AppSettings::defaultColor(5));
}

void tst_SettingViewFactory::followsChangesMadeElsewhere()
{
    showPage();
    // Another page, or a plot widget writing its grid colour.
    {
        QSettings other;
        other.setValue(QStringLiteral("Scope/GridColor"), QColor(7, 8, 9));
        other.sync();
    }
    QTRY_COMPARE(button("gridColorButton")->property("color").value<QColor>(), QColor(7, 8, 9));
    AppSettings::instance()->setColor(AppSettings::TriggerColor, QColor(9, 8, 7));
    QCOMPARE(button("triggerColorButton")->property("color").value<QColor>(), QColor(9, 8, 7));
}

QTEST_MAIN(tst_SettingViewFactory)
#include "tst_settingviewfactory.moc"
