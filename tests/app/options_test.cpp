#include "app/options.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <vector>

namespace blockara::app {
namespace {

Options parse(std::vector<const char*> args) {
  args.insert(args.begin(), "blockara");
  return parseOptions(static_cast<int>(args.size()), args.data());
}

TEST(OptionsTest, ScriptTakesEverythingAfterItAsItsArguments) {
  Options o = parse({"--prefdir", "p", "--root=r", "--no-edit-time-issues", "s.lua", "--root", "x"});
  EXPECT_EQ(o.verb, Verb::Script);
  EXPECT_EQ(o.prefDir, "p");
  EXPECT_EQ(o.root, "r");
  EXPECT_FALSE(o.editTimeIssues);
  EXPECT_EQ(o.script, "s.lua");
  EXPECT_EQ(o.scriptArgs, (std::vector<std::string>{"--root", "x"}));
}

TEST(OptionsTest, VerbsTakeTheirOptionsOnEitherSide) {
  Options check = parse({"--trace", "t.json", "check", "m.bkd", "--format", "sarif", "--out", "o"});
  EXPECT_EQ(check.verb, Verb::Check);
  EXPECT_EQ(check.model, "m.bkd");
  EXPECT_EQ(check.format, "sarif");
  EXPECT_EQ(check.out, "o");
  EXPECT_EQ(check.traceFile, "t.json");
  EXPECT_EQ(parse({"demo", "--out", "d"}).out, "d");
  EXPECT_EQ(parse({"--help"}).verb, Verb::Help);
  EXPECT_EQ(parse({"--version"}).verb, Verb::Version);
  EXPECT_TRUE(parse({"check", "m", "--fail-on-unused-exclusions"}).unusedExclusions);
  // Help names the verb it was asked about, and check needs no model for it.
  for (auto [args, topic] : {std::pair{std::vector<const char*>{"check", "--help"}, Verb::Check},
                             {{"demo", "-h"}, Verb::Demo},
                             {{"--help", "check"}, Verb::Help}}) {
    const Options help = parse(args);
    EXPECT_EQ(help.verb, Verb::Help);
    EXPECT_EQ(help.helpTopic, topic);
  }
  EXPECT_NE(usageText(Verb::Check).find("--unused-exclusions"), std::string::npos);
}

TEST(OptionsTest, BadCommandLinesAreRefusedWithTheReason) {
  auto reason = [](std::vector<const char*> args) {
    try {
      parse(args);
    } catch (const std::invalid_argument& e) {
      return std::string(e.what());
    }
    return std::string("accepted");
  };
  EXPECT_EQ(reason({}), "no script or verb given");
  EXPECT_EQ(reason({"check"}), "check needs a model file");
  EXPECT_EQ(reason({"check", "--format", "text"}), "check needs a model file");
  EXPECT_EQ(reason({"--root"}), "--root needs a value");
  EXPECT_EQ(reason({"--bogus", "s.lua"}), "unknown option --bogus");
  EXPECT_EQ(reason({"check", "m", "--format", "pdf"}), "--format takes text, sarif or html, not 'pdf'");
  EXPECT_EQ(reason({"demo", "extra"}), "unexpected argument extra");
}

}  // namespace
}  // namespace blockara::app
