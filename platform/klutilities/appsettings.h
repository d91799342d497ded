// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "klutilities_export.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtGui/QColor>

#include <memory>

class AppSettingsPrivate;

/*! \brief The application's colours: numbered colours, the default trace
    colours and the two plot colours of the scope.

    One object per application (instance()). Every colour lives in the
    application settings (QSettings, default scope); an absent or unreadable
    key reads as its default. Setters write the settings at once and sync, so
    every plot widget that watches the settings file sees the change; a change
    of the file by anybody else is read back and announced as well.

    Numbered colours (color(), setColor(), key "Colors/Color<number>"):

    | number | name                   | use                                           | default   |
    |--------|------------------------|-----------------------------------------------|-----------|
    | 0      | ChartBackgroundColor   | background of the frequency chart             | #1c2026   |
    | 1      | ChartPlotAreaColor     | plot area of the frequency chart              | #101418   |
    | 2      | MarkerColor            | markers A and B, quick-measure line           | #ffffff   |
    | 3      | TriggerColor           | trigger indicator                             | #ff6a00   |
    | 4      | ChartGridColor         | grid lines of the frequency chart             | #4a5058   |
    | 5      | ChartLabelColor        | axis labels and titles of the frequency chart | #d0d4da   |

    Plot colours of the time analysis: "Scope/BackgroundColor" (default
    #101418, a dark oscilloscope screen) and "Scope/GridColor" (default #5a5f66,
    a mid grey).

    QSettings writes the settings file by replacing it, so a
    QFileSystemWatcher on the file stops watching after the first change: a
    watcher has to add the path again in its slot (this object watches the
    folder as well). The change signals below are the simpler way to follow.

    Default trace colours: a palette of 20 clearly distinct, light colours that
    stand out on the dark plot background; trace number n takes entry n modulo
    the palette size (key "Colors/Trace<index>" overrides an entry).
*/
class KLUTILITIES_EXPORT AppSettings : public QObject
{
    Q_OBJECT
    Q_DECLARE_PRIVATE(AppSettings)

public:
    /*! \brief The numbered application colours. */
    enum ColorNumber {
        ChartBackgroundColor = 0,
        ChartPlotAreaColor = 1,
        MarkerColor = 2,
        TriggerColor = 3,
        ChartGridColor = 4,
        ChartLabelColor = 5,
        ColorCount = 6
    };
    Q_ENUM(ColorNumber)

    /*! \brief The application's settings object, created on first use (as a
        child of the application object when there is one). */
    static AppSettings* instance();

    /*! \brief Numbered colour \a number; the invalid colour for a number that
        does not exist. */
    QColor color(int number) const;
    /*! \brief Stores numbered colour \a number; invalid numbers and colours are ignored. */
    void setColor(int number, const QColor& color);
    /*! \brief The default of numbered colour \a number (invalid for an unknown number). */
    static QColor defaultColor(int number);

    /*! \brief The default colour of trace \a number: palette entry number
        modulo the palette size (negative numbers count from the end). */
    QColor defaultTraceColor(int number) const;
    /*! \brief Overrides palette entry \a index; invalid indexes and colours are ignored. */
    void setDefaultTraceColor(int index, const QColor& color);
    /*! \brief The number of palette entries. */
    static int defaultTraceColorCount();
    /*! \brief The built-in palette, before any override. */
    static QList<QColor> builtInTraceColors();

    /*! \brief "Scope/BackgroundColor", or its default when absent. */
    QColor backgroundColor() const;
    void setBackgroundColor(const QColor& color);
    static QColor defaultBackgroundColor();

    /*! \brief "Scope/GridColor", or its default when absent. */
    QColor gridColor() const;
    void setGridColor(const QColor& color);
    static QColor defaultGridColor();

    /*! \brief Settings keys. */
    static QString backgroundColorKey();
    static QString gridColorKey();
    static QString colorKey(int number);
    static QString traceColorKey(int index);

    /*! \brief Writes the default of every plot and numbered colour whose key
        is absent; present keys stay as they are. */
    void seedDefaults();
    /*! \brief Writes the defaults of the plot colours and the numbered
        colours, and removes every palette override. */
    void restoreDefaults();

    /*! \brief Reads the settings again now (a change of the settings file is
        otherwise noticed through a file watcher, asynchronously). */
    void reload();

    /*! \brief The application settings file that holds the colours. */
    QString settingsFileName() const;

Q_SIGNALS:
    void colorChanged(int number, const QColor& color);
    void defaultTraceColorChanged(int index, const QColor& color);
    void backgroundColorChanged(const QColor& color);
    void gridColorChanged(const QColor& color);
    /*! \brief After any of the above. */
    void changed();

private:
    explicit AppSettings(QObject* parent = nullptr);
    ~AppSettings() override;

    std::unique_ptr<AppSettingsPrivate> d_ptr;
};
