#pragma once

#include <boost/property_tree/ptree.hpp>

#include "src/algorithms/blocklistcheck.h"

namespace bkedittimecheck {

/// What ProhibitedBlocks and ProhibitedSinks share: a list of block types with mask types that
/// is either prohibited or, with "Treat blocktype list as" "Allowed", the only one allowed. A
/// concrete class names its static list and its static reading of the list.
///
/// Thread contract: worker thread only; the static lists have no lock and the last reader wins.
class ProhibitedListCheck : public BlockListCheck {
 public:
  using BlockListCheck::BlockListCheck;

  /// Worker thread. Reads the scope pair, clears the list, then for every "InputParameter": each
  /// "Value" of the one named "Treat blocktype list as" sets the reading (prohibited unless the
  /// exact text "Allowed"), and the children of every "Value", whatever the parameter's name, are
  /// appended to the list.
  void readParameters(const boost::property_tree::ptree& configuration) override;

 protected:
  /// The reading of the concrete class's list: true when it names prohibited types.
  virtual bool& listIsProhibited() const = 0;

  /// A block is listed when its type is a key of the list and its mask type is among that key's
  /// entries, compared exactly; it violates when that agrees with the reading.
  Verdict decideOne(const bkEditBlock& block) const override;
};

}  // namespace bkedittimecheck
