// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QMap>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVector>
#include <QtGui/QColor>

class QPainter;
class ScopeLayout;
class ScopeTracePrivate;

namespace KlIniParser {
class IniSection;
}

/*! \brief One channel of a recording: its samples, the description of the
    recorded parameter and the way the user presents it in the time plot.

    Times are signed 64-bit nanoseconds from the trigger instant; sample k
    lies at (k − triggerIndex()) × timeBase() × 100 ns. Vertical positions
    are plot units, one unit being one vertical division; a value is plotted
    at value × invert × ground × scalingFactor() + verticalOffset() units
    above the bottom grid line.

    changed() follows every change that must be saved (and every animation
    frame); viewChanged() additionally follows changes of the picture only.
*/
class ScopeTrace : public QObject
{
    Q_OBJECT
public:
    /*! \brief Creates trace \a number of the shot \a parent (its QObject
        parent). The colour starts as the default trace colour of \a number. */
    ScopeTrace(QObject* parent, unsigned number);
    ~ScopeTrace() override;

    /*! \brief The owning shot (the parent given at construction). */
    QObject* shot() const;
    /*! \brief Running number of the trace within its shot. */
    int number() const;

    QString name() const;
    void setName(const QString& name);
    /*! \brief Physical unit. */
    QString measure() const;
    void setMeasure(const QString& measure);
    /*! \brief Drive data type number of the samples. */
    quint8 physicalDatatype() const;
    void setPhysicalDatatype(quint8 datatype);
    unsigned decimalPlaces() const;
    void setDecimalPlaces(unsigned decimalPlaces);
    /*! \brief Display kind: 1 choice, 3 hexadecimal, 4 binary, 7 packed
        time of day, anything else a number. */
    int parameterKind() const;
    /*! \brief Stores \a kind and emits changed() without comparing. */
    void setParameterKind(int kind);
    /*! \brief Texts of enumerated values (display kind 1). */
    QMap<qint32, QString> choiceMap() const;
    void setChoiceMap(const QMap<qint32, QString>& choiceMap);

    QVector<double> samples() const;
    /*! \brief Shares \a samples if they differ element by element (a NaN
        always differs) and emits changed(). */
    void setSamples(const QVector<double>& samples);
    int triggerIndex() const;
    void setTriggerIndex(int triggerIndex);
    /*! \brief Sampling period in tenths of a microsecond. */
    unsigned timeBase() const;
    void setTimeBase(unsigned timeBase);
    /*! \brief Time of sample 0: −(timeBase × triggerIndex × 100). */
    qint64 startTime() const;
    /*! \brief Time of the last sample: (count − 1 − triggerIndex) × timeBase × 100. */
    qint64 endTime() const;
    /*! \brief Sample index of \a time: floor(time ÷ (timeBase × 100)) +
        triggerIndex, truncated to 32 bits; may lie outside the samples. */
    int sampleIndex(qint64 time) const;
    /*! \brief Time of sample \a index. */
    qint64 sampleTime(int index) const;

    QColor color() const;
    void setColor(const QColor& color);

    double scalingFactor() const;
    /*! \brief Anchored change of scale: the value at anchorTime() keeps its
        height. Ignored while the trace is off. */
    void setScalingFactor(double factor);
    /*! \brief Vertical offset in plot units (divisions). */
    double verticalOffset() const;
    /*! \brief Ignored while the trace is off. */
    void setVerticalOffset(double offset);
    /*! \brief Moves the curve by \a pixels (upwards positive) at the scale of
        the last paint. */
    void shiftVerticalOffset(int pixels);

    bool isOff() const;
    void setOff(bool off, bool animated);
    bool isGround() const;
    void setGround(bool ground, bool animated);
    bool isInverted() const;
    void setInverted(bool inverted, bool animated);
    bool isBinaryView() const;
    /*! \brief Each view mode keeps its own scaling factor. */
    void setBinaryView(bool binaryView);
    unsigned binaryViewMask() const;
    void setBinaryViewMask(unsigned mask);
    /*! \brief Bit numbers (0 up) shown in binary view, from the mask and the
        byte size of the data type. */
    QByteArray binaryBits() const;
    /*! \brief Scaling factor of the view mode that is not active. */
    double binaryScalingFactorBackup() const;

    /*! \brief Present values of the animated factors of the ground, off and
        inverted states. */
    double groundScalingFactor() const;
    double offAlphaFactor() const;
    double invertScalingFactor() const;
    /*! \brief Plot units per pixel at the last paint. */
    double unitsPerPixel() const;
    /*! \brief The visible time range of the last paint. */
    qint64 viewLeftTime() const;
    qint64 viewRightTime() const;
    /*! \brief Time and value (sample × invert) that vertical zoom keeps fixed. */
    qint64 anchorTime() const;
    double anchorValue() const;

    /*! \brief Fits all samples (and zero) into verticalUnits() divisions. */
    void autoScale();
    /*! \brief Vertical zoom about the middle of the last painted range, or
        about \a time. Nothing happens while the trace is off. */
    void zoomIn();
    void zoomIn(qint64 time);
    void zoomOut();
    void zoomOut(qint64 time);

    /*! \brief Display text of \a value in the trace's display kind; "---"
        for NaN. */
    QString valueText(double value, bool withUnit) const;

    /*! \brief Reads description and presentation state without signalling;
        the samples must be set before. Always true. */
    bool readSection(KlIniParser::IniSection& section);
    /*! \brief Writes the presentation state. */
    void writeSection(KlIniParser::IniSection& section) const;

    /*! \brief Draws the trace into the plot area of \a layout showing the
        times \a leftTime … \a rightTime across the area's width.

        The plot widget (or the shot on its behalf) calls this for every
        paint with its own layout and the visible range. Time t lies at
        x = plotArea.left + (t − leftTime) × plotArea.width ÷ (rightTime −
        leftTime); plot unit u lies u × divisionSize.height pixels above the
        bottom grid line (plotArea.bottom). The painter's state is saved and
        restored; drawing is clipped to the plot area. Nothing is drawn
        without samples, with a null layout or an empty time range.

        The cost does not depend on the sample count: dense stretches are
        drawn from a min/max envelope computed when the samples are set. */
    void paint(const ScopeLayout* layout, QPainter* painter, qint64 leftTime, qint64 rightTime);

    /*! \brief The same picture as paint(), drawn by joining every visible
        sample with a line. Slow for long recordings; the reference that the
        envelope drawing is checked against. */
    void paintEverySample(const ScopeLayout* layout, QPainter* painter, qint64 leftTime, qint64 rightTime);

    /*! \brief Number of divisions auto-scaling fits a trace into: 6. */
    int verticalUnits() const;
    /*! \brief Pixels taken by the bit labels: 14 in binary view, else 0. */
    int binaryLabelExtent() const;

public Q_SLOTS:
    /*! \brief Answers with quickMeasureValue() for the sample at \a timeStamp. */
    void publishQuickMeasureRequest(qint64 timeStamp);
    /*! \brief Answers with quickMeasureValue(0, "", false). */
    void publishQuickMeasureDisabled();

Q_SIGNALS:
    void changed();
    void viewChanged();
    /*! \brief \a timeStamp is the time of the sample found and \a value its
        text with unit; \a isValid false when there is no sample. */
    void quickMeasureValue(qint64 timeStamp, QString value, bool isValid);

private:
    Q_DECLARE_PRIVATE(ScopeTrace)
    ScopeTracePrivate* d_ptr;
};
