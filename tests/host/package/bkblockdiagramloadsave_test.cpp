#include "host/package/bkblockdiagramloadsave.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"

namespace {

std::filesystem::path tempPath(const std::string& name) {
  return std::filesystem::temp_directory_path() /
         (name + std::to_string(::testing::UnitTest::GetInstance()->random_seed()) + "-" +
          std::to_string(reinterpret_cast<std::uintptr_t>(&name)));
}

TEST(BlockDiagramLoadSaveTest, PackagesCarryTheDiagramAndItsPartsAndOnlyThenHaveAReader) {
  BKRootBD* d = bkBlockDiagramSet::create(u"Pkg");
  d->editing().addBlock(u"Pkg", "Gain", u"G", {{"Gain", std::string("3")}});
  EXPECT_EQ(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);

  d->parts()["/auditor/exclusions.xml"] = "<rsccat/>";
  auto reader = bkBlockDiagramLoadSave::get(d).getPackageReader();
  ASSERT_NE(reader, nullptr);
  EXPECT_TRUE(reader->hasPart("/auditor/exclusions.xml"));
  EXPECT_FALSE(reader->hasPart("/other.xml"));

  auto file = tempPath("pkg") += ".bkdx";
  bkBlockDiagramLoadSave::save(*d, file.string());
  EXPECT_EQ(d->getFilePath(), file.string());
  bkBlockDiagramSet::close(d);

  BKRootBD* back = bkBlockDiagramLoadSave::load(file.string());
  ASSERT_NE(back, nullptr);
  EXPECT_EQ(back->getName(), u"Pkg");
  EXPECT_EQ(back->findBlock(u"Pkg/G")->getParamText("Gain"), "3");
  // The diagram's own part is not one of its extra parts.
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
