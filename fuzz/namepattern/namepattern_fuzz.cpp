// Runs a name rule's pattern over a block name as the name checks do. The input is the pattern,
// a zero byte, then the name. Any pair must either answer or throw the regex library's errors
// (a malformed pattern, or a search too complex for its bound), never crash or hang.
#include <boost/regex.hpp>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "src/algorithms/namecheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string input(reinterpret_cast<const char*>(data), size);
  const std::size_t split = input.find('\0');
  const std::string name = split == std::string::npos ? std::string() : input.substr(split + 1);
  try {
    const boost::regex expression = bkedittimecheck::NameCheck::compile(input.substr(0, split));
    const bool whole = bkedittimecheck::NameCheck::searchWhole(expression, name);
    const bool byLines = bkedittimecheck::NameCheck::searchByLines(expression, name);
    // A name of one line without zero bytes is one piece for both searches. The regex library
    // also lets "^" match after a form feed unless told the text is one line, which only the
    // whole-name search says; such names are left out of the comparison.
    if (name.find_first_of(std::string("\n\r\f\0", 4)) == std::string::npos && whole != byLines) {
      __builtin_trap();
    }
  } catch (const std::runtime_error&) {  // boost::regex_error and the complexity error
  }
  return 0;
}
