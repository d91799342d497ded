// SPDX-License-Identifier: GPL-3.0-or-later
#include "samplegenerator.h"

#include "cliio.h"
#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopearchivekeys.h"
#include "scopecompositionarchive.h"
#include "scopeshotarchive.h"
#include "splitmix64.h"

#include <QtCore/QDir>
#include <QtCore/QLocale>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <memory>
#include <vector>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

namespace {

constexpr double Pi = 3.141592653589793;
constexpr double SamplePeriod = SampleGenerator::TimeBaseMicroseconds * 1e-6;
constexpr double RadPerSecondPerRpm = 2.0 * Pi / 60.0;

// Drive data type numbers.
constexpr quint8 TypeUint8 = 9;
constexpr quint8 TypeUint16 = 10;
constexpr quint8 TypeFloat32 = 7;

// Display kinds.
constexpr int KindNumber = 0;
constexpr int KindChoice = 1;
constexpr int KindBinary = 4;

// Drive states as the choice map names them.
constexpr int StateReady = 0;
constexpr int StateRunUp = 1;
constexpr int StateRunning = 2;
constexpr int StateFault = 3;

// Status word bits.
constexpr int StatusReadyToSwitchOn = 0x0001;
constexpr int StatusSwitchedOn = 0x0002;
constexpr int StatusOperationEnabled = 0x0004;
constexpr int StatusFault = 0x0008;
constexpr int StatusVoltageEnabled = 0x0010;
constexpr int StatusTargetReached = 0x0400;
constexpr int StatusLimitActive = 0x0800;
constexpr int StatusSpeedZero = 0x1000;

struct ChannelDescription
{
    QString name;
    QString unit;
    QByteArray label;
    quint32 address = 0;
    quint8 datatype = TypeFloat32;
    int decimals = 2;
    int kind = KindNumber;
    QString choiceMap;
};

/* One recording as a frame source: the channels it offers and, frame by
   frame, their values. */
class FrameSource
{
public:
    virtual ~FrameSource() = default;
    virtual QList<ChannelDescription> channels() const = 0;
    /* Values of the frame at time t (seconds from the trigger), frames in order. */
    virtual void frame(double t, double* values) = 0;
};

/* A speed-controlled servo drive: PI speed controller with torque limit and
   anti-windup, a current loop as a first-order lag, a rigid mechanical load,
   and a DC link fed by a rectifier through its impedance, without a braking
   chopper (energy fed back charges the capacitor). */
class DriveModel : public FrameSource
{
public:
    struct Parameters
    {
        double inertia = 0.004; // kg m²
        double naturalFrequency = 90.0; // rad/s of the speed loop
        double damping = 0.6;
        double torqueLimit = 30.0; // Nm
        double loadTorque = 1.5; // Nm, friction against the motion
        double viscousFriction = 0.002; // Nm per rad/s
        double torqueConstant = 1.5; // Nm/A
        double currentLoopTime = 0.0008; // s
        int polePairs = 4;
        double statorResistance = 0.4; // Ω, copper losses
        double capacitance = 470e-6; // F
        double rectifierResistance = 2.0; // Ω
        double supplyVoltage = 565.0; // V, mean of the rectified mains
        double supplyRipple = 6.0; // V, 300 Hz ripple of the six-pulse rectifier
        double tripVoltage = 1e9; // V, overvoltage fault threshold
        double speedBefore = 0.0; // 1/min before the trigger
        double speedAfter = 1500.0; // 1/min from the trigger on
        bool enabledBefore = false;
        int transitionState = StateRunUp;
        std::uint64_t seed = 1;
    };

    explicit DriveModel(const Parameters& parameters)
        : m_p(parameters)
        , m_random(parameters.seed)
    {
        m_kp = 2.0 * m_p.damping * m_p.naturalFrequency * m_p.inertia;
        m_ki = m_p.naturalFrequency * m_p.naturalFrequency * m_p.inertia;
        m_omega = m_p.speedBefore * RadPerSecondPerRpm;
        if (m_p.enabledBefore) {
            // Steady state: the integrator holds the friction.
            m_integral = friction(m_omega);
            m_torque = m_integral;
        }
        // An idle DC link sits just below the peak of the rectified mains.
        m_voltage = m_p.supplyVoltage + m_p.supplyRipple - 1.0;
        const double power = m_torque * m_omega + lossPower(m_torque);
        m_voltage -= power / m_voltage * m_p.rectifierResistance;
    }

    QList<ChannelDescription> channels() const override
    {
        return {
            {QStringLiteral("Drehzahlsollwert"), QStringLiteral("1/min"), "n_soll", 0x2040, TypeFloat32, 1, KindNumber, {}},
            {QStringLiteral("Drehzahl-Istwert"), QStringLiteral("1/min"), "n_ist", 0x2041, TypeFloat32, 1, KindNumber, {}},
            {QStringLiteral("Wirkstrom"), QStringLiteral("A"), "i_q", 0x2050, TypeFloat32, 2, KindNumber, {}},
            {QStringLiteral("Drehmoment"), QStringLiteral("Nm"), "m_ist", 0x2052, TypeFloat32, 2, KindNumber, {}},
            {QStringLiteral("Zwischenkreisspannung"), QStringLiteral("V"), "u_zk", 0x2060, TypeFloat32, 1, KindNumber, {}},
            {QStringLiteral("Statuswort"), QString(), "zsw", 0x2001, TypeUint16, 0, KindBinary, {}},
            {QStringLiteral("Antriebszustand"), QString(), "zustand", 0x2002, TypeUint8, 0, KindChoice,
             QStringLiteral("0:Bereit,1:Hochlauf,2:Betrieb,3:St\u00f6rung")},
        };
    }

    void frame(double t, double* values) override
    {
        const bool triggered = t >= 0.0;
        const bool enabled = !m_fault && (triggered || m_p.enabledBefore);
        const double setpoint = triggered ? m_p.speedAfter : m_p.speedBefore;
        const double speed = m_omega / RadPerSecondPerRpm;
        const double tolerance = std::max(1.0, 0.01 * std::abs(m_p.speedAfter - m_p.speedBefore));
        const bool inBand = std::abs(speed - setpoint) < tolerance;

        // Outputs of the present state, then one integration step.
        int state = StateReady;
        if (m_fault) {
            state = StateFault;
        } else if (enabled) {
            if (triggered && !m_settled && !inBand)
                state = m_p.transitionState;
            else
                state = StateRunning;
            if (triggered && inBand)
                m_settled = true;
        }

        int status = StatusVoltageEnabled;
        if (!m_fault)
            status |= StatusReadyToSwitchOn;
        if (enabled)
            status |= StatusSwitchedOn | StatusOperationEnabled;
        if (m_fault)
            status |= StatusFault;
        if (enabled && inBand)
            status |= StatusTargetReached;
        if (enabled && m_limited)
            status |= StatusLimitActive;
        if (std::abs(speed) < 10.0)
            status |= StatusSpeedZero;

        const double current = m_torque / m_p.torqueConstant;
        const double ripple = enabled ? 0.12 * std::sin(6.0 * m_electricalAngle) : 0.0;
        values[0] = setpoint;
        values[1] = speed + m_random.gaussian(0.6);
        values[2] = current + ripple + m_random.gaussian(0.05);
        values[3] = m_torque + m_random.gaussian(0.03);
        values[4] = m_voltage + m_random.gaussian(0.25);
        values[5] = status;
        values[6] = state;

        integrate(t, enabled, setpoint);
    }

private:
    double friction(double omega) const
    {
        const double sign = omega > 1e-9 ? 1.0 : (omega < -1e-9 ? -1.0 : 0.0);
        return m_p.loadTorque * sign + m_p.viscousFriction * omega;
    }

    double lossPower(double torque) const
    {
        const double current = torque / m_p.torqueConstant;
        return 1.5 * m_p.statorResistance * current * current;
    }

    void integrate(double t, bool enabled, double setpointRpm)
    {
        const double dt = SamplePeriod;
        double command = 0.0;
        m_limited = false;
        if (enabled) {
            const double error = setpointRpm * RadPerSecondPerRpm - m_omega;
            const double unlimited = m_kp * error + m_integral;
            command = std::clamp(unlimited, -m_p.torqueLimit, m_p.torqueLimit);
            m_limited = command != unlimited;
            // Anti-windup: the integrator stops while the limit holds the command.
            if (!m_limited || (unlimited > 0) != (error > 0))
                m_integral += m_ki * error * dt;
        } else {
            m_integral = 0.0;
        }
        m_torque = enabled ? m_torque + (command - m_torque) * dt / m_p.currentLoopTime : 0.0;

        // A motor standing still stays still unless the torque beats static friction.
        double acceleration = (m_torque - friction(m_omega)) / m_p.inertia;
        if (std::abs(m_omega) < 1e-9 && std::abs(m_torque) <= m_p.loadTorque)
            acceleration = 0.0;
        const double omega = m_omega + acceleration * dt;
        m_omega = (m_omega > 0 && omega < 0) || (m_omega < 0 && omega > 0) ? 0.0 : omega;
        m_electricalAngle = std::fmod(m_electricalAngle + m_p.polePairs * m_omega * dt, 2.0 * Pi);

        const double supply = m_p.supplyVoltage + m_p.supplyRipple * std::cos(2.0 * Pi * 300.0 * t);
        const double rectifierCurrent = std::max(0.0, (supply - m_voltage) / m_p.rectifierResistance);
        const double power = m_torque * m_omega + lossPower(m_torque);
        const double driveCurrent = power / m_voltage;
        m_voltage += (rectifierCurrent - driveCurrent - m_voltage / 20000.0) * dt / m_p.capacitance;

        if (!m_fault && m_voltage > m_p.tripVoltage) {
            // Overvoltage: pulses off, the motor coasts.
            m_fault = true;
            m_torque = 0.0;
            m_integral = 0.0;
        }
    }

    Parameters m_p;
    SplitMix64 m_random;
    double m_kp = 0.0;
    double m_ki = 0.0;
    double m_omega = 0.0;
    double m_integral = 0.0;
    double m_torque = 0.0;
    double m_voltage = 0.0;
    double m_electricalAngle = 0.0;
    bool m_limited = false;
    bool m_settled = false;
    bool m_fault = false;
};

/* Phase currents of a motor running at constant speed from an inverter:
   a fundamental with the 5th (negative sequence) and 7th (positive
   sequence) harmonics of the dead time, sensor offset and noise. */
class PhaseCurrentModel : public FrameSource
{
public:
    explicit PhaseCurrentModel(std::uint64_t seed)
        : m_random(seed)
    {
    }

    QList<ChannelDescription> channels() const override
    {
        return {
            {QStringLiteral("Phasenstrom U"), QStringLiteral("A"), "i_u", 0x2070, TypeFloat32, 2, KindNumber, {}},
            {QStringLiteral("Phasenstrom V"), QStringLiteral("A"), "i_v", 0x2071, TypeFloat32, 2, KindNumber, {}},
            {QStringLiteral("Phasenstrom W"), QStringLiteral("A"), "i_w", 0x2072, TypeFloat32, 2, KindNumber, {}},
        };
    }

    void frame(double t, double* values) override
    {
        static constexpr double offsets[3] = {0.03, -0.02, 0.0};
        for (int phase = 0; phase < 3; ++phase) {
            // Each phase is the same wave a third of a period later, which
            // makes the 5th harmonic a negative and the 7th a positive sequence.
            const double angle = 2.0 * Pi * Fundamental * t - phase * 2.0 * Pi / 3.0;
            values[phase] = Amplitude * std::sin(angle)
                + 0.04 * Amplitude * std::sin(5.0 * angle + 0.7)
                + 0.025 * Amplitude * std::sin(7.0 * angle - 0.4)
                + offsets[phase] + m_random.gaussian(0.05);
        }
    }

private:
    static constexpr double Fundamental = 50.0; // Hz: 1500 1/min with two pole pairs
    static constexpr double Amplitude = 12.0; // A
    SplitMix64 m_random;
};

/* Adds plain measurement channels beyond a recording's own, or keeps only
   its first ones. */
class ChannelSelection : public FrameSource
{
public:
    ChannelSelection(std::unique_ptr<FrameSource> source, int channels, std::uint64_t seed)
        : m_source(std::move(source))
        , m_random(seed)
    {
        m_own = m_source->channels();
        m_count = channels > 0 ? channels : int(m_own.size());
        m_buffer.resize(size_t(m_own.size()));
    }

    QList<ChannelDescription> channels() const override
    {
        QList<ChannelDescription> result = m_own.mid(0, m_count);
        for (int k = int(m_own.size()); k < m_count; ++k) {
            result.append({QStringLiteral("Messkanal %1").arg(k + 1), QStringLiteral("V"),
                           "ai_" + QByteArray::number(k + 1), quint32(0x3000 + k), TypeFloat32, 3,
                           KindNumber, {}});
        }
        return result;
    }

    void frame(double t, double* values) override
    {
        m_source->frame(t, m_buffer.data());
        const int own = std::min(m_count, int(m_own.size()));
        std::copy(m_buffer.begin(), m_buffer.begin() + own, values);
        for (int k = int(m_own.size()); k < m_count; ++k)
            values[k] = 10.0 * std::sin(2.0 * Pi * (7.0 + k) * t) + m_random.gaussian(0.01);
    }

private:
    std::unique_ptr<FrameSource> m_source;
    QList<ChannelDescription> m_own;
    std::vector<double> m_buffer;
    SplitMix64 m_random;
    int m_count = 0;
};

struct RecordingFacts
{
    const char* serialNumber;
    const char* livingSpace;
    quint64 startTime; // controller ticks (ms) at the start of the read-out
    const char* name;
    const char* comment;
};

RecordingFacts facts(SampleGenerator::Recording recording)
{
    switch (recording) {
    case SampleGenerator::Recording::Step:
        return {"OVX4-2318-0042", "18342", 7318220431ull, "antrieb-sprung",
                "<p>Drehzahlsprung 0 auf 1500 1/min, Drehzahlregler steif eingestellt "
                "(Kp 0,43 Nm s/rad, Tn 13 ms).</p><p>Hochlauf an der Momentengrenze 30 Nm, "
                "danach \u00dcberschwingen; Zwischenkreis bricht beim Beschleunigen ein.</p>"};
    case SampleGenerator::Recording::SoftStep:
        return {"OVX4-2318-0042", "18342", 7318411907ull, "antrieb-sprung-weich",
                "<p>Derselbe Drehzahlsprung mit weicher Reglereinstellung "
                "(Kp 0,32 Nm s/rad, Tn 40 ms): weniger \u00dcberschwingen, deutlich l\u00e4ngere Ausregelzeit.</p>"};
    case SampleGenerator::Recording::PhaseCurrents:
        return {"OVX4-2318-0042", "18342", 7318602113ull, "phasenstrom",
                "<p>Phasenstr\u00f6me U, V, W bei 1500 1/min (50 Hz) unter Last, "
                "mit 5. und 7. Oberschwingung der Totzeit.</p>"};
    case SampleGenerator::Recording::Braking:
        return {"OVX4-2318-0042", "18342", 7318795560ull, "antrieb-bremsung", ""};
    }
    return {"", "", 0, "", ""};
}

std::unique_ptr<FrameSource> makeSource(SampleGenerator::Recording recording, int channels)
{
    std::unique_ptr<FrameSource> source;
    DriveModel::Parameters parameters;
    switch (recording) {
    case SampleGenerator::Recording::Step:
        parameters.seed = 0x5eed0001;
        source = std::make_unique<DriveModel>(parameters);
        break;
    case SampleGenerator::Recording::SoftStep:
        parameters.naturalFrequency = 45.0;
        parameters.damping = 0.9;
        parameters.seed = 0x5eed0002;
        source = std::make_unique<DriveModel>(parameters);
        break;
    case SampleGenerator::Recording::PhaseCurrents:
        source = std::make_unique<PhaseCurrentModel>(0x5eed0003);
        break;
    case SampleGenerator::Recording::Braking:
        parameters.inertia = 0.006;
        parameters.naturalFrequency = 90.0;
        parameters.damping = 0.7;
        parameters.speedBefore = 1500.0;
        parameters.speedAfter = 0.0;
        parameters.enabledBefore = true;
        parameters.transitionState = StateRunning;
        parameters.tripVoltage = 760.0;
        parameters.seed = 0x5eed0004;
        source = std::make_unique<DriveModel>(parameters);
        break;
    }
    return std::make_unique<ChannelSelection>(std::move(source), channels, 0x5eed0100 + quint64(recording));
}

QByteArray number(quint64 value)
{
    return QByteArray::number(value);
}

QByteArray indexed(const char* prefix, qint64 index)
{
    QByteArray key(prefix);
    CliIo::appendInteger(&key, index);
    return key;
}

} // namespace

SampleGenerator::SampleGenerator(qint64 frames, int channels)
    : m_frames(std::clamp(frames, MinimumFrames, MaximumFrames))
    , m_channels(std::clamp(channels, 0, MaximumChannels))
{
}

QString SampleGenerator::baseName(Recording recording)
{
    return QString::fromLatin1(facts(recording).name);
}

QDateTime SampleGenerator::readOutTime(Recording recording)
{
    // A fixed commissioning afternoon, a few minutes between the read-outs.
    const QDateTime first(QDate(2026, 3, 17), QTime(14, 2, 37, 415), Qt::UTC);
    return first.addMSecs(qint64(int(recording)) * 191476);
}

QByteArray SampleGenerator::hostName()
{
    return QByteArrayLiteral("IBN-NOTEBOOK-07");
}

QByteArray SampleGenerator::readOut(Recording recording) const
{
    std::unique_ptr<FrameSource> source = makeSource(recording, m_channels);
    const QList<ChannelDescription> channels = source->channels();
    const int channelCount = int(channels.size());
    const qint64 frames = std::min(m_frames, MaximumValues / std::max(1, channelCount));
    const qint64 triggerIndex = frames / 5;
    const RecordingFacts recordingFacts = facts(recording);

    IniParser document;
    IniSection* shot = document.findOrCreateSection(ScopeArchiveKeys::ShotSection);
    shot->setValue(ScopeArchiveKeys::TimeBase, "62.5");
    shot->setValue(ScopeArchiveKeys::PreTrigger, "20");

    IniSection* logic = document.findOrCreateSection(ScopeArchiveKeys::TriggerLogicSection);
    logic->setValue("TriggerCount", "1");
    logic->setValue("Combination", "0");
    IniSection* trigger = document.findOrCreateSection(indexed(ScopeArchiveKeys::TriggerSectionPrefix, 0));
    trigger->setValue("SignalName", channels.value(0).label);
    trigger->setValue("CompareType", "1");
    trigger->setValue("CompareAbsolute", "0");
    trigger->setValue("CompareUseMask", "0");
    trigger->setValue("CompareValue", "750");
    trigger->setValue("EdgeDetection", recording == Recording::Braking ? "2" : "1");
    trigger->setValue("FilterTime", "0");

    for (int c = 0; c < channelCount; ++c) {
        const ChannelDescription& channel = channels.at(c);
        IniSection* section = document.findOrCreateSection(indexed(ScopeArchiveKeys::ChannelSectionPrefix, c));
        section->setValue(ScopeArchiveKeys::SourceType, "1");
        section->setValue(ScopeArchiveKeys::ParameterValueAddress, number(channel.address));
        section->setValue(ScopeArchiveKeys::PhysicalAddress, number(0x40000000u + channel.address * 4u));
        section->setValue(ScopeArchiveKeys::PhysicalDatatype, number(channel.datatype));
        section->setValue(ScopeArchiveKeys::SignalLabelName, channel.label);
        section->setValue(ScopeArchiveKeys::ChannelName, channel.name.toLatin1());
        section->setValue(ScopeArchiveKeys::Measure, channel.unit.toLatin1());
        section->setValue(ScopeArchiveKeys::DecimalPlaces, number(quint64(channel.decimals)));
        section->setValue(ScopeArchiveKeys::ParameterKind, number(quint64(channel.kind)));
        if (!channel.choiceMap.isEmpty())
            section->setValue(ScopeArchiveKeys::ChoiceMap, channel.choiceMap.toLatin1());
    }

    IniSection* data = document.findOrCreateSection(ScopeArchiveKeys::DataSection);
    data->setValue(ScopeArchiveKeys::ChannelCount, number(quint64(channelCount)));
    data->setValue(ScopeArchiveKeys::FrameCount, number(quint64(frames)));
    data->setValue(ScopeArchiveKeys::TriggerIndex, number(quint64(triggerIndex)));
    data->setValue(ScopeArchiveKeys::SerialNumber, recordingFacts.serialNumber);
    data->setValue(ScopeArchiveKeys::LivingSpace, recordingFacts.livingSpace);
    // Controller ticks in milliseconds: the read-out starts, the trigger
    // comes after the pre-trigger share of the frames.
    const quint64 triggerTicks = recordingFacts.startTime
        + quint64(std::llround(double(triggerIndex) * SamplePeriod * 1000.0));
    data->setValue(ScopeArchiveKeys::StartTime, number(recordingFacts.startTime));
    data->setValue(ScopeArchiveKeys::TriggerTime, number(triggerTicks));

    // Integers as integers, fractional values with one decimal more than shown.
    std::vector<int> decimals(static_cast<size_t>(channelCount));
    for (int c = 0; c < channelCount; ++c)
        decimals[size_t(c)] = channels.at(c).datatype == TypeFloat32 ? channels.at(c).decimals + 1 : -1;

    std::vector<double> values(static_cast<size_t>(channelCount));
    QByteArray key;
    QByteArray row;
    row.reserve(16 + channelCount * 12);
    for (qint64 f = 0; f < frames; ++f) {
        const double t = double(f - triggerIndex) * SamplePeriod;
        source->frame(t, values.data());
        key = ScopeArchiveKeys::DataRowPrefix;
        CliIo::appendInteger(&key, f);
        row.resize(0);
        CliIo::appendInteger(&row, f); // field 0: the frame counter of the read-out
        for (int c = 0; c < channelCount; ++c) {
            row.append(';');
            const int places = decimals[size_t(c)];
            if (places < 0)
                CliIo::appendInteger(&row, qint64(std::llround(values[size_t(c)])));
            else
                CliIo::appendFixed(&row, values[size_t(c)], places);
        }
        data->setValue(key, row);
    }
    return document.getIniTextWithoutByteOrderMarker();
}

std::unique_ptr<ScopeShotArchive> SampleGenerator::makeShotArchive(Recording recording) const
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    if (!archive->createFromReadOut(readOut(recording)))
        return nullptr;

    // The library stamps the moment of creation; the samples carry a fixed
    // read-out time and host so that every run writes the same bytes.
    const QDateTime time = readOutTime(recording);
    const QLocale german(QLocale::German, QLocale::Germany);
    IniSection* section = archive->archiveSection();
    section->setValue(ScopeArchiveKeys::HostName, hostName());
    section->setValue(ScopeArchiveKeys::ReadOut,
                      (german.toString(time, german.dateFormat(QLocale::ShortFormat)) + QLatin1Char(' ')
                       + german.toString(time, german.timeFormat(QLocale::LongFormat)))
                          .toLatin1());
    section->setValue(ScopeArchiveKeys::ReadOutTimestamp, ScopeArchiveCodec::encodeTimestamp(time));

    const RecordingFacts recordingFacts = facts(recording);
    archive->setName(QString::fromLatin1(recordingFacts.name));
    archive->setComment(QString::fromUtf8(recordingFacts.comment));

    // Markers over a useful interval: the run-up for the steps, whole periods
    // of the fundamental (10 Hz resolution) for the phase currents.
    IniSection* scene = archive->iniParser()->findOrCreateSection(ScopeArchiveKeys::SceneSection);
    const qint64 markerB = recording == Recording::PhaseCurrents ? 99937500 : 100000000;
    scene->setValue("MarkerPosition_0A", "0");
    scene->setValue("MarkerPosition_0B", QByteArray::number(markerB));
    return archive;
}

QByteArray SampleGenerator::shotArchive(Recording recording) const
{
    const std::unique_ptr<ScopeShotArchive> archive = makeShotArchive(recording);
    return archive ? archive->toByteArray() : QByteArray();
}

QByteArray SampleGenerator::composition() const
{
    const std::unique_ptr<ScopeShotArchive> step = makeShotArchive(Recording::Step);
    const std::unique_ptr<ScopeShotArchive> soft = makeShotArchive(Recording::SoftStep);
    return compositionOf(step.get(), soft.get());
}

std::unique_ptr<ScopeShotArchive> SampleGenerator::identityOf(ScopeShotArchive* archive)
{
    IniParser document;
    document.findOrCreateSection(ScopeArchiveKeys::ArchiveSection)->setValue(ScopeArchiveKeys::Id, archive->id());
    std::unique_ptr<ScopeShotArchive> identity(ScopeShotArchive::create(nullptr));
    identity->fromByteArray(document.getIniTextWithoutByteOrderMarker());
    return identity;
}

QByteArray SampleGenerator::compositionOf(ScopeShotArchive* step, ScopeShotArchive* soft)
{
    if (!step || !soft)
        return {};
    std::unique_ptr<ScopeCompositionArchive> made(ScopeCompositionArchive::create(nullptr));
    made->create({step, soft});

    // Fixed creation data instead of the moment of the run, set in the
    // document and read back by the library.
    IniParser document;
    document.setIniText(made->toByteArray());
    IniSection* section = document.findOrCreateSection(ScopeArchiveKeys::ArchiveSection);
    const QDateTime created = readOutTime(Recording::Braking).addSecs(300);
    const QByteArray id = hostName() + '_' + created.toString(QStringLiteral("yyyyMMdd_hhmmsszzz")).toLatin1();
    section->setValue(ScopeArchiveKeys::Id, id);
    section->setValue(ScopeArchiveKeys::Name, "sprungvergleich");
    section->setValue(ScopeArchiveKeys::HostName, hostName());
    section->setValue(ScopeArchiveKeys::CreateUserName, "inbetriebnahme");
    section->setValue(ScopeArchiveKeys::CreateTimestamp, ScopeArchiveCodec::encodeTimestamp(created));

    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    if (!composition->fromByteArray(QByteArray(ScopeArchiveKeys::CompositionTypeLine) + "\r\n\r\n"
                                    + document.getIniText()))
        return {};
    composition->setComment(QStringLiteral("<p>Drehzahlsprung mit steifer und weicher Reglereinstellung "
                                           "\u00fcbereinander.</p>"));
    return composition->toByteArray();
}

bool SampleGenerator::writeAll(const QString& folder, QStringList* written, QString* error, bool keepExisting) const
{
    QDir dir(folder);
    if (!dir.exists() && !QDir().mkpath(folder)) {
        *error = QStringLiteral("%1: cannot create the folder").arg(folder);
        return false;
    }
    const auto kept = [&](const QString& fileName) { return keepExisting && dir.exists(fileName); };
    const auto write = [&](const QString& fileName, const QByteArray& bytes) {
        if (bytes.isEmpty()) {
            *error = QStringLiteral("%1: the library refused the recording").arg(fileName);
            return false;
        }
        const QString path = dir.filePath(fileName);
        if (!CliIo::writeFile(path, bytes, error))
            return false;
        written->append(path);
        return true;
    };
    const QString stepFile = baseName(Recording::Step) + QLatin1String(".ovxshot");
    const QString softFile = baseName(Recording::SoftStep) + QLatin1String(".ovxshot");
    const QString phaseFile = baseName(Recording::PhaseCurrents) + QLatin1String(".ovxshot");
    const QString readOutFile = baseName(Recording::Braking) + QLatin1String(".ovxreadout");
    const QString compositionFile = QStringLiteral("sprungvergleich.ovxcomp");

    // One big recording in memory at a time: the composition only needs the
    // identities of the two steps, kept in archives of their own.
    std::unique_ptr<ScopeShotArchive> identities[2];
    const Recording steps[2] = {Recording::Step, Recording::SoftStep};
    const QString stepFiles[2] = {stepFile, softFile};
    for (int i = 0; i < 2; ++i) {
        const std::unique_ptr<ScopeShotArchive> archive = makeShotArchive(steps[i]);
        if (!archive) {
            *error = QStringLiteral("%1: the library refused the recording").arg(stepFiles[i]);
            return false;
        }
        if (!kept(stepFiles[i]) && !write(stepFiles[i], archive->toByteArray()))
            return false;
        identities[i] = identityOf(archive.get());
    }
    return (kept(phaseFile) || write(phaseFile, shotArchive(Recording::PhaseCurrents)))
        && (kept(readOutFile) || write(readOutFile, readOut(Recording::Braking)))
        && (kept(compositionFile) || write(compositionFile, compositionOf(identities[0].get(), identities[1].get())));
}
