#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blocklistcheck.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0407": blocks whose type and mask type stand on a configured list, which is
/// prohibited or, with "Treat blocktype list as" "Allowed", the only allowed one. Severity 3; the
/// violation type is "ProhibitedBlocks". Worker thread only.
class ProhibitedBlocks : public BlockListCheck {
 public:
  /// Any thread. Never throws beyond allocation.
  ProhibitedBlocks(std::wstring diagramName, std::uint32_t severity);

  /// The last list read, shared by all instances and diagrams; empty at load.
  static BlockTypeList blockTypeList;
  /// Whether the list names prohibited types; true at load.
  static bool treatListAsProhibited;

  std::vector<std::string> violationTypes() const override { return {"ProhibitedBlocks"}; }

  /// Worker thread. Replaces the list and the scope pair from the check's entry; see
  /// `readBlockTypeList`.
  void readParameters(const boost::property_tree::ptree& configuration) override;

 protected:
  BlockTypeList& blockTypes() const override { return blockTypeList; }
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
