#pragma once

#include <boost/property_tree/ptree.hpp>

#include "src/algorithms/blockcheck.h"
#include "src/algorithms/blocklistcheck.h"

namespace bkedittimecheck {

/// Worker thread. The reader that ProhibitedBlocks and ProhibitedSinks share: clears `list`,
/// then for every "InputParameter": each "Value" of the one named "Treat blocktype list as" sets
/// `treatListAsProhibited` (false only for the exact text "Allowed"), and the children of every
/// "Value", whatever the parameter's name, are appended to `list`.
void readBlockTypeList(const boost::property_tree::ptree& configuration, BlockTypeList& list,
                       bool& treatListAsProhibited);

/// The decision that ProhibitedBlocks and ProhibitedSinks share: a block is listed when its type
/// is a key of `list` and its mask type is among that key's entries, compared exactly.
Verdict decideByList(const bkEditBlock& block, const BlockTypeList& list,
                     bool treatListAsProhibited);

}  // namespace bkedittimecheck
