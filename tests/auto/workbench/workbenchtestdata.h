// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QtMath>

#include "scopeshotarchive.h"

#include <csignal>
#include <memory>
#include <sys/resource.h>

// Makes every write of this process beyond a few bytes fail, even for root
// (who ignores file permissions), for as long as it lives.
class FileSizeLimit
{
public:
    FileSizeLimit()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        rlimit limit = m_old;
        limit.rlim_cur = 16;
        m_active = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_old); }
    bool isActive() const { return m_active; }

private:
    rlimit m_old {};
    bool m_active = false;
};

// A small read-out of a drive: speed and current over 400 frames (25 ms), trigger in the middle.
inline QByteArray testReadOut(const QByteArray& serial, double amplitude = 100.0)
{
    QByteArray text;
    text += "[Data]\r\nChannelCount=2\r\nFrameCount=400\r\nTriggerIndex=200\r\n";
    text += "SerialNumber=" + serial + "\r\nLivingSpace=7\r\nStartTime=1000\r\nTriggerTime=1500\r\n";
    for (int i = 0; i < 400; ++i) {
        const double speed = i < 200 ? 0.0 : amplitude * (1.0 - qExp(-(i - 200) / 20.0));
        const double current = 2.0 * qSin(i / 10.0);
        text += "Data_" + QByteArray::number(i) + '=' + QByteArray::number(i) + ';'
            + QByteArray::number(speed, 'g', 8) + ';' + QByteArray::number(current, 'g', 8) + "\r\n";
    }
    text += "\r\n[ScopeShot]\r\nTimeBase=62.5\r\nPreTrigger=20\r\n";
    text += "\r\n[ScopeChannel_0]\r\nSourceType=1\r\nParameterValueAddress=4096\r\nPhysicalAddress=8192\r\n"
            "PhysicalDatatype=8\r\nSignalLabelName=n_ist\r\nName=Drehzahl\r\nMeasure=1/min\r\n"
            "DecimalPlaces=1\r\nParameterKind=0\r\nColor=#ff0000\r\n";
    text += "\r\n[ScopeChannel_1]\r\nSourceType=1\r\nParameterValueAddress=4100\r\nPhysicalAddress=8200\r\n"
            "PhysicalDatatype=8\r\nSignalLabelName=i_q\r\nName=Wirkstrom\r\nMeasure=A\r\n"
            "DecimalPlaces=2\r\nParameterKind=0\r\nColor=#00a000\r\n";
    return text;
}

// The stored bytes of a shot archive made from testReadOut(serial), named \a name.
inline QByteArray testShot(const QByteArray& serial, const QString& name, double amplitude = 100.0)
{
    std::unique_ptr<ScopeShotArchive> shot(ScopeShotArchive::create(nullptr));
    if (!shot->createFromReadOut(testReadOut(serial, amplitude)))
        return QByteArray();
    shot->setName(name);
    return shot->toByteArray();
}

inline bool writeTestFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

inline QByteArray readTestFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Fills \a folder with two shots, one composition-less broken file and a file that is no recording.
inline bool fillTestFolder(const QString& folder)
{
    const QDir dir(folder);
    return writeTestFile(dir.filePath(QStringLiteral("a-sprung.ovxshot")), testShot("SN1", QStringLiteral("Sprung steif")))
        && writeTestFile(dir.filePath(QStringLiteral("b-sprung.ovxshot")),
                         testShot("SN2", QStringLiteral("Sprung weich"), 80.0))
        && writeTestFile(dir.filePath(QStringLiteral("c-kaputt.ovxshot")), QByteArray("[Data]\nChannelCount=1\n"))
        && writeTestFile(dir.filePath(QStringLiteral("notiz.txt")), QByteArray("keine Aufnahme"));
}
