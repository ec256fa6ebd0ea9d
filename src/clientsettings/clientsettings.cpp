#include "src/clientsettings/clientsettings.h"

namespace bk_observer {

double ClientSettings::calcTimeRes() const {
  // Both comparisons are false for NaN, which is what keeps a NaN out of the result.
  if (width > 0.0 && tMax > tMin) return (tMax - tMin) / width;
  return 0.0;
}

}  // namespace bk_observer
