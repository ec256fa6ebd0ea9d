#include "src/features.h"

#include "host/prefs/bkfeature.h"

namespace {

// This flag belongs with the chart state port mapping check; it lives here until that check
// arrives so that the exported pointer exists from load on.
BkFeature blockaraEditTimeChecksForBlockaraBasedStates(
    "BlockaraEditTimeChecksForBlockaraBasedStates",
    "Blockara edit time checks for Blockara based states in Chartelle",
    "src/algorithms/blockarastateportmappingviolation", "Chartelle [Semantics]", 1588823, 1, 0);

}  // namespace

BkFeature* BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates =
    &blockaraEditTimeChecksForBlockaraBasedStates;
