// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtWidgets/QTreeWidget>

class FrequencySpectrum;
class FrequencyTrace;
class FrequencyTraceListPrivate;
class QMenu;

/*! \brief The list of analysed traces of a frequency view: name with colour
    and check box (shown or hidden), and the amplitude at the selected
    measure point. Sorted by name; the context menu shows and hides traces. */
class FrequencyTraceList : public QTreeWidget
{
    Q_OBJECT
public:
    explicit FrequencyTraceList(QWidget* parent = nullptr);
    ~FrequencyTraceList() override;

    /*! \brief Rebuilds the list from \a spectrum and makes the first row
        current. */
    void setSpectrum(FrequencySpectrum* spectrum);
    FrequencySpectrum* spectrum() const;

    /*! \brief The item that shows \a trace, or null. */
    QTreeWidgetItem* itemOf(FrequencyTrace* trace) const;
    FrequencyTrace* traceOf(QTreeWidgetItem* item) const;
    /*! \brief The context menu as last shown (null before the first). */
    QMenu* contextMenu() const;

public Q_SLOTS:
    void updateAmplitudes();

Q_SIGNALS:
    void traceSelected(FrequencyTrace* pTrace);

private:
    Q_DECLARE_PRIVATE(FrequencyTraceList)
    FrequencyTraceListPrivate* d_ptr;
};
