#pragma once

#include <boost/property_tree/ptree.hpp>
#include <cstdint>
#include <string>
#include <string_view>

#include "src/algorithms/checkcontext.h"

namespace bkedittimecheck {

/// The pair of parameters that decides which blocks a check looks at.
struct CheckScope {
  std::int32_t skipLinkedBlocks = 0;  ///< 1: library-linked blocks are outside the scope.
  std::int32_t lookUnderMasks = 2;    ///< 0 all, 1 none, 2 graphical, 3 functional.
};

/// Base of every edit-time check. One instance is built per run by the diagram's algorithm
/// table, runs once on the worker thread and dies with its analyzer.
///
/// Thread contract: an instance is built on the main thread and then used by the worker only.
/// The scope map is touched by the worker only and has no lock; the "parameters changed" flag is
/// set from both threads and is guarded by its own static mutex.
class EditTimeAlgorithms {
 public:
  /// Any thread. Stores the three identifying values; never throws beyond allocation.
  EditTimeAlgorithms(std::string_view checkId, const std::wstring& diagramName,
                     std::uint32_t severity);
  virtual ~EditTimeAlgorithms();

  EditTimeAlgorithms(const EditTimeAlgorithms&) = delete;
  EditTimeAlgorithms& operator=(const EditTimeAlgorithms&) = delete;

  /// Worker thread. A hook that no check needs; does nothing.
  virtual void prepare();

  /// Worker thread. Does the whole work of the check for one run on the diagram's parts in
  /// `context`. The result is informative only (false: the diagram's data were missing, or the
  /// last decision added a record); no caller relies on it. May throw; the analyzer swallows it.
  virtual bool runCheck(const CheckContext& context);

  /// Any thread. Marks the check parameters as to be read again (true) or as read (false).
  static void setInputParametersChanged(bool changed);

  /// Any thread. Whether the check parameters must be read again.
  static bool inputParametersChanged();

  /// Worker thread. This check's scope from the shared map; an all-zero pair when no reader
  /// has stored one for its ID.
  CheckScope currentScope() const;

  /// Worker thread. Reads "Follow links" and "Look under masks" from the check's configuration
  /// entry (an empty tree gives the defaults) and stores the pair under the check's ID.
  void readInputParameters(const boost::property_tree::ptree& configuration);

  /// Worker thread (tests: any thread while no worker runs). Forgets every stored scope.
  static void clearScopes();

  const std::string& getCheckId() const { return checkId; }
  const std::wstring& getDiagramName() const { return diagramName; }
  std::uint32_t getSeverity() const { return severity; }

 protected:
  const std::string& checkId;  // interned: an edit builds some twenty checks, none copies its ID
  const std::wstring& diagramName;  // interned, as the ID
  const std::uint32_t severity;
};

/// Calls `visit(name, element)` for each "InputParameter" element under each "InputParameters"
/// child of a check's configuration entry, in document order. `name` is the element's "Name"
/// attribute, empty when missing. Never throws beyond what `visit` throws.
template <typename Visit>
void forEachInputParameter(const boost::property_tree::ptree& configuration, Visit visit) {
  for (const auto& [key, parameters] : configuration) {
    if (key != "InputParameters") continue;
    for (const auto& [childKey, parameter] : parameters) {
      if (childKey != "InputParameter") continue;
      visit(parameter.template get<std::string>("<xmlattr>.Name", ""), parameter);
    }
  }
}

}  // namespace bkedittimecheck
