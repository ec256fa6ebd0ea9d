#include "src/constraints/blockparameterconstraint.h"

#include <vector>

#include "host/language/feval.h"
#include "host/model/bkgrclasses.h"
#include "src/constraints/bkeditblock.h"
#include "src/constraints/constrainterrors.h"
#include "src/constraints/constraintvaluearray.h"
#include "src/constraints/parameterconstraintnode.h"

namespace bkedittimecheck {

namespace {

// The host context, starting the host through the host language when it is not up yet.
BkGrContext* hostContext() {
  BkGrContext* context = BkGrClasses::GetBKContext();
  if (context) return context;
  std::vector<nxArray> results;
  bksvReportAsWarning(bksvFEVAL_NoThrow(0, results, "start_blockara", {}));
  return BkGrClasses::GetBKContext();
}

}  // namespace

void BlockParameterConstraint::setCurrentValue(ParameterValue value) {
  refresh();
  CurrentValue = std::move(value);
}

void BlockParameterConstraint::setCurrentValue(std::shared_ptr<bkEditBlock> block) {
  refresh();
  const std::map<std::string, ParameterValue> captured = block->getCapturedParameterValues();
  if (captured.empty()) return;
  auto found = captured.find(getParameterName());
  if (found != captured.end()) CurrentValue = found->second;
}

bool BlockParameterConstraint::isValidBlock(const std::string& blockType) {
  blockHandleIsValid = 0;
  const std::string path = "built-in/" + blockType;
  BkGrContext* context = hostContext();
  if (!context) return false;
  const BkGrContext::Lookup found = context->lookupObject(path, BkGrContext::kindBlock);
  if (found.diagnostic) {
    bksvThrowIExceptionFromDiagnostic(std::make_shared<bksvDiagnostic>(
        bksvDiagnostic{found.diagnostic->identifier, found.diagnostic->message}));
  }
  if (found.kind == BkGrContext::kindNone) throw UnknownBuiltInBlock(blockType);
  if (found.kind == BkGrContext::kindBlock) {
    builtInBlockHandle = found.object;
    blockHandleIsValid = 1;
  }
  return blockHandleIsValid != 0;
}

bool BlockParameterConstraint::isValidParameter(const std::string& name) const {
  if (BlockType.empty()) return true;
  if (blockHandleIsValid == 0 || !builtInBlockHandle) return false;
  return builtInBlockHandle->getGrPrmVisible(builtInBlockHandle->getGrPrmDesc(name));
}

bool BlockParameterConstraint::isValidConstraintValue(
    std::vector<ConstraintValue> /*values*/) const {
  return false;
}

void BlockParameterConstraint::setCosBlockType(std::string type) {
  if (!isValidBlock(type)) return;
  BlockType = type;
  if (!getParameterName().empty() && !isValidParameter(getParameterName())) {
    BlockType.clear();
    throw InvalidBlockParameterName(getParameterName(), type);
  }
}

void BlockParameterConstraint::setCosParameterName(std::string name) {
  if (!isValidParameter(name)) throw InvalidBlockParameterName(name, BlockType);
  setParameterName(std::move(name));
}

void BlockParameterConstraint::setCosValueOperator(std::string op) {
  checkOperatorAgainstCount(op, getConstraintValue().size());
  setValueOperator(std::move(op));
}

void BlockParameterConstraint::readNode(const boost::property_tree::ptree& tree,
                                        const std::string& id) {
  setID(id);
  scanDOMNode(tree);
  setBlockType(tree.get<std::string>("<xmlattr>.BlockType", ""));
}

PositiveBlockParameterConstraint::PositiveBlockParameterConstraint(
    const boost::property_tree::ptree& tree, const std::string& id) {
  readNode(tree, id);
}

bool PositiveBlockParameterConstraint::check() { return judge(true); }

void PositiveBlockParameterConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  scanParameterConstraintNode(*this, tree);
}

const std::string PositiveBlockParameterConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.PositiveBlockParameterConstraint";
}

void PositiveBlockParameterConstraint::deleteTheDummyBPC(ncos::COSInterfacePtr object) {
  object.reset();
}

NegativeBlockParameterConstraint::NegativeBlockParameterConstraint(
    const boost::property_tree::ptree& tree, const std::string& id) {
  readNode(tree, id);
}

bool NegativeBlockParameterConstraint::check() { return judge(false); }

void NegativeBlockParameterConstraint::scanDOMNode(boost::property_tree::ptree tree) {
  scanParameterConstraintNode(*this, tree);
}

const std::string NegativeBlockParameterConstraint::getFullyQualifiedNcosTypeName() const {
  return "Auditor.authoring.NegativeBlockParameterConstraint";
}

void NegativeBlockParameterConstraint::deleteTheDummyBPC(ncos::COSInterfacePtr object) {
  object.reset();
}

}  // namespace bkedittimecheck
