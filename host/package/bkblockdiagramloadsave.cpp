#include "host/package/bkblockdiagramloadsave.h"

#include <filesystem>
#include <stdexcept>

#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"

namespace {

bool isPackagePath(const std::string& path) {
  return std::filesystem::path(path).extension() == ".bkdx";
}

}  // namespace

bkBlockDiagramLoadSave bkBlockDiagramLoadSave::get(BKRootBD* diagram) {
  if (!diagram) throw std::invalid_argument("bkBlockDiagramLoadSave::get: no diagram");
  return bkBlockDiagramLoadSave(diagram);
}

std::shared_ptr<bksPackageHelper::PackageReader> bkBlockDiagramLoadSave::getPackageReader() const {
  if (diagram->parts().empty()) return nullptr;
  return std::make_shared<bksPackageHelper::PackageReader>(diagram->getFilePath(),
                                                           diagram->parts());
}

BKRootBD* bkBlockDiagramLoadSave::load(const std::string& path) {
  if (!isPackagePath(path)) return blockara::loadBkd(path);
  bksPackageHelper::PartMap parts = bksPackageHelper::readPackage(path);
  auto self = parts.find(diagramPart);
  if (self == parts.end()) {
    throw bksPackageHelper::PackageError(path + ": the package has no part " + diagramPart);
  }
  BKRootBD* diagram = blockara::readDiagramXml(self->second, path);
  parts.erase(self);
  diagram->parts() = std::move(parts);
  diagram->setFilePath(path);
  return diagram;
}

void bkBlockDiagramLoadSave::save(BKRootBD& diagram, const std::string& path) {
  if (!isPackagePath(path)) {
    blockara::saveBkd(diagram, path);
    return;
  }
  bksPackageHelper::PartMap parts = diagram.parts();
  parts[diagramPart] = blockara::writeDiagramXml(diagram);
  bksPackageHelper::writePackage(path, parts);
  diagram.setFilePath(path);
}
