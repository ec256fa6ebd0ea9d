#include "host/package/bkblockdiagramloadsave.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"
#include "tests/host/messageof.h"

namespace {

std::filesystem::path tempPath(const std::string& name) {
  return std::filesystem::temp_directory_path() /
         (name + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
          std::to_string(reinterpret_cast<std::uintptr_t>(&name)));
}

TEST(BlockDiagramLoadSaveTest, OnlyADiagramWithPartsHasAPackageReader) {
  BKRootBD* d = bkBlockDiagramSet::create(u"Pkg");
  EXPECT_EQ(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);
  d->parts()["/auditor/exclusions.xml"] = "<rsccat/>";
  ASSERT_NE(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);
  bkBlockDiagramSet::close(d);
}

TEST(BlockDiagramLoadSaveTest, APackageWithoutTheDiagramOpensNothing) {
  auto file = tempPath("nodiagram") += ".bkdx";
  bksPackageHelper::writePackage(file, {{"/auditor/exclusions.xml", "<rsccat/>"}});
  const std::string what = messageOf<bksPackageHelper::PackageError>(
      [&] { bkBlockDiagramLoadSave::load(file.string()); });
  EXPECT_NE(what.find(file.string()), std::string::npos) << what;
  EXPECT_TRUE(bkBlockDiagramSet::all().empty());
  std::filesystem::remove(file);
}

}  // namespace
