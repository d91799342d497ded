// SPDX-License-Identifier: GPL-3.0-or-later
#include "frequencytracewidget.h"

#include "frequencytrace.h"
#include "ui_frequencytracewidget.h"

#include <QtWidgets/QColorDialog>

FrequencyTraceWidget::FrequencyTraceWidget(QWidget* parent)
    : QWidget(parent)
    , ui(std::make_unique<Ui::FrequencyTraceWidget>())
{
    ui->setupUi(this);
    connect(ui->colorButton, &QPushButton::clicked, this, &FrequencyTraceWidget::onColorButtonClicked);
}

FrequencyTraceWidget::~FrequencyTraceWidget() = default;

FrequencyTrace* FrequencyTraceWidget::trace() const
{
    return m_trace.data();
}

void FrequencyTraceWidget::selectTrace(FrequencyTrace* trace)
{
    for (const QMetaObject::Connection& connection : std::as_const(m_connections))
        disconnect(connection);
    m_connections.clear();
    m_trace = trace;
    if (!trace) {
        ui->nameLabel->clear();
        ui->measureLabel->clear();
        return;
    }
    updateColor();
    {
        const QSignalBlocker blocker(ui->hideButton);
        ui->hideButton->setChecked(trace->isHidden());
    }
    ui->nameLabel->setText(trace->name());
    ui->measureLabel->setText(trace->amplitudeText());
    m_connections << connect(ui->hideButton, &QPushButton::toggled, trace, &FrequencyTrace::setHidden);
    m_connections << connect(trace, &FrequencyTrace::selectedMeasurePointChanged, this, &FrequencyTraceWidget::updateAmplitudes);
    m_connections << connect(trace, &FrequencyTrace::visibilityChanged, this, &FrequencyTraceWidget::checkCheckState);
    m_connections << connect(trace, &FrequencyTrace::colorChanged, this, &FrequencyTraceWidget::updateColor);
}

void FrequencyTraceWidget::updateColor()
{
    if (!m_trace)
        return;
    QPalette palette = ui->colorButton->palette();
    palette.setBrush(QPalette::All, QPalette::Button, m_trace->color());
    ui->colorButton->setPalette(palette);
    ui->colorButton->setAutoFillBackground(true);
}

void FrequencyTraceWidget::checkCheckState()
{
    if (!m_trace)
        return;
    ui->hideButton->setChecked(m_trace->isHidden());
}

void FrequencyTraceWidget::updateAmplitudes()
{
    if (!m_trace)
        return;
    ui->measureLabel->setText(m_trace->amplitudeText());
}

void FrequencyTraceWidget::onColorButtonClicked()
{
    if (!m_trace)
        return;
    const QColor color = QColorDialog::getColor(m_trace->color(), this);
    if (color.isValid() && m_trace)
        m_trace->setColor(color);
}
