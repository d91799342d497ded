// SPDX-License-Identifier: GPL-3.0-or-later
#include "commandrunner.h"

#include "analysiscommands.h"
#include "archivecommands.h"
#include "cliio.h"
#include "frequencywindowfunctions.h"
#include "ovversion.h"
#include "rendercommand.h"
#include "samplegenerator.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QRegularExpression>

#include <functional>

namespace {

struct Command
{
    const char* name;
    const char* summary;
};

// In the order of the help text.
constexpr Command Commands[] = {
    {"info", "Describe a shot or composition archive."},
    {"create-from-readout", "Make a shot archive from a read-out document."},
    {"export-csv", "Write the CSV export of a shot archive."},
    {"measure", "Print the measurement table between markers A and B."},
    {"spectrum", "Write the amplitude spectra between markers A and B as CSV."},
    {"render", "Render the scope view of a shot or composition to a PNG file."},
    {"recipe", "Export a shot's view recipe, or apply one to a shot."},
    {"sample", "Write the sample recordings into a folder."},
};

QString globalHelp()
{
    QString text = QStringLiteral(
        "Usage: ovscope COMMAND [options] [arguments]\n"
        "       ovscope COMMAND --help\n"
        "\n"
        "The command-line tool of the OvScope scope library: inspects, converts,\n"
        "measures and renders oscilloscope recordings of a drive.\n"
        "Times are nanoseconds relative to the trigger.\n"
        "\n"
        "Commands:\n");
    for (const Command& command : Commands)
        text += QStringLiteral("  %1%2\n").arg(QString::fromLatin1(command.name), -22).arg(QString::fromLatin1(command.summary));
    text += QStringLiteral(
        "\n"
        "Options:\n"
        "  -h, --help            Show this help.\n"
        "  -v, --version         Show the version.\n"
        "\n"
        "Exit status: 0 on success, 1 on failure, 2 on bad usage.\n");
    return text;
}

int usageError(const QString& message, const QString& command = QString())
{
    CliIo::printError(message);
    CliIo::printError(command.isEmpty() ? QStringLiteral("Try 'ovscope --help'.")
                                        : QStringLiteral("Try 'ovscope %1 --help'.").arg(command));
    return ExitStatus::Usage;
}

/* One command's parser: the common --help, then what the command declares. */
class CommandParser
{
public:
    CommandParser(const QString& command, const QString& description)
        : m_command(command)
    {
        m_parser.setApplicationDescription(description);
        m_parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
        m_parser.addOption(QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                                              QStringLiteral("Show this help.")));
        m_parser.addPositionalArgument(command, QStringLiteral("The command."), command);
    }

    QCommandLineParser& parser() { return m_parser; }

    void addPositional(const QString& name, const QString& description)
    {
        m_parser.addPositionalArgument(name, description);
        m_positionalNames.append(name);
    }

    /* Parses \a arguments; -1 to go on, else the exit status to return. */
    int parse(const QStringList& arguments)
    {
        if (!m_parser.parse(arguments))
            return usageError(m_parser.errorText(), m_command);
        if (m_parser.isSet(QStringLiteral("help"))) {
            // The usage line names the program as it is called, not its path.
            QString help = m_parser.helpText();
            static const QRegularExpression usage(QStringLiteral("^Usage: \\S+"));
            help.replace(usage, QStringLiteral("Usage: ovscope"));
            CliIo::printOut(help.toUtf8());
            return ExitStatus::Success;
        }
        m_positional = m_parser.positionalArguments().mid(1);
        if (m_positional.size() < m_positionalNames.size())
            return usageError(QStringLiteral("%1: missing argument %2")
                                  .arg(m_command, m_positionalNames.at(m_positional.size())),
                              m_command);
        if (m_positional.size() > m_positionalNames.size())
            return usageError(QStringLiteral("%1: unexpected argument '%2'")
                                  .arg(m_command, m_positional.at(m_positionalNames.size())),
                              m_command);
        return -1;
    }

    QString positional(int index) const { return m_positional.value(index); }

    /* The value of a required option; empty (with the usage error reported
       in \a status) when it is missing. */
    QString required(const QString& option, int* status)
    {
        const QString value = m_parser.value(option);
        if (value.isEmpty())
            *status = usageError(QStringLiteral("%1: option --%2 is required").arg(m_command, option), m_command);
        return value;
    }

    bool integerOption(const QString& option, std::optional<qint64>* value, int* status)
    {
        if (!m_parser.isSet(option))
            return true;
        bool ok = false;
        const qint64 number = m_parser.value(option).toLongLong(&ok);
        if (!ok) {
            *status = usageError(QStringLiteral("%1: --%2 needs an integer (nanoseconds), not '%3'")
                                     .arg(m_command, option, m_parser.value(option)),
                                 m_command);
            return false;
        }
        *value = number;
        return true;
    }

    QString command() const { return m_command; }

private:
    QCommandLineParser m_parser;
    QString m_command;
    QStringList m_positionalNames;
    QStringList m_positional;
};

QCommandLineOption outputOption(const QString& valueName, const QString& description)
{
    return QCommandLineOption({QStringLiteral("o"), QStringLiteral("output")}, description, valueName);
}

QCommandLineOption markerOption(const QString& name, const QString& description)
{
    return QCommandLineOption(name, description, QStringLiteral("NS"));
}

int runInfo(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("info"),
                          QStringLiteral("Describe a shot or composition archive: kind, name, ID, read-out, host,\n"
                                         "public flag, comment, time base, trigger index, frame count and one\n"
                                         "line per trace (channel, name, unit, data type, decimals, display kind)."));
    command.addPositional(QStringLiteral("FILE"), QStringLiteral("Shot (.ovxshot) or composition (.ovxcomp) archive."));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    return ArchiveCommands::info(command.positional(0));
}

int runCreateFromReadOut(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("create-from-readout"),
                          QStringLiteral("Make a shot archive from a read-out document."));
    command.addPositional(QStringLiteral("READOUT"), QStringLiteral("Read-out document (.ovxreadout)."));
    command.parser().addOption(outputOption(QStringLiteral("SHOT"), QStringLiteral("Shot archive to write.")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    const QString output = command.required(QStringLiteral("output"), &status);
    if (status != ExitStatus::Success)
        return status;
    return ArchiveCommands::createFromReadOut(command.positional(0), output);
}

int runExportCsv(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("export-csv"),
                          QStringLiteral("Write the CSV export of a shot archive, as the library writes it."));
    command.addPositional(QStringLiteral("SHOT"), QStringLiteral("Shot archive."));
    command.parser().addOption(outputOption(QStringLiteral("FILE"), QStringLiteral("CSV file to write ('-' for stdout).")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    const QString output = command.required(QStringLiteral("output"), &status);
    if (status != ExitStatus::Success)
        return status;
    return ArchiveCommands::exportCsv(command.positional(0), output);
}

bool markerOptions(CommandParser& command, AnalysisCommands::Markers* markers, int* status)
{
    return command.integerOption(QStringLiteral("a"), &markers->a, status)
        && command.integerOption(QStringLiteral("b"), &markers->b, status);
}

void addMarkerOptions(QCommandLineParser& parser)
{
    parser.addOption(markerOption(QStringLiteral("a"),
                                  QStringLiteral("Marker A (--a or -a) in ns from the trigger (default: as\n"
                                                 "stored in the archive).")));
    parser.addOption(markerOption(QStringLiteral("b"),
                                  QStringLiteral("Marker B (--b or -b) in ns from the trigger (default: as\n"
                                                 "stored in the archive).")));
}

int runMeasure(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("measure"),
                          QStringLiteral("Print, for each trace, a line \"# N name\" and the twelve rows of the\n"
                                         "measurement table between markers A and B, as \"label<TAB>value\"."));
    command.addPositional(QStringLiteral("SHOT"), QStringLiteral("Shot archive."));
    addMarkerOptions(command.parser());
    command.parser().addOption(QCommandLineOption(QStringLiteral("trace"),
                                                  QStringLiteral("Measure only channel N (repeatable; default: all). Channels\n"
                                                                 "count from 0 as in the archive; the view's \"Kanal\"\n"
                                                                 "column shows N + 1."),
                                                  QStringLiteral("N")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    AnalysisCommands::Markers markers;
    if (!markerOptions(command, &markers, &status))
        return status;
    QList<int> channels;
    for (const QString& value : command.parser().values(QStringLiteral("trace"))) {
        bool ok = false;
        const int channel = value.toInt(&ok);
        if (!ok || channel < 0)
            return usageError(QStringLiteral("measure: --trace needs a channel number, not '%1'").arg(value),
                              command.command());
        channels.append(channel);
    }
    return AnalysisCommands::measure(command.positional(0), markers, channels);
}

int runSpectrum(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("spectrum"),
                          QStringLiteral("Write the amplitude spectra of every trace between markers A and B, as\n"
                                         "the frequency view computes them, as CSV: \"frequency_hz\" and one\n"
                                         "column per trace."));
    command.addPositional(QStringLiteral("SHOT"), QStringLiteral("Shot archive."));
    addMarkerOptions(command.parser());
    command.parser().addOption(QCommandLineOption(QStringLiteral("window"),
                                                  QStringLiteral("Window function: hamming (default) or none."),
                                                  QStringLiteral("hamming|none"), QStringLiteral("hamming")));
    command.parser().addOption(outputOption(QStringLiteral("FILE"), QStringLiteral("CSV file to write (default: stdout).")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    AnalysisCommands::Markers markers;
    if (!markerOptions(command, &markers, &status))
        return status;
    const QString window = command.parser().value(QStringLiteral("window"));
    int windowFunction = Frequency::Hamming;
    if (window == QLatin1String("none"))
        windowFunction = Frequency::NoWindow;
    else if (window != QLatin1String("hamming"))
        return usageError(QStringLiteral("spectrum: --window is hamming or none, not '%1'").arg(window),
                          command.command());
    return AnalysisCommands::spectrum(command.positional(0), markers, windowFunction,
                                      command.parser().value(QStringLiteral("output")));
}

int runRender(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("render"),
                          QStringLiteral("Render the scope view of a shot or composition offscreen to a PNG file.\n"
                                         "The shots of a composition are looked up in its folder."));
    command.addPositional(QStringLiteral("FILE"), QStringLiteral("Shot or composition archive."));
    command.parser().addOption(outputOption(QStringLiteral("PNG"), QStringLiteral("PNG file to write.")));
    command.parser().addOption(QCommandLineOption(QStringLiteral("size"), QStringLiteral("Picture size (default 1400x1000)."),
                                                  QStringLiteral("WxH")));
    addMarkerOptions(command.parser());
    command.parser().addOption(QCommandLineOption(QStringLiteral("tab"),
                                                  QStringLiteral("time (default) or frequency (the spectra between A and B)."),
                                                  QStringLiteral("time|frequency"), QStringLiteral("time")));
    command.parser().addOption(QCommandLineOption(QStringLiteral("trace"),
                                                  QStringLiteral("Channel whose measurements the table shows (default: the\n"
                                                                 "first); counted from 0 as in the archive."),
                                                  QStringLiteral("N")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    const QString output = command.required(QStringLiteral("output"), &status);
    if (status != ExitStatus::Success)
        return status;
    RenderCommand::Options options;
    if (command.parser().isSet(QStringLiteral("trace"))) {
        bool ok = false;
        const int channel = command.parser().value(QStringLiteral("trace")).toInt(&ok);
        if (!ok || channel < 0)
            return usageError(QStringLiteral("render: --trace needs a channel number, not '%1'")
                                  .arg(command.parser().value(QStringLiteral("trace"))),
                              command.command());
        options.trace = channel;
    }
    AnalysisCommands::Markers markers;
    if (!markerOptions(command, &markers, &status))
        return status;
    options.a = markers.a;
    options.b = markers.b;
    if (command.parser().isSet(QStringLiteral("size"))) {
        static const QRegularExpression pattern(QStringLiteral("^(\\d{1,5})[xX](\\d{1,5})$"));
        const QRegularExpressionMatch match = pattern.match(command.parser().value(QStringLiteral("size")));
        const int width = match.hasMatch() ? match.captured(1).toInt() : 0;
        const int height = match.hasMatch() ? match.captured(2).toInt() : 0;
        if (width < 200 || height < 200 || width > 8000 || height > 8000)
            return usageError(QStringLiteral("render: --size is WxH with 200 to 8000 pixels each, not '%1'")
                                  .arg(command.parser().value(QStringLiteral("size"))),
                              command.command());
        options.size = QSize(width, height);
    }
    const QString tab = command.parser().value(QStringLiteral("tab"));
    if (tab == QLatin1String("frequency"))
        options.tab = RenderCommand::Tab::Frequency;
    else if (tab != QLatin1String("time"))
        return usageError(QStringLiteral("render: --tab is time or frequency, not '%1'").arg(tab), command.command());
#ifdef OVSCOPE_CLI_RENDER
    return RenderCommand::run(command.positional(0), output, options);
#else
    CliIo::printError(QStringLiteral("render: this build of ovscope has no scope view"));
    return ExitStatus::Failure;
#endif
}

int runRecipe(const QStringList& arguments)
{
    const QString action = arguments.value(2);
    if (action == QLatin1String("export")) {
        CommandParser command(QStringLiteral("recipe"), QStringLiteral("Write the view recipe of a shot archive."));
        command.addPositional(QStringLiteral("export"), QStringLiteral("The action."));
        command.addPositional(QStringLiteral("SHOT"), QStringLiteral("Shot archive."));
        command.parser().addOption(outputOption(QStringLiteral("RECIPE"), QStringLiteral("Recipe file to write.")));
        if (const int status = command.parse(arguments); status >= 0)
            return status;
        int status = ExitStatus::Success;
        const QString output = command.required(QStringLiteral("output"), &status);
        if (status != ExitStatus::Success)
            return status;
        return ArchiveCommands::exportRecipe(command.positional(1), output);
    }
    if (action == QLatin1String("apply")) {
        CommandParser command(QStringLiteral("recipe"),
                              QStringLiteral("Apply a view recipe to a shot archive and rewrite it atomically."));
        command.addPositional(QStringLiteral("apply"), QStringLiteral("The action."));
        command.addPositional(QStringLiteral("RECIPE"), QStringLiteral("Recipe file."));
        command.addPositional(QStringLiteral("SHOT"), QStringLiteral("Shot archive to change."));
        command.parser().addOption(QCommandLineOption(QStringLiteral("channels-only"),
                                                      QStringLiteral("Match channels by data type, decimals and display kind\n"
                                                                     "only, and leave colours, sliders and markers alone.")));
        if (const int status = command.parse(arguments); status >= 0)
            return status;
        return ArchiveCommands::applyRecipe(command.positional(1), command.positional(2),
                                            command.parser().isSet(QStringLiteral("channels-only")));
    }
    if (action == QLatin1String("--help") || action == QLatin1String("-h")) {
        CliIo::printOut(QByteArrayLiteral("Usage: ovscope recipe export SHOT -o RECIPE\n"
                                          "       ovscope recipe apply RECIPE SHOT [--channels-only]\n"
                                          "\n"
                                          "View recipes: the channel settings of one shot, applied to others.\n"
                                          "See 'ovscope recipe export --help' and 'ovscope recipe apply --help'.\n"));
        return ExitStatus::Success;
    }
    if (action.isEmpty())
        return usageError(QStringLiteral("recipe: missing action (export or apply)"), QStringLiteral("recipe"));
    return usageError(QStringLiteral("recipe: unknown action '%1' (export or apply)").arg(action),
                      QStringLiteral("recipe"));
}

int runSample(const QStringList& arguments)
{
    CommandParser command(QStringLiteral("sample"),
                          QStringLiteral("Write the sample recordings of a drive into DIR: the shot archives\n"
                                         "antrieb-sprung, antrieb-sprung-weich and phasenstrom (.ovxshot), the\n"
                                         "read-out antrieb-bremsung (.ovxreadout) and the composition\n"
                                         "sprungvergleich (.ovxcomp). The output is the same on every run.\n"
                                         "Prints the path of every file written."));
    command.parser().addOption(outputOption(QStringLiteral("DIR"), QStringLiteral("Folder to write into (made when missing).")));
    command.parser().addOption(QCommandLineOption(QStringLiteral("frames"),
                                                  QStringLiteral("Frames per recording (default 4000, at most 20000000)."),
                                                  QStringLiteral("N")));
    command.parser().addOption(QCommandLineOption(QStringLiteral("channels"),
                                                  QStringLiteral("Channels per recording (default: each recording's own;\n"
                                                                 "more add measurement channels, at most 64)."),
                                                  QStringLiteral("N")));
    command.parser().addOption(QCommandLineOption(QStringLiteral("keep-existing"),
                                                  QStringLiteral("Leave files that are already in DIR as they are.")));
    if (const int status = command.parse(arguments); status >= 0)
        return status;
    int status = ExitStatus::Success;
    const QString output = command.required(QStringLiteral("output"), &status);
    if (status != ExitStatus::Success)
        return status;
    qint64 frames = SampleGenerator::DefaultFrames;
    int channels = 0;
    if (command.parser().isSet(QStringLiteral("frames"))) {
        bool ok = false;
        frames = command.parser().value(QStringLiteral("frames")).toLongLong(&ok);
        if (!ok || frames < SampleGenerator::MinimumFrames || frames > SampleGenerator::MaximumFrames)
            return usageError(QStringLiteral("sample: --frames is a number from %1 to %2")
                                  .arg(SampleGenerator::MinimumFrames)
                                  .arg(SampleGenerator::MaximumFrames),
                              command.command());
    }
    if (command.parser().isSet(QStringLiteral("channels"))) {
        bool ok = false;
        channels = command.parser().value(QStringLiteral("channels")).toInt(&ok);
        if (!ok || channels < 1 || channels > SampleGenerator::MaximumChannels)
            return usageError(QStringLiteral("sample: --channels is a number from 1 to %1")
                                  .arg(SampleGenerator::MaximumChannels),
                              command.command());
    }
    if (frames * qMax(channels, 7) > SampleGenerator::MaximumValues)
        return usageError(QStringLiteral("sample: --frames × --channels is at most %1")
                              .arg(SampleGenerator::MaximumValues),
                          command.command());
    const SampleGenerator generator(frames, channels);
    QStringList written;
    QString error;
    if (!generator.writeAll(output, &written, &error, command.parser().isSet(QStringLiteral("keep-existing")))) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    for (const QString& path : written)
        CliIo::printOut(path.toUtf8() + '\n');
    return ExitStatus::Success;
}

} // namespace

QStringList CommandRunner::commandNames()
{
    QStringList names;
    for (const Command& command : Commands)
        names.append(QString::fromLatin1(command.name));
    return names;
}

CommandRunner::ApplicationKind CommandRunner::applicationKind(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    // The measurement table is a widget.
    if (command == QLatin1String("render") || command == QLatin1String("measure"))
        return ApplicationKind::Widgets;
    if (command == QLatin1String("info") || command == QLatin1String("spectrum") || command == QLatin1String("sample"))
        return ApplicationKind::Gui;
    return ApplicationKind::Core;
}

bool CommandRunner::isMachineReadable(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    return command == QLatin1String("info") || command == QLatin1String("measure")
        || command == QLatin1String("spectrum");
}

int CommandRunner::run(const QStringList& arguments)
{
    const QString command = arguments.value(1);
    if (command.isEmpty())
        return usageError(QStringLiteral("missing command"));
    if (command == QLatin1String("-h") || command == QLatin1String("--help") || command == QLatin1String("help")) {
        const QString topic = arguments.value(2);
        if (command == QLatin1String("help") && !topic.isEmpty())
            return run({arguments.value(0), topic, QStringLiteral("--help")});
        CliIo::printOut(globalHelp().toUtf8());
        return ExitStatus::Success;
    }
    if (command == QLatin1String("-v") || command == QLatin1String("--version")) {
        CliIo::printOut(QStringLiteral("ovscope (%1)\n").arg(productVersionText()).toUtf8());
        return ExitStatus::Success;
    }
    static const QHash<QString, std::function<int(const QStringList&)>> runners = {
        {QStringLiteral("info"), runInfo},
        {QStringLiteral("create-from-readout"), runCreateFromReadOut},
        {QStringLiteral("export-csv"), runExportCsv},
        {QStringLiteral("measure"), runMeasure},
        {QStringLiteral("spectrum"), runSpectrum},
        {QStringLiteral("render"), runRender},
        {QStringLiteral("recipe"), runRecipe},
        {QStringLiteral("sample"), runSample},
    };
    const auto runner = runners.constFind(command);
    if (runner == runners.constEnd()) {
        if (command.startsWith(QLatin1Char('-')))
            return usageError(QStringLiteral("unknown option '%1'").arg(command));
        return usageError(QStringLiteral("unknown command '%1'").arg(command));
    }
    return (*runner)(arguments);
}
