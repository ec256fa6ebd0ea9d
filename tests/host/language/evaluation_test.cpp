#include <gtest/gtest.h>

#include <cstring>
#include <mutex>
#include <thread>

#include "host/language/cmddistributor.h"
#include "host/language/feval.h"
#include "host/language/nvm.h"
#include "luafixture.h"
#include "nxarrayprint.h"

namespace {

using namespace cmddistributor;
using Results = std::vector<nxArray>;

/// A sink that keeps what it gets. Requests run on the main thread, and so do its writes.
struct RecordingSink : Sink {
  void write(std::string_view text) override { texts.emplace_back(text); }
  std::vector<std::string> texts;
};

class EvaluationTest : public LuaFixture {
 protected:
  static CmdDistributor& distributor() {
    return nvm::Factory::getCurrentLocalMVM()->getDistributor();
  }
  static std::shared_ptr<const FEvalOpaqueData> args(Results a) {
    return std::make_shared<FEvalArrayData>(std::move(a));
  }
  /// Submits a request of `name(data)` with output to `out` and errors to `err` (the machine's
  /// own sinks when null); the future of its results.
  std::future<Results> submit(const std::string& name, int nlhs,
                              std::shared_ptr<const FEvalOpaqueData> data) {
    auto vm = nvm::Factory::getCurrentLocalMVM();
    auto delegate = std::make_shared<PromiseDelegateT<Results>>(detail::completedResults);
    auto future = delegate->getFuture();
    distributor().submitRequest(
        std::make_shared<CmdRequest>(3, out ? out : vm->getSink(0), err ? err : vm->getSink(1),
                                     std::make_shared<FEvalIIP>(name, nlhs, data, 3)),
        delegate);
    return future;
  }
  /// The same from another thread, the way the worker posts.
  std::future<Results> fromWorker(const std::string& name, int nlhs, Results a) {
    std::future<Results> future;
    std::thread([&] { future = submit(name, nlhs, args(std::move(a))); }).join();
    return future;
  }
  std::shared_ptr<Sink> out, err;
};

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

// The engine's extractor of logical answers, right or of the wrong class, is the missing-variable
// scenarios'.
TEST_F(EvaluationTest, RequestsFromSeveralThreadsRunInPostingOrder) {
  std::mutex postingMutex;
  std::vector<std::string> posted;            // guarded by postingMutex
  std::vector<std::future<Results>> futures;  // guarded by postingMutex
  std::vector<std::thread> workers;
  for (int t = 0; t < 4; ++t) {
    workers.emplace_back([&, t] {
      for (int i = 0; i < 5; ++i) {
        std::string tag = std::to_string(t) + "." + std::to_string(i);
        // Posting and noting the order under one lock gives the order the loop must keep.
        std::lock_guard<std::mutex> lock(postingMutex);
        futures.push_back(submit("testmods.Calls.record", 1, args({nxArray::charRow(tag)})));
        posted.push_back(tag);
      }
    });
  }
  for (auto& w : workers) w.join();
  EXPECT_EQ(distributor().trackedCount(), 20u);
  EXPECT_EQ(blockara::EventLoop::instance().runPosted(), 20u);
  EXPECT_EQ(distributor().trackedCount(), 0u);
  std::string expectedLog;
  for (std::size_t i = 0; i < posted.size(); ++i) {
    expectedLog += (i ? "," : "") + posted[i];
    EXPECT_EQ(futures[i].get(), Results{nxArray::doubleScalar(double(i + 1))}) << i;
  }
  Results log;
  ASSERT_EQ(bksvFEVAL_NoThrow(1, log, "testmods.Calls.log", {}), nullptr);
  EXPECT_EQ(log.at(0), nxArray::charRow(expectedLog));
}

TEST_F(EvaluationTest, FailedRequestsCompleteWithTheirErrorAndWriteItToTheErrorSink) {
  auto output = std::make_shared<RecordingSink>();
  auto errors = std::make_shared<RecordingSink>();
  out = output;
  err = errors;
  class FailingData : public FEvalOpaqueData {
    Results toArrays() const override { throw std::runtime_error("arguments lost"); }
  };
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
  std::vector<std::future<Results>> futures;
  for (const Case& c : cases) futures.push_back(submit(c.function, c.nlhs, c.data));
  // A cell holding a char row is a value like any other.
  auto widgetLike = nxArray::cellRow({nxArray::charRow("x")});
  futures.push_back(submit("testmods.Calls.echo", 1, args({widgetLike})));
  blockara::EventLoop::instance().runPosted();

  const auto& written = errors->texts;
  ASSERT_EQ(written.size(), std::size(cases));
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    auto [identifier, message] = failureOf(futures[i]);
    EXPECT_EQ(identifier, cases[i].identifier) << cases[i].function;
    EXPECT_EQ(message, cases[i].message ? cases[i].message : written[i]);
    EXPECT_EQ(written[i], message) << cases[i].function;
  }
  EXPECT_NE(written[4].find("Broken.lua"), std::string::npos) << written[4];
  EXPECT_EQ(futures.back().get(), Results{widgetLike});
  EXPECT_TRUE(output->texts.empty());
}

TEST_F(EvaluationTest, ObjectsCannotCrossThreadsAndMissingLanguageIsAnError) {
  // An object made in Lua is a fine synchronous result but cannot be serialized for a request.
  Results results;
  ASSERT_EQ(host->runString("function makeWidget() return Test.pkg.Widget() end"), std::nullopt);
  EXPECT_EQ(bksvFEVAL_NoThrow(1, results, "makeWidget", {}), nullptr);
  EXPECT_TRUE(results.at(0).isObject());
  auto objectResult = fromWorker("makeWidget", 1, {});
  blockara::EventLoop::instance().runPosted();
  auto failure = failureOf(objectResult);
  EXPECT_EQ(failure.first, "");
  EXPECT_NE(failure.second.find("object arrays cannot cross threads"), std::string::npos);

  // Fewer results than asked for: the missing ones are empty.
  auto fewer =
      submit("testmods.Calls.add", 2, args({nxArray::doubleScalar(1), nxArray::doubleScalar(2)}));
  blockara::EventLoop::instance().runPosted();
  EXPECT_EQ(fewer.get(), (Results{nxArray::doubleScalar(3), nxArray()}));

  // Without the host language, requests and synchronous calls fail with their identifier.
  host.reset();
  auto orphan = fromWorker("testmods.Calls.add", 1, {});
  blockara::EventLoop::instance().runPosted();
  EXPECT_EQ(failureOf(orphan).first, "blockara:nvm:NoHostLanguage");
  auto diagnostic = bksvFEVAL_NoThrow(0, results, "testmods.Calls.add", {});
  ASSERT_NE(diagnostic, nullptr);
  EXPECT_EQ(diagnostic->identifier, "blockara:nvm:NoHostLanguage");
}

TEST_F(EvaluationTest, NamesResolveToGlobalsAndModulesAndErrorsCarryATraceback) {
  ASSERT_EQ(host->runString("function twice(x) return x .. x end"), std::nullopt);
  for (const auto& [name, expected] : {std::pair{"twice", "xx"},
                                       {"lonefn", "lone:x"},
                                       {"lonetable", "table:x"},
                                       {"testmods.pkgfn.run", "init:x"}}) {
    Results results;
    auto diagnostic = bksvFEVAL_NoThrow(1, results, name, {nxArray::charRow("x")});
    EXPECT_EQ(diagnostic, nullptr) << name << ": " << (diagnostic ? diagnostic->message : "");
    EXPECT_EQ(results, Results{nxArray::charRow(expected)}) << name;
  }
  const std::string error = run("local function inner() error('deep') end inner()");
  EXPECT_NE(error.find("deep"), std::string::npos);
  EXPECT_NE(error.find("stack traceback"), std::string::npos);
  EXPECT_EQ(lua_gettop(host->state()), 0);
}

TEST_F(EvaluationTest, SynchronousCallsNeverThrowAndTakeOnlyWellFormedIdentifiers) {
  Results results;
  auto failWith = [&](const char* message) {
    return bksvFEVAL_NoThrow(0, results, "testmods.Calls.fail", {nxArray::charRow(message)});
  };
  for (const auto& [message, identifier] :
       {std::pair{"a:b:C: text", "a:b:C"}, {"a:b: text", "a:b"}, {"a:b:C", "a:b:C"},
        {"a:b:C:\nmore", "a:b:C"}, {"a_1:b2:C3: x", "a_1:b2:C3"}, {"plain: text", ""},
        {"a:b:C text", ""}, {"a:b:C:text", "a:b:C:text"}, {"1a:b: text", ""},
        {"http://host: down", ""}, {"[string]:1: a:b:C: x", ""}, {"", ""}}) {
    auto diagnostic = failWith(message);
    ASSERT_NE(diagnostic, nullptr) << message;
    EXPECT_EQ(diagnostic->identifier, identifier) << message;
  }
  auto diagnostic = failWith("a:b:C: no");
  std::string warned;
  bksvSetWarningHandler([&](const std::string& m) { warned = m; });
  bksvReportAsWarning(diagnostic);
  bksvSetWarningHandler(nullptr);
  EXPECT_EQ(warned, "a:b:C: no");
  EXPECT_THROW(bksvThrowIExceptionFromDiagnostic(diagnostic), NException);
  bksvDiagnosticPtr offThread;
  std::thread([&] { offThread = bksvFEVAL_NoThrow(0, results, "testmods.Calls.add", {}); }).join();
  ASSERT_NE(offThread, nullptr);
  EXPECT_EQ(offThread->identifier, "blockara:nvm:NotMainThread");
}

TEST(NxArrayTest, SerializationRoundTripsAndRefusesEveryDamagedInput) {
  using detail::deserializeNxArrays;
  using detail::serializeNxArrays;
  nxArray s = nxArray::structMatrix(2, 1, {"f"});
  s.setField(0, "f", nxArray::uint32Matrix(1, 2, {1, 2}));
  const std::vector<nxArray> arrays = {
      nxArray(), nxArray::doubleMatrix(2, 1, {1, 2}), nxArray::logicalMatrix(1, 2, {true, false}),
      nxArray::charMatrix(2, 1, "ab"),
      nxArray::cellColumn({nxArray::uint32Scalar(4294967295u), nxArray::charRow(u"\u20ac")}), s};
  auto bytes = serializeNxArrays(arrays);
  EXPECT_EQ(deserializeNxArrays(bytes), arrays);
  for (std::size_t cut = 0; cut < bytes.size(); cut += 3) {
    EXPECT_THROW(deserializeNxArrays({bytes.begin(), bytes.begin() + static_cast<long>(cut)}),
                 std::runtime_error) << cut;
  }
  EXPECT_THROW(serializeNxArrays({nxArray::objectMatrix(0, 0, {})}), std::invalid_argument);

  // Hostile headers: magic, count, class byte, then rows and cols at bytes 9 and 17.
  const auto base = serializeNxArrays({nxArray::doubleScalar(1)});
  auto patched = [&](std::size_t at, std::uint64_t value, std::size_t width = 8) {
    auto b = base;
    std::memcpy(b.data() + at, &value, width);
    return b;
  };
  auto trailing = base;
  trailing.push_back(0);
  for (const auto& bad : {patched(9, ~0ull), patched(9, 1ull << 32), patched(8, 5, 1),
                          patched(0, 'M', 1), trailing}) {
    EXPECT_THROW(deserializeNxArrays(bad), std::runtime_error);
  }
  // Deep nesting is refused rather than recursed into.
  nxArray deep = nxArray::charRow("x");
  for (int i = 0; i < 70; ++i) deep = nxArray::cellRow({deep});
  EXPECT_THROW(deserializeNxArrays(serializeNxArrays({deep})), std::runtime_error);
}

}  // namespace
