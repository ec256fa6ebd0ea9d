#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/edittimepreferences.h"
#include "host/runtime/eventloop.h"
#include "host/runtime/timerthread.h"
#include "host/studio/studioapp.h"
#include "src/bkeditbd.h"
#include "src/edittimecontroller.h"
#include "src/edittimeengine.h"
#include "src/hostinterface.h"
#include "src/moduleentries.h"
#include "tests/src/bkeditbdprobe.h"
#include "tests/src/blockline.h"

namespace bkedittimecheck::testing {

/// A diagram opened in the reference host as the program opens one (signals registered, one
/// editor on the root, signal 1 raised), with the worker's timer in manual mode and the events
/// that reach the diagram's table recorded.
class EngineFixture : public ::testing::Test {
 protected:
  struct Event {
    int code;
    bool hasVariants;
    bool operator==(const Event&) const = default;
  };
  using Events = std::vector<Event>;

  void SetUp() override {
    blockara::EventLoop::instance().adoptCurrentThread();
    blockara::TimerThread::setDefaultMode(blockara::TimerThread::manual);
    bk::bkedittimecheck::bkutils::setShowEditTimeIssues(true);
  }

  void TearDown() override { bkBlockDiagramSet::closeAll(); }

  static EditTimeController& controller() { return EditTimeController::instance(); }

  /// Opens a diagram for editing and, when an engine arose, starts recording its events.
  BKRootBD* open(const std::u16string& name, int kind = BKRootBD::Model, bool auditor = false) {
    BKRootBD* d = bkBlockDiagramSet::create(name, kind);
    if (auditor) d->setAuditorMode(true);
    RegisterEditBdEvents(d);
    RegisterCompBdEvents(d->getCompBD());
    RegisterExecPlugins(d->getExecBD());
    Blockara::StudioApp::open(d)->openEditor(name);
    d->notifyOpened();
    if (auto e = engineOf(name)) {
      e->getAlgorithmTable().setEventObserver([this](int code, bool variants, std::size_t) {
        events.push_back({code, variants});
      });
    }
    return d;
  }

  static std::shared_ptr<EditTimeEngine> engineOf(const std::u16string& name) {
    return controller().findEngine(toWide(name));
  }

  Events takeEvents() { return std::exchange(events, {}); }

  /// The styling that ends a pass, as the worker posts it: counts a pass first when none is in
  /// flight, since a styling without a pass leaves the engine busy for good.
  static void styleAsWorker(const std::wstring& name, EditTimeEngine& engine) {
    if (!engine.hasUnstyledPasses()) {
      engine.pendingWork().addQueued(1);
      engine.pendingWork().finishOne();
    }
    controller().applyStyle(name, engine.engineId());
  }

  /// Pops every snapshot from `changedBlocks`, returning the block names in order.
  static std::vector<std::string> takeChanged(bkEditBD& data) {
    std::vector<std::string> names;
    for (const auto& queued : takeAll(bkEditBDProbe(data).changedBlocks()))
      names.push_back(queued.snapshot->getBlockName());
    return names;
  }

  /// Pops every handle from `deletedHandles`.
  static std::vector<double> takeDeleted(bkEditBD& data) {
    return takeAll(bkEditBDProbe(data).deletedHandles());
  }

  template <typename T>
  static std::vector<T> takeAll(EditQueue<T>& queue) {
    std::vector<T> out;
    T item{};
    while (queue.try_pop(item)) out.push_back(std::move(item));
    return out;
  }

  Events events;
};

}  // namespace bkedittimecheck::testing
