// SPDX-License-Identifier: GPL-3.0-or-later
#include "commandrunner.h"

#include <QtCore/QCoreApplication>
#include <QtGui/QGuiApplication>
#include <QtWidgets/QApplication>

#include <cstdio>
#include <memory>

namespace {

QStringList argumentList(int argc, char** argv)
{
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    return arguments;
}

// The tool reports its own failures, one line each; the toolkit's notes
// (platform plugin, runtime folder, fonts) would only add noise on stderr.
void messageHandler(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    static const bool verbose = !qEnvironmentVariableIsEmpty("OVSCOPE_VERBOSE");
    if (!verbose && (type == QtDebugMsg || type == QtInfoMsg || type == QtWarningMsg))
        return;
    const QByteArray text = qFormatLogMessage(type, context, message).toLocal8Bit() + '\n';
    std::fwrite(text.constData(), 1, size_t(text.size()), stderr);
}

} // namespace

int main(int argc, char** argv)
{
    const QStringList arguments = argumentList(argc, argv);
    qInstallMessageHandler(messageHandler);

    // The tool never shows a window: without a platform of the user's
    // choosing it draws offscreen, so no display is needed.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    // Output that programs read uses "." whatever the user's locale: the
    // library formats numbers with the system locale's decimal point, so the
    // numeric category is set to C before the locale is first read.
    if (CommandRunner::isMachineReadable(arguments)) {
        const QByteArray all = qgetenv("LC_ALL");
        if (!all.isEmpty()) {
            if (qEnvironmentVariableIsEmpty("LANG"))
                qputenv("LANG", all);
            qunsetenv("LC_ALL");
        }
        qputenv("LC_NUMERIC", "C.UTF-8");
    }

    std::unique_ptr<QCoreApplication> application;
    switch (CommandRunner::applicationKind(arguments)) {
    case CommandRunner::ApplicationKind::Widgets:
        application = std::make_unique<QApplication>(argc, argv);
        break;
    case CommandRunner::ApplicationKind::Gui:
        application = std::make_unique<QGuiApplication>(argc, argv);
        break;
    case CommandRunner::ApplicationKind::Core:
        application = std::make_unique<QCoreApplication>(argc, argv);
        break;
    }
    QCoreApplication::setOrganizationName(QStringLiteral("OvScope"));
    QCoreApplication::setApplicationName(QStringLiteral("ovscope"));
    return CommandRunner::run(arguments);
}
