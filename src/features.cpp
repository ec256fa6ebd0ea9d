#include "src/features.h"

// The flag objects are made by the host's feature service; until it is linked in, the pointers
// stay null and every read through `featureOn` answers with the default level, on.
BkFeature* BKFEAT_BlockConstraintCheckAuthoring = nullptr;
BkFeature* BKFEAT_BlockParamEditTimeCheckOnCanvas = nullptr;
BkFeature* BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates = nullptr;
