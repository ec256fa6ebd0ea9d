#include <gtest/gtest.h>

#include <mutex>
#include <thread>

#include "host/language/cmddistributor.h"
#include "host/language/feval.h"
#include "host/language/nvm.h"
#include "luafixture.h"
#include "nxarrayprint.h"
#include "testclass.h"

namespace {

using namespace cmddistributor;

class EvaluationTest : public LuaFixture {
 protected:
  /// Posts `name(args)` from another thread, the way the worker does, and returns the future.
  template <class R>
  std::future<R> postFromWorker(const std::string& name, int nlhs, std::vector<nxArray> args,
                                typename PromiseDelegateT<R>::Extractor extract) {
    std::future<R> future;
    std::thread worker([&] {
      auto delegate = std::make_shared<PromiseDelegateT<R>>(extract);
      future = delegate->getFuture();
      distributor().submitRequest(request(name, nlhs, std::move(args)), delegate);
    });
    worker.join();
    return future;
  }

  static CmdDistributor& distributor() {
    return nvm::Factory::getCurrentLocalMVM()->getDistributor();
  }
  /// A request for `name(args)` writing to the machine's own sinks.
  static std::shared_ptr<CmdRequest> request(const std::string& name, int nlhs,
                                             std::vector<nxArray> args) {
    auto vm = nvm::Factory::getCurrentLocalMVM();
    auto data = std::make_shared<FEvalArrayData>(std::move(args));
    return std::make_shared<CmdRequest>(3, vm->getSink(0), vm->getSink(1),
                                        std::make_shared<FEvalIIP>(name, nlhs, data, 3));
  }
};

std::vector<bool> flagsOf(const std::shared_ptr<CmdEvent>& event) {
  auto results = detail::completedResults(event);
  return detail::toVectorOfBool(results.at(0));
}

TEST_F(EvaluationTest, ExtractorsShapeTheResultAndTheirErrorsReachTheFuture) {
  auto flags = postFromWorker<std::vector<bool>>(
      "testmods.Calls.flags", 1,
      {nxArray::doubleMatrix(1, 3, {0.0, 2.0, 5.0}), nxArray::charRow(u"diagram")}, flagsOf);
  // A result of the wrong class is the extraction's error.
  auto wrongClass = postFromWorker<std::vector<bool>>(
      "testmods.Calls.add", 1, {nxArray::doubleScalar(1), nxArray::doubleScalar(2)}, flagsOf);
  EXPECT_EQ(flags.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 2u);
  EXPECT_EQ(flags.get(), (std::vector<bool>{false, true, true}));
  try {
    wrongClass.get();
    FAIL();
  } catch (const std::runtime_error& e) {
    EXPECT_STREQ(e.what(), "nxArray contained double but expected logical");
  }
}

/// A sink that keeps what it gets.
class RecordingSink : public Sink {
 public:
  void write(std::string_view text) override {
    std::lock_guard<std::mutex> lock(mutex);
    texts.emplace_back(text);
  }
  std::vector<std::string> taken() {
    std::lock_guard<std::mutex> lock(mutex);
    return texts;
  }

 private:
  std::mutex mutex;
  std::vector<std::string> texts;  // guarded by mutex
};

std::vector<nxArray> allResults(const std::shared_ptr<CmdEvent>& event) {
  return detail::completedResults(event);
}

/// The identifier and message of the exception a future holds ("<value>" when none).
template <class R>
std::pair<std::string, std::string> failureOf(std::future<R>& future) {
  try {
    future.get();
  } catch (const RuntimeException& e) {
    return {e.getIdentifier(), e.getMessage()};
  } catch (const std::exception& e) {
    return {"<not a RuntimeException>", e.what()};
  }
  return {"<value>", ""};
}

TEST_F(EvaluationTest, RequestsFromSeveralThreadsRunInPostingOrder) {
  auto vm = nvm::Factory::getCurrentLocalMVM();
  std::mutex postingMutex;
  std::vector<std::string> posted;                         // guarded by postingMutex
  std::vector<std::future<std::vector<nxArray>>> futures;  // guarded by postingMutex
  std::vector<std::thread> workers;
  for (int t = 0; t < 4; ++t) {
    workers.emplace_back([&, t] {
      for (int i = 0; i < 5; ++i) {
        std::string tag = std::to_string(t) + "." + std::to_string(i);
        auto r = request("testmods.Calls.record", 1, {nxArray::charRow(tag)});
        auto delegate = std::make_shared<PromiseDelegateT<std::vector<nxArray>>>(allResults);
        // Posting and noting the order under one lock gives the order the loop must keep.
        std::lock_guard<std::mutex> lock(postingMutex);
        futures.push_back(delegate->getFuture());
        vm->getDistributor().submitRequest(r, delegate);
        posted.push_back(tag);
      }
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_EQ(vm->getDistributor().trackedCount(), 20u);
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 20u);
  EXPECT_EQ(vm->getDistributor().trackedCount(), 0u);
  std::string expectedLog;
  for (std::size_t i = 0; i < posted.size(); ++i) {
    expectedLog += (i ? "," : "") + posted[i];
    EXPECT_EQ(futures[i].get(), std::vector<nxArray>{nxArray::doubleScalar(double(i + 1))}) << i;
  }
  std::vector<nxArray> log;
  ASSERT_EQ(bksvFEVAL_NoThrow(1, log, "testmods.Calls.log", {}), nullptr);
  EXPECT_EQ(log.at(0), nxArray::charRow(expectedLog));
}

TEST_F(EvaluationTest, FailedRequestsCompleteWithTheirErrorAndWriteItToTheErrorSink) {
  auto vm = nvm::Factory::getCurrentLocalMVM();
  auto output = std::make_shared<RecordingSink>();
  auto errors = std::make_shared<RecordingSink>();
  class FailingData : public FEvalOpaqueData {
    std::vector<nxArray> toArrays() const override { throw std::runtime_error("arguments lost"); }
  };
  auto args = [](std::vector<nxArray> a) { return std::make_shared<FEvalArrayData>(std::move(a)); };
  struct Case {
    std::shared_ptr<const FEvalOpaqueData> data;
    const char* function;
    int nlhs;
    const char* identifier;
    const char* message;  // the whole message, or nullptr when the identifier says enough
  };
  const Case cases[] = {
      {args({nxArray::charRow("pkg:area:Broke: broken")}), "testmods.Calls.fail", 0,
       "pkg:area:Broke", "pkg:area:Broke: broken"},
      {args({nxArray::charRow("plain text")}), "testmods.Calls.fail", 0, "", "plain text"},
      {args({}), "testmods.Calls.nothing", 1, "blockara:nvm:UnknownFunction", nullptr},
      {args({}), "no.such.module.fn", 1, "blockara:nvm:UnknownFunction", nullptr},
      {args({}), "testmods.Broken.fn", 1, "", nullptr},  // a module that does not load
      {args({}), "testmods.Raising.fn", 1, "testmods:load:Refused", nullptr},
      {args({}), "testmods.Calls.giveFunction", 1, "blockara:nvm:BadResult", nullptr},
      {std::make_shared<FailingData>(), "testmods.Calls.echo", 1, "", "arguments lost"},
  };
  std::vector<std::future<std::vector<nxArray>>> futures;
  auto post = [&](std::shared_ptr<const FEvalOpaqueData> data, const std::string& name, int nlhs) {
    auto request = std::make_shared<CmdRequest>(3, output, errors,
                                                std::make_shared<FEvalIIP>(name, nlhs, data, 3));
    auto delegate = std::make_shared<PromiseDelegateT<std::vector<nxArray>>>(allResults);
    futures.push_back(delegate->getFuture());
    vm->getDistributor().submitRequest(request, delegate);
  };
  for (const Case& c : cases) post(c.data, c.function, c.nlhs);
  // A cell holding a char row is a value like any other.
  auto widgetLike = nxArray::cellRow({nxArray::charRow("x")});
  post(args({widgetLike}), "testmods.Calls.echo", 1);
  blockara::EventLoop::instance().runPosted();

  auto written = errors->taken();
  ASSERT_EQ(written.size(), std::size(cases));
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    auto [identifier, message] = failureOf(futures[i]);
    EXPECT_EQ(identifier, cases[i].identifier) << cases[i].function;
    if (cases[i].message) {
      EXPECT_EQ(message, cases[i].message);
    }
    EXPECT_EQ(written[i], message) << cases[i].function;
  }
  EXPECT_NE(written[4].find("Broken.lua"), std::string::npos) << written[4];
  EXPECT_EQ(futures.back().get(), std::vector<nxArray>{widgetLike});
  EXPECT_TRUE(output->taken().empty());
}

TEST_F(EvaluationTest, ObjectsCannotCrossThreadsAndMissingLanguageIsAnError) {
  testclass::registerTestPackage();
  auto extract = [](const std::shared_ptr<CmdEvent>& e) { return detail::completedResults(e); };
  // An object made in Lua is a fine synchronous result but cannot be serialized for a request.
  std::vector<nxArray> out;
  ASSERT_EQ(host->runString("function makeWidget() return Test.pkg.Widget() end"), std::nullopt);
  EXPECT_EQ(bksvFEVAL_NoThrow(1, out, "makeWidget", {}), nullptr);
  EXPECT_TRUE(out.at(0).isObject());
  auto objectResult = postFromWorker<std::vector<nxArray>>("makeWidget", 1, {}, extract);
  blockara::EventLoop::instance().runPosted();
  auto failure = failureOf(objectResult);
  EXPECT_EQ(failure.first, "");
  EXPECT_NE(failure.second.find("object arrays cannot cross threads"), std::string::npos);

  // The future's request is tracked until the loop runs it; the wait callback may pump the loop.
  auto delegate = std::make_shared<PromiseDelegateT<std::vector<nxArray>>>(extract);
  auto future = delegate->getFuture();
  auto id = distributor().submitRequest(
      request("testmods.Calls.add", 2, {nxArray::doubleScalar(1), nxArray::doubleScalar(2)}),
      delegate);
  VariadicTaskReference reference(distributor(), id);
  EXPECT_FALSE(reference.isDone());
  EXPECT_FALSE(delegate->isPromiseDone());
  int pumped = 0;
  delegate->setWaitCallback(
      [&] { pumped += static_cast<int>(blockara::EventLoop::instance().runPosted()); });
  delegate->waitTillReady();
  EXPECT_EQ(pumped, 1);
  EXPECT_TRUE(reference.isDone());
  EXPECT_TRUE(delegate->isPromiseDone());
  // Fewer results than asked for: the missing ones are empty.
  EXPECT_EQ(future.get(), (std::vector<nxArray>{nxArray::doubleScalar(3), nxArray()}));

  // Without the host language, requests and synchronous calls fail with their identifier.
  host.reset();
  auto orphan = postFromWorker<std::vector<nxArray>>("testmods.Calls.add", 1, {}, extract);
  blockara::EventLoop::instance().runPosted();
  EXPECT_EQ(failureOf(orphan).first, "blockara:nvm:NoHostLanguage");
  auto diagnostic = bksvFEVAL_NoThrow(0, out, "testmods.Calls.add", {});
  ASSERT_NE(diagnostic, nullptr);
  EXPECT_EQ(diagnostic->identifier, "blockara:nvm:NoHostLanguage");
}

TEST_F(EvaluationTest, NamesResolveToGlobalsAndModulesAndErrorsCarryATraceback) {
  ASSERT_EQ(host->runString("function twice(x) return x .. x end"), std::nullopt);
  struct Case {
    const char* name;
    nxArray expected;
  };
  const Case cases[] = {
      {"twice", nxArray::charRow("xx")},
      {"lonefn", nxArray::charRow("lone:x")},
      {"lonetable", nxArray::charRow("table:x")},
      {"testmods.pkgfn.run", nxArray::charRow("init:x")},
  };
  for (const Case& c : cases) {
    std::vector<nxArray> out;
    auto diagnostic = bksvFEVAL_NoThrow(1, out, c.name, {nxArray::charRow("x")});
    EXPECT_EQ(diagnostic, nullptr) << c.name << ": " << (diagnostic ? diagnostic->message : "");
    ASSERT_EQ(out.size(), 1u) << c.name;
    EXPECT_EQ(out[0], c.expected) << c.name;
  }
  const std::string error = run("local function inner() error('deep') end inner()");
  EXPECT_NE(error.find("deep"), std::string::npos);
  EXPECT_NE(error.find("stack traceback"), std::string::npos);
  EXPECT_EQ(lua_gettop(host->state()), 0);
}

TEST_F(EvaluationTest, SynchronousCallsNeverThrowAndTakeOnlyWellFormedIdentifiers) {
  struct Case {
    const char* message;
    const char* identifier;
  };
  const Case cases[] = {
      {"a:b:C: text", "a:b:C"},  {"a:b: text", "a:b"},          {"a:b:C", "a:b:C"},
      {"a:b:C:\nmore", "a:b:C"}, {"a_1:b2:C3: x", "a_1:b2:C3"}, {"plain: text", ""},
      {"a:b:C text", ""},        {"a:b:C:text", "a:b:C:text"},  {"1a:b: text", ""},
      {"http://host: down", ""}, {"[string]:1: a:b:C: x", ""},  {"", ""},
  };
  std::vector<nxArray> out;
  for (const Case& c : cases) {
    auto diagnostic =
        bksvFEVAL_NoThrow(0, out, "testmods.Calls.fail", {nxArray::charRow(c.message)});
    ASSERT_NE(diagnostic, nullptr) << c.message;
    EXPECT_EQ(diagnostic->identifier, c.identifier) << c.message;
  }
  auto diagnostic =
      bksvFEVAL_NoThrow(0, out, "testmods.Calls.fail", {nxArray::charRow("a:b:C: no")});
  std::string warned;
  bksvSetWarningHandler([&](const std::string& m) { warned = m; });
  bksvReportAsWarning(diagnostic);
  bksvSetWarningHandler(nullptr);
  EXPECT_EQ(warned, "a:b:C: no");
  EXPECT_THROW(bksvThrowIExceptionFromDiagnostic(diagnostic), NException);
  bksvDiagnosticPtr offThread;
  std::thread([&] { offThread = bksvFEVAL_NoThrow(0, out, "testmods.Calls.add", {}); }).join();
  ASSERT_NE(offThread, nullptr);
  EXPECT_EQ(offThread->identifier, "blockara:nvm:NotMainThread");
}

}  // namespace
