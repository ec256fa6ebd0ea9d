#include "src/algorithms/edittimealgorithms.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>
#include <sstream>
#include <string>

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

std::string parameter(const std::string& name, const std::string& values) {
  return "<InputParameter Name=\"" + name + "\">" + values + "</InputParameter>";
}

TEST(EditTimeAlgorithmsTest, ScopeParametersTheirDefaultsAndTheirSharingPerCheckId) {
  EditTimeAlgorithms check("x", L"d", 3);
  EXPECT_EQ(check.currentScope().lookUnderMasks, 0);  // no reader yet: an all-zero pair
  EXPECT_EQ(check.currentScope().skipLinkedBlocks, 0);

  const struct {
    std::string parameters;
    int skip;
    int look;
  } cases[] = {
      {"", 0, 2},
      {parameter("Follow links", "<Value>off</Value>"), 1, 2},
      {parameter("Follow links", "<Value>on </Value>"), 1, 2},  // text is not trimmed
      {parameter("Look under masks", "<Value>all</Value>"), 0, 0},
      {parameter("Look under masks", "<Value>functional</Value>"), 0, 3},
      {parameter("Look under masks", "<Value>none</Value>"), 0, 1},
      {parameter("Look under masks", "<Value>whatever</Value>"), 0, 1},
      {parameter("Look under masks", "<Value>all</Value><Value>functional</Value>"), 0, 3},
      {parameter("look under masks", "<Value>all</Value>"), 0, 2},  // names are case-sensitive
  };
  for (const auto& c : cases) {
    check.readInputParameters(entry(c.parameters));
    EXPECT_EQ(check.currentScope().skipLinkedBlocks, c.skip) << c.parameters;
    EXPECT_EQ(check.currentScope().lookUnderMasks, c.look) << c.parameters;
  }
  check.readInputParameters(pt::ptree());  // an empty entry gives the defaults
  EXPECT_EQ(check.currentScope().lookUnderMasks, 2);

  // The scope is shared per check ID across instances and diagrams.
  EditTimeAlgorithms first("shared", L"one", 3);
  EditTimeAlgorithms second("shared", L"two", 3);
  EditTimeAlgorithms other("other", L"one", 3);
  first.readInputParameters(entry(parameter("Look under masks", "<Value>all</Value>")));
  EXPECT_EQ(second.currentScope().lookUnderMasks, 0);
  EXPECT_EQ(other.currentScope().lookUnderMasks, 0);  // all-zero: never read
  other.readInputParameters(entry(""));
  EXPECT_EQ(other.currentScope().lookUnderMasks, 2);
  EXPECT_EQ(first.currentScope().lookUnderMasks, 0);
}

}  // namespace
}  // namespace bkedittimecheck
