#include "src/algorithms/removeblock.h"

#include <utility>

namespace bkedittimecheck {

RemoveBlock::RemoveBlock(std::wstring diagramName, std::uint32_t severity)
    : EditTimeAlgorithms("internal.RemoveBlock", std::move(diagramName), severity) {}

}  // namespace bkedittimecheck
