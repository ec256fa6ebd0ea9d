#include "src/features.h"

#include "host/prefs/bkfeature.h"

// The flags exist from load on, so that the host can list and set them before any diagram opens.
namespace {

BkFeature blockConstraintCheckAuthoring("BlockConstraintCheckAuthoring",
                                        "Block Constraint Check Authoring for Edit-time Checking",
                                        "src/edittimeengine", "BkCheck", 974268, 1, 0);
BkFeature blockParamEditTimeCheckOnCanvas(
    "BlockParamEditTimeCheckOnCanvas",
    "Missing variable check for block parameters during edit time", "src/edittimeengine",
    "Blockara Data Management", 1615926, 1, 0);
BkFeature blockaraEditTimeChecksForBlockaraBasedStates(
    "BlockaraEditTimeChecksForBlockaraBasedStates",
    "Blockara edit time checks for Blockara based states in Chartelle",
    "src/algorithms/blockarastateportmappingviolation", "Chartelle [Semantics]", 1588823, 1, 0);

}  // namespace

BkFeature* BKFEAT_BlockConstraintCheckAuthoring = &blockConstraintCheckAuthoring;
BkFeature* BKFEAT_BlockParamEditTimeCheckOnCanvas = &blockParamEditTimeCheckOnCanvas;
BkFeature* BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates =
    &blockaraEditTimeChecksForBlockaraBasedStates;
