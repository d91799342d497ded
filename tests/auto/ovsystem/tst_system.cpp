// SPDX-License-Identifier: GPL-3.0-or-later
#include "system.h"

#include <QtCore/QSysInfo>
#include <QtTest/QtTest>

#include <pwd.h>
#include <unistd.h>

class tst_System : public QObject
{
    Q_OBJECT

private:
    QHash<QByteArray, QByteArray> m_saved;
    QSet<QByteArray> m_wasSet;

    static QString passwdName()
    {
        const struct passwd* entry = ::getpwuid(::getuid());
        return entry && entry->pw_name ? QString::fromLocal8Bit(entry->pw_name) : QString();
    }

private Q_SLOTS:
    void initTestCase()
    {
        for (const QByteArray& name : { QByteArrayLiteral("USER"), QByteArrayLiteral("LOGNAME"),
                                        QByteArrayLiteral("USERNAME") }) {
            if (qEnvironmentVariableIsSet(name.constData())) {
                m_wasSet.insert(name);
                m_saved.insert(name, qgetenv(name.constData()));
            }
        }
    }

    void cleanup()
    {
        for (const QByteArray& name : { QByteArrayLiteral("USER"), QByteArrayLiteral("LOGNAME"),
                                        QByteArrayLiteral("USERNAME") }) {
            if (m_wasSet.contains(name))
                qputenv(name.constData(), m_saved.value(name));
            else
                qunsetenv(name.constData());
        }
    }

    void instanceIsOne()
    {
        QVERIFY(System::instance());
        QCOMPARE(System::instance(), System::instance());
    }

    void hostNameIsTheMachines()
    {
        const QString host = System::instance()->hostName();
        QCOMPARE(host, QSysInfo::machineHostName());
        QVERIFY(!host.isEmpty());
    }

    void userNameFromEnvironment_data()
    {
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("logname");
        QTest::addColumn<QByteArray>("username");
        QTest::addColumn<QString>("expected");
        QTest::newRow("USER first") << QByteArray("anna") << QByteArray("bert") << QByteArray("carl")
                                    << QStringLiteral("anna");
        QTest::newRow("then LOGNAME") << QByteArray() << QByteArray("bert") << QByteArray("carl")
                                      << QStringLiteral("bert");
        QTest::newRow("then USERNAME") << QByteArray() << QByteArray() << QByteArray("carl")
                                       << QStringLiteral("carl");
        QTest::newRow("empty counts as unset") << QByteArray("") << QByteArray("bert") << QByteArray()
                                               << QStringLiteral("bert");
        QTest::newRow("non-ASCII") << QByteArray("j\xc3\xbcrgen") << QByteArray() << QByteArray()
                                   << QStringLiteral("j\u00fcrgen");
    }

    void userNameFromEnvironment()
    {
        QFETCH(QByteArray, user);
        QFETCH(QByteArray, logname);
        QFETCH(QByteArray, username);
        QFETCH(QString, expected);
        // A null array means "not set"; an empty one is set to the empty text.
        auto apply = [](const char* name, const QByteArray& value) {
            if (value.isNull())
                qunsetenv(name);
            else
                qputenv(name, value);
        };
        apply("USER", user);
        apply("LOGNAME", logname);
        apply("USERNAME", username);
        QCOMPARE(System::instance()->userName(), expected);
    }

    void userNameFallsBackToPasswd()
    {
        qunsetenv("USER");
        qunsetenv("LOGNAME");
        qunsetenv("USERNAME");
        QCOMPARE(System::instance()->userName(), passwdName());
    }
};

QTEST_GUILESS_MAIN(tst_System)
#include "tst_system.moc"
