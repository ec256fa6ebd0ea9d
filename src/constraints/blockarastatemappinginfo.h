#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

class nxArray;

namespace bkedittimecheck {

/// What a chart declares for one of its Blockara-based states: which data names exist and in which
/// direction, so that the state's ports can be compared with it.
///
/// Thread contract: made on the main thread while a block snapshot is taken, immutable after;
/// any thread may ask.
class BlockaraStateMappingInfo {
 public:
  virtual ~BlockaraStateMappingInfo() = default;
  /// True when `name` is declared but not with the direction a port of `blockKind` needs: an
  /// Inport (66) needs an input, every other kind an output.
  virtual bool isMismapped(const std::wstring& name, std::int32_t blockKind) const = 0;
  /// True when `name` is not declared at all.
  virtual bool isUnmapped(const std::wstring& name) const = 0;
};

/// The declared data of one state as a table from data name to scope.
class BlockaraStateMappingInfoImpl : public BlockaraStateMappingInfo {
 public:
  /// Data scope: 0 input, 1 output, 2 any other.
  enum class Scope : std::int32_t { input = 0, output = 1, other = 2 };

  /// Main thread. Asks the host language "Chartelle.BKINCE.BlockaraMan.getPortMappingInfo" for
  /// the data of the state subsystem `subsystemHandle`, without throwing: a failed call, or an
  /// answer that is no struct array, leaves the table empty and drops the diagnostic.
  /// Of each element of the answer, "dataName" and "dataScope" are read as text ("input",
  /// "output", else other); a missing or non-text field reads as empty; a later element
  /// overwrites the scope of an earlier one of the same name.
  explicit BlockaraStateMappingInfoImpl(double subsystemHandle);

  bool isMismapped(const std::wstring& name, std::int32_t blockKind) const override;
  bool isUnmapped(const std::wstring& name) const override;

 private:
  void fill(const nxArray& answer);  // main thread, from the constructor

  std::vector<std::wstring> order;                 // declaration order of the names
  std::unordered_map<std::wstring, Scope> scopes;  // the look-up index
};

/// What a port of a Blockara-based state knows of its state.
///
/// Thread contract: immutable after construction on the main thread.
class BlockaraStatePortInfo {
 public:
  virtual ~BlockaraStatePortInfo() = default;
  /// The handle of the state subsystem that contains the port.
  virtual double stateSubsystemHandle() const = 0;
};

/// The one-handle implementation.
class BlockaraStatePortInfoImpl : public BlockaraStatePortInfo {
 public:
  explicit BlockaraStatePortInfoImpl(double subsystemHandle) : subsystemHandle(subsystemHandle) {}
  double stateSubsystemHandle() const override { return subsystemHandle; }

 private:
  const double subsystemHandle;
};

}  // namespace bkedittimecheck
