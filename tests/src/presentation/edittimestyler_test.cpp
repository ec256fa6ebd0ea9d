#include "src/presentation/edittimestyler.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
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
  EditTimeStylerTest() : styler(*createEditTimeStyler()), styling(store, styler, alive, exempt) {}

  std::vector<std::wstring> classes(double handle) const { return styler.classesOf(handle); }

  ViolationDatabase store;
  ds::Styler& styler;
  std::set<double> dead;
  std::set<std::string> excluded;
  const BlockAlive alive = [this](double h) { return dead.count(h) == 0; };
  const ViolationExcluded exempt = [this](double, const EditTimeViolation& v) {
    return excluded.count(v.checkId) > 0;
  };
  EditTimeStyling styling;
};

using Classes = std::vector<std::wstring>;

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
  store.add(record(11, 3, "a", true));  // a live auditor warning behind a commented one
  store.add(record(11, 3, "b"));
  excluded = {"ex"};
  dead = {10};
  styling.applyStyling();
  // Block 5: step 3 takes back what step 2 gave.
  const std::vector<Classes> expected = {{L"Warn"}, {L"Error"}, {L"Warn"}, {}, {},
                                         {L"Error"}, {L"Error", L"Warn"}, {}, {}, {}, {L"Warn"}};
  for (std::size_t h = 1; h <= expected.size(); ++h) {
    EXPECT_EQ(classes(static_cast<double>(h)), expected[h - 1]) << h;
  }

  // A removed record leaves its handle on the pending clears: the next pass takes it off first.
  store.remove(record(1, 0));
  styling.applyStyling();
  EXPECT_EQ(classes(1), Classes{});
  EXPECT_TRUE(store.pendingClears().empty());
}

// The switches' own codes and their order are followed through the engine in the switch tests.
TEST_F(EditTimeStylerTest, RemovalPassByCode) {
  for (const std::uint32_t code : {11u, 2u}) {
    store.add(record(2, 3));  // rule-auditor and edit-time warnings
    store.add(record(2, 0));
    store.add(record(3, 1));  // an edit-time and a rule-auditor error
    store.add(record(3, 4));
    styling.applyStyling();
    styling.removeStyling(code);
    // Errors off takes one error a call and leaves the warnings; any other code takes the
    // classes off and leaves the store. The rule-auditor error's "Warn" is never touched.
    EXPECT_EQ(classes(2), code == 11 ? Classes{L"Warn"} : Classes{}) << code;
    EXPECT_EQ(classes(3), Classes{L"Warn"}) << code;
    EXPECT_EQ(store.violationsOf(3).size(), code == 11 ? 1u : 2u) << code;
  }
}

// The pass that visits only touched blocks leaves every block with the classes the pass over
// the whole store gives, over random store changes, foreign class changes, deaths and
// exemptions (the last two announced by the standing revision, as the engine does).
TEST_F(EditTimeStylerTest, TouchedBlocksOnlyMatchesTheWholeStorePass) {
  ViolationDatabase touchedStore;
  ds::Styler touchedStyler{L"s", L"", 0.0};
  std::uint64_t standing = 0;
  EditTimeStyling touchedOnly(touchedStore, touchedStyler, alive, exempt, [&] { return standing; });
  std::mt19937 random(11);
  const std::vector<std::string> checks{"a", "b", "ex"};
  for (int step = 0; step < 3000; ++step) {
    const double h = 1 + random() % 12;
    const auto r = record(h, random() % 6, checks[random() % 3], random() % 4 == 0);
    const wchar_t* const foreignClass = random() % 2 ? L"Warn" : L"Error";
    const auto both = [&](auto change) {
      change(touchedStore, touchedStyler);
      change(store, styler);
    };
    switch (random() % 10) {
      case 0: case 1: case 2: both([&](auto& db, auto&) { db.add(r); }); break;
      case 3: case 4: both([&](auto& db, auto&) { db.remove(r); }); break;
      case 5: both([&](auto& db, auto&) { db.removeByCheck(h, r->checkId); }); break;
      case 6: both([&](auto& db, auto&) { db.removeByType("b", "T"); }); break;
      case 7: both([&](auto&, auto& st) { st.applyClass(h, foreignClass); }); break;
      case 8:
        if (dead.count(h)) dead.erase(h); else dead.insert(h);
        ++standing;
        break;
      default:
        if (excluded.count("b")) excluded.erase("b"); else excluded.insert("b");
        ++standing;
    }
    if (random() % 3 == 0) {
      touchedOnly.applyStyling();
      styling.applyStylingToAll();
      for (double k = 1; k <= 12; ++k) {
        ASSERT_EQ(touchedStyler.classesOf(k), classes(k)) << "block " << k << " step " << step;
      }
    }
  }
}

}  // namespace
}  // namespace bkedittimecheck
