#include "app/options.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace blockara::app {
namespace {

/// What the command line `args` parses to, as "verb topic key=value..." with the fields that are
/// set, or the reason it is refused.
std::string parsed(std::vector<const char*> args) {
  args.insert(args.begin(), "blockara");
  Options o;
  try {
    o = parseOptions(static_cast<int>(args.size()), args.data());
  } catch (const std::invalid_argument& e) {
    return std::string("refused: ") + e.what();
  }
  std::string out = std::to_string(static_cast<int>(o.verb)) + " " +
                    std::to_string(static_cast<int>(o.helpTopic));
  for (const auto& [key, value] : {std::pair{"prefdir", o.prefDir}, {"root", o.root},
                                   {"trace", o.traceFile}, {"script", o.script}, {"model", o.model},
                                   {"format", o.format == "text" ? "" : o.format}, {"out", o.out}})
    if (!value.empty()) out += std::string(" ") + key + "=" + value;
  for (const std::string& a : o.scriptArgs) out += " arg=" + a;
  if (!o.editTimeIssues) out += " no-issues";
  if (o.unusedExclusions) out += " unused";
  return out;
}

TEST(OptionsTest, VerbsTakeTheirOptionsOnEitherSideAndAScriptTakesTheRest) {
  // Verbs: 0 script, 1 demo, 2 check, 3 help, 4 version.
  const std::pair<std::vector<const char*>, const char*> cases[] = {
      {{"--prefdir", "p", "--root=r", "--no-edit-time-issues", "s.lua", "--root", "x"},
       "0 3 prefdir=p root=r script=s.lua arg=--root arg=x no-issues"},
      {{"--trace", "t.json", "check", "m.bkd", "--format", "sarif", "--out", "o"},
       "2 3 trace=t.json model=m.bkd format=sarif out=o"},
      {{"demo", "--out", "d"}, "1 3 out=d"},
      {{"--version"}, "4 3"},
      {{"check", "m", "--fail-on-unused-exclusions"}, "2 3 model=m unused"},
      // Help names the verb it was asked about, and check needs no model for it.
      {{"--help"}, "3 3"},
      {{"check", "--help"}, "3 2"},
      {{"demo", "-h"}, "3 1"},
      {{"--help", "check"}, "3 3"},
      {{}, "refused: no script or verb given"},
      {{"check"}, "refused: check needs a model file"},
      {{"check", "--format", "text"}, "refused: check needs a model file"},
      {{"--root"}, "refused: --root needs a value"},
      {{"--bogus", "s.lua"}, "refused: unknown option --bogus"},
      {{"check", "m", "--format", "pdf"}, "refused: --format takes text, sarif or html, not 'pdf'"},
      {{"demo", "extra"}, "refused: unexpected argument extra"},
  };
  for (const auto& [args, expected] : cases) EXPECT_EQ(parsed(args), expected);
  EXPECT_NE(usageText(Verb::Check).find("--unused-exclusions"), std::string::npos);
}

}  // namespace
}  // namespace blockara::app
