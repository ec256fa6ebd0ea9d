#include "src/algorithms/namecheck.h"

#include <gtest/gtest.h>

#include <string>

#include "src/algorithms/codegenfootnotes.h"

namespace bkedittimecheck {
namespace {

TEST(NameCheckTest, SearchByLinesAndWhole) {
  const struct {
    const char* pattern;
    std::string name;
    bool byLines;
    bool whole;
  } cases[] = {
      {"^b", "a\nb", false, false},  // not at a line start after the first piece, not at the start
      {"b", "a\nb", true, true},
      {"^a", "a\nb", true, true},
      {"^$", "x\n\ny", false, false},  // the empty middle piece is not a beginning of line
      {"x*", "a\n\nb", true, true},    // matches the empty string on the first piece already
      {"^b", "a\r\nb", false, false},  // CR LF gives an empty piece between
      {"[ ]", "has blank", true, true},
      {"", "anything", true, true},  // the empty expression finds a match in every name
      {"z", std::string("ab\0z", 4), true, false},  // the whole search stops at a zero byte
  };
  for (const auto& c : cases) {
    const boost::regex expression(c.pattern);
    EXPECT_EQ(NameCheck::searchByLines(expression, c.name), c.byLines) << c.pattern;
    EXPECT_EQ(NameCheck::searchWhole(expression, c.name), c.whole) << c.pattern;
  }
}

TEST(NameCheckTest, FootnoteTokensKeepBlanksAndDropEmptyTokens) {
  EXPECT_EQ(footnoteTokens("FnA,,FnB, FnC,"), (std::vector<std::string>{"FnA", "FnB", " FnC"}));
  EXPECT_TRUE(footnoteTokens("").empty());
}

}  // namespace
}  // namespace bkedittimecheck
