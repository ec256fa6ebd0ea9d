#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace bkedittimecheck {

/// One finding of a check on one block. Created by a check on the worker, then shared between the
/// `ViolationDatabase` and its readers. Within one block's set a record is identified by the
/// triple (`checkId`, `violationType`, `severity`); `isCommented` and `blockPath` are payload.
///
/// Thread contract: a record is filled before it is offered to the database; after that only the
/// database changes it, under its own mutex.
struct EditTimeViolation {
  /// Makes a record with `isCommented` 0 and an empty `blockPath`. Never throws beyond allocation.
  EditTimeViolation(std::string checkId, std::string violationType, std::uint32_t severity,
                    double blockHandle);

  std::string checkId;
  std::string violationType;
  std::uint32_t severity;
  double blockHandle;
  std::uint8_t isCommented = 0;
  std::wstring blockPath;

  /// True when the identifying triples are equal.
  bool sameAs(const EditTimeViolation& other) const;
};

/// Hash of a shared record by its identifying triple; for the per-block sets of the store.
struct EditTimeViolationHash {
  std::size_t operator()(const std::shared_ptr<EditTimeViolation>& v) const;
};

/// Equality of shared records by their identifying triple.
struct EditTimeViolationEqual {
  bool operator()(const std::shared_ptr<EditTimeViolation>& a,
                  const std::shared_ptr<EditTimeViolation>& b) const;
};

}  // namespace bkedittimecheck
