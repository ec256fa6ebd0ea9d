// The engine's switches and refreshes: what each changes, in which order, and which table it runs.
#include <gtest/gtest.h>

#include <tuple>

#include "host/model/bkblock.h"
#include "src/presentation/edittimestyler.h"
#include "src/violationdatabase.h"
#include "tests/src/bkeditbdprobe.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {
namespace {

using Trace = std::vector<std::string>;
using Entry = void (EditTimeController::*)(const std::wstring&);

class EngineSwitchTest : public EngineFixture {
 protected:
  void SetUp() override {
    EngineFixture::SetUp();
    d = open(u"m");
    addBlocks(d, {"g Gain", "h Gain", "s SubSystem", "s/hiddenGoto Goto"});
    engine = engineOf(u"m");
    ASSERT_TRUE(engine);
    data = engine->getData().get();
    g = d->findBlock(u"m/g")->getHandle();
    h = d->findBlock(u"m/h")->getHandle();
    takeChanged(*data);  // the routing block taken when it was added
    // Every table run and every class change, with the switches as they stand then.
    engine->getAlgorithmTable().setEventObserver([this](int code, bool, std::size_t) {
      trace.push_back("run " + std::to_string(code) + flags() + " scanned=" +
                      std::to_string(bkEditBDProbe(*data).visibleGraphsDone().size()));
    });
    createEditTimeStyler()->setObserver([this](double handle, const std::wstring& c, bool on) {
      trace.push_back((on ? "+" : "-") + toNarrow(c) + (handle == g ? " g" : " h") + flags());
    });
  }

  void TearDown() override {
    createEditTimeStyler()->setObserver({});
    EngineFixture::TearDown();
  }

  std::string flags() const {
    const AlgorithmTable& t = engine->getAlgorithmTable();
    return std::string(" E") + "01"[t.showErrors] + " W" + "01"[t.showWarnings] + " RA" +
           "01"[t.auditorChecksEnabled];
  }

  /// Adds the records (handle, check, severity), styles them and drops what that traced.
  void styledWith(std::initializer_list<std::tuple<double, const char*, std::uint32_t>> records) {
    for (const auto& [handle, check, severity] : records) {
      engine->getViolations()->add(
          std::make_shared<EditTimeViolation>(check, "type", severity, handle));
    }
    engine->applyStyling();
    take();
  }

  /// The records of g and h as "g check:severity", sorted.
  Trace store() const {
    Trace out;
    for (const auto& [handle, name] : {std::pair{g, " g"}, std::pair{h, " h"}}) {
      for (const auto& v : engine->getViolations()->violationsOf(handle))
        out.push_back(v.checkId + ":" + std::to_string(v.severity) + name);
    }
    std::sort(out.begin(), out.end());
    return out;
  }

  Trace take() { return std::exchange(trace, {}); }
  /// Calls the controller's `entries` for "m" in order.
  static void call(std::initializer_list<Entry> entries) {
    for (Entry entry : entries) (controller().*entry)(L"m");
  }

  BKRootBD* d = nullptr;
  std::shared_ptr<EditTimeEngine> engine;
  bkEditBD* data = nullptr;
  double g = 0;
  double h = 0;
  Trace trace;
};

TEST_F(EngineSwitchTest, ErrorsOffRemovesStylingFirstWarningsOffClearsTheFlagFirst) {
  styledWith({{g, "err", 1}, {g, "err2", 1}, {h, "warn", 0}, {h, "warn2", 0}});
  controller().turnOffErrors(L"m");
  // The red goes while errors are still on; only then is the switch cleared. One error a block
  // leaves the store.
  EXPECT_EQ(take(), (Trace{"-Error g E1 W1 RA0"}));
  EXPECT_EQ(store().size(), 3u);
  controller().turnOffWarnings(L"m");
  // Warnings the other way round: the switch is already off when the orange goes.
  EXPECT_EQ(take(), (Trace{"-Warn h E0 W0 RA0"}));
  EXPECT_EQ(store().size(), 2u);

  // Both at once: errors first, then warnings, each in its own order.
  engine->getAlgorithmTable().showErrors = true;
  engine->getAlgorithmTable().showWarnings = true;
  styledWith({});
  controller().turnOffErrorsAndWarnings(L"m");
  EXPECT_EQ(take(), (Trace{"-Error g E1 W1 RA0", "-Warn h E0 W0 RA0"}));
  EXPECT_EQ(store(), Trace{});
}

TEST_F(EngineSwitchTest, SwitchesOnRunTheirTablesAfterSettingTheFlags) {
  engine->errorsOff();
  engine->warningsOff();
  EXPECT_EQ(take(), Trace{});  // off switches run no table
  call({&EditTimeController::turnOnErrors, &EditTimeController::turnOnWarnings,
        &EditTimeController::turnOffErrorsAndWarnings, &EditTimeController::turnOnErrorsAndWarnings,
        &EditTimeController::on});
  EXPECT_EQ(take(), (Trace{"run 1 E1 W0 RA0 scanned=1", "run 1 E1 W1 RA0 scanned=1",
                           "run 15 E1 W1 RA0 scanned=1", "run 1 E1 W1 RA0 scanned=1"}));
}

TEST_F(EngineSwitchTest, ASuspendedDiagramIgnoresTheSwitchesButStillLosesItsGlows) {
  engine->getAlgorithmTable().auditorChecksEnabled = true;
  styledWith({{g, "err", 1}, {h, "warn", 0}, {h, "ra", 3}});
  d->setSuspended(true);
  call({&EditTimeController::on, &EditTimeController::turnOnErrors,
        &EditTimeController::turnOnWarnings, &EditTimeController::turnOnErrorsAndWarnings,
        &EditTimeController::enableRA});
  EXPECT_EQ(take(), Trace{});
  // The removal passes sit outside the gate; the switches themselves stay as they were. h loses
  // "Warn" twice: once with its edit-time warning, once with its rule-auditor finding.
  call({&EditTimeController::turnOffErrors, &EditTimeController::turnOffWarnings,
        &EditTimeController::disableRA});
  EXPECT_EQ(take(), (Trace{"-Error g E1 W1 RA1", "-Warn h E1 W1 RA1", "-Warn h E1 W1 RA1"}));
  EXPECT_EQ(flags(), " E1 W1 RA1");
  EXPECT_EQ(store(), Trace{});
  d->setSuspended(false);
}

TEST_F(EngineSwitchTest, TheWholeDiagramIsWalkedOnceInAnEnginesLife) {
  // An engine made without the opening walk: the preference was off when the diagram opened.
  // The walk counts variants and notes subsystems, listeners and commented subsystems.
  controller().closeEngine(L"m");
  addBlocks(d, {"v SubSystem Variant=on", "quiet SubSystem", "s/listen EventListener"});
  d->editing().setCommentState(u"m/quiet", 1);
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(false);
  controller().turnOnErrors(L"m");  // made, but the walk waits for the preference
  auto fresh = engineOf(u"m");
  ASSERT_TRUE(fresh);
  bkEditBDProbe probe(*fresh->getData());
  EXPECT_FALSE(probe.initialScanDone());
  takeChanged(probe.d);

  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(true);
  controller().turnOnErrors(L"m");
  EXPECT_TRUE(probe.initialScanDone());
  // The walk takes the routing block off view; the restarted visible scan takes the root.
  const auto sortedChanged = [&] {
    std::vector<std::string> names = takeChanged(probe.d);
    std::sort(names.begin(), names.end());
    return names;
  };
  EXPECT_EQ(sortedChanged(), (Trace{"g", "h", "hiddenGoto", "quiet", "s", "v"}));
  controller().turnOnErrors(L"m");
  EXPECT_EQ(sortedChanged(), (Trace{"g", "h", "quiet", "s", "v"}));
  EXPECT_EQ(probe.variantSubsystemCount(), 1u);
  EXPECT_EQ(probe.handleToSubsystem().size(), 3u);  // s, v and the commented one
  std::wstring noted;
  for (const auto& listener : takeAll(probe.subsysProperties())) noted += listener.path + L";";
  for (const auto& c : takeAll(probe.blkProperties())) noted += c.pathWithSlash + L"01"[c.isAdded];
  EXPECT_EQ(noted, L"m/s/listen;m/quiet/1");
}

TEST_F(EngineSwitchTest, AuditorOffClearsTheSwitchBeforeTheStyling) {
  // g has rule-auditor findings only: every one of them goes. h also carries an edit-time
  // warning, and keeps its orange for it.
  engine->getAlgorithmTable().auditorChecksEnabled = true;
  styledWith({{g, "ra", 3}, {g, "ra2", 3}, {h, "ra", 3}, {h, "warn", 0}, {h, "err", 1}});
  controller().disableRA(L"m");
  EXPECT_EQ(take(), (Trace{"-Warn g E1 W1 RA0"}));
  EXPECT_EQ(store(), (Trace{"err:1 h", "warn:0 h"}));
}

TEST_F(EngineSwitchTest, AuditorSwitchesAndConfigurations) {
  d->setAuditorMode(true);
  d->editing().setProperties(u"m/s", {{"MaskType", std::string("Filter")}});
  take();
  controller().enableRA(L"m");
  bkEditBDProbe probe(*data);
  EXPECT_EQ(take(), (Trace{"run 7 E1 W1 RA1 scanned=1"}));
  EXPECT_EQ(probe.auditorGraphsDone().size(), 1u);
  // Masks are queued again for every known subsystem.
  const auto masks = takeAll(probe.maskedBlocks());
  EXPECT_TRUE(std::any_of(masks.begin(), masks.end(), [](auto& m) { return m.path == L"m/s"; }));

  styledWith({{g, "ra", 3}});
  controller().switchConfiguration(L"/no/such/config.xml", L"m");
  // The old configuration's findings go before the new checks run.
  EXPECT_EQ(take(), (Trace{"-Warn g E1 W1 RA1", "run 7 E1 W1 RA1 scanned=1"}));
  EXPECT_EQ(store(), Trace{});
  controller().switchConfiguration(L"m", L"/no/such/config.xml");  // swapped: no engine, nothing
  controller().loadDefaultConfiguration(L"m");
  EXPECT_EQ(take(), (Trace{"run 7 E1 W1 RA1 scanned=1"}));

  controller().disableRA(L"m");
  EXPECT_EQ(flags(), " E1 W1 RA0");
  EXPECT_TRUE(probe.auditorGraphsDone().empty() && probe.auditorPathsDone().empty());
  EXPECT_EQ(take(), Trace{});
  // Checks on under the rule auditor bring the configuration back before the table runs.
  controller().on(L"m");
  EXPECT_EQ(take(), (Trace{"run 1 E1 W1 RA1 scanned=1"}));
  EXPECT_EQ(probe.auditorGraphsDone().size(), 1u);
}

TEST_F(EngineSwitchTest, RefreshesAfterACompileOrAWorkspaceChange) {
  take();
  controller().refreshWorkspaceChecks(L"m");
  EXPECT_EQ(take(), (Trace{"run 16 E1 W1 RA0 scanned=1"}));
  EXPECT_EQ(takeChanged(*data), (Trace{"g", "h", "s"}));
  // Without a missing-variable finding no table runs.
  engine->refreshMissingVariables(17);
  EXPECT_EQ(take(), Trace{});
  styledWith({{g, "BlockMissingVariable", 0}});
  engine->refreshMissingVariables(17);
  EXPECT_EQ(take(), (Trace{"run 17 E1 W1 RA0 scanned=1"}));
  controller().refreshBlockaraStatePortChecks(L"m", g);
  EXPECT_EQ(take(), (Trace{"run 9 E1 W1 RA0 scanned=1"}));
}

TEST_F(EngineSwitchTest, CleanupAtCloseStopsListeningToTheStudios) {
  take();
  Blockara::StudioApp* studio = Blockara::StudioApp::open(d);
  studio->openEditor(u"m/s");
  blockara::EventLoop::instance().runUntilIdle();
  EXPECT_EQ(take(), (Trace{"run 2 E1 W1 RA0 scanned=1"}));
  controller().closeEngine(L"m");
  studio->focus(u"m");
  blockara::EventLoop::instance().runUntilIdle();
  EXPECT_EQ(take(), Trace{});  // the closed engine hears nothing
}

}  // namespace
}  // namespace bkedittimecheck::testing
