#include "src/algorithms/blockmissingparams.h"

#include <future>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "host/language/nvm.h"
#include "host/prefs/hostfeatures.h"
#include "src/bkeditbd.h"
#include "src/evaluation/feval.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

const char* const kViolationType = "BlockEditTimeMissingParams";
// From this level of BKFEAT_ShowMissingVarsAtEditTime on, a missing variable is a warning.
constexpr int kWarningLevel = 3;

// The blocks that the prune keeps between passes: they stand in the question with 0.
bool keptAcrossBatches(const bkEditBlock& block) {
  return BlockKind::isKeptAcrossPasses(block.getBlockKind()) || block.hasChartData();
}

BlockMissingParams::Question& question() {
  static BlockMissingParams::Question ask;  // set on the main thread while no check runs
  return ask;
}

std::future<std::vector<bool>> ask(const std::vector<double>& handles,
                                   const std::wstring& diagramName) {
  if (question()) return question()(handles, diagramName);
  return postFEvalMissingVariables(nvm::Factory::getCurrentLocalMVM(),
                                   BlockMissingParams::kFunction, handles, diagramName);
}

}  // namespace

void BlockMissingParams::setQuestion(Question q) { question() = std::move(q); }

BlockMissingParams::BlockMissingParams(const std::wstring& diagramName, std::uint32_t severity,
                                       std::int32_t eventCode)
    : DiagramCheck(kCheckId, diagramName, severity), eventCode(eventCode) {}

bool BlockMissingParams::evaluate(bkEditBD& data, ViolationDatabase& database) {
  if (eventCode == EditTimeEvent::kMissingVariableRefresh) {
    database.removeByType(checkId, kViolationType);
    return true;
  }
  // The worker alone changes the map (Setup and RemoveBlock ran earlier in this queue), so it
  // is read in place. A place in the vector is what keeps the answer aligned with the blocks.
  std::vector<double> handles;
  const std::map<double, std::shared_ptr<bkEditBlock>>& blocks = data.blockMap();
  handles.reserve(blocks.size());
  for (const auto& [handle, block] : blocks) {
    handles.push_back(block && keptAcrossBatches(*block) ? 0.0 : handle);
  }
  if (handles.empty()) return true;
  try {
    std::future<std::vector<bool>> answer = ask(handles, diagramName);
    const std::vector<bool> missing = answer.get();
    if (missing.empty() || missing.size() != handles.size()) return false;
    const std::uint32_t recordSeverity =
        featureLevel(BKFEAT_ShowMissingVarsAtEditTime) < kWarningLevel ? Severity::kError
                                                                       : Severity::kWarning;
    // A removal only names the record: one made here serves every block that has none, where a
    // record of its own for each of the kept blocks cost three allocations on every edit.
    const auto removal =
        std::make_shared<EditTimeViolation>(checkId, kViolationType, recordSeverity, 0.0);
    std::vector<double> clean;
    clean.reserve(missing.size());
    auto it = blocks.begin();
    for (std::size_t i = 0; i < missing.size() && it != blocks.end(); ++i, ++it) {
      if (!missing[i]) {
        clean.push_back(it->first);
        continue;
      }
      auto r =
          std::make_shared<EditTimeViolation>(checkId, kViolationType, recordSeverity, it->first);
      r->isCommented = it->second && it->second->getIsCommented() ? 1 : 0;
      database.add(r);
    }
    database.removeEach(removal, clean);  // each block stands alone: order among them is free
  } catch (...) {
    // The evaluation, its future or the store failed: what changed stays, and the next batch
    // asks again.
    return false;
  }
  return true;
}

}  // namespace bkedittimecheck
