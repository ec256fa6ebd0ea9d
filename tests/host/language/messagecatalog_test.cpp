#include "host/language/messagecatalog.h"

#include <gtest/gtest.h>

#include <fstream>

#include "host/language/messageid.h"
#include "host/xml/xmlreader.h"
#include "tests/host/messageof.h"

namespace {

BKMSG_DECLARE_ERROR(InvalidBlockParameterName, "bkedittimecheck:edittimecheck");
BKMSG_DECLARE_ERROR(NotInCatalogue, "bkedittimecheck:edittimecheck");

TEST(MessageCatalogTest, TheCatalogueCoversEveryIdentifierAndMessagesBeginWithTheirs) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  catalog.load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  InvalidBlockParameterName e(std::u16string(u"Gain"), "Sum");
  EXPECT_EQ(e.identifier(), "bkedittimecheck:edittimecheck:InvalidBlockParameterName");
  EXPECT_EQ(std::string(e.what()).rfind(e.identifier() + ": ", 0), 0u);
  EXPECT_NE(e.text().find("Gain"), std::string::npos);
  EXPECT_NE(e.text().find("Sum"), std::string::npos);
  NotInCatalogue n("a", "b");
  EXPECT_STREQ(n.what(), "bkedittimecheck:edittimecheck:NotInCatalogue: a, b");
  // A text for every engine and binding identifier.
  for (const char* id :
       {"UnknownBuiltInBlock", "InvalidBlockParameterName", "UnsupportedNumberOfConstraintValues",
        "UnsupportedValueOperator", "InvalidParameterValueInput", "UnsupportedParamValue",
        "InvalidParameterValueNonStruct", "UnsupportedPreReqType"}) {
    EXPECT_TRUE(catalog.contains(std::string("bkedittimecheck:edittimecheck:") + id)) << id;
  }
  for (const char* id :
       {"InvalidObject", "UnknownMember", "ReadOnlyProperty", "NoMatchingSignature",
        "NotConstructible", "UnknownClass", "ConversionFailed"}) {
    EXPECT_TRUE(catalog.contains(std::string("blockara:ncos:") + id)) << id;
  }
}

TEST(MessageCatalogTest, SubstitutionReplacesOnlyKnownArgumentNumbers) {
  using bkmsg::MessageCatalog;
  std::vector<std::string> eleven;
  for (int i = 0; i < 11; ++i) eleven.push_back("a" + std::to_string(i));
  struct Case {
    const char* pattern;
    std::vector<std::string> args;
    const char* expected;
  };
  const Case cases[] = {
      {"{0}{0}", {"x"}, "xx"},
      {"{1} before {0}", {"x", "y"}, "y before x"},
      {"{10}", eleven, "a10"},
      {"{}", {"x"}, "{}"},
      {"{0", {"x"}, "{0"},
      {"{-1}", {"x"}, "{-1}"},
      {"{ 0}", {"x"}, "{ 0}"},
      {"{1234}", {"x"}, "{1234}"},
      {"{0}-{1}", {"{1}", "b"}, "{1}-b"},  // an argument is not substituted again
      {"", {"x"}, ""},
      {"}{0}{", {"x"}, "}x{"},
      {"a {0} b {1} {0} {2} {x}", {"X", "Y"}, "a X b Y X {2} {x}"},
  };
  for (const Case& c : cases)
    EXPECT_EQ(MessageCatalog::substitute(c.pattern, c.args), c.expected) << c.pattern;
}

TEST(MessageCatalogTest, LaterFilesWinAndMissingTextsShowArguments) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  std::string path = ::testing::TempDir() + "/override.xml";
  std::ofstream(path) << "<catalogue><component name='bkedittimecheck:edittimecheck'>"
                         "<message id='InvalidBlockParameterName'>Other {1}/{0}</message>"
                         "</component><ignored/></catalogue>";
  catalog.load(path);
  InvalidBlockParameterName e(std::u16string(u"G\u00e4in"), "Sum");
  EXPECT_STREQ(e.what(),
               "bkedittimecheck:edittimecheck:InvalidBlockParameterName: Other Sum/G\xc3\xa4in");
  EXPECT_EQ(e.arguments(), (std::vector<std::string>{"G\xc3\xa4in", "Sum"}));
  EXPECT_EQ(catalog.text("no:such:Id"), "");
  EXPECT_EQ(catalog.format("no:such:Id", {}), "");
  // Without text or arguments the message is the identifier alone.
  EXPECT_STREQ(NotInCatalogue().what(), "bkedittimecheck:edittimecheck:NotInCatalogue");
}

TEST(MessageCatalogTest, EveryMalformedCatalogueIsRefusedWholeAndKeepsTheTextsBefore) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  catalog.load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  const std::vector<std::string> before = catalog.identifiers();
  struct Case {
    const char* content;
    const char* problem;
  };
  const Case cases[] = {
      {"<catalogue><component name='x'>", "cannot read message catalogue"},
      {"not xml at all <", "cannot read message catalogue"},
      {"<other/>", "no <catalogue> element"},
      {"<catalogue><component><message id='A'>t</message></component></catalogue>",
       "<component> without a name"},
      {"<catalogue><component name='x:y'><message id='Good'>t</message><message>t</message>"
       "</component></catalogue>",
       "<message> without an id in component x:y"},
  };
  int n = 0;
  for (const Case& c : cases) {
    std::string path = ::testing::TempDir() + "/malformed" + std::to_string(n++) + ".xml";
    std::ofstream(path) << c.content;
    const std::string what = messageOf<std::runtime_error>([&] { catalog.load(path); });
    EXPECT_EQ(what.rfind(path + ": ", 0), 0u) << what;
    EXPECT_NE(what.find(c.problem), std::string::npos) << what;
  }
  // The good message before the bad one was not kept either.
  EXPECT_FALSE(catalog.contains("x:y:Good"));
  EXPECT_EQ(catalog.identifiers(), before);
  std::string missing = ::testing::TempDir() + "/absent-catalogue.xml";
  EXPECT_NE(messageOf<std::runtime_error>([&] { catalog.load(missing); }).find(missing),
            std::string::npos);
}

TEST(MessageCatalogTest, HostileCataloguesAreRefusedBeforeParsing) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  const std::size_t before = catalog.identifiers().size();
  const std::string deep = ::testing::TempDir() + "/deep-catalogue.xml";
  {
    std::ofstream out(deep);
    out << "<catalogue>\n";
    for (int i = 0; i < 100000; ++i) out << "<component name='c'>";
  }
  const std::string big = ::testing::TempDir() + "/big-catalogue.xml";
  std::ofstream(big) << "<catalogue>" << std::string(100, ' ') << "</catalogue>";
  for (const auto& [file, problem] : {std::pair{deep, "elements nested deeper than 4096 levels"},
                                      std::pair{big, "more than 64"}}) {
    if (file == big) blockara::xml::setLimits({4096, 64});
    const std::string what = messageOf<std::runtime_error>([&] { catalog.load(file); });
    EXPECT_EQ(what.rfind(file + ": ", 0), 0u) << what;
    EXPECT_NE(what.find(problem), std::string::npos) << what;
  }
  blockara::xml::setLimits({});
  EXPECT_EQ(catalog.identifiers().size(), before);
}

}  // namespace
