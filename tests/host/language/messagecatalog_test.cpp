#include "host/language/messagecatalog.h"

#include <gtest/gtest.h>

#include <fstream>

#include "host/language/messageid.h"
#include "tests/host/messageof.h"

namespace {

BKMSG_DECLARE_ERROR(InvalidBlockParameterName, "bkedittimecheck:edittimecheck");
BKMSG_DECLARE_ERROR(NotInCatalogue, "bkedittimecheck:edittimecheck");

class MessageCatalogTest : public ::testing::Test {
 protected:
  void SetUp() override { catalog.load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml"); }
  /// Writes `content` to a fresh file in the test directory; its path.
  static std::string file(const std::string& content) {
    static int n = 0;
    std::string path = ::testing::TempDir() + "/catalogue" + std::to_string(n++) + ".xml";
    std::ofstream(path) << content;
    return path;
  }
  bkmsg::MessageCatalog& catalog = bkmsg::MessageCatalog::instance();
};

TEST_F(MessageCatalogTest, TheCatalogueCoversEveryIdentifierAndMessagesBeginWithTheirs) {
  EXPECT_STREQ(NotInCatalogue("a", "b").what(),
               "bkedittimecheck:edittimecheck:NotInCatalogue: a, b");
  // A text for every engine and binding identifier.
  for (const char* id :
       {"UnknownBuiltInBlock", "InvalidBlockParameterName", "UnsupportedNumberOfConstraintValues",
        "UnsupportedValueOperator", "InvalidParameterValueInput", "UnsupportedParamValue",
        "InvalidParameterValueNonStruct", "UnsupportedPreReqType"}) {
    EXPECT_TRUE(catalog.contains(std::string("bkedittimecheck:edittimecheck:") + id)) << id;
  }
  for (const char* id : {"InvalidObject", "UnknownMember", "ReadOnlyProperty",
                         "NoMatchingSignature", "NotConstructible", "UnknownClass",
                         "ConversionFailed"}) {
    EXPECT_TRUE(catalog.contains(std::string("blockara:ncos:") + id)) << id;
  }
}

TEST_F(MessageCatalogTest, SubstitutionReplacesOnlyKnownArgumentNumbers) {
  std::vector<std::string> eleven;
  for (int i = 0; i < 11; ++i) eleven.push_back("a" + std::to_string(i));
  struct Case {
    const char* pattern;
    std::vector<std::string> args;
    const char* expected;
  };
  const Case cases[] = {
      {"{0}{0}", {"x"}, "xx"},      {"{1} before {0}", {"x", "y"}, "y before x"},
      {"{10}", eleven, "a10"},      {"{}", {"x"}, "{}"},
      {"{0", {"x"}, "{0"},          {"{-1}", {"x"}, "{-1}"},
      {"{ 0}", {"x"}, "{ 0}"},      {"{1234}", {"x"}, "{1234}"},
      {"", {"x"}, ""},              {"}{0}{", {"x"}, "}x{"},
      {"{0}-{1}", {"{1}", "b"}, "{1}-b"},  // an argument is not substituted again
      {"a {0} b {1} {0} {2} {x}", {"X", "Y"}, "a X b Y X {2} {x}"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(bkmsg::MessageCatalog::substitute(c.pattern, c.args), c.expected) << c.pattern;
}

TEST_F(MessageCatalogTest, LaterFilesWinAndMissingTextsShowArguments) {
  catalog.load(file("<catalogue><component name='bkedittimecheck:edittimecheck'>"
                    "<message id='InvalidBlockParameterName'>Other {1}/{0}</message>"
                    "</component><ignored/></catalogue>"));
  InvalidBlockParameterName e(std::u16string(u"G\u00e4in"), "Sum");
  EXPECT_STREQ(e.what(),
               "bkedittimecheck:edittimecheck:InvalidBlockParameterName: Other Sum/G\xc3\xa4in");
  EXPECT_EQ(e.arguments(), (std::vector<std::string>{"G\xc3\xa4in", "Sum"}));
  EXPECT_EQ(catalog.text("no:such:Id"), "");
  EXPECT_EQ(catalog.format("no:such:Id", {}), "");
  // Without text or arguments the message is the identifier alone.
  EXPECT_STREQ(NotInCatalogue().what(), "bkedittimecheck:edittimecheck:NotInCatalogue");
}

TEST_F(MessageCatalogTest, EveryMalformedCatalogueIsRefusedWholeAndKeepsTheTextsBefore) {
  const std::vector<std::string> before = catalog.identifiers();
  std::string deep = "<catalogue>\n";
  for (int i = 0; i < 100000; ++i) deep += "<component name='c'>";
  const std::pair<std::string, const char*> cases[] = {
      {"<catalogue><component name='x'>", "cannot read message catalogue"},
      {"not xml at all <", "cannot read message catalogue"},
      {"<other/>", "no <catalogue> element"},
      {"<catalogue><component><message id='A'>t</message></component></catalogue>",
       "<component> without a name"},
      // The good message before the bad one is not kept either.
      {"<catalogue><component name='x:y'><message id='Good'>t</message><message>t</message>"
       "</component></catalogue>",
       "<message> without an id in component x:y"},
      // Refused before parsing, which would exhaust the stack.
      {deep, "elements nested deeper than 4096 levels (line 2)"},
  };
  for (const auto& [content, problem] : cases) {
    const std::string path = file(content);
    const std::string what = messageOf<std::runtime_error>([&] { catalog.load(path); });
    EXPECT_EQ(what.rfind(path + ": ", 0), 0u) << what;
    EXPECT_NE(what.find(problem), std::string::npos) << what;
  }
  EXPECT_EQ(catalog.identifiers(), before);
  std::string missing = ::testing::TempDir() + "/absent-catalogue.xml";
  EXPECT_NE(messageOf<std::runtime_error>([&] { catalog.load(missing); }).find(missing),
            std::string::npos);
}

}  // namespace
