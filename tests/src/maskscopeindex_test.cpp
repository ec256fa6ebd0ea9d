// The indexed mask scope test against the plain rule, scanned entry by entry.
#include "src/maskscopeindex.h"

#include <gtest/gtest.h>

#include <random>

namespace bkedittimecheck {
namespace {

// The rule as written: every entry, in map order, tested against the whole path.
bool plainUnder(const std::map<std::wstring, std::int32_t>& maskKinds, const std::wstring& path,
                std::int32_t mode) {
  for (const auto& [key, kind] : maskKinds) {
    const bool under = path.find(key) != std::wstring::npos && path != key &&
                       path.size() > key.size() && path[key.size()] == L'/';
    if (!under) continue;
    if (mode == 1 && kind != 1) return true;
    if (mode == 2 && (kind == 3 || kind == 4)) return true;
    if (mode == 3 && kind == 4) return true;
  }
  return false;
}

TEST(MaskScopeIndex, AgreesWithThePlainRuleOnRandomMapsAndPaths) {
  // Short names from a tiny alphabet, so that keys recur inside paths away from their start
  // ("m/a" inside "m/m/a/b", where the rule looks for a separator at the key's length, not at
  // the end of the occurrence), one key is a prefix of another ("m/a" and "m/ab"), and "//"
  // stands for a "/" in a name.
  const std::vector<std::wstring> names{L"a", L"b", L"ab", L"a//b", L"m", L"ba", L"", L"m/a"};
  std::mt19937 random(20261123);
  auto pick = [&](std::size_t n) {
    return std::uniform_int_distribution<std::size_t>(0, n - 1)(random);
  };
  auto randomPath = [&] {
    std::wstring path = L"m";
    const std::size_t depth = pick(6);
    for (std::size_t i = 0; i < depth; ++i) path += L"/" + names[pick(names.size())];
    return path;
  };
  std::size_t trueAnswers = 0;
  for (int round = 0; round < 300; ++round) {
    std::map<std::wstring, std::int32_t> maskKinds;
    const std::size_t entries = pick(12);
    for (std::size_t i = 0; i < entries; ++i) {
      maskKinds[randomPath()] = static_cast<std::int32_t>(1 + pick(4));
    }
    if (pick(4) == 0) maskKinds[names[pick(names.size())]] = static_cast<std::int32_t>(1 + pick(4));
    MaskScopeIndex index;
    index.rebuild(maskKinds);
    for (int probe = 0; probe < 40; ++probe) {
      const std::wstring path = pick(3) == 0 && !maskKinds.empty()
                                    ? std::next(maskKinds.begin(), pick(maskKinds.size()))->first +
                                          L"/" + names[pick(names.size())]
                                    : randomPath();
      for (std::int32_t mode = -1; mode <= 4; ++mode) {
        const bool expected = plainUnder(maskKinds, path, mode);
        ASSERT_EQ(index.isUnderExcludingMask(path, mode), expected)
            << "mode " << mode << " path " << std::string(path.begin(), path.end());
        trueAnswers += expected ? 1 : 0;
      }
    }
  }
  EXPECT_GT(trueAnswers, 1000u);  // the draw exercises the "under" side, not only "not under"
}

}  // namespace
}  // namespace bkedittimecheck
