// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopetofrequencyview.h"
#include "scopetofrequencyview_p.h"

#include "frequencyview.h"
#include "traceinformation.h"
#include "ui_scopetofrequencyview.h"

#include <QtCore/QLocale>
#include <QtWidgets/QApplication>
#include <QtWidgets/QComboBox>

#include <cmath>

namespace {

QString localized(QString text)
{
    return text.replace(QLatin1Char('.'), QLocale::system().decimalPoint());
}

// Truncates toward zero into int32; values beyond the range stop at its ends.
qint32 truncatedIndex(double value)
{
    if (std::isnan(value))
        return 0;
    const double truncated = std::trunc(value);
    if (truncated >= 2147483647.0)
        return 2147483647;
    if (truncated <= -2147483648.0)
        return -2147483647 - 1;
    return qint32(truncated);
}

} // namespace

ScopeToFrequencyViewPrivate::ScopeToFrequencyViewPrivate(ScopeToFrequencyView* q,
                                                         const QList<QSharedPointer<TraceInformation>>& traces)
    : QObject(q)
    , format(QStringLiteral("%1ms - %2ms(%3ms)"))
    , ui(std::make_unique<Ui::ScopeToFrequencyView>())
    , q_ptr(q)
    , traces(traces)
{
    if (!traces.isEmpty() && traces.constFirst())
        samplingPeriod = qint64(std::trunc(traces.constFirst()->samplingTime() * 100.0));
    ui->setupUi(q);
    windowFunctionBox = new QComboBox(ui->measureTable);
    windowFunctionBox->addItem(ScopeToFrequencyView::tr("Hamming"));
    windowFunctionBox->addItem(ScopeToFrequencyView::tr("Ohne"));
    ui->measureTable->setCellWidget(2, 1, windowFunctionBox);

    connect(ui->applyButton, &QPushButton::clicked, this, &ScopeToFrequencyViewPrivate::onApplyChanges);
    connect(windowFunctionBox, qOverload<int>(&QComboBox::currentIndexChanged),
            this, &ScopeToFrequencyViewPrivate::onWindowFunktionComboBoxIndexChanged);
    // The second of the two connections of this signal (the view makes the
    // other): receivers hear of every change twice.
    connect(this, &ScopeToFrequencyViewPrivate::windowFunctionChanged, q, &ScopeToFrequencyView::windowFunctionChanged);
}

ScopeToFrequencyViewPrivate::~ScopeToFrequencyViewPrivate()
{
    if (frequencyView)
        disconnect(frequencyView.data(), nullptr, this, nullptr);
}

void ScopeToFrequencyViewPrivate::update()
{
    QTableWidget* table = ui->measureTable;
    ui->applyButton->setEnabled(true);
    ui->applyButton->setToolTip(ScopeToFrequencyView::tr("Anzeige und Auswahl sind unterschiedlich"));
    for (int row = 0; row < 2; ++row) {
        if (QTableWidgetItem* item = table->item(row, 1))
            item->setToolTip(QString());
    }

    const double length = double(markerBTime - markerATime) / 1000.0 / 1000.0;
    const QString interval = ScopeToFrequencyView::tr("%1 ms bis %2 ms (%3 ms)")
                                 .arg(localized(QString::number(double(markerATime) / 1e6, 'f', 2)),
                                      localized(QString::number(double(markerBTime) / 1e6, 'f', 2)),
                                      localized(QString::number(length, 'f', length < 10.0 ? 3 : 0)));
    table->setItem(0, 1, new QTableWidgetItem(interval));

    // A period below 1 ns cannot count samples; nothing can be computed then.
    const bool countable = samplingPeriod > 0;
    const QString count = countable
        ? QString::number((markerBTime - markerATime) / samplingPeriod + 1)
        : QString(QChar(0x2013));
    table->setItem(1, 1, new QTableWidgetItem(count));

    for (const QSharedPointer<TraceInformation>& trace : std::as_const(traces)) {
        if (countable && trace && trace->covers(markerATime, markerBTime))
            continue;
        const QString tip = ScopeToFrequencyView::tr("Es sind keine Messwerte vorhanden");
        ui->applyButton->setToolTip(tip);
        ui->applyButton->setEnabled(false);
        for (int row = 0; row < 2; ++row) {
            auto* item = new QTableWidgetItem(QString(QChar(0x2013)));
            item->setToolTip(tip);
            table->setItem(row, 1, item);
        }
        break;
    }
}

void ScopeToFrequencyViewPrivate::onApplyChanges()
{
    const QList<QSharedPointer<TraceInformation>> analysed = traces;
    if (analysed.isEmpty() || !analysed.constFirst())
        return;
    if (!frequencyView) {
        frequencyView = new FrequencyView;
        connect(frequencyView.data(), &QObject::destroyed, this, &ScopeToFrequencyViewPrivate::onFequencyViewDestroyed);
        Q_EMIT newFrequencyViewCreated(frequencyView.data());
        // A host that did not take the window into its own layout gets it
        // as a window of its own.
        if (frequencyView && !frequencyView->parentWidget() && !frequencyView->isVisible())
            frequencyView->show();
    }
    if (!frequencyView)
        return;

    QApplication::setOverrideCursor(Qt::WaitCursor);
    const TraceInformation* first = analysed.constFirst().data();
    const qint64 start = first->startTime();
    const double samplingTime = first->samplingTime();
    const qint32 firstIndex = truncatedIndex(double(markerATime - start) / samplingTime / 100.0);
    const qint32 lastIndex = truncatedIndex(double(markerBTime - start) / samplingTime / 100.0);
    frequencyView->setData(analysed, firstIndex, lastIndex, windowFunction);
    QApplication::restoreOverrideCursor();

    ui->applyButton->setEnabled(false);
    ui->applyButton->setToolTip(ScopeToFrequencyView::tr("Anzeige entspricht der Auswahl"));
}

void ScopeToFrequencyViewPrivate::onWindowFunktionComboBoxIndexChanged(int index)
{
    if (index == windowFunction)
        return;
    windowFunction = index != 0 ? Frequency::NoWindow : Frequency::Hamming;
    Q_EMIT windowFunctionChanged(Frequency::WindowFunctions(windowFunction));
    update();
    ui->applyButton->setToolTip(ScopeToFrequencyView::tr("Fensterfunktion wurde geändert"));
}

void ScopeToFrequencyViewPrivate::onFequencyViewDestroyed()
{
    frequencyView = nullptr;
    ui->applyButton->setEnabled(true);
    ui->applyButton->setToolTip(ScopeToFrequencyView::tr("Neu berechnen"));
}

ScopeToFrequencyView::ScopeToFrequencyView(const QList<QSharedPointer<TraceInformation>>& traces, QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeToFrequencyViewPrivate(this, traces))
{
    Q_D(ScopeToFrequencyView);
    connect(d, &ScopeToFrequencyViewPrivate::windowFunctionChanged, this, &ScopeToFrequencyView::windowFunctionChanged);
    connect(d, &ScopeToFrequencyViewPrivate::newFrequencyViewCreated, this, &ScopeToFrequencyView::newFrequencyViewCreated);
}

ScopeToFrequencyView::~ScopeToFrequencyView()
{
    delete d_ptr;
}

FrequencyView* ScopeToFrequencyView::frequencyView() const
{
    Q_D(const ScopeToFrequencyView);
    return d->frequencyView.data();
}

Frequency::WindowFunctions ScopeToFrequencyView::windowFunction() const
{
    Q_D(const ScopeToFrequencyView);
    return Frequency::WindowFunctions(d->windowFunction);
}

qint64 ScopeToFrequencyView::samplingPeriod() const
{
    Q_D(const ScopeToFrequencyView);
    return d->samplingPeriod;
}

qint64 ScopeToFrequencyView::markerATime() const
{
    Q_D(const ScopeToFrequencyView);
    return d->markerATime;
}

qint64 ScopeToFrequencyView::markerBTime() const
{
    Q_D(const ScopeToFrequencyView);
    return d->markerBTime;
}

void ScopeToFrequencyView::onMarkerTimePositionChanged(uchar index, qlonglong value)
{
    Q_D(ScopeToFrequencyView);
    if (index == 0)
        d->markerATime = value;
    else if (index == 1)
        d->markerBTime = value;
    else
        return;
    d->update();
}
