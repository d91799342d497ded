// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "scopetrace.h"

#include <QtCore/QLineF>
#include <QtCore/QVariant>
#include <QtGui/QPolygonF>

#include <vector>

class QVariantAnimation;
class QRect;

/*! Min/max pyramid over the samples: level j holds, for every block of 2^j
    samples (j ≥ 1), the smallest and largest finite sample. A range query
    combines O(log n) blocks, so drawing a column costs the same whatever
    the sample count. */
struct ScopeTraceEnvelope
{
    std::vector<std::vector<double>> minimum;
    std::vector<std::vector<double>> maximum;

    void build(const QVector<double>& samples);
    void clear();
    /*! Min and max of the finite samples in [first, last); false when none. */
    bool range(const QVector<double>& samples, qsizetype first, qsizetype last,
               double* lowest, double* highest) const;
};

/*! OR and AND pyramids of the samples as 64-bit integers, for binary view:
    a bit has a one in a block when the OR has it and a zero when the AND
    lacks it. Built on the first binary paint. */
struct ScopeTraceBitEnvelope
{
    std::vector<std::vector<quint64>> anyOne;
    std::vector<std::vector<quint64>> allOne;
    bool valid = false;

    void build(const QVector<double>& samples);
    void clear();
    void range(const QVector<double>& samples, qsizetype first, qsizetype last,
               quint64* ones, quint64* all) const;
};

/*! What one pixel column of the curve shows: its first and last sample
    (index, value, x) and the extremes of its samples. */
struct ScopeTraceColumn
{
    qsizetype first = -1;
    qsizetype last = -1;
    double firstValue = 0.0;
    double lastValue = 0.0;
    double xFirst = 0.0;
    double xLast = 0.0;
    double lowest = 0.0;
    double highest = 0.0;
    bool hasRange = false;
};

/*! The columns of the last dense paint, valid while samples, time range and
    plot width stay. */
struct ScopeTraceColumns
{
    quint64 generation = 0;
    qint64 left = 0;
    qint64 right = 0;
    int areaLeft = 0;
    int width = 0;
    quint32 timeBase = 0;
    qint32 triggerIndex = 0;
    qsizetype before = -1;
    qsizetype after = 0;
    std::vector<ScopeTraceColumn> columns;
};

class ScopeTracePrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(ScopeTrace)
public:
    ScopeTracePrivate(ScopeTrace* q, QObject* parent, int number);
    ~ScopeTracePrivate() override;

    // Stores a descriptive property and announces the change; an equal value
    // changes nothing.
    template<typename T>
    void store(T& field, const T& value)
    {
        if (field == value)
            return;
        field = value;
        Q_EMIT changed();
    }

    ScopeTrace* q_ptr;
    QObject* shot;
    QVector<double> samples;
    qint32 triggerIndex = 0;
    qint32 number;
    QString name;
    QString measure;
    quint8 physicalDatatype = 0;
    quint32 decimalPlaces = 7;
    quint32 parameterKind = 0;
    QMap<qint32, QString> choiceMap;
    QColor color;
    double verticalOffset = 0.0;
    quint32 timeBase = 1;
    double scalingFactor = 1.0;
    double groundScalingFactor = 1.0;
    double offAlphaFactor = 1.0;
    double invertScalingFactor = 1.0;
    double unitsPerPixel = 1.0;
    qint64 viewLeftTime = 0;
    qint64 viewRightTime = 0;
    qint64 anchorTime = 0;
    double anchorValue = 19.0;
    bool off = false;
    bool ground = false;
    bool inverted = false;
    bool binaryView = false;
    quint32 binaryViewMask = 0xffffffffu;
    QByteArray binaryBits;
    double binaryScalingFactorBackup = 1.0;

    ScopeTraceEnvelope envelope;
    // Counts sample changes; 0 is never a valid generation of the column cache.
    quint64 samplesGeneration = 1;
    ScopeTraceColumns columns;
    ScopeTraceBitEnvelope bitEnvelope;
    QList<QVariantAnimation*> animations;
    // Reused between paints so that drawing does not allocate.
    QPolygonF polyline;
    QVector<QLineF> bitLines;

    qint64 sampleTime(qint64 index) const;
    int sampleIndex(qint64 time) const;
    quint32 byteSize() const;
    void applyScalingFactor(double factor);
    void zoom(bool in);
    void setFlag(bool* flag, bool value, bool animated, double* factor, double endValue,
                 int easing, void (ScopeTracePrivate::*slot)(const QVariant&));
    void rebuildBinaryBits();

    QString valueText(double value, bool withUnit) const;
    QString numberText(double value, bool withUnit) const;
    QString binaryText(double value) const;
    QString hexText(double value) const;

    enum class Drawing { Envelope, EverySample };
    void paint(const ScopeLayout* layout, QPainter* painter, qint64 left, qint64 right, Drawing drawing);
    void paintCurve(QPainter* painter, const QRect& area, int divisionHeight, qint64 left, qint64 right,
                    Drawing drawing);
    void paintBitRows(QPainter* painter, const QRect& area, int divisionHeight, qint64 left, qint64 right,
                      Drawing drawing);
    void paintBitLabels(QPainter* painter, const ScopeLayout* layout, int divisionHeight);
    void paintOverlay(QPainter* painter, const QRect& area, int divisionHeight);
    QColor drawingColor() const;

public Q_SLOTS:
    void setGroundScalingFactor(const QVariant& value);
    void setOffAlphaFactor(const QVariant& value);
    void setInvertScalingFactor(const QVariant& value);

Q_SIGNALS:
    void updateRequired();
    void changed();
    void viewChanged();
    void quickMeasureValue(qint64 timeStamp, QString value, bool isValid);
};
