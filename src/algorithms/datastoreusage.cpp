#include "src/algorithms/datastoreusage.h"

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "src/algorithms/blockrelations.h"
#include "src/bkeditbd.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

// The levels of the diagram's "UniqueDataStoreMsg"; 0 (none) and any other value report nothing.
constexpr std::int32_t kDiagnosticWarning = 1;
constexpr std::int32_t kDiagnosticError = 2;

// Made once, under the language's guarded initialisation: two diagrams may run this at once.
const std::string& sameGraphType() {
  static const std::string type = "DuplicateDataStoreMemoryBlocksSameGraph";
  return type;
}

const std::string& diagnosticType() {
  static const std::string type = "DuplicateDataStoreMemoryBlocksDiagnostic";
  return type;
}

}  // namespace

DataStoreUsage::DataStoreUsage(const std::wstring& diagramName, std::uint32_t severity)
    : DiagramCheck(kCheckId, diagramName, severity) {}

bool DataStoreUsage::evaluate(bkEditBD& data, ViolationDatabase& database) {
  using Block = std::shared_ptr<bkEditBlock>;
  // The worker alone changes the map, so it is read in place.
  std::map<std::wstring, std::vector<Block>> byName;
  for (const auto& [handle, block] : data.blockMap()) {
    if (!block || block->getBlockKind() != BlockKind::kDataStoreMemory) continue;
    const std::string name =
        block->getDefaultEditBlock() ? block->getDefaultEditBlock()->stringParam0 : "";
    auto it = byName.find(fromNarrow(name));
    if (it == byName.end()) {
      byName[fromNarrow(name)].push_back(block);
    } else if (!block->getIsCommented()) {
      it->second.push_back(block);
    }
  }

  // A plain read: a stale level only defers the right answer to the next run.
  const std::int32_t level = data.getUniqueDataStoreMsg();
  std::vector<std::shared_ptr<EditTimeViolation>> found;
  const auto make = [this, &found](const bkEditBlock& block, const std::string& type,
                                   std::uint32_t recordSeverity) {
    auto r =
        std::make_shared<EditTimeViolation>(checkId, type, recordSeverity, block.getBlockHandle());
    r->isCommented = block.getIsCommented() ? 1 : 0;
    r->blockPath = block.getFullPath();
    found.push_back(std::move(r));
  };
  if (severity == Severity::kError || severity == Severity::kBoth) {
    for (const auto& [name, list] : byName) {
      if (list.size() < 2) continue;
      for (std::size_t i = 0; i < list.size(); ++i) {
        for (std::size_t j = 0; j < list.size(); ++j) {
          if (i == j) continue;
          if (inSameSystem(*list[i], *list[j])) make(*list[i], sameGraphType(), Severity::kError);
          if (level == kDiagnosticError) make(*list[i], diagnosticType(), Severity::kError);
          if (level == kDiagnosticWarning) make(*list[i], diagnosticType(), Severity::kWarning);
        }
      }
    }
  }

  for (const auto& [handle, block] : data.blockMap()) {
    if (!block || block->getBlockKind() != BlockKind::kDataStoreMemory) continue;
    const std::vector<EditTimeViolation> present = database.violationsOfBlock(handle, checkId);
    for (const auto& r : found) {
      if (r->blockHandle == handle && r->isCommented == 0) database.add(r);
    }
    for (const EditTimeViolation& p : present) {
      bool current = false;
      for (const auto& r : found) {
        current =
            current || (r->blockHandle == p.blockHandle && r->violationType == p.violationType &&
                        r->checkId == p.checkId && r->severity == p.severity);
      }
      if (!current) database.remove(std::make_shared<EditTimeViolation>(p));
    }
  }
  return true;
}

}  // namespace bkedittimecheck
