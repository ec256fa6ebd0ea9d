#include <gtest/gtest.h>

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <map>
#include <sstream>
#include <string>

#include "src/configuration/customizationfile.h"

namespace bkedittimecheck {
namespace {

namespace pt = boost::property_tree;

pt::ptree parse(const std::string& xml) {
  std::istringstream stream(xml);
  pt::ptree tree;
  pt::read_xml(stream, tree, pt::xml_parser::no_comments);
  return tree;
}

using Selection = std::map<std::string, bool>;

TEST(EditTimeCheckSelectorTest, SelectionMapOfOddFiles) {
  const struct {
    const char* what;
    const char* cells;
    Selection expected;
  } cases[] = {
      {"empty cell array", "", {}},
      {"plain", "<Check><ID>a</ID><Selected>true</Selected></Check>", {{"a", true}}},
      {"first of two equal IDs wins",
       "<Check><ID>a</ID><Selected>false</Selected></Check>"
       "<Check><ID>a</ID><Selected>true</Selected></Check>",
       {{"a", false}}},
      {"other children of the cell array are passed over",
       "<Other><ID>x</ID><Selected>true</Selected></Other>"
       "<Check><ID>b</ID><Selected>true</Selected></Check>",
       {{"b", true}}},
      {"ID behind Selected lands under the empty ID",
       "<Check><Selected>true</Selected><ID>c</ID></Check>",
       {{"", true}}},
      {"no Selected means not selected", "<Check><ID>d</ID></Check>", {{"d", false}}},
      {"only the exact text true selects",
       "<Check><ID>e</ID><Selected>True</Selected></Check>"
       "<Check><ID>f</ID><Selected> true</Selected></Check>"
       "<Check><ID>g</ID><Selected>false</Selected></Check>",
       {{"e", false}, {"f", false}, {"g", false}}},
  };
  for (const auto& c : cases) {
    const pt::ptree tree = parse(std::string("<RAConfiguration><CheckCellArray>") + c.cells +
                                 "</CheckCellArray></RAConfiguration>");
    EXPECT_EQ(selectionFromTree(tree), c.expected) << c.what;
  }
}

}  // namespace
}  // namespace bkedittimecheck
