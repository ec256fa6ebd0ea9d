#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/language/nxarray.h"

/// An error raised by the host language: its message identifier (empty when the error had none)
/// and its message. Any thread.
class NException : public std::runtime_error {
 public:
  NException(std::string identifier, const std::string& message)
      : std::runtime_error(message), id(std::move(identifier)) {}
  const std::string& identifier() const { return id; }

 private:
  std::string id;
};

/// What a failed host-language evaluation left: identifier and message.
struct bksvDiagnostic {
  std::string identifier;
  std::string message;
};
using bksvDiagnosticPtr = std::shared_ptr<bksvDiagnostic>;

/// Evaluates the host-language function `functionName` synchronously with `prhs`, wanting `nlhs`
/// results, which land in `plhs`. Never throws: returns null on success, else the diagnostic
/// (also when no host language is attached, or when it is called off the main thread, which is
/// refused with identifier "blockara:nvm:NotMainThread"). Main thread.
bksvDiagnosticPtr bksvFEVAL_NoThrow(int nlhs, std::vector<nxArray>& plhs,
                                    const std::string& functionName,
                                    const std::vector<nxArray>& prhs);

/// Reports a diagnostic as a warning ("Warning: <message>" on standard error, or to the handler
/// set below); a null diagnostic reports nothing. Any thread.
void bksvReportAsWarning(const bksvDiagnosticPtr& diagnostic);
/// Replaces where warnings go (an empty function restores standard error). Any thread.
void bksvSetWarningHandler(std::function<void(const std::string&)> handler);

/// Throws an NException with the diagnostic's identifier and message; a null diagnostic does
/// nothing. Any thread.
void bksvThrowIExceptionFromDiagnostic(const bksvDiagnosticPtr& diagnostic);
