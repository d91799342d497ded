// SPDX-License-Identifier: GPL-3.0-or-later
#include "ovversion.h"
#include "scopeshotarchive.h"
#include "system.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

class tst_ScopeCsvExport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void matchesExpectedFile();
    void headerDateAndTime();
    void fileNameIsWrittenAsPassed();
    void numberingKeepsGaps();
    void rowTimes_data();
    void rowTimes();
    void samplingTimeText_data();
    void samplingTimeText();
    void defaultTimeBase();
    void noExportedChannel();
    void missingSectionsGiveEmptyFile_data();
    void missingSectionsGiveEmptyFile();
    void unopenableFileFails();
    void replacesOldFileWithoutLeftovers();
    void rowsSortedByFrameNumber();
    void pipeIsWrittenNotReplaced();
    void fieldZeroIsNeverExported();
    void textIsLatin1();
    void largeExport();

private:
    static QList<QByteArray> exportLines(const QByteArray& document, const QString& fileName, bool* result = nullptr);
    static QList<QByteArray> dataRows(const QList<QByteArray>& lines);
    static QByteArray document(const QByteArray& shot, const QByteArray& data, const QByteArray& channels);

    QTemporaryDir m_dir;
};

namespace {

QByteArray readFile(const QString& fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

} // namespace

void tst_ScopeCsvExport::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

QList<QByteArray> tst_ScopeCsvExport::exportLines(const QByteArray& document, const QString& fileName,
                                                  bool* result)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    archive->fromByteArray(document);
    const bool ok = archive->exportCsv(fileName);
    if (result)
        *result = ok;
    QByteArray bytes = readFile(fileName);
    if (bytes.isEmpty())
        return {};
    // Every line ends in CR LF.
    if (!bytes.endsWith("\r\n"))
        return {"missing final CR LF"};
    bytes.chop(2);
    return bytes.split('\n');
}

QList<QByteArray> tst_ScopeCsvExport::dataRows(const QList<QByteArray>& lines)
{
    const qsizetype empty = lines.indexOf(QByteArray("\r"));
    QList<QByteArray> rows;
    for (qsizetype i = empty + 1; i < lines.size(); ++i) {
        QByteArray row = lines.at(i);
        row.chop(row.endsWith('\r') ? 1 : 0);
        rows.append(row);
    }
    return rows;
}

QByteArray tst_ScopeCsvExport::document(const QByteArray& shot, const QByteArray& data,
                                        const QByteArray& channels)
{
    return "[Archive]\nID=1\nName=N\n[ScopeShot]\n" + shot + "\n[Data]\n" + data + "\n" + channels;
}

void tst_ScopeCsvExport::matchesExpectedFile()
{
    QFile input(QFINDTESTDATA("data/export.ini"));
    QVERIFY(input.open(QIODevice::ReadOnly));
    QFile expectedFile(QFINDTESTDATA("data/export_expected.csv"));
    QVERIFY(expectedFile.open(QIODevice::ReadOnly));
    QByteArray expectedText = expectedFile.readAll();

    const QString fileName = m_dir.filePath(QStringLiteral("export.csv"));
    bool ok = false;
    const QList<QByteArray> lines = exportLines(input.readAll(), fileName, &ok);
    QVERIFY(ok);
    QVERIFY(lines.size() > 6);

    // Date and time are taken from the output (checked in headerDateAndTime).
    const QByteArray date = lines.at(4).mid(18, 10);
    const QByteArray time = lines.at(5).mid(18, 8);
    expectedText.replace("@VERSION@", productVersionText().toLatin1())
        .replace("@DATE@", date)
        .replace("@TIME@", time)
        .replace("@PATH@", fileName.toLatin1())
        .replace("@USER@", System::instance()->userName().toLatin1())
        .replace("@HOST@", System::instance()->hostName().toLatin1());
    expectedText.chop(2);
    const QList<QByteArray> expected = expectedText.split('\n');
    QCOMPARE(lines.size(), expected.size());
    for (qsizetype i = 0; i < expected.size(); ++i)
        QCOMPARE(lines.at(i), expected.at(i));
}

void tst_ScopeCsvExport::headerDateAndTime()
{
    const QString fileName = m_dir.filePath(QStringLiteral("date.csv"));
    const QDateTime before = QDateTime::currentDateTime();
    const QList<QByteArray> lines = exportLines(document("TimeBase=1", "Data_0=0;1", QByteArray()), fileName);
    const QDateTime after = QDateTime::currentDateTime();
    QVERIFY(lines.size() > 6);
    const QRegularExpression dateLine(QStringLiteral("^\\*,date of export,\"(\\d\\d/\\d\\d/\\d\\d\\d\\d)\"\r$"));
    const QRegularExpression timeLine(QStringLiteral("^\\*,time of export,\"(\\d\\d:\\d\\d:\\d\\d)\"\r$"));
    const auto dateMatch = dateLine.match(QString::fromLatin1(lines.at(4)));
    const auto timeMatch = timeLine.match(QString::fromLatin1(lines.at(5)));
    QVERIFY(dateMatch.hasMatch());
    QVERIFY(timeMatch.hasMatch());
    const QDateTime written(QDate::fromString(dateMatch.captured(1), QStringLiteral("dd/MM/yyyy")),
                            QTime::fromString(timeMatch.captured(1), QStringLiteral("hh:mm:ss")));
    QVERIFY(written.isValid());
    QVERIFY(written >= before.addMSecs(-before.time().msec()) && written <= after);
}

void tst_ScopeCsvExport::fileNameIsWrittenAsPassed()
{
    const QString relative = QStringLiteral("./sub/../rel.csv");
    QVERIFY(QDir(m_dir.path()).mkpath(QStringLiteral("sub")));
    const QString current = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_dir.path()));
    const QList<QByteArray> lines = exportLines(document("TimeBase=1", "Data_0=0;1", QByteArray()), relative);
    QDir::setCurrent(current);
    QVERIFY(lines.size() > 7);
    QCOMPARE(lines.at(6), QByteArray("*,path of file,\"./sub/../rel.csv\"\r"));
}

void tst_ScopeCsvExport::numberingKeepsGaps()
{
    const QByteArray channels = "[ScopeChannel_0]\nSourceType=0\nName=A\nMeasure=x\n"
                                "[ScopeChannel_1]\nSourceType=1\nMeasure=y\n"
                                "[ScopeChannel_2]\nSourceType=1\nName=C\nMeasure=z\n"
                                "[ScopeChannel_5]\nSourceType=abc\nName=D\nMeasure=w\n"
                                "[ScopeChannel_7]\nSourceType=4\nName=E\nMeasure=v\n";
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=10", "TriggerIndex=0\nData_0=f0;f1;f2;f3;f4;f5;f6;f7\n", channels),
        m_dir.filePath(QStringLiteral("gaps.csv")));
    QVERIFY(lines.size() > 14);
    QCOMPARE(lines.at(11), QByteArray("*,tracecount,\"5\"\r"));
    QCOMPARE(lines.at(14), QByteArray("*,samplingtime 3, 10, time difference between points in microseconds\r"));
    QCOMPARE(lines.at(15), QByteArray("*,source parameter 3, C in z\r"));
    QCOMPARE(lines.at(16), QByteArray("*,samplingtime 5, 10, time difference between points in microseconds\r"));
    QCOMPARE(lines.at(17), QByteArray("*,source parameter 5, E in v\r"));
    QCOMPARE(lines.at(18), QByteArray("\r"));
    QCOMPARE(dataRows(lines), QList<QByteArray>({"0,f3,f5"}));
}

void tst_ScopeCsvExport::rowTimes_data()
{
    QTest::addColumn<QByteArray>("timeBase");
    QTest::addColumn<QByteArray>("trigger");
    QTest::addColumn<QByteArray>("row");
    QTest::addColumn<QByteArray>("time");
    QTest::newRow("62.5 before trigger") << QByteArray("62.5") << QByteArray("10") << QByteArray("Data_9") << QByteArray("-62");
    QTest::newRow("62.5 at trigger") << QByteArray("62.5") << QByteArray("10") << QByteArray("Data_10") << QByteArray("0");
    QTest::newRow("62.5 after") << QByteArray("62.5") << QByteArray("10") << QByteArray("Data_13") << QByteArray("187");
    QTest::newRow("62.5 far before") << QByteArray("62.5") << QByteArray("10") << QByteArray("Data_0") << QByteArray("-625");
    QTest::newRow("no trigger") << QByteArray("250") << QByteArray() << QByteArray("Data_3") << QByteArray("750");
    QTest::newRow("bad trigger") << QByteArray("250") << QByteArray("x") << QByteArray("Data_3") << QByteArray("750");
    QTest::newRow("0.1") << QByteArray("0.1") << QByteArray("0") << QByteArray("Data_7") << QByteArray("0");
    QTest::newRow("0.1 many") << QByteArray("0.1") << QByteArray("0") << QByteArray("Data_100") << QByteArray("10");
    QTest::newRow("leading zeros") << QByteArray("2") << QByteArray("1") << QByteArray("Data_0005") << QByteArray("8");
    QTest::newRow("huge") << QByteArray("1e30") << QByteArray("0") << QByteArray("Data_5") << QByteArray("9223372036854775807");
    QTest::newRow("bad time base") << QByteArray("abc") << QByteArray("0") << QByteArray("Data_5") << QByteArray("0");
}

void tst_ScopeCsvExport::rowTimes()
{
    QFETCH(QByteArray, timeBase);
    QFETCH(QByteArray, trigger);
    QFETCH(QByteArray, row);
    QFETCH(QByteArray, time);
    const QByteArray data = (trigger.isEmpty() ? QByteArray() : "TriggerIndex=" + trigger + "\n") + row + "=0;1\n";
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=" + timeBase, data, "[ScopeChannel_0]\nSourceType=1\nName=A\n"),
        m_dir.filePath(QStringLiteral("times.csv")));
    QCOMPARE(dataRows(lines), QList<QByteArray>({time + ",1"}));
}

void tst_ScopeCsvExport::samplingTimeText_data()
{
    QTest::addColumn<QByteArray>("timeBase");
    QTest::addColumn<QByteArray>("text");
    QTest::newRow("62.5") << QByteArray("62.5") << QByteArray("62.5");
    QTest::newRow("1000") << QByteArray("1000") << QByteArray("1000");
    QTest::newRow("0.1") << QByteArray("0.1") << QByteArray("0.1");
    QTest::newRow("12.8") << QByteArray("12.8") << QByteArray("12.8");
    QTest::newRow("1e-7") << QByteArray("1e-7") << QByteArray("1e-07");
    QTest::newRow("123456789") << QByteArray("123456789") << QByteArray("123456790");
    QTest::newRow("1e20") << QByteArray("1e20") << QByteArray("1e+20");
    QTest::newRow("0.0001") << QByteArray("0.0001") << QByteArray("1e-04");
    QTest::newRow("0.001") << QByteArray("0.001") << QByteArray("0.001");
    QTest::newRow("empty value") << QByteArray() << QByteArray("0");
}

void tst_ScopeCsvExport::samplingTimeText()
{
    QFETCH(QByteArray, timeBase);
    QFETCH(QByteArray, text);
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=" + timeBase, "Data_0=0;1\n", "[ScopeChannel_0]\nSourceType=1\nName=A\nMeasure=m\n"),
        m_dir.filePath(QStringLiteral("sampling.csv")));
    QVERIFY(lines.size() > 14);
    QCOMPARE(lines.at(14), "*,samplingtime 1, " + text + ", time difference between points in microseconds\r");
}

void tst_ScopeCsvExport::defaultTimeBase()
{
    const QList<QByteArray> lines = exportLines(
        document("ViewSliderLeft=1", "TriggerIndex=1\nData_0=0;7\nData_3=0;8\n",
                 "[ScopeChannel_0]\nSourceType=1\nName=A\nMeasure=m\n"),
        m_dir.filePath(QStringLiteral("default.csv")));
    QVERIFY(lines.size() > 14);
    QCOMPARE(lines.at(14), QByteArray("*,samplingtime 1, 1000, time difference between points in microseconds\r"));
    QCOMPARE(dataRows(lines), QList<QByteArray>({"-1000,7", "2000,8"}));
}

void tst_ScopeCsvExport::noExportedChannel()
{
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=1", "Data_0=0;1;2\nData_1=0;3;4\n", "[ScopeChannel_0]\nSourceType=0\nName=A\n"),
        m_dir.filePath(QStringLiteral("none.csv")));
    QVERIFY(lines.size() > 14);
    QCOMPARE(lines.at(11), QByteArray("*,tracecount,\"1\"\r"));
    QCOMPARE(lines.at(14), QByteArray("\r"));
    QCOMPARE(dataRows(lines), QList<QByteArray>({"0,", "1,"}));
}

void tst_ScopeCsvExport::missingSectionsGiveEmptyFile_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::newRow("no ScopeShot") << QByteArray("[Archive]\nID=1\n[Data]\nData_0=0;1\n");
    QTest::newRow("no Data") << QByteArray("[Archive]\nID=1\n[ScopeShot]\nTimeBase=1\n");
    QTest::newRow("empty archive") << QByteArray();
}

void tst_ScopeCsvExport::missingSectionsGiveEmptyFile()
{
    QFETCH(QByteArray, document);
    const QString fileName = m_dir.filePath(QStringLiteral("empty.csv"));
    {
        QFile old(fileName);
        QVERIFY(old.open(QIODevice::WriteOnly | QIODevice::Truncate));
        old.write("old contents\r\n");
    }
    bool ok = false;
    const QList<QByteArray> lines = exportLines(document, fileName, &ok);
    QVERIFY(ok);
    QVERIFY(lines.isEmpty());
    QVERIFY(QFile::exists(fileName));
    QCOMPARE(QFileInfo(fileName).size(), 0);
}

void tst_ScopeCsvExport::unopenableFileFails()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("TimeBase=1", "Data_0=0;1", QByteArray())));
    QVERIFY(!archive->exportCsv(m_dir.filePath(QStringLiteral("missing/dir/x.csv"))));
    QVERIFY(!archive->exportCsv(m_dir.path()));
    QVERIFY(!archive->exportCsv(QString()));
    // Even an archive without sections reports the failed open.
    std::unique_ptr<ScopeShotArchive> empty(ScopeShotArchive::create(nullptr));
    QVERIFY(!empty->exportCsv(m_dir.filePath(QStringLiteral("missing/dir/x.csv"))));
}

void tst_ScopeCsvExport::replacesOldFileWithoutLeftovers()
{
    // The export goes to a temporary file that replaces the old one only
    // when it is complete; nothing of the old text and no temporary file stay.
    const QString fileName = m_dir.filePath(QStringLiteral("keep.csv"));
    {
        QFile old(fileName);
        QVERIFY(old.open(QIODevice::WriteOnly | QIODevice::Truncate));
        old.write(QByteArray(100000, 'x'));
    }
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("TimeBase=1", "Data_0=0;1", QByteArray())));
    QVERIFY(archive->exportCsv(fileName));
    const QByteArray bytes = readFile(fileName);
    QVERIFY(bytes.startsWith("*,\"Velkor\"\r\n"));
    QVERIFY(!bytes.contains('x' + QByteArray("x")));
    QCOMPARE(QDir(m_dir.path()).entryList({QStringLiteral("keep.csv*")}, QDir::Files),
             QStringList({QStringLiteral("keep.csv")}));
}

void tst_ScopeCsvExport::pipeIsWrittenNotReplaced()
{
    // A named pipe (like a device) cannot be replaced by a new file: the
    // export writes into it and it stays a pipe.
    const QString fileName = m_dir.filePath(QStringLiteral("pipe.csv"));
    QVERIFY(::mkfifo(QFile::encodeName(fileName).constData(), 0600) == 0);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("TimeBase=1", "Data_0=0;1", QByteArray())));
    // Open both ends without blocking: the reader first, non-blocking.
    const int readFd = ::open(QFile::encodeName(fileName).constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(readFd >= 0);
    QVERIFY(archive->exportCsv(fileName));
    QByteArray received(1 << 16, Qt::Uninitialized);
    const ssize_t size = ::read(readFd, received.data(), size_t(received.size()));
    ::close(readFd);
    QVERIFY(size > 0);
    received.truncate(size);
    QVERIFY(received.startsWith("*,\"Velkor\"\r\n"));
    QVERIFY(received.endsWith("\r\n0,\r\n"));
    QVERIFY(!QFileInfo(fileName).isFile());
    QVERIFY(QFileInfo(fileName).exists());
}

void tst_ScopeCsvExport::rowsSortedByFrameNumber()
{
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=1", "Data_10=0;c\nData_9=0;b\nData_100=0;d\nData_0=0;a\nData_=0;x\nData_-1=0;y\n"
                               "Data_1x=0;z\nData_+2=0;w\nData_5=0;first\nData_05=0;second\n",
                 "[ScopeChannel_0]\nSourceType=1\nName=A\n"),
        m_dir.filePath(QStringLiteral("sorted.csv")));
    QCOMPARE(dataRows(lines), QList<QByteArray>({"0,a", "5,second", "9,b", "10,c", "100,d"}));
}

void tst_ScopeCsvExport::fieldZeroIsNeverExported()
{
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=1", "Data_0=SECRET;1;2\nData_1=;3;4\nData_2=12345\n",
                 "[ScopeChannel_0]\nSourceType=1\nName=A\n[ScopeChannel_1]\nSourceType=1\nName=B\n"),
        m_dir.filePath(QStringLiteral("field0.csv")));
    QCOMPARE(dataRows(lines), QList<QByteArray>({"0,1,2", "1,3,4", "2,"}));
}

void tst_ScopeCsvExport::textIsLatin1()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document("TimeBase=1", "Data_0=0;1",
                                            "[ScopeChannel_0]\nSourceType=1\nName=Gr\xc3\xb6\xc3\x9f" "e\nMeasure=\xc2\xb5s\n")));
    archive->setName(QStringLiteral("Prüfung"));
    const QString fileName = m_dir.filePath(QStringLiteral("latin1.csv"));
    QVERIFY(archive->exportCsv(fileName));
    const QByteArray bytes = readFile(fileName);
    QVERIFY(bytes.contains("*,name,\"Pr\xfc" "fung\"\r\n"));
    QVERIFY(bytes.contains("*,source parameter 1, Gr\xf6\xdf" "e in \xb5s\r\n"));
    QVERIFY(!bytes.contains('\n' + QByteArray("\n")));
    QCOMPARE(bytes.count("\r\n"), bytes.count('\n'));
}

void tst_ScopeCsvExport::largeExport()
{
    // Rows beyond the writer's buffer size come out complete and in order.
    QByteArray data = "TriggerIndex=100\n";
    const int frames = 50000;
    for (int i = 0; i < frames; ++i)
        data += "Data_" + QByteArray::number(i) + "=0;" + QByteArray::number(i) + ";1.234567;-9.87654\n";
    const QList<QByteArray> lines = exportLines(
        document("TimeBase=0.5", data,
                 "[ScopeChannel_0]\nSourceType=1\nName=A\n[ScopeChannel_1]\nSourceType=1\nName=B\n"
                 "[ScopeChannel_2]\nSourceType=1\nName=C\n"),
        m_dir.filePath(QStringLiteral("large.csv")));
    const QList<QByteArray> rows = dataRows(lines);
    QCOMPARE(rows.size(), frames);
    for (int i = 0; i < frames; i += 997) {
        const qint64 time = qint64(double(i - 100) * 0.5);
        QCOMPARE(rows.at(i), QByteArray::number(time) + ',' + QByteArray::number(i) + ",1.234567,-9.87654");
    }
    QCOMPARE(rows.last(), QByteArray("24949,49999,1.234567,-9.87654"));
}

QTEST_GUILESS_MAIN(tst_ScopeCsvExport)
#include "tst_scopecsvexport.moc"
