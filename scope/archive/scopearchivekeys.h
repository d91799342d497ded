// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/*! \brief Section and key names of the shot and composition archive documents.

    All names are plain ASCII. Names ending in "_" are prefixes: the decimal
    index (QByteArray::number(n), no leading zeros) is appended to them, e.g.
    ScopeArchiveKeys::ChannelSectionPrefix + "12" is "ScopeChannel_12".
    Every constant converts implicitly to QByteArrayView and QByteArray.
*/
namespace ScopeArchiveKeys {

// Type lines that open an archive text (followed by CR LF CR LF).
inline constexpr char ShotTypeLine[] = ";type=\"ovx-scope-shot-archive\" version=\"0\"";
inline constexpr char CompositionTypeLine[] = ";type=\"ovx-scope-composition-archive\" version=\"0\"";

// Sections.
inline constexpr char ArchiveSection[] = "Archive";
inline constexpr char DataSection[] = "Data";
inline constexpr char ShotSection[] = "ScopeShot";
inline constexpr char SceneSection[] = "ScopeScene";
inline constexpr char TriggerLogicSection[] = "TriggerLogic";
inline constexpr char TriggerSectionPrefix[] = "Trigger_";
inline constexpr char ChannelSectionPrefix[] = "ScopeChannel_";
inline constexpr char UsedShotIdentifiersSection[] = "UsedShotIdentifiers";

// "Archive".
inline constexpr char Id[] = "ID";
inline constexpr char Name[] = "Name";
inline constexpr char HostName[] = "HostName";
inline constexpr char ReadOut[] = "ReadOut";
inline constexpr char ReadOutTimestamp[] = "ReadOutTimestamp";
inline constexpr char IsPublic[] = "IsPublic";
inline constexpr char Comment[] = "Comment";
inline constexpr char CreateUserName[] = "CreateUserName";
inline constexpr char CreateTimestamp[] = "CreateTimestamp";

// "UsedShotIdentifiers".
inline constexpr char ShotIdPrefix[] = "ShotId_";

// "Data".
inline constexpr char ChannelCount[] = "ChannelCount";
inline constexpr char FrameCount[] = "FrameCount";
inline constexpr char TriggerIndex[] = "TriggerIndex";
inline constexpr char DataRowPrefix[] = "Data_";
inline constexpr char SerialNumber[] = "SerialNumber";
inline constexpr char LivingSpace[] = "LivingSpace";
inline constexpr char StartTime[] = "StartTime";
inline constexpr char TriggerTime[] = "TriggerTime";

// "ScopeShot".
inline constexpr char TimeBase[] = "TimeBase";
inline constexpr char ViewSliderLeft[] = "ViewSliderLeft";
inline constexpr char ViewSliderRight[] = "ViewSliderRight";
inline constexpr char PreTrigger[] = "PreTrigger";

// "ScopeChannel_" N.
inline constexpr char SourceType[] = "SourceType";
inline constexpr char ParameterValueAddress[] = "ParameterValueAddress";
inline constexpr char PhysicalAddress[] = "PhysicalAddress";
inline constexpr char PhysicalDatatype[] = "PhysicalDatatype";
inline constexpr char SignalLabelName[] = "SignalLabelName";
inline constexpr char ChannelName[] = "Name";
inline constexpr char Color[] = "Color";
inline constexpr char Measure[] = "Measure";
inline constexpr char DecimalPlaces[] = "DecimalPlaces";
inline constexpr char ParameterKind[] = "ParameterKind";
inline constexpr char ChoiceMap[] = "ChoiceMap";
inline constexpr char ViewVerticalOffset[] = "ViewVerticalOffset";
inline constexpr char ViewScalingFactor[] = "ViewScalingFactor";
inline constexpr char ViewOff[] = "ViewOff";
inline constexpr char ViewGround[] = "ViewGround";
inline constexpr char ViewInverted[] = "ViewInverted";
inline constexpr char BinaryView[] = "BinaryView";
inline constexpr char BinaryViewMask[] = "BinaryViewMask";
inline constexpr char BinaryScalingFactorBackup[] = "BinaryScalingFactorBackup";

// "ScopeScene" (read and written by the scene; listed here so that every
// name of the document stands in one place).
inline constexpr char ScopeStripePrefix[] = "ScopeStripe_";
inline constexpr char ScopeStripeName[] = "ScopeStripeName";
inline constexpr char StripeTracePrefix[] = "StripeTrace_";
inline constexpr char TraceIndex[] = "TraceIndex";
inline constexpr char MarkerPositionAFormat[] = "MarkerPosition_%1A"; // %1 via QString::arg
inline constexpr char MarkerPositionBFormat[] = "MarkerPosition_%1B";

// "TriggerLogic" and "Trigger_" N (interpreted by the read-out side only).
inline constexpr char CompareAbsolute[] = "CompareAbsolute";
inline constexpr char CompareType[] = "CompareType";
inline constexpr char CompareUseMask[] = "CompareUseMask";
inline constexpr char CompareValue[] = "CompareValue";
inline constexpr char EdgeDetection[] = "EdgeDetection";
inline constexpr char FilterTime[] = "FilterTime";
inline constexpr char SignalName[] = "SignalName";

} // namespace ScopeArchiveKeys
