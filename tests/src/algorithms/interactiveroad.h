#pragma once

#include <map>
#include <string>

#include "app/luaapi.h"
#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {

/// The road of an edit for the interactive checks: the model "m" (not under the rule auditor),
/// the program's scripting API in the host language so that the shipped modules find blocks and
/// the workspace, and the worker in manual mode.
class InteractiveRoad : public RoadFixture {
 public:
  void SetUp() override {
    RoadFixture::SetUp();
    blockara::app::installLuaApi(*lua);
    d = open(u"m");
    ASSERT_TRUE(settle());
  }

  /// Runs Lua code in the host language; fails the test on an error.
  void runLua(const std::string& code) {
    const auto error = lua->runString(code, "=test");
    ASSERT_FALSE(error) << *error;
  }

  /// Every record of `m` as "path|type|severity[|commented]", the path below "m", sorted.
  Lines all() const { return recordLines(d, *engineOf(u"m")->getViolations()); }

  /// The style classes of `m`, the paths below "m".
  std::map<std::string, std::string> glows() const {
    std::map<std::string, std::string> out;
    for (const auto& [path, c] : classes(d)) out[path.substr(2)] = c;
    return out;
  }

  BKRootBD* d = nullptr;
};

}  // namespace bkedittimecheck::testing
