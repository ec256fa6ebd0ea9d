#include "src/algorithms/setup.h"

#include <utility>

#include "src/bkeditbd.h"

namespace bkedittimecheck {

Setup::Setup(const std::wstring& diagramName)
    : EditTimeAlgorithms(kCheckId, diagramName, kSeverity) {}

bool Setup::runCheck(const CheckContext& context) {
  if (context.data) context.data->processChanges(context.violations.get());
  return true;
}

}  // namespace bkedittimecheck
