// The exclusions of a diagram: every rule kind, the file format and its failures, the published
// map, and where the file comes from.
#include "src/configuration/exclusionmanager.h"

#include <gtest/gtest.h>

#include <boost/property_tree/exceptions.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>

#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/edittimepreferences.h"
#include "src/edittimeviolation.h"
#include "src/hostinterface.h"

namespace bkedittimecheck::testing {
namespace {

namespace pt = boost::property_tree;
using Prefs = bk::bkedittimecheck::bkutils::EditTimePreferences;

// One exclusion: rules (each "Type|SID|paramValue", SID "-" for none) and check IDs.
struct Spec {
  std::vector<std::string> rules;
  std::vector<std::string> checkIds;
};

std::string exclusionsXml(const std::vector<Spec>& specs) {
  std::string xml = "<rsccat><SystemList><System><ExclusionList>";
  for (const Spec& s : specs) {
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

class ExclusionTest : public ::testing::Test {
 protected:
  void SetUp() override {
    d = bkBlockDiagramSet::create(u"m");
    auto& e = d->editing();
    e.addBlock(u"m", "SubSystem", u"a");
    e.addBlock(u"m/a", "Gain", u"b");
    e.addBlock(u"m/a", "SubSystem", u"inner");
    e.addBlock(u"m/a/inner", "Gain", u"deep");
    e.addBlock(u"m", "Gain", u"ab");
    e.addBlock(u"m", "SubSystem", u"masked", {{"MaskType", std::string("Filter")}});
    e.addBlock(u"m/masked", "Constant", u"x");
    e.addBlock(u"m/masked", "SubSystem", u"sub", {{"MaskType", std::string("Other")}});
    e.addBlock(u"m/masked/sub", "Gain", u"y");
    e.addBlock(
        u"m", "SubSystem", u"lib",
        {{"LinkStatus", std::string("resolved")}, {"ReferenceBlock", std::string("mylib/sys")}});
    e.addBlock(
        u"m/lib", "Gain", u"linked",
        {{"LinkStatus", std::string("resolved")}, {"ReferenceBlock", std::string("mylib/sys/g")}});
    e.addBlock(u"m/lib", "Gain", u"plain");
    dir = std::filesystem::temp_directory_path() /
          ("bketc_excl_" + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "_" +
           ::testing::UnitTest::GetInstance()->current_test_info()->name());
    std::filesystem::create_directories(dir);
  }
  void TearDown() override {
    bkBlockDiagramSet::closeAll();
    std::error_code ignored;
    std::filesystem::remove_all(dir, ignored);
  }

  std::wstring write(const std::string& text, const std::string& name = "ex.xml") {
    const auto file = dir / name;
    std::ofstream(file, std::ios::binary) << text;
    return file.wstring();
  }
  void load(const std::vector<Spec>& specs) {
    manager.loadExclusionsFromFile(d, write(exclusionsXml(specs)));
  }
  bool excluded(const std::u16string& path, const std::string& checkId = "c1") {
    BKBlock* block = d->findBlock(path);
    EXPECT_TRUE(block) << ConvertUStringToStdString(path);
    return manager.isExcluded(*block, EditTimeViolation(checkId, "t", 3, block->getHandle()));
  }
  std::string sidOf(const std::u16string& path) { return d->findBlock(path)->getSID(); }

  BKRootBD* d = nullptr;
  ExclusionManager manager;
  std::filesystem::path dir;
};

TEST_F(ExclusionTest, SubsystemBlockAndBlockTypeRulesNeedTheCheckId) {
  load({{{"Subsystem|off|a"}, {"c1"}}});
  EXPECT_TRUE(excluded(u"m/a"));
  EXPECT_TRUE(excluded(u"m/a/b"));
  EXPECT_TRUE(excluded(u"m/a/inner/deep"));
  EXPECT_FALSE(excluded(u"m/ab"));         // a prefix, not a subsystem
  EXPECT_FALSE(excluded(u"m/a/b", "c2"));  // another check

  load({{{"Block|off|a"}, {"c1", "c2"}}});
  EXPECT_TRUE(excluded(u"m/a"));
  EXPECT_TRUE(excluded(u"m/a", "c2"));
  EXPECT_FALSE(excluded(u"m/a/b"));

  load({{{"BlockType|-|Gain"}, {".*"}}});
  EXPECT_TRUE(excluded(u"m/ab", "anything"));
  EXPECT_FALSE(excluded(u"m/masked/x"));  // a Constant

  // Check IDs compare literally; ".*" alone stands for every check.
  load({{{"BlockType|-|Gain"}, {"c.*", "C1"}}});
  EXPECT_FALSE(excluded(u"m/ab"));
  // An exclusion without check IDs covers nothing through these rules.
  load({{{"BlockType|-|Gain"}, {}}});
  EXPECT_FALSE(excluded(u"m/ab"));
  // "RegExp" is never applied: a pattern matches no path.
  load({{{"Block|off|a.*"}, {".*"}}});
  EXPECT_FALSE(excluded(u"m/a"));
  EXPECT_FALSE(excluded(u"m/ab"));
}

TEST_F(ExclusionTest, SidsAndOffPathsAreResolvedAtLoad) {
  load({{{"Subsystem|" + sidOf(u"m/a") + "|" + sidOf(u"m/a"), "Block|-|999999", "Block|x|"},
         {"c1"}}});
  const auto& rules = manager.getExclusions().at(0).rules;
  EXPECT_EQ(rules[0].paramValue, L"m/a");     // a SID becomes its block's path
  EXPECT_EQ(rules[1].paramValue, L"999999");  // an unknown SID stays and never matches
  EXPECT_EQ(rules[0].regExp, L"on");
  EXPECT_EQ(manager.getExclusions().at(0).rationale, L"why");
  EXPECT_TRUE(excluded(u"m/a/b"));

  // A moved block keeps its old path in the rule until the next load.
  d->editing().renameBlock(u"m/a", u"a2");
  EXPECT_FALSE(excluded(u"m/a2/b"));
  load({{{"Subsystem|" + sidOf(u"m/a2") + "|" + sidOf(u"m/a2")}, {"c1"}}});
  EXPECT_TRUE(excluded(u"m/a2/b"));
}

TEST_F(ExclusionTest, TheFirstLibraryRuleReachedDecidesTheWholeTest) {
  load({{{"Library|-|mylib"}, {"notThisCheck"}}});
  EXPECT_TRUE(excluded(u"m/lib/linked"));  // check IDs are not consulted
  EXPECT_TRUE(excluded(u"m/lib"));
  EXPECT_FALSE(excluded(u"m/lib/plain"));  // its own reference is empty: false at once

  // Ahead of a matching rule, even in a later exclusion, the short cut answers false.
  load({{{"Library|-|mylib", "Block|off|ab"}, {".*"}}, {{"Block|off|ab"}, {".*"}}});
  EXPECT_FALSE(excluded(u"m/ab"));
  // Going up: the block's own reference does not match, its parent's does.
  load({{{"Library|-|mylib/sys"}, {}}});
  EXPECT_TRUE(excluded(u"m/lib/linked"));
  load({{{"Library|-|other"}, {}}});
  EXPECT_FALSE(excluded(u"m/lib/linked"));
}

TEST_F(ExclusionTest, MaskTypeLooksOneLevelUpAndIgnoresCheckIds) {
  load({{{"MaskType|-|Filter"}, {}}});
  EXPECT_TRUE(excluded(u"m/masked/x", "any"));
  EXPECT_TRUE(excluded(u"m/masked/sub", "other"));
  EXPECT_FALSE(excluded(u"m/masked"));        // the masked subsystem itself
  EXPECT_FALSE(excluded(u"m/masked/sub/y"));  // two levels down
  EXPECT_FALSE(excluded(u"m/ab"));            // at the root: no parent
}

TEST_F(ExclusionTest, UnknownKindsEndTheTestChartRulesNeverMatch) {
  load({{{"Chartelle|-|m/a"}, {".*"}}});
  EXPECT_FALSE(excluded(u"m/a"));
  EXPECT_TRUE(Prefs::ceExclusions(L"m")->empty());

  load({{{"Nonsense|-|x", "Block|off|ab"}, {".*"}}});
  EXPECT_EQ(manager.getExclusions().at(0).rules.at(0).kind, ExclusionRule::unknownKind);
  EXPECT_FALSE(excluded(u"m/ab"));
  // Rules after it in file order are not reached either; those before are.
  load({{{"Block|off|ab", "Nonsense|-|x"}, {".*"}}});
  EXPECT_TRUE(excluded(u"m/ab"));
}

TEST_F(ExclusionTest, TheFirstSubsystemRuleOfEachExclusionIsPublished) {
  load({{{"Block|off|ab", "Subsystem|off|a", "Subsystem|off|masked"}, {"c1", "c2"}},
        {{"Subsystem|off|a"}, {"c3"}},
        {{"Subsystem|off|lib"}, {}}});
  // Both subsystem rules of the first exclusion act...
  EXPECT_TRUE(excluded(u"m/masked/x"));
  // ...but only the first is published, and the first entry of a path stands.
  const auto published = Prefs::ceExclusions(L"m");
  ASSERT_TRUE(published);
  EXPECT_EQ(*published, (Prefs::ExclusionMap{{L"m/a", {L"c1", L"c2"}}, {L"m/lib", {}}}));

  // An empty list takes every exemption away and publishes an empty map.
  load({});
  EXPECT_TRUE(manager.getExclusions().empty());
  EXPECT_FALSE(excluded(u"m/a"));
  EXPECT_TRUE(Prefs::ceExclusions(L"m")->empty());
}

TEST_F(ExclusionTest, BadFilesThrowAndLeaveTheManagerAsDocumented) {
  load({{{"Block|off|ab"}, {".*"}}});
  const auto expectKept = [&] {
    EXPECT_EQ(manager.getExclusions().size(), 1u);
    EXPECT_TRUE(excluded(u"m/ab"));
  };
  const auto expectNamed = [](const std::function<void()>& fn, const std::string& file) {
    try {
      fn();
      ADD_FAILURE() << "no exception";
    } catch (const pt::xml_parser_error& e) {
      EXPECT_EQ(e.filename(), file);
      EXPECT_FALSE(e.message().empty());
    }
  };

  const std::wstring missing = (dir / "missing.xml").wstring();
  expectNamed([&] { manager.loadExclusionsFromFile(d, missing); }, (dir / "missing.xml").string());
  expectKept();
  expectNamed([&] { manager.loadExclusionsFromFile(d, dir.wstring()); }, dir.string());
  expectKept();
  const std::wstring broken = write("<rsccat><SystemList>", "broken.xml");
  expectNamed([&] { manager.loadExclusionsFromFile(d, broken); }, (dir / "broken.xml").string());
  expectKept();
  std::string deep;
  for (int i = 0; i < 200000; ++i) deep += "<a>";
  const std::wstring nested = write(deep, "deep.xml");
  expectNamed([&] { manager.loadExclusionsFromFile(d, nested); }, (dir / "deep.xml").string());
  expectKept();
  // Comments, CDATA and self-closing elements do not count as levels.
  std::string shallow = "<rsccat><!-- <a><a><a> --><SystemList><System><ExclusionList>";
  for (int i = 0; i < 100; ++i) shallow += "<x/><![CDATA[<a><a>]]>";
  manager.loadExclusionsFromFile(
      d, write(shallow + "</ExclusionList></System></SystemList></rsccat>"));
  EXPECT_TRUE(manager.getExclusions().empty());

  // Without the list element: the exclusions are gone and nothing new is published.
  load({{{"Subsystem|off|a"}, {"c1"}}});
  const auto before = Prefs::ceExclusions(L"m");
  const std::wstring noList = write("<rsccat><SystemList><System/></SystemList></rsccat>", "n.xml");
  EXPECT_THROW(manager.loadExclusionsFromFile(d, noList), pt::ptree_bad_path);
  EXPECT_TRUE(manager.getExclusions().empty());
  EXPECT_EQ(Prefs::ceExclusions(L"m"), before);
}

TEST_F(ExclusionTest, TheDiagramsFileHidesItsPackagePart) {
  // No file and no package: nothing changes.
  load({{{"Block|off|ab"}, {".*"}}});
  manager.loadExclusions(d);
  EXPECT_TRUE(excluded(u"m/ab"));

  d->parts()[ExclusionManager::exclusionsPart] = exclusionsXml({{{"Block|off|a"}, {".*"}}});
  manager.loadExclusions(d);
  EXPECT_TRUE(excluded(u"m/a"));
  EXPECT_FALSE(excluded(u"m/ab"));

  // A file of the diagram's own is read instead of the part.
  d->setExclusionFilePath(i18n::to_u16string(
      toNarrow(write(exclusionsXml({{{"Block|off|masked"}, {".*"}}}), "own.xml"))));
  manager.loadExclusions(d);
  EXPECT_TRUE(excluded(u"m/masked"));
  EXPECT_FALSE(excluded(u"m/a"));

  // A part that went away leaves the exclusions as they were.
  d->setExclusionFilePath(u"");
  d->parts().clear();
  d->parts()["/other.xml"] = "x";
  manager.loadExclusions(d);
  EXPECT_TRUE(excluded(u"m/masked"));
}

}  // namespace
}  // namespace bkedittimecheck::testing
