#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/model/bkblock.h"
#include "host/model/bksvstring.h"

class bkGraph;
class BKRootBD;
class BkFeature;
class BKCompBD;
class BKExecBD;

namespace bkedittimecheck {

/// The few host questions that the engine asks everywhere, in one place. Every function here
/// belongs to the main thread unless it says otherwise; host exceptions pass to the caller.

/// Any thread. UTF-16 host text to the engine's wide text, and back.
std::wstring toWide(const bksvString& text);
bksvString toBksv(const std::wstring& text);

/// Any thread. Wide text to UTF-8 and back, for check identifiers and host-language strings.
std::string toNarrow(const std::wstring& text);
std::wstring fromNarrow(const std::string& text);

/// The diagram's name as wide text.
std::wstring diagramNameOf(const BKRootBD* diagram);

/// The open diagram of that name, or null.
BKRootBD* diagramByName(const std::wstring& name);

/// True for a library (diagram kind 1).
bool isLibrary(const BKRootBD* diagram);

/// The suspended flag: while it is set the engine does nothing for the diagram.
bool isSuspended(const BKRootBD* diagram);

/// Bit 19 of the diagram's edit-parameter flags: the diagram is under the rule auditor.
bool auditorModeOn(const BKRootBD* diagram);

/// The user's preference that edit-time issues are shown.
bool showEditTimeIssues();

/// Any thread. A feature is on when its level is at least 1; each read is counted by the host.
bool featureOn(BkFeature* feature);

/// Any thread. The level of a feature, counted as a read; 0 for a null flag.
int featureLevel(BkFeature* feature);

/// The live block of a handle, or null once it is gone.
BKBlock* handle2Block(double handle);

/// The block's type name as UTF-8.
std::string typeNameOf(const BKBlock* block);

/// True for a subsystem whose variant switch is on.
bool isVariantSubsystem(const BKBlock* block);

/// True for a block whose graph is set up and whose owner is absent or not a chart.
bool graphOwnerIsNotChart(const BKBlock* block);

/// True for a chart-based subsystem: type code 131, subsystem type 8 and a chart owner.
bool isChartBasedSubsystem(const BKBlock* block);

/// True for a port (type code 66 or 88) that stands directly in a chart-based subsystem.
bool isBlockaraStatePort(const BKBlock* block);

/// The handle of the owner block of the graph that contains `block`; 0 when it has none.
double graphOwnerHandle(const BKBlock* block);

/// True for a graph that exists, has a diagram and has neither state bit set.
bool isUsableGraph(const bkGraph* graph);

/// The graphs behind the visible editors of the diagram, usable ones only, in editor order.
std::vector<bkGraph*> visibleGraphsOf(BKRootBD* diagram);

/// A count that moves whenever what `visibleGraphsOf` answers may have changed, for any diagram.
std::uint64_t viewRevision();

/// What the snapshot asks of a subsystem block.
struct SubsystemFacts {
  bool isAtomic = false;
  bool isCodeAuto = false;
  bool isFunction = false;
  bool isReusableFunction = false;
  bool isBlockaraFunction = false;
  std::int32_t subsystemType = 0;
};

/// The subsystem queries of a block of type code 131.
SubsystemFacts subsystemFactsOf(const BKBlock* block);

/// A state accessor's owner path that begins "../", made absolute from the accessor's system.
std::string resolveRelativeBlockPath(const BKBlock* block, const std::string& relative);

/// The numeric identifier of the block that a state accessor names as its owner; `current` when
/// that block no longer resolves.
std::int32_t stateOwnerBlockId(const BKBlock* block, std::int32_t current);

/// The diagram behind a compiled diagram, and behind an executing one; null when none.
BKRootBD* rootOfCompiled(BKCompBD* compiled);
BKRootBD* rootOfExecuting(BKExecBD* executing);

/// The diagram's "UniqueDataStoreMsg" diagnostic setting; empty without a configuration set.
std::string uniqueDataStoreSetting(BKRootBD* diagram);

/// The same setting as the diagnostic level the data store check reads: 1 "warning", 2 "error",
/// 0 for "none", any other word and no configuration set.
std::int32_t uniqueDataStoreLevel(BKRootBD* diagram);

/// Takes the classes "Error" and "Warn" off a block through the edit-time styler.
void removeErrorAndWarnClasses(double handle);

/// Calls the host-language function `function` with the diagram name as its one argument,
/// wanting no result; a failure of the function is dropped with its diagnostic.
void callDiagramFunction(const char* function, const std::wstring& diagramName);

/// Any thread. Logs the start or stop of an engine step in the host's tracer, component
/// "EDITTIMECHECK", with the two trace context strings. Never throws.
void logTracePoint(const std::string& point, bool isStart, const std::string& contextA,
                   const std::string& contextB);

/// Any thread. Registers the engine's grouping in the host's tracer: "EDITTIMECHECK" with the
/// groups "ENGINE", "GRAPH" and "ALGORITHMS"; the tracer's answer is dropped.
void addTraceGrouping();

/// Any thread. Posts the host-language function "edittime.Styler.applyStyle" with the diagram
/// name and the engine id, to be run on the main thread; does not wait. A refused post is
/// dropped: the next finished pass styles everything.
void postApplyStyle(const std::wstring& diagramName, std::uint32_t engineId);

}  // namespace bkedittimecheck
