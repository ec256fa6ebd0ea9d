#include "host/prefs/hostfeatures.h"

#include "host/prefs/bkfeature.h"

namespace {

BkFeature showMissingVarsAtEditTime("ShowMissingVarsAtEditTime",
                                    "Show missing variables of block parameters at edit time",
                                    "host/prefs/hostfeatures", "Blockara Data Management", 1615927,
                                    1, 0);

}  // namespace

BkFeature* BKFEAT_ShowMissingVarsAtEditTime = &showMissingVarsAtEditTime;
