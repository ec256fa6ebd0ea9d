// Reads arbitrary bytes as a .bkd model: any input must either open a diagram or throw
// ModelFileError, never crash, and must leave no diagram open after a failure.
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/model/bkdfile.h"
#include "host/model/bkrootbd.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Warnings about content passed over would flood the fuzzer's output.
  static const bool quiet = [] {
    blockara::setModelFileWarningHandler([](const std::string&) {});
    return true;
  }();
  (void)quiet;
  std::string xml(reinterpret_cast<const char*>(data), size);
  try {
    BKRootBD* diagram = blockara::readDiagramXml(xml, "fuzz.bkd");
    // What was read must write back and read again.
    std::string again = blockara::writeDiagramXml(*diagram);
    bkBlockDiagramSet::close(diagram);
    bkBlockDiagramSet::close(blockara::readDiagramXml(again, "again.bkd"));
  } catch (const blockara::ModelFileError&) {
    if (!bkBlockDiagramSet::all().empty()) __builtin_trap();
  }
  return 0;
}
