#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "app/findings.h"

namespace blockara::app {

/// What a SARIF log says about the run besides its findings.
struct SarifRun {
  std::string artifact;    // the model file as given
  std::string sourceRoot;  // artifact URIs are relative to it; empty: the current directory
  std::vector<std::string> arguments;  // the command line, program first
  std::chrono::system_clock::time_point start, end;
  std::optional<int> exitCode;          // none where the log is written by a script
  std::vector<std::string> warnings;    // notes on the run, such as exclusions that match nothing
};

/// A SARIF 2.1.0 log as code-scanning services read it: one run; each check ID of the findings
/// as a rule with short and full descriptions and its default level; one result per finding
/// with the sentence and hint as message, the level from the category, the model file as
/// physical location (relative to the source root with the base id "SRCROOT" when it lies
/// below it, else an absolute file URI; with the line of the block's element in a `.bkd` file)
/// and the block path as logical location. An exempt finding is a suppressed result (kind
/// "external", justification = the exclusion's rationale); the others carry an empty
/// suppression list. One invocation with the start and end times, the exit code and the
/// warnings. Main thread; reads the model file for block lines.
std::string formatSarif(std::vector<Finding> findings, const SarifRun& run);

/// `time` as a SARIF date-time in UTC with milliseconds, e.g. "2026-11-23T08:48:02.125Z".
std::string utcTimestamp(std::chrono::system_clock::time_point time);

/// `path` as a URI reference: bytes other than the unreserved characters and "/" are
/// percent-encoded.
std::string uriEncode(const std::string& path);

}  // namespace blockara::app
