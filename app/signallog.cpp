#include "app/signallog.h"

#include <map>
#include <string>

#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "host/signals/bkplugin.h"
#include "host/signals/pluginchangereport.h"

namespace blockara::app {

namespace {

std::map<double, std::vector<std::string>>& lines() {
  static std::map<double, std::vector<std::string>> byDiagram;
  return byDiagram;
}

std::string pathOf(double handle) {
  BKBlock* block = BKBlock::Handle2Block(handle);
  if (!block) return "#" + std::to_string(handle);
  return ConvertUStringToStdString(block->getFullPath(false));
}

template <class Container>
std::string joined(const Container& handles) {
  std::string out;
  for (double handle : handles) out += (out.empty() ? "" : ", ") + pathOf(handle);
  return out;
}

}  // namespace

void SignalLog::attach(BKRootBD* diagram) {
  const double id = diagram->getHandle();
  auto log = [id](std::string line) { lines()[id].push_back(std::move(line)); };
  for (auto event : {BKGE_DIAGRAM_OPENED, BKGE_DIAGRAM_CLOSING}) {
    bkplugin::addEditBdSignal(diagram, event, [log, event](BKRootBD*) {
      log("edit " + std::to_string(event));
    });
  }
  for (auto event : {BKGE_BLOCKS_ADDED, BKGE_BLOCKS_CHANGED, BKGE_BLOCKS_DELETED,
                     BKGE_BLOCKS_RENAMED}) {
    bkplugin::addEditBdBatchSignal(
        diagram, event, [log, event](BKRootBD*, const PluginChangeReport& report) {
          std::string list = event == BKGE_BLOCKS_ADDED     ? joined(report.added)
                             : event == BKGE_BLOCKS_CHANGED ? joined(report.changed)
                             : event == BKGE_BLOCKS_DELETED ? joined(report.deleted)
                                                            : joined(report.renamed);
          log("batch " + std::to_string(event) + ": " + list);
        });
  }
  for (auto event : {BKGE_BLOCK_COMMENTED_OUT, BKGE_BLOCK_COMMENTED_THROUGH,
                     BKGE_BLOCK_UNCOMMENTED}) {
    bkplugin::addEditBdBlockCommentedStatusSignal(diagram, event,
                                                  [log, event](BKRootBD*, BKBlock* block) {
      log("comment " + std::to_string(event) + ": " +
          (block ? ConvertUStringToStdString(block->getFullPath(false)) : std::string("-")));
    });
  }
  bkplugin::addEditBdModelParameterSignal(
      diagram, BKGE_MODEL_PARAMETER_CHANGED,
      [log](BKRootBD*, const std::string& name) { log("param 41: " + name); });
  for (auto event : {BKCE_COMPILE_BEGIN, BKCE_WORKSPACE_CHANGED, BKCE_VARIABLES_CHANGED,
                     BKCE_COMPILE_END}) {
    bkplugin::addCompBdSignal(diagram->getCompBD(), event, [log, event](BKCompBD*) {
      log("compile " + std::to_string(event));
    });
  }
  for (auto event : {BKEE_EXECUTION_BEGIN, BKEE_EXECUTION_END}) {
    bkplugin::addExecBdSignal(diagram->getExecBD(), event, [log, event](BKExecBD*) {
      log("exec " + std::to_string(event));
    });
  }
}

std::vector<std::string> SignalLog::take(double diagramHandle) {
  auto it = lines().find(diagramHandle);
  if (it == lines().end()) return {};
  std::vector<std::string> out = std::move(it->second);
  lines().erase(it);
  return out;
}

}  // namespace blockara::app
