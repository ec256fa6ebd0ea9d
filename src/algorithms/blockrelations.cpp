#include "src/algorithms/blockrelations.h"

#include "src/constraints/bkeditblock.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

std::wstring parentPathOf(const bkEditBlock& block) {
  const std::wstring& path = block.getFullPath();
  const std::size_t cut = std::min(path.size(), block.getBlockName().size());
  return path.substr(0, path.size() - cut);
}

bool inSameSystem(const bkEditBlock& a, const bkEditBlock& b) {
  return parentPathOf(a) == parentPathOf(b);
}

bool containsSystemOf(const bkEditBlock& a, const bkEditBlock& b) {
  return toNarrow(parentPathOf(b)).find(toNarrow(parentPathOf(a))) != std::string::npos;
}

}  // namespace bkedittimecheck
