// A host that embeds the installed engine: opens a diagram under the rule auditor, adds a block
// whose name breaks the naming rule, lets the checker run and prints what it found.
#include <chrono>
#include <filesystem>
#include <iostream>
#include <string>

#include "host/language/luahost.h"
#include "host/model/bkblock.h"
#include "host/model/bkrootbd.h"
#include "host/model/diagramediting.h"
#include "host/prefs/directories.h"
#include "host/runtime/eventloop.h"
#include "host/studio/studioapp.h"
#include "src/edittimecontroller.h"
#include "src/moduleentries.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: consumer RESOURCE_DIR PREFERENCES_DIR\n";
    return 2;
  }
  blockara::EventLoop::instance().adoptCurrentThread();
  svSetNumeriaRoot(argv[1]);
  std::filesystem::create_directories(argv[2]);
  svSetPreferencesDirectory(argv[2]);  // empty: the installed customization file applies
  initialize_module();
  int found = 0;
  {
    blockara::LuaHost lua({std::filesystem::path(argv[1]), {}, true});
    BKRootBD* diagram = bkBlockDiagramSet::create(u"Plant");
    // A block that is there when the diagram opens is checked by the first scan.
    diagram->editing().addBlock(u"Plant", "Gain", u"gain 2!");
    diagram->setAuditorMode(true);
    RegisterEditBdEvents(diagram);
    RegisterCompBdEvents(diagram->getCompBD());
    RegisterExecPlugins(diagram->getExecBD());
    Blockara::StudioApp::open(diagram)->openEditor(u"Plant");
    diagram->notifyOpened();
    blockara::EventLoop::instance().runUntilQuiet(std::chrono::seconds(20));

    auto& controller = bkedittimecheck::EditTimeController::instance();
    for (BKBlock* block : diagram->blocksInPathOrder()) {
      const auto strings = controller.getViolations(L"Plant", block->getHandle());
      for (std::size_t i = 0; i + 2 < strings.size(); i += 3, ++found) {
        std::cout << ConvertUStringToStdString(block->getFullPath(false)) << '\t' << strings[i]
                  << '\t' << strings[i + 1] << '\t' << strings[i + 2] << '\n';
      }
    }
    bkBlockDiagramSet::closeAll();
    blockara::EventLoop::instance().runUntilIdle();
  }
  terminate_module();
  return found == 1 ? 0 : 1;
}
