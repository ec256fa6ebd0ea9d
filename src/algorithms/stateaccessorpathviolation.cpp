#include "src/algorithms/stateaccessorpathviolation.h"

#include <map>
#include <memory>
#include <utility>

#include "src/bkeditbd.h"
#include "src/hostinterface.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

namespace {

// Whether an iterator system stands at `start` or above it; `iterator` gets the first one met
// on the way up to the root.
bool underIterator(bkEditBD& data, std::string start, std::string& iterator) {
  for (std::string x = std::move(start); !isRootPath(x); x = parentPath(x)) {
    if (data.isIteratorSystem(x)) {
      iterator = x;
      return true;
    }
  }
  return false;
}

}  // namespace

StateAccessorPathViolation::StateAccessorPathViolation(const std::wstring& diagramName,
                                                       std::uint32_t severity)
    : DiagramCheck(kCheckId, diagramName, severity) {}

bool StateAccessorPathViolation::evaluate(bkEditBD& data, ViolationDatabase& database) {
  // The map itself: the checks run one after the other on the worker, nothing changes it meanwhile.
  const std::map<double, std::shared_ptr<bkEditBlock>>& blocks = data.blockMap();
  bool clean = true;
  for (const auto& entry : blocks) {
    // Plain names: the lambdas below capture them, which a structured binding does not allow
    // under every compiler the project's tools use.
    const double handle = entry.first;
    const auto& block = entry.second;
    if (!block || !BlockKind::isStateAccessor(block->getBlockKind())) continue;
    const auto record = [&](const char* type) {
      auto r = std::make_shared<EditTimeViolation>(checkId, type, severity, handle);
      r->isCommented = block->getIsCommented() ? 1 : 0;
      r->blockPath = block->getFullPath();
      return r;
    };
    const auto decide = [&](const char* type, bool violates) {
      if (violates) {
        database.add(record(type));
        clean = false;
      } else {
        database.remove(record(type));
      }
    };

    const std::string s = parentPath(toNarrow(block->getFullPath()));
    const std::string o =
        block->getDefaultEditBlock() ? block->getDefaultEditBlock()->stringParam0 : "";
    std::string x;
    std::string y;
    const bool accessorInIterator = underIterator(data, s, x);
    // The owner's walk starts at the owner itself: an owner that iterates counts.
    const bool ownerInIterator = underIterator(data, o, y);
    decide("StateAccessorInImplicitIterator",
           (accessorInIterator || ownerInIterator) &&
               !(accessorInIterator && ownerInIterator && x == y));
    if (o.empty()) {
      decide("StateAccessorAndStateOwnerInSameSystem", false);
      decide("StateOwnerInsideStateAccessorSystem", false);
      decide("StateAccessorInsideStateOwnerSystem", false);
      continue;
    }
    const std::string t = parentPath(o);
    decide("StateAccessorAndStateOwnerInSameSystem", s == t);
    decide("StateOwnerInsideStateAccessorSystem", s != t && t.find(s) != std::string::npos);
  }
  return clean;
}

}  // namespace bkedittimecheck
