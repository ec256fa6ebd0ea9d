// The blockara program: runs a Lua script on the main thread with the edit-time checker loaded,
// the bundled demonstration, or a batch check of one model.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "app/batchcheck.h"
#include "app/luaapi.h"
#include "app/options.h"
#include "host/language/luahost.h"
#include "host/model/bkrootbd.h"
#include "host/prefs/directories.h"
#include "host/prefs/edittimepreferences.h"
#include "host/runtime/eventloop.h"
#include "host/trace/performancetracer.h"
#include "src/moduleentries.h"

namespace {

using blockara::app::Options;
using blockara::app::Verb;

// A folder of the installed package beside the program (`<prefix>/share/bkedittimecheck/NAME`
// for `<prefix>/bin/blockara`), or else the build's folder.
std::string packageFolder(const std::string& name, const std::string& inBuild) {
  std::error_code error;
  const std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", error);
  if (!error) {
    const auto installed = exe.parent_path().parent_path() / "share" / "bkedittimecheck" / name;
    if (std::filesystem::is_directory(installed, error)) return installed.string();
  }
  return inBuild;
}

// Applies the options that shape the host before anything runs.
void configureHost(const Options& o) {
  svSetNumeriaRoot(o.root.empty() ? packageFolder("resources", BKETC_RESOURCE_DIR) : o.root);
  if (!o.prefDir.empty()) svSetPreferencesDirectory(o.prefDir);
  bk::bkedittimecheck::bkutils::setShowEditTimeIssues(o.editTimeIssues);
  if (!o.traceFile.empty()) blockara::PerformanceTracer::instance().start(o.traceFile);
}

// A script that cannot be read never ran: that is a failure before the script (status 2), not
// an error the script raised (status 1).
bool isReadableFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(path, error)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  in.peek();
  return !in.bad();
}

int runScript(blockara::LuaHost& lua, const std::string& script,
              const std::vector<std::string>& args) {
  if (!isReadableFile(script)) {
    std::cerr << "blockara: " << script << ": cannot read the script\n";
    return 2;
  }
  if (auto error = lua.runFile(script, args)) {
    std::cerr << "blockara: " << *error << "\n";
    return 1;
  }
  return 0;
}

// Closes what the script left open while the host language is still there for the checker's
// clean-up calls, and lets the last posted work run.
void shutDown() {
  try {
    bkBlockDiagramSet::closeAll();
    blockara::EventLoop::instance().runUntilIdle();
  } catch (const std::exception& e) {
    std::cerr << "blockara: while closing: " << e.what() << "\n";
  }
}

int run(const Options& o) {
  configureHost(o);
  initialize_module();
  int status = 0;
  {
    blockara::LuaHost lua({std::filesystem::path(svNumeriaRoot()), {}, true});
    blockara::app::installLuaApi(lua);
    switch (o.verb) {
      case Verb::Script:
        status = runScript(lua, o.script, o.scriptArgs);
        break;
      case Verb::Demo: {
        std::string out = o.out.empty() ? std::string("blockara-demo") : o.out;
        const std::string examples = packageFolder("examples", BKETC_EXAMPLES_DIR);
        status = runScript(lua, examples + "/demo/demo.lua", {out, examples + "/demo"});
        break;
      }
      case Verb::Check:
        status = blockara::app::runBatchCheck(o);
        break;
      case Verb::Help:
      case Verb::Version:
        break;
    }
    shutDown();
  }
  terminate_module();
  if (!o.traceFile.empty()) blockara::PerformanceTracer::instance().stop();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  blockara::EventLoop::instance().adoptCurrentThread();
  Options options;
  try {
    options = blockara::app::parseOptions(argc, argv);
  } catch (const std::invalid_argument& e) {
    std::cerr << "blockara: " << e.what() << "\n" << blockara::app::usageText();
    return 2;
  }
  if (options.verb == Verb::Help) {
    std::cout << blockara::app::usageText(options.helpTopic);
    return 0;
  }
  if (options.verb == Verb::Version) {
    std::cout << blockara::app::versionText();
    return 0;
  }
  try {
    return run(options);
  } catch (const std::exception& e) {
    std::cerr << "blockara: " << e.what() << "\n";
    return 2;
  }
}
