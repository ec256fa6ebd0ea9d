#pragma once

#include <cstdint>
#include <string>

namespace bkedittimecheck {

/// Base of every edit-time check. An instance is built by the diagram's `AlgorithmTable` for one
/// batch, runs once on the worker and dies. It finds the diagram's data by `diagramName` at run
/// time and holds no pointer to the diagram.
///
/// Thread contract: built on the main thread, run on the worker; the fields never change after
/// construction. The static `inputParametersChanged` flag is guarded by a static mutex.
class EditTimeAlgorithms {
 public:
  /// Copies the check ID, diagram name and severity.
  EditTimeAlgorithms(std::string checkId, std::wstring diagramName, std::uint32_t severity);
  virtual ~EditTimeAlgorithms();

  EditTimeAlgorithms(const EditTimeAlgorithms&) = delete;
  EditTimeAlgorithms& operator=(const EditTimeAlgorithms&) = delete;

  /// Worker. Does nothing; kept as the hook that runs before `runCheck`.
  virtual void prepare();

  /// Worker. Does the whole work of the check for one run. The base returns true. The caller
  /// ignores the result.
  virtual bool runCheck();

  const std::string& getCheckId() const { return checkId; }
  const std::wstring& getDiagramName() const { return diagramName; }
  std::uint32_t getSeverity() const { return severity; }

  /// Any thread. Sets whether the checks must re-read their input parameters.
  static void setInputParametersChanged(bool changed);

  /// Any thread. Whether the checks must re-read their input parameters.
  static bool inputParametersChanged();

 protected:
  const std::string checkId;
  const std::wstring diagramName;
  const std::uint32_t severity;
};

}  // namespace bkedittimecheck
