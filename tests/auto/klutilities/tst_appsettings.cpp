// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"

#include <QtCore/QFile>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QSettings>
#include <QtCore/QStandardPaths>
#include <QtGui/QGuiApplication>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <climits>
#include <cmath>

namespace {

double linear(double channel)
{
    return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color)
{
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) + 0.0722 * linear(color.blueF());
}

double contrast(const QColor& a, const QColor& b)
{
    const double la = luminance(a) + 0.05;
    const double lb = luminance(b) + 0.05;
    return la > lb ? la / lb : lb / la;
}

struct Lab
{
    double l, a, b;
};

Lab toLab(const QColor& color)
{
    const double r = linear(color.redF()), g = linear(color.greenF()), b = linear(color.blueF());
    const double x = (0.4124 * r + 0.3576 * g + 0.1805 * b) / 0.95047;
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    const double z = (0.0193 * r + 0.1192 * g + 0.9505 * b) / 1.08883;
    auto f = [](double t) { return t > 0.008856 ? std::cbrt(t) : 7.787 * t + 16.0 / 116.0; };
    return {116 * f(y) - 16, 500 * (f(x) - f(y)), 200 * (f(y) - f(z))};
}

double distance(const QColor& first, const QColor& second)
{
    const Lab p = toLab(first), q = toLab(second);
    return std::sqrt((p.l - q.l) * (p.l - q.l) + (p.a - q.a) * (p.a - q.a) + (p.b - q.b) * (p.b - q.b));
}

void clearSettings()
{
    QSettings settings;
    settings.clear();
    settings.sync();
    AppSettings::instance()->reload();
}

} // namespace

class tst_AppSettings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void singleton();
    void numberedDefaults_data();
    void numberedDefaults();
    void unknownNumbers();
    void plotColourDefaults();
    void paletteSize();
    void traceColourModulo_data();
    void traceColourModulo();
    void paletteDistinct();
    void paletteReadable();
    void setColorPersists();
    void setColorUnchangedIsSilent();
    void setColorIgnoresBadInput();
    void plotColoursPersist();
    void traceColourOverride();
    void externalChangeIsNoticed();
    void handWrittenValues_data();
    void handWrittenValues();
    void seedDefaultsKeepsPresentKeys();
    void restoreDefaults();
};

void tst_AppSettings::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QCoreApplication::setOrganizationName(QStringLiteral("OvScopeTest"));
    QCoreApplication::setApplicationName(QStringLiteral("tst_appsettings"));
    QFile::remove(QSettings().fileName());
}

void tst_AppSettings::init()
{
    clearSettings();
}

void tst_AppSettings::singleton()
{
    AppSettings* settings = AppSettings::instance();
    QVERIFY(settings);
    QCOMPARE(AppSettings::instance(), settings);
    QCOMPARE(settings->parent(), QCoreApplication::instance());
    QCOMPARE(settings->settingsFileName(), QSettings().fileName());
}

void tst_AppSettings::numberedDefaults_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("0 chart background") << 0 << QColor(0x1c, 0x20, 0x26);
    QTest::newRow("1 chart plot area") << 1 << QColor(0x10, 0x14, 0x18);
    QTest::newRow("2 markers") << 2 << QColor(Qt::white);
    QTest::newRow("3 trigger") << 3 << QColor(0xff, 0x6a, 0x00);
    QTest::newRow("4 chart grid") << 4 << QColor(0x4a, 0x50, 0x58);
    QTest::newRow("5 chart labels") << 5 << QColor(0xd0, 0xd4, 0xda);
}

void tst_AppSettings::numberedDefaults()
{
    QFETCH(int, number);
    QFETCH(QColor, expected);
    QCOMPARE(AppSettings::instance()->color(number), expected);
    QCOMPARE(AppSettings::defaultColor(number), expected);
    // Absent keys read as the default and stay absent.
    QVERIFY(!QSettings().contains(AppSettings::colorKey(number)));
}

void tst_AppSettings::unknownNumbers()
{
    AppSettings* settings = AppSettings::instance();
    QVERIFY(!settings->color(-1).isValid());
    QVERIFY(!settings->color(AppSettings::ColorCount).isValid());
    QVERIFY(!settings->color(INT_MAX).isValid());
    QVERIFY(!AppSettings::defaultColor(INT_MIN).isValid());
    QCOMPARE(int(AppSettings::MarkerColor), 2);
    QCOMPARE(int(AppSettings::TriggerColor), 3);
}

void tst_AppSettings::plotColourDefaults()
{
    AppSettings* settings = AppSettings::instance();
    QCOMPARE(AppSettings::backgroundColorKey(), QStringLiteral("Scope/BackgroundColor"));
    QCOMPARE(AppSettings::gridColorKey(), QStringLiteral("Scope/GridColor"));
    QCOMPARE(settings->backgroundColor(), QColor(0x10, 0x14, 0x18));
    QCOMPARE(settings->gridColor(), QColor(0x5a, 0x5f, 0x66));
    QCOMPARE(AppSettings::defaultBackgroundColor(), settings->backgroundColor());
    QCOMPARE(AppSettings::defaultGridColor(), settings->gridColor());
    // A dark screen with a grid that is visible but quieter than the traces.
    QVERIFY(luminance(settings->backgroundColor()) < 0.02);
    QVERIFY(contrast(settings->gridColor(), settings->backgroundColor()) > 2.0);
    QVERIFY(!QSettings().contains(AppSettings::backgroundColorKey()));
}

void tst_AppSettings::paletteSize()
{
    QVERIFY(AppSettings::defaultTraceColorCount() >= 16);
    QCOMPARE(AppSettings::builtInTraceColors().size(), AppSettings::defaultTraceColorCount());
}

void tst_AppSettings::traceColourModulo_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<int>("entry");
    const int count = AppSettings::defaultTraceColorCount();
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("1") << 1 << 1;
    QTest::newRow("count - 1") << count - 1 << count - 1;
    QTest::newRow("count") << count << 0;
    QTest::newRow("count + 5") << count + 5 << 5;
    QTest::newRow("3 count + 2") << 3 * count + 2 << 2;
    QTest::newRow("-1") << -1 << count - 1;
    QTest::newRow("INT_MAX") << INT_MAX << INT_MAX % count;
    QTest::newRow("INT_MIN") << INT_MIN << (INT_MIN % count + count) % count;
}

void tst_AppSettings::traceColourModulo()
{
    QFETCH(int, number);
    QFETCH(int, entry);
    QCOMPARE(AppSettings::instance()->defaultTraceColor(number), AppSettings::builtInTraceColors().at(entry));
}

void tst_AppSettings::paletteDistinct()
{
    const QList<QColor> colors = AppSettings::builtInTraceColors();
    for (int i = 0; i < colors.size(); ++i) {
        QVERIFY(colors.at(i).isValid());
        QCOMPARE(colors.at(i).alpha(), 255);
        for (int j = i + 1; j < colors.size(); ++j) {
            const double d = distance(colors.at(i), colors.at(j));
            QVERIFY2(d > 20.0, qPrintable(QStringLiteral("%1 and %2 are too close (%3)")
                                              .arg(colors.at(i).name(), colors.at(j).name())
                                              .arg(d)));
        }
    }
}

void tst_AppSettings::paletteReadable()
{
    const QColor background = AppSettings::instance()->backgroundColor();
    for (const QColor& color : AppSettings::builtInTraceColors()) {
        QVERIFY2(contrast(color, background) >= 4.5, qPrintable(color.name()));
        // Distinct from the marker and grid lines as well.
        QVERIFY(distance(color, AppSettings::instance()->gridColor()) > 20.0);
        QVERIFY(distance(color, AppSettings::instance()->color(AppSettings::MarkerColor)) > 10.0);
    }
}

void tst_AppSettings::setColorPersists()
{
    AppSettings* settings = AppSettings::instance();
    QSignalSpy colorSpy(settings, &AppSettings::colorChanged);
    QSignalSpy changedSpy(settings, &AppSettings::changed);
    settings->setColor(AppSettings::MarkerColor, QColor(Qt::green));
    QCOMPARE(settings->color(2), QColor(Qt::green));
    QCOMPARE(colorSpy.count(), 1);
    QCOMPARE(colorSpy.at(0).at(0).toInt(), 2);
    QCOMPARE(colorSpy.at(0).at(1).value<QColor>(), QColor(Qt::green));
    QCOMPARE(changedSpy.count(), 1);

    // Written at once, as a colour.
    const QVariant stored = QSettings().value(AppSettings::colorKey(2));
    QCOMPARE(stored.metaType(), QMetaType::fromType<QColor>());
    QCOMPARE(stored.value<QColor>(), QColor(Qt::green));
    QSettings fromFile(settings->settingsFileName(), QSettings::IniFormat);
    QCOMPARE(fromFile.value(AppSettings::colorKey(2)).value<QColor>(), QColor(Qt::green));

    // Only this number changed.
    QCOMPARE(settings->color(3), AppSettings::defaultColor(3));
}

void tst_AppSettings::setColorUnchangedIsSilent()
{
    AppSettings* settings = AppSettings::instance();
    settings->setColor(3, QColor(Qt::blue));
    QSignalSpy spy(settings, &AppSettings::changed);
    settings->setColor(3, QColor(Qt::blue));
    QCOMPARE(spy.count(), 0);
    // Writing the default over an absent key changes nothing visible.
    settings->setColor(4, AppSettings::defaultColor(4));
    QCOMPARE(spy.count(), 0);
    QVERIFY(QSettings().contains(AppSettings::colorKey(4)));
}

void tst_AppSettings::setColorIgnoresBadInput()
{
    AppSettings* settings = AppSettings::instance();
    QSignalSpy spy(settings, &AppSettings::changed);
    settings->setColor(-1, QColor(Qt::red));
    settings->setColor(AppSettings::ColorCount, QColor(Qt::red));
    settings->setColor(2, QColor());
    settings->setBackgroundColor(QColor());
    settings->setGridColor(QColor());
    settings->setDefaultTraceColor(-1, QColor(Qt::red));
    settings->setDefaultTraceColor(AppSettings::defaultTraceColorCount(), QColor(Qt::red));
    QCOMPARE(spy.count(), 0);
    QVERIFY(QSettings().allKeys().isEmpty());
}

void tst_AppSettings::plotColoursPersist()
{
    AppSettings* settings = AppSettings::instance();
    QSignalSpy backgroundSpy(settings, &AppSettings::backgroundColorChanged);
    QSignalSpy gridSpy(settings, &AppSettings::gridColorChanged);
    settings->setBackgroundColor(QColor(1, 2, 3));
    settings->setGridColor(QColor(100, 110, 120));
    QCOMPARE(backgroundSpy.count(), 1);
    QCOMPARE(gridSpy.count(), 1);
    QCOMPARE(backgroundSpy.at(0).at(0).value<QColor>(), QColor(1, 2, 3));
    const QSettings stored;
    QCOMPARE(stored.value(QStringLiteral("Scope/BackgroundColor")).value<QColor>(), QColor(1, 2, 3));
    QCOMPARE(stored.value(QStringLiteral("Scope/GridColor")).value<QColor>(), QColor(100, 110, 120));
    QCOMPARE(settings->backgroundColor(), QColor(1, 2, 3));
    QCOMPARE(settings->gridColor(), QColor(100, 110, 120));
}

void tst_AppSettings::traceColourOverride()
{
    AppSettings* settings = AppSettings::instance();
    const int count = AppSettings::defaultTraceColorCount();
    QSignalSpy spy(settings, &AppSettings::defaultTraceColorChanged);
    settings->setDefaultTraceColor(3, QColor(9, 9, 9));
    QCOMPARE(spy.count(), 1);
    QCOMPARE(settings->defaultTraceColor(3), QColor(9, 9, 9));
    QCOMPARE(settings->defaultTraceColor(3 + count), QColor(9, 9, 9));
    QCOMPARE(settings->defaultTraceColor(4), AppSettings::builtInTraceColors().at(4));
    QCOMPARE(QSettings().value(AppSettings::traceColorKey(3)).value<QColor>(), QColor(9, 9, 9));
}

void tst_AppSettings::externalChangeIsNoticed()
{
    // A plot widget or another program writes the settings file.
    AppSettings* settings = AppSettings::instance();
    settings->seedDefaults();
    QSignalSpy spy(settings, &AppSettings::backgroundColorChanged);
    for (int round = 1; round <= 3; ++round) {
        const QColor color(round * 10, 0, 0);
        {
            QSettings other;
            other.setValue(AppSettings::backgroundColorKey(), color);
            other.sync();
        }
        QTRY_COMPARE(settings->backgroundColor(), color);
        QTRY_COMPARE(spy.count(), round);
        QCOMPARE(spy.last().at(0).value<QColor>(), color);
    }
}

void tst_AppSettings::handWrittenValues_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QColor>("expected");
    QTest::newRow("colour name") << QVariant(QStringLiteral("#123456")) << QColor(0x12, 0x34, 0x56);
    QTest::newRow("named colour") << QVariant(QStringLiteral("red")) << QColor(Qt::red);
    QTest::newRow("nonsense") << QVariant(QStringLiteral("no colour")) << AppSettings::defaultColor(2);
    QTest::newRow("number") << QVariant(42) << AppSettings::defaultColor(2);
    QTest::newRow("empty") << QVariant(QString()) << AppSettings::defaultColor(2);
}

void tst_AppSettings::handWrittenValues()
{
    QFETCH(QVariant, value);
    QFETCH(QColor, expected);
    {
        QSettings settings;
        settings.setValue(AppSettings::colorKey(2), value);
        settings.sync();
    }
    AppSettings::instance()->reload();
    QCOMPARE(AppSettings::instance()->color(2), expected);
}

void tst_AppSettings::seedDefaultsKeepsPresentKeys()
{
    AppSettings* settings = AppSettings::instance();
    {
        QSettings stored;
        stored.setValue(AppSettings::gridColorKey(), QColor(Qt::cyan));
        stored.sync();
    }
    settings->reload();
    settings->seedDefaults();
    const QSettings stored;
    QCOMPARE(stored.value(AppSettings::gridColorKey()).value<QColor>(), QColor(Qt::cyan));
    QCOMPARE(stored.value(AppSettings::backgroundColorKey()).value<QColor>(), AppSettings::defaultBackgroundColor());
    for (int i = 0; i < AppSettings::ColorCount; ++i)
        QCOMPARE(stored.value(AppSettings::colorKey(i)).value<QColor>(), AppSettings::defaultColor(i));
    QCOMPARE(settings->gridColor(), QColor(Qt::cyan));
}

void tst_AppSettings::restoreDefaults()
{
    AppSettings* settings = AppSettings::instance();
    settings->setColor(2, QColor(Qt::red));
    settings->setBackgroundColor(QColor(Qt::gray));
    settings->setGridColor(QColor(Qt::yellow));
    settings->setDefaultTraceColor(0, QColor(Qt::black));
    QSignalSpy colorSpy(settings, &AppSettings::colorChanged);
    QSignalSpy traceSpy(settings, &AppSettings::defaultTraceColorChanged);
    settings->restoreDefaults();
    QCOMPARE(settings->color(2), AppSettings::defaultColor(2));
    QCOMPARE(settings->backgroundColor(), AppSettings::defaultBackgroundColor());
    QCOMPARE(settings->gridColor(), AppSettings::defaultGridColor());
    QCOMPARE(settings->defaultTraceColor(0), AppSettings::builtInTraceColors().at(0));
    QCOMPARE(colorSpy.count(), 1);
    QCOMPARE(traceSpy.count(), 1);
    const QSettings stored;
    QCOMPARE(stored.value(AppSettings::backgroundColorKey()).value<QColor>(), AppSettings::defaultBackgroundColor());
    QVERIFY(!stored.contains(AppSettings::traceColorKey(0)));
}

QTEST_MAIN(tst_AppSettings)
#include "tst_appsettings.moc"
