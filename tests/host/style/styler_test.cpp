#include "host/style/styler.h"

#include <gtest/gtest.h>

#include <boost/any.hpp>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace diagram::style {
namespace {

const Glow red(Color(1.0, 0.0, 0.0, 1.0), 10, false, 1.0);
const Glow orange(Color(0.9, 0.5, 0.0, 0.9), 10, false, 1.0);

// A styler with a "Warn" rule and then an "Error" rule, the way a checker sets one up.
Styler* makeTwoRuleStyler(const std::wstring& name) {
  Styler* styler = createStyler(name, L"", 0.0);
  Style warn;
  warn.set("Glow", orange);
  styler->addRule(ClassSelector(L"Warn", L""), warn);
  Style error;
  error.set("Glow", boost::any(red));  // a boost::any holding the value is understood too
  styler->addRule(ClassSelector(L"Error", L""), error);
  styler->activate();
  return styler;
}

TEST(StylerTest, ClassesDecideTheGlowAndTheLaterRuleWins) {
  Styler* styler = makeTwoRuleStyler(L"Checks");
  styler->applyClass(1.5, L"Warn");
  styler->applyClass(2.5, L"Error");
  styler->applyClass(3.5, L"Warn");
  styler->applyClass(3.5, L"Error");
  styler->applyClass(4.5, L"Unruled");
  EXPECT_EQ(styler->glowOf(1.5), orange);
  EXPECT_EQ(styler->glowOf(2.5), red);
  EXPECT_EQ(styler->glowOf(3.5), red);  // both classes: "Error" was added last
  EXPECT_EQ(styler->glowOf(4.5), std::nullopt);
  EXPECT_EQ(styler->glowOf(9.5), std::nullopt);
  EXPECT_EQ(styler->classesOf(3.5), (std::vector<std::wstring>{L"Error", L"Warn"}));

  styler->removeClass(3.5, L"Error");
  EXPECT_EQ(styler->glowOf(3.5), orange);
  styler->removeClass(3.5, L"Warn");
  EXPECT_TRUE(styler->classesOf(3.5).empty());
  EXPECT_EQ(styler->styledHandles(), (std::vector<double>{1.5, 2.5, 4.5}));
  EXPECT_EQ(styler->applyCalls(), 5u);
  EXPECT_EQ(styler->removeCalls(), 2u);
}

TEST(StylerTest, TheServiceKeepsOneStylerPerNameAndDrawsOnlyActiveOnes) {
  EXPECT_EQ(getStyler(L"Checks"), nullptr);
  Styler* created = createStyler(L"Checks", L"about", 2.0);
  EXPECT_EQ(getStyler(L"Checks"), created);
  EXPECT_EQ(createStyler(L"Checks", L"other", 5.0), created);

  Style style;
  style.set("Glow", red);
  created->addRule(ClassSelector(L"Error", L""), style);
  created->applyClass(7.0, L"Error");
  EXPECT_EQ(created->glowOf(7.0), red);
  EXPECT_EQ(glowOf(7.0), std::nullopt);  // not activated yet
  created->activate();
  EXPECT_EQ(glowOf(7.0), red);

  // A second styler of lower priority marks the same block: the first still wins the glow,
  // and the classes of both are reported.
  Styler* other = createStyler(L"Other", L"", 1.0);
  Style glowing;
  glowing.set("Glow", orange);
  other->addRule(ClassSelector(L"Hint", L""), glowing);
  other->activate();
  other->applyClass(7.0, L"Hint");
  EXPECT_EQ(glowOf(7.0), red);
  EXPECT_EQ(classesOf(7.0), (std::vector<std::wstring>{L"Error", L"Hint"}));
  EXPECT_EQ(stylerNames(), (std::vector<std::wstring>{L"Checks", L"Other"}));
}

TEST(StylerTest, ObserverSeesEveryCallAndNaNHandlesAreRefused) {
  Styler* styler = createStyler(L"Watched", L"", 0.0);
  std::vector<std::tuple<double, std::wstring, bool>> seen;
  styler->setObserver(
      [&](double h, const std::wstring& cls, bool applied) { seen.emplace_back(h, cls, applied); });
  styler->applyClass(1.0, L"Warn");
  styler->removeClass(1.0, L"Warn");
  styler->applyClass(2.0, L"Warn");
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_THROW(styler->applyClass(nan, L"Warn"), std::invalid_argument);
  styler->removeClass(nan, L"Warn");  // must not touch block 2
  EXPECT_TRUE(styler->classesOf(nan).empty());
  ASSERT_EQ(seen.size(), 4u);
  EXPECT_EQ(seen[0], std::make_tuple(1.0, std::wstring(L"Warn"), true));
  EXPECT_EQ(seen[1], std::make_tuple(1.0, std::wstring(L"Warn"), false));
  EXPECT_EQ(styler->styledHandles(), (std::vector<double>{2.0}));
  EXPECT_EQ(styler->classesOf(2.0), (std::vector<std::wstring>{L"Warn"}));
}

}  // namespace
}  // namespace diagram::style
