#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/prohibitedlistcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.kabe.kb_0407": blocks whose type and mask type stand on a configured list, which is
/// prohibited or, with "Treat blocktype list as" "Allowed", the only allowed one. Severity 3; the
/// violation type is "ProhibitedBlocks". Worker thread only.
class ProhibitedBlocks : public ProhibitedListCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.kabe.kb_0407";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  ProhibitedBlocks(const std::wstring& diagramName, std::uint32_t severity);

  /// The last list read, shared by all instances and diagrams; empty at load.
  static BlockTypeList blockTypeList;
  /// Whether the list names prohibited types; true at load.
  static bool treatListAsProhibited;

  std::vector<std::string> violationTypes() const override { return {"ProhibitedBlocks"}; }

 protected:
  BlockTypeList& blockTypes() const override { return blockTypeList; }
  bool& listIsProhibited() const override { return treatListAsProhibited; }
};

}  // namespace bkedittimecheck
