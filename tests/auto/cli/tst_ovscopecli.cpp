// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencytrace.h"
#include "iniparser.h"
#include "scopearchivekeys.h"
#include "scopecompositionarchive.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracecalculator.h"
#include "scopetracecalculatorwidget.h"
#include "traceinformationimplemention.h"

#include <QtCore/QDir>
#include <QtCore/QDirIterator>
#include <QtCore/QFile>
#include <QtCore/QProcess>
#include <QtCore/QSharedPointer>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtGui/QImage>
#include <QtGui/QTextDocument>
#include <QtTest/QTest>

#include <charconv>
#include <cmath>
#include <memory>

namespace {

struct Result
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};

const QStringList AllCommands = {
    QStringLiteral("info"), QStringLiteral("create-from-readout"), QStringLiteral("export-csv"),
    QStringLiteral("measure"), QStringLiteral("spectrum"), QStringLiteral("render"),
    QStringLiteral("recipe"), QStringLiteral("sample")};

const QStringList TableLabels = {
    QStringLiteral("Intervall"), QStringLiteral("Wert in A"), QStringLiteral("Wert in B"),
    QStringLiteral("Wertdifferenz Marker A/B"), QStringLiteral("Steigung"), QStringLiteral("Mittelwert"),
    QStringLiteral("Integral"), QStringLiteral("Minimalwert"), QStringLiteral("Maximalwert"),
    QStringLiteral("Wertdifferenz min/max"), QStringLiteral("Effektivwert"),
    QStringLiteral("Standardabweichung")};

QByteArray readAll(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool writeAll(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

std::unique_ptr<ScopeShotArchive> loadShot(const QString& path)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->fromByteArray(readAll(path)))
        return nullptr;
    return archive;
}

double exactNumber(const QByteArray& text)
{
    double value = std::nan("");
    const auto result = std::from_chars(text.constData(), text.constData() + text.size(), value);
    return result.ptr == text.constData() + text.size() ? value : std::nan("");
}

} // namespace

class tst_OvScopeCli : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void help();
    void commandHelp_data();
    void commandHelp();
    void badUsage_data();
    void badUsage();
    void failures_data();
    void failures();

    void sampleFiles();
    void sampleIsDeterministic();
    void sampleBig();
    void sampleKeepsExisting();

    void infoMatchesArchive_data();
    void infoMatchesArchive();
    void infoComposition();

    void createFromReadOut();
    void createFromReadOutRefusesArchive();

    void exportCsvMatchesLibrary();
    void exportCsvReplacesWholeFile();

    void measureMatchesCalculator_data();
    void measureMatchesCalculator();
    void measureLabels();
    void measureOutsideRecording();
    void measureSelectsTraces();
    void negativeMarkerValue();

    void spectrumMatchesFrequencyTrace_data();
    void spectrumMatchesFrequencyTrace();
    void spectrumToFile();
    void spectrumShowsHarmonics();

    void machineReadableIgnoresLocale_data();
    void machineReadableIgnoresLocale();

    void recipeExportMatchesLibrary();
    void recipeApply();
    void recipeApplyChannelsOnly();
    void recipeApplyWithoutMatchKeepsFile();

    void render_data();
    void render();
    void renderFrequencyTab();
    void renderLeavesSettingsAlone();
    void renderCompositionWithoutShots();

private:
    Result run(const QStringList& arguments, const QProcessEnvironment& environment = QProcessEnvironment()) const;
    QString samplePath(const QString& name) const { return m_samples.filePath(name); }
    QString scratchPath(const QString& name) const { return m_scratch.filePath(name); }
    static QByteArray expectedMeasure(ScopeTrace* trace, qint64 a, qint64 b);

    QTemporaryDir m_samples;
    QTemporaryDir m_scratch;
};

Result tst_OvScopeCli::run(const QStringList& arguments, const QProcessEnvironment& environment) const
{
    QProcess process;
    if (!environment.isEmpty())
        process.setProcessEnvironment(environment);
    process.start(QStringLiteral(OVSCOPE_CLI_BINARY), arguments);
    Result result;
    if (!process.waitForStarted(30000) || !process.waitForFinished(300000)) {
        process.kill();
        process.waitForFinished();
        return result;
    }
    result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    result.out = process.readAllStandardOutput();
    result.err = process.readAllStandardError();
    return result;
}

void tst_OvScopeCli::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QVERIFY(m_samples.isValid());
    QVERIFY(m_scratch.isValid());
    const Result result = run({QStringLiteral("sample"), QStringLiteral("-o"), m_samples.path()});
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.err.isEmpty(), result.err.constData());
}

void tst_OvScopeCli::help()
{
    for (const QString& option : {QStringLiteral("--help"), QStringLiteral("-h"), QStringLiteral("help")}) {
        const Result result = run({option});
        QCOMPARE(result.exitCode, 0);
        QVERIFY(result.err.isEmpty());
        for (const QString& command : AllCommands)
            QVERIFY2(result.out.contains(command.toLatin1()), qPrintable(command));
    }
    const Result version = run({QStringLiteral("--version")});
    QCOMPARE(version.exitCode, 0);
    QVERIFY(version.out.startsWith("ovscope"));
}

void tst_OvScopeCli::commandHelp_data()
{
    QTest::addColumn<QStringList>("arguments");
    for (const QString& command : AllCommands)
        QTest::newRow(qPrintable(command)) << QStringList{command, QStringLiteral("--help")};
    QTest::newRow("recipe export") << QStringList{QStringLiteral("recipe"), QStringLiteral("export"), QStringLiteral("--help")};
    QTest::newRow("recipe apply") << QStringList{QStringLiteral("recipe"), QStringLiteral("apply"), QStringLiteral("--help")};
    QTest::newRow("help measure") << QStringList{QStringLiteral("help"), QStringLiteral("measure")};
}

void tst_OvScopeCli::commandHelp()
{
    QFETCH(QStringList, arguments);
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.err.isEmpty());
    QVERIFY2(result.out.contains("Usage: ovscope"), result.out.constData());
}

void tst_OvScopeCli::badUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    const QString shot = QStringLiteral("antrieb-sprung.ovxshot");
    QTest::newRow("no command") << QStringList{};
    QTest::newRow("unknown command") << QStringList{QStringLiteral("frobnicate")};
    QTest::newRow("unknown global option") << QStringList{QStringLiteral("--frobnicate")};
    QTest::newRow("info without file") << QStringList{QStringLiteral("info")};
    QTest::newRow("info with two files") << QStringList{QStringLiteral("info"), shot, shot};
    QTest::newRow("info unknown option") << QStringList{QStringLiteral("info"), shot, QStringLiteral("--colour")};
    QTest::newRow("create without -o") << QStringList{QStringLiteral("create-from-readout"), QStringLiteral("x.ovxreadout")};
    QTest::newRow("export-csv without -o") << QStringList{QStringLiteral("export-csv"), shot};
    QTest::newRow("export-csv -o without value") << QStringList{QStringLiteral("export-csv"), shot, QStringLiteral("-o")};
    QTest::newRow("measure --a not a number") << QStringList{QStringLiteral("measure"), shot, QStringLiteral("--a"), QStringLiteral("abc")};
    QTest::newRow("measure --b fraction") << QStringList{QStringLiteral("measure"), shot, QStringLiteral("--b"), QStringLiteral("1.5")};
    QTest::newRow("measure --trace text") << QStringList{QStringLiteral("measure"), shot, QStringLiteral("--trace"), QStringLiteral("x")};
    QTest::newRow("measure --trace negative") << QStringList{QStringLiteral("measure"), shot, QStringLiteral("--trace"), QStringLiteral("-1")};
    QTest::newRow("spectrum bad window") << QStringList{QStringLiteral("spectrum"), shot, QStringLiteral("--window"), QStringLiteral("blackman")};
    QTest::newRow("render without -o") << QStringList{QStringLiteral("render"), shot};
    QTest::newRow("render bad size") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), QStringLiteral("x.png"), QStringLiteral("--size"), QStringLiteral("10x10")};
    QTest::newRow("render size text") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), QStringLiteral("x.png"), QStringLiteral("--size"), QStringLiteral("big")};
    QTest::newRow("render bad trace") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), QStringLiteral("x.png"), QStringLiteral("--trace"), QStringLiteral("first")};
    QTest::newRow("render bad tab") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), QStringLiteral("x.png"), QStringLiteral("--tab"), QStringLiteral("phase")};
    QTest::newRow("recipe without action") << QStringList{QStringLiteral("recipe")};
    QTest::newRow("recipe unknown action") << QStringList{QStringLiteral("recipe"), QStringLiteral("merge")};
    QTest::newRow("recipe export without -o") << QStringList{QStringLiteral("recipe"), QStringLiteral("export"), shot};
    QTest::newRow("recipe apply one file") << QStringList{QStringLiteral("recipe"), QStringLiteral("apply"), shot};
    QTest::newRow("sample without -o") << QStringList{QStringLiteral("sample")};
    QTest::newRow("sample one frame") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--frames"), QStringLiteral("1")};
    QTest::newRow("sample too many frames") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--frames"), QStringLiteral("999999999999")};
    QTest::newRow("sample frames text") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--frames"), QStringLiteral("many")};
    QTest::newRow("sample no channels") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--channels"), QStringLiteral("0")};
    QTest::newRow("sample too many channels") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--channels"), QStringLiteral("65")};
    QTest::newRow("sample too many values") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), QStringLiteral("x"), QStringLiteral("--frames"), QStringLiteral("20000000"), QStringLiteral("--channels"), QStringLiteral("64")};
}

void tst_OvScopeCli::badUsage()
{
    QFETCH(QStringList, arguments);
    // Relative file names resolve in the samples folder.
    QProcess process;
    process.setWorkingDirectory(m_samples.path());
    process.start(QStringLiteral(OVSCOPE_CLI_BINARY), arguments);
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 2);
    QVERIFY(process.readAllStandardOutput().isEmpty());
    const QByteArray err = process.readAllStandardError();
    QVERIFY2(err.startsWith("ovscope: "), err.constData());
    // Nothing was written by a refused command.
    QVERIFY(!QFile::exists(QDir(m_samples.path()).filePath(QStringLiteral("x"))));
    QVERIFY(!QFile::exists(QDir(m_samples.path()).filePath(QStringLiteral("x.png"))));
}

void tst_OvScopeCli::failures_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("message");

    const QString garbage = scratchPath(QStringLiteral("garbage.ovxshot"));
    QVERIFY(writeAll(garbage, QByteArrayLiteral("\x01\x02 this is not an archive\n[Data]\nX=1\n")));
    const QString empty = scratchPath(QStringLiteral("empty.ovxshot"));
    QVERIFY(writeAll(empty, QByteArray()));
    const QString missing = scratchPath(QStringLiteral("missing.ovxshot"));
    const QString shot = samplePath(QStringLiteral("antrieb-sprung.ovxshot"));
    const QString composition = samplePath(QStringLiteral("sprungvergleich.ovxcomp"));
    const QString nowhere = scratchPath(QStringLiteral("no/such/folder/out.csv"));

    QTest::newRow("info missing") << QStringList{QStringLiteral("info"), missing} << QByteArray("no such file");
    QTest::newRow("info garbage") << QStringList{QStringLiteral("info"), garbage} << QByteArray("not an archive");
    QTest::newRow("info empty") << QStringList{QStringLiteral("info"), empty} << QByteArray("not an archive");
    QTest::newRow("info folder") << QStringList{QStringLiteral("info"), m_samples.path()} << QByteArray("is a directory");
    QTest::newRow("create from archive") << QStringList{QStringLiteral("create-from-readout"), shot, QStringLiteral("-o"), scratchPath(QStringLiteral("f1.ovxshot"))} << QByteArray("already an archive");
    QTest::newRow("create from garbage") << QStringList{QStringLiteral("create-from-readout"), empty, QStringLiteral("-o"), scratchPath(QStringLiteral("f2.ovxshot"))} << QByteArray("not a read-out");
    QTest::newRow("create from missing") << QStringList{QStringLiteral("create-from-readout"), missing, QStringLiteral("-o"), scratchPath(QStringLiteral("f3.ovxshot"))} << QByteArray("no such file");
    QTest::newRow("export-csv missing") << QStringList{QStringLiteral("export-csv"), missing, QStringLiteral("-o"), scratchPath(QStringLiteral("f4.csv"))} << QByteArray("no such file");
    QTest::newRow("export-csv composition") << QStringList{QStringLiteral("export-csv"), composition, QStringLiteral("-o"), scratchPath(QStringLiteral("f5.csv"))} << QByteArray("is a composition");
    QTest::newRow("export-csv unwritable") << QStringList{QStringLiteral("export-csv"), shot, QStringLiteral("-o"), nowhere} << QByteArray("cannot write");
    QTest::newRow("measure no such trace") << QStringList{QStringLiteral("measure"), shot, QStringLiteral("--trace"), QStringLiteral("42")} << QByteArray("no such trace: 42");
    QTest::newRow("measure garbage") << QStringList{QStringLiteral("measure"), garbage} << QByteArray("not a shot archive");
    QTest::newRow("measure composition") << QStringList{QStringLiteral("measure"), composition} << QByteArray("is a composition");
    QTest::newRow("spectrum outside") << QStringList{QStringLiteral("spectrum"), shot, QStringLiteral("--a"), QStringLiteral("-1000000000")} << QByteArray("no measured values");
    QTest::newRow("spectrum B before A") << QStringList{QStringLiteral("spectrum"), shot, QStringLiteral("--a"), QStringLiteral("20000000"), QStringLiteral("--b"), QStringLiteral("10000000")} << QByteArray("before marker A");
    QTest::newRow("spectrum missing") << QStringList{QStringLiteral("spectrum"), missing} << QByteArray("no such file");
    QTest::newRow("recipe export missing") << QStringList{QStringLiteral("recipe"), QStringLiteral("export"), missing, QStringLiteral("-o"), scratchPath(QStringLiteral("f6.ovxrecipe"))} << QByteArray("no such file");
    QTest::newRow("recipe apply missing recipe") << QStringList{QStringLiteral("recipe"), QStringLiteral("apply"), missing, shot} << QByteArray("no such file");
    QTest::newRow("recipe apply garbage recipe") << QStringList{QStringLiteral("recipe"), QStringLiteral("apply"), garbage, shot} << QByteArray("matches the recipe");
#ifdef OVSCOPE_CLI_RENDER
    QTest::newRow("render no such trace") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), scratchPath(QStringLiteral("f7.png")), QStringLiteral("--trace"), QStringLiteral("9")} << QByteArray("no such trace: 9");
    QTest::newRow("render missing") << QStringList{QStringLiteral("render"), missing, QStringLiteral("-o"), scratchPath(QStringLiteral("f7.png"))} << QByteArray("no such file");
#else
    QTest::newRow("render without a view") << QStringList{QStringLiteral("render"), shot, QStringLiteral("-o"), scratchPath(QStringLiteral("f7.png"))} << QByteArray("has no scope view");
#endif
    QTest::newRow("sample into a file") << QStringList{QStringLiteral("sample"), QStringLiteral("-o"), shot + QStringLiteral("/sub")} << QByteArray("cannot create");
}

void tst_OvScopeCli::failures()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, message);
    const QByteArray before = readAll(samplePath(QStringLiteral("antrieb-sprung.ovxshot")));
    const Result result = run(arguments);
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.out.isEmpty());
    // One clear line on stderr.
    QVERIFY2(result.err.startsWith("ovscope: "), result.err.constData());
    QCOMPARE(result.err.count('\n'), 1);
    QVERIFY2(result.err.contains(message), result.err.constData());
    QCOMPARE(readAll(samplePath(QStringLiteral("antrieb-sprung.ovxshot"))), before);
    for (const QString& name : {QStringLiteral("f1.ovxshot"), QStringLiteral("f2.ovxshot"), QStringLiteral("f3.ovxshot"),
                                QStringLiteral("f4.csv"), QStringLiteral("f5.csv"), QStringLiteral("f6.ovxrecipe"),
                                QStringLiteral("f7.png")})
        QVERIFY2(!QFile::exists(scratchPath(name)), qPrintable(name));
}

void tst_OvScopeCli::sampleFiles()
{
    const QStringList files = QDir(m_samples.path()).entryList(QDir::Files, QDir::Name);
    QCOMPARE(files, (QStringList{QStringLiteral("antrieb-bremsung.ovxreadout"), QStringLiteral("antrieb-sprung-weich.ovxshot"),
                                 QStringLiteral("antrieb-sprung.ovxshot"), QStringLiteral("phasenstrom.ovxshot"),
                                 QStringLiteral("sprungvergleich.ovxcomp")}));
    for (const QString& name : {QStringLiteral("antrieb-sprung"), QStringLiteral("antrieb-sprung-weich"),
                                QStringLiteral("phasenstrom")}) {
        auto archive = loadShot(samplePath(name + QStringLiteral(".ovxshot")));
        QVERIFY(archive);
        QCOMPARE(archive->name(), name);
        QVERIFY(!archive->isCommentEmpty());
        QVERIFY(archive->timestamp().isValid());
        QCOMPARE(archive->shotSection()->value(ScopeArchiveKeys::TimeBase), QByteArray("62.5"));
        QCOMPARE(archive->dataSection()->value(ScopeArchiveKeys::FrameCount), QByteArray("4000"));
        QCOMPARE(archive->dataSection()->value(ScopeArchiveKeys::TriggerIndex), QByteArray("800"));
    }
    // The read-out is not an archive yet, and the library accepts it.
    const QByteArray readOut = readAll(samplePath(QStringLiteral("antrieb-bremsung.ovxreadout")));
    auto archive = std::unique_ptr<ScopeShotArchive>(ScopeShotArchive::create(nullptr));
    QVERIFY(!archive->fromByteArray(readOut));
    QVERIFY(archive->createFromReadOut(readOut));

    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    QVERIFY(composition->fromByteArray(readAll(samplePath(QStringLiteral("sprungvergleich.ovxcomp")))));
    QCOMPARE(composition->usedShotIdentifiers(),
             (QList<QByteArray>{loadShot(samplePath(QStringLiteral("antrieb-sprung.ovxshot")))->id(),
                                loadShot(samplePath(QStringLiteral("antrieb-sprung-weich.ovxshot")))->id()}));
}

void tst_OvScopeCli::sampleIsDeterministic()
{
    QTemporaryDir again;
    QVERIFY(again.isValid());
    const QString folder = again.filePath(QStringLiteral("new/folder"));
    // Nothing of the machine, the user, the time zone or the locale goes in.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("TZ"), QStringLiteral("America/New_York"));
    environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("de_DE.UTF-8"));
    environment.insert(QStringLiteral("USER"), QStringLiteral("someone-else"));
    const Result result = run({QStringLiteral("sample"), QStringLiteral("-o"), folder}, environment);
    QCOMPARE(result.exitCode, 0);
    const QStringList files = QDir(m_samples.path()).entryList(QDir::Files);
    QCOMPARE(QDir(folder).entryList(QDir::Files), files);
    for (const QString& file : files)
        QVERIFY2(readAll(QDir(folder).filePath(file)) == readAll(samplePath(file)), qPrintable(file));
}

void tst_OvScopeCli::sampleBig()
{
    QTemporaryDir folder;
    const Result result = run({QStringLiteral("sample"), QStringLiteral("-o"), folder.path(), QStringLiteral("--frames"),
                               QStringLiteral("200000"), QStringLiteral("--channels"), QStringLiteral("10")});
    QCOMPARE(result.exitCode, 0);
    auto archive = loadShot(folder.filePath(QStringLiteral("phasenstrom.ovxshot")));
    QVERIFY(archive);
    QCOMPARE(archive->dataSection()->value(ScopeArchiveKeys::FrameCount), QByteArray("200000"));
    QCOMPARE(archive->dataSection()->value(ScopeArchiveKeys::TriggerIndex), QByteArray("40000"));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.channelNumbers().size(), 10);
    QCOMPARE(shot.trace(9)->name(), QStringLiteral("Messkanal 10"));
    QCOMPARE(shot.trace(9)->samples().size(), 200000);

    const Result few = run({QStringLiteral("sample"), QStringLiteral("-o"), folder.filePath(QStringLiteral("few")),
                            QStringLiteral("--channels"), QStringLiteral("2")});
    QCOMPARE(few.exitCode, 0);
    auto two = loadShot(folder.filePath(QStringLiteral("few/antrieb-sprung.ovxshot")));
    QVERIFY(two);
    QCOMPARE(two->dataSection()->value(ScopeArchiveKeys::ChannelCount), QByteArray("2"));
}

void tst_OvScopeCli::sampleKeepsExisting()
{
    QTemporaryDir folder;
    const QString edited = folder.filePath(QStringLiteral("antrieb-sprung.ovxshot"));
    QVERIFY(writeAll(edited, QByteArrayLiteral("edited by the user")));
    const Result result = run({QStringLiteral("sample"), QStringLiteral("-o"), folder.path(), QStringLiteral("--keep-existing")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(readAll(edited), QByteArray("edited by the user"));
    // The others are written and listed; the kept one is not.
    QCOMPARE(result.out.count('\n'), 4);
    QVERIFY(!result.out.contains("antrieb-sprung.ovxshot"));
    QCOMPARE(readAll(folder.filePath(QStringLiteral("sprungvergleich.ovxcomp"))),
             readAll(samplePath(QStringLiteral("sprungvergleich.ovxcomp"))));

    // Without the option every file is written again.
    const Result again = run({QStringLiteral("sample"), QStringLiteral("-o"), folder.path()});
    QCOMPARE(again.exitCode, 0);
    QCOMPARE(again.out.count('\n'), 5);
    QCOMPARE(readAll(edited), readAll(samplePath(QStringLiteral("antrieb-sprung.ovxshot"))));
}

void tst_OvScopeCli::infoMatchesArchive_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("step") << QStringLiteral("antrieb-sprung.ovxshot");
    QTest::newRow("soft step") << QStringLiteral("antrieb-sprung-weich.ovxshot");
    QTest::newRow("phase currents") << QStringLiteral("phasenstrom.ovxshot");
}

void tst_OvScopeCli::infoMatchesArchive()
{
    QFETCH(QString, name);
    const Result result = run({QStringLiteral("info"), samplePath(name)});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.err.isEmpty());

    auto archive = loadShot(samplePath(name));
    QVERIFY(archive);
    QHash<QByteArray, QByteArray> fields;
    QList<QList<QByteArray>> traces;
    for (const QByteArray& line : result.out.split('\n')) {
        if (line.isEmpty())
            continue;
        const QList<QByteArray> parts = line.split('\t');
        if (parts.first() == "trace")
            traces.append(parts);
        else
            fields.insert(parts.first(), parts.mid(1).join('\t'));
    }
    QCOMPARE(fields.value("kind"), QByteArray("shot"));
    QCOMPARE(QString::fromUtf8(fields.value("name")), archive->name());
    QCOMPARE(fields.value("id"), archive->id());
    QCOMPARE(fields.value("read-out"), archive->readOutText());
    QCOMPARE(fields.value("timestamp"), archive->timestamp().toUTC().toString(Qt::ISODateWithMs).toLatin1());
    QCOMPARE(fields.value("host"), archive->hostName());
    QCOMPARE(fields.value("public"), QByteArray(archive->isPublic() ? "yes" : "no"));
    QTextDocument document;
    document.setHtml(archive->comment());
    QString plain = document.toPlainText();
    plain.replace(QChar::ParagraphSeparator, QLatin1Char(' ')).replace(QChar::LineSeparator, QLatin1Char(' '));
    QCOMPARE(QString::fromUtf8(fields.value("comment")), plain.simplified());
    QCOMPARE(fields.value("time base (us)"), QByteArray("62.5"));
    QCOMPARE(fields.value("trigger index"), archive->dataSection()->value(ScopeArchiveKeys::TriggerIndex));
    QCOMPARE(fields.value("frame count"), archive->dataSection()->value(ScopeArchiveKeys::FrameCount));

    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(fields.value("trace count").toInt(), shot.channelNumbers().size());
    QCOMPARE(traces.size(), shot.channelNumbers().size());
    static const QHash<int, QByteArray> kinds = {{0, "number"}, {1, "choice"}, {4, "binary"}};
    static const QHash<int, QByteArray> types = {{7, "FLOAT32"}, {9, "UINT8"}, {10, "UINT16"}};
    for (int i = 0; i < traces.size(); ++i) {
        const QList<QByteArray>& line = traces.at(i);
        QCOMPARE(line.size(), 7);
        const int number = shot.channelNumbers().at(i);
        const ScopeTrace* trace = shot.trace(number);
        QCOMPARE(line.at(1).toInt(), number);
        QCOMPARE(QString::fromUtf8(line.at(2)), trace->name());
        QCOMPARE(QString::fromUtf8(line.at(3)), trace->measure());
        QCOMPARE(line.at(4), types.value(trace->physicalDatatype()));
        QCOMPARE(line.at(5).toUInt(), trace->decimalPlaces());
        QCOMPARE(line.at(6), kinds.value(trace->parameterKind()));
    }
}

void tst_OvScopeCli::infoComposition()
{
    const Result result = run({QStringLiteral("info"), samplePath(QStringLiteral("sprungvergleich.ovxcomp"))});
    QCOMPARE(result.exitCode, 0);
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    QVERIFY(composition->fromByteArray(readAll(samplePath(QStringLiteral("sprungvergleich.ovxcomp")))));
    QVERIFY(result.out.startsWith("kind\tcomposition\n"));
    QVERIFY(result.out.contains("\nname\t" + composition->name().toUtf8() + '\n'));
    QVERIFY(result.out.contains("\nid\t" + composition->id() + '\n'));
    QVERIFY(result.out.contains("\nshot count\t2\n"));
    const QList<QByteArray> ids = composition->usedShotIdentifiers();
    QVERIFY(result.out.contains("shot\t" + ids.at(0) + "\tantrieb-sprung.ovxshot\n"));
    QVERIFY(result.out.contains("shot\t" + ids.at(1) + "\tantrieb-sprung-weich.ovxshot\n"));
}

void tst_OvScopeCli::createFromReadOut()
{
    const QString readOutPath = samplePath(QStringLiteral("antrieb-bremsung.ovxreadout"));
    const QString output = scratchPath(QStringLiteral("bremsung.ovxshot"));
    const Result result = run({QStringLiteral("create-from-readout"), readOutPath, QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.out.isEmpty());
    QVERIFY(result.err.isEmpty());

    // The library's own archive of the same read-out, apart from the moment
    // of creation.
    std::unique_ptr<ScopeShotArchive> expected(ScopeShotArchive::create(nullptr));
    QVERIFY(expected->createFromReadOut(readAll(readOutPath)));
    const auto normalised = [](const QByteArray& text) {
        KlIniParser::IniParser parser;
        parser.setIniText(text);
        KlIniParser::IniSection* archive = parser.section(ScopeArchiveKeys::ArchiveSection);
        for (const char* key : {ScopeArchiveKeys::Name, ScopeArchiveKeys::ReadOut, ScopeArchiveKeys::ReadOutTimestamp})
            archive->setValue(key, "moment");
        return parser.getIniTextWithoutByteOrderMarker();
    };
    const QByteArray written = readAll(output);
    QVERIFY(written.startsWith(";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n"));
    QCOMPARE(normalised(written), normalised(expected->toByteArray()));
    auto archive = loadShot(output);
    QVERIFY(archive);
    QCOMPARE(archive->id(), QByteArray("OVX4-2318-0042_18342_7318795560_7318795610"));
}

void tst_OvScopeCli::createFromReadOutRefusesArchive()
{
    // Saving produced an archive: making one from it again fails.
    const QString output = scratchPath(QStringLiteral("again.ovxshot"));
    const Result result = run({QStringLiteral("create-from-readout"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 1);
    QVERIFY(!QFile::exists(output));
}

void tst_OvScopeCli::exportCsvMatchesLibrary()
{
    const QString shotPath = samplePath(QStringLiteral("antrieb-sprung.ovxshot"));
    const QString output = scratchPath(QStringLiteral("sprung.csv"));
    const Result result = run({QStringLiteral("export-csv"), shotPath, QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 0);

    auto archive = loadShot(shotPath);
    const QString reference = scratchPath(QStringLiteral("reference.csv"));
    QVERIFY(archive->exportCsv(reference));
    QList<QByteArray> written = readAll(output).split('\n');
    QList<QByteArray> expected = readAll(reference).split('\n');
    QCOMPARE(written.size(), expected.size());
    QVERIFY(written.size() > 4000);
    QCOMPARE(written.at(6), "*,path of file,\"" + output.toLatin1() + "\"\r");
    // Date and time of the export and the path differ; everything else is equal.
    for (int line : {4, 5, 6}) {
        written[line].clear();
        expected[line].clear();
    }
    QCOMPARE(written, expected);

    // "-" writes to stdout.
    const Result toStdout = run({QStringLiteral("export-csv"), shotPath, QStringLiteral("-o"), QStringLiteral("-")});
    QCOMPARE(toStdout.exitCode, 0);
    QList<QByteArray> printed = toStdout.out.split('\n');
    QCOMPARE(printed.size(), expected.size());
    for (int line : {4, 5, 6})
        printed[line].clear();
    QCOMPARE(printed, expected);
}

void tst_OvScopeCli::exportCsvReplacesWholeFile()
{
    const QString output = scratchPath(QStringLiteral("replace.csv"));
    QVERIFY(writeAll(output, QByteArray(10 * 1024 * 1024, 'x')));
    const Result result = run({QStringLiteral("export-csv"), samplePath(QStringLiteral("phasenstrom.ovxshot")),
                               QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 0);
    const QByteArray written = readAll(output);
    QVERIFY(written.startsWith("*,\"Velkor\"\r\n"));
    QVERIFY(!written.contains("xxxx"));
    // No scratch file is left beside it.
    QCOMPARE(QDir(m_scratch.path()).entryList({QStringLiteral("replace.csv*")}, QDir::Files),
             QStringList{QStringLiteral("replace.csv")});
}

QByteArray tst_OvScopeCli::expectedMeasure(ScopeTrace* trace, qint64 a, qint64 b)
{
    ScopeTraceCalculator calculator;
    calculator.setScopeTrace(trace);
    calculator.setMarkerTimes(a, b);
    const QString interval = QStringLiteral("%1 ms bis %2 ms (%3 ms)")
                                 .arg(a / 1e6, 0, 'f', 2)
                                 .arg(b / 1e6, 0, 'f', 2)
                                 .arg((b - a) / 1e6, 0, 'f', 2);
    const double average = calculator.average();
    const QStringList values = {
        interval,
        calculator.valueText(calculator.valueAtA(), true),
        calculator.valueText(calculator.valueAtB(), true),
        calculator.valueText(calculator.valueDifference(), true),
        calculator.gradientText(calculator.gradient(), true),
        calculator.valueText(average, true),
        calculator.integralText(calculator.integral(), true),
        calculator.valueText(calculator.minimum(), true),
        calculator.valueText(calculator.maximum(), true),
        calculator.valueText(calculator.peak(), true),
        calculator.valueText(calculator.rmsValue(), true),
        calculator.valueText(calculator.standardDeviation(), true),
    };
    // The table widget words the same values the same way.
    ScopeTraceCalculatorWidget table;
    table.onScopeTraceSelected(trace);
    table.onMarkerTimePositionChanged(0, a);
    table.onMarkerTimePositionChanged(1, b);
    const QStringList keys = ScopeTraceCalculatorWidget::rowKeys();
    QByteArray text = "# " + QByteArray::number(trace->number()) + ' ' + trace->name().toUtf8() + '\n';
    for (int row = 0; row < TableLabels.size(); ++row) {
        if (table.labelText(keys.at(row)) != TableLabels.at(row) || table.valueText(keys.at(row)) != values.at(row))
            return "table and calculator differ in row " + keys.at(row).toUtf8();
        text += TableLabels.at(row).toUtf8() + '\t' + values.at(row).toUtf8() + '\n';
    }
    return text;
}

void tst_OvScopeCli::measureMatchesCalculator_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("markerArguments");
    QTest::addColumn<qint64>("a");
    QTest::addColumn<qint64>("b");
    // Without markers on the command line the archive's positions count.
    QTest::newRow("stored markers") << QStringLiteral("antrieb-sprung.ovxshot") << QStringList{} << qint64(0) << qint64(100000000);
    QTest::newRow("given markers") << QStringLiteral("antrieb-sprung-weich.ovxshot")
                                   << QStringList{QStringLiteral("--a"), QStringLiteral("-12500000"), QStringLiteral("--b"), QStringLiteral("42000000")}
                                   << qint64(-12500000) << qint64(42000000);
    QTest::newRow("only B") << QStringLiteral("phasenstrom.ovxshot") << QStringList{QStringLiteral("--b=20000000")}
                            << qint64(0) << qint64(20000000);
    QTest::newRow("A equals B") << QStringLiteral("antrieb-sprung.ovxshot")
                                << QStringList{QStringLiteral("--a"), QStringLiteral("5000000"), QStringLiteral("--b"), QStringLiteral("5000000")}
                                << qint64(5000000) << qint64(5000000);
    QTest::newRow("B before A") << QStringLiteral("antrieb-sprung.ovxshot")
                                << QStringList{QStringLiteral("--a"), QStringLiteral("30000000"), QStringLiteral("--b"), QStringLiteral("10000000")}
                                << qint64(30000000) << qint64(10000000);
}

void tst_OvScopeCli::measureMatchesCalculator()
{
    QFETCH(QString, name);
    QFETCH(QStringList, markerArguments);
    QFETCH(qint64, a);
    QFETCH(qint64, b);
    const Result result = run(QStringList{QStringLiteral("measure"), samplePath(name)} + markerArguments);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.err.isEmpty());

    auto archive = loadShot(samplePath(name));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QByteArray expected;
    for (int number : shot.channelNumbers())
        expected += expectedMeasure(shot.trace(number), a, b);
    QCOMPARE(result.out, expected);
    if (b < a)
        QVERIFY(result.out.contains("(-"));
}

void tst_OvScopeCli::measureLabels()
{
    const Result result = run({QStringLiteral("measure"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("--trace"), QStringLiteral("3")});
    QCOMPARE(result.exitCode, 0);
    const QList<QByteArray> lines = result.out.split('\n');
    QCOMPARE(lines.size(), 14); // header, twelve rows, the empty rest after the last line end
    QCOMPARE(lines.at(0), QByteArray("# 3 Drehmoment"));
    for (int row = 0; row < TableLabels.size(); ++row)
        QCOMPARE(QString::fromUtf8(lines.at(row + 1).split('\t').value(0)), TableLabels.at(row));
    QCOMPARE(lines.at(1), QByteArray("Intervall\t0.00 ms bis 100.00 ms (100.00 ms)"));
    QVERIFY(lines.at(2).endsWith(" Nm"));
}

void tst_OvScopeCli::measureOutsideRecording()
{
    // Both markers before the first sample: no values at all.
    const Result result = run({QStringLiteral("measure"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("--trace"), QStringLiteral("1"), QStringLiteral("--a"),
                               QStringLiteral("-900000000"), QStringLiteral("--b"), QStringLiteral("-800000000")});
    QCOMPARE(result.exitCode, 0);
    const QList<QByteArray> lines = result.out.split('\n');
    QCOMPARE(lines.at(1), QByteArray("Intervall\t-900.00 ms bis -800.00 ms (100.00 ms)"));
    for (int row : {2, 3, 4, 5, 8, 9, 10, 11, 12})
        QVERIFY2(lines.at(row).endsWith("\t---"), lines.at(row).constData());
}

void tst_OvScopeCli::measureSelectsTraces()
{
    const Result result = run({QStringLiteral("measure"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("--trace"), QStringLiteral("6"), QStringLiteral("--trace"), QStringLiteral("0")});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(result.out.count('#'), 2);
    QVERIFY(result.out.startsWith("# 6 Antriebszustand\n"));
    QVERIFY(result.out.contains("\n# 0 Drehzahlsollwert\n"));
    QVERIFY(result.out.contains("Wert in B\t2:Betrieb\n"));
}

void tst_OvScopeCli::negativeMarkerValue()
{
    // A negative time may follow the option as its own argument.
    const Result separate = run({QStringLiteral("measure"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                                 QStringLiteral("--trace"), QStringLiteral("0"), QStringLiteral("--a"), QStringLiteral("-5000000")});
    const Result joined = run({QStringLiteral("measure"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("--trace"), QStringLiteral("0"), QStringLiteral("--a=-5000000")});
    QCOMPARE(separate.exitCode, 0);
    QCOMPARE(separate.out, joined.out);
    QVERIFY(separate.out.contains("Intervall\t-5.00 ms bis"));
}

void tst_OvScopeCli::spectrumMatchesFrequencyTrace_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<qint64>("a");
    QTest::addColumn<qint64>("b");
    QTest::addColumn<int>("window");
    QTest::newRow("phase currents, stored markers, Hamming") << QStringLiteral("phasenstrom.ovxshot") << QStringList{}
                                                             << qint64(0) << qint64(99937500) << 0;
    QTest::newRow("phase currents, no window") << QStringLiteral("phasenstrom.ovxshot")
                                               << QStringList{QStringLiteral("--window"), QStringLiteral("none")}
                                               << qint64(0) << qint64(99937500) << 1;
    QTest::newRow("step, odd count, off-grid markers") << QStringLiteral("antrieb-sprung.ovxshot")
                                                       << QStringList{QStringLiteral("--a"), QStringLiteral("-20000010"), QStringLiteral("--b"), QStringLiteral("7000033")}
                                                       << qint64(-20000010) << qint64(7000033) << 0;
    QTest::newRow("one sample, no window") << QStringLiteral("antrieb-sprung.ovxshot")
                                           << QStringList{QStringLiteral("--a"), QStringLiteral("0"), QStringLiteral("--b"), QStringLiteral("0"), QStringLiteral("--window"), QStringLiteral("none")}
                                           << qint64(0) << qint64(0) << 1;
}

void tst_OvScopeCli::spectrumMatchesFrequencyTrace()
{
    QFETCH(QString, name);
    QFETCH(QStringList, options);
    QFETCH(qint64, a);
    QFETCH(qint64, b);
    QFETCH(int, window);
    const Result result = run(QStringList{QStringLiteral("spectrum"), samplePath(name)} + options);
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.err.isEmpty());

    auto archive = loadShot(samplePath(name));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QByteArray header = "frequency_hz";
    QList<QVector<double>> expected;
    double resolution = 0.0;
    QList<QSharedPointer<TraceInformation>> informations;
    for (int number : shot.channelNumbers()) {
        header += ',' + QByteArray::number(number) + ' ' + shot.trace(number)->name().toUtf8();
        informations.append(QSharedPointer<TraceInformation>(new TraceInformationImplemention(shot.trace(number))));
    }
    // The interval's sample indices as the frequency panel takes them.
    const qint64 t0 = informations.first()->startTime();
    const double dt = informations.first()->samplingTime();
    const int first = int(double(a - t0) / dt / 100.0);
    const int last = int(double(b - t0) / dt / 100.0);
    for (const auto& information : informations) {
        FrequencyTrace trace(information);
        trace.setInterval(first, last, window);
        expected.append(trace.amplitudes());
        resolution = trace.frequencyResolution();
    }

    QList<QByteArray> lines = result.out.split('\n');
    QVERIFY(lines.last().isEmpty());
    lines.removeLast();
    QCOMPARE(lines.first(), header);
    QCOMPARE(lines.size() - 1, expected.first().size());
    for (int k = 1; k < lines.size(); ++k) {
        const QList<QByteArray> fields = lines.at(k).split(',');
        QCOMPARE(fields.size(), expected.size() + 1);
        QCOMPARE(exactNumber(fields.at(0)), double(k - 1) * resolution);
        for (int column = 0; column < expected.size(); ++column) {
            const double value = expected.at(column).at(k - 1);
            // Exact: the text is the shortest that reads back as the same double.
            QCOMPARE(exactNumber(fields.at(column + 1)), value);
            QVERIFY(fields.at(column + 1).size() <= QByteArray::number(value, 'g', 17).size());
        }
    }
}

void tst_OvScopeCli::spectrumToFile()
{
    const QString output = scratchPath(QStringLiteral("spectrum.csv"));
    const Result toFile = run({QStringLiteral("spectrum"), samplePath(QStringLiteral("phasenstrom.ovxshot")),
                               QStringLiteral("-o"), output});
    QCOMPARE(toFile.exitCode, 0);
    QVERIFY(toFile.out.isEmpty());
    const Result toStdout = run({QStringLiteral("spectrum"), samplePath(QStringLiteral("phasenstrom.ovxshot"))});
    QCOMPARE(readAll(output), toStdout.out);
}

void tst_OvScopeCli::spectrumShowsHarmonics()
{
    // Without a window a sine at an exact bin shows half its amplitude:
    // 12 A fundamental at 50 Hz, 4 % 5th and 2.5 % 7th harmonic.
    const Result result = run({QStringLiteral("spectrum"), samplePath(QStringLiteral("phasenstrom.ovxshot")),
                               QStringLiteral("--window"), QStringLiteral("none")});
    QCOMPARE(result.exitCode, 0);
    QHash<int, double> phaseU;
    for (const QByteArray& line : result.out.split('\n').mid(1)) {
        const QList<QByteArray> fields = line.split(',');
        if (fields.size() == 4)
            phaseU.insert(qRound(exactNumber(fields.at(0))), exactNumber(fields.at(1)));
    }
    QCOMPARE(phaseU.size(), 800);
    QVERIFY(std::abs(phaseU.value(50) - 6.0) < 0.05);
    QVERIFY(std::abs(phaseU.value(250) - 0.24) < 0.01);
    QVERIFY(std::abs(phaseU.value(350) - 0.15) < 0.01);
    QVERIFY(phaseU.value(150) < 0.01);
}

void tst_OvScopeCli::machineReadableIgnoresLocale_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("measure") << QStringList{QStringLiteral("measure"), QStringLiteral("antrieb-sprung.ovxshot")};
    QTest::newRow("spectrum") << QStringList{QStringLiteral("spectrum"), QStringLiteral("phasenstrom.ovxshot")};
    QTest::newRow("info") << QStringList{QStringLiteral("info"), QStringLiteral("phasenstrom.ovxshot")};
}

void tst_OvScopeCli::machineReadableIgnoresLocale()
{
    QFETCH(QStringList, arguments);
    arguments[1] = samplePath(arguments.at(1));
    const Result plain = run(arguments);
    QCOMPARE(plain.exitCode, 0);
    for (const char* variable : {"LC_ALL", "LC_NUMERIC", "LANG"}) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.remove(QStringLiteral("LC_ALL"));
        environment.insert(QString::fromLatin1(variable), QStringLiteral("de_DE.UTF-8"));
        const Result german = run(arguments, environment);
        QCOMPARE(german.exitCode, 0);
        QCOMPARE(german.out, plain.out);
    }
}

void tst_OvScopeCli::recipeExportMatchesLibrary()
{
    const QString shotPath = samplePath(QStringLiteral("antrieb-sprung.ovxshot"));
    const QString output = scratchPath(QStringLiteral("sprung.ovxrecipe"));
    const Result result = run({QStringLiteral("recipe"), QStringLiteral("export"), shotPath, QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(readAll(output), loadShot(shotPath)->viewRecipe());
}

void tst_OvScopeCli::recipeApply()
{
    // A recipe of the stiff step with view settings of its own, applied to
    // the soft step: same channels, so all of them match.
    auto source = loadShot(samplePath(QStringLiteral("antrieb-sprung.ovxshot")));
    source->channelSection(1)->setValue(ScopeArchiveKeys::ViewScalingFactor, "0.004");
    source->channelSection(1)->setValue(ScopeArchiveKeys::Color, "4278255360");
    source->sceneSection()->setValue("MarkerPosition_0B", "50000000");
    const QString recipe = scratchPath(QStringLiteral("apply.ovxrecipe"));
    QVERIFY(writeAll(recipe, source->viewRecipe()));
    const QString target = scratchPath(QStringLiteral("weich.ovxshot"));
    QVERIFY(QFile::copy(samplePath(QStringLiteral("antrieb-sprung-weich.ovxshot")), target));

    const Result result = run({QStringLiteral("recipe"), QStringLiteral("apply"), recipe, target});
    QCOMPARE(result.exitCode, 0);
    QVERIFY(result.err.isEmpty());

    auto expected = loadShot(samplePath(QStringLiteral("antrieb-sprung-weich.ovxshot")));
    QVERIFY(expected->applyViewRecipe(source->viewRecipe(), false));
    QCOMPARE(readAll(target), expected->toByteArray());
    auto applied = loadShot(target);
    QCOMPARE(applied->channelSection(1)->value(ScopeArchiveKeys::ViewScalingFactor), QByteArray("0.004"));
    QCOMPARE(applied->channelSection(1)->value(ScopeArchiveKeys::Color), QByteArray("4278255360"));
    QCOMPARE(applied->sceneSection()->value("MarkerPosition_0B"), QByteArray("50000000"));
}

void tst_OvScopeCli::recipeApplyChannelsOnly()
{
    // The phase currents share only the value shape (FLOAT32, 2 decimals,
    // number) with the current channel of the step: channels-only matches.
    auto source = loadShot(samplePath(QStringLiteral("antrieb-sprung.ovxshot")));
    source->channelSection(2)->setValue(ScopeArchiveKeys::ViewScalingFactor, "0.25");
    source->channelSection(2)->setValue(ScopeArchiveKeys::Color, "4278190335");
    const QString recipe = scratchPath(QStringLiteral("channels.ovxrecipe"));
    QVERIFY(writeAll(recipe, source->viewRecipe()));
    const QString target = scratchPath(QStringLiteral("phasen.ovxshot"));
    QVERIFY(QFile::copy(samplePath(QStringLiteral("phasenstrom.ovxshot")), target));

    const Result full = run({QStringLiteral("recipe"), QStringLiteral("apply"), recipe, target});
    QCOMPARE(full.exitCode, 1);
    QCOMPARE(readAll(target), readAll(samplePath(QStringLiteral("phasenstrom.ovxshot"))));

    const Result result = run({QStringLiteral("recipe"), QStringLiteral("apply"), recipe, target, QStringLiteral("--channels-only")});
    QCOMPARE(result.exitCode, 0);
    auto expected = loadShot(samplePath(QStringLiteral("phasenstrom.ovxshot")));
    QVERIFY(expected->applyViewRecipe(source->viewRecipe(), true));
    QCOMPARE(readAll(target), expected->toByteArray());
    auto applied = loadShot(target);
    QCOMPARE(applied->channelSection(2)->value(ScopeArchiveKeys::ViewScalingFactor), QByteArray("0.25"));
    QVERIFY(!applied->channelSection(2)->contains(ScopeArchiveKeys::Color));
}

void tst_OvScopeCli::recipeApplyWithoutMatchKeepsFile()
{
    const QString recipe = scratchPath(QStringLiteral("nomatch.ovxrecipe"));
    QVERIFY(writeAll(recipe, loadShot(samplePath(QStringLiteral("phasenstrom.ovxshot")))->viewRecipe()));
    const QString target = scratchPath(QStringLiteral("keep.ovxshot"));
    QVERIFY(QFile::copy(samplePath(QStringLiteral("antrieb-sprung.ovxshot")), target));
    const Result result = run({QStringLiteral("recipe"), QStringLiteral("apply"), recipe, target});
    QCOMPARE(result.exitCode, 1);
    QVERIFY(result.err.contains("no channel"));
    QCOMPARE(readAll(target), readAll(samplePath(QStringLiteral("antrieb-sprung.ovxshot"))));
}

void tst_OvScopeCli::render_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QSize>("size");
    QTest::newRow("shot, default size") << QStringLiteral("antrieb-sprung.ovxshot") << QStringList{} << QSize(1400, 1000);
    QTest::newRow("shot, size and markers") << QStringLiteral("phasenstrom.ovxshot")
                                            << QStringList{QStringLiteral("--size"), QStringLiteral("900x700"), QStringLiteral("--a"),
                                                           QStringLiteral("10000000"), QStringLiteral("--b"), QStringLiteral("30000000")}
                                            << QSize(900, 700);
    QTest::newRow("shot, table of trace 4") << QStringLiteral("antrieb-sprung.ovxshot")
                                            << QStringList{QStringLiteral("--trace"), QStringLiteral("4"), QStringLiteral("--size"), QStringLiteral("1000x800")}
                                            << QSize(1000, 800);
    QTest::newRow("composition") << QStringLiteral("sprungvergleich.ovxcomp") << QStringList{QStringLiteral("--size"), QStringLiteral("1200x900")}
                                 << QSize(1200, 900);
}

void tst_OvScopeCli::render()
{
#ifndef OVSCOPE_CLI_RENDER
    QSKIP("This build has no scope view to render");
#endif
    QFETCH(QString, name);
    QFETCH(QStringList, options);
    QFETCH(QSize, size);
    const QString output = scratchPath(name + QStringLiteral(".png"));
    const Result result = run(QStringList{QStringLiteral("render"), samplePath(name), QStringLiteral("-o"), output} + options);
    QCOMPARE(result.exitCode, 0);
    QVERIFY2(result.err.isEmpty(), result.err.constData());
    QImage image(output);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), size);
    // Something was drawn: the picture is not a single colour.
    QSet<QRgb> colours;
    for (int y = 0; y < image.height(); y += 7) {
        for (int x = 0; x < image.width(); x += 7)
            colours.insert(image.pixel(x, y));
    }
    QVERIFY(colours.size() > 10);
}

void tst_OvScopeCli::renderFrequencyTab()
{
#if !defined(OVSCOPE_CLI_RENDER) || !defined(OVSCOPE_CLI_FREQUENCY_PANEL)
    QSKIP("This build has no frequency analysis panel to render");
#endif
    const QString output = scratchPath(QStringLiteral("frequency.png"));
    const Result result = run({QStringLiteral("render"), samplePath(QStringLiteral("phasenstrom.ovxshot")), QStringLiteral("-o"),
                               output, QStringLiteral("--tab"), QStringLiteral("frequency"), QStringLiteral("--size"),
                               QStringLiteral("800x600")});
    if (result.exitCode == 1 && result.err.contains("the view offers no frequency analysis"))
        QSKIP("The scope view does not show the frequency analysis panel yet");
    QCOMPARE(result.exitCode, 0);
    QImage image(output);
    QVERIFY(!image.isNull());
    QCOMPARE(image.size(), QSize(800, 600));

    // A composition offers no frequency analysis.
    const Result composition = run({QStringLiteral("render"), samplePath(QStringLiteral("sprungvergleich.ovxcomp")),
                                    QStringLiteral("-o"), scratchPath(QStringLiteral("cf.png")), QStringLiteral("--tab"),
                                    QStringLiteral("frequency")});
    QCOMPARE(composition.exitCode, 1);
    QVERIFY(!QFile::exists(scratchPath(QStringLiteral("cf.png"))));
}

void tst_OvScopeCli::renderLeavesSettingsAlone()
{
#ifndef OVSCOPE_CLI_RENDER
    QSKIP("This build has no scope view to render");
#endif
    // The view stores its geometry in the application settings; a render
    // must neither read nor change the user's.
    const QString config = QProcessEnvironment::systemEnvironment().value(QStringLiteral("XDG_CONFIG_HOME"));
    QVERIFY(!config.isEmpty());
    const auto settingsTexts = [&config]() {
        QByteArray all;
        QDirIterator files(config, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            all += readAll(files.next());
        return all;
    };
    const QByteArray before = settingsTexts();
    const Result result = run({QStringLiteral("render"), samplePath(QStringLiteral("antrieb-sprung.ovxshot")),
                               QStringLiteral("-o"), scratchPath(QStringLiteral("settings.png"))});
    QCOMPARE(result.exitCode, 0);
    QCOMPARE(settingsTexts(), before);
    QVERIFY(!before.contains("scopeViewGeometry"));
}

void tst_OvScopeCli::renderCompositionWithoutShots()
{
#ifndef OVSCOPE_CLI_RENDER
    QSKIP("This build has no scope view to render");
#endif
    QTemporaryDir alone;
    const QString composition = alone.filePath(QStringLiteral("alone.ovxcomp"));
    QVERIFY(QFile::copy(samplePath(QStringLiteral("sprungvergleich.ovxcomp")), composition));
    const QString output = alone.filePath(QStringLiteral("alone.png"));
    const Result result = run({QStringLiteral("render"), composition, QStringLiteral("-o"), output});
    QCOMPARE(result.exitCode, 1);
    QVERIFY2(result.err.contains("none of the composition's shots"), result.err.constData());
    QVERIFY(!QFile::exists(output));

    // With one of the two shots beside it, the composition renders.
    QVERIFY(QFile::copy(samplePath(QStringLiteral("antrieb-sprung.ovxshot")), alone.filePath(QStringLiteral("a.ovxshot"))));
    const Result one = run({QStringLiteral("render"), composition, QStringLiteral("-o"), output});
    QCOMPARE(one.exitCode, 0);
    QVERIFY(!QImage(output).isNull());
}

QTEST_MAIN(tst_OvScopeCli)
#include "tst_ovscopecli.moc"
