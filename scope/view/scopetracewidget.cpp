// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracewidget.h"
#include "scopetracewidget_p.h"

#include "datatypeprovider.h"
#include "scopeshot.h"
#include "scopetrace.h"
#include "scopetracebinarywidget.h"
#include "simpletype.h"
#include "ui_scopetracewidget.h"

#include <QtCore/QLocale>
#include <QtGui/QGuiApplication>
#include <QtGui/QPixmap>
#include <QtGui/QActionGroup>
#include <QtWidgets/QColorDialog>
#include <QtWidgets/QMenu>

#include <cmath>

namespace {

// Display kinds of a trace (see ScopeTrace::parameterKind()).
constexpr int kindDecimal = 0;
constexpr int kindHexadecimal = 3;
constexpr int kindBinary = 4;

// Half of the plot's eight divisions.
constexpr double plotMiddle = 4.0;

QString localDecimalPoint()
{
    return QLocale::system().decimalPoint();
}

bool isIntegerTrace(const ScopeTrace* trace)
{
    const SimpleType* type = DatatypeProvider::instance()->simpleType(trace->physicalDatatype());
    return type && type->kind() != eSimpleTypeKindFractional;
}

} // namespace

ScopeTraceWidgetPrivate::ScopeTraceWidgetPrivate(ScopeTraceWidget* widget)
    : QObject(widget)
    , ui(std::make_unique<Ui::ScopeTraceWidget>())
    , q_ptr(widget)
{
    ui->setupUi(widget);
    ui->scalingEdit->setStyleSheet(QStringLiteral("background-color:palette(button)"));

    kindMenu = new QMenu(widget);
    auto* kinds = new QActionGroup(kindMenu);
    decimalAction = kindMenu->addAction(ScopeTraceWidget::tr("Dezimal"));
    binaryAction = kindMenu->addAction(ScopeTraceWidget::tr("Binär"));
    hexadecimalAction = kindMenu->addAction(ScopeTraceWidget::tr("Hexadezimal"));
    for (QAction* action : {decimalAction, binaryAction, hexadecimalAction}) {
        action->setCheckable(true);
        kinds->addAction(action);
    }
    kindMenu->addSeparator();
    selectBitsAction = kindMenu->addAction(QIcon(QStringLiteral(":/Resources/Scope.png")),
        ScopeTraceWidget::tr("Binärsignale auswählen ..."));
    ui->kindButton->setMenu(kindMenu);

    connect(ui->moveUpButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onMoveUpClicked);
    connect(ui->moveDownButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onMoveDownClicked);
    connect(ui->scaleUpButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onScaleUpClicked);
    connect(ui->scaleDownButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onScaleDownClicked);
    connect(ui->groundButton, &QAbstractButton::toggled, this, &ScopeTraceWidgetPrivate::onGroundToggled);
    connect(ui->offButton, &QAbstractButton::toggled, this, &ScopeTraceWidgetPrivate::onOffToggled);
    connect(ui->invertButton, &QAbstractButton::toggled, this, &ScopeTraceWidgetPrivate::onInvertToggled);
    connect(ui->binaryButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onBinaryClicked);
    connect(ui->colorButton, &QAbstractButton::clicked, this, &ScopeTraceWidgetPrivate::onColorButtonClicked);
    connect(ui->scalingEdit, &LineEdit::textCommited, this, &ScopeTraceWidgetPrivate::onScalingEditCommitted);
    connect(decimalAction, &QAction::triggered, this, &ScopeTraceWidgetPrivate::onKindSetDecimal);
    connect(binaryAction, &QAction::triggered, this, &ScopeTraceWidgetPrivate::onKindSetBinary);
    connect(hexadecimalAction, &QAction::triggered, this, &ScopeTraceWidgetPrivate::onKindSetHexadecimal);
    connect(selectBitsAction, &QAction::triggered, this, &ScopeTraceWidgetPrivate::showBinaryWidget);

    updateControls();
}

ScopeTraceWidgetPrivate::~ScopeTraceWidgetPrivate() = default;

void ScopeTraceWidgetPrivate::setScopeTrace(ScopeTrace* newTrace)
{
    disconnect(traceConnection);
    disconnect(shotConnection);
    traceConnection = {};
    shotConnection = {};
    trace = newTrace;
    updateControls();
    if (newTrace) {
        traceConnection = connect(newTrace, &ScopeTrace::changed, this, &ScopeTraceWidgetPrivate::updateControls,
            Qt::UniqueConnection);
        if (auto* shot = qobject_cast<ScopeShot*>(newTrace->shot())) {
            shotConnection = connect(shot, &ScopeShot::changed, this, &ScopeTraceWidgetPrivate::updateControls,
                Qt::UniqueConnection);
        }
    }
    if (binaryWidget)
        binaryWidget->setScopeTrace(newTrace);
}

void ScopeTraceWidgetPrivate::updateControls()
{
    updating = true;
    ScopeTrace* t = trace.data();
    const bool hasTrace = t != nullptr;
    const QList<QWidget*> controls = {ui->moveUpButton, ui->moveDownButton, ui->scaleUpButton, ui->scaleDownButton,
        ui->groundButton, ui->offButton, ui->invertButton, ui->binaryButton, ui->colorButton, ui->scalingEdit};
    for (QWidget* control : controls)
        control->setEnabled(hasTrace);

    ui->groundButton->setChecked(hasTrace && t->isGround());
    ui->offButton->setChecked(hasTrace && t->isOff());
    ui->invertButton->setChecked(hasTrace && t->isInverted());
    ui->binaryButton->setChecked(hasTrace && t->isBinaryView());

    if (hasTrace) {
        QPixmap swatch(16, 16);
        swatch.fill(t->color());
        ui->colorButton->setIcon(QIcon(swatch));
    } else {
        ui->colorButton->setIcon(QIcon(QStringLiteral(":/Resources/Scope/TraceColor.png")));
    }

    QString scaling;
    if (hasTrace && t->scalingFactor() != 0.0) {
        // The edit shows units per division, the trace keeps the reciprocal.
        scaling = QString::number(1.0 / t->scalingFactor(), 'g', 6);
        scaling.replace(QLatin1Char('.'), localDecimalPoint());
        scaling += QLatin1Char(' ') + t->measure() + QStringLiteral("/div");
    }
    {
        const QSignalBlocker blocker(ui->scalingEdit);
        ui->scalingEdit->setText(scaling);
    }

    const bool integer = hasTrace && isIntegerTrace(t);
    ui->kindButton->setEnabled(integer);
    const int kind = hasTrace ? t->parameterKind() : -1;
    decimalAction->setChecked(kind != kindBinary && kind != kindHexadecimal);
    binaryAction->setChecked(kind == kindBinary);
    hexadecimalAction->setChecked(kind == kindHexadecimal);
    updating = false;
}

void ScopeTraceWidgetPrivate::moveVertically(bool up)
{
    if (!trace)
        return;
    const Qt::KeyboardModifiers modifiers =
        QGuiApplication::keyboardModifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
    const double offset = trace->verticalOffset();
    if (modifiers == Qt::ShiftModifier) {
        trace->shiftVerticalOffset(up ? 1 : -1);
    } else if (modifiers == Qt::ControlModifier) {
        // Down from a grid line stays on it, up always reaches the next one.
        trace->setVerticalOffset(up ? std::floor(offset + 1.0) : std::floor(offset));
    } else if (modifiers == (Qt::ShiftModifier | Qt::ControlModifier)) {
        trace->setVerticalOffset(plotMiddle);
    } else {
        trace->setVerticalOffset(up ? offset + 1.0 : offset - 1.0);
    }
}

void ScopeTraceWidgetPrivate::onMoveUpClicked()
{
    moveVertically(true);
}

void ScopeTraceWidgetPrivate::onMoveDownClicked()
{
    moveVertically(false);
}

void ScopeTraceWidgetPrivate::onScaleUpClicked()
{
    if (!trace)
        return;
    const Qt::KeyboardModifiers modifiers =
        QGuiApplication::keyboardModifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
    if (modifiers == Qt::ControlModifier)
        trace->autoScale();
    else
        trace->zoomIn();
}

void ScopeTraceWidgetPrivate::onScaleDownClicked()
{
    if (!trace)
        return;
    const Qt::KeyboardModifiers modifiers =
        QGuiApplication::keyboardModifiers() & (Qt::ShiftModifier | Qt::ControlModifier);
    if (modifiers == Qt::ControlModifier)
        trace->autoScale();
    else
        trace->zoomOut();
}

void ScopeTraceWidgetPrivate::onGroundToggled(bool checked)
{
    if (updating || !trace)
        return;
    trace->setGround(checked, true);
}

void ScopeTraceWidgetPrivate::onOffToggled(bool checked)
{
    if (updating || !trace)
        return;
    trace->setOff(checked, true);
}

void ScopeTraceWidgetPrivate::onInvertToggled(bool checked)
{
    if (updating || !trace)
        return;
    trace->setInverted(checked, true);
}

void ScopeTraceWidgetPrivate::onBinaryClicked()
{
    if (trace)
        trace->setBinaryView(!trace->isBinaryView());
    updateControls();
}

void ScopeTraceWidgetPrivate::onColorButtonClicked()
{
    if (!trace)
        return;
    Q_Q(ScopeTraceWidget);
    QColorDialog dialog(trace->color(), q);
    if (dialog.exec() == QDialog::Accepted && trace)
        trace->setColor(dialog.selectedColor());
}

void ScopeTraceWidgetPrivate::onScalingEditCommitted()
{
    if (!trace) {
        updateControls();
        return;
    }
    const QStringList parts = ui->scalingEdit->text().split(QLatin1Char(' '), Qt::SkipEmptyParts);
    QString number = parts.isEmpty() ? QString() : parts.first();
    number.replace(localDecimalPoint(), QStringLiteral("."));
    const float unitsPerDivision = number.toFloat();
    if (unitsPerDivision == 0.0f || !std::isfinite(unitsPerDivision)) {
        updateControls();
        return;
    }
    const float factor = 1.0f / unitsPerDivision;
    if (std::isfinite(factor))
        trace->setScalingFactor(static_cast<double>(factor));
    // A factor the trace refuses (it is off) or that equals the present one
    // signals nothing: show the trace's value again in any case.
    updateControls();
}

void ScopeTraceWidgetPrivate::onKindSetDecimal()
{
    if (trace)
        trace->setParameterKind(kindDecimal);
}

void ScopeTraceWidgetPrivate::onKindSetBinary()
{
    if (trace)
        trace->setParameterKind(kindBinary);
}

void ScopeTraceWidgetPrivate::onKindSetHexadecimal()
{
    if (trace)
        trace->setParameterKind(kindHexadecimal);
}

void ScopeTraceWidgetPrivate::showBinaryWidget()
{
    Q_Q(ScopeTraceWidget);
    if (!binaryWidget) {
        binaryWidget = new ScopeTraceBinaryWidget(q);
        binaryWidget->setWindowFlags(Qt::Window);
        binaryWidget->setAttribute(Qt::WA_DeleteOnClose);
    }
    binaryWidget->setScopeTrace(trace);
    binaryWidget->show();
    binaryWidget->raise();
    binaryWidget->activateWindow();
}

ScopeTraceWidget::ScopeTraceWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeTraceWidgetPrivate(this))
{
}

ScopeTraceWidget::~ScopeTraceWidget() = default;

ScopeTrace* ScopeTraceWidget::scopeTrace() const
{
    Q_D(const ScopeTraceWidget);
    return d->trace;
}

void ScopeTraceWidget::setScopeTrace(ScopeTrace* pScopeTrace)
{
    Q_D(ScopeTraceWidget);
    d->setScopeTrace(pScopeTrace);
}
