#pragma once

#include <string>
#include <unordered_set>
#include <vector>

namespace bkedittimecheck {

/// A set of footnote tags of the host's capability table.
using FootnoteTags = std::unordered_set<std::string>;

/// The tags under which code generation still accepts a block; one set for the process.
const FootnoteTags& codegenSupportTags();

/// The tokens of a comma-separated footnote string: no trimming, empty tokens dropped.
std::vector<std::string> footnoteTokens(const std::string& footnote);

}  // namespace bkedittimecheck
