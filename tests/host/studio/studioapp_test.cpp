#include <gtest/gtest.h>

#include <random>
#include <thread>

#include "host/model/bkgraph.h"
#include "host/model/diagramediting.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"

namespace {

using Blockara::ActiveEditorChangedEvent;
using Blockara::StudioApp;
namespace conn = Blockara::connections;

// A listener as the engine is one: it connects itself to every studio of a diagram.
class ViewListener : public conn::Listener {
 public:
  void viewChanged(const ActiveEditorChangedEvent& event) {
    seen.push_back(event.current ? event.current->getGraph() : nullptr);
  }
  void connectTo(BKRootBD* d) {
    auto& service = conn::ConnectionService::instance();
    for (StudioApp* studio : StudioApp::getAllStudioAppsFor(d->getHandle())) {
      auto thread = service.getNamedThread("Numeria");
      std::unique_lock lock(service.globalWriteLock());
      studio->activeEditorChangedEventService()
          .connect(this, &ViewListener::viewChanged, thread)
          ->enable();
    }
  }
  std::vector<bkGraph*> seen;
};

class StudioTest : public ::testing::Test {
 protected:
  void SetUp() override {
    blockara::EventLoop::instance().adoptCurrentThread();
    d->editing().addBlock(u"m", "SubSystem", u"s");
    d->editing().addBlock(u"m/s", "SubSystem", u"t");
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  BKRootBD* d = bkBlockDiagramSet::create(u"m");
  StudioApp* studio = StudioApp::open(d);
};

TEST_F(StudioTest, EditorsShowGraphsFocusRaisesTheEventOnChangeOnlyAndOffThreadEventsArePosted) {
  EXPECT_EQ(StudioApp::open(d), studio);
  ViewListener listener;
  listener.connectTo(d);
  studio->openEditor(u"m");
  bkGraph* inner = d->findBlock(u"m/s")->getSubGraph();
  studio->focus(u"m/s");        // opens a second editor
  studio->focus(u"m/s");        // already active: no event
  studio->focus(u"m");          // back to the first
  EXPECT_EQ(listener.seen, (std::vector<bkGraph*>{d->getRootGraph(), inner, d->getRootGraph()}));
  EXPECT_EQ(StudioApp::getAllEditorsFor(d->getHandle()).size(), 2u);
  EXPECT_THROW(studio->openEditor(u"m/none"), std::invalid_argument);

  // Closing the active editor activates the remaining one.
  listener.seen.clear();
  EXPECT_EQ(studio->closeEditors(u"m"), 1u);
  EXPECT_EQ(listener.seen, std::vector<bkGraph*>{inner});
  EXPECT_EQ(studio->getActiveEditor()->getGraph(), inner);

  // Events raised off the main thread are posted to it.
  listener.seen.clear();
  std::thread([&] {
    studio->activeEditorChangedEventService().raise(
        ActiveEditorChangedEvent{d->getHandle(), nullptr, studio->getActiveEditor()});
  }).join();
  EXPECT_TRUE(listener.seen.empty());
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 1u);
  EXPECT_EQ(listener.seen, std::vector<bkGraph*>{inner});
  EXPECT_THROW(conn::ConnectionService::instance().getNamedThread("Other"), std::invalid_argument);
}

TEST_F(StudioTest, EditorOfADeletedSystemShowsNothingAndUndoBringsItBack) {
  Blockara::Editor* editor = studio->openEditor(u"m/s/t");
  bkGraph* graph = editor->getGraph();
  ASSERT_NE(graph, nullptr);
  d->editing().deleteBlock(u"m/s");
  EXPECT_EQ(editor->getGraph(), nullptr);
  d->editing().undo();
  EXPECT_EQ(editor->getGraph(), graph);
  d->editing().clearUndoHistory();
  d->editing().deleteBlock(u"m/s");
  d->editing().clearUndoHistory();
  EXPECT_EQ(editor->getGraph(), nullptr);
}

TEST_F(StudioTest, ConnectionsStopAtDisableListenerDeathAndDiagramClose) {
  auto listener = std::make_unique<ViewListener>();
  listener->connectTo(d);
  listener->connectTo(d);  // connected twice: delivered twice
  studio->openEditor(u"m");
  EXPECT_EQ(listener->seen.size(), 2u);
  listener.reset();
  studio->openEditor(u"m/s");  // must not reach the destroyed listener
  EXPECT_EQ(studio->activeEditorChangedEventService().connectionCount(), 2u);

  double handle = d->getHandle();
  bkBlockDiagramSet::close(d);
  EXPECT_TRUE(StudioApp::getAllStudioAppsFor(handle).empty());
}

// What an engine derives from the view (each editor's graph, shown and usable or not) holds
// while the view revision stays: random edits, undos, renames and editor changes never alter it
// without moving the count. Opening a set of editors at once raises one event.
TEST_F(StudioTest, ViewRevisionMovesWheneverTheShownGraphsMayChange) {
  ViewListener listener;
  listener.connectTo(d);
  studio->openEditors({u"m", u"m/s", u"m/s/t"});
  EXPECT_EQ(listener.seen.size(), 1u);
  const auto view = [&] {
    std::vector<std::pair<bkGraph*, bool>> shown;
    for (Blockara::Editor* e : StudioApp::getAllEditorsFor(d->getHandle())) {
      bkGraph* g = e->getGraph();
      shown.emplace_back(g, e->isVisible() && g && g->isUsable());
    }
    return shown;
  };
  std::mt19937 random(3);
  const std::vector<bksvString> systems{u"m", u"m/s", u"m/s/t", u"m/u"};
  auto before = view();
  std::uint64_t revision = StudioApp::viewRevision();
  for (int step = 0; step < 400; ++step) {
    const bksvString& path = systems[random() % systems.size()];
    try {
      switch (random() % 7) {
        case 0: studio->openEditor(path); break;
        case 1: studio->closeEditors(path); break;
        case 2: {
          auto editors = studio->getEditors();
          if (!editors.empty()) {
            Blockara::Editor* e = editors[random() % editors.size()];
            e->setVisible(!e->isVisible());
          }
          break;
        }
        case 3: d->editing().deleteBlock(path); break;
        case 4: d->editing().undo(); break;
        case 5: d->editing().addBlock(u"m", "SubSystem", u"u"); break;
        default: d->editing().renameBlock(u"m/g", u"g"); break;
      }
    } catch (const std::exception&) {
      // No such system or block at this step: nothing changed.
    }
    const auto now = view();
    if (StudioApp::viewRevision() == revision) {
      ASSERT_EQ(now, before) << "step " << step;
    }
    before = now;
    revision = StudioApp::viewRevision();
  }
}

}  // namespace
