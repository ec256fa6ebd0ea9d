#include "host/language/nxarray.h"

#include <gtest/gtest.h>

#include <cstring>

#include "host/language/cmddistributor.h"
#include "host/language/messageid.h"
#include "nxarrayprint.h"

namespace {

TEST(NxArrayTest, ShapesFieldsAndAccessErrors) {
  nxArray row = nxArray::cellRow({nxArray::charRow("a"), nxArray::charRow("b")});
  nxArray col = nxArray::cellColumn({nxArray::charRow("a"), nxArray::charRow("b")});
  EXPECT_EQ(row.rows(), 1u);
  EXPECT_EQ(col.rows(), 2u);
  EXPECT_FALSE(row == col);
  EXPECT_EQ(row.numberOfDimensions(), 2u);
  EXPECT_EQ(static_cast<int>(nxArray::objectMatrix(0, 0, {}).classID()), 17);


  EXPECT_THROW(row.getDouble(0), std::invalid_argument);
  EXPECT_THROW(row.getCell(2), std::out_of_range);
  EXPECT_THROW(nxArray::doubleMatrix(2, 2, {1}), std::invalid_argument);
  EXPECT_THROW(omGetArrayElement(row, 0), std::invalid_argument);
  EXPECT_TRUE(nxArrayProxy().isNull());
  EXPECT_TRUE(nxArrayProxy().array().isEmpty());
}

TEST(NxArrayTest, WideCharRowsHoldUtf8) {
  // The codec itself is tested with the host's string type; this is the array's use of it.
  std::u16string wide = u"Gr\u00fc\u00dfe \U0001F600";
  EXPECT_EQ(nxArray::charRow(wide).toUtf16String(), wide);
  EXPECT_EQ(nxArray::charRow(u"\u20ac").numel(), 3u);
  EXPECT_EQ(toUtf16(toUtf8(wide)), wide);
}

TEST(NxArrayTest, NewStructFieldsWidenEveryElementAndPropertiesReadThroughStructs) {
  nxArray s = nxArray::structMatrix(1, 3, {"a"});
  s.setField(2, "a", nxArray::doubleScalar(3));
  s.setField(1, "b", nxArray::charRow("mid"));
  EXPECT_EQ(s.fieldNames(), (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(*s.getField(2, "a"), nxArray::doubleScalar(3));
  EXPECT_EQ(*s.getField(1, "b"), nxArray::charRow("mid"));
  EXPECT_TRUE(s.getField(0, "b")->isEmpty());
  EXPECT_TRUE(s.getField(2, "b")->isEmpty());
  EXPECT_EQ(s.getField(0, "c"), nullptr);
  EXPECT_THROW(s.setField(3, "a", nxArray()), std::out_of_range);
  EXPECT_EQ(omGetProperty(s, "b"), nxArray());
  try {
    omGetProperty(s, "c");
    FAIL();
  } catch (const bkmsg::MessageIDException& e) {
    EXPECT_EQ(e.identifier(), "blockara:ncos:UnknownMember");
  }
  // Field order is part of a struct's identity.
  nxArray ab = nxArray::structMatrix(1, 1, {"a", "b"});
  nxArray ba = nxArray::structMatrix(1, 1, {"b", "a"});
  EXPECT_FALSE(ab == ba);
  EXPECT_FALSE(nxArray::doubleMatrix(1, 0, {}) == nxArray::doubleMatrix(0, 1, {}));
  EXPECT_FALSE(nxArray::charRow("") == nxArray::charMatrix(0, 0, ""));
}

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
