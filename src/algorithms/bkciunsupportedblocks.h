#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "src/algorithms/blocklistcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.bkci.UnsupportedBlocks": blocks whose type code inspection does not support. The
/// configured "Block type list" names the supported types; mask types play no part, "Reference"
/// blocks are never reported and an "Environment Controller" subsystem always is. Severity 3;
/// the violation type is "BKCIUnsupportedBlocks". Worker thread only.
class BKCIUnsupportedBlocks : public BlockListCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.bkci.UnsupportedBlocks";
  static constexpr std::uint32_t kSeverity = Severity::kAuditorWarning;

  /// Any thread. Never throws beyond allocation.
  BKCIUnsupportedBlocks(const std::wstring& diagramName, std::uint32_t severity);

  /// The last list read, shared by all instances and diagrams; empty at load.
  static BlockTypeList blockTypeList;

  std::vector<std::string> violationTypes() const override { return {"BKCIUnsupportedBlocks"}; }

  /// Worker thread. Clears the list, reads the scope pair, then appends the entries of every
  /// "Value" of the parameters named "Block type list".
  void readParameters(const boost::property_tree::ptree& configuration) override;

 protected:
  BlockTypeList& blockTypes() const override { return blockTypeList; }
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
