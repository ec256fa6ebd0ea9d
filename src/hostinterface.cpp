#include "src/hostinterface.h"

#include <vector>

#include "host/language/cmddistributor.h"
#include "host/language/feval.h"
#include "host/language/nvm.h"
#include "host/language/nxarray.h"
#include "host/model/bkglue.h"
#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockqueries.h"
#include "host/model/configset.h"
#include "host/model/subsystemblock.h"
#include "host/prefs/bkfeature.h"
#include "host/prefs/edittimepreferences.h"
#include "host/studio/studioapp.h"
#include "host/style/styler.h"
#include "host/trace/ptlog.h"
#include "src/editcodes.h"
#include "src/evaluation/feval.h"
#include "src/presentation/edittimestyler.h"

namespace bkedittimecheck {

std::wstring toWide(const bksvString& text) {
  // UTF-16 code units widen one to one for the engine's own comparisons and keys.
  return std::wstring(text.begin(), text.end());
}

bksvString toBksv(const std::wstring& text) {
  bksvString out;
  out.reserve(text.size());
  for (wchar_t c : text) out.push_back(static_cast<char16_t>(c));
  return out;
}

std::string toNarrow(const std::wstring& text) { return ConvertUStringToStdString(toBksv(text)); }

std::wstring fromNarrow(const std::string& text) { return toWide(i18n::to_u16string(text)); }

std::wstring diagramNameOf(const BKRootBD* diagram) { return toWide(diagram->getName()); }

BKRootBD* diagramByName(const std::wstring& name) {
  return bkBlockDiagramSet::nameToBlockDiagram(toBksv(name));
}

bool isLibrary(const BKRootBD* diagram) { return diagram->getDiagramKind() == kLibraryDiagramKind; }

bool isSuspended(const BKRootBD* diagram) { return diagram->isSuspended(); }

bool auditorModeOn(const BKRootBD* diagram) { return diagram->auditorModeOn(); }

BKBlock* handle2Block(double handle) { return BKBlock::Handle2Block(handle); }

std::string typeNameOf(const BKBlock* block) { return block->getType().name; }

bool isVariantSubsystem(const BKBlock* block) { return SubsystemBlock::IsVariantSubsystem(block); }

bool graphOwnerIsNotChart(const BKBlock* block) {
  bkGraph* graph = BKGlue::getBlockGraph(block);
  if (!graph) return false;
  BKBlock* owner = graph->getOwner();
  return !owner || !BKGlue::isChartelleBlock(owner);
}

bool isChartBasedSubsystem(const BKBlock* block) {
  if (block->getTypeCode() != BlockKind::kSubSystem ||
      SubsystemBlock::getSubsystemType(block) != kChartStateSubsystemType)
    return false;
  bkGraph* graph = BKGlue::getBlockGraph(block);
  return graph && graph->getOwner() && BKGlue::isChartelleBlock(graph->getOwner());
}

bool isBlockaraStatePort(const BKBlock* block) {
  const int code = block->getTypeCode();
  if (code != BlockKind::kInport && code != BlockKind::kOutport) return false;
  bkGraph* graph = BKGlue::getBlockGraph(block);
  return graph && graph->getOwner() && isChartBasedSubsystem(graph->getOwner());
}

double graphOwnerHandle(const BKBlock* block) {
  bkGraph* graph = BKGlue::getBlockGraph(block);
  return graph && graph->getOwner() ? graph->getOwner()->getHandle() : 0.0;
}

bool isUsableGraph(const bkGraph* graph) {
  return graph && graph->getBlockDiagram() && graph->getStateBits() == 0;
}

std::vector<bkGraph*> visibleGraphsOf(BKRootBD* diagram) {
  std::vector<bkGraph*> out;
  for (Blockara::Editor* editor : Blockara::StudioApp::getAllEditorsFor(diagram->getHandle())) {
    if (!editor->isVisible()) continue;
    bkGraph* graph = editor->getGraph();
    if (isUsableGraph(graph)) out.push_back(graph);
  }
  return out;
}

std::uint64_t viewRevision() { return Blockara::StudioApp::viewRevision(); }

SubsystemFacts subsystemFactsOf(const BKBlock* block) {
  SubsystemFacts facts;
  facts.isAtomic = SubsystemBlock::determineIsAtomicUnit(block);
  facts.isCodeAuto = SubsystemBlock::IsCodeAuto(block);
  facts.isFunction = SubsystemBlock::IsSetAsFunction(block);
  facts.isReusableFunction = SubsystemBlock::IsSetAsReusableFunction(block);
  facts.isBlockaraFunction = SubsystemBlock::getIsBlockaraFunction(block);
  facts.subsystemType = SubsystemBlock::getSubsystemType(block);
  return facts;
}

std::string resolveRelativeBlockPath(const BKBlock* block, const std::string& relative) {
  // The host's own resolution, so that escaped "//" in names and a climb above the root read as
  // the host reads them.
  return ConvertUStringToStdString(
      BlockAccess::AccessUtil::convertRelativePathToFullPath(block, i18n::to_u16string(relative)));
}

std::int32_t stateOwnerBlockId(const BKBlock* block, std::int32_t current) {
  const BKBlock* owner =
      BKBlock::Handle2Block(BlockAccess::AccessorInterface::getResourceOwnerBlockHandle(block));
  return owner ? owner->getBlockId() : current;
}

BKRootBD* rootOfCompiled(BKCompBD* compiled) {
  return compiled ? compiled->getBlockDiagram() : nullptr;
}

BKRootBD* rootOfExecuting(BKExecBD* executing) {
  return executing ? rootOfCompiled(executing->getCompBD()) : nullptr;
}

std::string uniqueDataStoreSetting(BKRootBD* diagram) {
  ConfigSet* set = BDConfigSetInfo::get(diagram).getActiveSetObject();
  if (!set) return "";
  const BlockParamValue* value = set->getProp("UniqueDataStoreMsg");
  const std::string* text = value ? std::get_if<std::string>(value) : nullptr;
  return text ? *text : "";
}

std::int32_t uniqueDataStoreLevel(BKRootBD* diagram) {
  const std::string setting = uniqueDataStoreSetting(diagram);
  if (setting == "warning") return 1;
  if (setting == "error") return 2;
  return 0;
}

void callDiagramFunction(const char* function, const std::wstring& diagramName) {
  std::vector<nxArray> results;
  std::vector<nxArray> args{nxArray::charRow(std::u16string_view(toBksv(diagramName)))};
  // A failing setup or cleanup function must not stop the engine: its diagnostic is dropped.
  bksvDiagnosticPtr diagnostic = bksvFEVAL_NoThrow(0, results, function, args);
  (void)diagnostic;
}

// ---- the user's preference, feature flags, styling, tracer and the evaluation bridge

bool showEditTimeIssues() { return bk::bkedittimecheck::bkutils::getShowEditTimeIssues(); }

bool featureOn(BkFeature* feature) { return feature != nullptr && feature->isOn(); }

int featureLevel(BkFeature* feature) { return feature != nullptr ? feature->getLevel() : 0; }

void removeErrorAndWarnClasses(double handle) {
  diagram::style::Styler* styler = createEditTimeStyler();
  styler->removeClass(handle, L"Error");
  styler->removeClass(handle, L"Warn");
}

void postApplyStyle(const std::wstring& diagramName, std::uint32_t engineId) {
  try {
    // The future is dropped at once: the worker never waits for its styling.
    postFEval(nvm::Factory::getCurrentLocalMVM(), "edittime.Styler.applyStyle", diagramName,
              engineId);
  } catch (const cmddistributor::RuntimeException& error) {
    (void)error.getMessage();  // styling of this pass is lost; the next pass styles everything
  } catch (...) {
  }
}

void logTracePoint(const std::string& point, bool isStart, const std::string& contextA,
                   const std::string& contextB) {
  ptLogBlockaraData("EDITTIMECHECK", contextA, contextB, point, isStart);
}

void addTraceGrouping() { (void)ptAddGrouping("EDITTIMECHECK", {"ENGINE", "GRAPH", "ALGORITHMS"}); }

}  // namespace bkedittimecheck
