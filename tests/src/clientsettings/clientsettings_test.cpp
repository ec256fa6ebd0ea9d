#include "src/clientsettings/clientsettings.h"

#include <gtest/gtest.h>

#include <limits>

namespace bk_observer {
namespace {

TEST(ClientSettingsTest, TimeResolutionNeedsAPositiveWidthAndAnIncreasingTimeRange) {
  ClientSettings settings;
  settings.setTMin(1.0);
  settings.setTMax(5.0);
  settings.setWidth(8.0);
  EXPECT_DOUBLE_EQ(settings.calcTimeRes(), 0.5);

  settings.setWidth(0.0);
  EXPECT_EQ(settings.calcTimeRes(), 0.0);
  settings.setWidth(-2.0);
  EXPECT_EQ(settings.calcTimeRes(), 0.0);

  settings.setWidth(8.0);
  settings.setTMax(1.0);  // equal to TMin
  EXPECT_EQ(settings.calcTimeRes(), 0.0);
  settings.setTMax(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(settings.calcTimeRes(), 0.0);
}

}  // namespace
}  // namespace bk_observer
