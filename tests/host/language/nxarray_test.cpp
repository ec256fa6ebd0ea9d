#include "host/language/nxarray.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/language/cmddistributor.h"
#include "nxarrayprint.h"

namespace {

TEST(NxArrayTest, SerializationRoundTripsAndRefusesEveryDamagedInput) {
  using cmddistributor::detail::deserializeNxArrays;
  using cmddistributor::detail::serializeNxArrays;
  nxArray s = nxArray::structMatrix(2, 1, {"f"});
  s.setField(0, "f", nxArray::uint32Matrix(1, 2, {1, 2}));
  const std::vector<nxArray> arrays = {
      nxArray(),
      nxArray::doubleMatrix(2, 1, {1, 2}),
      nxArray::logicalMatrix(1, 2, {true, false}),
      nxArray::charMatrix(2, 1, "ab"),
      nxArray::cellColumn({nxArray::uint32Scalar(4294967295u), nxArray::charRow(u"\u20ac")}),
      s};
  auto bytes = serializeNxArrays(arrays);
  EXPECT_EQ(deserializeNxArrays(bytes), arrays);
  for (std::size_t cut = 0; cut < bytes.size(); cut += 3) {
    std::vector<std::uint8_t> truncated(bytes.begin(), bytes.begin() + static_cast<long>(cut));
    EXPECT_THROW(deserializeNxArrays(truncated), std::runtime_error) << cut;
  }
  EXPECT_THROW(serializeNxArrays({nxArray::objectMatrix(0, 0, {})}), std::invalid_argument);

  // Hostile headers: magic, count, class byte, then rows and cols at bytes 9 and 17.
  const auto base = serializeNxArrays({nxArray::doubleScalar(1)});
  auto patched = [&](std::size_t at, std::uint64_t value, std::size_t width = 8) {
    auto b = base;
    std::memcpy(b.data() + at, &value, width);
    return b;
  };
  auto trailing = base;
  trailing.push_back(0);
  for (const auto& bad : {patched(9, ~0ull), patched(9, 1ull << 32), patched(8, 5, 1),
                          patched(0, 'M', 1), trailing}) {
    EXPECT_THROW(deserializeNxArrays(bad), std::runtime_error);
  }
  // Deep nesting is refused rather than recursed into.
  nxArray deep = nxArray::charRow("x");
  for (int i = 0; i < 70; ++i) deep = nxArray::cellRow({deep});
  EXPECT_THROW(deserializeNxArrays(serializeNxArrays({deep})), std::runtime_error);
}

}  // namespace
