#include "src/algorithms/edittimealgorithms.h"

#include <mutex>
#include <utility>

namespace bkedittimecheck {

namespace {

std::mutex& inputParametersMutex() {
  static std::mutex m;
  return m;
}

bool inputParametersChangedFlag = false;  // guarded by inputParametersMutex()

}  // namespace

EditTimeAlgorithms::EditTimeAlgorithms(std::string checkId, std::wstring diagramName,
                                       std::uint32_t severity)
    : checkId(std::move(checkId)), diagramName(std::move(diagramName)), severity(severity) {}

EditTimeAlgorithms::~EditTimeAlgorithms() = default;

void EditTimeAlgorithms::prepare() {}

bool EditTimeAlgorithms::runCheck() { return true; }

void EditTimeAlgorithms::setInputParametersChanged(bool changed) {
  std::lock_guard<std::mutex> lock(inputParametersMutex());
  inputParametersChangedFlag = changed;
}

bool EditTimeAlgorithms::inputParametersChanged() {
  std::lock_guard<std::mutex> lock(inputParametersMutex());
  return inputParametersChangedFlag;
}

}  // namespace bkedittimecheck
