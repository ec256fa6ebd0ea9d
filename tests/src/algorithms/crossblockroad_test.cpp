// The Goto/From check on the whole road: the limit of routing blocks as the engine counts them.
#include "tests/src/algorithms/interactiveroad.h"

namespace bkedittimecheck::testing {
namespace {

class CrossBlockRoadTest : public InteractiveRoad {
 public:
  // A From "f" of tag A alone, then in one batch `froms` more Froms and a Goto of that tag.
  void fromsThenGoto(BKRootBD* diagram, int froms) {
    const std::u16string root = diagram->getName();
    diagram->editing().addBlock(root, "From", u"f", {{"GotoTag", std::string("A")}});
    ASSERT_TRUE(settle());
    blockara::EditBatch batch(*diagram);
    for (int i = 1; i <= froms; ++i) {
      diagram->editing().addBlock(root, "From", i18n::to_u16string("f" + std::to_string(i)),
                                  {{"GotoTag", std::string("A")}});
    }
    diagram->editing().addBlock(root, "Goto", u"g", {{"GotoTag", std::string("A")}});
  }
};

TEST_F(CrossBlockRoadTest, GotoFromStopsPastTheThousandthRoutingBlock) {
  fromsThenGoto(d, 998);  // the Goto is the thousandth: every From is matched
  ASSERT_TRUE(settle());
  EXPECT_EQ(all(), Lines{});
  BKRootBD* n = open(u"n");
  fromsThenGoto(n, 999);  // the Goto is the 1001st: the check leaves the old finding alone
  ASSERT_TRUE(settle());
  const auto records =
      engineOf(u"n")->getViolations()->violationsOf(n->findBlock(u"n/f")->getHandle());
  ASSERT_EQ(records.size(), 1u);
  EXPECT_EQ(records[0].violationType, "NoMatchingGoTO");
}

}  // namespace
}  // namespace bkedittimecheck::testing
