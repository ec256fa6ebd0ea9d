#pragma once

#include <boost/property_tree/ptree.hpp>
#include <map>
#include <string>

namespace bkedittimecheck {

/// The process-wide selection of configurable checks and the tree of the customization file
/// they take their parameters from. Every engine holds an instance in its `checkSelector`, but
/// the instance carries no data: all state is process-wide, so a load for one diagram reaches
/// every diagram at its next run of checks.
///
/// Thread contract: loads run on the main thread. The worker reaches the tree only through
/// `getCheckConfiguration`. `configurationMutex` guards a load as a whole and every lookup in the
/// tree; `getCheckSelectionMap` and `getConfigurationTree` take no lock because they are only
/// called on the main thread, where no load can run at the same moment.
class EditTimeCheckSelector {
 public:
  EditTimeCheckSelector() = default;
  EditTimeCheckSelector(const EditTimeCheckSelector&) = delete;
  EditTimeCheckSelector& operator=(const EditTimeCheckSelector&) = delete;

  /// Main thread. Marks the check parameters as changed, finds the customization file (the
  /// preferences directory first, then `path`, then the installation root) and replaces the
  /// tree and the selection with its content. When no file exists nothing changes. A file that
  /// cannot be read or parsed, or lacks "RAConfiguration.CheckCellArray", throws the property
  /// tree's `ptree_error` (`xml_parser_error`, `ptree_bad_path`); the tree may then already be
  /// new while the selection is still the old one.
  static void loadCheckSelection(const std::wstring& path);

  /// Main thread. Parses `filePath` a second time into a private tree and returns the map from
  /// check ID to selected, handing a copy to the host's preferences. The first `Check` of an ID
  /// wins; a walk through a `Check` stops at its "Selected". Throws as `loadCheckSelection`.
  static std::map<std::string, bool> readCheckSelection(const std::wstring& filePath);

  /// Main thread. The current selection, valid until the next load; empty before the first.
  static const std::map<std::string, bool>& getCheckSelectionMap();

  /// Main thread. A copy of the whole customization tree; empty before the first load.
  static boost::property_tree::ptree getConfigurationTree();

  /// Any thread (the checks call it on the worker). A copy of the first `Check` element that
  /// has an "ID" child equal to `checkId`, or an empty tree. Throws `ptree_bad_path` when the
  /// tree has no "RAConfiguration.CheckCellArray", also before the first load.
  static boost::property_tree::ptree getCheckConfiguration(const std::string& checkId);

  /// Main thread, tests only. Empties the selection and the tree.
  static void resetForTesting();
};

}  // namespace bkedittimecheck
