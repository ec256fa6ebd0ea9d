#include "src/algorithms/edittimealgorithms.h"

#include <map>
#include <mutex>
#include <set>
#include <utility>

namespace bkedittimecheck {
namespace {

// Shared by all instances and all diagrams: the last reader of a check's entry wins.
std::map<std::string, CheckScope>& scopes() {  // worker thread only
  static std::map<std::string, CheckScope> map;
  return map;
}

struct ParametersChangedFlag {
  std::mutex mutex;
  bool value = false;  // guarded by mutex
};

ParametersChangedFlag& parametersChanged() {
  static ParametersChangedFlag flag;
  return flag;
}

// One copy of each string ever given, kept for the life of the process, so that the twenty or so
// checks an edit builds share their check IDs and diagram name instead of copying them. The IDs
// are those of the built-in checks and of the constraint checks of the configurations loaded;
// the names are those of the diagrams opened or renamed in the session: a few bytes each.
template <typename String>
const String& intern(std::basic_string_view<typename String::value_type> text) {
  static std::mutex mutex;
  static std::set<String, std::less<>> strings;
  std::lock_guard<std::mutex> lock(mutex);
  auto it = strings.find(text);
  if (it == strings.end()) it = strings.emplace(text).first;
  return *it;
}

}  // namespace

EditTimeAlgorithms::EditTimeAlgorithms(std::string_view checkId, const std::wstring& diagramName,
                                       std::uint32_t severity)
    : checkId(intern<std::string>(checkId)),
      diagramName(intern<std::wstring>(diagramName)),
      severity(severity) {}

EditTimeAlgorithms::~EditTimeAlgorithms() = default;

void EditTimeAlgorithms::prepare() {}

bool EditTimeAlgorithms::runCheck(const CheckContext& /*context*/) { return true; }

void EditTimeAlgorithms::setInputParametersChanged(bool changed) {
  ParametersChangedFlag& flag = parametersChanged();
  std::lock_guard<std::mutex> lock(flag.mutex);
  flag.value = changed;
}

bool EditTimeAlgorithms::inputParametersChanged() {
  ParametersChangedFlag& flag = parametersChanged();
  std::lock_guard<std::mutex> lock(flag.mutex);
  return flag.value;
}

CheckScope EditTimeAlgorithms::currentScope() const {
  const auto it = scopes().find(checkId);
  return it == scopes().end() ? CheckScope{0, 0} : it->second;
}

void EditTimeAlgorithms::readInputParameters(const boost::property_tree::ptree& configuration) {
  CheckScope scope;
  forEachInputParameter(configuration, [&scope](const std::string& name, const auto& parameter) {
    for (const auto& [key, value] : parameter) {
      if (key != "Value") continue;
      const std::string& text = value.data();
      if (name == "Follow links") {
        scope.skipLinkedBlocks = text == "on" ? 0 : 1;
      } else if (name == "Look under masks") {
        // Anything the tool does not know, its own "none" included, is the strictest setting.
        if (text == "all") {
          scope.lookUnderMasks = 0;
        } else if (text == "graphical") {
          scope.lookUnderMasks = 2;
        } else if (text == "functional") {
          scope.lookUnderMasks = 3;
        } else {
          scope.lookUnderMasks = 1;
        }
      }
    }
  });
  scopes()[checkId] = scope;
}

void EditTimeAlgorithms::clearScopes() { scopes().clear(); }

}  // namespace bkedittimecheck
