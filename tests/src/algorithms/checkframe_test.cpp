// The frame the checks share: the scope parameters a check reads (and shares per check ID), the
// two ways a name rule searches a name, and the footnote tokens of the block library.
#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>
#include <sstream>
#include <string>

#include "src/algorithms/codegenfootnotes.h"
#include "src/algorithms/edittimealgorithms.h"
#include "src/algorithms/namecheck.h"

namespace bkedittimecheck {
namespace {

namespace pt = boost::property_tree;

pt::ptree entry(const std::string& parameters) {
  std::istringstream stream("<Check><ID>x</ID><InputParameters>" + parameters +
                            "</InputParameters></Check>");
  pt::ptree tree;
  pt::read_xml(stream, tree, pt::xml_parser::no_comments);
  return tree.get_child("Check");
}

// An input parameter of a check entry: `name`, with `values` as its "Value" elements.
std::string parameter(const std::string& name, std::initializer_list<std::string> values) {
  std::string out = "<InputParameter Name=\"" + name + "\">";
  for (const std::string& value : values) out += "<Value>" + value + "</Value>";
  return out + "</InputParameter>";
}

TEST(CheckFrameTest, ScopeParametersTheirDefaultsAndTheirSharingPerCheckId) {
  EditTimeAlgorithms check("x", L"d", 3);
  EXPECT_EQ(check.currentScope().lookUnderMasks, 0);  // no reader yet: an all-zero pair
  EXPECT_EQ(check.currentScope().skipLinkedBlocks, 0);
  const struct {
    std::string parameters;
    int skip;
    int look;
  } cases[] = {
      {"", 0, 2},
      // The words' effects are the block checks' (masks, links); here the edges of reading.
      {parameter("Follow links", {"on "}), 1, 2},  // text is not trimmed
      {parameter("Look under masks", {"whatever"}), 0, 1},
      {parameter("Look under masks", {"all", "functional"}), 0, 3},
      {parameter("look under masks", {"all"}), 0, 2},  // names are case-sensitive
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.parameters);
    check.readInputParameters(entry(c.parameters));
    EXPECT_EQ(check.currentScope().skipLinkedBlocks, c.skip);
    EXPECT_EQ(check.currentScope().lookUnderMasks, c.look);
  }
  check.readInputParameters(pt::ptree());  // an empty entry gives the defaults
  EXPECT_EQ(check.currentScope().lookUnderMasks, 2);

  // The scope is shared per check ID across instances and diagrams.
  EditTimeAlgorithms first("shared", L"one", 3);
  EditTimeAlgorithms second("shared", L"two", 3);
  EditTimeAlgorithms other("other", L"one", 3);
  first.readInputParameters(entry(parameter("Look under masks", {"all"})));
  EXPECT_EQ(second.currentScope().lookUnderMasks, 0);
  EXPECT_EQ(other.currentScope().lookUnderMasks, 0);  // all-zero: never read
  other.readInputParameters(entry(""));
  EXPECT_EQ(other.currentScope().lookUnderMasks, 2);
  EXPECT_EQ(first.currentScope().lookUnderMasks, 0);
}

TEST(CheckFrameTest, NameSearchByLinesAndWholeAndFootnoteTokens) {
  const struct {
    const char* pattern;
    std::string name;
    bool byLines;
    bool whole;
  } cases[] = {
      {"^b", "a\nb", false, false},  // not at a line start after the first piece, not at the start
      {"b", "a\nb", true, true},
      {"^a", "a\nb", true, true},
      {"^$", "x\n\ny", false, false},  // the empty middle piece is not a beginning of line
      {"x*", "a\n\nb", true, true},    // matches the empty string on the first piece already
      {"^b", "a\r\nb", false, false},  // CR LF gives an empty piece between
      {"[ ]", "has blank", true, true},
      {"", "anything", true, true},  // the empty expression finds a match in every name
      {"z", std::string("ab\0z", 4), true, false},  // the whole search stops at a zero byte
  };
  for (const auto& c : cases) {
    const boost::regex expression(c.pattern);
    EXPECT_EQ(NameCheck::searchByLines(expression, c.name), c.byLines) << c.pattern;
    EXPECT_EQ(NameCheck::searchWhole(expression, c.name), c.whole) << c.pattern;
  }
  // Blanks stay, empty tokens go.
  EXPECT_EQ(footnoteTokens("FnA,,FnB, FnC,"), (std::vector<std::string>{"FnA", "FnB", " FnC"}));
  EXPECT_TRUE(footnoteTokens("").empty());
}

}  // namespace
}  // namespace bkedittimecheck
