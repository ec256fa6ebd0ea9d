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
  setShowEditTimeIssues(false);
  EXPECT_FALSE(getShowEditTimeIssues());

  EXPECT_FALSE(EditTimePreferences::checkSelectionMap().has_value());
  EditTimePreferences::setCheckSelectionMap({{"bk_check_a", true}, {"bk_check_b", false}});
  EditTimePreferences::setCheckSelectionMap({{"bk_check_c", false}});
  EXPECT_EQ(EditTimePreferences::checkSelectionMap(),
            (EditTimePreferences::CheckSelectionMap{{"bk_check_c", false}}));
  // An empty map is a real answer, not "none".
  EditTimePreferences::setCheckSelectionMap({});
  ASSERT_TRUE(EditTimePreferences::checkSelectionMap().has_value());
  EXPECT_TRUE(EditTimePreferences::checkSelectionMap()->empty());

  EXPECT_FALSE(EditTimePreferences::ceExclusions(L"m1").has_value());
  EditTimePreferences::setCEExclusions(L"m1", {{L"m1/Chart", {L"id1", L"id2"}}});
  EditTimePreferences::setCEExclusions(L"m2", {});
  EditTimePreferences::setCEExclusions(L"m1", {{L"m1/Other", {L"id3"}}});
  EXPECT_EQ(EditTimePreferences::ceExclusions(L"m1"),
            (EditTimePreferences::ExclusionMap{{L"m1/Other", {L"id3"}}}));
  ASSERT_TRUE(EditTimePreferences::ceExclusions(L"m2").has_value());
  EXPECT_TRUE(EditTimePreferences::ceExclusions(L"m2")->empty());
  EXPECT_FALSE(EditTimePreferences::ceExclusions(L"M1").has_value());

  EditTimePreferences::clear();
  EXPECT_FALSE(EditTimePreferences::checkSelectionMap().has_value());
  EXPECT_FALSE(EditTimePreferences::ceExclusions(L"m1").has_value());
}

TEST(DirectoriesTest, DefaultsComeFromTheEnvironmentAndTheBuildAndSettersReplaceThem) {
  ::setenv("XDG_CONFIG_HOME", "/tmp/xdg", 1);
  EXPECT_EQ(svGetPreferencesDirectory(1), "/tmp/xdg/blockara");
  ::unsetenv("XDG_CONFIG_HOME");
  ::setenv("HOME", "/home/someone", 1);
  EXPECT_EQ(svGetPreferencesDirectory(1), "/home/someone/.config/blockara");
  EXPECT_EQ(svNumeriaRoot(), BKETC_RESOURCE_DIR);

  svSetPreferencesDirectory("/tmp/prefs");
  svSetNumeriaRoot("/opt/blockara");
  EXPECT_THROW(svSetPreferencesDirectory(""), std::invalid_argument);
  EXPECT_THROW(svSetNumeriaRoot(""), std::invalid_argument);
  EXPECT_EQ(svGetPreferencesDirectory(1), "/tmp/prefs");
  EXPECT_EQ(svGetPreferencesDirectory(0), "/tmp/prefs");
  EXPECT_EQ(svNumeriaRoot(), "/opt/blockara");
}

}  // namespace
}  // namespace bk::bkedittimecheck::bkutils
