#include "src/algorithms/blockarastateportmappingviolation.h"

#include <map>
#include <memory>
#include <utility>

#include "src/bkeditbd.h"
#include "src/features.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

BlockaraStatePortMappingViolation::BlockaraStatePortMappingViolation(
    const std::wstring& diagramName, std::uint32_t severity)
    : DiagramCheck(kCheckId, diagramName, severity) {}

bool BlockaraStatePortMappingViolation::evaluate(bkEditBD& data, ViolationDatabase& database) {
  if (!featureOn(BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates)) return false;
  // The map itself: the checks run one after the other on the worker, nothing changes it meanwhile.
  const std::map<double, std::shared_ptr<bkEditBlock>>& blocks = data.blockMap();
  const bool hadBlocks = !blocks.empty();
  for (const auto& entry : blocks) {
    // Plain names rather than a structured binding, which the lambda below could not capture
    // under every compiler the project's tools use.
    const double handle = entry.first;
    const std::shared_ptr<bkEditBlock>& port = entry.second;
    const BlockaraStatePortInfo* info = port ? port->getChartInputData() : nullptr;
    if (!info) continue;
    // An absent state counts as no subsystem: a state deleted in the same batch leaves its ports
    // as they were.
    const auto stateEntry = blocks.find(info->stateSubsystemHandle());
    if (stateEntry == blocks.end()) continue;
    const std::shared_ptr<bkEditBlock>& state = stateEntry->second;
    if (!state || !state->getChartRecord()) continue;
    const BlockaraStateMappingInfo& mapping = *state->getChartRecord();
    const std::wstring name = fromNarrow(port->getBlockName());
    const auto decide = [&](const char* type, bool violates) {
      auto r = std::make_shared<EditTimeViolation>(checkId, type, Severity::kError, handle);
      if (violates) {
        r->isCommented = port->getIsCommented() ? 1 : 0;
        r->blockPath = port->getFullPath();
        database.add(r);
      } else {
        database.remove(r);
      }
    };
    decide("BlockaraStateMismappedPort", mapping.isMismapped(name, port->getBlockKind()));
    decide("BlockaraStateUnmappedPort", mapping.isUnmapped(name));
  }
  return hadBlocks;
}

}  // namespace bkedittimecheck
