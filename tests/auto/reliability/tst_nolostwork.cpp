// SPDX-License-Identifier: GPL-3.0-or-later
// No lost work: a failed export leaves the previous file as it was and says
// so by its result; an archive that is loaded and saved without changes comes
// back byte for byte, and a view change touches only the view's keys.
#include "iniparser.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopestripeswidget.h"
#include "scopetrace.h"
#include "zoombar.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QSet>
#include <QtCore/QStandardPaths>
#include <QtCore/QTemporaryDir>
#include <QtGui/QColor>
#include <QtTest/QTest>

#include <sys/resource.h>
#include <csignal>
#include <unistd.h>

#include <memory>
#include <utility>

namespace {

// Caps the size of files this process writes, as a full disk would; writes
// beyond it fail with EFBIG instead of raising SIGXFSZ.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        m_previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        m_active = getrlimit(RLIMIT_FSIZE, &m_previous) == 0;
        rlimit limit = m_previous;
        limit.rlim_cur = bytes;
        m_active = m_active && setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit()
    {
        if (m_active)
            setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_previousHandler);
    }
    bool isActive() const { return m_active; }

private:
    rlimit m_previous {};
    bool m_active = false;
    void (*m_previousHandler)(int) = nullptr;
};

QByteArray readFile(const QString& fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

bool writeFile(const QString& fileName, const QByteArray& bytes)
{
    QFile file(fileName);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

// Every key of a document as "section/key" → value.
QMap<QByteArray, QByteArray> keysOf(const QByteArray& text)
{
    KlIniParser::IniParser parser;
    parser.setIniText(text);
    QMap<QByteArray, QByteArray> keys;
    const QList<QByteArray> sections = parser.sectionNames();
    for (const QByteArray& name : sections) {
        const KlIniParser::IniSection* section = parser.section(name);
        for (qsizetype i = 0; i < section->count(); ++i)
            keys.insert(name + '/' + section->keyAt(i).toByteArray(), section->valueAt(i).toByteArray());
    }
    return keys;
}

// The keys a change of the view may touch: the scene, the zoom bar's slider
// and the presentation keys of the channels.
bool isViewKey(const QByteArray& key)
{
    static const QSet<QByteArray> channelViewKeys = {
        "ViewVerticalOffset", "ViewScalingFactor", "ViewOff", "ViewGround", "ViewInverted",
        "Color", "BinaryView", "BinaryViewMask", "BinaryScalingFactorBackup"};
    if (key.startsWith("ScopeScene/"))
        return true;
    if (key == "ScopeShot/ViewSliderLeft" || key == "ScopeShot/ViewSliderRight")
        return true;
    if (key.startsWith("ScopeChannel_"))
        return channelViewKeys.contains(key.mid(key.indexOf('/') + 1));
    return false;
}

// What the view does with a shown archive: build the shot and its stripe,
// then write every piece of view state back.
struct Shown {
    ZoomBar zoomBar;
    ScopeScene scene;
    ScopeStripesWidget stripes;
    QSharedPointer<ScopeShot> shot;

    explicit Shown(ScopeShotArchive* archive)
    {
        scene.setZoomBar(&zoomBar);
        stripes.setScene(&scene);
        stripes.setZoomBar(&zoomBar);
        shot.reset(new ScopeShot);
        shot->setArchive(archive);
        if (shot->load())
            scene.addShot(shot);
        scene.readSection(archive->sceneSection(), archive->shotSection());
        stripes.setStripeLayout(archive->sceneSection(), {shot.data()});
    }

    void save(ScopeShotArchive* archive)
    {
        shot->saveTraceViews();
        KlIniParser::IniSection* sceneSection = archive->iniParser()->findOrCreateSection("ScopeScene");
        scene.writeSection(sceneSection, archive->shotSection());
        stripes.writeStripeLayout(sceneSection, {shot.data()});
    }
};

} // namespace

class tst_NoLostWork : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void failedCsvExportKeepsPreviousFile_data();
    void failedCsvExportKeepsPreviousFile();
    void csvExportReplacesOnlyWhenComplete();
    void unchangedArchiveSavesIdentically();
    void viewChangeTouchesOnlyViewKeys_data();
    void viewChangeTouchesOnlyViewKeys();

private:
    QByteArray m_readOut;
    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_NoLostWork::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    m_readOut = readFile(QFINDTESTDATA("data/sample.ovxreadout"));
    QVERIFY(m_readOut.contains("[Data]"));
}

void tst_NoLostWork::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_NoLostWork::failedCsvExportKeepsPreviousFile_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("disk full") << QStringLiteral("full");
    // Below the file's own buffer: the write fails only when it is flushed.
    QTest::newRow("disk full, small export") << QStringLiteral("full-small");
    QTest::newRow("read-only folder") << QStringLiteral("readonly");
    QTest::newRow("folder is a file") << QStringLiteral("notdir");
}

void tst_NoLostWork::failedCsvExportKeepsPreviousFile()
{
    QFETCH(QString, how);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    const QByteArray smallReadOut("[Data]\r\nChannelCount=1\r\nFrameCount=3\r\nTriggerIndex=0\r\n"
                                  "Data_0=0;1\r\nData_1=1;2\r\nData_2=2;3\r\n\r\n[ScopeShot]\r\nTimeBase=1\r\n\r\n"
                                  "[ScopeChannel_0]\r\nSourceType=1\r\nName=Kanal\r\n");
    QVERIFY(archive->createFromReadOut(how == QLatin1String("full-small") ? smallReadOut : m_readOut));

    QString target = m_dir->filePath(QStringLiteral("aufnahme.csv"));
    const QByteArray previous("Die vorige Fassung\n");
    QVERIFY(writeFile(target, previous));

    std::unique_ptr<FileSizeLimit> limit;
    if (how.startsWith(QLatin1String("full"))) {
        limit = std::make_unique<FileSizeLimit>(16);
        QVERIFY(limit->isActive());
    } else if (how == QLatin1String("readonly")) {
        QVERIFY(QFile::setPermissions(m_dir->path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner));
        // Root writes into read-only folders; a full disk stops it as well.
        if (geteuid() == 0) {
            limit = std::make_unique<FileSizeLimit>(16);
            QVERIFY(limit->isActive());
        }
    } else {
        target = m_dir->filePath(QStringLiteral("aufnahme.csv/neu.csv"));
    }

    const bool written = archive->exportCsv(target);
    limit.reset();
    QFile::setPermissions(m_dir->path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);

    QVERIFY(!written);
    QCOMPARE(readFile(m_dir->filePath(QStringLiteral("aufnahme.csv"))), previous);
    // No half-written temporary file is left beside it.
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files | QDir::Hidden), QStringList({QStringLiteral("aufnahme.csv")}));
}

void tst_NoLostWork::csvExportReplacesOnlyWhenComplete()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(m_readOut));
    const QString target = m_dir->filePath(QStringLiteral("aufnahme.csv"));
    QVERIFY(writeFile(target, "alt\n"));
    QVERIFY(archive->exportCsv(target));
    const QByteArray exported = readFile(target);
    QVERIFY(exported.size() > 16);
    QVERIFY(exported != "alt\n");
    // With room for only part of it, the complete export stays.
    {
        FileSizeLimit limit(rlim_t(exported.size() / 2));
        QVERIFY(limit.isActive());
        QVERIFY(!archive->exportCsv(target));
    }
    QCOMPARE(readFile(target), exported);
}

void tst_NoLostWork::unchangedArchiveSavesIdentically()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(m_readOut));
    const QByteArray stored = archive->toByteArray();

    // Loading and saving alone.
    std::unique_ptr<ScopeShotArchive> loaded(ScopeShotArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(stored));
    QCOMPARE(loaded->toByteArray(), stored);

    // Shown in the view and its state written back, without any change:
    // the first time the view may add its keys, after that nothing moves.
    {
        Shown shown(loaded.get());
        shown.save(loaded.get());
    }
    const QByteArray viewed = loaded->toByteArray();
    const QMap<QByteArray, QByteArray> before = keysOf(stored);
    const QMap<QByteArray, QByteArray> after = keysOf(viewed);
    for (auto it = before.cbegin(); it != before.cend(); ++it) {
        if (!isViewKey(it.key()))
            QCOMPARE(after.value(it.key()), it.value());
    }
    std::unique_ptr<ScopeShotArchive> again(ScopeShotArchive::create(nullptr));
    QVERIFY(again->fromByteArray(viewed));
    {
        Shown shown(again.get());
        shown.save(again.get());
    }
    QCOMPARE(again->toByteArray(), viewed);
}

void tst_NoLostWork::viewChangeTouchesOnlyViewKeys_data()
{
    QTest::addColumn<QString>("change");
    QTest::newRow("offset") << QStringLiteral("offset");
    QTest::newRow("scaling") << QStringLiteral("scaling");
    QTest::newRow("colour") << QStringLiteral("colour");
    QTest::newRow("off") << QStringLiteral("off");
    QTest::newRow("inverted") << QStringLiteral("inverted");
    QTest::newRow("binary view") << QStringLiteral("binary");
    QTest::newRow("zoom") << QStringLiteral("zoom");
}

void tst_NoLostWork::viewChangeTouchesOnlyViewKeys()
{
    QFETCH(QString, change);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(m_readOut));
    {
        Shown shown(archive.get());
        shown.save(archive.get());
    }
    const QByteArray before = archive->toByteArray();

    {
        Shown shown(archive.get());
        ScopeTrace* trace = shown.shot->trace(0);
        QVERIFY(trace);
        if (change == QLatin1String("offset"))
            trace->setVerticalOffset(trace->verticalOffset() + 1.5);
        else if (change == QLatin1String("scaling"))
            trace->setScalingFactor(trace->scalingFactor() * 2.0);
        else if (change == QLatin1String("colour"))
            trace->setColor(QColor(1, 2, 3));
        else if (change == QLatin1String("off"))
            trace->setOff(true, false);
        else if (change == QLatin1String("inverted"))
            trace->setInverted(true, false);
        else if (change == QLatin1String("binary"))
            trace->setBinaryView(true);
        else
            shown.zoomBar.setSlider(shown.zoomBar.minimum(), shown.zoomBar.minimum() + (shown.zoomBar.maximum() - shown.zoomBar.minimum()) / 2);
        shown.save(archive.get());
    }
    const QByteArray after = archive->toByteArray();
    QVERIFY(after != before);

    const QMap<QByteArray, QByteArray> old = keysOf(before);
    const QMap<QByteArray, QByteArray> now = keysOf(after);
    QSet<QByteArray> keys(old.keyBegin(), old.keyEnd());
    keys.unite(QSet<QByteArray>(now.keyBegin(), now.keyEnd()));
    for (const QByteArray& key : std::as_const(keys)) {
        const bool same = old.contains(key) == now.contains(key) && old.value(key) == now.value(key);
        if (!same)
            QVERIFY2(isViewKey(key), key.constData());
    }
    // The document keeps its section order.
    KlIniParser::IniParser oldParser;
    oldParser.setIniText(before);
    KlIniParser::IniParser newParser;
    newParser.setIniText(after);
    QCOMPARE(newParser.sectionNames(), oldParser.sectionNames());
}

QTEST_MAIN(tst_NoLostWork)
#include "tst_nolostwork.moc"
