#include "host/package/bkspackage.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zip.h>

#include <csignal>
#include <cstring>
#include <fstream>
#include <random>
#include <set>

#include "host/model/bkrootbd.h"
#include "host/package/bkblockdiagramloadsave.h"
#include "tests/host/messageof.h"

namespace {

namespace fs = std::filesystem;
using namespace bksPackageHelper;

std::string slurp(const fs::path& p) {
  std::ifstream in(p, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

PartMap fromBuffer(const std::string& bytes, const std::string& label) {
  return readPackageFromBuffer(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(),
                               label);
}

bool startsWith(const std::string& text, const std::string& prefix) {
  return text.rfind(prefix, 0) == 0;
}

class PackageTest : public ::testing::Test {
 protected:
  void SetUp() override {
    dir = fs::path(::testing::TempDir()) / ("pkg-" + std::to_string(::getpid()));
    fs::create_directories(dir);
  }
  void TearDown() override {
    fs::remove_all(dir);
    bkBlockDiagramSet::closeAll();
  }
  fs::path dir;
};

std::string binaryBytes(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(n, '\0');
  for (auto& b : bytes) b = static_cast<char>(random() & 0xff);
  return bytes;
}

TEST_F(PackageTest, BinaryAndManyPartsRoundTripInNameOrder) {
  PartMap parts = {{"/random.bin", binaryBytes(300000, 7)},
                   {"/zeros", std::string(100000, '\0')},
                   {"/folder with space/\xc3\xbc.xml", "<u/>"},
                   {"/a.b/c..d/...", "dots"}};
  for (int i = 0; i < 300; ++i) {
    parts["/many/" + std::to_string(i % 7) + "/part" + std::to_string(i)] = binaryBytes(i, i);
  }
  fs::path file = dir / "big.bkdx";
  writePackage(file, parts);
  EXPECT_EQ(readPackage(file), parts);
  EXPECT_EQ(fromBuffer(slurp(file), "memory"), parts);
  // Rewriting replaces every part: none of the old ones survive.
  writePackage(file, {{"/only", "1"}, {"/empty", ""}});
  EXPECT_EQ(readPackage(file), (PartMap{{"/only", "1"}, {"/empty", ""}}));
}

TEST_F(PackageTest, BadPartNamesAreRefusedBeforeAnythingIsWritten) {
  fs::path file = dir / "m.bkdx";
  for (const char* name : {"", "/", "x", "x/y", "//a", "/a//b", "/a/", "/.", "/..", "/./a", "/a/..",
                           "/a/./b", "/a/../b"}) {
    EXPECT_PRED2(startsWith, messageOf<PackageError>([&] {
                   writePackage(file, {{"/fine", "x"}, {name, "y"}});
                 }),
                 file.string() + ": invalid part name '" + name + "'");
    EXPECT_FALSE(fs::exists(file)) << name;
  }
  EXPECT_TRUE(fs::is_empty(dir));
}

TEST_F(PackageTest, EveryTruncationCorruptionOrMissingArchiveIsAnErrorNamingTheSource) {
  fs::path big = dir / "big.bkdx";
  writePackage(big, {{"/diagram.xml", std::string(5000, 'd')}, {"/b", "bbb"}});
  std::string flipped = slurp(big);
  flipped[60] ^= 0x55;  // inside the first part's data: the checksum no longer matches
  EXPECT_THROW(fromBuffer(flipped, "flipped"), PackageError);
  EXPECT_THROW(readPackage(dir / "absent.bkdx"), PackageError);

  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/diagram.xml", "<diagram/>"}, {"/b/c", binaryBytes(200, 1)}});
  std::string good = slurp(file);
  fs::path cutFile = dir / "cut.bkdx";
  for (std::size_t cut = 0; cut < good.size(); cut += 5) {
    const std::string label = "cut at " + std::to_string(cut);
    EXPECT_PRED2(startsWith,
                 messageOf<PackageError>([&] { fromBuffer(good.substr(0, cut), label); }),
                 label + ": ");
    std::ofstream(cutFile, std::ios::binary | std::ios::trunc)
        .write(good.data(), static_cast<std::streamsize>(cut));
    EXPECT_PRED2(startsWith, messageOf<PackageError>([&] { readPackage(cutFile); }),
                 cutFile.string() + ": ");
  }
}

TEST_F(PackageTest, FolderEntriesAreSkippedAndOversizedPartsRefused) {
  fs::path file = dir / "hand.bkdx";
  int code = 0;
  zip_t* z = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &code);
  ASSERT_NE(z, nullptr);
  ASSERT_GE(zip_dir_add(z, "auditor", ZIP_FL_ENC_UTF_8), 0);
  static const char content[] = "payload";
  zip_source_t* source = zip_source_buffer(z, content, 7, 0);
  ASSERT_GE(zip_file_add(z, "auditor/x.xml", source, ZIP_FL_ENC_UTF_8), 0);
  zip_set_file_compression(z, 1, ZIP_CM_STORE, 0);
  ASSERT_EQ(zip_close(z), 0);
  EXPECT_EQ(readPackage(file), (PartMap{{"/auditor/x.xml", "payload"}}));

  // The same archive claiming a part of more than 256 MiB, in both of its headers.
  std::string bytes = slurp(file);
  const std::uint32_t huge = static_cast<std::uint32_t>(maxPartBytes + 1);
  auto patch = [&](const char* signature, std::size_t sizeOffset, std::size_t nameOffset) {
    for (std::size_t at = bytes.find(signature); at != std::string::npos;
         at = bytes.find(signature, at + 4)) {
      if (bytes.compare(at + nameOffset, 13, "auditor/x.xml") == 0) {
        std::memcpy(&bytes[at + sizeOffset], &huge, 4);
      }
    }
  };
  patch("PK\x03\x04", 22, 30);
  patch("PK\x01\x02", 24, 46);
  const std::string what = messageOf<PackageError>([&] { fromBuffer(bytes, "huge"); });
  EXPECT_NE(what.find("huge: part '/auditor/x.xml'"), std::string::npos) << what;
}

TEST_F(PackageTest, AReplacedPackageKeepsItsPermissionsAndAFailedWriteLeavesTheOldOne) {
  ::umask(022);
  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/a", "1"}});
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
  fs::permissions(file, fs::perms(0640));
  PartMap old = {{"/diagram.xml", "<old/>"}};
  writePackage(file, old);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  // Writes beyond 64 KiB fail in this process; the new package is larger than that.
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{64 * 1024, 64 * 1024};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  EXPECT_PRED2(startsWith, messageOf<PackageError>([&] {
                 writePackage(file, {{"/diagram.xml", binaryBytes(200000, 3)}});
               }),
               file.string() + ": ");
  EXPECT_EQ(readPackage(file), old);
  // A directory in the way of the package: it stays as it was.
  fs::path blocked = dir / "blocked.bkdx";
  fs::create_directories(blocked / "inside");
  EXPECT_THROW(writePackage(blocked, old), PackageError);
  EXPECT_TRUE(fs::is_directory(blocked / "inside"));
  std::set<std::string> left;
  for (const auto& e : fs::directory_iterator(dir)) left.insert(e.path().filename().string());
  EXPECT_EQ(left, (std::set<std::string>{"blocked.bkdx", "m.bkdx"}));
}

TEST_F(PackageTest, APartCopiedToAFileReplacesItOrNamesTheFailure) {
  PackageReader reader(dir / "memory.bkdx", {{"/p", std::string("a\0b", 3)}});
  fs::path copy = dir / "copy.bin";
  std::ofstream(copy) << "much longer old content";
  reader::partToFile(reader, "/p", copy);
  EXPECT_EQ(slurp(copy), std::string("a\0b", 3));
  EXPECT_PRED2(startsWith, messageOf<PackageError>([&] { reader::partToFile(reader, "/q", copy); }),
               (dir / "memory.bkdx").string());
  for (const fs::path& target : {dir / "absent" / "x.bin", dir}) {
    EXPECT_EQ(messageOf<PackageError>([&] { reader::partToFile(reader, "/p", target); }),
              target.string() + ": cannot write part '/p'");
  }
}

TEST_F(PackageTest, OnlyADiagramWithPartsHasAPackageAndOnlyAPackageWithTheDiagramOpens) {
  BKRootBD* d = bkBlockDiagramSet::create(u"Pkg");
  EXPECT_EQ(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);
  d->parts()["/auditor/exclusions.xml"] = "<rsccat/>";
  ASSERT_NE(bkBlockDiagramLoadSave::get(d).getPackageReader(), nullptr);
  bkBlockDiagramSet::close(d);
  const fs::path file = dir / "nodiagram.bkdx";
  writePackage(file, {{"/auditor/exclusions.xml", "<rsccat/>"}});
  const std::string what =
      messageOf<PackageError>([&] { bkBlockDiagramLoadSave::load(file.string()); });
  EXPECT_NE(what.find(file.string()), std::string::npos) << what;
  EXPECT_TRUE(bkBlockDiagramSet::all().empty());
}

}  // namespace
