// The customization file: where it is found, the check selection read from it, the entries the
// checks ask for, and files that cannot be read.
#include "src/configuration/edittimecheckselector.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "src/algorithms/edittimealgorithms.h"
#include "src/configuration/customizationfile.h"

namespace bkedittimecheck {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;

class EditTimeCheckSelectorTest : public ::testing::Test {
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

  /// Writes a customization file with `cells` in its check list; its path.
  static std::wstring write(const fs::path& file, const std::string& cells) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "<RAConfiguration><CheckCellArray>" << cells
                        << "</CheckCellArray></RAConfiguration>";
    return file.wstring();
  }

  fs::path base;
};

TEST_F(EditTimeCheckSelectorTest, PreferenceFileWinsOverGivenPathWhichWinsOverInstalledFile) {
  const fs::path preference = base / "prefs" / "edittimecheckcustomization.xml";
  const fs::path given = base / "given.xml";
  const fs::path installed = installedCustomizationFile((base / "root").wstring());
  const auto choose = [&](const fs::path& givenPath) {
    return chooseCustomizationFile((base / "prefs").wstring(), givenPath.wstring(),
                                   (base / "root").wstring());
  };
  EXPECT_EQ(choose(given), L"");  // nothing anywhere
  write(installed, "");
  EXPECT_EQ(choose(given), installed.wstring());  // the given path does not exist
  EXPECT_EQ(choose(fs::path()), installed.wstring());
  write(given, "");
  EXPECT_EQ(choose(given), given.wstring());
  write(preference, "");
  EXPECT_EQ(choose(given), preference.wstring());  // overrides an explicit path too
  // A directory of the preference file's name is no customization file.
  fs::remove(preference);
  fs::create_directories(preference);
  EXPECT_EQ(chooseCustomizationFile((base / "prefs").wstring(), L"", L""), L"");
}

TEST_F(EditTimeCheckSelectorTest, LoadingPublishesTheSelectionAndAnswersPerCheck) {
  EditTimeAlgorithms::setInputParametersChanged(false);
  EditTimeCheckSelector::loadCheckSelection(
      write(base / "given.xml",
            "<Check><ID>a</ID><Selected>true</Selected><InputParameters><InputParameter Name=\"x\">"
            "<Value>1</Value></InputParameter></InputParameters></Check>"
            "<Check><ID>a</ID><Selected>false</Selected><Extra>second</Extra></Check>"
            "<Check><Selected>true</Selected><ID>late</ID></Check>"
            "<Other><ID>x</ID><Selected>true</Selected></Other><Check><ID>d</ID></Check>"
            "<Check><ID>e</ID><Selected>True</Selected></Check>"
            "<Check><ID>f</ID><Selected> true</Selected></Check>"));
  EXPECT_TRUE(EditTimeAlgorithms::inputParametersChanged());
  // The first entry of an ID stands; an ID behind "Selected" is not seen, other children of the
  // list are passed over, and only the exact text "true" selects.
  EXPECT_EQ(bk::bkedittimecheck::bkutils::EditTimePreferences::checkSelectionMap(),
            (std::map<std::string, bool>{
                {"", true}, {"a", true}, {"d", false}, {"e", false}, {"f", false}}));
  // For the checks' own entries every ID child counts, also one behind "Selected".
  const pt::ptree entry = EditTimeCheckSelector::getCheckConfiguration("a");
  EXPECT_EQ(entry.get<std::string>("InputParameters.InputParameter.Value"), "1");
  EXPECT_EQ(EditTimeCheckSelector::getCheckConfiguration("late").get<std::string>("ID"), "late");
  EXPECT_TRUE(EditTimeCheckSelector::getCheckConfiguration("missing").empty());
}

TEST_F(EditTimeCheckSelectorTest, NoFileChangesNothingAndABadFileThrows) {
  EditTimeCheckSelector::loadCheckSelection(
      write(base / "root.xml", "<Check><ID>kept</ID><Selected>true</Selected></Check>"));
  EditTimeCheckSelector::loadCheckSelection(L"");  // nothing anywhere
  EXPECT_EQ(EditTimeCheckSelector::getCheckSelectionMap().count("kept"), 1u);

  // The file goes through the guarded reader, which refuses nesting that would exhaust the stack.
  std::string deep = "<RAConfiguration>";
  for (int i = 0; i < 100000; ++i) deep += "<CheckCellArray>";
  std::ofstream(base / "deep.xml") << deep;
  EXPECT_THROW(EditTimeCheckSelector::loadCheckSelection((base / "deep.xml").wstring()),
               pt::xml_parser_error);
  // A file that does not parse replaces nothing: the checks still find their old entries.
  EXPECT_EQ(EditTimeCheckSelector::getCheckConfiguration("kept").get<std::string>("ID"), "kept");
  std::ofstream(base / "empty.xml") << "<RAConfiguration/>";
  EXPECT_THROW(EditTimeCheckSelector::loadCheckSelection((base / "empty.xml").wstring()),
               pt::ptree_bad_path);
  EXPECT_EQ(EditTimeCheckSelector::getCheckSelectionMap().count("kept"), 1u);
  // The tree is already the new one: the lookup of an entry now fails.
  EXPECT_THROW(EditTimeCheckSelector::getCheckConfiguration("kept"), pt::ptree_bad_path);
}

}  // namespace
}  // namespace bkedittimecheck
