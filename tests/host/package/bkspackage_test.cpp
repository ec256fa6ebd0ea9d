#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "host/package/bkspackage.h"

namespace {

namespace fs = std::filesystem;
using namespace bksPackageHelper;

std::string slurp(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

class PackageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::path(::testing::TempDir()) / ("pkg-" + std::to_string(::getpid()));
    fs::create_directories(dir);
  }
  void TearDown() override { fs::remove_all(dir); }
  fs::path dir;
};

TEST_F(PackageTest, PackageWithExtraPartRoundTrips) {
  PartMap parts = {{"/diagram.xml", "<diagram name='m'/>"},
                   {"/auditor/exclusions.xml", std::string("<x>\0bin</x>", 11)},
                   {"/empty", ""}};
  fs::path file = dir / "m.bkdx";
  writePackage(file, parts);
  EXPECT_EQ(readPackage(file), parts);

  PackageReader reader(file);
  EXPECT_TRUE(reader.hasPart("/auditor/exclusions.xml"));
  EXPECT_FALSE(reader.hasPart("/auditor/missing.xml"));
  fs::path temp = makeTemporaryFile(".xml");
  EXPECT_TRUE(fs::exists(temp));
  EXPECT_NE(makeTemporaryFile(".xml"), temp);
  reader::partToFile(reader, "/auditor/exclusions.xml", temp);
  EXPECT_EQ(slurp(temp), parts["/auditor/exclusions.xml"]);
  EXPECT_THROW(reader::partToFile(reader, "/nope", temp), PackageError);
  fs::remove(temp);

  writePackage(file, {});
  EXPECT_TRUE(readPackage(file).empty());
}

TEST_F(PackageTest, CorruptOrTruncatedArchiveGivesClearErrorAndNothingHalfWritten) {
  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/diagram.xml", std::string(5000, 'd')}, {"/b", "bbb"}});
  std::string good = slurp(file);

  for (std::size_t cut : {std::size_t{0}, std::size_t{10}, good.size() / 2, good.size() - 1}) {
    fs::path bad = dir / "cut.bkdx";
    std::ofstream(bad, std::ios::binary).write(good.data(), static_cast<std::streamsize>(cut));
    try {
      readPackage(bad);
      FAIL() << cut;
    } catch (const PackageError& e) {
      EXPECT_NE(std::string(e.what()).find(bad.string()), std::string::npos) << e.what();
    }
  }
  std::string flipped = good;
  flipped[60] ^= 0x55;  // inside the first part's data: the checksum no longer matches
  EXPECT_THROW(readPackageFromBuffer(reinterpret_cast<const std::uint8_t*>(flipped.data()),
                                     flipped.size(), "flipped"),
               PackageError);
  EXPECT_THROW(readPackage(dir / "absent.bkdx"), PackageError);

  // A bad part name is refused before anything is written: the old file stays whole.
  EXPECT_THROW(writePackage(file, {{"/ok", "x"}, {"/../escape", "y"}}), PackageError);
  EXPECT_THROW(writePackage(file, {{"noslash", "y"}}), PackageError);
  EXPECT_EQ(slurp(file), good);
  // A folder that does not exist: no file, no temporary left behind.
  EXPECT_THROW(writePackage(dir / "nodir" / "m.bkdx", {{"/a", "b"}}), PackageError);
  std::size_t entries = 0;
  for ([[maybe_unused]] const auto& e : fs::directory_iterator(dir)) ++entries;
  EXPECT_EQ(entries, 2u);  // m.bkdx and cut.bkdx
}

}  // namespace
