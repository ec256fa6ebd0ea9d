#include "src/algorithms/diagramcheck.h"

#include "src/bkeditbd.h"
#include "src/violationdatabase.h"

namespace bkedittimecheck {

bool DiagramCheck::runCheck(const CheckContext& context) {
  if (!context.data || !context.violations) return false;
  return evaluate(*context.data, *context.violations);
}

}  // namespace bkedittimecheck
