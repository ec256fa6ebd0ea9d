#pragma once

class BkFeature;

/// The host feature flags that this library defines and exports. Each is on while its level is
/// at least 1; all three start on. Read them through `bkedittimecheck::featureOn`.
extern BkFeature* BKFEAT_BlockConstraintCheckAuthoring;
extern BkFeature* BKFEAT_BlockParamEditTimeCheckOnCanvas;
extern BkFeature* BKFEAT_BlockaraEditTimeChecksForBlockaraBasedStates;
