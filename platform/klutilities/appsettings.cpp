// SPDX-License-Identifier: GPL-3.0-or-later
#include "appsettings.h"
#include "appsettings_p.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFileInfo>
#include <QtCore/QFileSystemWatcher>
#include <QtCore/QPointer>
#include <QtCore/QSettings>

namespace {

// Light colours of clearly different hue or lightness (pairwise CIE76 distance
// above 25), each with a contrast of at least 4.5:1 on the dark plot background.
constexpr QRgb TracePalette[AppSettingsPrivate::TraceColorCount] = {
    0xffffd83d, // yellow
    0xff3ddcff, // cyan
    0xffff5ce1, // magenta
    0xff5cff5c, // green
    0xffff9a3d, // orange
    0xff6f9bff, // blue
    0xffff5c5c, // red
    0xffb98cff, // violet
    0xff00d6a0, // teal
    0xffff9ec8, // pink
    0xffc8ff3d, // lime
    0xffd9b27a, // tan
    0xffe0c8ff, // lavender
    0xff9fbf5f, // olive
    0xffff3d8b, // rose
    0xffc0c0c0, // silver
    0xffffff9e, // pale yellow
    0xffa0ffa0, // pale green
    0xff90ffe0, // aquamarine
    0xffa0a000, // dark yellow
};

constexpr QRgb NumberedDefaults[AppSettings::ColorCount] = {
    0xff1c2026, // ChartBackgroundColor
    0xff101418, // ChartPlotAreaColor
    0xffffffff, // MarkerColor
    0xffff6a00, // TriggerColor
    0xff4a5058, // ChartGridColor
    0xffd0d4da, // ChartLabelColor
};

constexpr QRgb BackgroundDefault = 0xff101418;
constexpr QRgb GridDefault = 0xff5a5f66;

QColor effective(const QColor& stored, QRgb fallback)
{
    return stored.isValid() ? stored : QColor::fromRgba(fallback);
}

} // namespace

// ---------------------------------------------------------------------------
// AppSettingsPrivate

AppSettingsPrivate::AppSettingsPrivate(AppSettings* q)
    : q_ptr(q)
{
}

QColor AppSettingsPrivate::readColor(const QSettings& settings, const QString& key)
{
    const QVariant value = settings.value(key);
    if (!value.isValid())
        return QColor();
    // Also accepts names such as "#rrggbb" written by hand.
    const QColor color = value.value<QColor>();
    return color.isValid() ? color : QColor();
}

AppSettingsPrivate::Snapshot AppSettingsPrivate::read() const
{
    const QSettings settings;
    Snapshot snapshot;
    for (int i = 0; i < AppSettings::ColorCount; ++i)
        snapshot.colors[size_t(i)] = readColor(settings, AppSettings::colorKey(i));
    for (int i = 0; i < TraceColorCount; ++i)
        snapshot.traceColors[size_t(i)] = readColor(settings, AppSettings::traceColorKey(i));
    snapshot.background = readColor(settings, AppSettings::backgroundColorKey());
    snapshot.grid = readColor(settings, AppSettings::gridColorKey());
    return snapshot;
}

void AppSettingsPrivate::write(const QString& key, const QColor& color)
{
    {
        QSettings settings;
        if (color.isValid())
            settings.setValue(key, color);
        else
            settings.remove(key);
        settings.sync();
    }
    watch();
    apply(read());
}

void AppSettingsPrivate::watch()
{
    // The directory is watched as well: the settings file is written by
    // replacing it, and it may not exist yet.
    if (!watcher)
        return;
    const QString directory = QFileInfo(fileName).absolutePath();
    if (!watcher->directories().contains(directory) && QFileInfo::exists(directory))
        watcher->addPath(directory);
    if (!watcher->files().contains(fileName) && QFileInfo::exists(fileName))
        watcher->addPath(fileName);
}

void AppSettingsPrivate::apply(const Snapshot& snapshot)
{
    const Snapshot old = current;
    current = snapshot;
    bool any = false;
    for (int i = 0; i < AppSettings::ColorCount; ++i) {
        const QColor before = effective(old.colors[size_t(i)], NumberedDefaults[i]);
        const QColor after = effective(snapshot.colors[size_t(i)], NumberedDefaults[i]);
        if (before != after) {
            any = true;
            Q_EMIT colorChanged(i, after);
        }
    }
    for (int i = 0; i < TraceColorCount; ++i) {
        const QColor before = effective(old.traceColors[size_t(i)], TracePalette[i]);
        const QColor after = effective(snapshot.traceColors[size_t(i)], TracePalette[i]);
        if (before != after) {
            any = true;
            Q_EMIT defaultTraceColorChanged(i, after);
        }
    }
    if (effective(old.background, BackgroundDefault) != effective(snapshot.background, BackgroundDefault)) {
        any = true;
        Q_EMIT backgroundColorChanged(effective(snapshot.background, BackgroundDefault));
    }
    if (effective(old.grid, GridDefault) != effective(snapshot.grid, GridDefault)) {
        any = true;
        Q_EMIT gridColorChanged(effective(snapshot.grid, GridDefault));
    }
    if (any)
        Q_EMIT changed();
}

void AppSettingsPrivate::onSettingsFileChanged()
{
    watch();
    apply(read());
}

// ---------------------------------------------------------------------------
// AppSettings

AppSettings::AppSettings(QObject* parent)
    : QObject(parent)
    , d_ptr(std::make_unique<AppSettingsPrivate>(this))
{
    Q_D(AppSettings);
    connect(d, &AppSettingsPrivate::colorChanged, this, &AppSettings::colorChanged);
    connect(d, &AppSettingsPrivate::defaultTraceColorChanged, this, &AppSettings::defaultTraceColorChanged);
    connect(d, &AppSettingsPrivate::backgroundColorChanged, this, &AppSettings::backgroundColorChanged);
    connect(d, &AppSettingsPrivate::gridColorChanged, this, &AppSettings::gridColorChanged);
    connect(d, &AppSettingsPrivate::changed, this, &AppSettings::changed);

    d->fileName = QSettings().fileName();
    // Watching needs an event loop; without an application object the
    // settings are read on construction and on reload() only.
    if (QCoreApplication::instance()) {
        d->watcher = new QFileSystemWatcher(d);
        connect(d->watcher, &QFileSystemWatcher::fileChanged, d, &AppSettingsPrivate::onSettingsFileChanged);
        connect(d->watcher, &QFileSystemWatcher::directoryChanged, d, &AppSettingsPrivate::onSettingsFileChanged);
    }
    d->current = d->read();
    d->watch();
}

AppSettings::~AppSettings() = default;

AppSettings* AppSettings::instance()
{
    // Owned by the application object, so that it goes before the event
    // dispatcher; asked for again after that, a new one is made.
    static QPointer<AppSettings> self;
    if (!self)
        self = new AppSettings(QCoreApplication::instance());
    return self;
}

QColor AppSettings::color(int number) const
{
    Q_D(const AppSettings);
    if (number < 0 || number >= ColorCount)
        return QColor();
    return effective(d->current.colors[size_t(number)], NumberedDefaults[number]);
}

void AppSettings::setColor(int number, const QColor& color)
{
    Q_D(AppSettings);
    if (number < 0 || number >= ColorCount || !color.isValid())
        return;
    if (d->current.colors[size_t(number)] == color)
        return;
    d->write(colorKey(number), color);
}

QColor AppSettings::defaultColor(int number)
{
    if (number < 0 || number >= ColorCount)
        return QColor();
    return QColor::fromRgba(NumberedDefaults[number]);
}

QColor AppSettings::defaultTraceColor(int number) const
{
    Q_D(const AppSettings);
    int index = number % AppSettingsPrivate::TraceColorCount;
    if (index < 0)
        index += AppSettingsPrivate::TraceColorCount;
    return effective(d->current.traceColors[size_t(index)], TracePalette[index]);
}

void AppSettings::setDefaultTraceColor(int index, const QColor& color)
{
    Q_D(AppSettings);
    if (index < 0 || index >= AppSettingsPrivate::TraceColorCount || !color.isValid())
        return;
    if (d->current.traceColors[size_t(index)] == color)
        return;
    d->write(traceColorKey(index), color);
}

int AppSettings::defaultTraceColorCount()
{
    return AppSettingsPrivate::TraceColorCount;
}

QList<QColor> AppSettings::builtInTraceColors()
{
    QList<QColor> colors;
    colors.reserve(AppSettingsPrivate::TraceColorCount);
    for (QRgb rgba : TracePalette)
        colors.append(QColor::fromRgba(rgba));
    return colors;
}

QColor AppSettings::backgroundColor() const
{
    Q_D(const AppSettings);
    return effective(d->current.background, BackgroundDefault);
}

void AppSettings::setBackgroundColor(const QColor& color)
{
    Q_D(AppSettings);
    if (!color.isValid() || d->current.background == color)
        return;
    d->write(backgroundColorKey(), color);
}

QColor AppSettings::defaultBackgroundColor()
{
    return QColor::fromRgba(BackgroundDefault);
}

QColor AppSettings::gridColor() const
{
    Q_D(const AppSettings);
    return effective(d->current.grid, GridDefault);
}

void AppSettings::setGridColor(const QColor& color)
{
    Q_D(AppSettings);
    if (!color.isValid() || d->current.grid == color)
        return;
    d->write(gridColorKey(), color);
}

QColor AppSettings::defaultGridColor()
{
    return QColor::fromRgba(GridDefault);
}

QString AppSettings::backgroundColorKey()
{
    return QStringLiteral("Scope/BackgroundColor");
}

QString AppSettings::gridColorKey()
{
    return QStringLiteral("Scope/GridColor");
}

QString AppSettings::colorKey(int number)
{
    return QStringLiteral("Colors/Color%1").arg(number);
}

QString AppSettings::traceColorKey(int index)
{
    return QStringLiteral("Colors/Trace%1").arg(index);
}

void AppSettings::seedDefaults()
{
    Q_D(AppSettings);
    bool wrote = false;
    {
        QSettings settings;
        auto seed = [&](const QString& key, const QColor& color) {
            if (!AppSettingsPrivate::readColor(settings, key).isValid()) {
                settings.setValue(key, color);
                wrote = true;
            }
        };
        seed(backgroundColorKey(), defaultBackgroundColor());
        seed(gridColorKey(), defaultGridColor());
        for (int i = 0; i < ColorCount; ++i)
            seed(colorKey(i), defaultColor(i));
        if (wrote)
            settings.sync();
    }
    if (wrote) {
        d->watch();
        d->apply(d->read());
    }
}

void AppSettings::restoreDefaults()
{
    Q_D(AppSettings);
    {
        QSettings settings;
        settings.setValue(backgroundColorKey(), defaultBackgroundColor());
        settings.setValue(gridColorKey(), defaultGridColor());
        for (int i = 0; i < ColorCount; ++i)
            settings.setValue(colorKey(i), defaultColor(i));
        for (int i = 0; i < AppSettingsPrivate::TraceColorCount; ++i)
            settings.remove(traceColorKey(i));
        settings.sync();
    }
    d->watch();
    d->apply(d->read());
}

void AppSettings::reload()
{
    Q_D(AppSettings);
    d->watch();
    d->apply(d->read());
}

QString AppSettings::settingsFileName() const
{
    Q_D(const AppSettings);
    return d->fileName;
}
