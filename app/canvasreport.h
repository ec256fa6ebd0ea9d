#pragma once

#include <string>
#include <vector>

#include "app/findings.h"

class BKRootBD;

namespace blockara::app {

/// The canvas report: an HTML page with one SVG per system level, in path order. Each block is
/// drawn at its position with its name below and its ports on its sides (a subsystem has one
/// port per Inport and Outport inside it); the glow the styling service gives it is drawn from
/// the styler's rule (colour and size); hovering a block shows its path and the sentences and
/// hints of its findings; a subsystem links to the drawing of its level and each level back to
/// its parent. Beside the drawings, the list of findings that no exclusion exempts: pointing at
/// one highlights its block, clicking it scrolls the block into view. The model format has no
/// lines between blocks, so none are drawn. Main thread.
std::string formatCanvas(BKRootBD& diagram, const std::vector<Finding>& findings);

}  // namespace blockara::app
