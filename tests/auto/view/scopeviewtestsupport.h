// SPDX-License-Identifier: GPL-3.0-or-later
// Helpers shared by the view tests: synthetic recordings, a host repository
// and a paint device that records what a widget draws.
#pragma once

#include "scopeelementarchive.h"
#include "scoperepository.h"
#include "scopeshotarchive.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QPointer>
#include <QtGui/QPaintDevice>
#include <QtGui/QPaintEngine>
#include <QtGui/QTransform>

#include <cmath>

namespace ScopeViewTest {

/*! A read-out with \a channels channels of \a frames frames: a sine, a
    square wave, a ramp, then sines of other frequencies; \a timeBaseUs is the
    sampling period in microseconds. */
inline QByteArray readOut(int channels, int frames, int triggerIndex, const QByteArray& timeBaseUs,
                          const QByteArray& serial = "4711")
{
    QByteArray text;
    text.reserve(qsizetype(frames) * (channels * 9 + 12) + 1024);
    text += "[Data]\r\nChannelCount=" + QByteArray::number(channels) + "\r\nFrameCount=" + QByteArray::number(frames)
        + "\r\nTriggerIndex=" + QByteArray::number(triggerIndex) + "\r\nSerialNumber=" + serial
        + "\r\nLivingSpace=1\r\nStartTime=2\r\nTriggerTime=3\r\n";
    for (int f = 0; f < frames; ++f) {
        text += "Data_" + QByteArray::number(f) + '=' + QByteArray::number(f);
        const double phase = 2.0 * M_PI * double(f) / double(frames > 1 ? frames : 1);
        for (int c = 0; c < channels; ++c) {
            double value = 0.0;
            switch (c) {
            case 0: value = 2.0 * std::sin(2.0 * phase); break;
            case 1: value = std::sin(3.0 * phase) >= 0.0 ? 1.0 : -1.0; break;
            case 2: value = -3.0 + 6.0 * double(f) / double(frames > 1 ? frames - 1 : 1); break;
            default: value = std::sin(double(c + 2) * phase); break;
            }
            text += ';' + QByteArray::number(value, 'g', 6);
        }
        text += "\r\n";
    }
    text += "\r\n[ScopeShot]\r\nTimeBase=" + timeBaseUs + "\r\n";
    for (int c = 0; c < channels; ++c) {
        text += "\r\n[ScopeChannel_" + QByteArray::number(c) + "]\r\nSourceType=1\r\nName=Kanal "
            + QByteArray::number(c + 1) + "\r\nMeasure=V\r\nPhysicalDatatype=7\r\nDecimalPlaces=3\r\nParameterKind=0\r\n";
    }
    return text;
}

/*! A host's repository: it owns nothing and finds archives by ID. */
class Repository : public ScopeRepository
{
public:
    using ScopeRepository::ScopeRepository;

    void add(ScopeElementArchive* archive) { m_archives.append(archive); }

    QList<ScopeElementArchive*> scopeElements() const override
    {
        QList<ScopeElementArchive*> result;
        for (const auto& archive : m_archives) {
            if (archive)
                result.append(archive.data());
        }
        return result;
    }

    ScopeElementArchive* findArchive(const QByteArray& id) const override
    {
        for (const auto& archive : m_archives) {
            if (archive && archive->id() == id)
                return archive.data();
        }
        return nullptr;
    }

private:
    QList<QPointer<ScopeElementArchive>> m_archives;
};

/*! Records texts and lines in device coordinates. */
class RecordingEngine : public QPaintEngine
{
public:
    struct Text {
        QString text;
        QPointF position;
    };
    struct Line {
        QLineF line;
        QColor color;
    };

    RecordingEngine()
        : QPaintEngine(QPaintEngine::AllFeatures)
    {
    }

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return QPaintEngine::User; }
    void updateState(const QPaintEngineState& state) override
    {
        if (state.state() & QPaintEngine::DirtyTransform)
            m_transform = state.transform();
        if (state.state() & QPaintEngine::DirtyPen)
            m_pen = state.pen();
    }
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawPath(const QPainterPath&) override {}
    void drawRects(const QRectF*, int) override {}
    void drawTextItem(const QPointF& p, const QTextItem& item) override
    {
        texts.append({item.text(), m_transform.map(p)});
    }
    void drawLines(const QLineF* lines, int count) override
    {
        for (int i = 0; i < count; ++i)
            this->lines.append({m_transform.map(lines[i]), m_pen.color()});
    }

    QList<Text> texts;
    QList<Line> lines;

private:
    QTransform m_transform;
    QPen m_pen;
};

class RecordingDevice : public QPaintDevice
{
public:
    explicit RecordingDevice(const QSize& size)
        : m_size(size)
    {
    }
    QPaintEngine* paintEngine() const override { return &m_engine; }
    RecordingEngine& engine() const { return m_engine; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth: return m_size.width();
        case PdmHeight: return m_size.height();
        case PdmWidthMM: return m_size.width() / 4;
        case PdmHeightMM: return m_size.height() / 4;
        case PdmNumColors: return 0x7fffffff;
        case PdmDepth: return 32;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY: return 96;
        case PdmDevicePixelRatio: return 1;
        case PdmDevicePixelRatioScaled: return int(QPaintDevice::devicePixelRatioFScale());
        }
        return 0;
    }

private:
    QSize m_size;
    mutable RecordingEngine m_engine;
};

} // namespace ScopeViewTest
