#include "host/language/cospackage.h"

#include <stdexcept>

namespace ncos {

namespace {

/// The mixin that heterogeneous class hierarchies declare as their superclass; no members.
class HeterogeneousClassInfo : public factory::NcosFactoryClassInfo {
 public:
  HeterogeneousClassInfo()
      : NcosFactoryClassInfo("Heterogeneous", "Mixin for classes whose arrays may mix subclasses") {}

 protected:
  void populate() override {}
};

std::vector<std::string> splitDotted(const std::string& name) {
  std::vector<std::string> parts;
  std::size_t start = 0;
  while (true) {
    std::size_t dot = name.find('.', start);
    parts.push_back(name.substr(start, dot - start));
    if (dot == std::string::npos) break;
    start = dot + 1;
  }
  return parts;
}

}  // namespace

COSPackage::COSPackage(std::string shortName, std::string dottedName)
    : name(std::move(shortName)), fullName(std::move(dottedName)) {}

COSPackage& COSPackage::root() {
  static COSPackage* tree = [] {
    auto* r = new COSPackage("", "");
    r->getSubPackage("numeria", true)
        ->getSubPackage("mixin", true)
        ->addClass(factory::allocate<HeterogeneousClassInfo>());
    return r;
  }();
  return *tree;
}

COSPackage* COSPackage::getSubPackage(const std::string& shortName, bool create) {
  auto it = subs.find(shortName);
  if (it != subs.end()) return it->second.get();
  if (!create) return nullptr;
  if (shortName.empty() || shortName.find('.') != std::string::npos) {
    throw std::invalid_argument("package name '" + shortName + "' is not a simple name");
  }
  std::string dotted = fullName.empty() ? shortName : fullName + "." + shortName;
  auto* sub = new COSPackage(shortName, dotted);
  subs.emplace(shortName, std::unique_ptr<COSPackage>(sub));
  return sub;
}

COSPackage* COSPackage::addPackage(std::unique_ptr<COSPackageInfo> info) {
  if (!info || info->getName().empty()) throw std::invalid_argument("addPackage: no package name");
  COSPackage* node = &root();
  for (const auto& part : splitDotted(info->getName())) node = node->getSubPackage(part, true);
  info->populate(*node);
  node->infos.push_back(std::move(info));
  return node;
}

bool COSPackage::removePackage(const std::string& dottedName) {
  auto parts = splitDotted(dottedName);
  COSPackage* parent = &root();
  for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
    parent = parent->getSubPackage(parts[i], false);
    if (!parent) return false;
  }
  return parent->subs.erase(parts.back()) > 0;
}

COSPackage* COSPackage::findPackage(const std::string& dottedName) {
  COSPackage* node = &root();
  if (dottedName.empty()) return node;
  for (const auto& part : splitDotted(dottedName)) {
    node = node->getSubPackage(part, false);
    if (!node) return nullptr;
  }
  return node;
}

std::shared_ptr<const factory::NcosFactoryClassInfo> COSPackage::findClass(
    const std::string& fullName) {
  std::size_t dot = fullName.rfind('.');
  if (dot == std::string::npos) return nullptr;
  COSPackage* package = findPackage(fullName.substr(0, dot));
  return package ? package->getClass(fullName.substr(dot + 1)) : nullptr;
}

void COSPackage::addClass(std::unique_ptr<factory::NcosFactoryClassInfo> cls) {
  if (!cls) throw std::invalid_argument("addClass: null class in package " + fullName);
  const std::string& shortName = cls->getShortName();
  if (classMap.count(shortName)) {
    throw std::invalid_argument("class " + shortName + " is already in package " + fullName);
  }
  cls->setFullName(fullName.empty() ? shortName : fullName + "." + shortName);
  classMap.emplace(shortName, std::shared_ptr<factory::NcosFactoryClassInfo>(std::move(cls)));
}

std::shared_ptr<const factory::NcosFactoryClassInfo> COSPackage::getClass(
    const std::string& shortName) const {
  auto it = classMap.find(shortName);
  return it == classMap.end() ? nullptr : it->second;
}

COSPackage* omGetGlobalPackage(const std::string& name) {
  return COSPackage::root().getSubPackage(name, true);
}

COSPackage* omGetSubPackage(COSPackage* parent, const std::string& name) {
  if (!parent) throw std::invalid_argument("omGetSubPackage: null parent package");
  return parent->getSubPackage(name, true);
}

}  // namespace ncos
