#include "src/configuration/edittimecheckselector.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/xml/xmlreader.h"
#include "src/algorithms/edittimealgorithms.h"

namespace bkedittimecheck {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;

class EditTimeCheckSelectorLoadTest : public ::testing::Test {
 protected:
  void SetUp() override {
    base = fs::temp_directory_path() /
           ("bketc_selector_" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(base);
    fs::create_directories(base / "prefs");
    fs::create_directories(base / "root");
    svSetPreferencesDirectory((base / "prefs").string());
    svSetNumeriaRoot((base / "root").string());
  }
  void TearDown() override { fs::remove_all(base); }

  static void write(const fs::path& file, const std::string& cells) {
    std::ofstream(file) << "<RAConfiguration><CheckCellArray>" << cells
                        << "</CheckCellArray></RAConfiguration>";
  }

  fs::path base;
};

TEST_F(EditTimeCheckSelectorLoadTest, LoadingPublishesTheSelectionAndAnswersPerCheck) {
  write(base / "given.xml",
        "<Check><ID>a</ID><Selected>true</Selected><InputParameters><InputParameter Name=\"x\">"
        "<Value>1</Value></InputParameter></InputParameters></Check>"
        "<Check><ID>a</ID><Selected>false</Selected><Extra>second</Extra></Check>"
        "<Check><Selected>true</Selected><ID>late</ID></Check>");
  EditTimeAlgorithms::setInputParametersChanged(false);
  EditTimeCheckSelector::loadCheckSelection((base / "given.xml").wstring());
  EXPECT_TRUE(EditTimeAlgorithms::inputParametersChanged());
  EXPECT_EQ(bk::bkedittimecheck::bkutils::EditTimePreferences::checkSelectionMap(),
            (std::map<std::string, bool>{{"", true}, {"a", true}}));
  // The first entry of an ID answers; every ID child counts, also one behind "Selected".
  const pt::ptree entry = EditTimeCheckSelector::getCheckConfiguration("a");
  EXPECT_EQ(entry.get<std::string>("InputParameters.InputParameter.Value"), "1");
  EXPECT_EQ(EditTimeCheckSelector::getCheckConfiguration("late").get<std::string>("ID"), "late");
  EXPECT_TRUE(EditTimeCheckSelector::getCheckConfiguration("missing").empty());
}

TEST_F(EditTimeCheckSelectorLoadTest, NoFileChangesNothingAndABadFileThrows) {
  write(base / "root.xml", "<Check><ID>kept</ID><Selected>true</Selected></Check>");
  EditTimeCheckSelector::loadCheckSelection((base / "root.xml").wstring());
  EditTimeCheckSelector::loadCheckSelection(L"");  // nothing anywhere
  EXPECT_EQ(EditTimeCheckSelector::getCheckSelectionMap().count("kept"), 1u);

  std::ofstream(base / "bad.xml") << "<RAConfiguration><CheckCellArray>";
  EXPECT_THROW(EditTimeCheckSelector::loadCheckSelection((base / "bad.xml").wstring()),
               pt::ptree_error);
  // A file that does not parse replaces nothing: the checks still find their old entries.
  EXPECT_EQ(EditTimeCheckSelector::getCheckConfiguration("kept").get<std::string>("ID"), "kept");
  std::ofstream(base / "empty.xml") << "<RAConfiguration/>";
  EXPECT_THROW(EditTimeCheckSelector::loadCheckSelection((base / "empty.xml").wstring()),
               pt::ptree_bad_path);
  EXPECT_EQ(EditTimeCheckSelector::getCheckSelectionMap().count("kept"), 1u);
  // The tree is already the new one: the lookup of an entry now fails.
  EXPECT_THROW(EditTimeCheckSelector::getCheckConfiguration("kept"), pt::ptree_bad_path);
}

TEST_F(EditTimeCheckSelectorLoadTest, HostileFilesAreRefusedNamedAndKeepTheConfiguration) {
  write(base / "root.xml", "<Check><ID>kept</ID><Selected>true</Selected></Check>");
  EditTimeCheckSelector::loadCheckSelection((base / "root.xml").wstring());
  {
    std::ofstream deep(base / "deep.xml");
    deep << "<RAConfiguration>\n";
    for (int i = 0; i < 100000; ++i) deep << "<CheckCellArray>";
  }
  write(base / "big.xml", std::string(200, ' '));
  for (const auto& [name, line] : {std::pair{"deep.xml", 2}, std::pair{"big.xml", 0}}) {
    if (line == 0) blockara::xml::setLimits({4096, 128});
    try {
      EditTimeCheckSelector::loadCheckSelection((base / name).wstring());
      ADD_FAILURE() << name;
    } catch (const pt::xml_parser_error& e) {
      EXPECT_EQ(e.filename(), (base / name).string());
      EXPECT_EQ(e.line(), static_cast<unsigned long>(line));
    }
  }
  blockara::xml::setLimits({});
  EXPECT_EQ(EditTimeCheckSelector::getCheckConfiguration("kept").get<std::string>("ID"), "kept");
}

}  // namespace
}  // namespace bkedittimecheck
