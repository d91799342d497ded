// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "frequencywindowfunctions.h"

#include <QtCore/QList>
#include <QtCore/QSharedPointer>
#include <QtWidgets/QWidget>

class FrequencyView;
class ScopeToFrequencyViewPrivate;
class TraceInformation;

/*! \brief The panel of the "Frequenzanalyse" tab: shows the interval
    between markers A and B, the number of measured values in it and the
    window function, and starts the frequency analysis with "Anwenden".

    Wiring it into a scope view takes three steps:
    \code
    QList<QSharedPointer<TraceInformation>> traces;      // one per trace of the shot
    for (ScopeTrace* trace : shot->traces())
        traces.append(QSharedPointer<TraceInformation>(new TraceInformationImplemention(trace)));
    auto* panel = new ScopeToFrequencyView(traces);       // needs at least one trace
    frequencyPage->layout()->addWidget(panel);
    connect(marker, &ScopeMarker::timePositionChanged, panel, &ScopeToFrequencyView::onMarkerTimePositionChanged);
    panel->onMarkerTimePositionChanged(0, marker->position(0));   // current positions
    panel->onMarkerTimePositionChanged(1, marker->position(1));
    connect(panel, &ScopeToFrequencyView::newFrequencyViewCreated, view, &ScopeViewImplementation::onNewFrequencyViewCreated);
    \endcode
    The frequency view that "Anwenden" creates is a top-level window that
    deletes itself when closed; the panel never deletes it. If nobody has
    taken the new window into a parent while newFrequencyViewCreated is
    delivered, the panel shows it as a window of its own. */
class ScopeToFrequencyView : public QWidget
{
    Q_OBJECT
public:
    /*! \brief \a traces must not be empty: the first trace gives the
        sampling period. */
    explicit ScopeToFrequencyView(const QList<QSharedPointer<TraceInformation>>& traces, QWidget* parent = nullptr);
    ~ScopeToFrequencyView() override;

    /*! \brief The frequency view of the last analysis while it exists. */
    FrequencyView* frequencyView() const;
    Frequency::WindowFunctions windowFunction() const;
    qint64 samplingPeriod() const;
    qint64 markerATime() const;
    qint64 markerBTime() const;

public Q_SLOTS:
    /*! \brief Marker \a index (0 = A, 1 = B) moved to \a value ns. */
    void onMarkerTimePositionChanged(uchar index, qlonglong value);

Q_SIGNALS:
    /*! \brief Emitted twice for every change of the window function. */
    void windowFunctionChanged(Frequency::WindowFunctions windowFunction);
    void newFrequencyViewCreated(QWidget* pWidget);

private:
    Q_DECLARE_PRIVATE(ScopeToFrequencyView)
    ScopeToFrequencyViewPrivate* d_ptr;
};
