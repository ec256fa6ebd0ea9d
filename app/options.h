#pragma once

#include <optional>
#include <string>
#include <vector>

namespace blockara::app {

/// What the command line asks the program to do.
enum class Verb { Script, Demo, Check, Help, Version };

/// The parsed command line of the `blockara` program.
struct Options {
  Verb verb = Verb::Help;
  Verb helpTopic = Verb::Help;  // Verb::Help: what --help describes (Check, Demo or the program)
  std::string prefDir;         // --prefdir; empty: the default preferences directory
  std::string root;            // --root; empty: the build's or installation's root
  std::string traceFile;       // --trace; empty: tracing off
  bool editTimeIssues = true;  // false with --no-edit-time-issues
  std::string script;          // Verb::Script: the Lua file
  std::vector<std::string> scriptArgs;  // Verb::Script: what follows the script
  std::string model;           // Verb::Check: the model file
  std::string config;          // --config
  std::string exclusions;      // --exclusions
  std::string format = "text";  // --format: text, sarif or html
  std::string out;             // --out: a file (check) or a folder (demo)
  std::string sourceRoot;      // --source-root: SARIF paths are relative to it; empty: cwd
  std::vector<std::string> arguments;  // the whole command line, program first
  bool unusedExclusions = false;      // --unused-exclusions: list exclusion rules that match nothing
  bool failOnUnusedExclusions = false;  // --fail-on-unused-exclusions: and exit 1 when any
};

/// Parses argv. Options of the program may stand before the verb or the script and, for the
/// verbs, after it; everything after the script goes to the script. Throws std::invalid_argument
/// with a one-line message for an unknown option, a missing value or a missing operand.
Options parseOptions(int argc, const char* const* argv);

/// The usage text printed by --help and after a command-line error: the program's (`topic`
/// Verb::Help or Verb::Script), or the verb's with its options (Verb::Check, Verb::Demo).
std::string usageText(Verb topic = Verb::Help);

/// The line `blockara --version` prints, e.g. "blockara 0.1.0 (bkedittimecheck 0.1.0)".
std::string versionText();

}  // namespace blockara::app
