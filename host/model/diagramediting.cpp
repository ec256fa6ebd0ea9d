#include "host/model/diagramediting.h"

#include <cstdint>
#include <optional>
#include <set>
#include <stdexcept>

#include "host/model/bkgraph.h"
#include "host/model/bkrootbd.h"
#include "host/model/blockmutator.h"
#include "host/signals/bkplugin.h"

namespace blockara {
namespace {

void collectTree(BKBlock* block, std::vector<BKBlock*>& out) {
  out.push_back(block);
  if (bkGraph* inside = block->getSubGraph())
    for (std::size_t i = 0; i < inside->size(); ++i) collectTree(inside->blockAt(i), out);
}

std::string text(const bksvString& s) { return ConvertUStringToStdString(s); }

bkGraph* graphOfOwner(BKRootBD& diagram, double ownerHandle) {
  if (ownerHandle == 0) return diagram.getRootGraph();
  BKBlock* owner = BKBlock::Handle2Block(ownerHandle);
  return owner ? owner->getSubGraph() : nullptr;
}

double ownerHandleOf(const bkGraph* graph) {
  return graph->getOwner() ? graph->getOwner()->getHandle() : 0;
}

}  // namespace

// What one batch changed, folded so that the report shows the net effect.
struct ChangeLog {
  PluginChangeReport report;
  std::set<double> addedSet, changedSet, deletedSet;
  std::vector<std::pair<double, int>> comments;  // handle, new state
  std::vector<std::string> parameters;

  void added(BKBlock* root) {
    std::vector<BKBlock*> tree;
    collectTree(root, tree);
    for (BKBlock* block : tree) {
      double h = block->getHandle();
      if (deletedSet.erase(h)) {
        std::erase(report.deleted, h);
        changed(h);
      } else if (addedSet.insert(h).second) {
        report.added.push_back(h);
      }
    }
  }
  void deleted(BKBlock* root) {
    std::vector<BKBlock*> tree;
    collectTree(root, tree);
    for (BKBlock* block : tree) {
      double h = block->getHandle();
      if (changedSet.erase(h)) std::erase(report.changed, h);
      report.renamed.erase(h);
      if (addedSet.erase(h)) {
        std::erase(report.added, h);
      } else if (deletedSet.insert(h).second) {
        report.deleted.push_back(h);
      }
    }
  }
  void changed(double h) {
    if (addedSet.count(h) || deletedSet.count(h)) return;
    if (changedSet.insert(h).second) report.changed.push_back(h);
  }
  void renamed(double h) {
    if (!addedSet.count(h)) report.renamed.insert(h);
  }
};

// One reversible change. `apply` makes it (again), `revert` takes it back; both log what they did.
struct EditStep {
  virtual ~EditStep() = default;
  virtual void apply(BKRootBD& diagram, ChangeLog& log) = 0;
  virtual void revert(BKRootBD& diagram, ChangeLog& log) = 0;
};

struct UndoEntry {
  std::vector<std::unique_ptr<EditStep>> steps;
  ChangeLog log;
};

namespace {

// A block entering (add) or leaving (delete) the diagram. While out, the step owns the block.
struct PresenceStep final : EditStep {
  bool addOnApply;
  double handle;
  double ownerHandle;
  std::size_t position;
  std::unique_ptr<BKBlock> held;

  void enter(BKRootBD& diagram, ChangeLog& log) {
    bkGraph* graph = graphOfOwner(diagram, ownerHandle);
    BKBlock* block = BlockMutator::insert(diagram, *graph, std::move(held), position);
    log.added(block);
  }
  void leave(BKRootBD& diagram, ChangeLog& log) {
    BKBlock* block = BKBlock::Handle2Block(handle);
    log.deleted(block);
    auto [owned, at] = BlockMutator::detach(diagram, block);
    held = std::move(owned);
    position = at;
  }
  void apply(BKRootBD& d, ChangeLog& log) override { addOnApply ? enter(d, log) : leave(d, log); }
  void revert(BKRootBD& d, ChangeLog& log) override { addOnApply ? leave(d, log) : enter(d, log); }
};

struct RenameStep final : EditStep {
  double handle;
  bksvString oldName, newName;
  void to(BKRootBD& diagram, ChangeLog& log, const bksvString& name) {
    BlockMutator::rename(diagram, BKBlock::Handle2Block(handle), name);
    log.renamed(handle);
  }
  void apply(BKRootBD& d, ChangeLog& log) override { to(d, log, newName); }
  void revert(BKRootBD& d, ChangeLog& log) override { to(d, log, oldName); }
};

struct MoveStep final : EditStep {
  double handle;
  double fromOwner, toOwner;
  std::size_t fromPosition = 0;
  void move(BKRootBD& diagram, ChangeLog& log, double owner, std::size_t position, bool remember) {
    auto [block, at] = BlockMutator::detach(diagram, BKBlock::Handle2Block(handle));
    if (remember) fromPosition = at;
    BlockMutator::insert(diagram, *graphOfOwner(diagram, owner), std::move(block), position);
    log.renamed(handle);
  }
  void apply(BKRootBD& d, ChangeLog& log) override { move(d, log, toOwner, SIZE_MAX, true); }
  void revert(BKRootBD& d, ChangeLog& log) override { move(d, log, fromOwner, fromPosition, false); }
};

struct PropertyStep final : EditStep {
  double handle;
  PropertyMap before, after;
  void to(ChangeLog& log, const PropertyMap& values) {
    BKBlock* block = BKBlock::Handle2Block(handle);
    for (const auto& [name, value] : values) BlockMutator::set(*block, name, value);
    log.changed(handle);
  }
  void apply(BKRootBD&, ChangeLog& log) override { to(log, after); }
  void revert(BKRootBD&, ChangeLog& log) override { to(log, before); }
};

struct CommentStep final : EditStep {
  double handle;
  int before, after;
  void to(ChangeLog& log, int state) {
    BlockMutator::setCommentState(*BKBlock::Handle2Block(handle), state);
    log.comments.emplace_back(handle, state);
  }
  void apply(BKRootBD&, ChangeLog& log) override { to(log, after); }
  void revert(BKRootBD&, ChangeLog& log) override { to(log, before); }
};

struct ModelParamStep final : EditStep {
  std::string name;
  std::optional<BlockParamValue> before;
  BlockParamValue after;
  void apply(BKRootBD& diagram, ChangeLog& log) override {
    if (ConfigSet* set = diagram.activeConfigSet()) set->setProp(name, after);
    log.parameters.push_back(name);
  }
  void revert(BKRootBD& diagram, ChangeLog& log) override {
    ConfigSet* set = diagram.activeConfigSet();
    if (set && before) set->setProp(name, *before);
    log.parameters.push_back(name);
  }
};

}  // namespace

DiagramEditing::DiagramEditing(BKRootBD& diagram) : diagram(diagram) {}

DiagramEditing::~DiagramEditing() = default;

void DiagramEditing::record(std::unique_ptr<EditStep> step) {
  step->apply(diagram, current->log);
  current->steps.push_back(std::move(step));
}

void DiagramEditing::beginBatch() {
  if (batchDepth++ == 0) current = std::make_unique<UndoEntry>();
}

void DiagramEditing::endBatch() {
  if (batchDepth == 0) throw std::logic_error("endBatch without beginBatch");
  if (--batchDepth == 0) finishBatch();
}

namespace {

void raiseAll(BKRootBD& diagram, const ChangeLog& log) {
  const PluginChangeReport& report = log.report;
  if (!report.added.empty()) bkplugin::raiseEditBdBatchSignal(&diagram, BKGE_BLOCKS_ADDED, report);
  if (!report.changed.empty())
    bkplugin::raiseEditBdBatchSignal(&diagram, BKGE_BLOCKS_CHANGED, report);
  if (!report.deleted.empty())
    bkplugin::raiseEditBdBatchSignal(&diagram, BKGE_BLOCKS_DELETED, report);
  if (!report.renamed.empty())
    bkplugin::raiseEditBdBatchSignal(&diagram, BKGE_BLOCKS_RENAMED, report);
  for (const auto& [handle, state] : log.comments) {
    BKBlock* block = BKBlock::Handle2Block(handle);
    if (!block || block->getBlockDiagram() != &diagram) continue;  // deleted later in the batch
    auto event = state == 1   ? BKGE_BLOCK_COMMENTED_OUT
                 : state == 2 ? BKGE_BLOCK_COMMENTED_THROUGH
                              : BKGE_BLOCK_UNCOMMENTED;
    bkplugin::raiseEditBdBlockCommentedStatusSignal(&diagram, event, block);
  }
  for (const auto& name : log.parameters)
    bkplugin::raiseEditBdModelParameterSignal(&diagram, BKGE_MODEL_PARAMETER_CHANGED, name);
}

}  // namespace

void DiagramEditing::finishBatch() {
  std::unique_ptr<UndoEntry> entry = std::move(current);
  if (entry->steps.empty()) return;
  // The log is copied out before the entry joins the history, which may drop it at once.
  ChangeLog log = entry->log;
  entry->log = ChangeLog{};
  redoStack.clear();
  undoStack.push_back(std::move(entry));
  trimHistory();
  raiseAll(diagram, log);
}

void DiagramEditing::trimHistory() {
  while (undoStack.size() > depth) undoStack.pop_front();
}

void DiagramEditing::replay(UndoEntry& entry, bool forward) {
  ChangeLog log;
  if (forward) {
    for (auto& step : entry.steps) step->apply(diagram, log);
  } else {
    for (auto it = entry.steps.rbegin(); it != entry.steps.rend(); ++it) (*it)->revert(diagram, log);
  }
  raiseAll(diagram, log);
}

bool DiagramEditing::undo() {
  if (inBatch()) throw std::logic_error("undo inside an edit batch");
  if (undoStack.empty()) return false;
  std::unique_ptr<UndoEntry> entry = std::move(undoStack.back());
  undoStack.pop_back();
  UndoEntry& ref = *entry;
  redoStack.push_back(std::move(entry));
  replay(ref, false);
  return true;
}

bool DiagramEditing::redo() {
  if (inBatch()) throw std::logic_error("redo inside an edit batch");
  if (redoStack.empty()) return false;
  std::unique_ptr<UndoEntry> entry = std::move(redoStack.back());
  redoStack.pop_back();
  UndoEntry& ref = *entry;
  undoStack.push_back(std::move(entry));
  replay(ref, true);
  trimHistory();
  return true;
}

void DiagramEditing::setUndoDepth(std::size_t newDepth) {
  depth = newDepth;
  trimHistory();
}

void DiagramEditing::clearUndoHistory() {
  undoStack.clear();
  redoStack.clear();
}

namespace {

// Runs `edit` as a batch of its own when no batch is open.
template <typename Fn>
auto asOwnBatch(DiagramEditing& editing, Fn&& edit) {
  editing.beginBatch();
  try {
    if constexpr (std::is_void_v<decltype(edit())>) {
      edit();
      editing.endBatch();
    } else {
      auto result = edit();
      editing.endBatch();
      return result;
    }
  } catch (...) {
    // The edit failed before changing anything (or a slot threw after): the batch still closes.
    if (editing.inBatch()) {
      try {
        editing.endBatch();
      } catch (...) {
      }
    }
    throw;
  }
}

BKBlock* requireBlock(BKRootBD& diagram, const bksvString& path) {
  BKBlock* block = diagram.findBlock(path);
  if (!block) throw std::invalid_argument(text(path) + ": no such block");
  return block;
}

bkGraph* requireSystem(BKRootBD& diagram, const bksvString& path) {
  bkGraph* graph = diagram.findSystem(path);
  if (!graph) throw std::invalid_argument(text(path) + ": no such system");
  return graph;
}

void requireFreeName(BKRootBD& diagram, const bkGraph* graph, const bksvString& name) {
  if (name.empty()) throw std::invalid_argument(text(graph->getFullPath()) + ": empty block name");
  bksvString path = graph->getFullPath() + u'/' + escapePathName(name);
  if (diagram.findBlock(path)) throw std::invalid_argument(text(path) + ": name already taken");
}

}  // namespace

BKBlock* DiagramEditing::addBlock(const bksvString& systemPath, const std::string& type,
                                  const bksvString& name, const PropertyMap& props) {
  bkGraph* graph = requireSystem(diagram, systemPath);
  const BlockTypeInfo* info = BlockLibrary::instance().find(type);
  if (!info) throw std::invalid_argument(text(systemPath) + ": unknown block type \"" + type + "\"");
  requireFreeName(diagram, graph, name);
  std::unique_ptr<BKBlock> block = BlockMutator::makeBlock(*info, name);
  BlockMutator::setPendingPath(*block, graph->getFullPath());
  for (const auto& [prop, value] : props) BlockMutator::set(*block, prop, value);
  double handle = block->getHandle();
  auto step = std::make_unique<PresenceStep>();
  step->addOnApply = true;
  step->handle = handle;
  step->ownerHandle = ownerHandleOf(graph);
  step->position = graph->size();
  step->held = std::move(block);
  asOwnBatch(*this, [&] { record(std::move(step)); });
  return BKBlock::Handle2Block(handle);
}

void DiagramEditing::deleteBlock(const bksvString& path) {
  BKBlock* block = requireBlock(diagram, path);
  auto step = std::make_unique<PresenceStep>();
  step->addOnApply = false;
  step->handle = block->getHandle();
  step->ownerHandle = ownerHandleOf(block->getGraph());
  step->position = 0;
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

void DiagramEditing::renameBlock(const bksvString& path, const bksvString& newName) {
  BKBlock* block = requireBlock(diagram, path);
  if (block->getName() == newName) return;
  requireFreeName(diagram, block->getGraph(), newName);
  auto step = std::make_unique<RenameStep>();
  step->handle = block->getHandle();
  step->oldName = block->getName();
  step->newName = newName;
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

void DiagramEditing::moveBlock(const bksvString& path, const bksvString& newSystemPath) {
  BKBlock* block = requireBlock(diagram, path);
  bkGraph* target = requireSystem(diagram, newSystemPath);
  if (target == block->getGraph()) return;
  for (const bkGraph* g = target; g && g->getOwner(); g = g->getOwner()->getGraph())
    if (g->getOwner() == block)
      throw std::invalid_argument(text(path) + ": cannot move a block into itself");
  requireFreeName(diagram, target, block->getName());
  auto step = std::make_unique<MoveStep>();
  step->handle = block->getHandle();
  step->fromOwner = ownerHandleOf(block->getGraph());
  step->toOwner = ownerHandleOf(target);
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

void DiagramEditing::setProperties(const bksvString& path, const PropertyMap& props) {
  BKBlock* block = requireBlock(diagram, path);
  auto step = std::make_unique<PropertyStep>();
  step->handle = block->getHandle();
  for (const auto& [name, value] : props) {
    BlockMutator::validate(*block, name, value);
    BlockValue old = block->getProperty(name);
    step->before.emplace(name, old);
    step->after.emplace(name, value);
  }
  if (props.empty()) return;
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

void DiagramEditing::setCommentState(const bksvString& path, int state) {
  BKBlock* block = requireBlock(diagram, path);
  if (state < 0 || state > 2)
    throw std::invalid_argument(text(path) + ": comment state " + std::to_string(state) +
                                " is not 0, 1 or 2");
  if (block->getCommentState() == state) return;
  auto step = std::make_unique<CommentStep>();
  step->handle = block->getHandle();
  step->before = block->getCommentState();
  step->after = state;
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

void DiagramEditing::setModelParam(const std::string& name, const BlockParamValue& value) {
  ConfigSet* set = BDConfigSetInfo::get(&diagram).getActiveSetObject();
  if (name.empty()) throw std::invalid_argument(text(diagram.getName()) + ": empty parameter name");
  auto step = std::make_unique<ModelParamStep>();
  step->name = name;
  if (const BlockParamValue* old = set->getProp(name)) step->before = *old;
  step->after = value;
  asOwnBatch(*this, [&] { record(std::move(step)); });
}

EditBatch::EditBatch(BKRootBD& diagram) : diagram(diagram) { diagram.editing().beginBatch(); }

EditBatch::~EditBatch() {
  if (ended) return;
  try {
    end();
  } catch (...) {
    // Destructors must not throw; callers who care call end() themselves.
  }
}

void EditBatch::end() {
  if (ended) return;
  ended = true;
  diagram.editing().endBatch();
}

}  // namespace blockara
