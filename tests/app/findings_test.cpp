#include "app/findings.h"

#include <boost/property_tree/json_parser.hpp>
#include <boost/property_tree/ptree.hpp>
#include <gtest/gtest.h>

#include <sstream>

namespace blockara::app {
namespace {

const std::vector<Finding> kFindings = {
    {"M/b", "orvanta.kabe.kb_0402", "BlockNameViolation", "RAWARNING"},
    {"M/a \"q\"", "orvanta.blockara.StateAccessorPathViolation", "StateAccessorPathViolation",
     "EDITTIME_ERROR"},
};

TEST(FindingsTest, TextIsOneSortedTabSeparatedLinePerFinding) {
  EXPECT_EQ(formatText(kFindings),
            "M/a \"q\"\torvanta.blockara.StateAccessorPathViolation\tStateAccessorPathViolation\t"
            "EDITTIME_ERROR\n"
            "M/b\torvanta.kabe.kb_0402\tBlockNameViolation\tRAWARNING\n");
  EXPECT_EQ(formatText({}), "");
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
  EXPECT_EQ(first.get<std::string>("message.text"), "StateAccessorPathViolation");
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
  EXPECT_EQ(htmlEscape("<a & 'b'>"), "&lt;a &amp; &#39;b&#39;&gt;");
}

}  // namespace
}  // namespace blockara::app
