#include "host/model/bkrootbd.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "host/model/bkgraph.h"
#include "host/model/blockmutator.h"
#include "host/model/diagramediting.h"
#include "host/model/subsystemblock.h"
#include "host/signals/bkplugin.h"

namespace {

// Open diagrams by name, and observers of closes. Main thread only.
std::map<bksvString, std::unique_ptr<BKRootBD>>& openDiagrams() {
  static std::map<bksvString, std::unique_ptr<BKRootBD>> diagrams;
  return diagrams;
}

std::vector<std::function<void(BKRootBD*)>>& closeObservers() {
  static std::vector<std::function<void(BKRootBD*)>> observers;
  return observers;
}

void checkName(const bksvString& name) {
  if (name.empty()) throw std::invalid_argument("a diagram name must not be empty");
  if (name.find(u'/') != bksvString::npos)
    throw std::invalid_argument("diagram name \"" + ConvertUStringToStdString(name) +
                                "\" must not contain \"/\"");
  if (openDiagrams().count(name))
    throw std::invalid_argument("a diagram named \"" + ConvertUStringToStdString(name) +
                                "\" is already open");
}

}  // namespace

bkBlockDiagramEditParams& bkBlockDiagramEditParams::get(BKRootBD* diagram) {
  if (!diagram) throw std::invalid_argument("edit parameters of a null diagram");
  return diagram->editParams();
}

BKRootBD::BKRootBD(bksvString name, int kind)
    : handle(issueHandle()),
      name(std::move(name)),
      kind(kind),
      root(std::make_unique<bkGraph>(this, nullptr)),
      compiled(std::make_unique<BKCompBD>(this)),
      executing(std::make_unique<BKExecBD>(compiled.get())),
      edits(std::make_unique<blockara::DiagramEditing>(*this)) {
  sets.push_back(ConfigSet::makeDefault());
  activeSet = 0;
}

BKRootBD::~BKRootBD() {
  edits.reset();  // the history's deleted blocks die first, then the tree
  root.reset();
  bkplugin::dropSignals(executing.get());
  bkplugin::dropSignals(compiled.get());
  bkplugin::dropSignals(this);
}

void BKRootBD::setAuditorMode(bool on) {
  if (on)
    params.flags |= bkBlockDiagramEditParams::auditorModeOn;
  else
    params.flags &= ~bkBlockDiagramEditParams::auditorModeOn;
}

BKBlock* BKRootBD::findBlock(const bksvString& path) const {
  auto it = pathIndex.find(path);
  return it == pathIndex.end() ? nullptr : it->second;
}

BKBlock* BKRootBD::findBlockBySID(int sid) const {
  auto it = sidIndex.find(sid);
  return it == sidIndex.end() ? nullptr : it->second;
}

bkGraph* BKRootBD::findSystem(const bksvString& path) const {
  if (path == name) return root.get();
  BKBlock* block = findBlock(path);
  return block ? block->getSubGraph() : nullptr;
}

std::vector<BKBlock*> BKRootBD::blocksInPathOrder() const {
  // Sorted by the index's own keys: a path copied per comparison costs more than the sort.
  using Entry = std::pair<std::u16string_view, BKBlock*>;
  std::vector<Entry> entries(pathIndex.begin(), pathIndex.end());
  std::sort(entries.begin(), entries.end(),
            [](const Entry& a, const Entry& b) { return a.first < b.first; });
  std::vector<BKBlock*> blocks;
  blocks.reserve(entries.size());
  for (const Entry& entry : entries) blocks.push_back(entry.second);
  return blocks;
}

ConfigSet* BKRootBD::activeConfigSet() { return activeSet ? &sets[*activeSet] : nullptr; }

const ConfigSet* BKRootBD::activeConfigSet() const {
  return activeSet ? &sets[*activeSet] : nullptr;
}

void BKRootBD::setActiveConfigSet(std::optional<std::size_t> index) {
  if (index && *index >= sets.size())
    throw std::out_of_range(ConvertUStringToStdString(name) + ": no configuration set " +
                            std::to_string(*index));
  activeSet = index;
}

void BKRootBD::removeConfigSet() {
  if (!activeSet) return;
  sets.erase(sets.begin() + static_cast<std::ptrdiff_t>(*activeSet));
  activeSet.reset();
}

void BKRootBD::notifyOpened() { bkplugin::raiseEditBdSignal(this, BKGE_DIAGRAM_OPENED); }

BKCompBD::~BKCompBD() = default;

void BKCompBD::raise(int event) {
  bkplugin::raiseCompBdSignal(this, static_cast<BKCompEvent>(event));
}

BKExecBD::~BKExecBD() = default;

void BKExecBD::raise(int event) {
  bkplugin::raiseExecBdSignal(this, static_cast<BKExecEvent>(event));
}

BKRootBD* bkBlockDiagramSet::nameToBlockDiagram(const bksvString& name) {
  auto it = openDiagrams().find(name);
  return it == openDiagrams().end() ? nullptr : it->second.get();
}

BKRootBD* bkBlockDiagramSet::create(const bksvString& name, int kind) {
  checkName(name);
  return adopt(std::make_unique<BKRootBD>(name, kind));
}

BKRootBD* bkBlockDiagramSet::adopt(std::unique_ptr<BKRootBD> diagram) {
  if (!diagram) throw std::invalid_argument("no diagram to open");
  checkName(diagram->getName());
  BKRootBD* raw = diagram.get();
  openDiagrams().emplace(raw->getName(), std::move(diagram));
  return raw;
}

void bkBlockDiagramSet::close(BKRootBD* diagram) {
  if (!diagram) return;
  auto it = openDiagrams().find(diagram->getName());
  if (it == openDiagrams().end() || it->second.get() != diagram) return;
  try {
    bkplugin::raiseEditBdSignal(diagram, BKGE_DIAGRAM_CLOSING);
  } catch (...) {
    // A close always completes: a listener that fails cannot keep a diagram open.
  }
  for (auto& observer : closeObservers()) observer(diagram);
  // Looked up again: a slot may have renamed nothing, but must not leave us with a stale iterator.
  it = openDiagrams().find(diagram->getName());
  std::unique_ptr<BKRootBD> closing = std::move(it->second);
  openDiagrams().erase(it);
}

void bkBlockDiagramSet::rename(BKRootBD* diagram, const bksvString& newName) {
  if (!diagram) throw std::invalid_argument("rename of a null diagram");
  if (newName == diagram->getName()) return;
  checkName(newName);
  auto it = openDiagrams().find(diagram->getName());
  if (it == openDiagrams().end() || it->second.get() != diagram)
    throw std::invalid_argument("rename of a diagram that is not open");
  std::unique_ptr<BKRootBD> owned = std::move(it->second);
  openDiagrams().erase(it);
  owned->name = newName;
  BlockMutator::reindexAll(*owned);
  openDiagrams().emplace(newName, std::move(owned));
}

BKRootBD* bkBlockDiagramSet::handleToBlockDiagram(double handle) {
  for (auto& [name, diagram] : openDiagrams())
    if (diagram->getHandle() == handle) return diagram.get();
  return nullptr;
}

void bkBlockDiagramSet::addCloseObserver(std::function<void(BKRootBD*)> observer) {
  closeObservers().push_back(std::move(observer));
}

std::vector<BKRootBD*> bkBlockDiagramSet::all() {
  std::vector<BKRootBD*> diagrams;
  for (auto& [name, diagram] : openDiagrams()) diagrams.push_back(diagram.get());
  return diagrams;
}

void bkBlockDiagramSet::closeAll() {
  while (!openDiagrams().empty()) close(openDiagrams().begin()->second.get());
}
