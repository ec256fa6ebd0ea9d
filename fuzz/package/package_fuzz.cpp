// Reads arbitrary bytes as a diagram package: it must either give parts or a PackageError.
#include <cstddef>
#include <cstdint>

#include "host/package/bkspackage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    bksPackageHelper::PartMap parts = bksPackageHelper::readPackageFromBuffer(data, size, "fuzz");
    for (const auto& [name, bytes] : parts) {
      if (name.empty() || name[0] != '/') __builtin_trap();
    }
  } catch (const bksPackageHelper::PackageError&) {
  }
  return 0;
}
