#pragma once

#include <cstdint>
#include <string>

#include "src/algorithms/diagramcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "orvanta.blockara.DataStoreUsage": Data Store Memory blocks that share a name, in one system
/// ("DuplicateDataStoreMemoryBlocksSameGraph", severity 1) and, as the diagram's
/// "UniqueDataStoreMsg" asks, anywhere ("DuplicateDataStoreMemoryBlocksDiagnostic", severity 0
/// for a warning, 1 for an error). Only severities 1 and 5 look for duplicates; any other clears
/// the check's records on data store blocks. Worker thread only.
class DataStoreUsage : public DiagramCheck {
 public:
  static constexpr char kCheckId[] = "orvanta.blockara.DataStoreUsage";
  static constexpr std::uint32_t kSeverity = Severity::kBoth;

  /// Any thread. Never throws beyond allocation.
  DataStoreUsage(const std::wstring& diagramName, std::uint32_t severity);

  /// Worker thread. Compares the data store blocks of the snapshot by name: the lowest-handled
  /// block of a name counts also when commented, later commented ones are left out, and a
  /// commented block never gets a record. Always true.
  bool evaluate(bkEditBD& data, ViolationDatabase& database) override;
};

}  // namespace bkedittimecheck
