// The capture of the block parameters that block parameter constraints judge: the one place
// where a snapshot reads parameters by name, kept apart from the snapshot's fixed fields.
#include "host/model/blockqueries.h"
#include "src/constraints/bkeditblock.h"
#include "src/constraints/blockparameterconstraint.h"
#include "src/constraints/constraintvaluearray.h"

namespace bkedittimecheck {

namespace {

// The host's dialog parameter type codes whose value is read as text.
constexpr int kTextParameterTypes[] = {1, 2, 5, 6, 11, 12, 14};

bool readsAsText(int typeCode) {
  for (int code : kTextParameterTypes) {
    if (code == typeCode) return true;
  }
  return false;
}

}  // namespace

void bkEditBlock::captureConstraintParameters(
    const BKBlock* block,
    const std::vector<std::shared_ptr<BlockParameterConstraint>>& constraints) {
  if (constraints.empty()) return;
  CapturedValues& captured = rareData().capturedParameterValues;
  for (const auto& constraint : constraints) {
    const std::string name = constraint->getParameterName();
    const std::string dataType = constraint->getParameterDataType();
    // A parameter the block lacks is a defect of the data file; it reads as nothing.
    const BKPrmDesc* descriptor = block->getGrPrmDesc(name);
    if (!descriptor) continue;
    if (readsAsText(descriptor->typeCode)) {
      captured[name] = bkobject::block::getParamAsStr(block, name);
      continue;
    }
    const nxArray value = blockParamValueToArray(bkobject::block::getParamValue(block, name));
    if (dataType == "struct") {
      captured[name] = structToMap(value);
    } else if (dataType == "array") {
      captured[name] = cellToVector(value);
    }
  }
}

}  // namespace bkedittimecheck
