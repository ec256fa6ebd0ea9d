#include "src/algorithms/namecheck.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cstring>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "src/constraints/boundedregex.h"

namespace bkedittimecheck {

void NameCheck::readProhibitedNamePattern(const boost::property_tree::ptree& configuration) {
  readInputParameters(configuration);
  forEachInputParameter(configuration, [this](const std::string& name, const auto& parameter) {
    if (name != "Regular expression for prohibited names:") return;
    for (const auto& [key, value] : parameter) {
      if (key == "Value") pattern() = value.data();
    }
  });
}

bool NameCheck::searchByLines(const boost::regex& expression, const std::string& name) {
  std::vector<std::string> pieces;
  boost::split(pieces, name, boost::is_any_of("\n\r"));  // empty pieces kept
  auto flags = boost::match_default;
  for (const std::string& piece : pieces) {
    if (boost::regex_search(piece, expression, flags)) return true;
    flags = boost::match_not_bol;
  }
  return false;
}

bool NameCheck::searchWhole(const boost::regex& expression, const std::string& name) {
  const char* text = name.c_str();
  // The name is one piece here: "^" stands only at its start, not after a line break inside it.
  return boost::regex_search(text, text + std::strlen(text), expression,
                             boost::match_default | boost::match_single_line);
}

bool NameCheck::wantsParameters() const { return pattern().empty() || inputParametersChanged(); }

void NameCheck::readParameters(const boost::property_tree::ptree& configuration) {
  readProhibitedNamePattern(configuration);
}

boost::regex NameCheck::compile(const std::string& pattern) {
  refuseParserLoop(pattern);
  return boost::regex(pattern);
}

void NameCheck::beginRun() {
  // Every edit runs each name check afresh while the pattern rarely changes: the last pattern of
  // each check class is kept compiled. The key is the address of the class's pattern string.
  struct Compiled {
    std::string pattern;
    boost::regex expression;
  };
  static std::mutex mutex;
  static std::map<const std::string*, Compiled> lastCompiled;
  const std::string& current = pattern();
  {
    std::lock_guard<std::mutex> lock(mutex);
    const auto it = lastCompiled.find(&current);
    if (it != lastCompiled.end() && it->second.pattern == current) {
      compiled = it->second.expression;
      return;
    }
  }
  compiled = compile(current);  // a pattern that does not compile throws here at every run
  std::lock_guard<std::mutex> lock(mutex);
  lastCompiled[&current] = Compiled{current, compiled};
}

}  // namespace bkedittimecheck
