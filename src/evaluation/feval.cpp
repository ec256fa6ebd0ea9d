// The worker's one way into the host language: copy the arguments, post a request to the virtual
// machine's distributor and hand back a future. The main loop evaluates the request later.
#include "src/evaluation/feval.h"

#include <stdexcept>
#include <utility>

#include "src/hostinterface.h"

namespace bkedittimecheck {
namespace {

// The mode of the posted evaluations: evaluated in the background, without echo.
constexpr cmddistributor::IqmStreamID kBackgroundStream = 3;

template <class R>
std::future<R> post(const std::shared_ptr<nvm::MVM>& vm, const std::string& functionName, int nlhs,
                    std::vector<nxArray> arguments,
                    typename cmddistributor::PromiseDelegateT<R>::Extractor extract) {
  if (!vm) throw std::invalid_argument("no virtual machine to post to.");
  auto data = std::make_shared<const FEvalOpaqueInputData>(std::move(arguments));
  auto request = std::make_shared<FEvalCmdRequest>(functionName, nlhs, std::move(data),
                                                   kBackgroundStream, vm->getSink(0),
                                                   vm->getSink(1));
  auto delegate = std::make_shared<cmddistributor::PromiseDelegateT<R>>(std::move(extract));
  std::future<R> future = delegate->getFuture();
  vm->getDistributor().submitRequest(request, delegate);
  return future;
}

}  // namespace

FEvalOpaqueInputData::FEvalOpaqueInputData(std::vector<nxArray> arguments)
    : arguments(std::move(arguments)) {}

FEvalCmdRequest::FEvalCmdRequest(std::string functionName, int nlhs,
                                 std::shared_ptr<const FEvalOpaqueInputData> data,
                                 cmddistributor::IqmStreamID streamId,
                                 std::shared_ptr<cmddistributor::Sink> outputSink,
                                 std::shared_ptr<cmddistributor::Sink> errorSink)
    : cmddistributor::CmdRequest(
          streamId, std::move(outputSink), std::move(errorSink),
          std::make_shared<const cmddistributor::FEvalIIP>(std::move(functionName), nlhs,
                                                           std::move(data), streamId)) {}

std::future<void> postFEval(const std::shared_ptr<nvm::MVM>& vm, const std::string& functionName,
                            const std::wstring& diagramName, std::uint32_t engineId) {
  std::vector<nxArray> arguments{nxArray::charRow(std::u16string_view(toBksv(diagramName))),
                                 nxArray::uint32Scalar(engineId)};
  return post<void>(vm, functionName, 0, std::move(arguments),
                    [](const std::shared_ptr<cmddistributor::CmdEvent>& event) {
                      cmddistributor::detail::completedResults(event);
                    });
}

std::future<std::vector<bool>> postFEvalMissingVariables(const std::shared_ptr<nvm::MVM>& vm,
                                                         const std::string& functionName,
                                                         const std::vector<double>& handles,
                                                         const std::wstring& diagramName) {
  std::vector<nxArray> arguments{nxArray::doubleMatrix(1, handles.size(), handles),
                                 nxArray::charRow(std::u16string_view(toBksv(diagramName)))};
  return post<std::vector<bool>>(
      vm, functionName, 1, std::move(arguments),
      [](const std::shared_ptr<cmddistributor::CmdEvent>& event) {
        std::vector<nxArray> results = cmddistributor::detail::completedResults(event);
        // The one output was asked for: an answer without it cannot become the result type.
        if (results.empty()) {
          throw std::runtime_error("std::vector<bool> not convertible from serialized value.");
        }
        return cmddistributor::detail::toVectorOfBool(results.front());
      });
}

}  // namespace bkedittimecheck
