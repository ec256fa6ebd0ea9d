#include <gtest/gtest.h>

#include "host/model/bkrootbd.h"
#include "host/signals/bkplugin.h"

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
  EXPECT_EQ(log, (std::vector<std::string>{"a1:a", "a1-second"}));
  log.clear();
  b->notifyOpened();
  EXPECT_EQ(log, (std::vector<std::string>{"b1"}));
  EXPECT_EQ(bkplugin::slotCount(a, 1), 2u);
  EXPECT_THROW(bkplugin::addEditBdSignal(nullptr, BKGE_DIAGRAM_OPENED, [](BKRootBD*) {}),
               std::invalid_argument);
  EXPECT_THROW(bkplugin::addEditBdSignal(a, BKGE_DIAGRAM_OPENED, {}), std::invalid_argument);
}

TEST_F(SignalsTest, CompileAndExecutionSidesLeadBackToTheDiagram) {
  BKCompBD* comp = a->getCompBD();
  BKExecBD* exec = a->getExecBD();
  ASSERT_EQ(comp->getBlockDiagram(), a);
  ASSERT_EQ(exec->getCompBD(), comp);
  for (int event : {1, 33, 34, 35})
    bkplugin::addCompBdSignal(comp, static_cast<BKCompEvent>(event), [&, event](BKCompBD* c) {
      log.push_back(ConvertUStringToStdString(c->getBlockDiagram()->getName()) + ":c" +
                    std::to_string(event));
    });
  for (int event : {2, 5})
    bkplugin::addExecBdSignal(exec, static_cast<BKExecEvent>(event), [&, event](BKExecBD* x) {
      log.push_back(ConvertUStringToStdString(x->getCompBD()->getBlockDiagram()->getName()) +
                    ":x" + std::to_string(event));
    });
  comp->raise(1);
  exec->raise(2);
  exec->raise(5);
  comp->raise(35);
  comp->raise(34);
  comp->raise(33);
  b->getCompBD()->raise(1);
  EXPECT_EQ(log, (std::vector<std::string>{"a:c1", "a:x2", "a:x5", "a:c35", "a:c34", "a:c33"}));
}

TEST_F(SignalsTest, DisconnectAndCloseStopDelivery) {
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
}

TEST_F(SignalsTest, SlotExceptionsReachTheRaiser) {
  bkplugin::addEditBdBatchSignal(a, BKGE_BLOCKS_CHANGED, [](BKRootBD*, const PluginChangeReport&) {
    throw std::runtime_error("slot failed");
  });
  PluginChangeReport report;
  report.changed.push_back(1.5);
  EXPECT_THROW(bkplugin::raiseEditBdBatchSignal(a, BKGE_BLOCKS_CHANGED, report), std::runtime_error);
}

}  // namespace
