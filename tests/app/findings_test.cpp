#include "app/findings.h"

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <sstream>

namespace blockara::app {
namespace {

Finding finding(std::string path, std::string checkId, std::string type, std::string category,
                std::string message = "m.", std::string rationale = "") {
  return {path, checkId, type, category, message, "h.", !rationale.empty(), rationale};
}

const std::vector<Finding> kFindings = {
    finding("M/b", "orvanta.kabe.kb_0402", "BlockNameViolation", "RAWARNING"),
    finding("M/a \"q\"", "orvanta.blockara.StateAccessorPathViolation",
            "StateAccessorPathViolation", "EDITTIME_ERROR", "Sentence."),
    finding("M/c", "orvanta.kabe.kb_0402", "BlockNameViolation", "RAWARNING", "m.", "why"),
};

TEST(FindingsTest, TextIsOneSortedTabSeparatedLinePerFindingNotExempt) {
  EXPECT_EQ(formatText(kFindings),
            "M/a \"q\"\torvanta.blockara.StateAccessorPathViolation\tStateAccessorPathViolation\t"
            "EDITTIME_ERROR\tSentence.\th.\n"
            "M/b\torvanta.kabe.kb_0402\tBlockNameViolation\tRAWARNING\tm.\th.\n");
  EXPECT_EQ(formatText({}), "");
  // A field that holds a separator or a line break stays in its field and on its line.
  EXPECT_EQ(formatText({finding("M/a\tb\nc", "id", "T\\x\r", "RAERROR", "a\tb")}),
            "M/a\\tb\\nc\tid\tT\\\\x\\r\tRAERROR\ta\\tb\th.\n");
}

TEST(FindingsTest, EscapesKeepEveryFieldOnOneLineAndHtmlWellFormed) {
  struct Case {
    std::string raw, text, html;
  };
  const Case cases[] = {
      {"plain G\xc3\xa4in", "plain G\xc3\xa4in", "plain G\xc3\xa4in"},
      {"a\tb\nc\rd", "a\\tb\\nc\\rd", "a\tb\nc\rd"},
      {"back\\slash", "back\\\\slash", "back\\slash"},
      {std::string("nul\0bel\x07"
                   "esc\x1b",
                   12),
       "nul\\x00bel\\x07esc\\x1B", "nul\\x00bel\\x07esc\\x1B"},
      {"<a & 'b' \"c\">", "<a & 'b' \"c\">", "&lt;a &amp; &#39;b&#39; &quot;c&quot;&gt;"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(textEscape(c.raw), c.text) << c.raw;
    EXPECT_EQ(htmlEscape(c.raw), c.html) << c.raw;
  }
}

TEST(FindingsTest, SarifCarriesRuleLevelMessageAndLogicalLocation) {
  std::istringstream in(formatSarif(kFindings, "models/m.bkd"));
  boost::property_tree::ptree log;
  boost::property_tree::read_json(in, log);
  EXPECT_EQ(log.get<std::string>("version"), "2.1.0");
  const auto& run = log.get_child("runs").front().second;
  EXPECT_EQ(run.get_child("tool.driver.rules").size(), 2u);
  const auto& results = run.get_child("results");
  ASSERT_EQ(results.size(), 2u);
  const auto& first = results.front().second;
  EXPECT_EQ(first.get<std::string>("ruleId"), "orvanta.blockara.StateAccessorPathViolation");
  EXPECT_EQ(first.get<std::string>("level"), "error");
  EXPECT_EQ(first.get<std::string>("message.text"), "Sentence.");
  const auto& location = first.get_child("locations").front().second;
  EXPECT_EQ(location.get_child("logicalLocations").front().second.get<std::string>(
                "fullyQualifiedName"),
            "M/a \"q\"");
  EXPECT_EQ(location.get<std::string>("physicalLocation.artifactLocation.uri"), "models/m.bkd");
  EXPECT_EQ(std::next(results.begin())->second.get<std::string>("level"), "warning");
}

TEST(FindingsTest, CategoriesFollowSeverities) {
  EXPECT_EQ(categoryOfSeverity(1), "EDITTIME_ERROR");
  EXPECT_EQ(categoryOfSeverity(3), "RAWARNING");
  EXPECT_EQ(categoryOfSeverity(4), "RAERROR");
  EXPECT_EQ(categoryOfSeverity(0), "EDITTIME_WARNING");
  EXPECT_EQ(categoryOfSeverity(5), "EDITTIME_WARNING");
  EXPECT_TRUE(isErrorCategory("RAERROR"));
  EXPECT_FALSE(isErrorCategory("RAWARNING"));
}

}  // namespace
}  // namespace blockara::app
