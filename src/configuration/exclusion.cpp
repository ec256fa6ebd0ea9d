#include "src/configuration/exclusion.h"

#include <array>
#include <utility>

#include "src/hostinterface.h"

namespace bkedittimecheck {

std::int32_t ExclusionRule::kindOf(const std::string& literal) {
  static const std::array<std::pair<const char*, std::int32_t>, 7> literals{{
      {"Subsystem", Subsystem},
      {"Library", Library},
      {"Chartelle", Chartelle},
      {"BlockParameters", BlockParameters},
      {"MaskType", MaskType},
      {"Block", Block},
      {"BlockType", BlockType},
  }};
  for (const auto& [text, kind] : literals) {
    if (literal == text) return kind;
  }
  return unknownKind;
}

bool Exclusion::coversCheck(const std::string& checkId) const {
  for (const std::wstring& entry : checkIds) {
    if (entry == L".*" || toNarrow(entry) == checkId) return true;
  }
  return false;
}

}  // namespace bkedittimecheck
