#include "host/xml/xmlreader.h"

#include <gtest/gtest.h>

#include <boost/property_tree/xml_parser.hpp>
#include <filesystem>
#include <fstream>

namespace blockara::xml {
namespace {

namespace pt = boost::property_tree;

// The limits a test sets, restored afterwards.
class XmlReaderTest : public ::testing::Test {
 protected:
  void TearDown() override { setLimits(Limits{}); }
};

// What reading `text` gives: "ok" or "LINE: MESSAGE" of the refusal, which must name the origin.
std::string outcome(const std::string& text) {
  try {
    readString(text, "t.xml");
    return "ok";
  } catch (const pt::xml_parser_error& e) {
    EXPECT_EQ(e.filename(), "t.xml");
    return std::to_string(e.line()) + ": " + e.message();
  }
}

TEST_F(XmlReaderTest, NestingIsCountedAsTheReaderWouldNestAndRefusedPastTheLimit) {
  setLimits({2, 1000});
  struct Case {
    std::string text;
    std::string expected;  // "ok", or the start of the outcome
  };
  const Case cases[] = {
      {"<a><b></b><b/></a>", "ok"}, {"<a><b><c/></b></a>", "ok"},  // <c/> adds no level
      {"<a>\n<b>\n<c></c></b></a>", "3: elements nested deeper than 2 levels"},
      // Markup the reader skips whole adds no level, also with tags inside it.
      {"<?xml version=\"1.0\"?><!DOCTYPE a [<!ELEMENT a ANY>]><a x=\"<b><c>\" y='>'>"
       "<!-- <b><c> --><![CDATA[<b><c>]]><?pi <b><c>?><b/></a>",
       "ok"},
      // The reader ends an unknown declaration at its first '>': what follows counts.
      {"<!x[><a><b><c></c></b></a>]>", "1: elements nested"},
      // Stray closing tags never make room for deeper nesting.
      {"</x></x></x><a><b><c></c></b></a>", "1: elements nested"},
      {"<a>\n<b>", "2: unexpected end of data"},  // the reader's own refusal, with its line
  };
  // The default limit against nesting that would exhaust the stack is the batch check's refusals'.
  for (const Case& c : cases) {
    EXPECT_EQ(outcome(c.text).rfind(c.expected, 0), 0u) << c.text << " -> " << outcome(c.text);
  }
}

TEST_F(XmlReaderTest, SizeMissingFilesAndFlagsAreHandledAsDocumented) {
  const auto dir = std::filesystem::path(::testing::TempDir()) / "xmlreader";
  std::filesystem::create_directories(dir);
  std::ofstream(dir / "big.xml") << "<a>0123456789</a>";
  std::ofstream(dir / "ok.xml") << "<a><!-- c --><b>1</b></a>";
  setLimits({10, 16});
  EXPECT_EQ(outcome("<a>0123456789</a>"), "0: the text has 17 bytes, more than 16");
  const auto refusal = [](const std::filesystem::path& file) {
    try {
      readFile(file);
      return std::string("ok");
    } catch (const pt::xml_parser_error& e) {
      EXPECT_EQ(e.filename(), file.string());
      return e.message();
    }
  };
  EXPECT_EQ(refusal(dir / "big.xml"), "the text has 17 bytes, more than 16");
  for (const auto& missing : {dir / "absent.xml", dir})
    EXPECT_EQ(refusal(missing), "cannot open file");
  setLimits({10, 100});
  EXPECT_EQ(readFile(dir / "ok.xml", pt::xml_parser::no_comments).get_child("a").size(), 1u);
  EXPECT_EQ(readFile(dir / "ok.xml").get_child("a").size(), 2u);
  EXPECT_THROW(setLimits({0, 10}), std::invalid_argument);
  EXPECT_THROW(setLimits({10, 0}), std::invalid_argument);
  EXPECT_EQ(limits().maxBytes, 100u);
}

}  // namespace
}  // namespace blockara::xml
