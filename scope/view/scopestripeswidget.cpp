// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopestripeswidget.h"
#include "scopestripeswidget_p.h"

#include "iniparser.h"
#include "scopelayout.h"
#include "scopemarker.h"
#include "scopequickmeasure.h"
#include "scopescene.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracefilter.h"
#include "scopewidget.h"
#include "zoombar.h"

#include <QtCore/QMap>
#include <QtWidgets/QSplitter>
#include <QtWidgets/QVBoxLayout>

#include <algorithm>

// Stripe layout vocabulary inside a "ScopeScene" section:
//   ScopeStripe_<s>_ScopeStripeName         name of stripe s (Latin-1, empty: default name)
//   ScopeStripe_<s>_StripeTrace_<t>         archive ID of the shot of trace t of stripe s
//   ScopeStripe_<s>_StripeTrace_<t>_TraceIndex   its channel number
//   TraceView_<hex shot ID>_<channel>_<key> the display settings of a trace (the
//                                          view keys of a channel section)
namespace {

const QByteArray stripePrefix("ScopeStripe_");
const QByteArray stripeNameKey("_ScopeStripeName");
const QByteArray stripeTraceKey("_StripeTrace_");
const QByteArray traceIndexKey("_TraceIndex");
const QByteArray traceViewPrefix("TraceView_");

QByteArray traceViewKeyPrefix(const QByteArray& shotId, int channel)
{
    return traceViewPrefix + shotId.toHex() + '_' + QByteArray::number(channel) + '_';
}

QByteArray shotIdOf(const ScopeShot* shot)
{
    return shot->archive() ? shot->archive()->id() : QByteArray();
}

ScopeTrace* findTrace(const QList<ScopeShot*>& shots, const QByteArray& shotId, int channel)
{
    for (ScopeShot* shot : shots) {
        if (shot && shotIdOf(shot) == shotId) {
            if (ScopeTrace* trace = shot->trace(channel))
                return trace;
        }
    }
    return nullptr;
}

} // namespace

ScopeStripesWidgetPrivate::ScopeStripesWidgetPrivate(ScopeStripesWidget* widget)
    : QObject(widget)
    , q_ptr(widget)
{
}

void ScopeStripesWidgetPrivate::notifyChanged()
{
    Q_Q(ScopeStripesWidget);
    // Listeners rebuild after the current event, when the stripes are final.
    QMetaObject::invokeMethod(q, &ScopeStripesWidget::scopeStripesChanged, Qt::QueuedConnection);
}

void ScopeStripesWidgetPrivate::onStripeDestroyed()
{
    notifyChanged();
}

void ScopeStripesWidgetPrivate::updateColumns()
{
    Q_Q(ScopeStripesWidget);
    // Every stripe keeps the same left column, wide enough for the bit labels
    // of any stripe, so that the grids of all stripes stay aligned in time.
    const QList<ScopeWidget*> widgets = q->scopeWidgets();
    int leftWidth = 0;
    for (ScopeWidget* widget : widgets) {
        const QList<ScopeTrace*> traces = widget->traceFilter()->traces();
        for (ScopeTrace* trace : traces)
            leftWidth = std::max(leftWidth, trace->binaryLabelExtent());
    }
    for (ScopeWidget* widget : widgets)
        widget->layout()->setLeftWidth(leftWidth);
}

void ScopeStripesWidgetPrivate::onTraceFilterChanged()
{
    Q_Q(ScopeStripesWidget);
    updateColumns();
    const QList<ScopeWidget*> widgets = q->scopeWidgets();
    for (ScopeWidget* widget : widgets)
        widget->update();
    notifyChanged();
}

ScopeStripesWidget::ScopeStripesWidget(QWidget* parent)
    : QWidget(parent)
    , d_ptr(new ScopeStripesWidgetPrivate(this))
{
    Q_D(ScopeStripesWidget);
    auto* boxLayout = new QVBoxLayout(this);
    boxLayout->setContentsMargins(0, 0, 0, 0);
    d->splitter = new QSplitter(Qt::Vertical, this);
    d->splitter->setObjectName(QStringLiteral("stripesSplitter"));
    d->splitter->setChildrenCollapsible(false);
    boxLayout->addWidget(d->splitter);
}

ScopeStripesWidget::~ScopeStripesWidget()
{
    Q_D(ScopeStripesWidget);
    // The stripes die with the splitter; nobody needs to hear about it.
    for (ScopeWidget* widget : scopeWidgets())
        disconnect(widget, nullptr, d, nullptr);
}

ScopeWidget* ScopeStripesWidget::addStripe()
{
    Q_D(ScopeStripesWidget);
    if (scopeWidgets().size() >= maximumStripeCount)
        return nullptr;
    auto* widget = new ScopeWidget;
    widget->setStripesWidget(this);
    if (d->zoomBar) {
        widget->setLeftIndex(d->zoomBar->sliderLeft());
        widget->setRightIndex(d->zoomBar->sliderRight());
    }
    d->splitter->addWidget(widget);
    if (d->zoomBar) {
        connect(d->zoomBar, &ZoomBar::sliderLeftChanged, widget, &ScopeWidget::setLeftIndex);
        connect(d->zoomBar, &ZoomBar::sliderRightChanged, widget, &ScopeWidget::setRightIndex);
    }
    connect(widget, &QObject::destroyed, d, &ScopeStripesWidgetPrivate::onStripeDestroyed);
    connect(widget->traceFilter(), &ScopeTraceFilter::scopeTracesChanged, d,
            &ScopeStripesWidgetPrivate::onTraceFilterChanged);
    d->notifyChanged();
    return widget;
}

QList<ScopeWidget*> ScopeStripesWidget::scopeWidgets() const
{
    Q_D(const ScopeStripesWidget);
    QList<ScopeWidget*> widgets;
    for (int i = 0; i < d->splitter->count(); ++i) {
        // A stripe being destroyed is no longer a ScopeWidget here.
        if (auto* widget = qobject_cast<ScopeWidget*>(d->splitter->widget(i)))
            widgets.append(widget);
    }
    return widgets;
}

ScopeScene* ScopeStripesWidget::scene() const
{
    Q_D(const ScopeStripesWidget);
    return d->scene;
}

void ScopeStripesWidget::setScene(ScopeScene* scene)
{
    Q_D(ScopeStripesWidget);
    if (d->scene == scene)
        return;
    if (d->scene) {
        disconnect(d->scene, nullptr, d, nullptr);
        for (ScopeMarker* marker : d->scene->markers())
            disconnect(marker, nullptr, d, nullptr);
        if (d->scene->quickMeasure())
            disconnect(d->scene->quickMeasure(), nullptr, d, nullptr);
    }
    d->scene = scene;
    if (!d->scene)
        return;
    // Markers and the quick-measure cursor are drawn in every stripe.
    const auto updateAll = [d] {
        const QList<ScopeWidget*> widgets = d->q_ptr->scopeWidgets();
        for (ScopeWidget* widget : widgets)
            widget->update();
    };
    const QList<ScopeMarker*> markers = d->scene->markers();
    for (ScopeMarker* marker : markers)
        connect(marker, &ScopeMarker::timePositionChanged, d, updateAll);
    if (ScopeQuickMeasure* quickMeasure = d->scene->quickMeasure()) {
        connect(quickMeasure, &ScopeQuickMeasure::publishQuickMeasureRequest, d, updateAll);
        connect(quickMeasure, &ScopeQuickMeasure::publishQuickMeasureDisabled, d, updateAll);
    }
    // Binary view switched on or off changes the width of the bit labels.
    connect(d->scene, &ScopeScene::sceneChanged, d, &ScopeStripesWidgetPrivate::updateColumns);
}

ZoomBar* ScopeStripesWidget::zoomBar() const
{
    Q_D(const ScopeStripesWidget);
    return d->zoomBar;
}

void ScopeStripesWidget::setZoomBar(ZoomBar* zoomBar)
{
    Q_D(ScopeStripesWidget);
    d->zoomBar = zoomBar;
}

void ScopeStripesWidget::clear()
{
    Q_D(ScopeStripesWidget);
    const QList<ScopeWidget*> widgets = scopeWidgets();
    for (ScopeWidget* widget : widgets) {
        disconnect(widget, &QObject::destroyed, d, &ScopeStripesWidgetPrivate::onStripeDestroyed);
        delete widget;
    }
    if (!widgets.isEmpty())
        d->notifyChanged();
}

void ScopeStripesWidget::setStripeLayout(const KlIniParser::IniSection* sceneSection, const QList<ScopeShot*>& shots)
{
    // Stripe number → (name, trace references in key order).
    struct StripeEntry {
        QString name;
        QMap<int, QPair<QByteArray, int>> traces;
    };
    QMap<int, StripeEntry> stripes;
    QMap<QPair<QByteArray, int>, QList<QPair<QByteArray, QByteArray>>> views;
    if (sceneSection) {
        const qsizetype count = sceneSection->count();
        for (qsizetype i = 0; i < count; ++i) {
            const QByteArray key = sceneSection->keyAt(i).toByteArray();
            const QByteArrayView value = sceneSection->valueAt(i);
            if (key.startsWith(stripePrefix)) {
                const QByteArray rest = key.mid(stripePrefix.size());
                const qsizetype cut = rest.indexOf('_');
                bool ok = false;
                const int stripe = rest.left(cut < 0 ? rest.size() : cut).toInt(&ok);
                if (!ok || stripe < 0)
                    continue;
                const QByteArray tail = cut < 0 ? QByteArray() : rest.mid(cut);
                StripeEntry& entry = stripes[stripe];
                if (tail == stripeNameKey) {
                    entry.name = QString::fromLatin1(value);
                } else if (tail.startsWith(stripeTraceKey)) {
                    QByteArray traceTail = tail.mid(stripeTraceKey.size());
                    const bool isIndex = traceTail.endsWith(traceIndexKey);
                    if (isIndex)
                        traceTail.chop(traceIndexKey.size());
                    const int traceNumber = traceTail.toInt(&ok);
                    if (!ok)
                        continue;
                    if (isIndex)
                        entry.traces[traceNumber].second = int(value.toByteArray().toUInt(&ok));
                    else
                        entry.traces[traceNumber].first = value.toByteArray();
                }
            } else if (key.startsWith(traceViewPrefix)) {
                const QList<QByteArray> parts = key.mid(traceViewPrefix.size()).split('_');
                if (parts.size() < 3)
                    continue;
                bool ok = false;
                const int channel = parts.at(1).toInt(&ok);
                if (!ok)
                    continue;
                const QByteArray viewKey = key.mid(traceViewPrefix.size() + parts.at(0).size() + parts.at(1).size() + 2);
                views[qMakePair(QByteArray::fromHex(parts.at(0)), channel)].append(qMakePair(viewKey, value.toByteArray()));
            }
        }
    }

    // Display settings first, so that a trace shows its own scale in every stripe.
    for (auto it = views.cbegin(); it != views.cend(); ++it) {
        ScopeTrace* trace = findTrace(shots, it.key().first, it.key().second);
        if (!trace)
            continue;
        KlIniParser::IniParser scratch;
        KlIniParser::IniSection* section = scratch.findOrCreateSection("TraceView");
        for (const auto& pair : it.value())
            section->setValue(pair.first, pair.second);
        trace->readSection(*section);
    }

    int built = 0;
    for (auto it = stripes.cbegin(); it != stripes.cend(); ++it) {
        ScopeWidget* widget = addStripe();
        if (!widget)
            break;
        ++built;
        widget->setName(it.value().name);
        for (const auto& reference : it.value().traces) {
            if (ScopeTrace* trace = findTrace(shots, reference.first, reference.second))
                widget->traceFilter()->addTrace(trace);
        }
    }
    // Without a stored layout, one stripe shows every trace of every shot.
    if (built == 0) {
        if (ScopeWidget* widget = addStripe()) {
            for (ScopeShot* shot : shots) {
                if (!shot)
                    continue;
                const QList<int> channels = shot->channelNumbers();
                for (int channel : channels)
                    widget->traceFilter()->addTrace(shot->trace(channel));
            }
        }
    }
}

void ScopeStripesWidget::writeStripeLayout(KlIniParser::IniSection* sceneSection, const QList<ScopeShot*>& shots) const
{
    if (!sceneSection)
        return;
    const QList<QByteArray> keys = sceneSection->keys();
    for (const QByteArray& key : keys) {
        if (key.startsWith(stripePrefix) || key.startsWith(traceViewPrefix))
            sceneSection->remove(key);
    }
    const QList<ScopeWidget*> widgets = scopeWidgets();
    for (int s = 0; s < widgets.size(); ++s) {
        const QByteArray stripe = stripePrefix + QByteArray::number(s);
        sceneSection->setValue(stripe + stripeNameKey, widgets.at(s)->storedName().toLatin1());
        const QList<ScopeTrace*> traces = widgets.at(s)->traceFilter()->traces();
        int t = 0;
        for (ScopeTrace* trace : traces) {
            auto* shot = qobject_cast<ScopeShot*>(trace->shot());
            if (!shot)
                continue;
            const QByteArray traceKey = stripe + stripeTraceKey + QByteArray::number(t++);
            sceneSection->setValue(traceKey, shotIdOf(shot));
            sceneSection->setValue(traceKey + traceIndexKey, QByteArray::number(trace->number()));
        }
    }
    for (ScopeShot* shot : shots) {
        if (!shot)
            continue;
        const QByteArray shotId = shotIdOf(shot);
        const QList<int> channels = shot->channelNumbers();
        for (int channel : channels) {
            ScopeTrace* trace = shot->trace(channel);
            KlIniParser::IniParser scratch;
            KlIniParser::IniSection* section = scratch.findOrCreateSection("TraceView");
            trace->writeSection(*section);
            const QByteArray prefix = traceViewKeyPrefix(shotId, channel);
            const qsizetype count = section->count();
            for (qsizetype i = 0; i < count; ++i)
                sceneSection->setValue(prefix + section->keyAt(i).toByteArray(), section->valueAt(i));
        }
    }
}
