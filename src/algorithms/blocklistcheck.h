#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <string>
#include <vector>

#include "src/algorithms/blockcheck.h"

namespace bkedittimecheck {

/// Block type to the mask types listed with it (an entry without "MaskType" lists "").
using BlockTypeList = std::map<std::string, std::vector<std::string>>;

/// The part that the block list checks share: a static list of block types per check class,
/// read from the check's entry whenever it is empty or the parameters changed.
///
/// Thread contract: worker thread only; the static lists have no lock and the last reader wins.
class BlockListCheck : public BlockCheck {
 public:
  using BlockCheck::BlockCheck;

  /// Appends every non-empty child text of `value` to `list` as a block type, with the child's
  /// "MaskType" attribute (empty when missing).
  static void appendListEntries(const boost::property_tree::ptree& value, BlockTypeList& list);

 protected:
  /// The list of the concrete class.
  virtual BlockTypeList& blockTypes() const = 0;

  bool wantsParameters() const override;
};

}  // namespace bkedittimecheck
