#include "host/prefs/bkfeature.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <stdexcept>

#include "host/prefs/bkfeatureregistry.h"

namespace {

struct Registry {
  std::mutex mutex;
  std::map<std::string, BkFeature*> features;  // guarded by mutex
  std::map<std::string, int> presetLevels;     // guarded by mutex
};

// Made on first use, so that flags built by static initialisers of any library find it, and
// never destroyed, so that flags destroyed at exit can still leave it.
Registry& registry() {
  static auto* instance = new Registry();
  return *instance;
}

}  // namespace

BkFeature::BkFeature(std::string name, std::string description, std::string sourceFile,
                     std::string area, int number, int defaultLevel, int lastArgument)
    : featureName(std::move(name)),
      featureDescription(std::move(description)),
      featureSourceFile(std::move(sourceFile)),
      featureArea(std::move(area)),
      featureNumber(number),
      featureDefaultLevel(defaultLevel),
      featureLastArgument(lastArgument),
      level(defaultLevel) {
  if (auto preset = BkFeatureRegistry::enter(this)) level.store(*preset);
}

BkFeature::~BkFeature() { BkFeatureRegistry::leave(this); }

bool BkFeature::isOn() const { return getLevel() >= 1; }

int BkFeature::getLevel() const {
  accesses.fetch_add(1, std::memory_order_relaxed);
  return level.load();
}

BkFeature* BkFeatureRegistry::find(const std::string& name) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto it = r.features.find(name);
  return it == r.features.end() ? nullptr : it->second;
}

std::vector<std::string> BkFeatureRegistry::names() {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  std::vector<std::string> result;
  for (const auto& entry : r.features) result.push_back(entry.first);
  return result;
}

std::optional<int> BkFeatureRegistry::level(const std::string& name) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto it = r.features.find(name);
  if (it == r.features.end()) return std::nullopt;
  return it->second->peekLevel();
}

bool BkFeatureRegistry::setLevel(const std::string& name, int level) {
  if (name.empty()) throw std::invalid_argument("a feature name cannot be empty");
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto it = r.features.find(name);
  if (it == r.features.end()) {
    r.presetLevels[name] = level;
    return false;
  }
  it->second->setLevel(level);
  return true;
}

std::optional<int> BkFeatureRegistry::enter(BkFeature* feature) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  r.features[feature->name()] = feature;
  auto preset = r.presetLevels.find(feature->name());
  if (preset == r.presetLevels.end()) return std::nullopt;
  return preset->second;
}

void BkFeatureRegistry::leave(BkFeature* feature) {
  Registry& r = registry();
  std::lock_guard<std::mutex> lock(r.mutex);
  auto it = r.features.find(feature->name());
  if (it != r.features.end() && it->second == feature) r.features.erase(it);
}
