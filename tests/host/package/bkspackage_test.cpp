#include "host/package/bkspackage.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <zip.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <fstream>
#include <iterator>
#include <random>
#include <set>

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

TEST_F(PackageTest, CorruptArchiveGivesClearErrorAndNothingHalfWritten) {
  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/diagram.xml", std::string(5000, 'd')}, {"/b", "bbb"}});
  std::string good = slurp(file);
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
  EXPECT_EQ(entries, 1u);  // m.bkdx
}

std::string binaryBytes(std::size_t n, unsigned seed) {
  std::mt19937 random(seed);
  std::string bytes(n, '\0');
  for (auto& b : bytes) b = static_cast<char>(random() & 0xff);
  return bytes;
}

TEST_F(PackageTest, BinaryAndManyPartsRoundTripInNameOrder) {
  std::string every;
  for (int i = 0; i < 256; ++i) every += static_cast<char>(i);
  PartMap parts = {{"/every", every},
                   {"/random.bin", binaryBytes(300000, 7)},
                   {"/zeros", std::string(100000, '\0')},
                   {"/folder with space/\xc3\xbc.xml", "<u/>"},
                   {"/a.b/c..d/...", "dots"}};
  for (int i = 0; i < 300; ++i) {
    parts["/many/" + std::to_string(i % 7) + "/part" + std::to_string(i)] = binaryBytes(i, i);
  }
  fs::path file = dir / "big.bkdx";
  writePackage(file, parts);
  EXPECT_EQ(readPackage(file), parts);
  std::string bytes = slurp(file);
  EXPECT_EQ(readPackageFromBuffer(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(),
                                  "memory"),
            parts);
  PackageReader reader(file);
  std::vector<std::string> names;
  for (const auto& [name, content] : parts) names.push_back(name);
  EXPECT_EQ(reader.partNames(), names);
  EXPECT_TRUE(reader.hasPart("/zeros"));
  EXPECT_FALSE(reader.hasPart("/zero"));
  EXPECT_EQ(reader.partBytes("/every"), every);
  try {
    reader.partBytes("/absent");
    FAIL();
  } catch (const PackageError& e) {
    EXPECT_EQ(std::string(e.what()), file.string() + ": no part '/absent'");
  }
  // Rewriting replaces every part: none of the old ones survive.
  writePackage(file, {{"/only", "1"}, {"/empty", ""}});
  EXPECT_EQ(readPackage(file), (PartMap{{"/only", "1"}, {"/empty", ""}}));
  writePackage(file, {});
  EXPECT_TRUE(readPackage(file).empty());
}

TEST_F(PackageTest, BadPartNamesAreRefusedBeforeAnythingIsWritten) {
  fs::path file = dir / "m.bkdx";
  for (const char* name : {"", "/", "x", "x/y", "//a", "/a//b", "/a/", "/.", "/..", "/./a", "/a/..",
                           "/a/./b", "/a/../b"}) {
    try {
      writePackage(file, {{"/fine", "x"}, {name, "y"}});
      FAIL() << name;
    } catch (const PackageError& e) {
      std::string what = e.what();
      EXPECT_EQ(what.rfind(file.string() + ": invalid part name '" + name + "'", 0), 0u) << what;
    }
    EXPECT_FALSE(fs::exists(file)) << name;
  }
  EXPECT_TRUE(fs::is_empty(dir));
}

TEST_F(PackageTest, EveryTruncationIsAnErrorNamingTheSource) {
  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/diagram.xml", "<diagram/>"}, {"/b/c", binaryBytes(200, 1)}});
  std::string good = slurp(file);
  fs::path cutFile = dir / "cut.bkdx";
  for (std::size_t cut = 0; cut < good.size(); cut += 5) {
    std::string label = "cut at " + std::to_string(cut);
    try {
      readPackageFromBuffer(reinterpret_cast<const std::uint8_t*>(good.data()), cut, label);
      FAIL() << label;
    } catch (const PackageError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(label + ": ", 0), 0u) << e.what();
    }
    std::ofstream(cutFile, std::ios::binary | std::ios::trunc)
        .write(good.data(), static_cast<std::streamsize>(cut));
    try {
      readPackage(cutFile);
      FAIL() << label;
    } catch (const PackageError& e) {
      EXPECT_EQ(std::string(e.what()).rfind(cutFile.string() + ": ", 0), 0u) << e.what();
    }
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
  try {
    readPackageFromBuffer(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(),
                          "huge");
    FAIL();
  } catch (const PackageError& e) {
    EXPECT_NE(std::string(e.what()).find("huge: part '/auditor/x.xml'"), std::string::npos)
        << e.what();
  }
}

TEST_F(PackageTest, AFailedWriteLeavesTheOldPackageAndNoTemporaryFile) {
  fs::path file = dir / "m.bkdx";
  PartMap old = {{"/diagram.xml", "<old/>"}};
  writePackage(file, old);
  // Writes beyond 64 KiB fail in this process; the new package is larger than that.
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit limit{64 * 1024, 64 * 1024};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
  try {
    writePackage(file, {{"/diagram.xml", binaryBytes(200000, 3)}});
    FAIL();
  } catch (const PackageError& e) {
    EXPECT_EQ(std::string(e.what()).rfind(file.string() + ": ", 0), 0u) << e.what();
  }
  EXPECT_EQ(readPackage(file), old);
  // A directory in the way of the package: it stays as it was.
  fs::path blocked = dir / "blocked.bkdx";
  fs::create_directories(blocked / "inside");
  EXPECT_THROW(writePackage(blocked, old), PackageError);
  EXPECT_TRUE(fs::is_directory(blocked / "inside"));
  std::vector<std::string> left;
  for (const auto& e : fs::directory_iterator(dir)) left.push_back(e.path().filename().string());
  std::sort(left.begin(), left.end());
  EXPECT_EQ(left, (std::vector<std::string>{"blocked.bkdx", "m.bkdx"}));
}

TEST_F(PackageTest, APackageKeepsThePermissionsOfTheFileItReplaces) {
  ::umask(022);
  fs::path file = dir / "m.bkdx";
  writePackage(file, {{"/a", "1"}});
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
  fs::permissions(file, fs::perms(0640));
  writePackage(file, {{"/a", "2"}});
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  EXPECT_EQ(readPackage(file), (PartMap{{"/a", "2"}}));
}

TEST_F(PackageTest, PartCopiesAndTemporaryFiles) {
  ASSERT_EQ(setenv("TMPDIR", dir.c_str(), 1), 0);
  std::set<fs::path> made;
  for (int i = 0; i < 50; ++i) {
    fs::path p = makeTemporaryFile(i % 2 ? ".xml" : "");
    EXPECT_EQ(p.parent_path(), dir);
    EXPECT_TRUE(fs::is_regular_file(p));
    EXPECT_EQ(fs::file_size(p), 0u);
    EXPECT_EQ(p.extension(), i % 2 ? ".xml" : "");
    made.insert(p);
  }
  EXPECT_EQ(made.size(), 50u);
  // A temporary folder that is not there: the error names it.
  ASSERT_EQ(setenv("TMPDIR", (dir / "absent").c_str(), 1), 0);
  fs::path fallback = makeTemporaryFile();
  EXPECT_TRUE(fs::exists(fallback));
  fs::remove(fallback);

  PackageReader reader(dir / "memory.bkdx", {{"/p", std::string("a\0b", 3)}});
  fs::path copy = dir / "copy.bin";
  std::ofstream(copy) << "much longer old content";
  reader::partToFile(reader, "/p", copy);
  EXPECT_EQ(slurp(copy), std::string("a\0b", 3));
  try {
    reader::partToFile(reader, "/q", copy);
    FAIL();
  } catch (const PackageError& e) {
    EXPECT_NE(std::string(e.what()).find((dir / "memory.bkdx").string()), std::string::npos);
  }
  for (const fs::path& target : {dir / "absent" / "x.bin", dir}) {
    try {
      reader::partToFile(reader, "/p", target);
      FAIL() << target;
    } catch (const PackageError& e) {
      EXPECT_EQ(std::string(e.what()), target.string() + ": cannot write part '/p'");
    }
  }
}

}  // namespace
