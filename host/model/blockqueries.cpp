#include "host/model/blockqueries.h"

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/configset.h"

namespace bkobject {
namespace block {

BlockParamValue getParamValue(const BKBlock* block, const std::string& name) {
  if (!block) throw bkHostException("parameter " + name + " of a null block");
  const BlockParamValue* value = block->getParam(name);
  if (!value)
    throw bkHostException(ConvertUStringToStdString(block->getFullPath(false)) + ": block type " +
                          block->getType().name + " has no parameter " + name);
  return *value;
}

std::string getParamAsStr(const BKBlock* block, const std::string& name) {
  getParamValue(block, name);  // for its failures
  return block->getParamText(name);
}

}  // namespace block

namespace blockDiagram {

BlockParamValue getParamValue(BKRootBD* diagram, const std::string& name) {
  ConfigSet* set = BDConfigSetInfo::get(diagram).getActiveSetObject();
  const BlockParamValue* value = set->getProp(name);
  if (!value)
    throw bkHostException(ConvertUStringToStdString(diagram->getName()) +
                          ": the configuration set has no parameter " + name);
  return *value;
}

std::string getParamAsStr(BKRootBD* diagram, const std::string& name) {
  BlockParamValue value = getParamValue(diagram, name);
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  throw bkHostException(ConvertUStringToStdString(diagram->getName()) + ": parameter " + name +
                        " is not text");
}

}  // namespace blockDiagram
}  // namespace bkobject

int bcstCapSupports(const BKBlock* block, int capability) {
  return block ? block->getType().capability(capability) : 0;
}

std::string bcstGetFootNotes(const BKBlock* block, const std::string& kind) {
  return block ? block->getType().footnote(kind) : std::string();
}

namespace {
std::string textParam(const BKBlock* block, int code, const std::string& name) {
  if (!block || block->getTypeCode() != code) return {};
  const BlockParamValue* value = block->getParam(name);
  const auto* text = value ? std::get_if<std::string>(value) : nullptr;
  return text ? *text : std::string();
}
}  // namespace

int GotoBlk::sGetGotoBlockTagVisibilityFromBlockParam(const BKBlock* block) {
  std::string visibility = textParam(block, 56, "TagVisibility");
  if (visibility == "local") return 0;
  if (visibility == "scoped") return 1;
  if (visibility == "global") return 2;
  return -1;
}

std::string FromBlk::GetTag(const BKBlock* block) { return textParam(block, 51, "GotoTag"); }

std::string GotoTagVBlk::sGetGotoTagVisibilityBlockTagNameParameter(const BKBlock* block) {
  return textParam(block, 57, "GotoTag");
}

namespace BlockAccess {

bksvString AccessUtil::convertRelativePathToFullPath(const BKBlock* block,
                                                     const bksvString& relative) {
  if (!block || !block->getGraph()) return relative;
  bksvString base = block->getGraph()->getFullPath();
  bksvString rest = relative;
  while (rest.rfind(u"../", 0) == 0) {
    // Climb one level: cut at the last "/" that is not half of an escaped "//".
    std::size_t cut = bksvString::npos;
    for (std::size_t i = base.size(); i-- > 0;) {
      if (base[i] != u'/') continue;
      std::size_t run = 1;
      while (i >= run && base[i - run] == u'/') ++run;
      if (run % 2 == 1) {
        cut = i - (run - 1);
        break;
      }
      i -= run - 1;
    }
    if (cut == bksvString::npos) return relative;
    base = base.substr(0, cut);
    rest = rest.substr(3);
  }
  return rest.empty() ? base : base + u'/' + rest;
}

double AccessorInterface::getResourceOwnerBlockHandle(const BKBlock* block) {
  if (!block || (block->getTypeCode() != 123 && block->getTypeCode() != 125)) return 0;
  const BlockParamValue* value = block->getParam("StateOwnerBlock");
  const auto* text = value ? std::get_if<std::string>(value) : nullptr;
  if (!text || text->empty()) return 0;
  bksvString path = i18n::to_u16string(*text);
  if (path.rfind(u"../", 0) == 0) path = AccessUtil::convertRelativePathToFullPath(block, path);
  BKRootBD* diagram = block->getBlockDiagram();
  BKBlock* owner = diagram ? diagram->findBlock(path) : nullptr;
  return owner ? owner->getHandle() : 0;
}

}  // namespace BlockAccess
