#pragma once

#include <optional>
#include <string>
#include <vector>

namespace blockara::app {

/// What the command line asks the program to do.
enum class Verb { Script, Demo, Check, Help };

/// The parsed command line of the `blockara` program.
struct Options {
  Verb verb = Verb::Help;
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
};

/// Parses argv. Options of the program may stand before the verb or the script and, for the
/// verbs, after it; everything after the script goes to the script. Throws std::invalid_argument
/// with a one-line message for an unknown option, a missing value or a missing operand.
Options parseOptions(int argc, const char* const* argv);

/// The usage text printed by --help and after a command-line error.
const char* usageText();

}  // namespace blockara::app
