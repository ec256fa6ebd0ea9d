#include "host/model/bksvstring.h"

#include <gtest/gtest.h>

namespace {

TEST(BksvStringTest, ConversionsKeepWellFormedTextAndReplaceEachBadUnit) {
  struct Case {
    std::string utf8;
    std::u16string utf16;
  };
  const Case cases[] = {
      {"", u""},
      {"a\xc3\xa9z", u"a\u00e9z"},
      {"\xf0\x9f\x98\x80", u"\U0001F600"},
      {"\xf4\x8f\xbf\xbf", u"\U0010FFFF"},
      {std::string("nul\0byte", 8), std::u16string(u"nul\0byte", 8)},
      {"\xc3", u"\ufffd"},                                // cut short at the end
      {"\xe2\x82x", u"\ufffd\ufffdx"},                    // cut short before an ASCII byte
      {"\x80", u"\ufffd"},                                // a lone continuation byte
      {"\xc0\x80", u"\ufffd\ufffd"},                      // overlong NUL
      {"\xe0\x80\xaf", u"\ufffd\ufffd\ufffd"},            // overlong '/'
      {"\xf0\x82\x82\xac", u"\ufffd\ufffd\ufffd\ufffd"},  // overlong euro sign
      {"\xed\xa0\x80", u"\ufffd\ufffd\ufffd"},            // an encoded surrogate
      {"\xf4\x90\x80\x80", u"\ufffd\ufffd\ufffd\ufffd"},  // beyond U+10FFFF
      {"\xf8\x88\x80\x80\x80", u"\ufffd\ufffd\ufffd\ufffd\ufffd"},  // five-byte form
  };
  for (const Case& c : cases) EXPECT_EQ(i18n::to_u16string(c.utf8), c.utf16) << c.utf8;
  // UTF-16 encodes pairs and replaces unpaired surrogates.
  const std::pair<std::u16string, std::string> encodings[] = {
      {u"", ""},
      {u"Gr\u00fc\u00dfe", "Gr\xc3\xbc\xc3\x9f" "e"},
      {u"\u07ff\u0800\uffff", "\xdf\xbf\xe0\xa0\x80\xef\xbf\xbf"},
      {u"\U0001F600", "\xf0\x9f\x98\x80"},
      {u"a\xd800", "a\xef\xbf\xbd"},                                   // high surrogate at the end
      {std::u16string(1, char16_t(0xdc00)) + u"b", "\xef\xbf\xbd" "b"},  // low surrogate first
      {std::u16string{0xd800, 0xd800, 0xdc00}, "\xef\xbf\xbd\xf0\x90\x80\x80"},
  };
  for (const auto& [wide, utf8] : encodings) EXPECT_EQ(ConvertUStringToStdString(wide), utf8);
  // What encodes without replacement decodes back to itself.
  const std::u16string wide = u"Gr\u00fc\u00dfe \U0001F600 \u20ac";
  EXPECT_EQ(i18n::to_u16string(ConvertUStringToStdString(wide)), wide);
}

}  // namespace
