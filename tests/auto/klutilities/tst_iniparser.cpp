// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"

#include <QtCore/QRandomGenerator>
#include <QtTest/QTest>

#include <malloc.h>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

namespace {

const QByteArray Bom("\xEF\xBB\xBF");

// A byte array of a literal with embedded NUL bytes, all of it.
template<size_t N>
QByteArray bytes(const char (&literal)[N])
{
    return QByteArray(literal, qsizetype(N - 1));
}

QByteArray rewrite(const QByteArray& text)
{
    IniParser parser;
    parser.setIniText(text);
    return parser.getIniTextWithoutByteOrderMarker();
}

size_t allocatedBytes()
{
    return mallinfo2().uordblks;
}

} // namespace

class tst_IniParser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void parseAndWrite_data();
    void parseAndWrite();
    void roundTrip_data();
    void roundTrip();
    void randomRoundTrip();
    void byteOrderMark();
    void lineEnds();
    void commentsAreNotKept();
    void duplicateSections();
    void duplicateKeys();
    void sectionLookupNeverCreates();
    void findOrCreateSection();
    void removeSection();
    void removeManySections();
    void keysInOrder();
    void setValue();
    void setValueNormalises_data();
    void setValueNormalises();
    void setValueRejectsUnwritableKeys_data();
    void setValueRejectsUnwritableKeys();
    void removeKey();
    void removeManyKeys();
    void largeSection();
    void valueViewPointsIntoText();
    void valueViewOfSetValue();
    void rawDataIsCopied();
    void setSameKeyRepeatedlyKeepsMemory();
    void indexAccessOutOfRange();
    void clearAndReload();
    void badInput_data();
    void badInput();
    void longLine();
    void manySections();
};

void tst_IniParser::parseAndWrite_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("output");

    QTest::newRow("empty") << QByteArray() << QByteArray();
    QTest::newRow("one section") << QByteArray("[A]\nx=1\ny=2\n") << QByteArray("[A]\r\nx=1\r\ny=2\r\n");
    QTest::newRow("two sections") << QByteArray("[A]\nx=1\n[B]\ny=2")
                                  << QByteArray("[A]\r\nx=1\r\n\r\n[B]\r\ny=2\r\n");
    QTest::newRow("empty section") << QByteArray("[A]\n[B]\nk=v\n")
                                   << QByteArray("[A]\r\n\r\n[B]\r\nk=v\r\n");
    QTest::newRow("blanks trimmed") << QByteArray("  [ A ]  \n\t key \t=  value with blanks \t\n")
                                    << QByteArray("[A]\r\nkey=value with blanks\r\n");
    QTest::newRow("empty value") << QByteArray("[A]\nk=\nl=   \n") << QByteArray("[A]\r\nk=\r\nl=\r\n");
    QTest::newRow("value holds =") << QByteArray("[A]\nk=a=b==c\n") << QByteArray("[A]\r\nk=a=b==c\r\n");
    QTest::newRow("keys before a section") << QByteArray("x=1\n[A]\ny=2\n") << QByteArray("[A]\r\ny=2\r\n");
    QTest::newRow("line without =") << QByteArray("[A]\nno equals here\ny=2\n") << QByteArray("[A]\r\ny=2\r\n");
    QTest::newRow("blank lines") << QByteArray("\n\n[A]\n\n  \n\ny=2\n\n") << QByteArray("[A]\r\ny=2\r\n");
    QTest::newRow("comment lines") << QByteArray(";c\n[A]\n  ; k=v\ny=2 ; not a comment\n")
                                   << QByteArray("[A]\r\ny=2 ; not a comment\r\n");
    QTest::newRow("empty key dropped") << QByteArray("[A]\n=v\n  = w\nk=1\n") << QByteArray("[A]\r\nk=1\r\n");
    QTest::newRow("name with ]") << QByteArray("[a]b]\nk=1\n") << QByteArray("[a]b]\r\nk=1\r\n");
    QTest::newRow("name with [") << QByteArray("[[a]]\nk=1\n") << QByteArray("[[a]]\r\nk=1\r\n");
    QTest::newRow("empty name") << QByteArray("[]\nk=1\n") << QByteArray("[]\r\nk=1\r\n");
    QTest::newRow("text after the last ]") << QByteArray("[A]\nk=1\n[B] ; note\nl=2\n[C]]x\nm=3\n")
                                           << QByteArray("[A]\r\nk=1\r\n\r\n[B]\r\nl=2\r\n\r\n[C]]\r\nm=3\r\n");
    QTest::newRow("unterminated [") << QByteArray("[A]\nk=1\n[B\nl=2\n[C]\nm=3\n")
                                    << QByteArray("[A]\r\nk=1\r\n\r\n[C]\r\nm=3\r\n");
    QTest::newRow("key starting with [") << QByteArray("[A]\n[k=1\nl=2\n") << QByteArray("[A]\r\n");
    QTest::newRow("inner CR kept") << QByteArray("[A]\nk=a\rb\n") << QByteArray("[A]\r\nk=a\rb\r\n");
    QTest::newRow("trailing CRs trimmed") << QByteArray("[A]\nk=v\r\r\r\n") << QByteArray("[A]\r\nk=v\r\n");
    QTest::newRow("lone CR is no line end") << QByteArray("[A]\rk=v\n") << QByteArray("[A]\r\n");
    QTest::newRow("NUL bytes") << bytes("[A\0B]\nk\0=v\0w\n") << bytes("[A\0B]\r\nk\0=v\0w\r\n");
}

void tst_IniParser::parseAndWrite()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, output);
    IniParser parser;
    parser.setIniText(input);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), output);
    QCOMPARE(parser.getIniText(), Bom + output);
}

void tst_IniParser::roundTrip_data()
{
    QTest::addColumn<QByteArray>("input");

    QTest::newRow("plain") << QByteArray("[A]\nk=v\n");
    QTest::newRow("name with ]") << QByteArray("[a]b]\nk=v\n");
    QTest::newRow("name only ]") << QByteArray("[]]\nk=v\n");
    QTest::newRow("name [") << QByteArray("[[]\nk=v\n");
    QTest::newRow("text after ]") << QByteArray("[a]b] c\nk=v\n[]x]y\n[ ] ]\n");
    QTest::newRow("unterminated [") << QByteArray("[\nk=v\n[A\n");
    QTest::newRow("only =") << QByteArray("[A]\n=\n==\n=x=\n");
    QTest::newRow("key ;") << QByteArray("[A]\n;k=v\nk;=v\n");
    QTest::newRow("key [") << QByteArray("[A]\n[k=v\nk[=v\n");
    QTest::newRow("trailing CR") << QByteArray("[A]\r\nk=v\r\r\n\r\r\n");
    QTest::newRow("inner CR") << QByteArray("[A\rB]\r\nk\rk=v\rv\r\n");
    QTest::newRow("BOM twice") << QByteArray("\xEF\xBB\xBF\xEF\xBB\xBF[A]\nk=v\n");
    QTest::newRow("BOM inside") << QByteArray("[A]\n\xEF\xBB\xBFk=v\n");
    QTest::newRow("invalid UTF-8") << QByteArray("[\xC3\x28]\n\xFF\xFE=\x80\x81\n");
    QTest::newRow("NUL") << bytes("[\0]\n\0=\0\n");
    QTest::newRow("form feed and vertical tab") << QByteArray("[A]\n\fk\v=\tv\f\n");
    QTest::newRow("blank name") << QByteArray("[   ]\nk=v\n");
    QTest::newRow("duplicates") << QByteArray("[A]\nk=1\n[B]\nk=2\n[A]\nk=3\nl=4\n[B]\n");
}

void tst_IniParser::roundTrip()
{
    QFETCH(QByteArray, input);
    const QByteArray once = rewrite(input);
    const QByteArray twice = rewrite(once);
    QCOMPARE(twice, once);
    QCOMPARE(rewrite(twice), once);

    IniParser withBom;
    withBom.setIniText(input);
    IniParser again;
    again.setIniText(withBom.getIniText());
    QCOMPARE(again.getIniText(), withBom.getIniText());
}

void tst_IniParser::randomRoundTrip()
{
    // Documents made of the characters that matter to the format.
    static const char alphabet[] = {'[', ']', '=', ';', '\r', '\n', ' ', '\t', 'a', 'b', '\0', '\xFF', '\xEF', '\xBB', '\xBF'};
    QRandomGenerator random(4711);
    for (int round = 0; round < 2000; ++round) {
        QByteArray input;
        const int length = random.bounded(200);
        for (int i = 0; i < length; ++i)
            input.append(alphabet[random.bounded(int(sizeof(alphabet)))]);
        const QByteArray once = rewrite(input);
        const QByteArray twice = rewrite(once);
        if (twice != once)
            QFAIL(qPrintable(QStringLiteral("round trip differs for %1").arg(QString::fromLatin1(input.toHex()))));
    }
}

void tst_IniParser::byteOrderMark()
{
    IniParser parser;
    parser.setIniText(Bom + "[A]\r\nk=v\r\n");
    QCOMPARE(parser.sectionNames(), QList<QByteArray>{"A"});
    QCOMPARE(parser.getIniText(), Bom + "[A]\r\nk=v\r\n");
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=v\r\n"));

    parser.setIniText("[A]\r\nk=v\r\n");
    QCOMPARE(parser.getIniText(), Bom + "[A]\r\nk=v\r\n");

    // Only a leading mark is one; a second one is part of the first line.
    parser.setIniText(Bom + Bom + "[A]\r\nk=v\r\n");
    QCOMPARE(parser.sectionCount(), 0);

    parser.clear();
    QCOMPARE(parser.getIniText(), Bom);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray());
}

void tst_IniParser::lineEnds()
{
    const QByteArray expected("[A]\r\nk=v\r\nl=w\r\n\r\n[B]\r\nm=x\r\n");
    QCOMPARE(rewrite("[A]\nk=v\nl=w\n[B]\nm=x\n"), expected);
    QCOMPARE(rewrite("[A]\r\nk=v\r\nl=w\r\n[B]\r\nm=x\r\n"), expected);
    QCOMPARE(rewrite("[A]\r\nk=v\nl=w\r\n[B]\nm=x"), expected);
    QCOMPARE(rewrite("[A]\r\nk=v\nl=w\r\n\r\n[B]\nm=x\r"), expected);

    IniParser parser;
    parser.setIniText("[A]\r\nk=v\r\n");
    QCOMPARE(parser.section("A")->valueView("k"), QByteArrayView("v"));
}

void tst_IniParser::commentsAreNotKept()
{
    const QByteArray typeLine(";type=\"ovx-scope-shot-archive\" version=\"0\"\r\n\r\n");
    IniParser parser;
    parser.setIniText(typeLine + "[Archive]\r\nID=1\r\n");
    const QByteArray written = parser.getIniTextWithoutByteOrderMarker();
    QCOMPARE(written, QByteArray("[Archive]\r\nID=1\r\n"));
    // A host prepends the type line again: it still appears once.
    parser.setIniText(typeLine + written);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), written);
}

void tst_IniParser::duplicateSections()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n[B]\nx=1\n[A]\nl=2\n[C]\n[B]\ny=2\n");
    QCOMPARE(parser.sectionNames(), (QList<QByteArray>{"A", "B", "C"}));
    QCOMPARE(parser.sectionCount(), 3);
    QCOMPARE(parser.section("A")->keys(), (QList<QByteArray>{"k", "l"}));
    QCOMPARE(parser.section("B")->keys(), (QList<QByteArray>{"x", "y"}));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(),
             QByteArray("[A]\r\nk=1\r\nl=2\r\n\r\n[B]\r\nx=1\r\ny=2\r\n\r\n[C]\r\n"));
}

void tst_IniParser::duplicateKeys()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\nl=2\nk=3\nm=4\nl=5\n");
    IniSection* a = parser.section("A");
    QVERIFY(a);
    QCOMPARE(a->keys(), (QList<QByteArray>{"k", "l", "m"}));
    QCOMPARE(a->value("k"), QByteArray("3"));
    QCOMPARE(a->value("l"), QByteArray("5"));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=3\r\nl=5\r\nm=4\r\n"));

    // The same with an indexed section (more than a handful of keys).
    QByteArray text("[Big]\n");
    for (int i = 0; i < 50; ++i)
        text += "Key_" + QByteArray::number(i) + "=" + QByteArray::number(i) + "\n";
    text += "Key_7=last\n";
    parser.setIniText(text);
    IniSection* big = parser.section("Big");
    QCOMPARE(big->count(), 50);
    QCOMPARE(big->keyAt(7), QByteArrayView("Key_7"));
    QCOMPARE(big->valueAt(7), QByteArrayView("last"));
}

void tst_IniParser::sectionLookupNeverCreates()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n");
    QCOMPARE(parser.section("B"), nullptr);
    QCOMPARE(parser.section(""), nullptr);
    QCOMPARE(parser.section("a"), nullptr); // names are case-sensitive
    QCOMPARE(parser.sectionCount(), 1);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=1\r\n"));
    QVERIFY(parser.section("A"));
    QVERIFY(parser.section(" A "));
}

void tst_IniParser::findOrCreateSection()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n[B]\n");
    IniSection* a = parser.section("A");
    QCOMPARE(parser.findOrCreateSection("A"), a);
    IniSection* c = parser.findOrCreateSection("C");
    QVERIFY(c);
    QVERIFY(c != a);
    QCOMPARE(c->name(), QByteArray("C"));
    QCOMPARE(parser.section("C"), c);
    QCOMPARE(parser.findOrCreateSection("C"), c);
    QCOMPARE(parser.sectionNames(), (QList<QByteArray>{"A", "B", "C"}));
    c->setValue("x", "y");
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=1\r\n\r\n[B]\r\n\r\n[C]\r\nx=y\r\n"));

    // Names are stored as a parse of the written text would give them back.
    IniSection* spaced = parser.findOrCreateSection("  D  ");
    QCOMPARE(spaced->name(), QByteArray("D"));
    QCOMPARE(parser.section("D"), spaced);
    IniSection* broken = parser.findOrCreateSection("E\nF");
    QCOMPARE(broken->name(), QByteArray("E F"));
    const QByteArray once = parser.getIniTextWithoutByteOrderMarker();
    QCOMPARE(rewrite(once), once);
}

void tst_IniParser::removeSection()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n[B]\nl=2\n[C]\nm=3\n");
    QVERIFY(parser.removeSection("B"));
    QVERIFY(!parser.removeSection("B"));
    QVERIFY(!parser.removeSection("X"));
    QCOMPARE(parser.section("B"), nullptr);
    QCOMPARE(parser.sectionCount(), 2);
    QCOMPARE(parser.sectionNames(), (QList<QByteArray>{"A", "C"}));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=1\r\n\r\n[C]\r\nm=3\r\n"));
    // A section created again goes to the end.
    parser.findOrCreateSection("B")->setValue("n", "4");
    QCOMPARE(parser.sectionNames(), (QList<QByteArray>{"A", "C", "B"}));
    QCOMPARE(parser.section("A")->value("k"), QByteArray("1"));
}

void tst_IniParser::removeManySections()
{
    IniParser parser;
    QByteArray text;
    for (int i = 0; i < 1000; ++i)
        text += "[S" + QByteArray::number(i) + "]\nk=" + QByteArray::number(i) + "\n";
    parser.setIniText(text);
    for (int i = 0; i < 1000; i += 2)
        QVERIFY(parser.removeSection("S" + QByteArray::number(i)));
    QCOMPARE(parser.sectionCount(), 500);
    const QList<QByteArray> names = parser.sectionNames();
    QCOMPARE(names.size(), 500);
    for (int i = 0; i < 500; ++i) {
        QCOMPARE(names.at(i), "S" + QByteArray::number(2 * i + 1));
        IniSection* section = parser.section(names.at(i));
        QVERIFY(section);
        QCOMPARE(section->value("k"), QByteArray::number(2 * i + 1));
    }
    QCOMPARE(parser.section("S0"), nullptr);
}

void tst_IniParser::keysInOrder()
{
    IniParser parser;
    parser.setIniText("[A]\nz=1\na=2\nm=3\n");
    IniSection* a = parser.section("A");
    QCOMPARE(a->keys(), (QList<QByteArray>{"z", "a", "m"}));
    QCOMPARE(a->count(), 3);
    a->setValue("b", "4");
    a->setValue("a", "5");
    QCOMPARE(a->keys(), (QList<QByteArray>{"z", "a", "m", "b"}));
    for (qsizetype i = 0; i < a->count(); ++i)
        QCOMPARE(a->keyAt(i).toByteArray(), a->keys().at(i));
    QCOMPARE(a->valueAt(1), QByteArrayView("5"));
    QCOMPARE(a->valueAt(3), QByteArrayView("4"));
}

void tst_IniParser::setValue()
{
    IniParser parser;
    IniSection* s = parser.findOrCreateSection("S");
    QVERIFY(!s->contains("k"));
    QCOMPARE(s->value("k"), QByteArray());
    QVERIFY(s->valueView("k").isEmpty());
    s->setValue("k", "v");
    QVERIFY(s->contains("k"));
    QCOMPARE(s->value("k"), QByteArray("v"));
    s->setValue("k", "");
    QVERIFY(s->contains("k"));
    QCOMPARE(s->value("k"), QByteArray());
    s->setValue("k", "w");
    QCOMPARE(s->count(), 1);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[S]\r\nk=w\r\n"));

    // Setting a value from its own view.
    s->setValue("l", "abcdef");
    s->setValue("l", s->valueView("l").sliced(2));
    QCOMPARE(s->value("l"), QByteArray("cdef"));
    s->setValue("m", s->valueView("l"));
    QCOMPARE(s->value("m"), QByteArray("cdef"));
}

void tst_IniParser::setValueNormalises_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QByteArray>("value");
    QTest::addColumn<QByteArray>("storedKey");
    QTest::addColumn<QByteArray>("storedValue");

    QTest::newRow("plain") << QByteArray("k") << QByteArray("v") << QByteArray("k") << QByteArray("v");
    QTest::newRow("blanks") << QByteArray(" k\t") << QByteArray("  v w \r") << QByteArray("k") << QByteArray("v w");
    QTest::newRow("line breaks") << QByteArray("k\nl") << QByteArray("a\r\nb\n") << QByteArray("k l")
                                 << QByteArray("a  b");
    QTest::newRow("value with = and ;") << QByteArray("k") << QByteArray(";x=[y]") << QByteArray("k")
                                        << QByteArray(";x=[y]");
    QTest::newRow("NUL") << bytes("k\0") << bytes("\0") << bytes("k\0") << bytes("\0");
    // A lone CR ends no line when parsed, so it stays where it is.
    QTest::newRow("lone CR kept") << QByteArray("k\rl") << QByteArray("a\rb") << QByteArray("k\rl")
                                  << QByteArray("a\rb");
    QTest::newRow("CRs before LF") << QByteArray("k") << QByteArray("a\r\r\nb\rc\n\rd") << QByteArray("k")
                                   << QByteArray("a   b\rc \rd");
    QTest::newRow("CRs at the ends") << QByteArray("\rk\r") << QByteArray("\r\ra\rb\r") << QByteArray("k")
                                     << QByteArray("a\rb");
    QTest::newRow("only line breaks") << QByteArray("k") << QByteArray("\r\n\r\r\n") << QByteArray("k")
                                      << QByteArray();
}

void tst_IniParser::setValueNormalises()
{
    QFETCH(QByteArray, key);
    QFETCH(QByteArray, value);
    QFETCH(QByteArray, storedKey);
    QFETCH(QByteArray, storedValue);

    IniParser parser;
    IniSection* s = parser.findOrCreateSection("S");
    s->setValue(key, value);
    QCOMPARE(s->keys(), QList<QByteArray>{storedKey});
    QCOMPARE(s->value(storedKey), storedValue);

    // What was set is what a reload gives back.
    IniParser reloaded;
    reloaded.setIniText(parser.getIniText());
    QCOMPARE(reloaded.getIniText(), parser.getIniText());
    QCOMPARE(reloaded.section("S")->keys(), QList<QByteArray>{storedKey});
    QCOMPARE(reloaded.section("S")->value(storedKey), storedValue);
}

void tst_IniParser::setValueRejectsUnwritableKeys_data()
{
    QTest::addColumn<QByteArray>("key");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("blank") << QByteArray(" \t");
    QTest::newRow("=") << QByteArray("=");
    QTest::newRow("holds =") << QByteArray("a=b");
    QTest::newRow("comment") << QByteArray(";a");
    QTest::newRow("blank comment") << QByteArray("  ;a");
    QTest::newRow("section") << QByteArray("[a]");
}

void tst_IniParser::setValueRejectsUnwritableKeys()
{
    QFETCH(QByteArray, key);
    IniParser parser;
    IniSection* s = parser.findOrCreateSection("S");
    s->setValue(key, "v");
    QCOMPARE(s->count(), 0);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[S]\r\n"));
}

void tst_IniParser::removeKey()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\nl=2\nm=3\n");
    IniSection* a = parser.section("A");
    QVERIFY(a->remove("l"));
    QVERIFY(!a->remove("l"));
    QVERIFY(!a->remove("x"));
    QVERIFY(!a->contains("l"));
    QCOMPARE(a->count(), 2);
    QCOMPARE(a->keys(), (QList<QByteArray>{"k", "m"}));
    QCOMPARE(a->keyAt(1), QByteArrayView("m"));
    QCOMPARE(a->valueAt(1), QByteArrayView("3"));
    a->setValue("l", "4");
    QCOMPARE(a->keys(), (QList<QByteArray>{"k", "m", "l"}));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[A]\r\nk=1\r\nm=3\r\nl=4\r\n"));
}

void tst_IniParser::removeManyKeys()
{
    IniParser parser;
    IniSection* s = parser.findOrCreateSection("S");
    for (int i = 0; i < 1000; ++i)
        s->setValue("k" + QByteArray::number(i), QByteArray::number(i));
    for (int i = 0; i < 1000; ++i) {
        if (i % 3)
            QVERIFY(s->remove("k" + QByteArray::number(i)));
    }
    QCOMPARE(s->count(), 334);
    for (int i = 0; i < 1000; ++i)
        QCOMPARE(s->contains("k" + QByteArray::number(i)), i % 3 == 0);
    for (qsizetype i = 0; i < s->count(); ++i) {
        QCOMPARE(s->keyAt(i).toByteArray(), "k" + QByteArray::number(3 * i));
        QCOMPARE(s->valueAt(i).toByteArray(), QByteArray::number(3 * i));
    }
    for (int i = 0; i < 1000; ++i)
        s->remove("k" + QByteArray::number(i));
    QCOMPARE(s->count(), 0);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), QByteArray("[S]\r\n"));
}

void tst_IniParser::largeSection()
{
    const int count = 100000;
    QByteArray text("[Data]\r\n");
    for (int i = 0; i < count; ++i)
        text += "Data_" + QByteArray::number(i) + "=" + QByteArray::number(i * 3) + ";1.5;-2\r\n";
    IniParser parser;
    parser.setIniText(text);
    IniSection* data = parser.section("Data");
    QVERIFY(data);
    QCOMPARE(data->count(), count);
    for (int i = 0; i < count; i += 997)
        QCOMPARE(data->valueView("Data_" + QByteArray::number(i)).toByteArray(), QByteArray::number(i * 3) + ";1.5;-2");
    QVERIFY(!data->contains("Data_" + QByteArray::number(count)));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), text);
}

void tst_IniParser::valueViewPointsIntoText()
{
    const QByteArray text("[A]\r\nk=value\r\n");
    IniParser parser;
    parser.setIniText(text);
    const QByteArrayView view = parser.section("A")->valueView("k");
    QCOMPARE(view, QByteArrayView("value"));
    // No copy: the view is a slice of the (shared) loaded bytes.
    QVERIFY(view.data() >= text.constData() && view.data() < text.constData() + text.size());
    QCOMPARE(parser.section("A")->keyAt(0).data(), text.constData() + 5);

    // The view stays valid while other keys change and the caller's copy goes.
    {
        QByteArray copy = text;
        parser.setIniText(copy);
    }
    const QByteArrayView kept = parser.section("A")->valueView("k");
    parser.section("A")->setValue("other", "x");
    parser.findOrCreateSection("B")->setValue("y", "z");
    QCOMPARE(kept, QByteArrayView("value"));
}

void tst_IniParser::rawDataIsCopied()
{
    QByteArray buffer("[A]\r\nk=value\r\n");
    IniParser parser;
    parser.setIniText(QByteArray::fromRawData(buffer.constData(), buffer.size()));
    const QByteArrayView view = parser.section("A")->valueView("k");
    QVERIFY(view.data() < buffer.constData() || view.data() >= buffer.constData() + buffer.size());
    buffer.fill('x');
    buffer.clear();
    QCOMPARE(parser.section("A")->valueView("k"), QByteArrayView("value"));
}

void tst_IniParser::valueViewOfSetValue()
{
    IniParser parser;
    parser.setIniText("[A]\r\nk=1\r\n");
    IniSection* a = parser.section("A");
    a->setValue("k", "two");
    const QByteArrayView view = a->valueView("k");
    QCOMPARE(view, QByteArrayView("two"));
    for (int i = 0; i < 100; ++i)
        a->setValue("key" + QByteArray::number(i), "v");
    // Other keys moving the entry table do not move this value.
    QCOMPARE(view, QByteArrayView("two"));
    QCOMPARE(a->valueView("k").data(), view.data());
}

void tst_IniParser::setSameKeyRepeatedlyKeepsMemory()
{
    IniParser parser;
    parser.setIniText("[A]\r\nk=1\r\n");
    IniSection* a = parser.section("A");
    const QByteArray big(4096, 'x');
    a->setValue("k", big + "0");
    a->setValue("new", big + "0");
    const size_t before = allocatedBytes();
    for (int i = 0; i < 10000; ++i) {
        a->setValue("k", big + QByteArray::number(i));
        a->setValue("new", big + QByteArray::number(i));
    }
    const size_t after = allocatedBytes();
    // 10000 × 2 × 4 KiB would be 80 MB; allow a few values of slack.
    QVERIFY2(after < before + 64 * 1024,
             qPrintable(QStringLiteral("grew from %1 to %2 bytes").arg(before).arg(after)));
    QCOMPARE(a->count(), 2);
    QCOMPARE(a->value("k"), big + "9999");
}

void tst_IniParser::indexAccessOutOfRange()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n");
    IniSection* a = parser.section("A");
    QVERIFY(a->keyAt(-1).isEmpty());
    QVERIFY(a->keyAt(1).isEmpty());
    QVERIFY(a->valueAt(5).isEmpty());
    QCOMPARE(a->keyAt(0), QByteArrayView("k"));
}

void tst_IniParser::clearAndReload()
{
    IniParser parser;
    parser.setIniText("[A]\nk=1\n");
    parser.clear();
    QCOMPARE(parser.sectionCount(), 0);
    QCOMPARE(parser.section("A"), nullptr);
    QVERIFY(parser.sectionNames().isEmpty());
    parser.setIniText("[B]\nk=1\n");
    parser.setIniText("[C]\nk=2\n");
    QCOMPARE(parser.sectionNames(), QList<QByteArray>{"C"});
}

void tst_IniParser::badInput_data()
{
    QTest::addColumn<QByteArray>("input");
    QTest::addColumn<QByteArray>("output");

    QTest::newRow("NUL bytes only") << QByteArray(1000, '\0') << QByteArray();
    QTest::newRow("NUL bytes in a document") << bytes("[A]\n\0\0\0\nk=1\0\n\0[B]\n")
                                             << bytes("[A]\r\nk=1\0\r\n");
    QTest::newRow("unterminated [ at the end") << QByteArray("[A]\nk=1\n[") << QByteArray("[A]\r\nk=1\r\n");
    QTest::newRow("unterminated [ alone") << QByteArray("[") << QByteArray();
    QTest::newRow("line of only =") << QByteArray("[A]\n=\n") << QByteArray("[A]\r\n");
    QTest::newRow("only =") << QByteArray("=") << QByteArray();
    QTest::newRow("invalid UTF-8") << QByteArray("[\xC3\x28]\n\xFF=\xFE\xFD\n")
                                   << QByteArray("[\xC3\x28]\r\n\xFF=\xFE\xFD\r\n");
    QTest::newRow("only line ends") << QByteArray("\r\n\r\n\n\r") << QByteArray();
    QTest::newRow("only BOM") << Bom << QByteArray();
    QTest::newRow("truncated BOM") << QByteArray("\xEF\xBB") << QByteArray();
}

void tst_IniParser::badInput()
{
    QFETCH(QByteArray, input);
    QFETCH(QByteArray, output);
    IniParser parser;
    parser.setIniText(input);
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), output);
}

void tst_IniParser::longLine()
{
    const qsizetype length = 10 * 1024 * 1024;
    QByteArray value(length, 'v');
    IniParser parser;
    parser.setIniText("[A]\nk=" + value + "\nl=2\n");
    QCOMPARE(parser.section("A")->valueView("k").size(), length);
    QCOMPARE(parser.section("A")->value("l"), QByteArray("2"));

    // A 10 MB line without "=" or line end.
    parser.setIniText("[A]\n" + QByteArray(length, 'x'));
    QCOMPARE(parser.section("A")->count(), 0);
    // A 10 MB unterminated section line.
    parser.setIniText("[" + QByteArray(length, 'x') + "\nk=1\n");
    QCOMPARE(parser.sectionCount(), 0);
    // A 10 MB section name.
    parser.setIniText("[" + QByteArray(length, 'x') + "]\nk=1\n");
    QCOMPARE(parser.sectionCount(), 1);
    QCOMPARE(parser.sectionNames().constFirst().size(), length);
}

void tst_IniParser::manySections()
{
    const int count = 100000;
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += "[S" + QByteArray::number(i) + "]\r\nk=" + QByteArray::number(i) + "\r\n\r\n";
    text.chop(2);
    IniParser parser;
    parser.setIniText(text);
    QCOMPARE(parser.sectionCount(), count);
    QCOMPARE(parser.section("S99999")->value("k"), QByteArray("99999"));
    QCOMPARE(parser.sectionNames().at(12345), QByteArray("S12345"));
    QCOMPARE(parser.getIniTextWithoutByteOrderMarker(), text);

    // 100,000 section lines without keys, and the same name repeated.
    parser.setIniText(QByteArray("[A]\n").repeated(count));
    QCOMPARE(parser.sectionCount(), 1);
}

QTEST_GUILESS_MAIN(tst_IniParser)
#include "tst_iniparser.moc"
