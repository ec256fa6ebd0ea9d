#include "app/options.h"

#include <stdexcept>
#include <string_view>

namespace blockara::app {

namespace {

bool takesValue(std::string_view opt) {
  return opt == "--prefdir" || opt == "--root" || opt == "--trace" || opt == "--config" ||
         opt == "--exclusions" || opt == "--format" || opt == "--out" || opt == "--source-root";
}

void apply(Options& o, std::string_view opt, const std::string& value) {
  if (opt == "--prefdir") o.prefDir = value;
  else if (opt == "--root") o.root = value;
  else if (opt == "--trace") o.traceFile = value;
  else if (opt == "--config") o.config = value;
  else if (opt == "--exclusions") o.exclusions = value;
  else if (opt == "--out") o.out = value;
  else if (opt == "--source-root") o.sourceRoot = value;
  else if (opt == "--format") {
    if (value != "text" && value != "sarif" && value != "html") {
      throw std::invalid_argument("--format takes text, sarif or html, not '" + value + "'");
    }
    o.format = value;
  }
}

}  // namespace

Options parseOptions(int argc, const char* const* argv) {
  Options o;
  o.arguments.assign(argv, argv + argc);
  bool haveVerb = false;
  for (int i = 1; i < argc; ++i) {
    std::string_view arg = argv[i];
    if (arg == "--help" || arg == "-h") {
      o.helpTopic = haveVerb ? o.verb : Verb::Help;
      o.verb = Verb::Help;
      return o;
    }
    if (arg == "--version") {
      o.verb = Verb::Version;
      return o;
    }
    if (arg == "--no-edit-time-issues") {
      o.editTimeIssues = false;
      continue;
    }
    if (arg == "--unused-exclusions" || arg == "--fail-on-unused-exclusions") {
      o.unusedExclusions = true;
      o.failOnUnusedExclusions = o.failOnUnusedExclusions || arg == "--fail-on-unused-exclusions";
      continue;
    }
    if (arg.starts_with("--")) {
      std::string_view name = arg;
      std::string value;
      if (auto eq = arg.find('='); eq != std::string_view::npos) {
        name = arg.substr(0, eq);
        value = std::string(arg.substr(eq + 1));
      } else if (takesValue(arg)) {
        if (i + 1 >= argc) throw std::invalid_argument(std::string(arg) + " needs a value");
        value = argv[++i];
      }
      if (!takesValue(name)) throw std::invalid_argument("unknown option " + std::string(name));
      apply(o, name, value);
      continue;
    }
    if (!haveVerb) {
      haveVerb = true;
      if (arg == "demo") {
        o.verb = Verb::Demo;
      } else if (arg == "check") {
        o.verb = Verb::Check;
        const std::string_view next = i + 1 < argc ? argv[i + 1] : "";
        if (next == "--help" || next == "-h") continue;
        if (next.empty() || next.starts_with("--")) {
          throw std::invalid_argument("check needs a model file");
        }
        o.model = argv[++i];
      } else {
        o.verb = Verb::Script;
        o.script = std::string(arg);
        for (++i; i < argc; ++i) o.scriptArgs.emplace_back(argv[i]);
      }
      continue;
    }
    throw std::invalid_argument("unexpected argument " + std::string(arg));
  }
  if (!haveVerb) throw std::invalid_argument("no script or verb given");
  return o;
}

std::string usageText(Verb topic) {
  if (topic == Verb::Check) {
    return "usage: blockara check MODEL [OPTIONS]\n"
           "Checks MODEL (.bkd or .bkdx) under the rule auditor with every system on view and\n"
           "writes the findings. Exit status: 0 no finding left, 1 findings left (or unused\n"
           "exclusions with --fail-on-unused-exclusions), 2 a file cannot be used.\n"
           "  --config FILE                 customization file selecting the checks\n"
           "  --exclusions FILE             exclusions file (default: the model's own)\n"
           "  --format text|sarif|html      report format (default: text)\n"
           "  --out FILE                    write the report to FILE instead of standard output\n"
           "  --source-root DIR             SARIF paths are relative to DIR (default: .)\n"
           "  --unused-exclusions           list exclusion rules that match no block (stderr)\n"
           "  --fail-on-unused-exclusions   the same, and exit 1 when there is any\n"
           "  --prefdir DIR, --root DIR, --trace FILE   as for every verb\n";
  }
  if (topic == Verb::Demo) {
    return "usage: blockara demo [--out DIR]\n"
           "Opens the bundled demo model, makes a few edits, prints the findings and glows after\n"
           "each step and writes report.html and findings.sarif into DIR (default:\n"
           "blockara-demo).\n";
  }
  return "usage: blockara [--prefdir DIR] [--root DIR] [--trace FILE] [--no-edit-time-issues] "
         "SCRIPT.lua [ARGS...]\n"
         "       blockara demo [--out DIR]\n"
         "       blockara check MODEL [--config FILE] [--exclusions FILE] "
         "[--format text|sarif|html] [--out FILE] [--source-root DIR] [--unused-exclusions] "
         "[--fail-on-unused-exclusions]\n"
         "       blockara --version | --help | check --help | demo --help\n";
}

std::string versionText() {
  return std::string("blockara ") + BKETC_VERSION + " (bkedittimecheck " + BKETC_VERSION + ")\n";
}

}  // namespace blockara::app
