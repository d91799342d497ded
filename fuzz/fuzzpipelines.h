// SPDX-License-Identifier: GPL-3.0-or-later
// The pipelines the fuzz targets drive, shared with the regression test that
// replays every input that ever failed (tests/auto/reliability). Each returns
// an empty text when all its checks hold, else the check that failed.
#pragma once

#include "iniparser.h"
#include "scopearchivecodec.h"
#include "scopecompositionarchive.h"
#include "scopeshot.h"
#include "scopeshotarchive.h"
#include "scopetrace.h"

#include <QtCore/QByteArray>
#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>

#include <memory>

#define FUZZ_CHECK(condition)                                                             \
    do {                                                                                  \
        if (!(condition))                                                                 \
            return QByteArray(#condition " (" __FILE__ ":") + QByteArray::number(__LINE__) \
                + ')';                                                                    \
    } while (false)

namespace FuzzPipelines {

// Parse, write, parse, write: both writes are equal, and every look-up of the
// parsed document stays inside it.
inline QByteArray iniDocument(const QByteArray& input)
{
    using KlIniParser::IniParser;
    using KlIniParser::IniSection;

    IniParser first;
    first.setIniText(input);
    const QByteArray written = first.getIniTextWithoutByteOrderMarker();

    IniParser second;
    second.setIniText(written);
    const QByteArray rewritten = second.getIniTextWithoutByteOrderMarker();
    FUZZ_CHECK(written == rewritten);
    FUZZ_CHECK(first.sectionNames() == second.sectionNames());

    // With the byte-order mark the same document comes back as well.
    IniParser third;
    third.setIniText(first.getIniText());
    FUZZ_CHECK(third.getIniTextWithoutByteOrderMarker() == written);

    const QList<QByteArray> names = first.sectionNames();
    for (const QByteArray& name : names) {
        IniSection* section = first.section(name);
        FUZZ_CHECK(section);
        IniSection* other = second.section(name);
        FUZZ_CHECK(other);
        FUZZ_CHECK(section->count() == other->count());
        for (qsizetype i = 0; i < section->count(); ++i) {
            const QByteArray key = section->keyAt(i).toByteArray();
            FUZZ_CHECK(section->contains(key));
            FUZZ_CHECK(section->value(key) == other->value(key));
        }
    }

    // A value and a key set from arbitrary bytes read back as a parse of the
    // written text gives them.
    if (!input.isEmpty()) {
        IniSection* section = first.findOrCreateSection("Fuzz");
        FUZZ_CHECK(section);
        section->setValue("Key", input.left(256));
        section->setValue(input.left(32), "value");
        const QByteArray edited = first.getIniTextWithoutByteOrderMarker();
        IniParser fourth;
        fourth.setIniText(edited);
        FUZZ_CHECK(fourth.getIniTextWithoutByteOrderMarker() == edited);
        IniSection* reread = fourth.section("Fuzz");
        FUZZ_CHECK(reread);
        FUZZ_CHECK(reread->value("Key") == section->value("Key"));
        section->remove("Key");
        first.removeSection("Fuzz");
    }
    return {};
}

// Load a shot document, build the recording, write the trace views back,
// save and load the saved bytes again. Saving twice gives the same bytes.
inline QByteArray shotArchive(const QByteArray& input)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    const bool loaded = archive->fromByteArray(input);
    {
        ScopeShot shot;
        shot.setArchive(archive.get());
        if (shot.load()) {
            const QList<int> numbers = shot.channelNumbers();
            for (int number : numbers) {
                ScopeTrace* trace = shot.trace(number);
                FUZZ_CHECK(trace);
                (void)trace->samples().size();
            }
            FUZZ_CHECK(shot.startTime() <= 0);
            FUZZ_CHECK(shot.endTime() >= 0);
        }
        shot.saveTraceViews();
    }
    // The metadata the host lists.
    (void)archive->id();
    (void)archive->name();
    (void)archive->timestamp();
    (void)archive->isPublic();
    (void)archive->isCommentEmpty();
    (void)archive->hasChannelViewSettings();
    (void)archive->viewRecipe();

    const QByteArray saved = archive->toByteArray();
    std::unique_ptr<ScopeShotArchive> again(ScopeShotArchive::create(nullptr));
    FUZZ_CHECK(again->fromByteArray(saved) == loaded);
    if (loaded)
        FUZZ_CHECK(again->toByteArray() == saved);

    // A read-out that is not yet an archive becomes one.
    std::unique_ptr<ScopeShotArchive> created(ScopeShotArchive::create(nullptr));
    if (created->createFromReadOut(input))
        FUZZ_CHECK(created->archiveSection());
    else
        FUZZ_CHECK(created->iniParser()->sectionCount() == 0);
    return {};
}

// The comment and timestamp decoders: arbitrary text never crashes or
// allocates beyond the limits, and what decodes encodes back to itself.
inline QByteArray archiveCodec(const QByteArray& input)
{
    const QDateTime timestamp = ScopeArchiveCodec::decodeTimestamp(input);
    if (timestamp.isValid())
        FUZZ_CHECK(ScopeArchiveCodec::decodeTimestamp(ScopeArchiveCodec::encodeTimestamp(timestamp)) == timestamp);

    const QString comment = ScopeArchiveCodec::decodeComment(input);
    if (!comment.isEmpty())
        FUZZ_CHECK(ScopeArchiveCodec::decodeComment(ScopeArchiveCodec::encodeComment(comment)) == comment);

    // The raw bytes as a compressed block (the hex step already done).
    FUZZ_CHECK(ScopeArchiveCodec::uncompress(input, 1 << 20).size() <= (1 << 20));

    QByteArray decoded;
    if (ScopeArchiveCodec::fromHex(input, &decoded, 4096)) {
        FUZZ_CHECK(decoded.size() <= 4096);
        FUZZ_CHECK(ScopeArchiveCodec::toHex(decoded) == input.toLower());
    } else {
        FUZZ_CHECK(decoded.isEmpty());
    }

    quint64 index = 0;
    if (ScopeArchiveCodec::indexedName(input, "Data_", &index, 1000000))
        FUZZ_CHECK(index <= 1000000);
    return {};
}

// A small recording with channels that view recipes can match.
inline QByteArray recipeTarget()
{
    return QByteArrayLiteral(
        "[Archive]\r\nID=SN1_2_3_4\r\nName=Fuzz\r\n\r\n"
        "[Data]\r\nChannelCount=3\r\nFrameCount=4\r\nTriggerIndex=1\r\n"
        "Data_0=0;1;2;3\r\nData_1=1;1.5;2.5;3.5\r\nData_2=2;2;3;4\r\nData_3=3;2.5;3.5;4.5\r\n\r\n"
        "[ScopeShot]\r\nTimeBase=62.5\r\nViewSliderLeft=-100000\r\nViewSliderRight=200000\r\n\r\n"
        "[ScopeScene]\r\nScopeStripe_0=1\r\n\r\n"
        "[ScopeChannel_0]\r\nSourceType=1\r\nParameterValueAddress=4096\r\nPhysicalAddress=8192\r\n"
        "PhysicalDatatype=3\r\nSignalLabelName=n_act\r\nName=Drehzahl\r\nMeasure=rpm\r\n"
        "DecimalPlaces=1\r\nParameterKind=0\r\n\r\n"
        "[ScopeChannel_1]\r\nSourceType=1\r\nParameterValueAddress=4100\r\nPhysicalAddress=8200\r\n"
        "PhysicalDatatype=7\r\nSignalLabelName=i_q\r\nName=Strom\r\nMeasure=A\r\n"
        "DecimalPlaces=2\r\nParameterKind=0\r\n\r\n"
        "[ScopeChannel_2]\r\nSourceType=2\r\nPhysicalDatatype=1\r\nDecimalPlaces=0\r\n"
        "ParameterKind=2\r\nChoiceMap=0:Aus,1:Ein\r\n");
}

inline QByteArray applyRecipe(const QByteArray& recipe, bool channelsOnly)
{
    std::unique_ptr<ScopeShotArchive> archive(ScopeShotArchive::create(nullptr));
    FUZZ_CHECK(archive->fromByteArray(recipeTarget()));
    const QByteArray before = archive->toByteArray();
    if (!archive->applyViewRecipe(recipe, channelsOnly))
        FUZZ_CHECK(archive->toByteArray() == before);
    (void)archive->hasChannelViewSettings();
    (void)archive->viewRecipe();
    ScopeShot shot;
    shot.setArchive(archive.get());
    FUZZ_CHECK(shot.load());
    shot.saveTraceViews();
    std::unique_ptr<ScopeShotArchive> again(ScopeShotArchive::create(nullptr));
    FUZZ_CHECK(again->fromByteArray(archive->toByteArray()));
    return {};
}

// The input as a composition document (load, save, load again: the same
// shot list) and as a view recipe applied in both forms to a recording,
// which must still load afterwards.
inline QByteArray compositionArchive(const QByteArray& input)
{
    std::unique_ptr<ScopeCompositionArchive> composition(ScopeCompositionArchive::create(nullptr));
    if (composition->fromByteArray(input)) {
        const QList<QByteArray> shots = composition->usedShotIdentifiers();
        (void)composition->name();
        (void)composition->timestamp();
        (void)composition->comment();
        const QByteArray saved = composition->toByteArray();
        std::unique_ptr<ScopeCompositionArchive> again(ScopeCompositionArchive::create(nullptr));
        FUZZ_CHECK(again->fromByteArray(saved));
        FUZZ_CHECK(again->usedShotIdentifiers() == shots);
        FUZZ_CHECK(again->id() == composition->id());
    }
    const QByteArray full = applyRecipe(input, false);
    if (!full.isEmpty())
        return full;
    return applyRecipe(input, true);
}

} // namespace FuzzPipelines
