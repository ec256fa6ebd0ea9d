#include "src/algorithms/setup.h"

#include <utility>

namespace bkedittimecheck {

Setup::Setup(std::wstring diagramName)
    : EditTimeAlgorithms("internal.DBsetup", std::move(diagramName), 5) {}

}  // namespace bkedittimecheck
