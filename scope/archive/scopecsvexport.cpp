// SPDX-License-Identifier: GPL-3.0-or-later
#include "scopecsvexport.h"

#include "iniparser.h"
#include "ovversion.h"
#include "scopearchivecodec.h"
#include "scopearchivekeys.h"
#include "system.h"

#include <QtCore/QDateTime>
#include <QtCore/QLocale>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

using KlIniParser::IniParser;
using KlIniParser::IniSection;

namespace {

constexpr std::size_t FlushSize = 1 << 20;
constexpr char LineEnd[] = "\r\n";

// The sampling time in the header: the shortest decimal digits that give
// back the single-precision value, laid out as the shorter of the fixed and
// the exponent form ('g' style).
QString samplingTimeText(float samplingTime)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, samplingTime,
                                      std::chars_format::scientific);
    double shortest = double(samplingTime);
    if (std::isfinite(samplingTime))
        std::from_chars(buffer, result.ptr, shortest);
    return QString::number(shortest, 'g', QLocale::FloatingPointShortest);
}

// The time of a row, truncated toward zero; values beyond the 64-bit range
// saturate and a NaN reads as 0.
qint64 rowTime(qint64 frame, qint64 triggerIndex, double samplingTime)
{
    qint64 difference = 0;
    double time = 0.0;
    if (__builtin_sub_overflow(frame, triggerIndex, &difference))
        time = (double(frame) - double(triggerIndex)) * samplingTime;
    else
        time = double(difference) * samplingTime;
    if (std::isnan(time))
        return 0;
    time = std::trunc(time);
    if (time >= 9223372036854775808.0)
        return std::numeric_limits<qint64>::max();
    if (time < -9223372036854775808.0)
        return std::numeric_limits<qint64>::min();
    return qint64(time);
}

class CsvWriter
{
public:
    explicit CsvWriter(QIODevice* file)
        : m_file(file)
    {
        m_buffer.reserve(FlushSize + 4096);
    }

    void line(const QString& text)
    {
        const QByteArray latin1 = text.toLatin1();
        m_buffer.append(latin1.constData(), std::size_t(latin1.size()));
        m_buffer.append(LineEnd, 2);
        flushIfFull();
    }

    std::string& buffer() { return m_buffer; }

    void flushIfFull()
    {
        if (m_buffer.size() >= FlushSize)
            flush();
    }

    void flush()
    {
        if (!m_buffer.empty())
            // A write the system cuts short (file size limit, full disk) returns less; writing
            // the rest then fails, which QSaveFile remembers and commit() reports.
            for (qint64 done = 0, n = 0; done < qint64(m_buffer.size())
                 && (n = m_file->write(m_buffer.data() + done, qint64(m_buffer.size()) - done)) > 0;
                 done += n) { }
        m_buffer.clear();
    }

private:
    QIODevice* m_file;
    std::string m_buffer;
};

struct Channel
{
    quint64 index;
    const IniSection* section;
};

struct Row
{
    qint64 frame;
    qsizetype position;
};

} // namespace

namespace ScopeCsvExport {

bool write(const IniParser& document, const QString& shotName, const QString& fileName)
{
    // A regular file is replaced only once the export is complete. Devices,
    // pipes and sockets (also behind a symbolic link) cannot be replaced and
    // must not be: they are written directly.
    const QFileInfo target(fileName);
    const bool direct = target.exists() && !target.isFile() && !target.isDir();
    QSaveFile saveFile(fileName);
    QFile directFile(fileName);
    QFileDevice& file = direct ? static_cast<QFileDevice&>(directFile) : saveFile;
    // Unbuffered: the writer buffers itself, and every short write reaches its loop.
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Unbuffered))
        return false;
    const auto finish = [&]() {
        if (direct) {
            directFile.close();
            return true;
        }
        return saveFile.commit();
    };

    const IniSection* shot = document.section(ScopeArchiveKeys::ShotSection);
    const IniSection* data = document.section(ScopeArchiveKeys::DataSection);
    if (!shot || !data) {
        // Nothing to export: the file is left empty, which is still a success.
        return finish();
    }

    // Channel sections by index; a later section with the same index (written
    // with leading zeros) replaces an earlier one.
    std::vector<Channel> channels;
    int traceCount = 0;
    for (const QByteArray& name : document.sectionNames()) {
        quint64 index = 0;
        if (!ScopeArchiveCodec::indexedName(name, ScopeArchiveKeys::ChannelSectionPrefix, &index))
            continue;
        ++traceCount;
        channels.push_back({index, document.section(name)});
    }
    std::stable_sort(channels.begin(), channels.end(),
                     [](const Channel& a, const Channel& b) { return a.index < b.index; });
    {
        std::vector<Channel> unique;
        for (const Channel& channel : channels) {
            if (!unique.empty() && unique.back().index == channel.index)
                unique.back() = channel;
            else
                unique.push_back(channel);
        }
        channels.swap(unique);
    }

    const float samplingTime = shot->contains(ScopeArchiveKeys::TimeBase)
        ? shot->value(ScopeArchiveKeys::TimeBase).toFloat()
        : 1000.0f;
    const qint64 triggerIndex = data->value(ScopeArchiveKeys::TriggerIndex).toLongLong();

    const QDateTime now = QDateTime::currentDateTime();
    System* system = System::instance();

    CsvWriter writer(&file);
    writer.line(QStringLiteral("*,\"Velkor\""));
    writer.line(QStringLiteral("*,\"Ondavia: SCOPE EXPORT\""));
    writer.line(QStringLiteral("*,type,1"));
    writer.line(QStringLiteral("*,tool version,\"%1\"").arg(productVersionText()));
    writer.line(QStringLiteral("*,date of export,\"%1\"").arg(now.toString(QStringLiteral("dd/MM/yyyy"))));
    writer.line(QStringLiteral("*,time of export,\"%1\"").arg(now.toString(QStringLiteral("hh:mm:ss"))));
    writer.line(QStringLiteral("*,path of file,\"%1\"").arg(fileName));
    writer.line(QStringLiteral("*,username,\"%1\"").arg(system->userName()));
    writer.line(QStringLiteral("*,name of pc,\"%1\"").arg(system->hostName()));
    writer.line(QStringLiteral("*,\"SHOT INFORMATION\""));
    writer.line(QStringLiteral("*,name,\"%1\"").arg(shotName));
    writer.line(QStringLiteral("*,tracecount,\"%1\"").arg(traceCount));
    writer.line(QStringLiteral("*,unit of time,microseconds,unit of first column"));
    writer.line(QStringLiteral("*,\"DATA INFORMATION\""));

    // Field k of a row holds the value of the k-th channel section; only the
    // named channels that recorded something are exported, and the others
    // leave gaps in the numbering.
    std::vector<char> exportedField;
    const QString samplingText = samplingTimeText(samplingTime);
    qsizetype k = 0;
    for (const Channel& channel : channels) {
        ++k;
        const QString name = QString::fromUtf8(channel.section->valueView(ScopeArchiveKeys::ChannelName));
        bool ok = false;
        const qlonglong sourceType = channel.section->value(ScopeArchiveKeys::SourceType).toLongLong(&ok);
        if (name.isEmpty() || !ok || sourceType == 0)
            continue;
        writer.line(QStringLiteral("*,samplingtime %1, %2, time difference between points in microseconds")
                        .arg(k)
                        .arg(samplingText));
        writer.line(QStringLiteral("*,source parameter %1, %2 in %3")
                        .arg(k)
                        .arg(name, QString::fromUtf8(channel.section->valueView(ScopeArchiveKeys::Measure))));
        exportedField.resize(std::size_t(k) + 1, 0);
        exportedField[std::size_t(k)] = 1;
    }
    writer.line(QString());

    // Data rows by frame number.
    std::vector<Row> rows;
    rows.reserve(std::size_t(data->count()));
    const QByteArrayView rowPrefix(ScopeArchiveKeys::DataRowPrefix);
    for (qsizetype i = 0; i < data->count(); ++i) {
        const QByteArrayView key = data->keyAt(i);
        if (key.size() <= rowPrefix.size() || !key.startsWith(rowPrefix))
            continue;
        const char* first = key.data() + rowPrefix.size();
        const char* last = key.data() + key.size();
        if (*first < '0' || *first > '9') // from_chars would take a sign
            continue;
        qint64 frame = 0;
        const auto result = std::from_chars(first, last, frame);
        if (result.ec != std::errc() || result.ptr != last)
            continue;
        rows.push_back({frame, i});
    }
    const auto byFrame = [](const Row& a, const Row& b) { return a.frame < b.frame; };
    if (!std::is_sorted(rows.begin(), rows.end(), byFrame))
        std::stable_sort(rows.begin(), rows.end(), byFrame);

    const double samplingTimeDouble = double(samplingTime);
    const std::size_t fieldCount = exportedField.size();
    std::string& out = writer.buffer();
    for (std::size_t r = 0; r < rows.size(); ++r) {
        // Of several keys for the same frame the last one in the document wins.
        if (r + 1 < rows.size() && rows[r + 1].frame == rows[r].frame)
            continue;
        char number[24];
        const auto timeEnd = std::to_chars(number, number + sizeof number,
                                           rowTime(rows[r].frame, triggerIndex, samplingTimeDouble));
        out.append(number, std::size_t(timeEnd.ptr - number));
        out.push_back(',');

        const QByteArrayView value = data->valueAt(rows[r].position);
        const char* field = value.data();
        const char* end = value.data() + value.size();
        bool appended = false;
        for (std::size_t j = 0; j < fieldCount; ++j) {
            const char* separator = field == end ? nullptr
                : static_cast<const char*>(std::memchr(field, ';', std::size_t(end - field)));
            const char* fieldEnd = separator ? separator : end;
            if (exportedField[j]) {
                out.append(field, std::size_t(fieldEnd - field));
                out.push_back(',');
                appended = true;
            }
            if (!separator)
                break;
            field = separator + 1;
        }
        if (appended)
            out.pop_back();
        out.append(LineEnd, 2);
        writer.flushIfFull();
    }
    writer.flush();
    return finish();
}

} // namespace ScopeCsvExport
