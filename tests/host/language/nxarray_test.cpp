#include <gtest/gtest.h>

#include "host/language/cmddistributor.h"
#include "host/language/nxarray.h"
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

  nxArray s = nxArray::structMatrix(1, 2, {"BlockType"});
  s.setField(1, "MaskType", nxArray::charRow("m"));
  ASSERT_EQ(s.fieldNames().size(), 2u);
  EXPECT_EQ(s.getField(1, "MaskType")->charData(), "m");
  EXPECT_TRUE(s.getField(0, "MaskType")->isEmpty());
  EXPECT_EQ(s.getField(0, "Nope"), nullptr);

  EXPECT_THROW(row.getDouble(0), std::invalid_argument);
  EXPECT_THROW(row.getCell(2), std::out_of_range);
  EXPECT_THROW(nxArray::doubleMatrix(2, 2, {1}), std::invalid_argument);
  EXPECT_THROW(omGetArrayElement(row, 0), std::invalid_argument);
  EXPECT_TRUE(nxArrayProxy().isNull());
  EXPECT_TRUE(nxArrayProxy().array().isEmpty());
}

TEST(NxArrayTest, WideStringsConvert) {
  std::u16string wide = u"Gr\u00fc\u00dfe \U0001F600";
  EXPECT_EQ(toUtf16(toUtf8(wide)), wide);
  EXPECT_EQ(nxArray::charRow(wide).toUtf16String(), wide);
  EXPECT_EQ(toUtf16("\xff"), u"\ufffd");
}

TEST(NxArrayTest, SerializationRoundTripsAndRejectsBadBytes) {
  nxArray s = nxArray::structMatrix(2, 1, {"f"});
  s.setField(0, "f", nxArray::uint32Matrix(1, 2, {1, 2}));
  std::vector<nxArray> arrays = {nxArray(), nxArray::doubleMatrix(2, 1, {1, 2}),
                                 nxArray::logicalMatrix(1, 2, {true, false}),
                                 nxArray::charMatrix(2, 1, "ab"),
                                 nxArray::cellColumn({nxArray::charRow("x")}), s};
  auto bytes = cmddistributor::detail::serializeNxArrays(arrays);
  EXPECT_EQ(cmddistributor::detail::deserializeNxArrays(bytes), arrays);
  for (std::size_t cut = 0; cut < bytes.size(); cut += 3) {
    std::vector<std::uint8_t> truncated(bytes.begin(), bytes.begin() + static_cast<long>(cut));
    EXPECT_THROW(cmddistributor::detail::deserializeNxArrays(truncated), std::runtime_error) << cut;
  }
  EXPECT_THROW(cmddistributor::detail::serializeNxArrays(
                   {nxArray::objectMatrix(0, 0, {})}),
               std::invalid_argument);
}

}  // namespace
