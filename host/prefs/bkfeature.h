#pragma once

#include <atomic>
#include <cstdint>
#include <string>

/// A named host feature flag with an integer level; the feature is on when the level is at least
/// 1. Every read of the level through the flag (`isOn`, `getLevel`, the bool conversion) counts
/// one access. A module defines its flags as static objects and exports pointers to them; each
/// flag enters the `BkFeatureRegistry` under its name while it lives, so that scripts can read
/// and set it by name.
///
/// Thread contract: reads and `setLevel` may come from any thread (`level` and `accesses` are
/// atomics); construction and destruction happen during static initialisation and exit.
class BkFeature {
 public:
  /// Static initialisation. Makes the flag at `defaultLevel` (or at the level the host set for
  /// `name` beforehand through the registry) and registers it. `sourceFile`, `area`, `number`
  /// and `lastArgument` describe the flag and are kept as given.
  BkFeature(std::string name, std::string description, std::string sourceFile, std::string area,
            int number, int defaultLevel, int lastArgument);

  /// Exit. Leaves the registry.
  ~BkFeature();

  BkFeature(const BkFeature&) = delete;
  BkFeature& operator=(const BkFeature&) = delete;

  /// Any thread. True when the level is at least 1. Counts an access.
  bool isOn() const;

  /// Any thread. Same as `isOn`.
  explicit operator bool() const { return isOn(); }

  /// Any thread. The level. Counts an access.
  int getLevel() const;

  /// Any thread. Sets the level (any integer; 0 turns the feature off).
  void setLevel(int newLevel) { level.store(newLevel); }

  /// Any thread. The level without counting an access (for the host's own tools).
  int peekLevel() const { return level.load(); }

  /// Any thread. How many reads were counted.
  std::uint64_t accessCount() const { return accesses.load(); }

  const std::string& name() const { return featureName; }
  const std::string& description() const { return featureDescription; }
  const std::string& sourceFile() const { return featureSourceFile; }
  const std::string& area() const { return featureArea; }
  int number() const { return featureNumber; }
  int defaultLevel() const { return featureDefaultLevel; }
  int lastArgument() const { return featureLastArgument; }

 private:
  const std::string featureName;
  const std::string featureDescription;
  const std::string featureSourceFile;
  const std::string featureArea;
  const int featureNumber;
  const int featureDefaultLevel;
  const int featureLastArgument;
  std::atomic<int> level;
  mutable std::atomic<std::uint64_t> accesses{0};
};
