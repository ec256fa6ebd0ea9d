#pragma once

#include <string>

namespace bkedittimecheck {

/// True when the whole of `text` matches `pattern`, a regular expression of Boost.Regex's
/// default (Perl) syntax with default flags, compiled anew for this call.
///
/// Throws boost::regex_error for a malformed pattern, and std::runtime_error (the library's
/// complexity error) when the match needs more states than a bound that stops a pathological
/// pattern such as "(a+)+$" in milliseconds on values of any realistic length. Any thread.
bool regexMatchesWhole(const std::string& text, const std::string& pattern);

/// Throws boost::regex_error for a pattern on which the regex library's parser loops for ever
/// instead of answering: a possessive repeat ("a++", "a?+", "a{2}+") followed by a comment group
/// "(?#...)" and more text. The test is a little wider than the fault (whatever follows the
/// comment), so a few harmless patterns of that shape are refused too. Call it before compiling
/// any pattern a user wrote. Any thread.
void refuseParserLoop(const std::string& pattern);

}  // namespace bkedittimecheck
