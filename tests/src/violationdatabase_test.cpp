#include "src/violationdatabase.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace bkedittimecheck {
namespace {

using Lines = std::vector<std::string>;
using Handles = std::vector<double>;

std::shared_ptr<EditTimeViolation> rec(double h, const std::string& check, const std::string& type,
                                       std::uint32_t sev, bool commented = false,
                                       const std::wstring& path = L"m/b") {
  auto v = std::make_shared<EditTimeViolation>(check, type, sev, h);
  v->isCommented = commented ? 1 : 0;
  v->blockPath = path;
  return v;
}

/// One block's records as sorted "check:type:severity[:commented]" lines.
Lines lines(const ViolationDatabase& db, double h) {
  Lines out;
  for (const auto& v : db.violationsOf(h))
    out.push_back(v.checkId + ":" + v.violationType + ":" + std::to_string(v.severity) +
                  (v.isCommented ? ":commented" : ""));
  std::sort(out.begin(), out.end());
  return out;
}

TEST(ViolationDatabase, AddKeepsOneRecordPerTripleAndLetsCommentStatusThrough) {
  ViolationDatabase db;
  db.add(rec(1, "c", "t", 3));
  db.add(rec(1, "c", "t", 3));        // equal: dropped
  db.add(rec(1, "c", "t", 0));        // other severity: a second record
  db.add(rec(1, "c", "t", 3, true));  // comment status changed: replaces
  EXPECT_EQ(lines(db, 1), (Lines{"c:t:0", "c:t:3:commented"}));
  EXPECT_EQ(db.violationsOfBlock(1, "c").size(), 2u);
  EXPECT_TRUE(db.violationsOfBlock(1, "other").empty());
}

TEST(ViolationDatabase, RemovalsFeedPendingClears) {
  ViolationDatabase db;
  // Unknown handle: no entry, but the block's classes are cleared at the next pass.
  db.remove(rec(7, "c", "t", 3));
  EXPECT_EQ(db.pendingClears(), Handles{7});
  EXPECT_EQ(db.blockCount(), 0u);
  db.clearPendingClears();
  db.add(rec(1, "c", "t", 3));
  db.add(rec(1, "c", "u", 3));
  db.remove(rec(1, "c", "x", 3));  // no equal record and the set is not empty
  EXPECT_TRUE(db.pendingClears().empty());
  db.remove(rec(1, "c", "t", 3, true, L"elsewhere"));  // payload does not matter
  db.remove(rec(1, "c", "u", 3));
  EXPECT_EQ(db.pendingClears(), (Handles{1, 1}));
  EXPECT_EQ(db.blockCount(), 0u);
  db.clearPendingClears();

  for (const auto& [h, check, type] :
       {std::tuple{1, "a", "t"}, {1, "b", "t"}, {2, "a", "t"}, {3, "a", "u"}})
    db.add(rec(h, check, type, 3));
  db.removeByType("a", "t");
  EXPECT_EQ(db.pendingClears(), Handles{2});  // only the block left empty
  EXPECT_EQ(lines(db, 1), Lines{"b:t:3"});
  db.clearPendingClears();
  db.removeByCheck(3, "a");
  db.removeByCheck(99, "a");  // unknown: no entry, the handle is still cleared
  EXPECT_EQ(db.pendingClears(), (Handles{3, 99}));
  EXPECT_EQ(db.blockCount(), 2u);  // block 3 keeps its emptied set; 99 gets none
}

TEST(ViolationDatabase, CommentMarkingPathRenamingAndDeadBlocks) {
  ViolationDatabase db;
  db.add(rec(1, "x", "t", 3, false, L"m/sub/a"));
  db.add(rec(2, "orvanta.blockara.GoToFromBlockMismatch", "t", 0, false, L"m/sub/g"));
  db.add(rec(3, "x", "t", 3, false, L"m/other"));
  db.markCommentedUnder(L"m/sub", true);
  EXPECT_EQ(lines(db, 1), Lines{"x:t:3:commented"});
  EXPECT_TRUE(db.violationsOf(2).empty());  // the Goto/From check's records go instead
  EXPECT_EQ(db.pendingClears(), Handles{2});
  EXPECT_EQ(lines(db, 3), Lines{"x:t:3"});
  db.renamePaths(L"m/sub", L"m/renamed");
  EXPECT_EQ(db.violationsOf(1)[0].blockPath + L" " + db.violationsOf(3)[0].blockPath,
            L"m/renamed/a m/other");
  db.dropDeadBlocks([](double h) { return h == 3; });
  EXPECT_TRUE(db.violationsOf(1).empty());
  EXPECT_EQ(db.violationsOf(3).size(), 1u);
}

}  // namespace
// The styling pass's bookkeeping, sorted at the end of a pass, against the plain reading of the
// store: a handle waits for its clear when it is on `pendingClears`, and the touched handles are
// those that any change named since the last take. Settles fall between changes at random. A
// twin store takes each batch removal as single removals and must end up the same.
TEST(ViolationDatabase, StylingBookkeepingMatchesThePlainReading) {
  ViolationDatabase db, twin;
  std::set<double> touched;
  unsigned seed = 7;
  const auto next = [&seed](unsigned n) {
    seed = seed * 1103515245u + 12345u;
    return (seed >> 16) % n;
  };
  for (int round = 0; round < 400; ++round) {
    for (int step = 0; step < 12; ++step) {
      const double h = 1 + next(20);
      const std::string check = next(2) ? "a" : "b";
      switch (next(5)) {
        case 0:
          db.add(rec(h, check, "t", 3));
          twin.add(rec(h, check, "t", 3));
          break;
        case 1:
          db.remove(rec(h, check, "t", 3));
          twin.remove(rec(h, check, "t", 3));
          break;
        case 2: {  // a batch, ending with `h`
          Handles batch;
          for (unsigned k = next(3); k > 0; --k) batch.push_back(1 + next(20));
          for (double b : batch) touched.insert(b);
          batch.push_back(h);
          db.removeEach(rec(0, check, "t", 3), batch);
          for (double b : batch) twin.remove(rec(b, check, "t", 3));
          break;
        }
        case 3:
          db.removeByCheck(h, check);
          twin.removeByCheck(h, check);
          break;
        default:
          db.removeAll(h);
          twin.removeAll(h);
          break;
      }
      touched.insert(h);
      if (next(5) == 0) db.settleForStyling();
    }
    Handles all;
    for (int h = 0; h <= 21; ++h) all.push_back(h);
    for (int k = 0; k < 12; ++k) all.push_back(next(22));  // out of order, with repeats
    const Handles pending = db.pendingClears();
    ASSERT_EQ(pending, twin.pendingClears()) << "round " << round;
    const auto records = [](const std::vector<EditTimeViolation>& list) {
      std::vector<std::string> out;
      for (const auto& v : list)
        out.push_back(v.checkId + v.violationType + std::to_string(v.isCommented));
      return out;
    };
    for (double h = 1; h <= 20; ++h) {
      ASSERT_EQ(records(db.violationsOf(h)), records(twin.violationsOf(h))) << "round " << round;
    }
    const auto facts = db.stylingFactsOf(all);
    for (std::size_t i = 0; i < all.size(); ++i) {
      const bool plain = std::find(pending.begin(), pending.end(), all[i]) != pending.end();
      ASSERT_EQ(facts[i].pendingClear, plain) << "round " << round << " handle " << all[i];
    }
    if (next(3) == 0) continue;  // this round's changes carry over into the next take
    Handles taken = db.takeTouched();
    std::sort(taken.begin(), taken.end());
    ASSERT_EQ(taken, Handles(touched.begin(), touched.end())) << "round " << round;
    touched.clear();
    if (next(2) == 0) {
      db.clearPendingClears();
      twin.clearPendingClears();
    }
  }
}

}  // namespace bkedittimecheck
