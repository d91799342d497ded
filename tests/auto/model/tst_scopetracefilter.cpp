// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracefilter.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <memory>

namespace {

// A loaded shot with channels 0 … count − 1.
struct LoadedShot
{
    explicit LoadedShot(int count)
        : archive(ScopeShotArchive::create(nullptr))
    {
        QByteArray text = "[Archive]\r\nID=x\r\n\r\n[ScopeShot]\r\nTimeBase=1\r\n\r\n[Data]\r\nChannelCount="
            + QByteArray::number(count) + "\r\nFrameCount=1\r\nTriggerIndex=0\r\nData_0=0";
        for (int c = 0; c < count; ++c)
            text += ";" + QByteArray::number(c);
        text += "\r\n";
        for (int c = 0; c < count; ++c)
            text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\n";
        archive->fromByteArray(text);
        shot.setArchive(archive.get());
        shot.load();
    }
    ScopeTrace* trace(int number) const { return shot.trace(number); }
    std::unique_ptr<ScopeShotArchive> archive;
    ScopeShot shot;
};

} // namespace

class tst_ScopeTraceFilter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void empty();
    void addTwice();
    void addNull();
    void removeUnlisted();
    void setShot();
    void setShotWithoutTraces();
    void removeBreaksCompleteShot();
    void twoShots();
    void partOfShot();
    void queuedSignals();
};

void tst_ScopeTraceFilter::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_ScopeTraceFilter::empty()
{
    ScopeTraceFilter filter;
    QVERIFY(filter.traces().isEmpty());
    QCOMPARE(filter.completeShot(), nullptr);
}

void tst_ScopeTraceFilter::addTwice()
{
    LoadedShot shot(2);
    ScopeTraceFilter filter;
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    filter.addTrace(shot.trace(1));
    filter.addTrace(shot.trace(1));
    QCOMPARE(filter.traces(), QList<ScopeTrace*>{shot.trace(1)});
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
}

void tst_ScopeTraceFilter::addNull()
{
    ScopeTraceFilter filter;
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    filter.addTrace(nullptr);
    QVERIFY(filter.traces().isEmpty());
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
}

void tst_ScopeTraceFilter::removeUnlisted()
{
    LoadedShot shot(2);
    ScopeTraceFilter filter;
    filter.addTrace(shot.trace(0));
    QCoreApplication::processEvents();
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    filter.removeTrace(shot.trace(1));
    filter.removeTrace(nullptr);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 0);
    QCOMPARE(filter.traces().size(), 1);
}

void tst_ScopeTraceFilter::setShot()
{
    LoadedShot shot(3);
    ScopeTraceFilter filter;
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    filter.setShot(&shot.shot);
    QCOMPARE(filter.traces(), (QList<ScopeTrace*>{shot.trace(0), shot.trace(1), shot.trace(2)}));
    QCOMPARE(filter.completeShot(), &shot.shot);
    QTRY_COMPARE(spy.count(), 1);
    QCoreApplication::processEvents();
    QCOMPARE(spy.count(), 1);
}

void tst_ScopeTraceFilter::setShotWithoutTraces()
{
    ScopeShot empty;
    ScopeTraceFilter filter;
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    filter.setShot(&empty);
    QVERIFY(filter.traces().isEmpty());
    QCOMPARE(filter.completeShot(), nullptr);
    QTRY_COMPARE(spy.count(), 1);
}

void tst_ScopeTraceFilter::removeBreaksCompleteShot()
{
    LoadedShot shot(3);
    ScopeTraceFilter filter;
    filter.setShot(&shot.shot);
    QCOMPARE(filter.completeShot(), &shot.shot);
    filter.removeTrace(shot.trace(1));
    QCOMPARE(filter.traces(), (QList<ScopeTrace*>{shot.trace(0), shot.trace(2)}));
    QCOMPARE(filter.completeShot(), nullptr);
    // Adding it back, at the end, makes the shot complete again.
    filter.addTrace(shot.trace(1));
    QCOMPARE(filter.traces(), (QList<ScopeTrace*>{shot.trace(0), shot.trace(2), shot.trace(1)}));
    QCOMPARE(filter.completeShot(), &shot.shot);
}

void tst_ScopeTraceFilter::twoShots()
{
    LoadedShot first(1);
    LoadedShot second(1);
    ScopeTraceFilter filter;
    filter.addTrace(first.trace(0));
    QCOMPARE(filter.completeShot(), &first.shot);
    filter.addTrace(second.trace(0));
    QCOMPARE(filter.completeShot(), nullptr);
    filter.setShot(&second.shot);
    QCOMPARE(filter.completeShot(), &second.shot);
}

void tst_ScopeTraceFilter::partOfShot()
{
    LoadedShot shot(2);
    ScopeTraceFilter filter;
    filter.addTrace(shot.trace(0));
    QCOMPARE(filter.completeShot(), nullptr);
}

void tst_ScopeTraceFilter::queuedSignals()
{
    LoadedShot shot(3);
    ScopeTraceFilter filter;
    QSignalSpy spy(&filter, &ScopeTraceFilter::scopeTracesChanged);
    QList<int> sizesSeen;
    connect(&filter, &ScopeTraceFilter::scopeTracesChanged, this,
            [&] { sizesSeen.append(int(filter.traces().size())); });
    filter.addTrace(shot.trace(0));
    filter.addTrace(shot.trace(1));
    filter.removeTrace(shot.trace(0));
    filter.addTrace(shot.trace(2));
    // Nothing arrives within the pass; all four arrive after it, each
    // seeing the final list.
    QCOMPARE(spy.count(), 0);
    QTRY_COMPARE(spy.count(), 4);
    QCOMPARE(sizesSeen, (QList<int>{2, 2, 2, 2}));
}

QTEST_MAIN(tst_ScopeTraceFilter)
#include "tst_scopetracefilter.moc"
