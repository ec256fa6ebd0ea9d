#include "app/findingtext.h"

#include <cstdint>
#include <map>
#include <variant>
#include <vector>

#include "app/findings.h"
#include "host/language/messagecatalog.h"
#include "host/model/bkblock.h"
#include "src/algorithms/bkciunsupportedblocks.h"
#include "src/algorithms/blockarastateportmappingviolation.h"
#include "src/algorithms/blockconstraintviolation.h"
#include "src/algorithms/blockmissingparams.h"
#include "src/algorithms/blocknameposition.h"
#include "src/algorithms/blocknameviolation.h"
#include "src/algorithms/blockorientation.h"
#include "src/algorithms/codegenblocknameviolation.h"
#include "src/algorithms/datastoreusage.h"
#include "src/algorithms/gotofromblockmismatch.h"
#include "src/algorithms/portblockicondisplay.h"
#include "src/algorithms/portnameviolation.h"
#include "src/algorithms/productioncodegensupport.h"
#include "src/algorithms/prohibitedblocks.h"
#include "src/algorithms/prohibitedsinks.h"
#include "src/algorithms/stateaccessorpathviolation.h"
#include "src/algorithms/subsystemnameviolation.h"

namespace blockara::app {

namespace {

namespace etc = bkedittimecheck;

// The text of a property or parameter, empty when the block has none or it is not text.
std::string property(const BKBlock& block, const char* name) {
  try {
    const BlockValue value = block.getProperty(name);
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
  } catch (const std::exception&) {
  }
  return {};
}

std::string typeAndMask(const BKBlock& block) {
  std::string text = ConvertUStringToStdString(block.getTypeName());
  if (const BKMask* mask = block.getMask()) {
    text += " (mask type '" + ConvertUStringToStdString(mask->type) + "')";
  }
  return text;
}

std::string listVerdict(bool listIsProhibited) {
  return listIsProhibited ? "on the prohibited list" : "not on the allowed list";
}

// The arguments {1} and {2} of a violation type, read from the block and from what the check
// last read from the configuration.
using Arguments = std::vector<std::string> (*)(const BKBlock&, const std::string& checkId);

const std::map<std::string, Arguments>& argumentsByType() {
  static const std::map<std::string, Arguments> table = {
      {"BlockNamePosition",
       [](const BKBlock& b, const std::string&) -> std::vector<std::string> {
         return {property(b, "NamePlacement")};
       }},
      {"BlockOrientation",
       [](const BKBlock& b, const std::string&) -> std::vector<std::string> {
         return {property(b, "Orientation")};
       }},
      {"PortBlockIconDisplay",
       [](const BKBlock& b, const std::string&) -> std::vector<std::string> {
         return {property(b, "IconDisplay")};
       }},
      {"BlockNameViolation",
       [](const BKBlock&, const std::string&) -> std::vector<std::string> {
         return {"", etc::BlockNameViolation::prohibitedNamePattern};
       }},
      {"PortNameViolation",
       [](const BKBlock&, const std::string&) -> std::vector<std::string> {
         return {"", etc::PortNameViolation::prohibitedNamePattern};
       }},
      {"SubsystemNameViolation",
       [](const BKBlock&, const std::string&) -> std::vector<std::string> {
         return {"", etc::SubsystemNameViolation::prohibitedNamePattern};
       }},
      {"CodegenBlockNameViolation",
       [](const BKBlock&, const std::string&) -> std::vector<std::string> {
         return {"", etc::CodegenBlockNameViolation::prohibitedNamePattern};
       }},
      {"ProhibitedBlocks",
       [](const BKBlock& b, const std::string&) -> std::vector<std::string> {
         return {typeAndMask(b), listVerdict(etc::ProhibitedBlocks::treatListAsProhibited)};
       }},
      {"ProhibitedSinks",
       [](const BKBlock& b, const std::string&) -> std::vector<std::string> {
         return {typeAndMask(b), listVerdict(etc::ProhibitedSinks::treatListAsProhibited)};
       }},
      {"BlockConstraintViolation",
       [](const BKBlock&, const std::string& checkId) -> std::vector<std::string> {
         return {checkId};
       }},
  };
  return table;
}

// Types whose {1} is one parameter of the block.
const std::map<std::string, const char*>& parameterByType() {
  static const std::map<std::string, const char*> table = {
      {"NoMatchingGoTO", "GotoTag"},
      {"NoMatchingFrom", "GotoTag"},
      {"DuplicateGoToTagVisibility", "GotoTag"},
      {"NoMatchingGoToTagVisibilityBlock", "GotoTag"},
      {"DuplicateGoTo", "GotoTag"},
      {"DuplicateDataStoreMemoryBlocksSameGraph", "DataStoreName"},
      {"DuplicateDataStoreMemoryBlocksDiagnostic", "DataStoreName"},
      {"StateAccessorInImplicitIterator", "StateOwnerBlock"},
      {"StateAccessorAndStateOwnerInSameSystem", "StateOwnerBlock"},
      {"StateOwnerInsideStateAccessorSystem", "StateOwnerBlock"},
      {"StateAccessorInsideStateOwnerSystem", "StateOwnerBlock"},
  };
  return table;
}

}  // namespace

FindingText describeFinding(const BKBlock& block, const std::string& type,
                            const std::string& checkId) {
  std::vector<std::string> args{ConvertUStringToStdString(block.getName())};
  if (auto it = argumentsByType().find(type); it != argumentsByType().end()) {
    for (std::string& a : it->second(block, checkId)) args.push_back(std::move(a));
  } else if (auto p = parameterByType().find(type); p != parameterByType().end()) {
    args.push_back(property(block, p->second));
  } else {
    args.push_back(typeAndMask(block));
  }
  const auto& catalog = bkmsg::MessageCatalog::instance();
  const std::string id = "blockara:finding:" + type;
  if (!catalog.contains(id)) {
    return {"Block '" + args[0] + "' has a " + type + " finding of check " + checkId + ".",
            "See the check's description."};
  }
  return {catalog.format(id, args), catalog.format(id + ".hint", args)};
}

RuleText describeRule(const std::string& checkId) {
  static const std::map<std::string, std::uint32_t> severities = {
      {etc::BlockNamePosition::kCheckId, etc::BlockNamePosition::kSeverity},
      {etc::ProhibitedBlocks::kCheckId, etc::ProhibitedBlocks::kSeverity},
      {etc::ProhibitedSinks::kCheckId, etc::ProhibitedSinks::kSeverity},
      {etc::BlockNameViolation::kCheckId, etc::BlockNameViolation::kSeverity},
      {etc::PortNameViolation::kCheckId, etc::PortNameViolation::kSeverity},
      {etc::PortBlockIconDisplay::kCheckId, etc::PortBlockIconDisplay::kSeverity},
      {etc::BlockOrientation::kCheckId, etc::BlockOrientation::kSeverity},
      {etc::SubsystemNameViolation::kCheckId, etc::SubsystemNameViolation::kSeverity},
      {etc::ProductionCodeGenSupport::kCheckId, etc::ProductionCodeGenSupport::kSeverity},
      {etc::CodegenBlockNameViolation::kCheckId, etc::CodegenBlockNameViolation::kSeverity},
      {etc::BKCIUnsupportedBlocks::kCheckId, etc::BKCIUnsupportedBlocks::kSeverity},
      {etc::BlockMissingParams::kCheckId, etc::BlockMissingParams::kSeverity},
      {etc::DataStoreUsage::kCheckId, etc::DataStoreUsage::kSeverity},
      {etc::GoToFromBlockMismatch::kCheckId, etc::GoToFromBlockMismatch::kSeverity},
      {etc::StateAccessorPathViolation::kCheckId, etc::StateAccessorPathViolation::kSeverity},
      {etc::BlockaraStatePortMappingViolation::kCheckId,
       etc::BlockaraStatePortMappingViolation::kSeverity},
  };
  const auto found = severities.find(checkId);
  const std::uint32_t severity =
      found == severities.end() ? etc::BlockConstraintViolation::kSeverity : found->second;
  RuleText rule;
  rule.level = isErrorCategory(categoryOfSeverity(severity)) ? "error" : "warning";
  const auto& catalog = bkmsg::MessageCatalog::instance();
  const std::string id = "blockara:rule:" + checkId;
  if (catalog.contains(id)) {
    rule.shortDescription = catalog.text(id);
    rule.fullDescription = catalog.text(id + ".full");
  } else {
    rule.shortDescription = "Block constraints of the configuration's check " + checkId + ".";
    rule.fullDescription =
        "A data-driven check of the customization file: every block it covers must meet the "
        "check's block constraints.";
  }
  if (rule.fullDescription.empty()) rule.fullDescription = rule.shortDescription;
  return rule;
}

}  // namespace blockara::app
