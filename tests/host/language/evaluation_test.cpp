#include <gtest/gtest.h>

#include <thread>

#include "host/language/cmddistributor.h"
#include "host/language/feval.h"
#include "host/language/luahost.h"
#include "host/language/nvm.h"
#include "host/runtime/eventloop.h"

namespace {

using namespace cmddistributor;

class EvaluationTest : public ::testing::Test {
 protected:
  void SetUp() override {
    blockara::EventLoop::instance().adoptCurrentThread();
    host = std::make_unique<blockara::LuaHost>(blockara::LuaHostOptions{
        BKETC_RESOURCE_DIR, {std::string(BKETC_SOURCE_DIR) + "/tests/host/language/lua"}, true});
  }

  /// Posts `name(args)` from another thread, the way the worker does, and returns the future.
  template <class R>
  std::future<R> postFromWorker(const std::string& name, int nlhs, std::vector<nxArray> args,
                                typename PromiseDelegateT<R>::Extractor extract) {
    std::future<R> future;
    std::thread worker([&] {
      auto vm = nvm::Factory::getCurrentLocalMVM();
      auto data = std::make_shared<FEvalArrayData>(std::move(args));
      auto request = std::make_shared<CmdRequest>(3, vm->getSink(0), vm->getSink(1),
                                                  std::make_shared<FEvalIIP>(name, nlhs, data, 3));
      auto delegate = std::make_shared<PromiseDelegateT<R>>(extract);
      future = delegate->getFuture();
      vm->getDistributor().submitRequest(request, delegate);
    });
    worker.join();
    return future;
  }

  std::unique_ptr<blockara::LuaHost> host;
};

std::vector<bool> flagsOf(const std::shared_ptr<CmdEvent>& event) {
  auto results = detail::completedResults(event);
  return detail::toVectorOfBool(results.at(0));
}

TEST_F(EvaluationTest, RequestFromAnotherThreadRunsOnMainThreadAtNextPump) {
  auto future = postFromWorker<std::vector<bool>>(
      "testmods.Calls.flags", 1,
      {nxArray::doubleMatrix(1, 3, {0.0, 2.0, 5.0}), nxArray::charRow(u"diagram")}, flagsOf);
  auto& distributor = nvm::Factory::getCurrentLocalMVM()->getDistributor();
  EXPECT_EQ(distributor.trackedCount(), 1u);
  EXPECT_EQ(future.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 1u);
  EXPECT_EQ(distributor.trackedCount(), 0u);
  EXPECT_EQ(future.get(), (std::vector<bool>{false, true, true}));
}

TEST_F(EvaluationTest, LuaErrorArrivesAsRuntimeExceptionAndExtractionErrorsPropagate) {
  auto failing = postFromWorker<void>("testmods.Calls.fail", 0,
                                      {nxArray::charRow("bkedittimecheck:edittimecheck:X: bad")},
                                      [](const std::shared_ptr<CmdEvent>& e) { detail::completedResults(e); });
  // A result of the wrong class is the extraction's error.
  auto wrongClass = postFromWorker<std::vector<bool>>("testmods.Calls.add", 1,
                                                      {nxArray::doubleScalar(1), nxArray::doubleScalar(2)},
                                                      flagsOf);
  blockara::EventLoop::instance().runPosted();
  try {
    failing.get();
    FAIL();
  } catch (const RuntimeException& e) {
    EXPECT_EQ(e.getIdentifier(), "bkedittimecheck:edittimecheck:X");
    EXPECT_EQ(e.getMessage(), "bkedittimecheck:edittimecheck:X: bad");
  }
  try {
    wrongClass.get();
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "nxArray contained double but expected logical");
  }
}

TEST_F(EvaluationTest, RequestChecksAndCompletedEventRules) {
  auto& distributor = nvm::Factory::getCurrentLocalMVM()->getDistributor();
  auto delegate = std::make_shared<PromiseDelegateT<void>>([](const std::shared_ptr<CmdEvent>&) {});
  try {
    distributor.submitRequest(nullptr, delegate);
    FAIL();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "request cannot be null.");
  }
  try {
    distributor.submitRequest(std::make_shared<CmdRequest>(3, emptySink(), emptySink()), delegate);
    FAIL();
  } catch (const std::invalid_argument& e) {
    EXPECT_STREQ(e.what(), "request must contain an IIP.");
  }
  FEvalCompletedEvent event(detail::serializeNxArrays({nxArray::logicalScalar(true)}));
  EXPECT_EQ(event.takeResults().size() > 0, true);
  EXPECT_THROW(event.takeResults(), std::runtime_error);
  class OtherEvent : public CmdEvent {
    std::string describe() const override { return "other"; }
  };
  try {
    detail::completedResults(std::make_shared<OtherEvent>());
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "Cannot create completed event from :other");
  }
  std::future<void> empty;
  EXPECT_THROW(empty.get(), std::future_error);
}

TEST_F(EvaluationTest, SynchronousEvaluationNeverThrows) {
  std::vector<nxArray> out;
  EXPECT_EQ(bksvFEVAL_NoThrow(1, out, "testmods.Calls.add",
                              {nxArray::doubleScalar(1), nxArray::doubleScalar(2)}),
            nullptr);
  EXPECT_EQ(out.at(0), nxArray::doubleScalar(3));
  auto diagnostic = bksvFEVAL_NoThrow(0, out, "testmods.Calls.fail", {nxArray::charRow("a:b:C: no")});
  ASSERT_NE(diagnostic, nullptr);
  EXPECT_EQ(diagnostic->identifier, "a:b:C");
  std::string warned;
  bksvSetWarningHandler([&](const std::string& m) { warned = m; });
  bksvReportAsWarning(diagnostic);
  bksvSetWarningHandler(nullptr);
  EXPECT_EQ(warned, "a:b:C: no");
  EXPECT_THROW(bksvThrowIExceptionFromDiagnostic(diagnostic), NException);
  EXPECT_NO_THROW(bksvThrowIExceptionFromDiagnostic(nullptr));
  bksvDiagnosticPtr offThread;
  std::thread([&] { offThread = bksvFEVAL_NoThrow(0, out, "testmods.Calls.add", {}); }).join();
  ASSERT_NE(offThread, nullptr);
  EXPECT_EQ(offThread->identifier, "blockara:nvm:NotMainThread");
  host.reset();
  EXPECT_NE(bksvFEVAL_NoThrow(0, out, "testmods.Calls.add", {}), nullptr);
}

}  // namespace
