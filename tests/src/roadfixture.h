#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "host/language/luahost.h"
#include "host/model/bkblock.h"
#include "host/model/bksvstring.h"
#include "host/model/blocklibrary.h"
#include "host/prefs/directories.h"
#include "host/style/styler.h"
#include "src/presentation/edittimestyler.h"
#include "src/violationdatabase.h"
#include "src/workerthread/asynctaskmanager.h"
#include "tests/src/enginefixture.h"

namespace bkedittimecheck::testing {

using Lines = std::vector<std::string>;
using Edit = std::function<void(BKRootBD*)>;

/// The whole road of an edit in one process: a customization file in a preferences directory of
/// the test's own, the module initialized, the host language up on the installed resources (so
/// the worker's styling post comes back through "edittime.Styler"), a rule-auditor diagram, and
/// the worker's timer in manual mode, driven by the main loop until the engine is at rest.
class RoadFixture : public EngineFixture {
 protected:
  void SetUp() override {
    EngineFixture::SetUp();
    const auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
    prefDir = std::filesystem::temp_directory_path() /
              ("bketc_road_" + std::string(info->test_suite_name()) + "_" + info->name());
    std::filesystem::remove_all(prefDir);
    std::filesystem::create_directories(prefDir);
    svSetPreferencesDirectory(prefDir.string());
    svSetNumeriaRoot(BKETC_RESOURCE_DIR);
    loadLibraryWithTestTypes();
    initialize_module();
    lua = std::make_unique<blockara::LuaHost>(
        blockara::LuaHostOptions{std::filesystem::path(BKETC_RESOURCE_DIR), {}, true});
    AsyncTaskManager::instance();  // made and started on the main thread
  }

  void TearDown() override {
    EngineFixture::TearDown();
    // Bounded: an engine whose check threw never comes to rest, by design.
    blockara::EventLoop::instance().runUntilQuiet(std::chrono::milliseconds(500));
    lua.reset();
    terminate_module();
    std::filesystem::remove_all(prefDir);
  }

  /// A `Check` element selecting `id`, with `parameters` (name -> values) as its input
  /// parameters in the given order.
  static std::string check(
      const std::string& id,
      const std::vector<std::pair<std::string, std::vector<std::string>>>& parameters = {}) {
    std::string out = "<Check><ID>" + id + "</ID><Selected>true</Selected><InputParameters>";
    for (const auto& [name, values] : parameters) {
      out += "<InputParameter Name=\"" + name + "\">";
      for (const auto& value : values) out += "<Value>" + value + "</Value>";
      out += "</InputParameter>";
    }
    return out + "</InputParameters></Check>";
  }

  /// Writes the customization file of the preferences directory with these `Check` elements.
  void writeCustomization(const std::string& checks) const {
    std::ofstream(prefDir / "edittimecheckcustomization.xml")
        << "<?xml version=\"1.0\"?>\n<RAConfiguration><CheckCellArray>" << checks
        << "</CheckCellArray></RAConfiguration>\n";
  }

  /// Opens `name` under the rule tool; the opening loads the customization file.
  BKRootBD* openAuditor(const std::u16string& name) {
    return open(name, BKRootBD::Model, /*auditor=*/true);
  }

  /// Adds a block and then sets `props` on it in a batch of its own. An added block waits for
  /// the scan of its graph, while a changed one on view is snapshotted at once; the second edit
  /// brings the new block to the checks without a scan.
  static BKBlock* place(BKRootBD* d, const std::u16string& system, const std::string& type,
                        const std::u16string& name, blockara::PropertyMap props = {}) {
    BKBlock* block = d->editing().addBlock(system, type, name);
    props.emplace("Position", std::vector<double>{10, 10, 30, 30});
    d->editing().setProperties(system + u"/" + name, props);
    return block;
  }

  /// An edit that places each block of `blocks` (see BlockLine) with place().
  static Edit placing(Lines blocks) {
    return [blocks](BKRootBD* d) {
      for (const std::string& line : blocks) {
        const BlockLine b(d->getName(), line);
        place(d, b.system, b.type, b.name, b.props);
      }
    };
  }

  /// Runs the main loop and the manual worker until nothing is queued, running or unstyled.
  static bool settle() {
    return blockara::EventLoop::instance().runUntilQuiet(std::chrono::seconds(20));
  }

  /// Every rule-tool record of the diagram as "path|checkId|type|severity[|commented]", sorted.
  static Lines records(const std::u16string& name) {
    Lines out;
    for (const auto& [handle, list] : engineOf(name)->getViolations()->auditorViolations()) {
      for (const EditTimeViolation& v : list)
        out.push_back(toNarrow(v.blockPath) + "|" + v.checkId + "|" + v.violationType + "|" +
                      std::to_string(v.severity) + (v.isCommented ? "|commented" : ""));
    }
    std::sort(out.begin(), out.end());
    return out;
  }

  /// The style classes on the diagram's blocks: path -> classes joined by ",", only blocks that
  /// carry one.
  static std::map<std::string, std::string> classes(BKRootBD* diagram) {
    std::map<std::string, std::string> out;
    diagram::style::Styler* styler = createEditTimeStyler();
    for (double handle : styler->styledHandles()) {
      BKBlock* block = handle2Block(handle);
      if (!block || block->getBlockDiagram() != diagram) continue;
      std::string joined;
      for (const std::wstring& c : styler->classesOf(handle)) {
        joined += (joined.empty() ? "" : ",") + toNarrow(c);
      }
      if (!joined.empty()) out[ConvertUStringToStdString(block->getFullPath(false))] = joined;
    }
    return out;
  }

  // Block types beside the built-in ones, for the capability and footnote rules: code generation
  // unsupported, deployment unsupported, harmless footnotes, an unknown footnote, a blank-led tag.
  static void loadLibraryWithTestTypes() {
    std::stringstream text;
    text << std::ifstream(BlockLibrary::defaultPath()).rdbuf();
    std::string xml = text.str();
    const std::string extra = R"(
  <BlockType Name="NoCodegen" Code="301"><Capability Number="8" Support="0"/></BlockType>
  <BlockType Name="NoDeploy" Code="302"><Capability Number="9" Support="0"/></BlockType>
  <BlockType Name="Harmless" Code="303"><Capability Number="8" Support="0"/>
    <Capability Number="9" Support="0"/>
    <Footnote Kind="codegen">FnIgnoredCodeGen,FnReliesOnMemOp</Footnote></BlockType>
  <BlockType Name="Unknown" Code="304"><Capability Number="8" Support="0"/>
    <Footnote Kind="codegen">FnIgnoredCodeGen,FnBogus</Footnote></BlockType>
  <BlockType Name="Blank" Code="305"><Capability Number="9" Support="0"/>
    <Footnote Kind="production">FnIgnoredCodeGen, FnReliesOnMemOp</Footnote></BlockType>
)";
    xml.insert(xml.rfind("</BlockLibrary>"), extra);
    BlockLibrary::instance().loadFromString(xml, "test library");
  }

  struct Case {
    std::string what;
    std::string checks;  // the customization's Check elements
    Edit edit;
    Lines expected;
  };

  /// Runs each case on a fresh diagram "m<n>"; expected lines leave out the diagram name.
  void runCases(const std::vector<Case>& cases) {
    int n = 0;
    for (const Case& c : cases) {
      writeCustomization(c.checks);
      const std::u16string name = u"m" + i18n::to_u16string(std::to_string(++n));
      BKRootBD* d = openAuditor(name);
      ASSERT_TRUE(settle());
      c.edit(d);
      ASSERT_TRUE(settle()) << c.what;
      Lines expected;
      for (const std::string& line : c.expected) expected.push_back("m" + std::to_string(n) + line);
      EXPECT_EQ(records(name), expected) << c.what;
    }
  }

  std::filesystem::path prefDir;
  std::unique_ptr<blockara::LuaHost> lua;
};

}  // namespace bkedittimecheck::testing
