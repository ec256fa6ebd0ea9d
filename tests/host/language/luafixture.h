#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "host/language/luahost.h"
#include "host/runtime/eventloop.h"
#include "testclass.h"

/// A Lua host on the installed resources with the test modules on its path and the test classes
/// bound, made on a thread that owns the event loop.
class LuaFixture : public ::testing::Test {
 protected:
  void SetUp() override {
    testclass::registerTestPackage();
    blockara::EventLoop::instance().adoptCurrentThread();
    host = std::make_unique<blockara::LuaHost>(blockara::LuaHostOptions{
        BKETC_RESOURCE_DIR, {std::string(BKETC_SOURCE_DIR) + "/tests/host/language/lua"}, true});
  }
  /// Runs `code`; its error, or "" when none.
  std::string run(const std::string& code) { return host->runString(code).value_or(""); }

  std::unique_ptr<blockara::LuaHost> host;
};
