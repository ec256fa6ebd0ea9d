// Reads arbitrary bytes as a diagram's exclusions file and asks the exclusions about every block
// of a small diagram. Any input must either load or throw the property tree's errors, never
// crash; a refused file leaves no exclusions behind that were not there before.
#include <boost/property_tree/exceptions.hpp>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "src/configuration/exclusionmanager.h"
#include "src/edittimeviolation.h"

namespace {

BKRootBD* makeDiagram() {
  BKRootBD* d = bkBlockDiagramSet::create(u"m");
  auto& e = d->editing();
  e.addBlock(u"m", "SubSystem", u"a", {{"MaskType", std::string("Filter")}});
  e.addBlock(u"m/a", "Gain", u"b");
  e.addBlock(u"m", "SubSystem", u"lib",
             {{"LinkStatus", std::string("resolved")}, {"ReferenceBlock", std::string("lib/s")}});
  e.addBlock(u"m/lib", "Gain", u"g",
             {{"LinkStatus", std::string("resolved")}, {"ReferenceBlock", std::string("lib/s/g")}});
  return d;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static BKRootBD* const diagram = makeDiagram();
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("bketc_exclusions_fuzz_" + std::to_string(getpid()));
  std::ofstream(file, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
  bkedittimecheck::ExclusionManager exclusions;
  try {
    exclusions.loadExclusionsFromFile(diagram, file.wstring());
  } catch (const boost::property_tree::ptree_error&) {
    if (!exclusions.getExclusions().empty()) __builtin_trap();
  }
  std::filesystem::remove(file);
  const bkedittimecheck::EditTimeViolation violation("orvanta.kabe.kb_0402", "V", 3, 0);
  for (BKBlock* block : diagram->blocksInPathOrder()) (void)exclusions.isExcluded(*block, violation);
  return 0;
}
