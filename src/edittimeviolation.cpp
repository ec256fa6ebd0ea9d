#include "src/edittimeviolation.h"

#include <functional>
#include <utility>

namespace bkedittimecheck {

EditTimeViolation::EditTimeViolation(std::string checkId, std::string violationType,
                                     std::uint32_t severity, double blockHandle)
    : checkId(std::move(checkId)),
      violationType(std::move(violationType)),
      severity(severity),
      blockHandle(blockHandle) {}

bool EditTimeViolation::sameAs(const EditTimeViolation& other) const {
  return severity == other.severity && checkId == other.checkId &&
         violationType == other.violationType;
}

std::size_t EditTimeViolationHash::operator()(const std::shared_ptr<EditTimeViolation>& v) const {
  std::size_t h = std::hash<std::string>{}(v->checkId);
  h ^= std::hash<std::string>{}(v->violationType) + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
  h ^= std::hash<std::uint32_t>{}(v->severity) + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
  return h;
}

bool EditTimeViolationEqual::operator()(const std::shared_ptr<EditTimeViolation>& a,
                                        const std::shared_ptr<EditTimeViolation>& b) const {
  return a->sameAs(*b);
}

}  // namespace bkedittimecheck
