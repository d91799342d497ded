// SPDX-License-Identifier: GPL-3.0-or-later
#include "datatypeprovider.h"
#include "simpletype.h"

#include <QtTest/QtTest>

class tst_DatatypeProvider : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void instanceIsOne()
    {
        QVERIFY(DatatypeProvider::instance());
        QCOMPARE(DatatypeProvider::instance(), DatatypeProvider::instance());
    }

    void knownTypes_data()
    {
        QTest::addColumn<quint32>("number");
        QTest::addColumn<QString>("name");
        QTest::addColumn<quint32>("bytes");
        QTest::addColumn<int>("kind");
        QTest::newRow("1") << 1u << QStringLiteral("INT8") << 1u << 0;
        QTest::newRow("2") << 2u << QStringLiteral("INT16") << 2u << 0;
        QTest::newRow("3") << 3u << QStringLiteral("INT32") << 4u << 0;
        QTest::newRow("4") << 4u << QStringLiteral("UINT32") << 4u << 1;
        QTest::newRow("5") << 5u << QStringLiteral("INT64") << 8u << 0;
        QTest::newRow("6") << 6u << QStringLiteral("UINT64") << 8u << 1;
        QTest::newRow("7") << 7u << QStringLiteral("FLOAT32") << 4u << 2;
        QTest::newRow("8") << 8u << QStringLiteral("FLOAT64") << 8u << 2;
        QTest::newRow("9") << 9u << QStringLiteral("UINT8") << 1u << 1;
        QTest::newRow("10") << 10u << QStringLiteral("UINT16") << 2u << 1;
    }

    void knownTypes()
    {
        QFETCH(quint32, number);
        QFETCH(QString, name);
        QFETCH(quint32, bytes);
        QFETCH(int, kind);
        const DatatypeProvider* provider = DatatypeProvider::instance();
        QCOMPARE(provider->byteSize(number), bytes);
        const SimpleType* type = provider->simpleType(number);
        QVERIFY(type);
        QCOMPARE(quint32(type->number()), number);
        QCOMPARE(type->name(), name);
        QCOMPARE(type->byteSize(), bytes);
        QCOMPARE(int(type->kind()), kind);
        // The same object every time: callers may keep the pointer.
        QCOMPARE(provider->simpleType(number), type);
    }

    void kindEnumerators()
    {
        QCOMPARE(int(eSimpleTypeKindSigned), 0);
        QCOMPARE(int(eSimpleTypeKindUnsigned), 1);
        QCOMPARE(int(eSimpleTypeKindFractional), 2);
        QCOMPARE(DatatypeProvider::instance()->simpleType(8)->kind(), eSimpleTypeKindFractional);
    }

    void unknownTypes_data()
    {
        QTest::addColumn<quint32>("number");
        QTest::newRow("0") << 0u;
        QTest::newRow("11") << 11u;
        QTest::newRow("255") << 255u;
        QTest::newRow("256") << 256u;
        QTest::newRow("257 (1 in the low byte)") << 257u;
        QTest::newRow("65537") << 65537u;
        QTest::newRow("max") << std::numeric_limits<quint32>::max();
    }

    void unknownTypes()
    {
        QFETCH(quint32, number);
        QCOMPARE(DatatypeProvider::instance()->byteSize(number), 0u);
        QCOMPARE(DatatypeProvider::instance()->simpleType(number), nullptr);
    }
};

QTEST_GUILESS_MAIN(tst_DatatypeProvider)
#include "tst_datatypeprovider.moc"
