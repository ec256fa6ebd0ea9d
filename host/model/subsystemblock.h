#pragma once

#include <memory>

#include "host/model/bkblock.h"

/// A block that contains a system level: a subsystem (type code 131) or a chart.
///
/// Thread contract: main thread only. The static queries take any block and answer false (or
/// 0) for a block that is not a subsystem, so that callers need not cast first.
class SubsystemBlock final : public BKBlock {
 public:
  /// Makes a detached block of `type` with an empty system level of its own.
  SubsystemBlock(const BlockTypeInfo& type, bksvString name);
  ~SubsystemBlock() override;

  bool hasSubGraph() const override { return true; }
  bkGraph* getSubGraph() const override { return graphInside.get(); }

  /// `block` as a subsystem block, or null when it contains no system.
  static SubsystemBlock* from(BKBlock* block);
  static const SubsystemBlock* from(const BKBlock* block);

  /// True for a subsystem whose "Variant" parameter is "on".
  static bool IsVariantSubsystem(const BKBlock* block);
  /// True when "IsBlockaraFunction" is "on".
  static bool getIsBlockaraFunction(const BKBlock* block);
  /// The "SubsystemType" parameter as a number (8: a state of a chart); 0 when unset.
  static int getSubsystemType(const BKBlock* block);
  /// True when "TreatAsAtomicUnit" is "on".
  static bool determineIsAtomicUnit(const BKBlock* block);
  /// "FunctionPackaging" is "Auto".
  static bool IsCodeAuto(const BKBlock* block);
  /// "FunctionPackaging" is "Nonreusable function".
  static bool IsSetAsFunction(const BKBlock* block);
  /// "FunctionPackaging" is "Reusable function".
  static bool IsSetAsReusableFunction(const BKBlock* block);

 private:
  std::unique_ptr<bkGraph> graphInside;
};
