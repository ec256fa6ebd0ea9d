// The bound on the matcher's states is a compile-time setting of Boost.Regex. It is lowered here
// only, for a traits type that no other translation unit uses, so that the matchers instantiated
// in this file are the only ones that see it and the library's own instances keep their default.
#define BOOST_REGEX_MAX_STATE_COUNT 1000000
#include "src/constraints/boundedregex.h"

#include <boost/regex.hpp>

namespace bkedittimecheck {

namespace {

// Default Perl syntax and behaviour; a type of its own so that the matchers above are ours.
struct BoundedRegexTraits : boost::regex_traits<char> {};

}  // namespace

bool regexMatchesWhole(const std::string& text, const std::string& pattern) {
  const boost::basic_regex<char, BoundedRegexTraits> expression(pattern);
  return boost::regex_match(text, expression);
}

}  // namespace bkedittimecheck
