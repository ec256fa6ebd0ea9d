#include "host/studio/studioapp.h"

#include <algorithm>
#include <map>
#include <stdexcept>

#include "host/model/bkgraph.h"

namespace Blockara {
namespace {

// Studios by diagram handle. Main thread only.
std::map<double, std::unique_ptr<StudioApp>>& studios() {
  static std::map<double, std::unique_ptr<StudioApp>> open;
  return open;
}

std::uint64_t& editorRevision() {
  static std::uint64_t count = 0;
  return count;
}

void watchCloses() {
  static bool watching = false;
  if (watching) return;
  watching = true;
  bkBlockDiagramSet::addCloseObserver([](BKRootBD* diagram) { StudioApp::close(diagram); });
}

}  // namespace

Editor::Editor(StudioApp& studio, double ownerHandle) : studio(studio), ownerHandle(ownerHandle) {
  ++editorRevision();
}

Editor::~Editor() { ++editorRevision(); }

void Editor::setVisible(bool on) {
  if (visible != on) ++editorRevision();
  visible = on;
}

bkGraph* Editor::getGraph() const {
  BKRootBD* diagram = studio.getDiagram();
  if (!diagram) return nullptr;
  if (ownerHandle == 0) return diagram->getRootGraph();
  BKBlock* owner = BKBlock::Handle2Block(ownerHandle);
  // A deleted owner still resolves while the undo history holds it, but shows nothing.
  if (!owner || owner->getBlockDiagram() != diagram) return nullptr;
  return owner->getSubGraph();
}

StudioApp::StudioApp(BKRootBD* diagram) : diagramHandle(diagram->getHandle()) {
  ++editorRevision();
}

StudioApp::~StudioApp() { ++editorRevision(); }

std::uint64_t StudioApp::viewRevision() { return editorRevision() + bkgg::structureRevision(); }

std::vector<StudioApp*> StudioApp::getAllStudioAppsFor(double diagramHandle) {
  auto it = studios().find(diagramHandle);
  if (it == studios().end()) return {};
  return {it->second.get()};
}

std::vector<Editor*> StudioApp::getAllEditorsFor(double diagramHandle) {
  std::vector<Editor*> all;
  for (StudioApp* studio : getAllStudioAppsFor(diagramHandle))
    for (Editor* editor : studio->getEditors()) all.push_back(editor);
  return all;
}

StudioApp* StudioApp::open(BKRootBD* diagram) {
  if (!diagram) throw std::invalid_argument("no diagram to open a studio for");
  watchCloses();
  auto& slot = studios()[diagram->getHandle()];
  if (!slot) slot = std::make_unique<StudioApp>(diagram);
  return slot.get();
}

void StudioApp::close(BKRootBD* diagram) {
  if (diagram) studios().erase(diagram->getHandle());
}

BKRootBD* StudioApp::getDiagram() const { return bkBlockDiagramSet::handleToBlockDiagram(diagramHandle); }

std::vector<Editor*> StudioApp::getEditors() const {
  std::vector<Editor*> list;
  for (const auto& editor : editors) list.push_back(editor.get());
  return list;
}

double StudioApp::ownerHandleOf(const bksvString& systemPath) const {
  BKRootBD* diagram = getDiagram();
  if (!diagram) throw std::invalid_argument("the studio's diagram is closed");
  if (systemPath == diagram->getName()) return 0;
  BKBlock* block = diagram->findBlock(systemPath);
  if (!block || !block->getSubGraph())
    throw std::invalid_argument(ConvertUStringToStdString(systemPath) + ": no such system in " +
                                ConvertUStringToStdString(diagram->getName()));
  return block->getHandle();
}

void StudioApp::activate(Editor* editor) {
  if (editor == active) return;
  ActiveEditorChangedEvent event{diagramHandle, active, editor};
  active = editor;
  events.raise(event);
}

Editor* StudioApp::openEditor(const bksvString& systemPath) {
  double owner = ownerHandleOf(systemPath);
  editors.push_back(std::make_unique<Editor>(*this, owner));
  Editor* editor = editors.back().get();
  activate(editor);
  return editor;
}

void StudioApp::openEditors(const std::vector<bksvString>& systemPaths) {
  std::vector<double> owners;
  owners.reserve(systemPaths.size());
  for (const bksvString& path : systemPaths) owners.push_back(ownerHandleOf(path));
  for (double owner : owners) editors.push_back(std::make_unique<Editor>(*this, owner));
  if (!editors.empty() && !owners.empty()) activate(editors.back().get());
}

Editor* StudioApp::focus(const bksvString& systemPath) {
  double owner = ownerHandleOf(systemPath);
  for (const auto& editor : editors) {
    if (editor->getOwnerHandle() == owner) {
      editor->setVisible(true);
      activate(editor.get());
      return editor.get();
    }
  }
  return openEditor(systemPath);
}

std::size_t StudioApp::closeEditors(const bksvString& systemPath) {
  double owner = ownerHandleOf(systemPath);
  bool activeClosed = false;
  std::vector<std::unique_ptr<Editor>> closing;
  for (auto it = editors.begin(); it != editors.end();) {
    if ((*it)->getOwnerHandle() == owner) {
      activeClosed = activeClosed || it->get() == active;
      closing.push_back(std::move(*it));
      it = editors.erase(it);
    } else {
      ++it;
    }
  }
  if (activeClosed) {
    // The event names the closed editor as previous; it stays alive until delivery is done.
    activate(editors.empty() ? nullptr : editors.back().get());
  }
  return closing.size();
}

}  // namespace Blockara
