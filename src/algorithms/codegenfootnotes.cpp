#include "src/algorithms/codegenfootnotes.h"

#include <boost/tokenizer.hpp>

namespace bkedittimecheck {

const FootnoteTags& codegenSupportTags() {
  static const FootnoteTags tags{"FnNotInsideTrig", "FnIgnoredCodeGen",  "FnAbsTimeInTrig",
                                 "FnReliesOnMemOp", "FnSuppDependsImpl", "FnSFunMLNotRT"};
  return tags;
}

std::vector<std::string> footnoteTokens(const std::string& footnote) {
  const boost::char_separator<char> separator(",");  // drops empty tokens, keeps blanks
  const boost::tokenizer<boost::char_separator<char>> tokens(footnote, separator);
  return {tokens.begin(), tokens.end()};
}

}  // namespace bkedittimecheck
