// SPDX-License-Identifier: GPL-3.0-or-later
#include "iniparser.h"
#include "samplegenerator.h"
#include "scopearchivekeys.h"
#include "scopecompositionarchive.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "splitmix64.h"

#include <QtCore/QStandardPaths>
#include <QtTest/QTest>

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

struct LoadedShot
{
    std::unique_ptr<ScopeShotArchive> archive;
    std::unique_ptr<ScopeShot> shot;

    QVector<double> samples(int channel) const { return shot->trace(channel)->samples(); }
};

LoadedShot load(const QByteArray& text)
{
    LoadedShot loaded;
    loaded.archive.reset(ScopeShotArchive::create(nullptr));
    if (!loaded.archive->fromByteArray(text))
        return {};
    loaded.shot = std::make_unique<ScopeShot>();
    loaded.shot->setArchive(loaded.archive.get());
    if (!loaded.shot->load())
        return {};
    return loaded;
}

// Sample index of a time in seconds after the trigger (4000 frames, trigger 800).
int at(double seconds)
{
    return 800 + int(std::lround(seconds / 62.5e-6));
}

double maximum(const QVector<double>& values, int from, int to)
{
    return *std::max_element(values.begin() + from, values.begin() + to);
}

double minimum(const QVector<double>& values, int from, int to)
{
    return *std::min_element(values.begin() + from, values.begin() + to);
}

} // namespace

class tst_SampleGenerator : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void randomSourceIsFixed();
    void readOutIsNotAnArchive();
    void channelDescriptions();
    void stepResponse();
    void softStepOvershootsLess();
    void statusWordFollowsState();
    void phaseCurrentsAreBalanced();
    void brakingEndsInOvervoltageFault();
    void deterministic();
    void frameAndChannelCounts_data();
    void frameAndChannelCounts();
    void compositionOfTheSteps();
};

void tst_SampleGenerator::initTestCase()
{
    QStandardPaths::setTestModeEnabled(true);
}

void tst_SampleGenerator::randomSourceIsFixed()
{
    SplitMix64 first(42);
    SplitMix64 second(42);
    for (int i = 0; i < 100; ++i)
        QCOMPARE(first.next(), second.next());
    // The published first output of splitmix64 for seed 0.
    SplitMix64 zero(0);
    QCOMPARE(zero.next(), quint64(0xE220A8397B1DCDAFull));

    SplitMix64 noise(7);
    double sum = 0.0;
    double squares = 0.0;
    const int count = 200000;
    for (int i = 0; i < count; ++i) {
        const double x = noise.gaussian(2.0);
        sum += x;
        squares += x * x;
    }
    QVERIFY(std::abs(sum / count) < 0.03);
    QVERIFY(std::abs(std::sqrt(squares / count) - 2.0) < 0.03);
}

void tst_SampleGenerator::readOutIsNotAnArchive()
{
    const SampleGenerator generator;
    for (auto recording : {SampleGenerator::Recording::Step, SampleGenerator::Recording::Braking}) {
        const QByteArray readOut = generator.readOut(recording);
        KlIniParser::IniParser document;
        document.setIniText(readOut);
        QVERIFY(!document.section(ScopeArchiveKeys::ArchiveSection));
        QVERIFY(document.section(ScopeArchiveKeys::DataSection));
        QVERIFY(document.section(ScopeArchiveKeys::TriggerLogicSection));
        QVERIFY(document.section("Trigger_0"));
        QCOMPARE(document.section("Trigger_0")->value("SignalName"), QByteArray("n_soll"));
        std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
        QVERIFY(archive->createFromReadOut(readOut));
    }
}

void tst_SampleGenerator::channelDescriptions()
{
    const LoadedShot step = load(SampleGenerator().shotArchive(SampleGenerator::Recording::Step));
    QVERIFY(step.shot);
    QCOMPARE(step.shot->timeBase(), 625);
    QCOMPARE(step.shot->channelNumbers(), (QList<int>{0, 1, 2, 3, 4, 5, 6}));
    struct Expected
    {
        const char* name;
        const char* unit;
        int datatype;
        unsigned decimals;
        int kind;
    };
    const Expected expected[] = {
        {"Drehzahlsollwert", "1/min", 7, 1, 0}, {"Drehzahl-Istwert", "1/min", 7, 1, 0},
        {"Wirkstrom", "A", 7, 2, 0},           {"Drehmoment", "Nm", 7, 2, 0},
        {"Zwischenkreisspannung", "V", 7, 1, 0}, {"Statuswort", "", 10, 0, 4},
        {"Antriebszustand", "", 9, 0, 1},
    };
    for (int c = 0; c < 7; ++c) {
        const ScopeTrace* trace = step.shot->trace(c);
        QCOMPARE(trace->name(), QString::fromLatin1(expected[c].name));
        QCOMPARE(trace->measure(), QString::fromLatin1(expected[c].unit));
        QCOMPARE(int(trace->physicalDatatype()), expected[c].datatype);
        QCOMPARE(trace->decimalPlaces(), expected[c].decimals);
        QCOMPARE(trace->parameterKind(), expected[c].kind);
        QCOMPARE(trace->triggerIndex(), 800);
    }
    const QMap<qint32, QString> choices = step.shot->trace(6)->choiceMap();
    QCOMPARE(choices.value(0), QStringLiteral("Bereit"));
    QCOMPARE(choices.value(1), QStringLiteral("Hochlauf"));
    QCOMPARE(choices.value(2), QStringLiteral("Betrieb"));
    QCOMPARE(choices.value(3), QStringLiteral("St\u00f6rung"));
    QCOMPARE(step.shot->trace(6)->valueText(2.0, true), QStringLiteral("2:Betrieb"));
    // Trigger at about 20 % of the recording.
    QCOMPARE(step.shot->startTime(), qint64(-50000000));
}

void tst_SampleGenerator::stepResponse()
{
    const LoadedShot step = load(SampleGenerator().shotArchive(SampleGenerator::Recording::Step));
    QVERIFY(step.shot);
    const QVector<double> setpoint = step.samples(0);
    const QVector<double> speed = step.samples(1);
    const QVector<double> current = step.samples(2);
    const QVector<double> torque = step.samples(3);
    const QVector<double> voltage = step.samples(4);

    // Setpoint steps at the trigger.
    QCOMPARE(setpoint.at(at(-0.001)), 0.0);
    QCOMPARE(setpoint.at(at(0.0)), 1500.0);
    // Standing still before, overshoot after, settled at the end.
    QVERIFY(std::abs(speed.at(at(-0.01))) < 5.0);
    const double peak = maximum(speed, at(0.0), at(0.1));
    QVERIFY2(peak > 1550.0 && peak < 1800.0, qPrintable(QString::number(peak)));
    QVERIFY(std::abs(speed.at(at(0.19)) - 1500.0) < 5.0);
    // The run-up is held at the torque limit: current = torque / 1.5 Nm/A.
    QVERIFY(std::abs(torque.at(at(0.005)) - 30.0) < 0.5);
    QVERIFY(std::abs(current.at(at(0.005)) - 20.0) < 0.6);
    // Braking torque while the overshoot comes back.
    QVERIFY(minimum(torque, at(0.03), at(0.08)) < -0.5);
    // The DC link dips while the drive accelerates and recovers.
    const double idle = voltage.at(at(-0.01));
    QVERIFY(idle > 560.0 && idle < 575.0);
    QVERIFY(minimum(voltage, at(0.0), at(0.03)) < idle - 10.0);
    QVERIFY(std::abs(voltage.at(at(0.19)) - idle) < 8.0);
    // Current ripple and noise: never two equal neighbours in a row of ten.
    int equal = 0;
    for (int i = at(0.1); i < at(0.1) + 10; ++i)
        equal += current.at(i) == current.at(i + 1) ? 1 : 0;
    QVERIFY(equal < 3);
}

void tst_SampleGenerator::softStepOvershootsLess()
{
    const SampleGenerator generator;
    const LoadedShot stiff = load(generator.shotArchive(SampleGenerator::Recording::Step));
    const LoadedShot soft = load(generator.shotArchive(SampleGenerator::Recording::SoftStep));
    QVERIFY(stiff.shot && soft.shot);
    const double stiffPeak = maximum(stiff.samples(1), at(0.0), at(0.19));
    const double softPeak = maximum(soft.samples(1), at(0.0), at(0.19));
    QVERIFY(softPeak < stiffPeak);
    QVERIFY(softPeak > 1500.0);
    // The soft setting is slower to reach the setpoint.
    const auto firstAbove = [](const QVector<double>& speed, double level) {
        for (int i = at(0.0); i < speed.size(); ++i) {
            if (speed.at(i) >= level)
                return i;
        }
        return int(speed.size());
    };
    QVERIFY(firstAbove(soft.samples(1), 1490.0) > firstAbove(stiff.samples(1), 1490.0));
    // Same channels, so the view of one applies to the other.
    QVERIFY(soft.archive->applyViewRecipe(stiff.archive->viewRecipe(), false));
}

void tst_SampleGenerator::statusWordFollowsState()
{
    const LoadedShot step = load(SampleGenerator().shotArchive(SampleGenerator::Recording::Step));
    const QVector<double> status = step.samples(5);
    const QVector<double> state = step.samples(6);
    QCOMPARE(state.at(at(-0.01)), 0.0); // Bereit
    QCOMPARE(state.at(at(0.001)), 1.0); // Hochlauf
    QCOMPARE(state.at(at(0.19)), 2.0); // Betrieb
    const int before = int(status.at(at(-0.01)));
    const int runUp = int(status.at(at(0.001)));
    const int running = int(status.at(at(0.19)));
    QCOMPARE(before & 0x0004, 0); // operation not enabled
    QVERIFY(before & 0x1000); // speed zero
    QVERIFY(runUp & 0x0004);
    QVERIFY(runUp & 0x0800); // torque limit active
    QVERIFY(running & 0x0400); // target reached
    QCOMPARE(running & 0x0800, 0);
    QCOMPARE(step.shot->trace(5)->valueText(status.at(at(0.19)), true), QStringLiteral("0000 0100 0001 0111 bin"));
}

void tst_SampleGenerator::phaseCurrentsAreBalanced()
{
    const LoadedShot phases = load(SampleGenerator().shotArchive(SampleGenerator::Recording::PhaseCurrents));
    QVERIFY(phases.shot);
    const QVector<double> u = phases.samples(0);
    const QVector<double> v = phases.samples(1);
    const QVector<double> w = phases.samples(2);
    double largestSum = 0.0;
    double peak = 0.0;
    for (int i = 0; i < u.size(); ++i) {
        largestSum = std::max(largestSum, std::abs(u.at(i) + v.at(i) + w.at(i)));
        peak = std::max(peak, std::abs(u.at(i)));
    }
    QVERIFY(largestSum < 0.5);
    QVERIFY(peak > 11.5 && peak < 13.5);
    // V lags U by a third of the 20 ms period.
    const int third = int(std::lround(0.02 / 3.0 / 62.5e-6));
    QVERIFY(std::abs(u.at(1000) - v.at(1000 + third)) < 0.5);
}

void tst_SampleGenerator::brakingEndsInOvervoltageFault()
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    QVERIFY(archive->createFromReadOut(SampleGenerator().readOut(SampleGenerator::Recording::Braking)));
    ScopeShot shot;
    shot.setArchive(archive.get());
    QVERIFY(shot.load());
    const QVector<double> speed = shot.trace(1)->samples();
    const QVector<double> voltage = shot.trace(4)->samples();
    const QVector<double> state = shot.trace(6)->samples();
    QVERIFY(std::abs(speed.at(at(-0.01)) - 1500.0) < 5.0);
    QCOMPARE(state.at(at(-0.01)), 2.0);
    QCOMPARE(state.last(), 3.0); // Störung
    QVERIFY(maximum(voltage, at(0.0), int(voltage.size())) > 755.0);
    // After the fault the motor coasts down to standstill.
    int fault = 0;
    while (fault < state.size() && state.at(fault) != 3.0)
        ++fault;
    QVERIFY(fault > at(0.0) && fault < at(0.05));
    QVERIFY(speed.at(fault + 80) > 50.0 && speed.at(fault + 80) < speed.at(fault));
    QVERIFY(std::abs(speed.last()) < 5.0);
    QVERIFY(int(shot.trace(5)->samples().last()) & 0x0008);
}

void tst_SampleGenerator::deterministic()
{
    const SampleGenerator first;
    const SampleGenerator second;
    for (auto recording : {SampleGenerator::Recording::Step, SampleGenerator::Recording::SoftStep,
                           SampleGenerator::Recording::PhaseCurrents}) {
        const QByteArray text = first.shotArchive(recording);
        QVERIFY(!text.isEmpty());
        QCOMPARE(second.shotArchive(recording), text);
    }
    QCOMPARE(second.readOut(SampleGenerator::Recording::Braking), first.readOut(SampleGenerator::Recording::Braking));
    QCOMPARE(second.composition(), first.composition());
}

void tst_SampleGenerator::frameAndChannelCounts_data()
{
    QTest::addColumn<qint64>("frames");
    QTest::addColumn<int>("channels");
    QTest::addColumn<int>("expectedChannels");
    QTest::newRow("two frames") << qint64(2) << 0 << 7;
    QTest::newRow("one channel") << qint64(500) << 1 << 1;
    QTest::newRow("extra channels") << qint64(1000) << 12 << 12;
    QTest::newRow("below the minimum") << qint64(-5) << 0 << 7;
}

void tst_SampleGenerator::frameAndChannelCounts()
{
    QFETCH(qint64, frames);
    QFETCH(int, channels);
    QFETCH(int, expectedChannels);
    const LoadedShot step = load(SampleGenerator(frames, channels).shotArchive(SampleGenerator::Recording::Step));
    QVERIFY(step.shot);
    const qint64 expectedFrames = std::max<qint64>(frames, SampleGenerator::MinimumFrames);
    QCOMPARE(step.shot->channelNumbers().size(), expectedChannels);
    QCOMPARE(step.samples(0).size(), expectedFrames);
    QCOMPARE(step.shot->trace(0)->triggerIndex(), int(expectedFrames / 5));
    if (expectedChannels > 7)
        QCOMPARE(step.shot->trace(expectedChannels - 1)->name(), QStringLiteral("Messkanal %1").arg(expectedChannels));
}

void tst_SampleGenerator::compositionOfTheSteps()
{
    const SampleGenerator generator;
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    QVERIFY(composition->fromByteArray(generator.composition()));
    QCOMPARE(composition->name(), QStringLiteral("sprungvergleich"));
    QVERIFY(!composition->isCommentEmpty());
    QCOMPARE(composition->timestamp().toUTC(), SampleGenerator::readOutTime(SampleGenerator::Recording::Braking).addSecs(300));
    const LoadedShot stiff = load(generator.shotArchive(SampleGenerator::Recording::Step));
    const LoadedShot soft = load(generator.shotArchive(SampleGenerator::Recording::SoftStep));
    QCOMPARE(composition->usedShotIdentifiers(), (QList<QByteArray>{stiff.archive->id(), soft.archive->id()}));
    QVERIFY(stiff.archive->id() != soft.archive->id());
}

QTEST_MAIN(tst_SampleGenerator)
#include "tst_samplegenerator.moc"
