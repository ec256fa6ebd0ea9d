#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "host/style/classselector.h"
#include "host/style/glow.h"
#include "host/style/style.h"

namespace diagram::style {

/// A named set of style rules and of the style classes that blocks carry. A block is named by its
/// handle (a double). Which rules apply to a block follows from its classes: every rule whose
/// selector matches one of them; where several set the same property, the rule added last wins,
/// as in a cascading style sheet. The styling service owns every styler (see `createStyler`).
///
/// Marking a block with a class it has, or removing one it lacks, is harmless. A handle whose
/// block is gone is simply never drawn; the styler does not check handles.
///
/// Thread contract: main thread only, like the drawing it serves. No locks.
class Styler {
 public:
  /// Identifies an added rule.
  using RuleHandle = std::size_t;

  /// Told about every `applyClass` and `removeClass` call, with `applied` true for the first.
  using Observer = std::function<void(double handle, const std::wstring& className, bool applied)>;

  /// Main thread. Made by `createStyler`; `description` and `priority` are kept as given.
  Styler(std::wstring name, std::wstring description, double priority);
  virtual ~Styler() = default;

  Styler(const Styler&) = delete;
  Styler& operator=(const Styler&) = delete;

  /// Main thread. Adds a rule at the end of the list and returns its handle. Never fails.
  virtual RuleHandle addRule(const ClassSelector& selector, const Style& style);

  /// Main thread. Lets the styler's rules show in the drawing (`diagram::style::glowOf`).
  /// Repeated calls are harmless.
  virtual void activate();

  /// Main thread. True once `activate` was called.
  bool isActive() const { return active; }

  /// Main thread. Marks the block `handle` with `className`. Throws `std::invalid_argument` for
  /// a NaN handle.
  void applyClass(double handle, const std::wstring& className);

  /// Main thread. Takes `className` away from the block `handle` (a NaN handle has none).
  void removeClass(double handle, const std::wstring& className);

  /// Main thread. The classes the block carries, in sorted order; empty for an unknown handle.
  std::vector<std::wstring> classesOf(double handle) const;

  /// Main thread. The glow the block shows under this styler's rules, or none.
  std::optional<Glow> glowOf(double handle) const;

  /// Main thread. The handles that carry at least one class, in ascending order.
  std::vector<double> styledHandles() const;

  /// Main thread. The rules, in the order of adding.
  std::size_t ruleCount() const { return rules.size(); }
  const ClassSelector& ruleSelector(RuleHandle rule) const { return rules.at(rule).first; }
  const Style& ruleStyle(RuleHandle rule) const { return rules.at(rule).second; }

  /// Main thread. How many `applyClass` and `removeClass` calls were made.
  std::uint64_t applyCalls() const { return applied; }
  std::uint64_t removeCalls() const { return removed; }

  /// Main thread. Sets (or with an empty function clears) the observer of class changes.
  void setObserver(Observer observer) { watcher = std::move(observer); }

  const std::wstring& name() const { return stylerName; }
  const std::wstring& description() const { return stylerDescription; }
  double priority() const { return stylerPriority; }

 private:
  std::wstring stylerName;
  std::wstring stylerDescription;
  double stylerPriority;
  bool active = false;
  std::vector<std::pair<ClassSelector, Style>> rules;
  std::map<double, std::set<std::wstring>> classes;  // only handles with at least one class
  std::uint64_t applied = 0;
  std::uint64_t removed = 0;
  Observer watcher;
};

/// Main thread. The styler of that name, or null if none was created.
Styler* getStyler(const std::wstring& name);

/// Main thread. Creates the styler `name` with a description and a priority (among active
/// stylers that style one block, the higher priority wins, then the one created later) and
/// returns it. If a styler of that name exists, returns it unchanged. The service keeps every
/// styler for the life of the process.
Styler* createStyler(const std::wstring& name, const std::wstring& description, double priority);

/// Main thread. The names of all stylers, in order of creation.
std::vector<std::wstring> stylerNames();

/// Main thread. The glow the block shows in the drawing: that of the winning active styler that
/// gives it one, or none.
std::optional<Glow> glowOf(double handle);

/// Main thread. The classes the block carries under all stylers, sorted, without repeats.
std::vector<std::wstring> classesOf(double handle);

}  // namespace diagram::style
