#include "host/prefs/edittimepreferences.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

#include "host/prefs/directories.h"

namespace bk::bkedittimecheck::bkutils {
namespace {

TEST(EditTimePreferencesTest, KeepsTheLastSettingsAndExclusionsPerDiagram) {
  EXPECT_TRUE(getShowEditTimeIssues());  // on until the user turns it off

  EXPECT_FALSE(EditTimePreferences::checkSelectionMap().has_value());
  // An empty map is a real answer, not "none".
  EditTimePreferences::setCheckSelectionMap({});
  ASSERT_TRUE(EditTimePreferences::checkSelectionMap().has_value());
  EXPECT_TRUE(EditTimePreferences::checkSelectionMap()->empty());

  EditTimePreferences::setCEExclusions(L"m1", {{L"m1/Chart", {L"id1", L"id2"}}});
  EditTimePreferences::setCEExclusions(L"m1", {{L"m1/Other", {L"id3"}}});
  EXPECT_EQ(EditTimePreferences::ceExclusions(L"m1"),
            (EditTimePreferences::ExclusionMap{{L"m1/Other", {L"id3"}}}));  // replaced, not merged
  EXPECT_FALSE(EditTimePreferences::ceExclusions(L"M1").has_value());  // names are exact

  EditTimePreferences::clear();
  EXPECT_FALSE(EditTimePreferences::checkSelectionMap().has_value());
  EXPECT_FALSE(EditTimePreferences::ceExclusions(L"m1").has_value());
}

TEST(DirectoriesTest, DefaultsComeFromTheEnvironmentAndTheBuildAndEmptyOnesAreRefused) {
  ::setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
  EXPECT_EQ(svGetPreferencesDirectory(1), "/tmp/xdg/blockara");
  ::unsetenv("XDG_CONFIG_HOME");
  ::setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(svGetPreferencesDirectory(1), "/home/someone/.config/blockara");
  EXPECT_EQ(svNumeriaRoot(), BKETC_RESOURCE_DIR);

  EXPECT_THROW(svSetPreferencesDirectory(""), std::invalid_argument);
  EXPECT_THROW(svSetNumeriaRoot(""), std::invalid_argument);
}

}  // namespace
}  // namespace bk::bkedittimecheck::bkutils
