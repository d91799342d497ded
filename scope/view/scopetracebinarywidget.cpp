// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracebinarywidget.h"
#include "scopetracebinarywidget_p.h"

#include "datatypeprovider.h"
#include "scopetrace.h"
#include "ui_scopetracebinarywidget.h"

#include <QtWidgets/QCheckBox>

ScopeTraceBinaryWidgetPrivate::ScopeTraceBinaryWidgetPrivate(ScopeTraceBinaryWidget* widget)
    : QObject(widget)
    , ui(std::make_unique<Ui::ScopeTraceBinaryWidget>())
    , q_ptr(widget)
{
    ui->setupUi(widget);
    for (int bit = 0; bit < 32; ++bit) {
        const QString name = QStringLiteral("bit%1checkBox").arg(bit, 2, 10, QLatin1Char('0'));
        if (auto* box = widget->findChild<QCheckBox*>(name)) {
            bitOfCheckBox.insert(box, bit);
            connect(box, &QCheckBox::toggled, this, &ScopeTraceBinaryWidgetPrivate::updateData);
        }
    }
    connect(ui->binaryGroupBox, &QGroupBox::toggled, this, &ScopeTraceBinaryWidgetPrivate::updateData);
    connect(ui->setAllButton, &QAbstractButton::clicked, this, &ScopeTraceBinaryWidgetPrivate::checkAllCheckBoxes);
    connect(ui->setNoneButton, &QAbstractButton::clicked, this, &ScopeTraceBinaryWidgetPrivate::checkNoCheckBoxes);
    updateView();
}

ScopeTraceBinaryWidgetPrivate::~ScopeTraceBinaryWidgetPrivate() = default;

void ScopeTraceBinaryWidgetPrivate::setScopeTrace(ScopeTrace* newTrace)
{
    disconnect(traceConnection);
    traceConnection = {};
    trace = newTrace;
    if (newTrace)
        traceConnection = connect(newTrace, &ScopeTrace::viewChanged, this, &ScopeTraceBinaryWidgetPrivate::updateView);
    updateView();
}

void ScopeTraceBinaryWidgetPrivate::updateView()
{
    Q_Q(ScopeTraceBinaryWidget);
    q->setEnabled(trace != nullptr);
    if (!trace)
        return;
    updating = true;
    ui->binaryGroupBox->setChecked(trace->isBinaryView());
    const quint32 size = DatatypeProvider::instance()->byteSize(trace->physicalDatatype());
    ui->binary0Widget->setEnabled(size != 0);
    ui->binary1Widget->setEnabled(size >= 2);
    ui->binary2Widget->setEnabled(size >= 3);
    ui->binary3Widget->setEnabled(size >= 4);
    const unsigned mask = trace->binaryViewMask();
    for (auto it = bitOfCheckBox.cbegin(); it != bitOfCheckBox.cend(); ++it)
        it.key()->setChecked(mask & (1u << (it.value() % 32)));
    updating = false;
}

void ScopeTraceBinaryWidgetPrivate::updateData()
{
    if (updating || !trace)
        return;
    unsigned mask = 0;
    for (auto it = bitOfCheckBox.cbegin(); it != bitOfCheckBox.cend(); ++it) {
        if (it.key()->isChecked())
            mask |= 1u << (it.value() % 32);
    }
    // Writing the flag signals the trace, which reads the boxes back: keep
    // them as they are until the mask is written as well.
    updating = true;
    trace->setBinaryView(ui->binaryGroupBox->isChecked());
    if (trace)
        trace->setBinaryViewMask(mask);
    updating = false;
}

void ScopeTraceBinaryWidgetPrivate::checkAllCheckBoxes()
{
    if (!trace)
        return;
    // One write for all boxes rather than one per box.
    updating = true;
    for (QCheckBox* box : bitOfCheckBox.keys())
        box->setChecked(true);
    updating = false;
    updateData();
}

void ScopeTraceBinaryWidgetPrivate::checkNoCheckBoxes()
{
    if (!trace)
        return;
    updating = true;
    for (QCheckBox* box : bitOfCheckBox.keys())
        box->setChecked(false);
    updating = false;
    updateData();
}

ScopeTraceBinaryWidget::ScopeTraceBinaryWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeTraceBinaryWidgetPrivate(this))
{
}

ScopeTraceBinaryWidget::~ScopeTraceBinaryWidget() = default;

void ScopeTraceBinaryWidget::setScopeTrace(ScopeTrace* pScopeTrace)
{
    Q_D(ScopeTraceBinaryWidget);
    d->setScopeTrace(pScopeTrace);
}

ScopeTrace* ScopeTraceBinaryWidget::scopeTrace() const
{
    Q_D(const ScopeTraceBinaryWidget);
    return d->trace;
}
