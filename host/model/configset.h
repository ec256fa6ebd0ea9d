#pragma once

#include <map>
#include <stdexcept>
#include <string>

#include "host/model/bkblock.h"

class BKRootBD;

/// The host's exception class for failed queries of the model.
class bkHostException : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Raised when a diagram has no active configuration set.
class NoActiveConfigSet : public bkHostException {
 public:
  using bkHostException::bkHostException;
};

/// A named configuration set: the model parameters of a diagram. Main thread only.
class ConfigSet {
 public:
  explicit ConfigSet(std::string name = "Configuration");

  /// The set's name.
  const std::string& getName() const { return name; }
  /// True when the set has a parameter named `paramName`.
  bool hasProp(const std::string& paramName) const { return params.count(paramName) != 0; }
  /// The parameter's value, or null.
  const BlockParamValue* getProp(const std::string& paramName) const;
  /// Sets (or adds) a parameter.
  void setProp(const std::string& paramName, BlockParamValue value);
  /// All parameters by name.
  const std::map<std::string, BlockParamValue>& props() const { return params; }

  /// The parameters and defaults of a new diagram's set ("UniqueDataStoreMsg" "none", ...).
  static ConfigSet makeDefault();

 private:
  std::string name;
  std::map<std::string, BlockParamValue> params;
};

/// Access to a diagram's active configuration set, as the host offers it.
class BDConfigSetInfo {
 public:
  /// The info of `diagram`. Throws NoActiveConfigSet for a null diagram.
  static BDConfigSetInfo get(BKRootBD* diagram);
  /// The active set. Throws NoActiveConfigSet when the diagram has none.
  ConfigSet* getActiveSetObject() const;

 private:
  explicit BDConfigSetInfo(BKRootBD* diagram) : diagram(diagram) {}
  BKRootBD* diagram;
};
