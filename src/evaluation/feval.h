#pragma once

#include <cstdint>
#include <future>
#include <memory>
#include <string>
#include <vector>

#include "host/language/cmddistributor.h"
#include "host/language/nvm.h"

namespace bkedittimecheck {

/// The arguments of one posted evaluation, copied at posting and turned into host-language values
/// on the main thread. Immutable once posted, so both threads may hold it.
class FEvalOpaqueInputData : public cmddistributor::FEvalOpaqueData {
 public:
  /// Any thread. Builds the array list now; the arrays are plain values owned by this object.
  explicit FEvalOpaqueInputData(std::vector<nxArray> arguments);
  /// Main thread (the virtual machine's). A copy of the arguments.
  std::vector<nxArray> toArrays() const override { return arguments; }

 private:
  const std::vector<nxArray> arguments;
};

/// A request to evaluate one named function: the payload built from name, count of results, the
/// copied arguments and the stream identifier (the mode).
class FEvalCmdRequest : public cmddistributor::CmdRequest {
 public:
  /// Any thread.
  FEvalCmdRequest(std::string functionName, int nlhs,
                  std::shared_ptr<const FEvalOpaqueInputData> data,
                  cmddistributor::IqmStreamID streamId,
                  std::shared_ptr<cmddistributor::Sink> outputSink,
                  std::shared_ptr<cmddistributor::Sink> errorSink);
};

/// Any thread. Posts `functionName(diagramName, engineId)` (a character row and a uint32 scalar)
/// to the main thread in mode 3, wanting no result. The returned future completes once the main
/// loop evaluated the call; it rethrows a host-language error as `cmddistributor::RuntimeException`.
/// Throws `std::invalid_argument` when `vm` is null or the distributor refuses the request.
std::future<void> postFEval(const std::shared_ptr<nvm::MVM>& vm, const std::string& functionName,
                            const std::wstring& diagramName, std::uint32_t engineId);

/// Any thread. Posts `functionName(handles, diagramName)` wanting one logical result, returned
/// as a vector of bool by the future. Besides the errors of `postFEval`, the future throws
/// std::runtime_error when the result is not logical ("nxArray contained ... but expected ...")
/// or missing ("std::vector<bool> not convertible from serialized value."). Waiting on the main
/// thread deadlocks.
std::future<std::vector<bool>> postFEvalMissingVariables(const std::shared_ptr<nvm::MVM>& vm,
                                                         const std::string& functionName,
                                                         const std::vector<double>& handles,
                                                         const std::wstring& diagramName);

}  // namespace bkedittimecheck
