#include "host/signals/bkplugin.h"

#include <gtest/gtest.h>

#include "host/model/bkrootbd.h"

namespace {

class SignalsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    a = bkBlockDiagramSet::create(u"a");
    b = bkBlockDiagramSet::create(u"b");
  }
  void TearDown() override { bkBlockDiagramSet::closeAll(); }
  BKRootBD* a = nullptr;
  BKRootBD* b = nullptr;
  std::vector<std::string> log;  // outlives the slots, which the close in TearDown still raises
  int calls = 0;
};

TEST_F(SignalsTest, SignalsAreKeptPerDiagramAndEventInConnectionOrder) {
  bkplugin::addEditBdSignal(a, BKGE_DIAGRAM_OPENED, [&](BKRootBD* d) {
    log.push_back("a1:" + ConvertUStringToStdString(d->getName()));
  });
  bkplugin::addEditBdSignal(a, BKGE_DIAGRAM_OPENED, [&](BKRootBD*) { log.push_back("a1-second"); });
  bkplugin::addEditBdSignal(a, BKGE_DIAGRAM_CLOSING, [&](BKRootBD*) { log.push_back("a5"); });
  bkplugin::addEditBdSignal(b, BKGE_DIAGRAM_OPENED, [&](BKRootBD*) { log.push_back("b1"); });
  a->notifyOpened();
  b->notifyOpened();
  EXPECT_EQ(log, (std::vector<std::string>{"a1:a", "a1-second", "b1"}));
}

TEST_F(SignalsTest, DisconnectAndCloseStopDeliveryAndSlotExceptionsReachTheRaiser) {
  auto connection = bkplugin::addEditBdModelParameterSignal(
      a, BKGE_MODEL_PARAMETER_CHANGED, [&](BKRootBD*, const std::string& name) {
        EXPECT_EQ(name, "P");
        ++calls;
      });
  bkplugin::raiseEditBdModelParameterSignal(a, BKGE_MODEL_PARAMETER_CHANGED, "P");
  connection.disconnect();
  bkplugin::raiseEditBdModelParameterSignal(a, BKGE_MODEL_PARAMETER_CHANGED, "P");
  EXPECT_EQ(calls, 1);

  // A slot may close its own diagram while the signal is being raised.
  BKCompBD* comp = b->getCompBD();
  bkplugin::addCompBdSignal(comp, BKCE_COMPILE_END, [&](BKCompBD* c) {
    ++calls;
    bkBlockDiagramSet::close(c->getBlockDiagram());
  });
  bkplugin::addCompBdSignal(comp, BKCE_COMPILE_END, [&](BKCompBD*) { ++calls; });
  comp->raise(BKCE_COMPILE_END);
  EXPECT_EQ(calls, 2);  // the second slot was disconnected by the close
  EXPECT_EQ(bkBlockDiagramSet::nameToBlockDiagram(u"b"), nullptr);
  EXPECT_EQ(bkplugin::slotCount(comp, BKCE_COMPILE_END), 0u);

  // Slot exceptions reach the raiser.
  bkplugin::addEditBdBatchSignal(a, BKGE_BLOCKS_CHANGED, [](BKRootBD*, const PluginChangeReport&) {
    throw std::runtime_error("slot failed");
  });
  EXPECT_THROW(bkplugin::raiseEditBdBatchSignal(a, BKGE_BLOCKS_CHANGED, PluginChangeReport{}),
               std::runtime_error);
}

}  // namespace
