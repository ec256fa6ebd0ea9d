#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "host/language/nxarray.h"

namespace cmddistributor {
class CmdDistributor;
class Sink;
}  // namespace cmddistributor

namespace nvm {

/// Runs a host-language function by name with arguments and a count of wanted results. Throws
/// NException when the host language raises an error.
using Evaluator = std::function<std::vector<nxArray>(const std::string& functionName, int nlhs,
                                                     const std::vector<nxArray>& args)>;

/// The host language's virtual machine: where requests are distributed and how they are
/// evaluated. Thread contract: `getDistributor` and `getSink` from any thread; `setEvaluator` and
/// `evaluate` on the main thread only (the evaluator is only ever touched there).
class MVM {
 public:
  MVM();
  ~MVM();
  MVM(const MVM&) = delete;
  MVM& operator=(const MVM&) = delete;

  /// The command distributor of this machine. Any thread.
  cmddistributor::CmdDistributor& getDistributor();
  /// The sink for a request's output (flag 0) or errors (flag 1); both discard what they get.
  /// Any thread.
  std::shared_ptr<cmddistributor::Sink> getSink(int flag) const;

  /// Attaches the host language (an empty function detaches it). Main thread.
  void setEvaluator(Evaluator fn);
  /// True when a host language is attached. Main thread.
  bool hasEvaluator() const;
  /// Evaluates a function; throws NException "blockara:nvm:NoHostLanguage" when none is
  /// attached, or what the evaluator throws. Main thread.
  std::vector<nxArray> evaluate(const std::string& functionName, int nlhs,
                                const std::vector<nxArray>& args);

 private:
  std::unique_ptr<cmddistributor::CmdDistributor> distributor;
  Evaluator evaluator;  // main thread only
};

class Factory {
 public:
  /// The process-wide local virtual machine. Any thread.
  static std::shared_ptr<MVM> getCurrentLocalMVM();
};

}  // namespace nvm
