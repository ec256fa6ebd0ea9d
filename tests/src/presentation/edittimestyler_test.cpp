#include "src/presentation/edittimestyler.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/style/glow.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {
namespace {

namespace ds = diagram::style;

std::shared_ptr<EditTimeViolation> record(double handle, std::uint32_t severity,
                                          const std::string& checkId = "c",
                                          bool commented = false) {
  auto v = std::make_shared<EditTimeViolation>(checkId, "T", severity, handle);
  v->isCommented = commented ? 1 : 0;
  return v;
}

class EditTimeStylerTest : public ::testing::Test {
 protected:
  EditTimeStylerTest()
      : styler(*createEditTimeStyler()),
        styling(
            store, styler, [this](double h) { return dead.count(h) == 0; },
            [this](double, const EditTimeViolation& v) { return excluded.count(v.checkId) > 0; }) {}

  std::vector<std::wstring> classes(double handle) const { return styler.classesOf(handle); }

  ViolationDatabase store;
  ds::Styler& styler;
  std::set<double> dead;
  std::set<std::string> excluded;
  EditTimeStyling styling;
};

using Classes = std::vector<std::wstring>;

TEST_F(EditTimeStylerTest, OneStylerWithWarnThenErrorRulesForTheWholeProcess) {
  EXPECT_EQ(createEditTimeStyler(), &styler);  // a second engine finds it by name
  ASSERT_EQ(styler.ruleCount(), 2u);
  EXPECT_EQ(styler.ruleSelector(0).className(), L"Warn");
  EXPECT_EQ(styler.ruleSelector(1).className(), L"Error");
  const auto* glow = std::any_cast<ds::Glow>(styler.ruleStyle(0).get("Glow"));
  ASSERT_NE(glow, nullptr);
  EXPECT_EQ(*glow, ds::Glow(ds::Color(0.9, 0.5, 0.0, 0.9), 10, false, 1.0));
  EXPECT_EQ(*std::any_cast<ds::Glow>(styler.ruleStyle(1).get("Glow")),
            ds::Glow(ds::Color(1.0, 0.0, 0.0, 1.0), 10, false, 1.0));
}

TEST_F(EditTimeStylerTest, StylingPassStepOrder) {
  styling.applyStyling();  // an empty store calls the service not at all
  EXPECT_EQ(styler.applyCalls() + styler.removeCalls(), 0u);

  store.add(record(1, 0));        // edit-time warning
  store.add(record(2, 1));        // edit-time error
  store.add(record(3, 3));        // rule-auditor warning
  store.add(record(4, 3, "ex"));  // exempted rule-auditor warning
  store.add(record(5, 0));        // edit-time warning and exempted auditor warning
  store.add(record(5, 3, "ex"));
  store.add(record(6, 4, "ex"));       // exempted rule-auditor error
  store.add(record(7, 4));             // rule-auditor error
  store.add(record(8, 0, "c", true));  // commented edit-time warning
  store.add(record(9, 5));             // severity 5 takes part in no step
  store.add(record(10, 3));            // a block deleted since
  excluded = {"ex"};
  dead = {10};
  styling.applyStyling();
  EXPECT_EQ(classes(1), Classes{L"Warn"});
  EXPECT_EQ(classes(2), Classes{L"Error"});
  EXPECT_EQ(classes(3), Classes{L"Warn"});
  EXPECT_EQ(classes(4), Classes{});
  EXPECT_EQ(classes(5), Classes{});  // step 3 takes back what step 2 gave
  EXPECT_EQ(classes(6), Classes{L"Error"});
  EXPECT_EQ((classes(7)), (Classes{L"Error", L"Warn"}));
  EXPECT_EQ(classes(8), Classes{});
  EXPECT_EQ(classes(9), Classes{});
  EXPECT_EQ(classes(10), Classes{});

  // A removed record leaves its handle on the pending clears: the next pass takes it off first.
  store.remove(record(1, 0));
  styling.applyStyling();
  EXPECT_EQ(classes(1), Classes{});
  EXPECT_TRUE(store.pendingClears().empty());
}

TEST_F(EditTimeStylerTest, LiveAuditorWarningBehindACommentedOne) {
  store.add(record(1, 3, "a", true));
  store.add(record(1, 3, "b", false));
  styling.applyStyling();
  EXPECT_EQ(classes(1), Classes{L"Warn"});
}

TEST_F(EditTimeStylerTest, RemovalPassByCode) {
  const auto fill = [this] {
    store.add(record(1, 3));  // only a rule-auditor warning
    store.add(record(2, 3));  // rule-auditor and edit-time warnings
    store.add(record(2, 0));
    store.add(record(3, 1));  // two errors
    store.add(record(3, 4));
    styling.applyStyling();
  };
  fill();
  styling.removeStyling(8);
  EXPECT_EQ(classes(1), Classes{});
  EXPECT_EQ(classes(2), Classes{L"Warn"});  // keeps the edit-time warning's glow
  EXPECT_EQ(store.auditorViolations().size(), 0u);
  EXPECT_EQ(store.violationsOf(2).size(), 1u);

  fill();
  styling.removeStyling(11);
  EXPECT_EQ(classes(3), Classes{L"Warn"});      // the rule-auditor error's "Warn" is not touched
  EXPECT_EQ(store.violationsOf(3).size(), 1u);  // one error per call

  fill();
  styling.removeStyling(13);
  EXPECT_EQ(store.blocksWithEditTimeWarnings().size(), 0u);

  fill();
  styling.removeStyling(2);  // any other code: classes off, store unchanged
  EXPECT_EQ(classes(2), Classes{});
  EXPECT_EQ(classes(3), Classes{L"Warn"});
  EXPECT_EQ(store.violationsOf(3).size(), 2u);
}

TEST_F(EditTimeStylerTest, BlockStringsAndClearingOneBlock) {
  store.add(record(1, 1, "c", true));  // commented edit-time error still reports
  store.add(record(1, 3, "ex"));
  store.add(record(1, 5, "five"));
  excluded = {"ex"};
  std::vector<std::string> strings = styling.getBlockViolationStrings(1);
  std::multiset<std::string> got(strings.begin(), strings.end());
  EXPECT_EQ(strings.size(), 6u);
  EXPECT_EQ(got.count("EDITTIME_ERROR"), 1u);
  EXPECT_EQ(got.count("EDITTIME_WARNING"), 1u);
  EXPECT_EQ(got.count("RAWARNING"), 0u);
  dead = {1};
  EXPECT_TRUE(styling.getBlockViolationStrings(1).empty());

  dead.clear();
  store.add(record(2, 0));
  styling.applyStyling();
  styling.removeBlockResults(2);
  EXPECT_EQ(classes(2), Classes{});
  EXPECT_TRUE(store.violationsOf(2).empty());
  EXPECT_STREQ(violationCategory(4), "RAERROR");
  EXPECT_STREQ(violationCategory(0), "EDITTIME_WARNING");
}

}  // namespace
}  // namespace bkedittimecheck
