#pragma once
// The main of a test program whose length is set on its command line: `--count=N` (how many
// sequences or operations; 0 keeps the test's own default) and `--seed=S` (the first seed).
// GoogleTest's own flags are taken first. Include in one source of the program only.
#include <gtest/gtest.h>

#include <string>

namespace bkedittimecheck::testing {
inline long commandLineCount = 0;
inline unsigned long commandLineSeed = 1;
}  // namespace bkedittimecheck::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg.starts_with("--count=")) bkedittimecheck::testing::commandLineCount = std::stol(arg.substr(8));
    if (arg.starts_with("--seed=")) bkedittimecheck::testing::commandLineSeed = std::stoul(arg.substr(7));
  }
  return RUN_ALL_TESTS();
}
