// The configuration of the checks: where the customization file is found, the check selection
// read from it, the entries the checks ask for and files that cannot be read; and a diagram's
// exclusions: every rule kind, the file format and its failures, and the published map.
#include <gtest/gtest.h>

#include <boost/property_tree/exceptions.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/xml/xmlreader.h"
#include "src/algorithms/edittimealgorithms.h"
#include "src/configuration/customizationfile.h"
#include "src/configuration/edittimecheckselector.h"
#include "src/configuration/exclusionmanager.h"
#include "src/edittimeviolation.h"
#include "src/hostinterface.h"
#include "tests/src/blockline.h"

namespace bkedittimecheck::testing {
namespace {

namespace fs = std::filesystem;
namespace pt = boost::property_tree;
using Prefs = bk::bkedittimecheck::bkutils::EditTimePreferences;
using Selector = EditTimeCheckSelector;

// A fresh folder of this test's own, with the preference and installation folders in it.
class EditTimeCheckSelectorTest : public ::testing::Test {
 protected:
  void SetUp() override {
    base = fs::temp_directory_path() /
           ("bketc_config_" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(base);
    fs::create_directories(base / "prefs");
    fs::create_directories(base / "root");
    svSetPreferencesDirectory((base / "prefs").string());
    svSetNumeriaRoot((base / "root").string());
  }
  void TearDown() override { fs::remove_all(base); }

  /// Writes `text` to `file`; its path.
  static std::wstring writeFile(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file.wstring();
  }
  /// Writes a customization file with `cells` in its check list; its path.
  static std::wstring write(const fs::path& file, const std::string& cells) {
    return writeFile(
        file, "<RAConfiguration><CheckCellArray>" + cells + "</CheckCellArray></RAConfiguration>");
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
  Selector::loadCheckSelection(
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
  EXPECT_EQ(Prefs::checkSelectionMap(),
            (std::map<std::string, bool>{
                {"", true}, {"a", true}, {"d", false}, {"e", false}, {"f", false}}));
  // For the checks' own entries every ID child counts, also one behind "Selected".
  const pt::ptree entry = Selector::getCheckConfiguration("a");
  EXPECT_EQ(entry.get<std::string>("InputParameters.InputParameter.Value"), "1");
  EXPECT_EQ(Selector::getCheckConfiguration("late").get<std::string>("ID"), "late");
  EXPECT_TRUE(Selector::getCheckConfiguration("missing").empty());
}

TEST_F(EditTimeCheckSelectorTest, NoFileChangesNothingAndABadFileThrows) {
  Selector::loadCheckSelection(
      write(base / "root.xml", "<Check><ID>kept</ID><Selected>true</Selected></Check>"));
  Selector::loadCheckSelection(L"");  // nothing anywhere
  EXPECT_EQ(Selector::getCheckSelectionMap().count("kept"), 1u);

  // The file goes through the guarded reader, which refuses nesting that would exhaust the stack.
  std::string deep = "<RAConfiguration>";
  for (int i = 0; i < 100000; ++i) deep += "<CheckCellArray>";
  EXPECT_THROW(Selector::loadCheckSelection(writeFile(base / "deep.xml", deep)),
               pt::xml_parser_error);
  // A file that does not parse replaces nothing: the checks still find their old entries.
  EXPECT_EQ(Selector::getCheckConfiguration("kept").get<std::string>("ID"), "kept");
  EXPECT_THROW(Selector::loadCheckSelection(writeFile(base / "empty.xml", "<RAConfiguration/>")),
               pt::ptree_bad_path);
  EXPECT_EQ(Selector::getCheckSelectionMap().count("kept"), 1u);
  // The tree is already the new one: the lookup of an entry now fails.
  EXPECT_THROW(Selector::getCheckConfiguration("kept"), pt::ptree_bad_path);
}

// One exclusion: rules (each "Type|SID|paramValue", SID "-" for none) and check IDs.
struct Entry {
  std::vector<std::string> rules;
  std::vector<std::string> checkIds;
};

std::string exclusionsXml(const std::vector<Entry>& entries) {
  std::string xml = "<rsccat><SystemList><System><ExclusionList>";
  for (const Entry& s : entries) {
    xml += "<Exclusion Rationale=\"why\"><RuleList>";
    for (const std::string& r : s.rules) {
      const auto bar1 = r.find('|');
      const auto bar2 = r.find('|', bar1 + 1);
      const std::string sid = r.substr(bar1 + 1, bar2 - bar1 - 1);
      xml += "<Rule Type=\"" + r.substr(0, bar1) + "\"" +
             (sid == "-" ? "" : " SID=\"" + sid + "\"") + " RegExp=\"on\"><paramValue>" +
             r.substr(bar2 + 1) + "</paramValue></Rule>";
    }
    xml += "</RuleList><Ignored/><CheckIDList>";
    for (const std::string& id : s.checkIds) xml += "<CheckID>" + id + "</CheckID>";
    xml += "</CheckIDList></Exclusion>";
  }
  return xml + "</ExclusionList></System></SystemList></rsccat>";
}

// The exclusions of one diagram, read from files in the test's folder.
class ExclusionTest : public EditTimeCheckSelectorTest {
 protected:
  void SetUp() override {
    EditTimeCheckSelectorTest::SetUp();
    d = bkBlockDiagramSet::create(u"m");
    addBlocks(d,
              {"a SubSystem", "a/b Gain", "a/inner SubSystem", "a/inner/deep Gain", "ab Gain",
               "masked SubSystem MaskType=Filter", "masked/x Constant",
               "masked/sub SubSystem MaskType=Other", "masked/sub/y Gain",
               "lib SubSystem LinkStatus=resolved ReferenceBlock=mylib/sys",
               "lib/linked Gain LinkStatus=resolved ReferenceBlock=mylib/sys/g", "lib/plain Gain"});
  }
  void TearDown() override {
    bkBlockDiagramSet::closeAll();
    EditTimeCheckSelectorTest::TearDown();
  }

  std::wstring write(const std::string& text) { return writeFile(base / "ex.xml", text); }
  void load(const std::vector<Entry>& entries) {
    manager.loadExclusionsFromFile(d, write(exclusionsXml(entries)));
  }
  bool excluded(const std::u16string& path, const std::string& checkId = "c1") {
    BKBlock* block = d->findBlock(path);
    EXPECT_TRUE(block) << ConvertUStringToStdString(path);
    return manager.isExcluded(*block, EditTimeViolation(checkId, "t", 3, block->getHandle()));
  }
  std::string sidOf(const std::u16string& path) { return d->findBlock(path)->getSID(); }

  BKRootBD* d = nullptr;
  ExclusionManager manager;
};

TEST_F(ExclusionTest, EachRuleKindDecidesByItsOwnTest) {
  struct Case {
    std::vector<Entry> entries;
    const char16_t* path;
    const char* checkId;
    bool expected;
  };
  const std::vector<Entry> subsystemA{{{"Subsystem|off|a"}, {"c1"}}};
  const std::vector<Entry> library{{{"Library|-|mylib"}, {"notThisCheck"}}};
  const std::vector<Entry> mask{{{"MaskType|-|Filter"}, {}}};
  const std::vector<Entry> libraryFirst{{{"Library|-|mylib", "Block|off|ab"}, {".*"}},
                                        {{"Block|off|ab"}, {".*"}}};
  const Case cases[] = {
      {subsystemA, u"m/a/inner/deep", "c1", true},
      {subsystemA, u"m/ab", "c1", false},   // a prefix, not a subsystem
      {subsystemA, u"m/a/b", "c2", false},  // another check
      {{{{"Block|off|a"}, {"c1", "c2"}}}, u"m/a", "c2", true},
      {{{{"Block|off|a"}, {"c1", "c2"}}}, u"m/a/b", "c1", false},
      {{{{"BlockType|-|Gain"}, {".*"}}}, u"m/ab", "anything", true},
      {{{{"BlockType|-|Gain"}, {".*"}}}, u"m/masked/x", "c1", false},  // a Constant
      // Check IDs compare literally; ".*" alone stands for every check; none covers nothing.
      {{{{"BlockType|-|Gain"}, {"c.*", "C1"}}}, u"m/ab", "c1", false},
      {{{{"BlockType|-|Gain"}, {}}}, u"m/ab", "c1", false},
      {{{{"Block|off|a.*"}, {".*"}}}, u"m/a", "c1", false},  // "RegExp" is never applied
      // The first library rule reached decides, without the check IDs.
      {library, u"m/lib/linked", "c1", true},
      {library, u"m/lib", "c1", true},
      {library, u"m/lib/plain", "c1", false},  // its own reference is empty: false at once
      {libraryFirst, u"m/ab", "c1", false},
      {{{{"Library|-|mylib/sys"}, {}}}, u"m/lib/linked", "c1", true},  // the parent's reference
      {{{{"Library|-|other"}, {}}}, u"m/lib/linked", "c1", false},
      // A mask type looks one level up only.
      {mask, u"m/masked/sub", "other", true},
      {mask, u"m/masked", "c1", false},
      {mask, u"m/masked/sub/y", "c1", false},
      {mask, u"m/ab", "c1", false},
      // Chart rules never match; an unknown kind ends the test, rules before it still act.
      {{{{"Chartelle|-|m/a"}, {".*"}}}, u"m/a", "c1", false},
      {{{{"Nonsense|-|x", "Block|off|ab"}, {".*"}}}, u"m/ab", "c1", false},
      {{{{"Block|off|ab", "Nonsense|-|x"}, {".*"}}}, u"m/ab", "c1", true},
  };
  for (const Case& c : cases) {
    load(c.entries);
    EXPECT_EQ(excluded(c.path, c.checkId), c.expected)
        << ConvertUStringToStdString(c.path) << " " << c.entries.at(0).rules.at(0);
  }
}

TEST_F(ExclusionTest, SidsAndOffPathsAreResolvedAtLoad) {
  load({{{"Subsystem|" + sidOf(u"m/a") + "|" + sidOf(u"m/a"), "Block|-|999999", "Block|x|"},
         {"c1"}}});
  const auto& rules = manager.getExclusions().at(0).rules;
  EXPECT_EQ(rules[0].paramValue, L"m/a");     // a SID becomes its block's path
  EXPECT_EQ(rules[1].paramValue, L"999999");  // an unknown SID stays and never matches
  EXPECT_TRUE(excluded(u"m/a/b"));

  // A moved block keeps its old path in the rule until the next load.
  d->editing().renameBlock(u"m/a", u"a2");
  EXPECT_FALSE(excluded(u"m/a2/b"));
  load({{{"Subsystem|" + sidOf(u"m/a2") + "|" + sidOf(u"m/a2")}, {"c1"}}});
  EXPECT_TRUE(excluded(u"m/a2/b"));
}

TEST_F(ExclusionTest, TheFirstSubsystemRuleOfEachExclusionIsPublished) {
  load({{{"Block|off|ab", "Subsystem|off|a", "Subsystem|off|masked"}, {"c1", "c2"}},
        {{"Subsystem|off|a"}, {"c3"}},
        {{"Subsystem|off|lib"}, {}}});
  // Both subsystem rules of the first exclusion act...
  EXPECT_TRUE(excluded(u"m/masked/x"));
  // ...but only the first is published, and the first entry of a path stands.
  EXPECT_EQ(Prefs::ceExclusions(L"m"),
            (Prefs::ExclusionMap{{L"m/a", {L"c1", L"c2"}}, {L"m/lib", {}}}));

  // An empty list takes every exemption away and publishes an empty map.
  load({});
  EXPECT_FALSE(excluded(u"m/a"));
  EXPECT_TRUE(Prefs::ceExclusions(L"m")->empty());
}

// Missing, malformed and very deeply nested files are the scenario engine_exclusions's; here
// the manager's own, lower nesting limit and the shared size limit, and a refused file leaves
// what was loaded.
TEST_F(ExclusionTest, BadFilesThrowAndLeaveTheManagerAsDocumented) {
  load({{{"Block|off|ab"}, {".*"}}});
  std::string deep;
  for (int i = 0; i <= ExclusionManager::maxNesting; ++i) deep = "<a>" + deep + "</a>";
  blockara::xml::setLimits({4096, 1 << 20});
  for (const std::string& text : {deep, "<rsccat>" + std::string(2 << 20, ' ') + "</rsccat>"}) {
    EXPECT_THROW(manager.loadExclusionsFromFile(d, write(text)), pt::xml_parser_error);
    EXPECT_EQ(manager.getExclusions().size(), 1u);
  }
  blockara::xml::setLimits({});
  EXPECT_TRUE(excluded(u"m/ab"));

  // Without the list element: the exclusions are gone and nothing new is published.
  load({{{"Subsystem|off|a"}, {"c1"}}});
  const auto before = Prefs::ceExclusions(L"m");
  EXPECT_THROW(manager.loadExclusionsFromFile(
                   d, write("<rsccat><SystemList><System/></SystemList></rsccat>")),
               pt::ptree_bad_path);
  EXPECT_TRUE(manager.getExclusions().empty());
  EXPECT_EQ(Prefs::ceExclusions(L"m"), before);
}

}  // namespace
}  // namespace bkedittimecheck::testing
