// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/*! \brief Parses the ovscope command line and runs one command.

    GNU style: "ovscope --help", "ovscope COMMAND --help"; exit status 0 on
    success, 1 on a failure (reported on stderr), 2 on bad usage. */
class CommandRunner
{
public:
    /*! \brief How a command needs the application object to be made. */
    enum class ApplicationKind { Core, Gui, Widgets };

    /*! \brief The application \a arguments (program name first) need. */
    static ApplicationKind applicationKind(const QStringList& arguments);

    /*! \brief Whether the command prints numbers that programs read, which
        then use "." whatever the user's locale. */
    static bool isMachineReadable(const QStringList& arguments);

    /*! \brief Runs the command of \a arguments (program name first); the exit status. */
    static int run(const QStringList& arguments);

    /*! \brief The names of all commands, in the order of the help text. */
    static QStringList commandNames();
};
