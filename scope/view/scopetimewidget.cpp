// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetimewidget.h"
#include "scopetimewidget_p.h"

#include "scopelayout.h"
#include "scopeseries.h"
#include "scopestripeswidget.h"
#include "scopewidget.h"
#include "ui_scopetimewidget.h"
#include "zoombar.h"

#include <QtCore/QLocale>
#include <QtCore/QRegularExpression>
#include <QtGui/QGuiApplication>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

QString localDecimalPoint()
{
    return QLocale::system().decimalPoint();
}

// The unit pattern accepts the system's decimal point as well as ".". It is
// built once for the process, with the locale in force at the first entry.
const QRegularExpression& scalePattern()
{
    static const QRegularExpression pattern(QStringLiteral("(\\d+[%1.]?\\d*)\\s*(ms|ns|s|\u00b5s|us)(\\/DIV)?")
                                                .arg(QRegularExpression::escape(localDecimalPoint())));
    return pattern;
}

// Spans beyond this are treated as "larger than any recording": llround()
// is undefined for values outside qint64.
constexpr double largestSpan = 4.0e18;

} // namespace

ScopeTimeWidgetPrivate::ScopeTimeWidgetPrivate(ScopeTimeWidget* widget)
    : QObject(widget)
    , ui(std::make_unique<Ui::ScopeTimeWidget>())
    , q_ptr(widget)
{
    ui->setupUi(widget);
    ui->scalingEdit->setStyleSheet(QStringLiteral("background-color:palette(button)"));

    connect(ui->scaleDownButton, &QAbstractButton::clicked, this, &ScopeTimeWidgetPrivate::onScaleDownClicked);
    connect(ui->scaleUpButton, &QAbstractButton::clicked, this, &ScopeTimeWidgetPrivate::onScaleUpClicked);
    connect(ui->moveLeftButton, &QAbstractButton::clicked, this, &ScopeTimeWidgetPrivate::onMoveLeftClicked);
    connect(ui->moveRightButton, &QAbstractButton::clicked, this, &ScopeTimeWidgetPrivate::onMoveRightClicked);
    connect(ui->scalingEdit, &LineEdit::textCommited, this, &ScopeTimeWidgetPrivate::onScalingEditCommitted);
}

ScopeTimeWidgetPrivate::~ScopeTimeWidgetPrivate() = default;

int ScopeTimeWidgetPrivate::divisions() const
{
    if (!stripesWidget)
        return 10;
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    if (widgets.isEmpty() || !widgets.first()->layout())
        return 10;
    const int columns = widgets.first()->layout()->divisions().width();
    return columns > 0 ? columns : 10;
}

int ScopeTimeWidgetPrivate::cellWidth() const
{
    if (!stripesWidget)
        return 10;
    const QList<ScopeWidget*> widgets = stripesWidget->scopeWidgets();
    if (widgets.isEmpty() || !widgets.first()->layout())
        return 10;
    // A plot that was never laid out has no cell width yet; a pixel is then
    // taken as a tenth of a division, as without a plot.
    const int width = widgets.first()->layout()->divisionSize().width();
    return width > 0 ? width : 10;
}

double ScopeTimeWidgetPrivate::timePerDivision() const
{
    if (!zoomBar)
        return 0.0;
    return static_cast<double>((zoomBar->sliderRight() - zoomBar->sliderLeft()) / divisions());
}

void ScopeTimeWidgetPrivate::updateControls()
{
    if (!zoomBar)
        return;
    QString text = QString::number(timePerDivision() / 1000.0 / 1000.0, 'f', 2) + QStringLiteral(" ms/div");
    text.replace(QLatin1Char('.'), localDecimalPoint());
    {
        const QSignalBlocker blocker(ui->scalingEdit);
        ui->scalingEdit->setText(text);
    }
    Q_EMIT viewChanged();
}

void ScopeTimeWidgetPrivate::setTimePerDivision(double value)
{
    if (!zoomBar)
        return;
    const qint64 left = zoomBar->sliderLeft();
    const qint64 right = zoomBar->sliderRight();
    const qint64 minimum = zoomBar->minimum();
    const qint64 maximum = zoomBar->maximum();
    const qint64 minimumDifference = zoomBar->minimumSliderDifference();
    const qint64 centre = left + (right - left) / 2;

    const double span = divisions() * value;
    if (!(span < largestSpan)) {
        // Wider than any recording (or not a number): the whole recording.
        zoomBar->setSlider(minimum, maximum);
    } else {
        const qint64 s = std::llround(span);
        const qint64 l = centre - s / 2;
        if (l > minimum && l + s < maximum && s > minimumDifference) {
            zoomBar->setSlider(l, l + s);
        } else if (s > minimumDifference) {
            zoomBar->setSlider(minimum, maximum);
        } else {
            const qint64 m = minimumDifference;
            zoomBar->setSlider(centre - m / 2, centre - m / 2 + m);
        }
    }
    updateControls();
}

void ScopeTimeWidgetPrivate::onScaleUpClicked()
{
    if (!zoomBar)
        return;
    setTimePerDivision(ScopeSeries::nextSmaller(timePerDivision()));
}

void ScopeTimeWidgetPrivate::onScaleDownClicked()
{
    if (!zoomBar)
        return;
    setTimePerDivision(ScopeSeries::nextLarger(timePerDivision()));
}

void ScopeTimeWidgetPrivate::applyMove(qint64 delta)
{
    const qint64 left = zoomBar->sliderLeft();
    const qint64 right = zoomBar->sliderRight();
    qint64 shift = 0;
    if (delta < 1)
        shift = -std::min(-delta, std::abs(left - zoomBar->minimum()));
    else
        shift = std::min(delta, std::abs(zoomBar->maximum() - right));
    zoomBar->setSlider(left + shift, right + shift);
}

void ScopeTimeWidgetPrivate::move(int direction)
{
    if (!zoomBar)
        return;
    const Qt::KeyboardModifiers modifiers = QGuiApplication::keyboardModifiers();
    qint64 step = 0;
    if (modifiers & Qt::ShiftModifier) {
        step = direction * std::llround(timePerDivision() / cellWidth());
    } else if (modifiers & Qt::ControlModifier) {
        const qint64 raster = timeRaster > 0 ? timeRaster : 1;
        qint64 left = zoomBar->sliderLeft();
        qint64 delta = (left / raster) * raster - left;
        if (delta != 0) {
            // Make the window a whole number of raster steps wide first, so
            // that both edges can sit on the raster.
            setTimePerDivision(static_cast<double>(std::llround(timePerDivision() / raster) * raster));
            left = zoomBar->sliderLeft();
            delta = (left / raster) * raster - left;
        }
        if (direction < 0)
            step = delta;
        else
            step = delta != 0 ? raster + delta : 0;
    } else {
        step = direction * std::llround(timePerDivision());
    }
    if (step != 0)
        applyMove(step);
}

void ScopeTimeWidgetPrivate::onMoveLeftClicked()
{
    move(+1);
}

void ScopeTimeWidgetPrivate::onMoveRightClicked()
{
    move(-1);
}

void ScopeTimeWidgetPrivate::onScalingEditCommitted()
{
    const QRegularExpressionMatch match = scalePattern().match(ui->scalingEdit->text());
    if (match.hasMatch()) {
        QString number = match.captured(1);
        number.replace(localDecimalPoint(), QStringLiteral("."));
        const double value = number.toDouble();
        const QString unit = match.captured(2);
        double factor = 1.0;
        if (unit == QLatin1String("us") || unit == QStringLiteral("\u00b5s"))
            factor = 1000.0;
        else if (unit == QLatin1String("ms"))
            factor = 1000000.0;
        else if (unit == QLatin1String("s"))
            factor = 1000000000.0;
        const double nanoseconds = value * factor;
        if (nanoseconds > 0)
            setTimePerDivision(nanoseconds);
    }
    updateControls();
}

ScopeTimeWidget::ScopeTimeWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeTimeWidgetPrivate(this))
{
    Q_D(ScopeTimeWidget);
    connect(d, &ScopeTimeWidgetPrivate::viewChanged, this, &ScopeTimeWidget::viewChanged);
}

ScopeTimeWidget::~ScopeTimeWidget() = default;

void ScopeTimeWidget::setZoomBar(ZoomBar* zoomBar)
{
    Q_D(ScopeTimeWidget);
    if (d->zoomBar == zoomBar)
        return;
    for (const QMetaObject::Connection& connection : std::as_const(d->zoomBarConnections))
        disconnect(connection);
    d->zoomBarConnections.clear();
    d->zoomBar = zoomBar;
    if (zoomBar) {
        d->zoomBarConnections = {
            connect(zoomBar, &ZoomBar::maximumChanged, d, &ScopeTimeWidgetPrivate::updateControls),
            connect(zoomBar, &ZoomBar::minimumChanged, d, &ScopeTimeWidgetPrivate::updateControls),
            connect(zoomBar, &ZoomBar::sliderLeftChanged, d, &ScopeTimeWidgetPrivate::updateControls),
            connect(zoomBar, &ZoomBar::sliderRightChanged, d, &ScopeTimeWidgetPrivate::updateControls),
        };
    }
    d->updateControls();
}

ZoomBar* ScopeTimeWidget::zoomBar() const
{
    Q_D(const ScopeTimeWidget);
    return d->zoomBar;
}

void ScopeTimeWidget::setStripesWidget(ScopeStripesWidget* stripesWidget)
{
    Q_D(ScopeTimeWidget);
    if (d->stripesWidget == stripesWidget)
        return;
    d->stripesWidget = stripesWidget;
    d->updateControls();
}

ScopeStripesWidget* ScopeTimeWidget::stripesWidget() const
{
    Q_D(const ScopeTimeWidget);
    return d->stripesWidget;
}

void ScopeTimeWidget::setTimeRaster(qint64 timeRaster)
{
    Q_D(ScopeTimeWidget);
    d->timeRaster = timeRaster;
}

qint64 ScopeTimeWidget::timeRaster() const
{
    Q_D(const ScopeTimeWidget);
    return d->timeRaster;
}
