#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "host/language/cosclassinfo.h"

namespace ncos {

class COSPackage;

/// The description of a package offered to the host language: its dotted name and a population
/// function that adds its classes. Main thread.
class COSPackageInfo {
 public:
  explicit COSPackageInfo(std::string dottedName) : name(std::move(dottedName)) {}
  virtual ~COSPackageInfo() = default;
  COSPackageInfo(const COSPackageInfo&) = delete;
  COSPackageInfo& operator=(const COSPackageInfo&) = delete;

  const std::string& getName() const { return name; }
  /// Adds the package's classes to `package` (the node of getName()). Default: nothing.
  virtual void populate(COSPackage& package) {}

 private:
  std::string name;
};

/// A node of the process-wide package tree: subpackages and classes by short name.
/// The root node has the empty name; the package "numeria.mixin" with the class "Heterogeneous"
/// always exists. Main thread only.
class COSPackage {
 public:
  COSPackage(const COSPackage&) = delete;
  COSPackage& operator=(const COSPackage&) = delete;

  /// The root of the tree.
  static COSPackage& root();
  /// Makes the package of `info`'s dotted name (and its parents), lets `info` populate it, and
  /// keeps `info`. Returns the package node. Throws std::invalid_argument for an empty name.
  static COSPackage* addPackage(std::unique_ptr<COSPackageInfo> info);
  /// Removes the package of that dotted name with everything under it. Objects of its classes
  /// stay usable (they share their class). False when there was no such package.
  static bool removePackage(const std::string& dottedName);
  /// The package of that dotted name, or null.
  static COSPackage* findPackage(const std::string& dottedName);
  /// The class of that full dotted name (populated), or null.
  static std::shared_ptr<const factory::NcosFactoryClassInfo> findClass(const std::string& fullName);

  /// The short name and the full dotted name.
  const std::string& getName() const { return name; }
  const std::string& getFullName() const { return fullName; }
  /// The subpackage of that short name, made when `create` is true and it is missing.
  COSPackage* getSubPackage(const std::string& shortName, bool create);
  /// Hands a class to the package; its full name becomes this package's name plus its short
  /// name. Throws std::invalid_argument when a class of that short name is already there.
  void addClass(std::unique_ptr<factory::NcosFactoryClassInfo> cls);
  /// The class of that short name, or null.
  std::shared_ptr<const factory::NcosFactoryClassInfo> getClass(const std::string& shortName) const;

  const std::map<std::string, std::unique_ptr<COSPackage>>& subPackages() const { return subs; }
  const std::map<std::string, std::shared_ptr<factory::NcosFactoryClassInfo>>& classes() const {
    return classMap;
  }

 private:
  COSPackage(std::string shortName, std::string dottedName);

  std::string name;
  std::string fullName;
  std::map<std::string, std::unique_ptr<COSPackage>> subs;
  std::map<std::string, std::shared_ptr<factory::NcosFactoryClassInfo>> classMap;
  std::vector<std::unique_ptr<COSPackageInfo>> infos;
};

/// The top-level package of that name, made if missing. Main thread.
COSPackage* omGetGlobalPackage(const std::string& name);
/// The subpackage `name` of `parent`, made if missing. Main thread.
COSPackage* omGetSubPackage(COSPackage* parent, const std::string& name);

}  // namespace ncos
