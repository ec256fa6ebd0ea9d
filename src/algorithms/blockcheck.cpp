#include "src/algorithms/blockcheck.h"

#include <algorithm>
#include <map>
#include <memory>

#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/constraints/bkeditblock.h"
#include "src/edittimeviolation.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

bool BlockCheck::runCheck(const CheckContext& context) {
  const std::shared_ptr<bkEditBD>& data = context.data;
  ViolationDatabase* database = context.violations.get();
  if (!data || !database) return false;

  if (wantsParameters()) readParameters(EditTimeCheckSelector::getCheckConfiguration(checkId));
  beginRun();

  // Read once: only a parameter reader changes a scope, and none runs during the walk.
  const CheckScope scope = currentScope();
  const std::vector<std::string> types = violationTypes();
  // A removal only names the record (check, type, severity, block): one per type serves every
  // block. A record of its own is made only for what is added, which the store keeps.
  std::vector<std::shared_ptr<EditTimeViolation>> removals;
  removals.reserve(types.size());
  for (const std::string& type : types) {
    removals.push_back(std::make_shared<EditTimeViolation>(checkId, type, severity, 0.0));
  }
  std::vector<Verdict> verdicts(types.size());
  // The map itself, not a copy: every check and every Setup runs on the one worker thread, one
  // after the other, so nothing can change the map during this walk.
  data->forEachAuditedBlock([&](double handle, const std::shared_ptr<bkEditBlock>& snapshot) {
    const bkEditBlock& block = *snapshot;
    if (!considers(block)) return;
    const bool outside = data->isOutsideScope(block, scope.skipLinkedBlocks, scope.lookUnderMasks);
    std::fill(verdicts.begin(), verdicts.end(), Verdict::Remove);
    if (!outside) decide(block, verdicts);
    for (std::size_t i = 0; i < types.size(); ++i) {
      if (verdicts[i] == Verdict::Add) {
        auto record = std::make_shared<EditTimeViolation>(checkId, types[i], severity, handle);
        record->isCommented = block.getIsCommented() ? 1 : 0;
        record->blockPath = block.getFullPath();
        database->add(record);
      } else if (verdicts[i] == Verdict::Remove) {
        removals[i]->blockHandle = handle;
        database->remove(removals[i]);
      }
    }
  });
  return true;
}

void BlockCheck::decide(const bkEditBlock& block, std::vector<Verdict>& verdicts) const {
  verdicts.front() = decideOne(block);
}

bool BlockCheck::wantsParameters() const { return inputParametersChanged(); }

void BlockCheck::readParameters(const boost::property_tree::ptree& configuration) {
  readInputParameters(configuration);
}

void BlockCheck::beginRun() {}

bool BlockCheck::considers(const bkEditBlock& /*block*/) const { return true; }

Verdict BlockCheck::decideOne(const bkEditBlock& /*block*/) const { return Verdict::Remove; }

}  // namespace bkedittimecheck
