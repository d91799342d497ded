// SPDX-License-Identifier: GPL-3.0-or-later
#include "analysiscommands.h"

#include "cliio.h"
#include "frequencytrace.h"
#include "iniparser.h"
#include "scopearchivekeys.h"
#include "scopemarker.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"
#include "scopetracecalculatorwidget.h"
#include "traceinformationimplemention.h"

#include <QtCore/QSharedPointer>

#include <cmath>
#include <memory>

namespace {

QByteArray csvField(const QString& text)
{
    QByteArray field = text.toUtf8();
    if (field.contains(',') || field.contains('"') || field.contains('\n') || field.contains('\r')) {
        field.replace('"', "\"\"");
        field = '"' + field + '"';
    }
    return field;
}

} // namespace

void AnalysisCommands::resolveMarkers(ScopeShotArchive* archive, const Markers& markers, qint64* a, qint64* b)
{
    // The markers read their own keys and defaults; a shot without a scene
    // section reads them from an empty one.
    ScopeMarker marker;
    KlIniParser::IniParser empty;
    KlIniParser::IniSection* scene = archive->sceneSection();
    if (!scene)
        scene = empty.findOrCreateSection(ScopeArchiveKeys::SceneSection);
    marker.readSection(*scene);
    *a = markers.a.value_or(marker.position(0));
    *b = markers.b.value_or(marker.position(1));
}

QByteArray AnalysisCommands::measurementRows(ScopeTrace* trace, qint64 a, qint64 b)
{
    // The measurement table itself computes and words the rows.
    ScopeTraceCalculatorWidget table;
    table.onScopeTraceSelected(trace);
    table.onMarkerTimePositionChanged(0, a);
    table.onMarkerTimePositionChanged(1, b);
    QByteArray text;
    for (const QString& key : ScopeTraceCalculatorWidget::rowKeys())
        text += table.labelText(key).toUtf8() + '\t' + table.valueText(key).toUtf8() + '\n';
    return text;
}

int AnalysisCommands::measure(const QString& shotPath, const Markers& markers, const QList<int>& channels)
{
    QString error;
    std::unique_ptr<ScopeShotArchive> archive(CliIo::loadShot(shotPath, nullptr, &error));
    if (!archive) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    ScopeShot shot;
    shot.setArchive(archive.get());
    shot.load();
    const QList<int> numbers = channels.isEmpty() ? shot.channelNumbers() : channels;
    for (int number : numbers) {
        if (!shot.trace(number)) {
            CliIo::printError(QStringLiteral("%1: no such trace: %2").arg(shotPath).arg(number));
            return ExitStatus::Failure;
        }
    }
    if (numbers.isEmpty()) {
        CliIo::printError(QStringLiteral("%1: the shot has no traces").arg(shotPath));
        return ExitStatus::Failure;
    }
    qint64 a = 0;
    qint64 b = 0;
    resolveMarkers(archive.get(), markers, &a, &b);
    QByteArray text;
    for (int number : numbers) {
        ScopeTrace* trace = shot.trace(number);
        QString name = trace->name();
        name.replace(QLatin1Char('\n'), QLatin1Char(' '));
        text += "# " + QByteArray::number(number) + ' ' + name.toUtf8() + '\n';
        text += measurementRows(trace, a, b);
    }
    CliIo::printOut(text);
    return ExitStatus::Success;
}

bool AnalysisCommands::spectrumCsv(ScopeShot* shot, qint64 a, qint64 b, int windowFunction, QByteArray* csv,
                                   QString* error)
{
    const QList<int> numbers = shot->channelNumbers();
    if (numbers.isEmpty()) {
        *error = QStringLiteral("the shot has no traces");
        return false;
    }
    QList<QSharedPointer<TraceInformation>> informations;
    for (int number : numbers)
        informations.append(QSharedPointer<TraceInformation>(new TraceInformationImplemention(shot->trace(number))));

    // The frequency panel refuses an interval that a trace does not cover.
    for (const auto& information : informations) {
        if (!information->covers(a, b)) {
            *error = QStringLiteral("no measured values between the markers (%1 ns to %2 ns)").arg(a).arg(b);
            return false;
        }
    }
    if (b < a) {
        *error = QStringLiteral("marker B (%1 ns) lies before marker A (%2 ns)").arg(b).arg(a);
        return false;
    }

    // Sample indices as the frequency panel computes them, from the first trace.
    const qint64 t0 = informations.first()->startTime();
    const double dt = informations.first()->samplingTime();
    const int first = int(std::trunc(double(a - t0) / dt / 100.0));
    const int last = int(std::trunc(double(b - t0) / dt / 100.0));

    QList<std::shared_ptr<FrequencyTrace>> traces;
    qsizetype rows = 0;
    for (const auto& information : informations) {
        auto trace = std::make_shared<FrequencyTrace>(information);
        trace->setInterval(first, last, windowFunction);
        rows = qMax(rows, trace->amplitudes().size());
        traces.append(trace);
    }

    const double resolution = traces.first()->frequencyResolution();
    QByteArray text = "frequency_hz";
    for (int number : numbers)
        text += ',' + csvField(QStringLiteral("%1 %2").arg(number).arg(shot->trace(number)->name()));
    text += '\n';
    QList<QVector<double>> amplitudes;
    for (const auto& trace : traces)
        amplitudes.append(trace->amplitudes());
    text.reserve(text.size() + rows * (1 + amplitudes.size()) * 24);
    for (qsizetype k = 0; k < rows; ++k) {
        text += CliIo::shortestNumber(double(k) * resolution);
        for (const QVector<double>& list : amplitudes) {
            text += ',';
            if (k < list.size())
                text += CliIo::shortestNumber(list.at(k));
        }
        text += '\n';
    }
    *csv = text;
    return true;
}

int AnalysisCommands::spectrum(const QString& shotPath, const Markers& markers, int windowFunction,
                               const QString& outputPath)
{
    QString error;
    std::unique_ptr<ScopeShotArchive> archive(CliIo::loadShot(shotPath, nullptr, &error));
    if (!archive) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    ScopeShot shot;
    shot.setArchive(archive.get());
    shot.load();
    qint64 a = 0;
    qint64 b = 0;
    resolveMarkers(archive.get(), markers, &a, &b);
    QByteArray csv;
    if (!spectrumCsv(&shot, a, b, windowFunction, &csv, &error)) {
        CliIo::printError(QStringLiteral("%1: %2").arg(shotPath, error));
        return ExitStatus::Failure;
    }
    if (!CliIo::writeFile(outputPath.isEmpty() ? QStringLiteral("-") : outputPath, csv, &error)) {
        CliIo::printError(error);
        return ExitStatus::Failure;
    }
    return ExitStatus::Success;
}
