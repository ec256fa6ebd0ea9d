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
      {"comments are dropped",
       "<Check><!-- x --><ID>h</ID><!-- y --><Selected>true</Selected></Check>",
       {{"h", true}}},
  };
  for (const auto& c : cases) {
    const pt::ptree tree = parse(std::string("<RAConfiguration><CheckCellArray>") + c.cells +
                                 "</CheckCellArray></RAConfiguration>");
    EXPECT_EQ(selectionFromTree(tree), c.expected) << c.what;
  }
}

TEST(EditTimeCheckSelectorTest, MissingCellArrayThrowsThePropertyTreeError) {
  EXPECT_THROW(selectionFromTree(parse("<RAConfiguration/>")), pt::ptree_bad_path);
  EXPECT_THROW(selectionFromTree(parse("<Other><CheckCellArray/></Other>")), pt::ptree_bad_path);
}

TEST(EditTimeCheckSelectorTest, InstalledFileListsEveryCheckOfTheTable) {
  const std::wstring file = installedCustomizationFile(L"" BKETC_RESOURCE_DIR);
  ASSERT_EQ(chooseCustomizationFile(L"", L"", L"" BKETC_RESOURCE_DIR), file);
  pt::ptree tree;
  pt::read_xml(
      std::string(BKETC_RESOURCE_DIR) +
          "/toolbox/blockara/blockara/ruleauditor/resources/edittimecheckcustomization.xml",
      tree, pt::xml_parser::no_comments);
  const Selection selection = selectionFromTree(tree);
  for (const char* id :
       {"orvanta.kabe.kb_0401", "orvanta.kabe.kb_0407", "orvanta.kabe.kb_0408",
        "orvanta.kabe.kb_0402", "orvanta.kabe.kb_0405", "orvanta.kabe.kb_0404",
        "orvanta.kabe.kb_0403", "orvanta.kabe.kb_0406", "orvanta.codegen.PCGSupport",
        "orvanta.codegen.BlockNames", "orvanta.bkci.UnsupportedBlocks", "BlockMissingVariable",
        "orvanta.blockara.GoToFromBlockMismatch", "orvanta.blockara.DataStoreUsage",
        "orvanta.blockara.StateAccessorPathViolation",
        "orvanta.blockara.BlockaraStatePortMapping"}) {
    EXPECT_EQ(selection.count(id), 1u) << id;
  }
  EXPECT_TRUE(selection.at("orvanta.kabe.kb_0402"));
}

}  // namespace
}  // namespace bkedittimecheck
