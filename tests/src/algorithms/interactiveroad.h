#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/luaapi.h"
#include "tests/src/roadfixture.h"

namespace bkedittimecheck::testing {

/// The road of an edit for the interactive checks: a model (not under the rule auditor) in the
/// reference host, the program's scripting API in the host language (so that the shipped
/// modules find blocks and the workspace), the worker in manual mode.
class InteractiveRoad : public RoadFixture {
 public:
  void SetUp() override {
    RoadFixture::SetUp();
    blockara::app::installLuaApi(*lua);
  }

  /// Runs Lua code in the host language; fails the test on an error.
  void runLua(const std::string& code) {
    const auto error = lua->runString(code, "=test");
    ASSERT_FALSE(error) << *error;
  }

  /// Every record of the diagram's store as "path|type|severity[|commented]", the path without
  /// the diagram name, sorted.
  static Lines all(BKRootBD* d) {
    Lines out;
    auto engine = engineOf(d->getName());
    if (!engine) return out;
    const std::string prefix = ConvertUStringToStdString(d->getName());
    for (BKBlock* b : d->blocksInPathOrder()) {
      for (const EditTimeViolation& v : engine->getViolations()->violationsOf(b->getHandle())) {
        std::string line = ConvertUStringToStdString(b->getFullPath(false)).substr(prefix.size()) +
                           "|" + v.violationType + "|" + std::to_string(v.severity);
        if (v.isCommented) line += "|commented";
        out.push_back(line);
      }
    }
    std::sort(out.begin(), out.end());
    return out;
  }

  /// The style classes as in `RoadFixture::classes`, the paths without the diagram name.
  static std::map<std::string, std::string> glows(BKRootBD* d) {
    std::map<std::string, std::string> out;
    const std::size_t cut = d->getName().size();
    for (const auto& [path, c] : classes(d)) out[path.substr(cut)] = c;
    return out;
  }
};

}  // namespace bkedittimecheck::testing
