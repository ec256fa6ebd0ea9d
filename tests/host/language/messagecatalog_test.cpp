#include <gtest/gtest.h>

#include <fstream>
#include <regex>

#include "host/language/messagecatalog.h"
#include "host/language/messageid.h"

namespace {

BKMSG_DECLARE_ERROR(InvalidBlockParameterName, "bkedittimecheck:edittimecheck");
BKMSG_DECLARE_ERROR(NotInCatalogue, "bkedittimecheck:edittimecheck");

TEST(MessageCatalogTest, SubstitutesArgumentsAndFormsIdentifiers) {
  using bkmsg::MessageCatalog;
  EXPECT_EQ(MessageCatalog::substitute("a {0} b {1} {0} {2} {x}", {"X", "Y"}), "a X b Y X {2} {x}");
  MessageCatalog::instance().load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  InvalidBlockParameterName e(std::u16string(u"Gain"), "Sum");
  EXPECT_EQ(e.identifier(), "bkedittimecheck:edittimecheck:InvalidBlockParameterName");
  EXPECT_EQ(std::string(e.what()).rfind(e.identifier() + ": ", 0), 0u);
  EXPECT_NE(e.text().find("Gain"), std::string::npos);
  EXPECT_NE(e.text().find("Sum"), std::string::npos);
  NotInCatalogue n("a", "b");
  EXPECT_STREQ(n.what(), "bkedittimecheck:edittimecheck:NotInCatalogue: a, b");
}

TEST(MessageCatalogTest, CatalogueHasATextForEveryEngineIdentifier) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  catalog.load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  for (const char* id : {"UnknownBuiltInBlock", "InvalidBlockParameterName",
                         "UnsupportedNumberOfConstraintValues", "UnsupportedValueOperator",
                         "InvalidParameterValueInput", "UnsupportedParamValue",
                         "InvalidParameterValueNonStruct", "UnsupportedPreReqType"}) {
    EXPECT_TRUE(catalog.contains(std::string("bkedittimecheck:edittimecheck:") + id)) << id;
  }
  for (const char* id : {"InvalidObject", "UnknownMember", "ReadOnlyProperty", "NoMatchingSignature",
                         "NotConstructible", "UnknownClass", "ConversionFailed"}) {
    EXPECT_TRUE(catalog.contains(std::string("blockara:ncos:") + id)) << id;
  }
}

TEST(MessageCatalogTest, BadCatalogueNamesTheFileAndKeepsTexts) {
  auto& catalog = bkmsg::MessageCatalog::instance();
  catalog.load(std::string(BKETC_RESOURCE_DIR) + "/messages.xml");
  std::size_t before = catalog.identifiers().size();
  std::string path = ::testing::TempDir() + "/broken.xml";
  std::ofstream(path) << "<catalogue><component name='x'><message id='A'>t</message>";
  try {
    catalog.load(path);
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_NE(std::string(e.what()).find(path), std::string::npos);
  }
  EXPECT_EQ(catalog.identifiers().size(), before);
}

}  // namespace
