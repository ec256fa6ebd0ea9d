#pragma once

#include <any>
#include <map>
#include <string>
#include <vector>

namespace diagram::style {

/// A bag of style properties: narrow keys ("Glow", ...) to type-erased values. A plain value.
class Style {
 public:
  /// Makes an empty style.
  Style() = default;

  /// Stores `value` under `key`, replacing an earlier value of that key.
  void set(const std::string& key, std::any value) { properties[key] = std::move(value); }

  /// Stores a copy of any other value (a `Glow`, or a `boost::any` holding one) under `key`.
  template <class T>
  void set(const std::string& key, T value) {
    properties[key] = std::any(std::move(value));
  }

  /// The value under `key`, or null when there is none. The pointer lives as long as the style
  /// is not changed.
  const std::any* get(const std::string& key) const {
    auto it = properties.find(key);
    return it == properties.end() ? nullptr : &it->second;
  }

  /// The keys set, in order.
  std::vector<std::string> keys() const {
    std::vector<std::string> result;
    for (const auto& entry : properties) result.push_back(entry.first);
    return result;
  }

 private:
  std::map<std::string, std::any> properties;
};

}  // namespace diagram::style
