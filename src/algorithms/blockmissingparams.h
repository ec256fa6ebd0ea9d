#pragma once

#include <cstdint>
#include <functional>
#include <future>
#include <string>
#include <vector>

#include "src/algorithms/diagramcheck.h"
#include "src/editcodes.h"

namespace bkedittimecheck {

/// "BlockMissingVariable": asks the host language which blocks of the snapshot name a variable
/// that does not exist, and marks them "BlockEditTimeMissingParams". The record's severity comes
/// from the host's BKFEAT_ShowMissingVarsAtEditTime: 1 below level 3, 0 from 3 on; its path
/// stays empty. The one check that waits for the host language. Worker thread only.
class BlockMissingParams : public DiagramCheck {
 public:
  static constexpr char kCheckId[] = "BlockMissingVariable";
  static constexpr std::uint32_t kSeverity = Severity::kError;
  /// The host-language function asked, with the vector of handles and the diagram's name.
  static constexpr const char* kFunction = "Blockara.BlockEditTimeController.findMissingVariable";

  /// Any thread. `eventCode` is the engine's event code of the batch that built the check.
  BlockMissingParams(const std::wstring& diagramName, std::uint32_t severity,
                     std::int32_t eventCode);

  /// Worker thread. With event code 17 drops every mark of the check without asking. Otherwise
  /// asks about every block of the snapshot (blocks kept across batches as the handle 0) and
  /// waits for the answer on this thread. A failed evaluation, a future without state or an
  /// answer of another length ends the run with false and changes nothing more; no exception
  /// leaves the run.
  bool evaluate(bkEditBD& data, ViolationDatabase& database) override;

  std::int32_t getEventCode() const { return eventCode; }

  /// How the question reaches the host language: given the handles and the diagram's name, a
  /// future of the answer. The default posts `kFunction` to the current local virtual machine.
  using Question = std::function<std::future<std::vector<bool>>(const std::vector<double>&,
                                                                const std::wstring&)>;
  /// Main thread, while no check runs. Replaces how the question is asked (empty: the default);
  /// for tests that need a future without state or no virtual machine.
  static void setQuestion(Question question);

 private:
  const std::int32_t eventCode;
};

}  // namespace bkedittimecheck
