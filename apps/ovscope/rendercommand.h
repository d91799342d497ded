// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>

#include <optional>

/*! \brief "ovscope render": the scope view of a shot or composition drawn
    offscreen into a PNG file. */
class RenderCommand
{
public:
    enum class Tab { Time, Frequency };

    struct Options
    {
        QSize size = QSize(1400, 1000);
        std::optional<qint64> a;
        std::optional<qint64> b;
        Tab tab = Tab::Time;
        /*! Channel whose measurements the table shows; the first trace when unset. */
        std::optional<int> trace;
    };

    /*! \brief Renders \a path into the PNG \a outputPath; an exit status. */
    static int run(const QString& path, const QString& outputPath, const Options& options);
};
