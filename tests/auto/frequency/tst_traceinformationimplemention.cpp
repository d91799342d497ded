// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetrace.h"
#include "traceinformationimplemention.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QtTest>

class tst_TraceInformationImplemention : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void readsTheTrace();
    void coversInterval_data();
    void coversInterval();
    void colorChangeOfTraceIsAnnounced();
    void setColorCachesAnnouncesAndSetsTrace();
    void offChangeOfTraceIsAnnounced();
    void setOffSwitchesTraceAnimated();
    void vanishedTraceAnswersLikeAnEmptyOne();
    void slotsInvocableByName();

private:
    QObject* m_shot = nullptr;
    ScopeTrace* m_trace = nullptr;
};

void tst_TraceInformationImplemention::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_TraceInformationImplemention::init()
{
    m_shot = new QObject;
    m_trace = new ScopeTrace(m_shot, 0);
    m_trace->setName(QStringLiteral("Drehzahl"));
    m_trace->setSamples({1.0, 2.0, 3.0, 4.0, 5.0, 6.0});
    m_trace->setTimeBase(10);
    m_trace->setTriggerIndex(2);
    m_trace->setColor(QColor(Qt::red));
}

void tst_TraceInformationImplemention::cleanup()
{
    delete m_shot;
    m_shot = nullptr;
    m_trace = nullptr;
}

void tst_TraceInformationImplemention::readsTheTrace()
{
    TraceInformationImplemention info(m_trace);
    QCOMPARE(info.scopeTrace(), m_trace);
    QCOMPARE(info.samples(), QVector<double>({1.0, 2.0, 3.0, 4.0, 5.0, 6.0}));
    QCOMPARE(info.name(), QStringLiteral("Drehzahl"));
    QCOMPARE(info.color(), QColor(Qt::red));
    QCOMPARE(info.property("color").value<QColor>(), QColor(Qt::red));
    QCOMPARE(info.samplingTime(), 10.0);
    QCOMPARE(info.startTime(), qint64(-2000));
    QVERIFY(!info.isOff());
}

void tst_TraceInformationImplemention::coversInterval_data()
{
    QTest::addColumn<qint64>("a");
    QTest::addColumn<qint64>("b");
    QTest::addColumn<bool>("covered");
    // Samples lie at −2000 … 3000 ns.
    QTest::newRow("whole recording") << qint64(-2000) << qint64(3000) << true;
    QTest::newRow("inside") << qint64(-1000) << qint64(1000) << true;
    QTest::newRow("A before the first sample") << qint64(-2001) << qint64(1000) << false;
    QTest::newRow("B after the last sample") << qint64(0) << qint64(3001) << false;
    QTest::newRow("B before A") << qint64(1000) << qint64(0) << true;
}

void tst_TraceInformationImplemention::coversInterval()
{
    QFETCH(qint64, a);
    QFETCH(qint64, b);
    QFETCH(bool, covered);
    TraceInformationImplemention info(m_trace);
    QCOMPARE(info.covers(a, b), covered);
}

void tst_TraceInformationImplemention::colorChangeOfTraceIsAnnounced()
{
    TraceInformationImplemention info(m_trace);
    QSignalSpy colorSpy(&info, &TraceInformation::colorChanged);
    QSignalSpy visibilitySpy(&info, &TraceInformation::visibilityChanged);
    m_trace->setColor(QColor(Qt::green));
    QCOMPARE(colorSpy.count(), 1);
    QCOMPARE(colorSpy.first().first().value<QColor>(), QColor(Qt::green));
    QCOMPARE(visibilitySpy.count(), 0);
    m_trace->setSamples({7.0}); // not a colour or visibility change
    QCOMPARE(colorSpy.count(), 1);
}

void tst_TraceInformationImplemention::setColorCachesAnnouncesAndSetsTrace()
{
    TraceInformationImplemention info(m_trace);
    QSignalSpy colorSpy(&info, &TraceInformation::colorChanged);
    info.setColor(QColor(Qt::cyan));
    QCOMPARE(m_trace->color(), QColor(Qt::cyan));
    QCOMPARE(colorSpy.count(), 1); // the trace's own change is not announced twice
    info.setColor(QColor(Qt::cyan));
    QCOMPARE(colorSpy.count(), 1);
}

void tst_TraceInformationImplemention::offChangeOfTraceIsAnnounced()
{
    TraceInformationImplemention info(m_trace);
    QSignalSpy visibilitySpy(&info, &TraceInformation::visibilityChanged);
    m_trace->setOff(true, false);
    QCOMPARE(visibilitySpy.count(), 1);
    QVERIFY(info.isOff());
    m_trace->setOff(false, true); // animated: frames change nothing more
    QCOMPARE(visibilitySpy.count(), 2);
    QTRY_COMPARE(m_trace->offAlphaFactor(), 1.0);
    QCOMPARE(visibilitySpy.count(), 2);
}

void tst_TraceInformationImplemention::setOffSwitchesTraceAnimated()
{
    TraceInformationImplemention info(m_trace);
    QSignalSpy visibilitySpy(&info, &TraceInformation::visibilityChanged);
    info.setOff(true);
    QVERIFY(m_trace->isOff());
    QCOMPARE(visibilitySpy.count(), 1);
    QVERIFY(m_trace->offAlphaFactor() > 0.0); // the animation has just begun
    QTRY_COMPARE(m_trace->offAlphaFactor(), 0.0);
    info.setOff(true);
    QCOMPARE(visibilitySpy.count(), 1);
}

void tst_TraceInformationImplemention::vanishedTraceAnswersLikeAnEmptyOne()
{
    TraceInformationImplemention info(m_trace);
    m_trace->setOff(true, false);
    delete m_trace;
    m_trace = nullptr;
    QCOMPARE(info.scopeTrace(), nullptr);
    QVERIFY(info.samples().isEmpty());
    QVERIFY(info.name().isEmpty());
    QVERIFY(!info.color().isValid());
    QCOMPARE(info.samplingTime(), 0.0);
    QCOMPARE(info.startTime(), qint64(0));
    QVERIFY(!info.isOff());
    info.setOff(true);
    QSignalSpy colorSpy(&info, &TraceInformation::colorChanged);
    info.setColor(QColor(Qt::blue));
    QCOMPARE(colorSpy.count(), 1);
    TraceInformationImplemention none(nullptr);
    QVERIFY(none.samples().isEmpty());
    QVERIFY(!none.covers(1, 2));
}

void tst_TraceInformationImplemention::slotsInvocableByName()
{
    TraceInformationImplemention info(m_trace);
    QString name;
    QVERIFY(QMetaObject::invokeMethod(&info, "name", Q_RETURN_ARG(QString, name)));
    QCOMPARE(name, QStringLiteral("Drehzahl"));
    const QMetaObject* meta = &TraceInformation::staticMetaObject;
    QCOMPARE(meta->method(meta->methodOffset()).name(), QByteArray("visibilityChanged"));
    QCOMPARE(meta->method(meta->methodOffset() + 1).name(), QByteArray("colorChanged"));
    QCOMPARE(meta->method(meta->methodOffset() + 2).name(), QByteArray("samples"));
    QCOMPARE(meta->method(meta->methodOffset() + 9).name(), QByteArray("setOff"));
}

QTEST_MAIN(tst_TraceInformationImplemention)
#include "tst_traceinformationimplemention.moc"
