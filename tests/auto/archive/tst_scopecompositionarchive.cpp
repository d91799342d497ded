// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopecompositionarchive.h"
#include "scopecompositionarchiveimplementation.h"
#include "scopeshotarchive.h"
#include "system.h"

#include <QtCore/QRegularExpression>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

class tst_ScopeCompositionArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void createGivesEmptyImplementation();
    void createFromShots();
    void createAppendsToExistingList();
    void roundTripWithSeveralShots();
    void documentLayout();
    void byteOrderMark();
    void loadWithoutUsedShotIdentifiers();
    void loadWithoutArchiveFails();
    void loadReadsUsedShotsInSectionOrder();
    void isPublic_data();
    void isPublic();
    void umlautNameComesBackAltered();
    void setNameEmitsOnlyOnChange();
    void setPublicAlwaysEmits();
    void commentLivesInDocument();
    void staleShotKeysAreDropped();
    void shotSectionIsWrittenAnew_data();
    void shotSectionIsWrittenAnew();
    void garbageTimestampIsInvalid();

private:
    static std::unique_ptr<ScopeShotArchive> shot(const QByteArray& id);
};

namespace {
const QByteArray TypeLine = ";type=\"ovx-scope-composition-archive\" version=\"0\"\r\n\r\n";
const QByteArray Bom = "\xef\xbb\xbf";
} // namespace

std::unique_ptr<ScopeShotArchive> tst_ScopeCompositionArchive::shot(const QByteArray& id)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    archive->fromByteArray("[Archive]\r\nID=" + id + "\r\n");
    return archive;
}

void tst_ScopeCompositionArchive::createGivesEmptyImplementation()
{
    QObject parent;
    ScopeCompositionArchive* archive = ScopeCompositionArchive::create(&parent);
    QVERIFY(archive);
    QCOMPARE(archive->parent(), &parent);
    QVERIFY(qobject_cast<ScopeCompositionArchiveImplementation*>(archive));
    QVERIFY(archive->isPublic());
    QVERIFY(archive->id().isEmpty());
    QVERIFY(archive->name().isEmpty());
    QVERIFY(archive->usedShotIdentifiers().isEmpty());
    QVERIFY(!archive->timestamp().isValid());
    QVERIFY(archive->readOutText().isEmpty());
    QVERIFY(archive->isCommentEmpty());
}

void tst_ScopeCompositionArchive::createFromShots()
{
    auto a = shot("SN1_1_2_3");
    auto b = shot("SN2_1_2_3");
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);
    QVERIFY(archive->create(QList<ScopeShotArchive*>{a.get(), b.get()}));
    const QDateTime after = QDateTime::currentDateTime().addMSecs(1);

    QCOMPARE(archive->usedShotIdentifiers(), QList<QByteArray>({"SN1_1_2_3", "SN2_1_2_3"}));
    const QString host = System::instance()->hostName();
    QCOMPARE(archive->hostName(), host.toLatin1());
    QCOMPARE(static_cast<ScopeCompositionArchiveImplementation*>(archive.get())->createUserName(),
             System::instance()->userName());
    QVERIFY(archive->timestamp() >= before && archive->timestamp() <= after);
    QCOMPARE(archive->id(),
             host.toLatin1() + '_' + archive->timestamp().toString(QStringLiteral("yyyyMMdd_hhmmsszzz")).toLatin1());
    QCOMPARE(archive->name(), QString::fromLatin1(archive->id()));
    QVERIFY(archive->isPublic());
}

void tst_ScopeCompositionArchive::createAppendsToExistingList()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\n[UsedShotIdentifiers]\nShotId_0=old\n"));
    auto a = shot("new");
    QVERIFY(archive->create(QList<ScopeShotArchive*>{a.get()}));
    QCOMPARE(archive->usedShotIdentifiers(), QList<QByteArray>({"old", "new"}));
    QVERIFY(archive->create(QList<ScopeShotArchive*>()));
    QCOMPARE(archive->usedShotIdentifiers().size(), 2);
}

void tst_ScopeCompositionArchive::roundTripWithSeveralShots()
{
    QList<std::shared_ptr<ScopeShotArchive>> shots;
    QList<ScopeShotArchive*> pointers;
    QList<QByteArray> ids;
    for (int i = 0; i < 12; ++i) {
        const QByteArray id = "SN" + QByteArray::number(i) + "_7_100_" + QByteArray::number(200 + i);
        shots.append(shot(id));
        pointers.append(shots.last().get());
        ids.append(id);
    }
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->create(pointers));
    archive->setName(QStringLiteral("Vergleich Hochlauf"));
    archive->setPublic(false);
    archive->setComment(QStringLiteral("<p>zwölf Aufnahmen</p>"));
    const QByteArray bytes = archive->toByteArray();

    std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(bytes));
    QCOMPARE(loaded->usedShotIdentifiers(), ids);
    QCOMPARE(loaded->id(), archive->id());
    QCOMPARE(loaded->name(), QStringLiteral("Vergleich Hochlauf"));
    QCOMPARE(loaded->hostName(), archive->hostName());
    QCOMPARE(loaded->timestamp(), archive->timestamp());
    QVERIFY(!loaded->isPublic());
    QCOMPARE(loaded->comment(), QStringLiteral("<p>zwölf Aufnahmen</p>"));
    QCOMPARE(static_cast<ScopeCompositionArchiveImplementation*>(loaded.get())->createUserName(),
             static_cast<ScopeCompositionArchiveImplementation*>(archive.get())->createUserName());
    QCOMPARE(loaded->toByteArray(), bytes);
    // Serialising twice changes nothing either.
    QCOMPARE(archive->toByteArray(), bytes);
}

void tst_ScopeCompositionArchive::documentLayout()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    auto a = shot("A");
    auto b = shot("B");
    QVERIFY(archive->create(QList<ScopeShotArchive*>{a.get(), b.get()}));
    const QByteArray bytes = archive->toByteArray();
    QVERIFY(bytes.startsWith(TypeLine));
    IniParser parser;
    parser.setIniText(bytes.mid(TypeLine.size()));
    QCOMPARE(parser.sectionNames(), QList<QByteArray>({"Archive", "UsedShotIdentifiers"}));
    const IniSection* section = parser.section("Archive");
    QCOMPARE(section->keys(), QList<QByteArray>({"Name", "ID", "HostName", "CreateUserName", "IsPublic",
                                                 "CreateTimestamp"}));
    QCOMPARE(section->value("IsPublic"), QByteArray("1"));
    const QByteArray stamp = section->value("CreateTimestamp");
    QCOMPARE(stamp, stamp.toLower());
    QCOMPARE(ScopeArchiveCodec::decodeTimestamp(stamp), archive->timestamp());
    const IniSection* used = parser.section("UsedShotIdentifiers");
    QCOMPARE(used->keys(), QList<QByteArray>({"ShotId_0", "ShotId_1"}));
    QCOMPARE(used->value("ShotId_1"), QByteArray("B"));

    // An empty composition still writes both sections.
    std::unique_ptr<ScopeCompositionArchive> empty(ScopeCompositionArchive::create(nullptr));
    parser.setIniText(empty->toByteArray().mid(TypeLine.size()));
    QCOMPARE(parser.sectionNames(), QList<QByteArray>({"Archive", "UsedShotIdentifiers"}));
    QCOMPARE(parser.section("UsedShotIdentifiers")->count(), 0);
}

void tst_ScopeCompositionArchive::byteOrderMark()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->create(QList<ScopeShotArchive*>()));
    const QByteArray bytes = archive->toByteArray();
    // Unlike a shot archive, the ini text keeps its byte-order mark after the type line.
    QVERIFY(bytes.startsWith(TypeLine + Bom + "[Archive]"));
    QCOMPARE(bytes.count(Bom), 1);

    // Both with and without the mark a document loads.
    std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(bytes.mid(TypeLine.size())));
    QCOMPARE(loaded->id(), archive->id());
    QVERIFY(loaded->fromByteArray(bytes.mid(TypeLine.size() + Bom.size())));
    QCOMPARE(loaded->id(), archive->id());
}

void tst_ScopeCompositionArchive::loadWithoutUsedShotIdentifiers()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    auto a = shot("A");
    QVERIFY(archive->create(QList<ScopeShotArchive*>{a.get()}));
    QVERIFY(archive->fromByteArray(TypeLine + "[Archive]\r\nID=x\r\nName=y\r\n"));
    QVERIFY(archive->usedShotIdentifiers().isEmpty());
    QCOMPARE(archive->id(), QByteArray("x"));
    QCOMPARE(archive->name(), QStringLiteral("y"));
}

void tst_ScopeCompositionArchive::loadWithoutArchiveFails()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(!archive->fromByteArray(TypeLine + "[UsedShotIdentifiers]\r\nShotId_0=a\r\n"));
    QVERIFY(archive->usedShotIdentifiers().isEmpty());
    QCOMPARE(static_cast<ScopeCompositionArchiveImplementation*>(archive.get())->iniParser()->sectionCount(), 0);
    QVERIFY(!archive->fromByteArray(QByteArray()));
}

void tst_ScopeCompositionArchive::loadReadsUsedShotsInSectionOrder()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    // Key names are not checked; the section order counts.
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\n[UsedShotIdentifiers]\nShotId_1=b\nShotId_0=a\nanything=z\n"));
    QCOMPARE(archive->usedShotIdentifiers(), QList<QByteArray>({"b", "a", "z"}));
}

void tst_ScopeCompositionArchive::isPublic_data()
{
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<bool>("result");
    QTest::newRow("absent") << QByteArray() << true;
    QTest::newRow("1") << QByteArray("IsPublic=1\n") << true;
    QTest::newRow("0") << QByteArray("IsPublic=0\n") << false;
    QTest::newRow("empty") << QByteArray("IsPublic=\n") << false;
    QTest::newRow("yes") << QByteArray("IsPublic=yes\n") << false;
}

void tst_ScopeCompositionArchive::isPublic()
{
    QFETCH(QByteArray, value);
    QFETCH(bool, result);
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\n" + value));
    QCOMPARE(archive->isPublic(), result);
}

void tst_ScopeCompositionArchive::umlautNameComesBackAltered()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->create(QList<ScopeShotArchive*>()));
    archive->setName(QStringLiteral("Prüfstand Größe"));
    const QByteArray bytes = archive->toByteArray();
    QVERIFY(bytes.contains("Name=Pr\xfc" "fstand Gr\xf6\xdf" "e\r\n"));
    std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(bytes));
    QVERIFY(loaded->name() != QStringLiteral("Prüfstand Größe"));
    QVERIFY(loaded->name().startsWith(QStringLiteral("Pr")));
    QVERIFY(loaded->name().contains(QChar(QChar::ReplacementCharacter)));
    // An ASCII name is unaffected.
    archive->setName(QStringLiteral("Pruefstand"));
    QVERIFY(loaded->fromByteArray(archive->toByteArray()));
    QCOMPARE(loaded->name(), QStringLiteral("Pruefstand"));
}

void tst_ScopeCompositionArchive::setNameEmitsOnlyOnChange()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setName(QString());
    QCOMPARE(changed.count(), 0);
    archive->setName(QStringLiteral("Satz"));
    QCOMPARE(changed.count(), 1);
    archive->setName(QStringLiteral("Satz"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(archive->name(), QStringLiteral("Satz"));
    // Members are written only when serialised.
    QCOMPARE(static_cast<ScopeCompositionArchiveImplementation*>(archive.get())->iniParser()->sectionCount(), 0);
}

void tst_ScopeCompositionArchive::setPublicAlwaysEmits()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setPublic(true);
    QCOMPARE(changed.count(), 1);
    archive->setPublic(false);
    QCOMPARE(changed.count(), 2);
    QVERIFY(!archive->isPublic());
    QVERIFY(archive->toByteArray().contains("IsPublic=0\r\n"));
}

void tst_ScopeCompositionArchive::commentLivesInDocument()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setComment(QStringLiteral("<p>Notiz</p>"));
    QCOMPARE(changed.count(), 1);
    archive->setComment(QStringLiteral("<p>Notiz</p>"));
    QCOMPARE(changed.count(), 1);
    IniParser* document = static_cast<ScopeCompositionArchiveImplementation*>(archive.get())->iniParser();
    QCOMPARE(document->section("Archive")->value("Comment"),
             ScopeArchiveCodec::encodeComment(QStringLiteral("<p>Notiz</p>")));
    QVERIFY(archive->toByteArray().contains(
        "Comment=" + ScopeArchiveCodec::encodeComment(QStringLiteral("<p>Notiz</p>")) + "\r\n"));
}

void tst_ScopeCompositionArchive::staleShotKeysAreDropped()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\n[UsedShotIdentifiers]\nfirst=a\nShotId_7=b\n"));
    QCOMPARE(archive->usedShotIdentifiers(), QList<QByteArray>({"a", "b"}));
    std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(archive->toByteArray()));
    QCOMPARE(loaded->usedShotIdentifiers(), QList<QByteArray>({"a", "b"}));
}

void tst_ScopeCompositionArchive::shotSectionIsWrittenAnew_data()
{
    QTest::addColumn<QByteArray>("shotKeys");
    QTest::addColumn<QList<QByteArray>>("shots");

    QTest::newRow("foreign key first") << QByteArray("ShotLd_0=a\nShotId_1=b\n") << QList<QByteArray>({"a", "b"});
    QTest::newRow("ShotId_1 after others") << QByteArray("x=a\ny=b\nShotId_1=c\nShotId_0=d\n")
                                           << QList<QByteArray>({"a", "b", "c", "d"});
    QTest::newRow("reversed") << QByteArray("ShotId_2=a\nShotId_1=b\nShotId_0=c\n")
                              << QList<QByteArray>({"a", "b", "c"});
    QTest::newRow("clean") << QByteArray("ShotId_0=a\nShotId_1=b\n") << QList<QByteArray>({"a", "b"});
    QTest::newRow("empty") << QByteArray() << QList<QByteArray>();
}

void tst_ScopeCompositionArchive::shotSectionIsWrittenAnew()
{
    QFETCH(QByteArray, shotKeys);
    QFETCH(QList<QByteArray>, shots);

    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[First]\nk=1\n[UsedShotIdentifiers]\n" + shotKeys
                                   + "[Archive]\nID=c\n[Last]\nl=2\n"));
    QCOMPARE(archive->usedShotIdentifiers(), shots);

    QByteArray expectedSection("[UsedShotIdentifiers]\r\n");
    for (qsizetype i = 0; i < shots.size(); ++i)
        expectedSection += "ShotId_" + QByteArray::number(i) + '=' + shots.at(i) + "\r\n";

    // Saving twice changes nothing: the list neither grows nor reorders.
    QByteArray saved = archive->toByteArray();
    for (int round = 0; round < 3; ++round) {
        std::unique_ptr<ScopeCompositionArchive> loaded(ScopeCompositionArchive::create(nullptr));
        QVERIFY(loaded->fromByteArray(saved));
        QCOMPARE(loaded->usedShotIdentifiers(), shots);
        QVERIFY2(saved.contains(expectedSection), saved.constData());
        // The section keeps its place among the sections.
        const auto* parser = static_cast<ScopeCompositionArchiveImplementation*>(loaded.get())->iniParser();
        QCOMPARE(parser->sectionNames(),
                 QList<QByteArray>({"First", "UsedShotIdentifiers", "Archive", "Last"}));
        const QByteArray again = loaded->toByteArray();
        QCOMPARE(again, saved);
        saved = again;
    }
}

void tst_ScopeCompositionArchive::garbageTimestampIsInvalid()
{
    std::unique_ptr<ScopeCompositionArchive> archive(ScopeCompositionArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\nCreateTimestamp=0123456789abcdefgh\n"));
    QVERIFY(!archive->timestamp().isValid());
    QVERIFY(archive->fromByteArray("[Archive]\nID=c\nCreateTimestamp=ffffffff\n"));
    QVERIFY(!archive->timestamp().isValid());
}

QTEST_MAIN(tst_ScopeCompositionArchive)
#include "tst_scopecompositionarchive.moc"
