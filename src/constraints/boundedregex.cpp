// The bound on the matcher's states is a compile-time setting of Boost.Regex. It is lowered here
// only, for a traits type that no other translation unit uses, so that the matchers instantiated
// in this file are the only ones that see it and the library's own instances keep their default.
#define BOOST_REGEX_MAX_STATE_COUNT 1000000
#include "src/constraints/boundedregex.h"

#include <boost/regex.hpp>
#include <cctype>
#include <cstddef>

namespace bkedittimecheck {

namespace {

// Default Perl syntax and behaviour; a type of its own so that the matchers above are ours.
struct BoundedRegexTraits : boost::regex_traits<char> {};

}  // namespace

void refuseParserLoop(const std::string& pattern) {
  const std::size_t n = pattern.size();
  bool inClass = false;
  for (std::size_t i = 0; i < n; ++i) {
    const char c = pattern[i];
    if (c == '\\') {
      if (i + 1 < n && pattern[i + 1] == 'Q') {  // \Q quotes everything up to \E
        const std::size_t end = pattern.find("\\E", i + 2);
        if (end == std::string::npos) return;
        i = end + 1;
      } else {
        ++i;
      }
    } else if (inClass) {
      if (c == '[' && i + 1 < n && (pattern[i + 1] == ':' || pattern[i + 1] == '.' || pattern[i + 1] == '=')) {
        const std::size_t end = pattern.find(std::string{pattern[i + 1], ']'}, i + 2);
        if (end != std::string::npos) i = end + 1;
      } else if (c == ']') {
        inClass = false;
      }
    } else if (c == '[') {
      inClass = true;
      if (i + 1 < n && pattern[i + 1] == '^') ++i;
      if (i + 1 < n && pattern[i + 1] == ']') ++i;  // a "]" first in a class is a character
    } else if ((c == '*' || c == '+' || c == '?' || c == '}') && i + 1 < n && pattern[i + 1] == '+') {
      std::size_t next = i + 2;
      while (next < n && std::isspace(static_cast<unsigned char>(pattern[next]))) ++next;
      if (pattern.compare(next, 3, "(?#") == 0) {
        throw boost::regex_error("a possessive repeat followed by a comment group is not supported",
                                 boost::regex_constants::error_badrepeat,
                                 static_cast<std::ptrdiff_t>(next));
      }
      ++i;
    }
  }
}

bool regexMatchesWhole(const std::string& text, const std::string& pattern) {
  refuseParserLoop(pattern);
  const boost::basic_regex<char, BoundedRegexTraits> expression(pattern);
  return boost::regex_match(text, expression);
}

}  // namespace bkedittimecheck
