#include "src/configuration/customizationfile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "src/configuration/edittimecheckselector.h"

namespace bkedittimecheck {
namespace {

namespace fs = std::filesystem;

class CustomizationFileTest : public ::testing::Test {
 protected:
  void SetUp() override {
    base = fs::temp_directory_path() /
           ("bketc_custom_" +
            std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
    fs::remove_all(base);
    fs::create_directories(base / "prefs");
    fs::create_directories(base / "root");
  }
  void TearDown() override { fs::remove_all(base); }

  static void write(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "<RAConfiguration><CheckCellArray/></RAConfiguration>";
  }

  fs::path base;
};

TEST_F(CustomizationFileTest, PreferenceFileWinsOverGivenPathWhichWinsOverInstalledFile) {
  const fs::path preference = base / "prefs" / "edittimecheckcustomization.xml";
  const fs::path given = base / "given.xml";
  const fs::path installed = installedCustomizationFile((base / "root").wstring());

  const auto choose = [&](const fs::path& givenPath) {
    return chooseCustomizationFile((base / "prefs").wstring(), givenPath.wstring(),
                                   (base / "root").wstring());
  };
  EXPECT_EQ(choose(given), L"");  // nothing anywhere
  write(installed);
  EXPECT_EQ(choose(given), installed.wstring());  // the given path does not exist
  EXPECT_EQ(choose(fs::path()), installed.wstring());
  write(given);
  EXPECT_EQ(choose(given), given.wstring());
  write(preference);
  EXPECT_EQ(choose(given), preference.wstring());  // overrides an explicit path too

  // A directory of the preference file's name is no customization file.
  fs::remove(preference);
  fs::create_directories(preference);
  EXPECT_EQ(chooseCustomizationFile((base / "prefs").wstring(), L"", L""), L"");
}

}  // namespace
}  // namespace bkedittimecheck
