#include "host/model/bkglue.h"

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"

BKBlock* BKGlue::getBlockFromHandle(double handle) { return BKBlock::Handle2Block(handle); }

bkGraph* BKGlue::getBlockGraph(const BKBlock* block) { return block ? block->getGraph() : nullptr; }

bool BKGlue::isChartelleBlock(const BKBlock* block) { return block && block->getType().isChart; }

bool BKRootBlockPlatformInfo::getGrBlockIsLinked(const BKBlock* block) {
  return block && block->getLinkStatus() == "resolved";
}

bksvString BKRootBlockPlatformInfo::getReferenceBlock(const BKBlock* block, int) {
  if (!block || block->getLinkStatus() == "none") return {};
  return block->getReferenceBlock();
}

int BKRootBlockPlatformInfo::getCommentedState(const BKBlock* block) {
  return block ? block->getCommentState() : 0;
}

bool BlockIsImplicitLink(const BKBlock* block) {
  return block && block->getLinkStatus() == "implicit";
}

BKBlock* SIDServiceBK::findBlock(const BKRootBD* diagram, const std::string& sid) {
  if (!diagram) return nullptr;
  std::string number = sid;
  std::string prefix = ConvertUStringToStdString(diagram->getName()) + ":";
  if (number.rfind(prefix, 0) == 0) number = number.substr(prefix.size());
  if (number.empty() || number.size() > 9 ||
      number.find_first_not_of("0123456789") != std::string::npos)
    return nullptr;
  return diagram->findBlockBySID(std::stoi(number));
}
