// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "appsettings.h"

#include <QtCore/QObject>
#include <QtGui/QColor>

#include <array>

class QFileSystemWatcher;
class QSettings;

class AppSettingsPrivate : public QObject
{
    Q_OBJECT
    Q_DECLARE_PUBLIC(AppSettings)

public:
    static constexpr int TraceColorCount = 20;

    // The stored colours as last read; invalid = key absent (the default applies).
    struct Snapshot
    {
        std::array<QColor, AppSettings::ColorCount> colors;
        std::array<QColor, TraceColorCount> traceColors;
        QColor background;
        QColor grid;
    };

    explicit AppSettingsPrivate(AppSettings* q);

    static QColor readColor(const QSettings& settings, const QString& key);
    Snapshot read() const;
    void write(const QString& key, const QColor& color);
    void watch();
    void apply(const Snapshot& snapshot);

    AppSettings* q_ptr;
    Snapshot current;
    QFileSystemWatcher* watcher = nullptr;
    QString fileName;

public Q_SLOTS:
    void onSettingsFileChanged();

Q_SIGNALS:
    void colorChanged(int number, const QColor& color);
    void defaultTraceColorChanged(int index, const QColor& color);
    void backgroundColorChanged(const QColor& color);
    void gridColorChanged(const QColor& color);
    void changed();
};
