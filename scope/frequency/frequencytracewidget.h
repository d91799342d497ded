// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>

#include <memory>

class FrequencyTrace;

namespace Ui {
class FrequencyTraceWidget;
}

/*! \brief Details of the selected frequency trace: colour button, name,
    amplitude at the selected measure point and the "OFF" button. */
class FrequencyTraceWidget : public QWidget
{
    Q_OBJECT
public:
    explicit FrequencyTraceWidget(QWidget* parent = nullptr);
    ~FrequencyTraceWidget() override;

    FrequencyTrace* trace() const;

public Q_SLOTS:
    void updateAmplitudes();
    void selectTrace(FrequencyTrace* trace);
    void onColorButtonClicked();
    void checkCheckState();
    void updateColor();

private:
    std::unique_ptr<Ui::FrequencyTraceWidget> ui;
    QPointer<FrequencyTrace> m_trace;
    QList<QMetaObject::Connection> m_connections;
};
