#include <filesystem>
#include <string>

#include "app/luaapi.h"
#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"
#include "host/package/bkspackage.h"

namespace blockara::app {

namespace {

// The part of a package that holds the diagram itself.
constexpr const char* kDiagramPart = "/diagram.bkd";

bool isPackagePath(const std::string& path) {
  return std::filesystem::path(path).extension() == ".bkdx";
}

}  // namespace

BKRootBD* loadModelFile(const std::string& path) {
  if (!isPackagePath(path)) return blockara::loadBkd(path);
  bksPackageHelper::PartMap parts = bksPackageHelper::readPackage(path);
  auto diagramPart = parts.find(kDiagramPart);
  if (diagramPart == parts.end()) {
    throw bksPackageHelper::PackageError(path + ": the package has no part " + kDiagramPart);
  }
  BKRootBD* diagram = blockara::readDiagramXml(diagramPart->second, path);
  parts.erase(diagramPart);
  diagram->parts() = std::move(parts);
  diagram->setFilePath(path);
  return diagram;
}

void saveModelFile(BKRootBD& diagram, const std::string& path) {
  if (!isPackagePath(path)) {
    blockara::saveBkd(diagram, path);
    return;
  }
  bksPackageHelper::PartMap parts = diagram.parts();
  parts[kDiagramPart] = blockara::writeDiagramXml(diagram);
  bksPackageHelper::writePackage(path, parts);
  diagram.setFilePath(path);
}

}  // namespace blockara::app
