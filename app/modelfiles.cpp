#include "app/luaapi.h"
#include "host/package/bkblockdiagramloadsave.h"

namespace blockara::app {

BKRootBD* loadModelFile(const std::string& path) { return bkBlockDiagramLoadSave::load(path); }

void saveModelFile(BKRootBD& diagram, const std::string& path) {
  bkBlockDiagramLoadSave::save(diagram, path);
}

}  // namespace blockara::app
