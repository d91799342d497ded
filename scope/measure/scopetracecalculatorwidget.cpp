// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetracecalculatorwidget.h"
#include "scopetracecalculatorwidget_p.h"

#include "scopetrace.h"
#include "scopetracecalculator.h"

#include <QtCore/QLocale>
#include <QtWidgets/QHeaderView>
#include <QtWidgets/QTreeWidget>
#include <QtWidgets/QVBoxLayout>

namespace {

QString withDecimalPoint(QString text)
{
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

} // namespace

ScopeTraceCalculatorWidgetPrivate::ScopeTraceCalculatorWidgetPrivate(ScopeTraceCalculatorWidget* q)
    : q_ptr(q)
    , calculator(new ScopeTraceCalculator(this))
{
}

void ScopeTraceCalculatorWidgetPrivate::addRows()
{
    // Labels are translated in the widget's own context.
    const QStringList labels = {
        ScopeTraceCalculatorWidget::tr("Intervall"),
        ScopeTraceCalculatorWidget::tr("Wert in %1").arg(QStringLiteral("A")),
        ScopeTraceCalculatorWidget::tr("Wert in %1").arg(QStringLiteral("B")),
        ScopeTraceCalculatorWidget::tr("Wertdifferenz Marker A/B"),
        ScopeTraceCalculatorWidget::tr("Steigung"),
        ScopeTraceCalculatorWidget::tr("Mittelwert"),
        ScopeTraceCalculatorWidget::tr("Integral"),
        ScopeTraceCalculatorWidget::tr("Minimalwert"),
        ScopeTraceCalculatorWidget::tr("Maximalwert"),
        ScopeTraceCalculatorWidget::tr("Wertdifferenz min/max"),
        ScopeTraceCalculatorWidget::tr("Effektivwert"),
        ScopeTraceCalculatorWidget::tr("Standardabweichung"),
    };
    const QStringList keys = ScopeTraceCalculatorWidget::rowKeys();
    for (int i = 0; i < keys.size(); ++i) {
        auto* item = new QTreeWidgetItem(tree, QStringList{labels.at(i), QString()});
        item->setData(0, Qt::UserRole, keys.at(i));
        rows.insert(keys.at(i), item);
    }
}

void ScopeTraceCalculatorWidgetPrivate::updateHeader()
{
    tree->setHeaderLabels({ScopeTraceCalculatorWidget::tr("Messgröße"),
                           trace ? trace->name() : QString()});
    tree->resizeColumnToContents(0);
}

void ScopeTraceCalculatorWidgetPrivate::setValue(const QString& key, const QString& text)
{
    if (QTreeWidgetItem* item = rows.value(key))
        item->setText(1, text);
}

void ScopeTraceCalculatorWidgetPrivate::refresh()
{
    const qint64 a = calculator->markerTimeA();
    const qint64 b = calculator->markerTimeB();
    const QString interval = ScopeTraceCalculatorWidget::tr("%1 ms bis %2 ms (%3 ms)")
                                 .arg(QString::number(a / 1e6, 'f', 2), QString::number(b / 1e6, 'f', 2),
                                      QString::number(double(b - a) / 1e6, 'f', 2));
    setValue(QStringLiteral("time_difference"), withDecimalPoint(interval));

    const ScopeTraceCalculator* c = calculator;
    setValue(QStringLiteral("value_at_a"), c->valueText(c->valueAtA(), true));
    setValue(QStringLiteral("value_at_b"), c->valueText(c->valueAtB(), true));
    setValue(QStringLiteral("value_difference"), c->valueText(c->valueDifference(), true));
    // The average runs the statistics update whose sample count the gradient
    // uses, so it is asked for first.
    const QString average = c->valueText(c->average(), true);
    setValue(QStringLiteral("gradient"), c->gradientText(c->gradient(), true));
    setValue(QStringLiteral("average"), average);
    setValue(QStringLiteral("integral"), c->integralText(c->integral(), true));
    setValue(QStringLiteral("minimum"), c->valueText(c->minimum(), true));
    setValue(QStringLiteral("maximum"), c->valueText(c->maximum(), true));
    setValue(QStringLiteral("peak"), c->valueText(c->peak(), true));
    setValue(QStringLiteral("rms_value"), c->valueText(c->rmsValue(), true));
    setValue(QStringLiteral("standard_deviation"), c->valueText(c->standardDeviation(), true));
}

ScopeTraceCalculatorWidget::ScopeTraceCalculatorWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeTraceCalculatorWidgetPrivate(this))
{
    Q_D(ScopeTraceCalculatorWidget);
    d->setParent(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    d->tree = new QTreeWidget(this);
    d->tree->setObjectName(QStringLiteral("treeWidget"));
    d->tree->setColumnCount(2);
    d->tree->setRootIsDecorated(false);
    d->tree->setAlternatingRowColors(true);
    layout->addWidget(d->tree);
    d->addRows();
    d->updateHeader();
    d->refresh();
}

ScopeTraceCalculatorWidget::~ScopeTraceCalculatorWidget() = default;

QStringList ScopeTraceCalculatorWidget::rowKeys()
{
    return {QStringLiteral("time_difference"), QStringLiteral("value_at_a"), QStringLiteral("value_at_b"),
            QStringLiteral("value_difference"), QStringLiteral("gradient"), QStringLiteral("average"),
            QStringLiteral("integral"), QStringLiteral("minimum"), QStringLiteral("maximum"),
            QStringLiteral("peak"), QStringLiteral("rms_value"), QStringLiteral("standard_deviation")};
}

QTreeWidget* ScopeTraceCalculatorWidget::treeWidget() const
{
    Q_D(const ScopeTraceCalculatorWidget);
    return d->tree;
}

ScopeTraceCalculator* ScopeTraceCalculatorWidget::calculator() const
{
    Q_D(const ScopeTraceCalculatorWidget);
    return d->calculator;
}

ScopeTrace* ScopeTraceCalculatorWidget::scopeTrace() const
{
    Q_D(const ScopeTraceCalculatorWidget);
    return d->trace.data();
}

QString ScopeTraceCalculatorWidget::labelText(const QString& key) const
{
    Q_D(const ScopeTraceCalculatorWidget);
    const QTreeWidgetItem* item = d->rows.value(key);
    return item ? item->text(0) : QString();
}

QString ScopeTraceCalculatorWidget::valueText(const QString& key) const
{
    Q_D(const ScopeTraceCalculatorWidget);
    const QTreeWidgetItem* item = d->rows.value(key);
    return item ? item->text(1) : QString();
}

void ScopeTraceCalculatorWidget::onMarkerTimePositionChanged(quint8 marker, qint64 time)
{
    Q_D(ScopeTraceCalculatorWidget);
    d->markerTimes.insert(marker, time);
    d->calculator->setMarkerTimes(d->markerTimes.value(0, 0), d->markerTimes.value(1, 0));
    d->refresh();
}

void ScopeTraceCalculatorWidget::onScopeTraceSelected(ScopeTrace* trace)
{
    Q_D(ScopeTraceCalculatorWidget);
    disconnect(d->traceConnection);
    d->trace = trace;
    d->calculator->setScopeTrace(trace);
    if (trace)
        d->traceConnection = connect(trace, &ScopeTrace::changed, this,
                                     &ScopeTraceCalculatorWidget::onCurrentScopeTraceChanged);
    d->updateHeader();
    d->refresh();
}

void ScopeTraceCalculatorWidget::onCurrentScopeTraceChanged()
{
    Q_D(ScopeTraceCalculatorWidget);
    d->refresh();
}
