// What the host calls to bring the module up and down.
#include <memory>
#include <string>

#include "host/language/cospackage.h"
#include "host/runtime/eventloop.h"
#include "src/bindings/cosconstraintclasses.h"
#include "src/bindings/cosedittimecontroller.h"
#include "src/edittimecontroller.h"
#include "src/moduleentries.h"

/// The property under which a micro-service plug-in gives its name to the host.
const std::string pluginNameKey = "or.bk.microservices.plugin.name";

namespace {

// The main loop's busy check that holds a script's idle until the engine is at rest; 0 when none.
int busyCheckId = 0;

}  // namespace

extern "C" void initialize_module() {
  ncos::COSPackage::addPackage(std::make_unique<bkedittimecheck::mi::CosEditTimeCheckPackage>());
  // The constraint classes, in "Auditor.authoring" and its "internal" package.
  bkedittimecheck::mi::registerConstraintClasses();
  if (busyCheckId == 0) {
    busyCheckId = blockara::EventLoop::instance().addBusyCheck(
        "bkedittimecheck", [] { return !bkedittimecheck::isQuiescent(); });
  }
}

extern "C" void terminate_module() {
  ncos::COSPackage::removePackage("bkedittimecheck");
  if (busyCheckId != 0) {
    blockara::EventLoop::instance().removeBusyCheck(busyCheckId);
    busyCheckId = 0;
  }
}
