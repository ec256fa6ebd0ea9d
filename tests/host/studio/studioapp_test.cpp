#include <gtest/gtest.h>

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
    d = bkBlockDiagramSet::create(u"m");
    d->editing().addBlock(u"m", "SubSystem", u"s");
    d->editing().addBlock(u"m/s", "SubSystem", u"t");
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  BKRootBD* d = nullptr;
};

TEST_F(StudioTest, EditorsShowGraphsFocusRaisesTheEventOnChangeOnlyAndOffThreadEventsArePosted) {
  StudioApp* studio = StudioApp::open(d);
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
  std::thread other([&] {
    studio->activeEditorChangedEventService().raise(
        ActiveEditorChangedEvent{d->getHandle(), nullptr, studio->getActiveEditor()});
  });
  other.join();
  EXPECT_TRUE(listener.seen.empty());
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 1u);
  EXPECT_EQ(listener.seen, std::vector<bkGraph*>{inner});
  EXPECT_THROW(conn::ConnectionService::instance().getNamedThread("Other"), std::invalid_argument);
}

TEST_F(StudioTest, EditorOfADeletedSystemShowsNothingAndUndoBringsItBack) {
  StudioApp* studio = StudioApp::open(d);
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
  StudioApp* studio = StudioApp::open(d);
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
  d = nullptr;
}

}  // namespace
