#include "host/package/bkblockdiagramloadsave.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"

namespace {

std::filesystem::path tempPath(const std::string& name) {
  return std::filesystem::temp_directory_path() /
         (name + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
          std::to_string(reinterpret_cast<std::uintptr_t>(&name)));
}

TEST(BlockDiagramLoadSaveTest, OnlyADiagramWithPartsHasAReaderAndItsOwnPartIsNotOneOfThem) {
  BKRootBD* d = bkBlockDiagramSet::create(u"Pkg");
  EXPECT_EQ(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);
  d->parts()["/auditor/exclusions.xml"] = "<rsccat/>";
  ASSERT_NE(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);

  auto file = tempPath("pkg") += ".bkdx";
  bkBlockDiagramLoadSave::save(*d, file.string());
  bkBlockDiagramSet::close(d);
  BKRootBD* back = bkBlockDiagramLoadSave::load(file.string());
  EXPECT_EQ(back->parts(), (std::map<std::string, std::string>{
                               {"/auditor/exclusions.xml", "<rsccat/>"}}));
  bkBlockDiagramSet::close(back);
  std::filesystem::remove(file);
}

TEST(BlockDiagramLoadSaveTest, APackageWithoutTheDiagramOpensNothing) {
  auto file = tempPath("nodiagram") += ".bkdx";
  bksPackageHelper::writePackage(file, {{"/auditor/exclusions.xml", "<rsccat/>"}});
  try {
    bkBlockDiagramLoadSave::load(file.string());
    FAIL() << "loaded a package without a diagram";
  } catch (const bksPackageHelper::PackageError& e) {
    EXPECT_NE(std::string(e.what()).find(file.string()), std::string::npos) << e.what();
  }
  EXPECT_TRUE(bkBlockDiagramSet::all().empty());
  std::filesystem::remove(file);
}

}  // namespace
