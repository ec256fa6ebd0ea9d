// What the host calls to bring the module up and down.
#include <memory>
#include <string>

#include "host/language/cospackage.h"
#include "src/bindings/cosedittimecontroller.h"
#include "src/moduleentries.h"

/// The property under which a micro-service plug-in gives its name to the host.
const std::string pluginNameKey = "or.bk.microservices.plugin.name";

extern "C" void initialize_module() {
  ncos::COSPackage::addPackage(std::make_unique<bkedittimecheck::mi::CosEditTimeCheckPackage>());
  // The constraint classes are registered in "Auditor.authoring" and its "internal" package.
  ncos::COSPackage* authoring = ncos::omGetSubPackage(ncos::omGetGlobalPackage("Auditor"), "authoring");
  ncos::omGetSubPackage(authoring, "internal");
}

extern "C" void terminate_module() { ncos::COSPackage::removePackage("bkedittimecheck"); }
