#include "src/pendingwork.h"

#include <gtest/gtest.h>

namespace bkedittimecheck {
namespace {

TEST(PendingWork, APassBeginsOnlyWhenNothingWasQueued) {
  PendingWork p;
  p.addQueued(3);
  EXPECT_EQ(p.passCount(), 1u);
  p.finishOne();
  p.addQueued(2);  // joins the running pass
  EXPECT_EQ(p.passCount(), 1u);
  EXPECT_EQ(p.queuedCount(), 4);
  for (int i = 0; i < 4; ++i) p.finishOne();
  EXPECT_EQ(p.queuedCount(), 0);
  p.addQueued(1);  // a new pass
  EXPECT_EQ(p.passCount(), 2u);
  p.passStyled();
  p.passStyled();
  EXPECT_EQ(p.passCount(), 0u);
  p.passStyled();  // a stray styling wraps around: the engine stays busy until it is replaced
  EXPECT_EQ(p.passCount(), 0xffffffffu);
}

}  // namespace
}  // namespace bkedittimecheck
