#include "host/runtime/eventloop.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <thread>
#include <vector>

namespace blockara {
namespace {

TEST(EventLoopTest, RunsItemsPostedFromAnyThreadInOrderOnTheMainThreadAndSurvivesAThrowingOne) {
  EventLoop& loop = EventLoop::instance();
  loop.adoptCurrentThread();
  std::vector<int> seen;
  std::thread other([&] {
    for (int i = 0; i < 3; ++i) loop.post([&seen, i] { seen.push_back(i); });
  });
  other.join();
  ASSERT_TRUE(loop.waitForPosted(std::chrono::milliseconds(0)));
  // An item posted while pumping waits for the next pump.
  loop.post([&] { loop.post([&] { seen.push_back(99); }); });
  EXPECT_EQ(loop.runPosted(), 4u);
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2}));
  EXPECT_EQ(loop.runPosted(), 1u);
  EXPECT_EQ(seen.back(), 99);

  // A throwing item keeps the rest for the next pump.
  int ran = 0;
  loop.post([] { throw std::runtime_error("boom"); });
  loop.post([&] { ++ran; });
  EXPECT_THROW(loop.runPosted(), std::runtime_error);
  EXPECT_EQ(loop.pendingCount(), 1u);
  loop.runPosted();
  EXPECT_EQ(ran, 1);
}

}  // namespace
}  // namespace blockara
