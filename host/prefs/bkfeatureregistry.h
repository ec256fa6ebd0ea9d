#pragma once

#include <optional>
#include <string>
#include <vector>

class BkFeature;

/// The host's feature flags by name, for scripts and the program's options. Reads through the
/// registry do not count as accesses of the flag.
///
/// Thread contract: any thread; a mutex in the source guards the table of flags and the levels
/// set before a flag existed.
class BkFeatureRegistry {
 public:
  BkFeatureRegistry() = delete;

  /// Any thread. The live flag of that name, or null. The pointer is valid while the module
  /// that defines the flag is loaded.
  static BkFeature* find(const std::string& name);

  /// Any thread. The names of the live flags, sorted.
  static std::vector<std::string> names();

  /// Any thread. The level of the flag of that name, or none when no such flag lives.
  static std::optional<int> level(const std::string& name);

  /// Any thread. Sets the level of the flag of that name. Returns false when no such flag lives
  /// yet; the level is then kept and given to the flag when it is made. Throws
  /// `std::invalid_argument` for an empty name.
  static bool setLevel(const std::string& name, int level);

 private:
  friend class BkFeature;
  static std::optional<int> enter(BkFeature* feature);
  static void leave(BkFeature* feature);
};
