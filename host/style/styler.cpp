#include "host/style/styler.h"

#include <algorithm>
#include <boost/any.hpp>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace diagram::style {
namespace {

// The element type that class marks put a handle under.
const std::wstring blockType = ClassSelector::blockElementType;

std::optional<Glow> glowIn(const std::any& value) {
  if (const auto* glow = std::any_cast<Glow>(&value)) return *glow;
  if (const auto* boxed = std::any_cast<boost::any>(&value)) {
    if (const auto* glow = boost::any_cast<Glow>(boxed)) return *glow;
  }
  return std::nullopt;
}

// The styling service: every styler, in order of creation. Main thread only.
std::vector<std::unique_ptr<Styler>>& allStylers() {
  static auto* stylers = new std::vector<std::unique_ptr<Styler>>();
  return *stylers;
}

}  // namespace

Styler::Styler(std::wstring name, std::wstring description, double priority)
    : stylerName(std::move(name)),
      stylerDescription(std::move(description)),
      stylerPriority(priority) {}

Styler::RuleHandle Styler::addRule(const ClassSelector& selector, const Style& style) {
  rules.emplace_back(selector, style);
  return rules.size() - 1;
}

void Styler::activate() { active = true; }

void Styler::applyClass(double handle, const std::wstring& className) {
  // A NaN has no place in the ordered map of handles.
  if (std::isnan(handle)) throw std::invalid_argument("styler: a block handle cannot be NaN");
  ++applied;
  classes[handle].insert(className);
  if (watcher) watcher(handle, className, true);
}

void Styler::removeClass(double handle, const std::wstring& className) {
  ++removed;
  // NaN compares equivalent to every key, so it must not reach the map.
  auto it = std::isnan(handle) ? classes.end() : classes.find(handle);
  if (it != classes.end()) {
    it->second.erase(className);
    if (it->second.empty()) classes.erase(it);
  }
  if (watcher) watcher(handle, className, false);
}

std::vector<std::wstring> Styler::classesOf(double handle) const {
  auto it = std::isnan(handle) ? classes.end() : classes.find(handle);
  if (it == classes.end()) return {};
  return {it->second.begin(), it->second.end()};
}

std::optional<Glow> Styler::glowOf(double handle) const {
  auto it = std::isnan(handle) ? classes.end() : classes.find(handle);
  if (it == classes.end()) return std::nullopt;
  for (auto rule = rules.rbegin(); rule != rules.rend(); ++rule) {
    const std::any* value = rule->second.get("Glow");
    if (value == nullptr) continue;
    for (const std::wstring& cls : it->second) {
      if (rule->first.matches(cls, blockType)) {
        if (auto glow = glowIn(*value)) return glow;
      }
    }
  }
  return std::nullopt;
}

std::vector<double> Styler::styledHandles() const {
  std::vector<double> handles;
  for (const auto& entry : classes) handles.push_back(entry.first);
  return handles;
}

Styler* getStyler(const std::wstring& name) {
  for (const auto& styler : allStylers()) {
    if (styler->name() == name) return styler.get();
  }
  return nullptr;
}

Styler* createStyler(const std::wstring& name, const std::wstring& description, double priority) {
  if (Styler* existing = getStyler(name)) return existing;
  allStylers().push_back(std::make_unique<Styler>(name, description, priority));
  return allStylers().back().get();
}

std::vector<std::wstring> stylerNames() {
  std::vector<std::wstring> names;
  for (const auto& styler : allStylers()) names.push_back(styler->name());
  return names;
}

std::optional<Glow> glowOf(double handle) {
  std::optional<Glow> best;
  double bestPriority = 0;
  for (const auto& styler : allStylers()) {
    if (!styler->isActive()) continue;
    auto glow = styler->glowOf(handle);
    if (glow && (!best || styler->priority() >= bestPriority)) {
      best = glow;
      bestPriority = styler->priority();
    }
  }
  return best;
}

std::vector<std::wstring> classesOf(double handle) {
  std::set<std::wstring> all;
  for (const auto& styler : allStylers()) {
    for (auto& cls : styler->classesOf(handle)) all.insert(std::move(cls));
  }
  return {all.begin(), all.end()};
}

}  // namespace diagram::style
