#include "src/clientsettings/clientsettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace bk_observer {
namespace {

TEST(ClientSettingsTest, TimeResolutionNeedsAPositiveWidthAndAnIncreasingTimeRange) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const struct {
    double tMin, tMax, width, expected;
  } cases[] = {{1, 5, 8, 0.5}, {1, 5, 0, 0}, {1, 5, -2, 0}, {1, 1, 8, 0}, {1, nan, 8, 0}};
  for (const auto& c : cases) {
    ClientSettings settings;
    settings.setTMin(c.tMin);
    settings.setTMax(c.tMax);
    settings.setWidth(c.width);
    EXPECT_DOUBLE_EQ(settings.calcTimeRes(), c.expected) << c.tMax << " " << c.width;
  }
}

}  // namespace
}  // namespace bk_observer
