#include "host/signals/bkplugin.h"

#include <boost/signals2/signal.hpp>
#include <map>
#include <memory>
#include <stdexcept>
#include <unordered_map>

namespace bkplugin {
namespace {

template <typename Sig>
using SignalPtr = std::shared_ptr<boost::signals2::signal<Sig>>;

// The signals of one diagram side, by event number. Each signal is held by shared pointer so
// that a slot that drops the side's signals while they are being raised does not destroy the
// signal under the raise.
struct SideSignals {
  std::map<int, SignalPtr<void(BKRootBD*)>> edit;
  std::map<int, SignalPtr<void(BKRootBD*, const PluginChangeReport&)>> batch;
  std::map<int, SignalPtr<void(BKRootBD*, BKBlock*)>> comment;
  std::map<int, SignalPtr<void(BKRootBD*, const std::string&)>> parameter;
  std::map<int, SignalPtr<void(BKCompBD*)>> compile;
  std::map<int, SignalPtr<void(BKExecBD*)>> execution;
};

// Main thread only, like every function of this file.
std::unordered_map<const void*, SideSignals>& registry() {
  static std::unordered_map<const void*, SideSignals> sides;
  return sides;
}

SideSignals& sideOf(const void* side) {
  if (side == nullptr) throw std::invalid_argument("signal registration for a null diagram");
  return registry()[side];
}

template <typename Sig, typename Slot>
boost::signals2::connection connect(std::map<int, SignalPtr<Sig>>& signals, int event,
                                    const void* side, Slot slot) {
  if (!slot) throw std::invalid_argument("signal registration with an empty slot");
  auto& signal = signals[event];
  if (!signal) signal = std::make_shared<boost::signals2::signal<Sig>>();
  return signal->connect(std::move(slot));
}

template <typename Sig>
SignalPtr<Sig> find(std::map<int, SignalPtr<Sig>> SideSignals::*member, const void* side,
                    int event) {
  auto it = registry().find(side);
  if (it == registry().end()) return nullptr;
  auto& signals = it->second.*member;
  auto found = signals.find(event);
  return found == signals.end() ? nullptr : found->second;
}

}  // namespace

boost::signals2::connection addEditBdSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                            EditBdSlot slot) {
  return connect(sideOf(diagram).edit, event, diagram, std::move(slot));
}

boost::signals2::connection addEditBdBatchSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                                 EditBdBatchSlot slot) {
  return connect(sideOf(diagram).batch, event, diagram, std::move(slot));
}

boost::signals2::connection addEditBdBlockCommentedStatusSignal(BKRootBD* diagram,
                                                                BKGraphicalEvent event,
                                                                EditBdBlockSlot slot) {
  return connect(sideOf(diagram).comment, event, diagram, std::move(slot));
}

boost::signals2::connection addEditBdModelParameterSignal(BKRootBD* diagram,
                                                          BKGraphicalEvent event,
                                                          EditBdModelParameterSlot slot) {
  return connect(sideOf(diagram).parameter, event, diagram, std::move(slot));
}

boost::signals2::connection addCompBdSignal(BKCompBD* diagram, BKCompEvent event,
                                            CompBdSlot slot) {
  return connect(sideOf(diagram).compile, event, diagram, std::move(slot));
}

boost::signals2::connection addExecBdSignal(BKExecBD* diagram, BKExecEvent event,
                                            ExecBdSlot slot) {
  return connect(sideOf(diagram).execution, event, diagram, std::move(slot));
}

void raiseEditBdSignal(BKRootBD* diagram, BKGraphicalEvent event) {
  if (auto signal = find(&SideSignals::edit, diagram, event)) (*signal)(diagram);
}

void raiseEditBdBatchSignal(BKRootBD* diagram, BKGraphicalEvent event,
                            const PluginChangeReport& report) {
  if (auto signal = find(&SideSignals::batch, diagram, event)) (*signal)(diagram, report);
}

void raiseEditBdBlockCommentedStatusSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                           BKBlock* block) {
  if (auto signal = find(&SideSignals::comment, diagram, event)) (*signal)(diagram, block);
}

void raiseEditBdModelParameterSignal(BKRootBD* diagram, BKGraphicalEvent event,
                                     const std::string& name) {
  if (auto signal = find(&SideSignals::parameter, diagram, event)) (*signal)(diagram, name);
}

void raiseCompBdSignal(BKCompBD* diagram, BKCompEvent event) {
  if (auto signal = find(&SideSignals::compile, diagram, event)) (*signal)(diagram);
}

void raiseExecBdSignal(BKExecBD* diagram, BKExecEvent event) {
  if (auto signal = find(&SideSignals::execution, diagram, event)) (*signal)(diagram);
}

void dropSignals(const void* side) {
  auto it = registry().find(side);
  if (it == registry().end()) return;
  // Moved out first so that slots disconnected here cannot reach a half-erased entry.
  SideSignals dropped = std::move(it->second);
  registry().erase(it);
  auto disconnectAll = [](auto& signals) {
    for (auto& [event, signal] : signals) signal->disconnect_all_slots();
  };
  disconnectAll(dropped.edit);
  disconnectAll(dropped.batch);
  disconnectAll(dropped.comment);
  disconnectAll(dropped.parameter);
  disconnectAll(dropped.compile);
  disconnectAll(dropped.execution);
}

std::size_t slotCount(const void* side, int event) {
  auto it = registry().find(side);
  if (it == registry().end()) return 0;
  std::size_t count = 0;
  auto add = [&](auto& signals) {
    auto found = signals.find(event);
    if (found != signals.end()) count += found->second->num_slots();
  };
  add(it->second.edit);
  add(it->second.batch);
  add(it->second.comment);
  add(it->second.parameter);
  add(it->second.compile);
  add(it->second.execution);
  return count;
}

}  // namespace bkplugin
