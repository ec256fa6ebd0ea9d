#pragma once

#include <boost/property_tree/ptree.hpp>
#include <string>
#include <vector>

#include "src/algorithms/edittimealgorithms.h"

namespace bkedittimecheck {

class bkEditBlock;

/// What a check decides about one of its records on one block.
enum class Verdict {
  Leave,   ///< Neither add nor remove: a record of an earlier run stays as it was.
  Add,     ///< The block violates.
  Remove,  ///< The block is clean.
};

/// The shared run of every check that looks at one block at a time: find the diagram's data and
/// store, walk the block map, read the parameters when due, and for each block with a rule-tool
/// part make the records, apply the scope rule and add or remove by the check's decision. A
/// check only overrides the hooks that differ from that run; each hook's default does nothing
/// special.
///
/// Thread contract: worker thread only, like every check.
class BlockCheck : public EditTimeAlgorithms {
 public:
  using EditTimeAlgorithms::EditTimeAlgorithms;

  /// Worker thread. The whole run. False when the diagram's data or store are missing (then no
  /// record changes); true otherwise. Exceptions of the hooks (a bad regular expression, say)
  /// pass to the caller, leaving the records of the blocks already visited as they are.
  bool runCheck(const CheckContext& context) final;

  /// Worker thread. The decisions for a block that is in scope and that `considers` took, one per
  /// entry of `violationTypes()`; `verdicts` comes sized and filled with `Verdict::Remove`.
  /// Public so that a check's decision can be tested on a block record directly.
  virtual void decide(const bkEditBlock& block, std::vector<Verdict>& verdicts) const;

  /// The violation types that this check reports, in the order of `decide`'s verdicts.
  virtual std::vector<std::string> violationTypes() const = 0;

 protected:
  /// Whether this run reads the configuration entry. Default: the "parameters changed" flag.
  virtual bool wantsParameters() const;

  /// Reads the check's parameters from its entry. Default: the scope pair only.
  virtual void readParameters(const boost::property_tree::ptree& configuration);

  /// Once per run, after the block map was copied and before the first block.
  virtual void beginRun();

  /// Whether the block is this check's business at all, asked before the scope test; false
  /// leaves the block's records untouched. Default: every block.
  virtual bool considers(const bkEditBlock& block) const;

  /// The decision for a check with one violation type. Default: `Verdict::Remove`.
  virtual Verdict decideOne(const bkEditBlock& block) const;
};

}  // namespace bkedittimecheck
