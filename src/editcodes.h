#pragma once

#include <cstdint>

// The numeric codes the engine exchanges with the host and keeps in its records, by name. They
// stay plain integers at the host boundary (signals, host-language calls, records) and in the
// store; inside the engine they are compared and passed by these names only.

namespace bkedittimecheck {

/// The event codes that reach an engine, and the codes of the table it builds for them.
namespace EditTimeEvent {
inline constexpr int kNone = 0;           ///< a lookup that must never create an engine
inline constexpr int kChecksOn = 1;       ///< the diagram opened, `on`, a slice of a scan
inline constexpr int kViewChanged = 2;    ///< the editors on view changed
inline constexpr int kCommentStatus = 3;  ///< one block was commented or uncommented
inline constexpr int kChecksOff = 5;      ///< the diagram closes, `off`
inline constexpr int kConfiguration = 7;  ///< a configuration was loaded
inline constexpr int kAuditorOff = 8;     ///< the rule auditor was switched off
inline constexpr int kChartRefresh = 9;   ///< a chart's state ports must be checked again
inline constexpr int kErrorsOn = 10;
inline constexpr int kErrorsOff = 11;
inline constexpr int kWarningsOn = 12;
inline constexpr int kWarningsOff = 13;
inline constexpr int kAllOn = 15;
inline constexpr int kWorkspaceRefresh = 16;
inline constexpr int kMissingVariableRefresh = 17;
// The four host batches; their codes double as the table's event codes.
inline constexpr int kBlocksAdded = 18;
inline constexpr int kBlocksDeleted = 19;
inline constexpr int kBlocksRenamed = 20;
inline constexpr int kBlocksChanged = 21;
/// The highest code of the diagram-level events (1 to 15).
inline constexpr int kLastDiagramEvent = kAllOn;
}  // namespace EditTimeEvent

/// The host's numeric block kinds that the engine tests.
namespace BlockKind {
inline constexpr int kDataStoreMemory = 22;
inline constexpr int kDataStoreRead = 23;
inline constexpr int kDataStoreWrite = 24;
inline constexpr int kUnitDelay = 31;
inline constexpr int kIntegrator = 33;
inline constexpr int kMemory = 36;
inline constexpr int kFrom = 51;
inline constexpr int kGoto = 56;
inline constexpr int kGotoTagVisibility = 57;
inline constexpr int kEventListener = 62;
inline constexpr int kInport = 66;
inline constexpr int kInportShadow = 67;
inline constexpr int kDiscreteIntegrator = 68;
inline constexpr int kOutport = 88;
inline constexpr int kDelay = 116;
inline constexpr int kStateReader = 123;
inline constexpr int kStateWriter = 125;
inline constexpr int kSubSystem = 131;
inline constexpr int kDiscreteStateSpace = 156;

/// Goto, From and Goto Tag Visibility blocks: the kinds counted against the routing limit.
constexpr bool isGotoFrom(int kind) {
  return kind == kFrom || kind == kGoto || kind == kGotoTagVisibility;
}
/// The chart state reader and writer blocks.
constexpr bool isStateAccessor(int kind) { return kind == kStateReader || kind == kStateWriter; }
/// Blocks with state that a state accessor may own.
constexpr bool isStateOwner(int kind) {
  return kind == kUnitDelay || kind == kIntegrator || kind == kMemory ||
         kind == kDiscreteIntegrator || kind == kDelay || kind == kDiscreteStateSpace;
}
/// The kinds that cross-block checks read on every run, so the block map keeps them between
/// passes.
constexpr bool isKeptAcrossPasses(int kind) {
  return kind == kDataStoreMemory || isGotoFrom(kind) || isStateAccessor(kind);
}
/// Data store and routing blocks, whose commenting still concerns their partners.
constexpr bool isDataStoreOrRouting(int kind) {
  return kind == kDataStoreMemory || kind == kDataStoreRead || kind == kDataStoreWrite ||
         isGotoFrom(kind);
}
/// Inport, its shadow and Outport.
constexpr bool isPortBlock(int kind) {
  return kind == kInport || kind == kInportShadow || kind == kOutport;
}
}  // namespace BlockKind

/// The severities of checks and records. The reporting code maps 1 to an edit-time error, 3 and
/// 4 to the rule tool's warning and error, anything else to an edit-time warning.
namespace Severity {
inline constexpr std::uint32_t kWarning = 0;         ///< an interactive warning record
inline constexpr std::uint32_t kError = 1;           ///< an interactive error record or check
inline constexpr std::uint32_t kAuditorWarning = 3;  ///< every configurable check
inline constexpr std::uint32_t kAuditorError = 4;
/// Not a class of its own: the internal entries, and the selector "both groups" of the checks
/// that report warnings and errors.
inline constexpr std::uint32_t kBoth = 5;

constexpr bool isError(std::uint32_t severity) {
  return severity == kError || severity == kAuditorError;
}
/// Rule-tool findings, which exclusions may exempt.
constexpr bool isAuditor(std::uint32_t severity) {
  return severity == kAuditorWarning || severity == kAuditorError;
}
}  // namespace Severity

/// The host's diagram kind of a library.
inline constexpr int kLibraryDiagramKind = 1;
/// The subsystem type of a state of a chart.
inline constexpr int kChartStateSubsystemType = 8;

/// The subsystem type that the subsystem name rule passes by.
inline constexpr int kExemptSubsystemType = 2;

/// How an atomic subsystem is packaged for code generation.
namespace FunctionPackaging {
inline constexpr std::int32_t kAuto = 0;
inline constexpr std::int32_t kInline = 1;
inline constexpr std::int32_t kFunction = 2;
inline constexpr std::int32_t kReusableFunction = 3;
}  // namespace FunctionPackaging

/// The capability slots of the host's block library that the code generation checks read.
inline constexpr int kCodegenCapability = 8;
inline constexpr int kProductionCapability = 9;

/// The mask kinds of a subsystem, as the scope rule reads them.
namespace MaskKind {
inline constexpr std::int32_t kNone = 1;
inline constexpr std::int32_t kWithParameters = 2;
inline constexpr std::int32_t kWithoutParameters = 3;
inline constexpr std::int32_t kWithInitialization = 4;
}  // namespace MaskKind

/// The `lookUnderMasks` values of a check's scope.
namespace LookUnderMasks {
inline constexpr std::int32_t kAll = 0;
inline constexpr std::int32_t kNone = 1;
inline constexpr std::int32_t kGraphical = 2;
inline constexpr std::int32_t kFunctional = 3;
}  // namespace LookUnderMasks

}  // namespace bkedittimecheck
