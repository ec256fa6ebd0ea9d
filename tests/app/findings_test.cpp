#include "app/findings.h"
#include "app/sarif.h"

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <sstream>

namespace blockara::app {
namespace {

Finding finding(std::string path, std::string checkId, std::string type, std::string category,
                std::string message = "m.", std::string rationale = "") {
  return {path, checkId, type, category, message, "h.", !rationale.empty(), rationale, ""};
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
      {std::string("nul\0bel\x07" "esc\x1b", 12), "nul\\x00bel\\x07esc\\x1B",
       "nul\\x00bel\\x07esc\\x1B"},
      {"<a & 'b' \"c\">", "<a & 'b' \"c\">", "&lt;a &amp; &#39;b&#39; &quot;c&quot;&gt;"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(textEscape(c.raw), c.text) << c.raw;
    EXPECT_EQ(htmlEscape(c.raw), c.html) << c.raw;
  }
}

TEST(FindingsTest, SarifResultsPointIntoTheSourceRootOrAtAnAbsoluteFile) {
  struct Case {
    std::string artifact, root, uri, baseId;
  };
  const Case cases[] = {
      {"/src/models/a b.bkd", "/src", "models/a%20b.bkd", "SRCROOT"},
      {"/src/models/m.bkd", "/src/models/", "m.bkd", "SRCROOT"},
      {"/elsewhere/m.bkd", "/src", "file:///elsewhere/m.bkd", ""},
  };
  for (const Case& c : cases) {
    SarifRun run{c.artifact, c.root, {}, {}, {}, 1, {}};
    std::istringstream in(formatSarif(kFindings, run));
    boost::property_tree::ptree log;
    boost::property_tree::read_json(in, log);
    const auto& results = log.get_child("runs").front().second.get_child("results");
    ASSERT_EQ(results.size(), 3u);
    const auto& first = results.front().second;
    EXPECT_EQ(first.get<std::string>("level"), "error");
    EXPECT_EQ(first.get<std::string>("message.text"), "Sentence. h.");
    const auto& where = first.get_child("locations").front().second;
    EXPECT_EQ(where.get<std::string>("physicalLocation.artifactLocation.uri"), c.uri);
    EXPECT_EQ(where.get<std::string>("physicalLocation.artifactLocation.uriBaseId", ""), c.baseId);
    EXPECT_EQ(std::prev(results.end())->second.get<std::string>("suppressions..justification"),
              "why");
  }
  EXPECT_EQ(utcTimestamp(std::chrono::system_clock::time_point(std::chrono::milliseconds(
                1795423682125))),
            "2026-11-23T08:48:02.125Z");
}

}  // namespace
}  // namespace blockara::app
