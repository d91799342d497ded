// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopeshotarchive.h"
#include "scopeshotarchiveimplementation.h"
#include "system.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

class tst_ScopeShotArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void createGivesEmptyImplementation();
    void operationsAreInvocableByName();
    void loadWithoutTypeLine();
    void loadWithoutArchiveFails();
    void saveWritesTypeLine();
    void roundTripIsIdentical();
    void isPublic_data();
    void isPublic();
    void setPublicAlwaysEmits();
    void setNameEmitsOnlyOnChange();
    void setNameStoresLatin1();
    void settersTouchOnlyTheirKey();
    void setCommentEmitsOnlyOnChange();
    void createFromReadOut();
    void createFromReadOutWithoutData();
    void createFromReadOutKeepsExistingNothing();
    void createFromArchiveFails();
    void createAgainReplacesDocument();
    void timestampOfGarbageIsInvalid();
    void sectionAccessors();
    void sectionLookupsNeverCreate();
    void setNeedSaveEmits();
    void hasChannelViewSettings_data();
    void hasChannelViewSettings();
    void viewRecipeContents();
    void applyRecipeOnMatchingArchive();
    void applyRecipeSkipsMismatchingChannel();
    void applyRecipeWithoutMatchChangesNothing();
    void applyRecipeChannelsOnly();
    void applyRecipeKeepsSceneKeysOfTarget();

private:
    QByteArray readOut() const;
    std::unique_ptr<ScopeShotArchive> archiveFromReadOut() const;
    static QByteArray channelViewRecipe(const QByteArray& channelName);

    QByteArray m_readOut;
};

namespace {

const QByteArray TypeLine = ";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n";

// Every section and key of a document, for comparing two documents.
QMap<QByteArray, QMap<QByteArray, QByteArray>> contents(IniParser* parser)
{
    QMap<QByteArray, QMap<QByteArray, QByteArray>> result;
    for (const QByteArray& name : parser->sectionNames()) {
        const IniSection* section = parser->section(name);
        auto& keys = result[name];
        for (const QByteArray& key : section->keys())
            keys.insert(key, section->value(key));
    }
    return result;
}

} // namespace

void tst_ScopeShotArchive::initTestCase()
{
    QFile file(QFINDTESTDATA("data/readout.ini"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    m_readOut = file.readAll();
    QVERIFY(!m_readOut.isEmpty());
}

QByteArray tst_ScopeShotArchive::readOut() const
{
    return m_readOut;
}

std::unique_ptr<ScopeShotArchive> tst_ScopeShotArchive::archiveFromReadOut() const
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->createFromReadOut(m_readOut))
        return nullptr;
    return archive;
}

void tst_ScopeShotArchive::createGivesEmptyImplementation()
{
    QObject parent;
    ScopeShotArchive* archive = ScopeShotArchive::create(&parent);
    QVERIFY(archive);
    QCOMPARE(archive->parent(), &parent);
    QVERIFY(qobject_cast<ScopeShotArchiveImplementation*>(archive));
    QVERIFY(archive->isPublic());
    QVERIFY(archive->id().isEmpty());
    QVERIFY(archive->name().isEmpty());
    QVERIFY(archive->hostName().isEmpty());
    QVERIFY(archive->readOutText().isEmpty());
    QVERIFY(!archive->timestamp().isValid());
    QVERIFY(archive->comment().isEmpty());
    QVERIFY(archive->isCommentEmpty());
    QCOMPARE(archive->iniParser()->sectionCount(), 0);
    QVERIFY(!archive->archiveSection());
    QVERIFY(!archive->hasChannelViewSettings());
}

void tst_ScopeShotArchive::operationsAreInvocableByName()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    QByteArray id;
    QVERIFY(QMetaObject::invokeMethod(archive.get(), "id", Q_RETURN_ARG(QByteArray, id)));
    QCOMPARE(id, archive->id());
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    QVERIFY(QMetaObject::invokeMethod(archive.get(), "setNeedSave"));
    QCOMPARE(changed.count(), 1);
}

void tst_ScopeShotArchive::loadWithoutTypeLine()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\r\nID=abc\r\nName=Test\r\n"));
    QCOMPARE(archive->id(), QByteArray("abc"));
    QCOMPARE(archive->name(), QStringLiteral("Test"));
}

void tst_ScopeShotArchive::loadWithoutArchiveFails()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(TypeLine + "[Archive]\r\nID=x\r\n"));
    QVERIFY(!archive->fromByteArray(readOut()));
    QCOMPARE(archive->iniParser()->sectionCount(), 0);
    QVERIFY(archive->id().isEmpty());
    QVERIFY(!archive->dataSection());
    QVERIFY(!archive->fromByteArray(QByteArray()));
    QVERIFY(!archive->fromByteArray(QByteArray("\x00\xff garbage [ = \n\n=", 18)));
    QCOMPARE(archive->iniParser()->sectionCount(), 0);
}

void tst_ScopeShotArchive::saveWritesTypeLine()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    const QByteArray bytes = archive->toByteArray();
    QVERIFY(bytes.startsWith(TypeLine + "["));
    QVERIFY(!bytes.contains("\xef\xbb\xbf"));
    QCOMPARE(bytes.mid(TypeLine.size()), archive->iniParser()->getIniTextWithoutByteOrderMarker());
    QCOMPARE(bytes.count(";type="), 1);
}

void tst_ScopeShotArchive::roundTripIsIdentical()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    archive->setComment(QStringLiteral("<p>Prüfung</p>"));
    archive->setPublic(false);
    const QByteArray bytes = archive->toByteArray();

    std::unique_ptr<ScopeShotArchive> loaded(ScopeShotArchive::create(nullptr));
    QVERIFY(loaded->fromByteArray(bytes));
    QCOMPARE(loaded->toByteArray(), bytes);
    QCOMPARE(loaded->id(), archive->id());
    QCOMPARE(loaded->name(), archive->name());
    QCOMPARE(loaded->timestamp(), archive->timestamp());
    QCOMPARE(loaded->comment(), QStringLiteral("<p>Prüfung</p>"));
    QVERIFY(!loaded->isPublic());

    // A second generation stays identical too.
    std::unique_ptr<ScopeShotArchive> again(ScopeShotArchive::create(nullptr));
    QVERIFY(again->fromByteArray(loaded->toByteArray()));
    QCOMPARE(again->toByteArray(), bytes);
}

void tst_ScopeShotArchive::isPublic_data()
{
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<bool>("result");
    QTest::newRow("no key") << QByteArray("[Archive]\nID=1\n") << true;
    QTest::newRow("1") << QByteArray("[Archive]\nIsPublic=1\n") << true;
    QTest::newRow("0") << QByteArray("[Archive]\nIsPublic=0\n") << false;
    QTest::newRow("empty") << QByteArray("[Archive]\nIsPublic=\n") << false;
    QTest::newRow("true") << QByteArray("[Archive]\nIsPublic=true\n") << false;
    QTest::newRow("11") << QByteArray("[Archive]\nIsPublic=11\n") << false;
}

void tst_ScopeShotArchive::isPublic()
{
    QFETCH(QByteArray, document);
    QFETCH(bool, result);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray(document));
    QCOMPARE(archive->isPublic(), result);
}

void tst_ScopeShotArchive::setPublicAlwaysEmits()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setPublic(true);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(archive->archiveSection()->value("IsPublic"), QByteArray("1"));
    archive->setPublic(true);
    QCOMPARE(changed.count(), 2);
    archive->setPublic(false);
    QCOMPARE(changed.count(), 3);
    QCOMPARE(archive->archiveSection()->value("IsPublic"), QByteArray("0"));
    QVERIFY(!archive->isPublic());
}

void tst_ScopeShotArchive::setNameEmitsOnlyOnChange()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setName(archive->name());
    QCOMPARE(changed.count(), 0);
    archive->setName(QStringLiteral("Hochlauf"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(archive->name(), QStringLiteral("Hochlauf"));
    archive->setName(QStringLiteral("Hochlauf"));
    QCOMPARE(changed.count(), 1);

    // Renaming an empty archive creates its "Archive" section.
    std::unique_ptr<ScopeShotArchive> empty(ScopeShotArchive::create(nullptr));
    QSignalSpy emptyChanged(empty.get(), &ScopeElementArchive::scopeElementChanged);
    empty->setName(QString());
    QCOMPARE(emptyChanged.count(), 0);
    QVERIFY(!empty->archiveSection());
    empty->setName(QStringLiteral("Neu"));
    QCOMPARE(emptyChanged.count(), 1);
    QVERIFY(empty->archiveSection());
}

void tst_ScopeShotArchive::setNameStoresLatin1()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    archive->setName(QStringLiteral("Maß für Übung"));
    QCOMPARE(archive->archiveSection()->value("Name"), QByteArray("Ma\xdf f\xfcr \xdc" "bung"));
    QCOMPARE(archive->name(), QStringLiteral("Maß für Übung"));
}

void tst_ScopeShotArchive::settersTouchOnlyTheirKey()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    auto expected = contents(archive->iniParser());

    archive->setName(QStringLiteral("Anders"));
    expected["Archive"]["Name"] = "Anders";
    QCOMPARE(contents(archive->iniParser()), expected);

    archive->setPublic(false);
    expected["Archive"]["IsPublic"] = "0";
    QCOMPARE(contents(archive->iniParser()), expected);

    archive->setComment(QStringLiteral("Notiz"));
    expected["Archive"]["Comment"] = ScopeArchiveCodec::encodeComment(QStringLiteral("Notiz"));
    QCOMPARE(contents(archive->iniParser()), expected);

    // The key order of the other sections stays as it was.
    QCOMPARE(archive->dataSection()->keys().first(), QByteArray("ChannelCount"));
    QCOMPARE(archive->iniParser()->sectionNames().first(), QByteArray("Data"));
}

void tst_ScopeShotArchive::setCommentEmitsOnlyOnChange()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    archive->setComment(QString());
    QCOMPARE(changed.count(), 0);
    QVERIFY(!archive->archiveSection()->contains("Comment"));
    archive->setComment(QStringLiteral("<p>Lüfter läuft</p>"));
    QCOMPARE(changed.count(), 1);
    const QByteArray stored = archive->archiveSection()->value("Comment");
    archive->setComment(QStringLiteral("<p>Lüfter läuft</p>"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(archive->archiveSection()->value("Comment"), stored);
    QCOMPARE(archive->comment(), QStringLiteral("<p>Lüfter läuft</p>"));
    QVERIFY(!archive->isCommentEmpty());
}

void tst_ScopeShotArchive::createFromReadOut()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QSignalSpy changed(archive.get(), &ScopeElementArchive::scopeElementChanged);
    const QDateTime before = QDateTime::currentDateTime().addMSecs(-1);
    QVERIFY(archive->createFromReadOut(readOut()));
    const QDateTime after = QDateTime::currentDateTime().addMSecs(1);
    QCOMPARE(changed.count(), 1);

    QCOMPARE(archive->id(), QByteArray("SN4711_12_1000_1500"));
    const QByteArray host = System::instance()->hostName().toLatin1();
    QCOMPARE(archive->hostName(), host);
    QVERIFY(QRegularExpression(QStringLiteral("^\\d{8}_\\d{9}$")).match(archive->name()).hasMatch());
    QVERIFY(!archive->readOutText().isEmpty());
    QVERIFY(archive->readOutText().contains(' '));
    const QDateTime timestamp = archive->timestamp();
    QVERIFY(timestamp.isValid());
    QVERIFY(timestamp >= before && timestamp <= after);
    QCOMPARE(archive->name(), timestamp.toString(QStringLiteral("yyyyMMdd_hhmmsszzz")));
    const QByteArray stamp = archive->archiveSection()->value("ReadOutTimestamp");
    QCOMPARE(stamp, stamp.toLower());
    QCOMPARE(stamp.size(), 18);
    QVERIFY(archive->isPublic());
    QVERIFY(!archive->archiveSection()->contains("IsPublic"));
    QCOMPARE(archive->archiveSection()->keys(),
             QList<QByteArray>({"ID", "Name", "HostName", "ReadOut", "ReadOutTimestamp"}));
    // The read-out itself is kept unchanged.
    QCOMPARE(archive->shotSection()->value("TimeBase"), QByteArray("62.5"));
    QCOMPARE(archive->dataSection()->value("Data_2"), QByteArray("2;1.7;2.2;3.2;4.2"));
}

void tst_ScopeShotArchive::createFromReadOutWithoutData()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut("[ScopeShot]\r\nTimeBase=1\r\n"));
    const QByteArray host = System::instance()->hostName().toLatin1();
    QVERIFY(archive->id().startsWith(host + '_'));
    QCOMPARE(archive->id(), host + '_' + archive->name().toLatin1());

    // Empty identification values stay empty fields of the ID.
    QVERIFY(archive->createFromReadOut("[Data]\r\nLivingSpace=7\r\n"));
    QCOMPARE(archive->id(), QByteArray("_7__"));
}

void tst_ScopeShotArchive::createFromReadOutKeepsExistingNothing()
{
    // An empty read-out still becomes an archive.
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(QByteArray()));
    QVERIFY(archive->archiveSection());
    QCOMPARE(archive->iniParser()->sectionCount(), 1);
}

void tst_ScopeShotArchive::createFromArchiveFails()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    const QByteArray saved = archive->toByteArray();
    std::unique_ptr<ScopeShotArchive> other(ScopeShotArchive::create(nullptr));
    QSignalSpy changed(other.get(), &ScopeElementArchive::scopeElementChanged);
    QVERIFY(!other->createFromReadOut(saved));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(other->iniParser()->sectionCount(), 0);
    QVERIFY(!other->archiveSection());
}

void tst_ScopeShotArchive::createAgainReplacesDocument()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    archive->setName(QStringLiteral("Erste"));
    QVERIFY(!archive->createFromReadOut(archive->toByteArray()));
    QCOMPARE(archive->iniParser()->sectionCount(), 0);
    QVERIFY(archive->createFromReadOut(readOut()));
    QVERIFY(archive->name() != QStringLiteral("Erste"));
    IniParser reference;
    reference.setIniText(readOut());
    QCOMPARE(archive->iniParser()->sectionCount(), reference.sectionCount() + 1);
}

void tst_ScopeShotArchive::timestampOfGarbageIsInvalid()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nReadOutTimestamp=xyz\n"));
    QVERIFY(!archive->timestamp().isValid());
    QVERIFY(archive->fromByteArray("[Archive]\nReadOutTimestamp=ffffffffffffffffffffffff\n"));
    QVERIFY(!archive->timestamp().isValid());
    QVERIFY(archive->fromByteArray("[Archive]\nReadOutTimestamp=\n"));
    QVERIFY(!archive->timestamp().isValid());
}

void tst_ScopeShotArchive::sectionAccessors()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=1\n[ScopeScene]\na=1\n[ScopeShot]\nb=2\n[Data]\nc=3\n"
                                   "[TriggerLogic]\nd=4\n[Trigger_0]\ne=5\n[Trigger_1]\nf=6\n"
                                   "[ScopeChannel_12]\ng=7\n[ScopeChannel_1]\nh=8\n"));
    QCOMPARE(archive->archiveSection()->name(), QByteArray("Archive"));
    QCOMPARE(archive->sceneSection()->name(), QByteArray("ScopeScene"));
    QCOMPARE(archive->shotSection()->name(), QByteArray("ScopeShot"));
    QCOMPARE(archive->dataSection()->name(), QByteArray("Data"));
    QCOMPARE(archive->triggerLogicSection()->name(), QByteArray("TriggerLogic"));
    QCOMPARE(archive->triggerSection(0)->name(), QByteArray("Trigger_0"));
    QCOMPARE(archive->triggerSection(1)->value("f"), QByteArray("6"));
    QCOMPARE(archive->channelSection(12)->name(), QByteArray("ScopeChannel_12"));
    QCOMPARE(archive->channelSection(1)->value("h"), QByteArray("8"));
    QVERIFY(!archive->channelSection(2));
    QVERIFY(!archive->triggerSection(2));
    QCOMPARE(archive->channelSection(12), archive->iniParser()->section("ScopeChannel_12"));
}

void tst_ScopeShotArchive::sectionLookupsNeverCreate()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=1\n"));
    QVERIFY(!archive->sceneSection());
    QVERIFY(!archive->shotSection());
    QVERIFY(!archive->dataSection());
    QVERIFY(!archive->triggerLogicSection());
    QVERIFY(!archive->triggerSection(0));
    QVERIFY(!archive->channelSection(0));
    QVERIFY(!archive->channelSection(4294967295u));
    QCOMPARE(archive->iniParser()->sectionCount(), 1);
}

void tst_ScopeShotArchive::setNeedSaveEmits()
{
    ScopeShotArchiveImplementation archive;
    QSignalSpy changed(&archive, &ScopeElementArchive::scopeElementChanged);
    QSignalSpy several(&archive, &ScopeElementArchive::scopeElementsChanged);
    archive.setNeedSave();
    QCOMPARE(changed.count(), 1);
    QCOMPARE(several.count(), 0);
    QCOMPARE(archive.iniParser()->sectionCount(), 0);
}

void tst_ScopeShotArchive::hasChannelViewSettings_data()
{
    QTest::addColumn<QByteArray>("channel");
    QTest::addColumn<bool>("result");
    QTest::newRow("none") << QByteArray("[ScopeChannel_0]\nName=x\nColor=#fff\n") << false;
    QTest::newRow("offset") << QByteArray("[ScopeChannel_0]\nViewVerticalOffset=1\n") << true;
    QTest::newRow("scaling") << QByteArray("[ScopeChannel_3]\nViewScalingFactor=1\n") << true;
    QTest::newRow("off") << QByteArray("[ScopeChannel_0]\nViewOff=0\n") << true;
    QTest::newRow("ground") << QByteArray("[ScopeChannel_0]\nViewGround=0\n") << true;
    QTest::newRow("inverted") << QByteArray("[ScopeChannel_0]\nViewInverted=0\n") << true;
    QTest::newRow("binary") << QByteArray("[ScopeChannel_0]\nBinaryView=0\n") << true;
    QTest::newRow("mask") << QByteArray("[ScopeChannel_0]\nBinaryViewMask=0\n") << true;
    QTest::newRow("backup") << QByteArray("[ScopeChannel_0]\nBinaryScalingFactorBackup=1\n") << true;
    QTest::newRow("leading zeros") << QByteArray("[ScopeChannel_007]\nViewOff=1\n") << true;
    QTest::newRow("not a channel") << QByteArray("[ScopeChannel_x]\nViewOff=1\n") << false;
    QTest::newRow("other section") << QByteArray("[ScopeShot]\nViewOff=1\n") << false;
}

void tst_ScopeShotArchive::hasChannelViewSettings()
{
    QFETCH(QByteArray, channel);
    QFETCH(bool, result);
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->fromByteArray("[Archive]\nID=1\n" + channel));
    QCOMPARE(archive->hasChannelViewSettings(), result);
}

void tst_ScopeShotArchive::viewRecipeContents()
{
    auto archive = archiveFromReadOut();
    QVERIFY(archive);
    IniSection* channel = archive->channelSection(0);
    channel->setValue("ViewOff", "1");
    channel->setValue("ViewScalingFactor", "2.5");
    channel->setValue("ChoiceMap", "0=aus;1=ein");
    archive->iniParser()->findOrCreateSection("ScopeScene")->setValue("ScopeStripe_0", "2");
    archive->sceneSection()->setValue("MarkerPosition_0A", "-5");

    const QByteArray recipeText = archive->viewRecipe();
    QVERIFY(!recipeText.startsWith(';'));
    QVERIFY(!recipeText.startsWith("\xef\xbb\xbf"));
    IniParser recipe;
    recipe.setIniText(recipeText);
    QCOMPARE(recipe.sectionNames(),
             QList<QByteArray>({"ScopeShot", "ScopeScene", "ScopeChannel_0", "ScopeChannel_1",
                                "ScopeChannel_2", "ScopeChannel_3"}));
    QCOMPARE(recipe.section("ScopeShot")->keys(),
             QList<QByteArray>({"TimeBase", "ViewSliderLeft", "ViewSliderRight"}));
    QCOMPARE(recipe.section("ScopeShot")->value("ViewSliderRight"), QByteArray("200"));
    QCOMPARE(recipe.section("ScopeScene")->keys(),
             QList<QByteArray>({"ScopeStripe_0", "MarkerPosition_0A"}));
    const IniSection* recipeChannel = recipe.section("ScopeChannel_0");
    QCOMPARE(recipeChannel->value("ViewOff"), QByteArray("1"));
    QCOMPARE(recipeChannel->value("ViewScalingFactor"), QByteArray("2.5"));
    QCOMPARE(recipeChannel->value("Color"), QByteArray("#ff0000"));
    QCOMPARE(recipeChannel->value("Name"), QByteArray("Drehzahl"));
    QVERIFY(!recipeChannel->contains("ChoiceMap"));
    QVERIFY(!recipeChannel->contains("ViewGround"));
    QCOMPARE(recipe.section("ScopeChannel_1")->keys(), QList<QByteArray>({"SourceType", "Name"}));
    QVERIFY(!recipe.section("Archive"));
    QVERIFY(!recipe.section("Data"));
}

QByteArray tst_ScopeShotArchive::channelViewRecipe(const QByteArray& channelName)
{
    return "[ScopeShot]\r\nTimeBase=99\r\nViewSliderLeft=-7\r\nViewSliderRight=8\r\n\r\n"
           "[ScopeScene]\r\nScopeStripe_0=3\r\nMarkerPosition_0A=42\r\n\r\n"
           "[ScopeChannel_0]\r\nViewVerticalOffset=1.5\r\nViewScalingFactor=5\r\nViewOff=1\r\n"
           "ViewGround=1\r\nViewInverted=1\r\nColor=#123456\r\nBinaryView=1\r\nBinaryViewMask=255\r\n"
           "BinaryScalingFactorBackup=2\r\nSourceType=1\r\nParameterValueAddress=4096\r\n"
           "SignalLabelName=n_act\r\nPhysicalAddress=8192\r\nPhysicalDatatype=3\r\nName="
        + channelName + "\r\nMeasure=rpm\r\nDecimalPlaces=1\r\nParameterKind=0\r\n";
}

void tst_ScopeShotArchive::applyRecipeOnMatchingArchive()
{
    // Export from one archive, apply onto a second one with the same channels.
    auto source = archiveFromReadOut();
    auto target = archiveFromReadOut();
    QVERIFY(source && target);
    source->channelSection(0)->setValue("ViewOff", "1");
    source->channelSection(0)->setValue("Color", "#abcdef");
    source->channelSection(2)->setValue("ViewScalingFactor", "0.5");
    source->shotSection()->setValue("ViewSliderLeft", "-1234");
    source->shotSection()->setValue("TimeBase", "1000");
    source->iniParser()->findOrCreateSection("ScopeScene")->setValue("MarkerPosition_0B", "77");

    QSignalSpy changed(target.get(), &ScopeElementArchive::scopeElementChanged);
    QSignalSpy several(target.get(), &ScopeElementArchive::scopeElementsChanged);
    QVERIFY(!target->hasChannelViewSettings());
    QVERIFY(target->applyViewRecipe(source->viewRecipe(), false));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(several.count(), 0);
    QCOMPARE(target->channelSection(0)->value("ViewOff"), QByteArray("1"));
    QCOMPARE(target->channelSection(0)->value("Color"), QByteArray("#abcdef"));
    QCOMPARE(target->channelSection(2)->value("ViewScalingFactor"), QByteArray("0.5"));
    QCOMPARE(target->shotSection()->value("ViewSliderLeft"), QByteArray("-1234"));
    QCOMPARE(target->shotSection()->value("ViewSliderRight"), QByteArray("200"));
    // The time base belongs to the recording, not to the view.
    QCOMPARE(target->shotSection()->value("TimeBase"), QByteArray("62.5"));
    QCOMPARE(target->sceneSection()->value("MarkerPosition_0B"), QByteArray("77"));
    QVERIFY(target->hasChannelViewSettings());
    QCOMPARE(target->viewRecipe(), source->viewRecipe().replace("TimeBase=1000", "TimeBase=62.5"));
}

void tst_ScopeShotArchive::applyRecipeSkipsMismatchingChannel()
{
    auto target = archiveFromReadOut();
    QVERIFY(target);
    QByteArray recipe = channelViewRecipe("Drehzahl");
    // Channel 2 has another name in the target: it is left alone.
    recipe += "\r\n[ScopeChannel_2]\r\nViewOff=1\r\nSourceType=2\r\nParameterValueAddress=4100\r\n"
              "SignalLabelName=i_q\r\nPhysicalAddress=8200\r\nPhysicalDatatype=7\r\nName=Anders\r\n"
              "Measure=A\r\nDecimalPlaces=2\r\nParameterKind=1\r\n";
    // Channel 3 lacks an identifying key in the recipe: no match either.
    recipe += "\r\n[ScopeChannel_3]\r\nViewOff=1\r\nSourceType=1\r\nParameterValueAddress=4104\r\n"
              "SignalLabelName=u_dc\r\nPhysicalAddress=8204\r\nPhysicalDatatype=2\r\nName=Spannung\r\n"
              "Measure=V\r\nDecimalPlaces=0\r\n";
    // Channel 9 does not exist in the target.
    recipe += "\r\n[ScopeChannel_9]\r\nViewOff=1\r\n";
    const auto before = contents(target->iniParser());
    QVERIFY(target->applyViewRecipe(recipe, false));
    QCOMPARE(target->channelSection(0)->value("ViewOff"), QByteArray("1"));
    QCOMPARE(target->channelSection(0)->value("Color"), QByteArray("#123456"));
    QCOMPARE(target->channelSection(0)->value("BinaryViewMask"), QByteArray("255"));
    QCOMPARE(contents(target->iniParser())["ScopeChannel_2"], before["ScopeChannel_2"]);
    QCOMPARE(contents(target->iniParser())["ScopeChannel_3"], before["ScopeChannel_3"]);
    QVERIFY(!target->channelSection(9));
}

void tst_ScopeShotArchive::applyRecipeWithoutMatchChangesNothing()
{
    auto target = archiveFromReadOut();
    QVERIFY(target);
    const QByteArray bytes = target->toByteArray();
    QSignalSpy changed(target.get(), &ScopeElementArchive::scopeElementChanged);
    QSignalSpy several(target.get(), &ScopeElementArchive::scopeElementsChanged);
    QVERIFY(!target->applyViewRecipe(channelViewRecipe("Fremd"), false));
    QVERIFY(!target->applyViewRecipe(channelViewRecipe("Fremd").replace("PhysicalDatatype=3", "PhysicalDatatype=8"), true));
    QVERIFY(!target->applyViewRecipe(QByteArray(), false));
    QVERIFY(!target->applyViewRecipe("garbage ] [ = \x01", true));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(several.count(), 0);
    QCOMPARE(target->toByteArray(), bytes);
}

void tst_ScopeShotArchive::applyRecipeChannelsOnly()
{
    auto target = archiveFromReadOut();
    QVERIFY(target);
    const auto before = contents(target->iniParser());
    QSignalSpy changed(target.get(), &ScopeElementArchive::scopeElementChanged);
    QSignalSpy several(target.get(), &ScopeElementArchive::scopeElementsChanged);
    // The name differs, but the value shape (data type, decimals, kind) agrees.
    QVERIFY(target->applyViewRecipe(channelViewRecipe("Fremd"), true));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(several.count(), 1);
    const IniSection* channel = target->channelSection(0);
    QCOMPARE(channel->value("ViewVerticalOffset"), QByteArray("1.5"));
    QCOMPARE(channel->value("ViewScalingFactor"), QByteArray("5"));
    QCOMPARE(channel->value("ViewOff"), QByteArray("1"));
    QCOMPARE(channel->value("ViewGround"), QByteArray("1"));
    QCOMPARE(channel->value("ViewInverted"), QByteArray("1"));
    QCOMPARE(channel->value("BinaryView"), QByteArray("1"));
    QCOMPARE(channel->value("BinaryViewMask"), QByteArray("255"));
    QCOMPARE(channel->value("BinaryScalingFactorBackup"), QByteArray("2"));
    // Colour, identity, sliders and scene stay.
    QCOMPARE(channel->value("Color"), QByteArray("#ff0000"));
    QCOMPARE(channel->value("Name"), QByteArray("Drehzahl"));
    QCOMPARE(contents(target->iniParser())["ScopeShot"], before["ScopeShot"]);
    QVERIFY(!target->sceneSection());
}

void tst_ScopeShotArchive::applyRecipeKeepsSceneKeysOfTarget()
{
    auto target = archiveFromReadOut();
    QVERIFY(target);
    IniSection* scene = target->iniParser()->findOrCreateSection("ScopeScene");
    scene->setValue("ScopeStripe_0", "1");
    scene->setValue("OnlyHere", "x");
    QVERIFY(target->applyViewRecipe(channelViewRecipe("Drehzahl"), false));
    QCOMPARE(target->sceneSection()->value("ScopeStripe_0"), QByteArray("3"));
    QCOMPARE(target->sceneSection()->value("MarkerPosition_0A"), QByteArray("42"));
    QCOMPARE(target->sceneSection()->value("OnlyHere"), QByteArray("x"));
    QCOMPARE(target->shotSection()->value("ViewSliderLeft"), QByteArray("-7"));
    QCOMPARE(target->shotSection()->value("ViewSliderRight"), QByteArray("8"));

    // Without a "ScopeShot" section in the target the sliders are not copied.
    std::unique_ptr<ScopeShotArchive> bare(ScopeShotArchive::create(nullptr));
    QVERIFY(bare->fromByteArray("[Archive]\nID=1\n[ScopeChannel_0]\nSourceType=1\nParameterValueAddress=4096\n"
                                "SignalLabelName=n_act\nPhysicalAddress=8192\nPhysicalDatatype=3\n"
                                "Name=Drehzahl\nMeasure=rpm\nDecimalPlaces=1\nParameterKind=0\n"));
    QVERIFY(bare->applyViewRecipe(channelViewRecipe("Drehzahl"), false));
    QVERIFY(!bare->shotSection());
    QCOMPARE(bare->sceneSection()->value("ScopeStripe_0"), QByteArray("3"));
}

QTEST_MAIN(tst_ScopeShotArchive)
#include "tst_scopeshotarchive.moc"
