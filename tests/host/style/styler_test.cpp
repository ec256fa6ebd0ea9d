#include "host/style/styler.h"

#include <gtest/gtest.h>

#include <boost/any.hpp>
#include <limits>
#include <stdexcept>

namespace diagram::style {
namespace {

const Glow red(Color(1.0, 0.0, 0.0, 1.0), 10, false, 1.0);
const Glow orange(Color(0.9, 0.5, 0.0, 0.9), 10, false, 1.0);
using Glows = std::vector<std::optional<Glow>>;
using Classes = std::vector<std::wstring>;

/// A styler with a rule per class giving its glow, in order; active when `active`.
Styler* makeStyler(const std::wstring& name, double priority,
                   std::vector<std::pair<std::wstring, std::any>> rules, bool active = true) {
  Styler* styler = createStyler(name, L"", priority);
  for (const auto& [cls, glow] : rules) {
    Style style;
    style.set("Glow", glow);
    styler->addRule(ClassSelector(cls, L""), style);
  }
  if (active) styler->activate();
  return styler;
}

TEST(StylerTest, ClassesDecideTheGlowAndTheLaterRuleWins) {
  // A boost::any holding the value is understood as well as the value.
  Styler* styler = makeStyler(L"Checks", 0.0, {{L"Warn", orange}, {L"Error", boost::any(red)}});
  for (const auto& [handle, cls] : {std::pair{1.5, L"Warn"}, {2.5, L"Error"}, {3.5, L"Warn"},
                                    {3.5, L"Error"}, {4.5, L"Unruled"}})
    styler->applyClass(handle, cls);
  const auto glows = [&] {
    Glows out;
    for (double h : {1.5, 2.5, 3.5, 4.5, 9.5}) out.push_back(styler->glowOf(h));
    return out;
  };
  // Both classes on 3.5: "Error" was added last.
  EXPECT_EQ(glows(), (Glows{orange, red, red, std::nullopt, std::nullopt}));
  EXPECT_EQ(styler->classesOf(3.5), (Classes{L"Error", L"Warn"}));
  styler->removeClass(3.5, L"Error");
  EXPECT_EQ(styler->glowOf(3.5), orange);
  styler->removeClass(3.5, L"Warn");
  EXPECT_TRUE(styler->classesOf(3.5).empty());
  EXPECT_EQ(styler->styledHandles(), (std::vector<double>{1.5, 2.5, 4.5}));
  EXPECT_EQ(std::pair(styler->applyCalls(), styler->removeCalls()), std::pair(5ul, 2ul));
}

TEST(StylerTest, TheServiceKeepsOneStylerPerNameAndDrawsOnlyActiveOnes) {
  EXPECT_EQ(getStyler(L"Checks"), nullptr);
  Styler* created = makeStyler(L"Checks", 2.0, {{L"Error", red}}, false);
  EXPECT_EQ(getStyler(L"Checks"), created);
  EXPECT_EQ(createStyler(L"Checks", L"other", 5.0), created);
  created->applyClass(7.0, L"Error");
  EXPECT_EQ(created->glowOf(7.0), red);
  EXPECT_EQ(glowOf(7.0), std::nullopt);  // not activated yet
  created->activate();
  EXPECT_EQ(glowOf(7.0), red);
  // A second styler of lower priority marks the same block: the first still wins the glow,
  // and the classes of both are reported.
  makeStyler(L"Other", 1.0, {{L"Hint", orange}})->applyClass(7.0, L"Hint");
  EXPECT_EQ(glowOf(7.0), red);
  EXPECT_EQ(classesOf(7.0), (Classes{L"Error", L"Hint"}));
  EXPECT_EQ(stylerNames(), (Classes{L"Checks", L"Other"}));
}

// The observer's reports are followed in the engine's switch tests.
TEST(StylerTest, NaNHandlesAreRefused) {
  Styler* styler = createStyler(L"Watched", L"", 0.0);
  styler->applyClass(2.0, L"Warn");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(styler->applyClass(nan, L"Warn"), std::invalid_argument);
  styler->removeClass(nan, L"Warn");  // must not touch block 2
  EXPECT_TRUE(styler->classesOf(nan).empty());
  EXPECT_EQ(styler->styledHandles(), (std::vector<double>{2.0}));
  EXPECT_EQ(styler->classesOf(2.0), (Classes{L"Warn"}));
}

}  // namespace
}  // namespace diagram::style
