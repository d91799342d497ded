// SPDX-License-Identifier: GPL-3.0-or-later
// Every input a fuzz target ever failed on (data/fuzz/<target>/), and the
// targets' seed corpora, run through the same pipelines as the fuzz targets.
#include "fuzzpipelines.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <iterator>

namespace {

using Pipeline = QByteArray (*)(const QByteArray&);

struct Target {
    const char* name;
    Pipeline pipeline;
};

const Target targets[] = {
    {"fuzz_iniparser", &FuzzPipelines::iniDocument},
    {"fuzz_shotarchive", &FuzzPipelines::shotArchive},
    {"fuzz_archivecodec", &FuzzPipelines::archiveCodec},
    {"fuzz_compositionarchive", &FuzzPipelines::compositionArchive},
};

} // namespace

class tst_FuzzRegressions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void replay_data();
    void replay();
    void compositionIdWithLoneCarriageReturn();
    void compositionWithForeignShotKeys_data();
    void compositionWithForeignShotKeys();
};

void tst_FuzzRegressions::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_FuzzRegressions::replay_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("target");

    const QString regressions = QFINDTESTDATA("data/fuzz");
    QVERIFY(!regressions.isEmpty());
    const QStringList folders = {regressions, QStringLiteral(OVSCOPE_FUZZ_SEEDS)};
    int rows = 0;
    for (const QString& folder : folders) {
        for (int index = 0; index < int(std::size(targets)); ++index) {
            const Target& target = targets[index];
            const QDir dir(folder + QLatin1Char('/') + QLatin1String(target.name));
            const QStringList files = dir.entryList(QDir::Files, QDir::Name);
            for (const QString& file : files) {
                if (file.startsWith(QLatin1Char('.')))
                    continue;
                const QString tag = QLatin1String(target.name) + QLatin1Char('/') + file;
                QTest::newRow(qPrintable(tag)) << dir.filePath(file) << index;
                ++rows;
            }
        }
    }
    QVERIFY(rows > 0);
}

void tst_FuzzRegressions::replay()
{
    QFETCH(QString, fileName);
    QFETCH(int, target);

    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    // The pipelines tolerate the known failures; the tests below check them.
    const QByteArray failure = targets[target].pipeline(file.readAll());
    QVERIFY2(failure.isEmpty(), failure.constData());
}

void tst_FuzzRegressions::compositionIdWithLoneCarriageReturn()
{
    // Found by fuzz_compositionarchive: an ID holding a lone CR (no line end
    // for the parser) was read with the CR but saved with a blank instead.
    QFile file(QFINDTESTDATA("data/fuzz/fuzz_compositionarchive/id-with-lone-cr"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    QVERIFY(composition->fromByteArray(file.readAll()));
    QVERIFY(composition->id().contains('\r'));
    std::unique_ptr<ScopeCompositionArchive> again(ScopeCompositionArchive::create(nullptr));
    QVERIFY(again->fromByteArray(composition->toByteArray()));

    KlIniParser::IniParser parser;
    parser.setIniText("[S]\r\nKey=a\rb\r\n");
    KlIniParser::IniSection* section = parser.section("S");
    QVERIFY(section);
    QCOMPARE(section->value("Key"), QByteArray("a\rb"));
    section->setValue("Other", "a\rb");
    QCOMPARE(section->value("Other"), QByteArray("a\rb"));
    QCOMPARE(again->id(), composition->id());
}

void tst_FuzzRegressions::compositionWithForeignShotKeys_data()
{
    QTest::addColumn<QString>("input");
    // A foreign key beside ShotId_0 and ShotId_1: the list grew or reordered.
    QTest::newRow("doubled") << QStringLiteral("foreign-shot-key-name");
    // Foreign keys after ShotId_0: saving kept them beside the new keys.
    QTest::newRow("overwritten") << QStringLiteral("foreign-shot-keys-overwritten");
}

void tst_FuzzRegressions::compositionWithForeignShotKeys()
{
    // Found by fuzz_compositionarchive: "UsedShotIdentifiers" holds a key
    // that is not "ShotId_" N. Loading takes every key's value; saving added
    // "ShotId_" N keys beside the foreign ones, so the list grew or, where a
    // "ShotId_" N key already stood elsewhere, an ID moved or was lost.
    QFETCH(QString, input);
    QFile file(QFINDTESTDATA(QStringLiteral("data/fuzz/fuzz_compositionarchive/") + input));
    QVERIFY(file.open(QIODevice::ReadOnly));
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    QVERIFY(composition->fromByteArray(file.readAll()));
    const QList<QByteArray> shots = composition->usedShotIdentifiers();
    QVERIFY(shots.contains("SN1_2_3_4"));
    std::unique_ptr<ScopeCompositionArchive> again(ScopeCompositionArchive::create(nullptr));
    QVERIFY(again->fromByteArray(composition->toByteArray()));
    QCOMPARE(again->usedShotIdentifiers(), shots);
}

QTEST_MAIN(tst_FuzzRegressions)
#include "tst_fuzzregressions.moc"
