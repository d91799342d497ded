// SPDX-License-Identifier: GPL-3.0-or-later
// A shot archive made from a read-out, read back as a recording.
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"

#include <QtCore/QFile>
#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <memory>

class tst_ScopeShotArchiveLoading : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void channelWithoutSourceKeepsIndices();
    void fieldZeroIsIgnored_data();
    void fieldZeroIsIgnored();
    void savedTextLoadsAgain();

private:
    QByteArray m_readOut;
};

void tst_ScopeShotArchiveLoading::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
    QFile file(QFINDTESTDATA("data/readout.ini"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    m_readOut = file.readAll();
}

void tst_ScopeShotArchiveLoading::channelWithoutSourceKeepsIndices()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(m_readOut));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    // Channel 1 recorded nothing ("SourceType" 0): no trace, and channels 2
    // and 3 keep their own numbers and their own columns of the rows.
    QCOMPARE(shot.channelNumbers(), QList<int>({0, 2, 3}));
    QVERIFY(!shot.trace(1));
    QVERIFY(shot.trace(2));
    QCOMPARE(shot.trace(2)->samples(), QVector<double>({3.0, 3.1, 3.2, 3.3}));
    QCOMPARE(shot.trace(3)->samples(), QVector<double>({4.0, 4.1, 4.2, 4.3}));
    QCOMPARE(shot.timeBase(), 625);
}

void tst_ScopeShotArchiveLoading::fieldZeroIsIgnored_data()
{
    QTest::addColumn<QByteArray>("fieldZero");
    QTest::newRow("number") << QByteArray("12345");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("Zeitstempel");
    QTest::newRow("negative") << QByteArray("-1e300");
}

void tst_ScopeShotArchiveLoading::fieldZeroIsIgnored()
{
    QFETCH(QByteArray, fieldZero);
    QByteArray readOut = m_readOut;
    for (int i = 0; i < 4; ++i) {
        const QByteArray key = "Data_" + QByteArray::number(i) + '=';
        const qsizetype start = readOut.indexOf(key) + key.size();
        const qsizetype end = readOut.indexOf(';', start);
        readOut.replace(start, end - start, fieldZero);
    }
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(readOut));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.trace(0)->samples(), QVector<double>({1.5, 1.6, 1.7, 1.8}));
}

void tst_ScopeShotArchiveLoading::savedTextLoadsAgain()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(m_readOut));
    std::unique_ptr<ScopeShotArchive> stored(ScopeShotArchive::create(nullptr));
    QVERIFY(stored->fromByteArray(archive->toByteArray()));
    ScopeShot shot;
    shot.setArchive(stored.get());
    QVERIFY(shot.load());
    QCOMPARE(shot.channelNumbers(), QList<int>({0, 2, 3}));
    QCOMPARE(shot.name(), archive->name());
}

QTEST_MAIN(tst_ScopeShotArchiveLoading)
#include "tst_scopeshotarchiveloading.moc"
