#pragma once

#include <string>

class BKBlock;

namespace blockara::app {

/// What a person reads about one finding: a sentence naming the block and the offending value
/// where the check knows it, and a short hint on how to fix it.
struct FindingText {
  std::string message;
  std::string hint;
};

/// Main thread, once the checker is quiet (it reads the patterns and lists the checks last read).
/// The catalogue's texts "blockara:finding:TYPE" and "blockara:finding:TYPE.hint" for a violation
/// of `type` reported by `checkId` on `block`, with {0} the block's name, {1} the offending value
/// and {2} what it broke (a pattern, a list, the other block), where the check knows them. A type
/// the catalogue lacks gets a generic sentence naming the type. Never throws beyond allocation.
FindingText describeFinding(const BKBlock& block, const std::string& type,
                            const std::string& checkId);

/// What the reports say about one check: the catalogue's "blockara:rule:ID" (one line) and
/// "blockara:rule:ID.full", and the level of the check's default severity ("error" or
/// "warning"). A check ID the catalogue lacks (the configuration's constraint checks) gets
/// generic texts. Any thread; never throws beyond allocation.
struct RuleText {
  std::string shortDescription;
  std::string fullDescription;
  std::string level;
};
RuleText describeRule(const std::string& checkId);

}  // namespace blockara::app
