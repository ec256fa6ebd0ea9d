#include "src/algorithms/namecheck.h"

#include <boost/algorithm/string/classification.hpp>
#include <boost/algorithm/string/split.hpp>
#include <cstring>
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

void NameCheck::beginRun() { compiled = compile(pattern()); }

}  // namespace bkedittimecheck
