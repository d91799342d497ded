// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>

class QPainter;
class ScopeLayout;
class ScopeShotArchive;
class ScopeShotPrivate;
class ScopeTrace;

/*! \brief One recording in memory: a ScopeTrace per channel in use, built
    from a shot archive, with the common sampling period.

    Loading never trusts the counts in the archive: the number of frames is
    bounded by the data rows actually present, and no more samples are made
    than the rows have bytes, so a damaged archive yields a partial or empty
    recording instead of a huge allocation. Rows with fewer fields leave the
    missing samples at 0; a channel that no data row reaches gets no trace
    (unless there are no rows at all: then every channel in use gets an
    empty trace).

    Every change of a trace reaches changed(), and from there the archive's
    scopeElementChanged(). Owners ask all traces for quick-measure values by
    emitting publishQuickMeasureRequest() / publishQuickMeasureDisabled() on
    the shot.
*/
class ScopeShot : public QObject
{
    Q_OBJECT

public:
    explicit ScopeShot(QObject* parent = nullptr);
    ~ScopeShot() override;

    /*! \brief Uses \a archive (not owned) and follows its element changes. */
    void setArchive(ScopeShotArchive* archive);
    ScopeShotArchive* archive() const;
    /*! \brief Stored for the view; not used by the shot. */
    void setReadOutSource(void* readOutSource);
    void* readOutSource() const;

    /*! \brief Builds the traces from the archive; false when the archive has
        no shot or data section, a time base below 0.1 µs or no channels. */
    bool load();
    /*! \brief Writes every trace's presentation state into its channel section. */
    void saveTraceViews();

    /*! \brief The archive's name. */
    QString name() const;
    /*! \brief Sampling period in tenths of a microsecond. */
    int timeBase() const;
    /*! \brief The trace of channel \a number, or null. */
    ScopeTrace* trace(int number) const;
    /*! \brief Channel numbers of all traces, ascending. */
    QList<int> channelNumbers() const;
    /*! \brief The smallest start time of all traces, at most 0. */
    qint64 startTime() const;
    /*! \brief The largest end time of all traces, at least 0. */
    qint64 endTime() const;

    /*! \brief Draws those of \a traces that belong to this shot, in list
        order, into the plot of \a layout showing \a leftTime … \a rightTime. */
    void paint(const ScopeLayout* layout, QPainter* painter, const QList<ScopeTrace*>& traces,
               qint64 leftTime, qint64 rightTime) const;

Q_SIGNALS:
    void changed();
    void needUpdateControls();
    void publishQuickMeasureRequest(qint64 timeStamp);
    void publishQuickMeasureDisabled();

private:
    Q_DECLARE_PRIVATE(ScopeShot)
    ScopeShotPrivate* d_ptr;
};
