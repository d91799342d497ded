// SPDX-License-Identifier: GPL-3.0-or-later
#include "ovversion.h"

#include <QtTest/QtTest>

class tst_OvVersion : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void productVersionTextNamesProductAndVersion()
    {
        QCOMPARE(productVersionText(), QStringLiteral("OvScope " EXPECTED_VERSION));
        QCOMPARE(productVersionNumber(), QStringLiteral(EXPECTED_VERSION));
    }
};

QTEST_GUILESS_MAIN(tst_OvVersion)
#include "tst_ovversion.moc"
