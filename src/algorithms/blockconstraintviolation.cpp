#include "src/algorithms/blockconstraintviolation.h"

#include <memory>
#include <utility>

#include "src/bkeditbd.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/constraints/blockparamconstraintdata.h"
#include "src/edittimeviolation.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

BlockConstraintViolation::BlockConstraintViolation(std::string_view checkId,
                                                   const std::wstring& diagramName,
                                                   std::uint32_t severity)
    : EditTimeAlgorithms(checkId, diagramName, severity) {}

bool BlockConstraintViolation::runCheck(const CheckContext& context) {
  if (!context.data || !context.violations) return false;
  const std::shared_ptr<BlockConstraintCheckData> checkData =
      context.configuration ? context.configuration->getCheckData(checkId) : nullptr;
  if (!checkData || !checkData->hasCompositeConstraints()) return false;
  // Unlike the other configurable checks, the scope is read at every run.
  readInputParameters(EditTimeCheckSelector::getCheckConfiguration(checkId));
  const CheckScope scope = currentScope();
  // A removal only names the record: one serves every block that passes.
  const auto removal =
      std::make_shared<EditTimeViolation>(checkId, "BlockConstraintViolation", severity, 0.0);
  context.data->forEachAuditedBlock([&](double handle, const std::shared_ptr<bkEditBlock>& block) {
    if (context.data->isOutsideScope(*block, scope.skipLinkedBlocks, scope.lookUnderMasks) ||
        checkData->checkBlock(block)) {
      removal->blockHandle = handle;
      context.violations->remove(removal);
      return;
    }
    auto record =
        std::make_shared<EditTimeViolation>(checkId, "BlockConstraintViolation", severity, handle);
    record->isCommented = block->getIsCommented() ? 1 : 0;
    record->blockPath = block->getFullPath();
    context.violations->add(record);
  });
  return true;
}

}  // namespace bkedittimecheck
