#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "host/prefs/bkfeature.h"
#include "host/prefs/bkfeatureregistry.h"
#include "host/prefs/directories.h"

namespace bk::bkedittimecheck::bkutils {
namespace {

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

// Defined the way a module defines its flags: a static object and an exported pointer.
BkFeature authoringFeature("BlockConstraintCheckAuthoring",
                           "Block Constraint Check Authoring for Edit-time Checking",
                           "src/edittimeengine", "BkCheck", 974268, 1, 0);
BkFeature* BKFEAT_Test = &authoringFeature;

TEST(BkFeatureTest, LevelDecidesEveryReadCountsAndTheRegistryFindsFlagsByName) {
  EXPECT_TRUE(static_cast<bool>(*BKFEAT_Test));  // the default level 1
  for (const auto& [level, on] : {std::pair{0, false}, {2, true}, {-1, false}}) {
    BKFEAT_Test->setLevel(level);
    EXPECT_EQ(BKFEAT_Test->isOn(), on) << level;
  }
  EXPECT_EQ(BKFEAT_Test->peekLevel(), -1);
  EXPECT_EQ(BKFEAT_Test->accessCount(), 4u);  // peekLevel does not count

  // The registry finds live flags by name and remembers levels set before a flag exists.
  EXPECT_EQ(BkFeatureRegistry::find("BlockConstraintCheckAuthoring"), BKFEAT_Test);
  EXPECT_EQ(BkFeatureRegistry::find("NoSuchFeature"), nullptr);
  EXPECT_TRUE(BkFeatureRegistry::setLevel("BlockConstraintCheckAuthoring", 0));
  EXPECT_EQ(BkFeatureRegistry::level("BlockConstraintCheckAuthoring"), 0);
  EXPECT_FALSE(BKFEAT_Test->isOn());
  EXPECT_EQ(BKFEAT_Test->accessCount(), 5u);  // registry reads do not count
  // A level set before the flag exists is given to it when it is made.
  EXPECT_FALSE(BkFeatureRegistry::setLevel("LateFeature", 0));
  EXPECT_EQ(BkFeatureRegistry::level("LateFeature"), std::nullopt);
  {
    BkFeature late("LateFeature", "", "", "", 1, 1, 0);
    EXPECT_FALSE(late.isOn());
    EXPECT_EQ(BkFeatureRegistry::names(),
              (std::vector<std::string>{"BlockConstraintCheckAuthoring", "LateFeature"}));
  }
  // A flag that is gone leaves the registry.
  EXPECT_EQ(BkFeatureRegistry::find("LateFeature"), nullptr);
  EXPECT_THROW(BkFeatureRegistry::setLevel("", 1), std::invalid_argument);
}

}  // namespace
}  // namespace bk::bkedittimecheck::bkutils
