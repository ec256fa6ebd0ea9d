#pragma once

#include <boost/property_tree/ptree.hpp>
#include <boost/regex.hpp>
#include <string>

#include "src/algorithms/blockcheck.h"

namespace bkedittimecheck {

/// The part that the four name checks share: one regular expression of prohibited names, kept in
/// a static string of each check class, read from the parameter "Regular expression for
/// prohibited names:" and compiled at the start of a run, unless it is the pattern the class
/// compiled last.
///
/// Thread contract: worker thread only; the static patterns have no lock.
class NameCheck : public BlockCheck {
 public:
  using BlockCheck::BlockCheck;

  /// Worker thread. Reads the scope pair, then assigns the text of every "Value" of the pattern
  /// parameter in order to the class's pattern (the last wins); without one the pattern stays.
  void readProhibitedNamePattern(const boost::property_tree::ptree& configuration);

  /// True when `expression` is found in one of the lines of `name`, which is split at every
  /// "\n" and "\r" with empty pieces kept; from the second piece on `^` no longer matches at
  /// the piece's start. Throws what the regex library throws for a too complex search.
  static bool searchByLines(const boost::regex& expression, const std::string& name);

  /// Compiles a prohibited-name pattern with default syntax; throws `boost::regex_error` for a
  /// malformed pattern and for one the library's parser would loop on.
  static boost::regex compile(const std::string& pattern);

  /// True when `expression` is found in `name` up to its first zero byte.
  static bool searchWhole(const boost::regex& expression, const std::string& name);

 protected:
  /// The pattern string of the concrete class.
  virtual std::string& pattern() const = 0;

  /// The pattern is read whenever it is empty, whatever the "parameters changed" flag says.
  bool wantsParameters() const override;
  void readParameters(const boost::property_tree::ptree& configuration) override;

  /// Compiles the pattern; a bad expression throws `boost::regex_error` before the first block.
  void beginRun() override;

  boost::regex compiled;  // compiled by beginRun for one run
};

}  // namespace bkedittimecheck
