#include "host/language/feval.h"

#include <iostream>
#include <mutex>

#include "host/language/nvm.h"
#include "host/runtime/eventloop.h"

namespace {
std::mutex warningMutex;
std::function<void(const std::string&)> warningHandler;  // guarded by warningMutex
}  // namespace

bksvDiagnosticPtr bksvFEVAL_NoThrow(int nlhs, std::vector<nxArray>& plhs,
                                    const std::string& functionName,
                                    const std::vector<nxArray>& prhs) {
  if (!blockara::EventLoop::instance().isMainThread()) {
    return std::make_shared<bksvDiagnostic>(bksvDiagnostic{
        "blockara:nvm:NotMainThread",
        "The host language can only be called on the main thread (" + functionName + ")."});
  }
  try {
    plhs = nvm::Factory::getCurrentLocalMVM()->evaluate(functionName, nlhs, prhs);
    return nullptr;
  } catch (const NException& e) {
    return std::make_shared<bksvDiagnostic>(bksvDiagnostic{e.identifier(), e.what()});
  } catch (const std::exception& e) {
    return std::make_shared<bksvDiagnostic>(bksvDiagnostic{"", e.what()});
  } catch (...) {
    return std::make_shared<bksvDiagnostic>(bksvDiagnostic{"", "unknown error in " + functionName});
  }
}

void bksvReportAsWarning(const bksvDiagnosticPtr& diagnostic) {
  if (!diagnostic) return;
  std::lock_guard<std::mutex> lock(warningMutex);
  if (warningHandler) {
    warningHandler(diagnostic->message);
  } else {
    std::cerr << "Warning: " << diagnostic->message << std::endl;
  }
}

void bksvSetWarningHandler(std::function<void(const std::string&)> handler) {
  std::lock_guard<std::mutex> lock(warningMutex);
  warningHandler = std::move(handler);
}

void bksvThrowIExceptionFromDiagnostic(const bksvDiagnosticPtr& diagnostic) {
  if (diagnostic) throw NException(diagnostic->identifier, diagnostic->message);
}
