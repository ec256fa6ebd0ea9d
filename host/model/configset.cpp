#include "host/model/configset.h"

#include "host/model/bkrootbd.h"

ConfigSet::ConfigSet(std::string name) : name(std::move(name)) {}

const BlockParamValue* ConfigSet::getProp(const std::string& paramName) const {
  auto it = params.find(paramName);
  return it == params.end() ? nullptr : &it->second;
}

void ConfigSet::setProp(const std::string& paramName, BlockParamValue value) {
  params[paramName] = std::move(value);
}

ConfigSet ConfigSet::makeDefault() {
  ConfigSet set("Configuration");
  set.setProp("UniqueDataStoreMsg", std::string("none"));
  set.setProp("SolverType", std::string("Variable-step"));
  set.setProp("StopTime", std::string("10.0"));
  set.setProp("FixedStep", std::string("auto"));
  set.setProp("InlineParams", std::string("off"));
  set.setProp("SystemTargetFile", std::string("grt.tlc"));
  return set;
}

BDConfigSetInfo BDConfigSetInfo::get(BKRootBD* diagram) {
  if (!diagram) throw NoActiveConfigSet("no diagram given for its configuration set");
  return BDConfigSetInfo(diagram);
}

ConfigSet* BDConfigSetInfo::getActiveSetObject() const {
  ConfigSet* set = diagram->activeConfigSet();
  if (!set)
    throw NoActiveConfigSet(ConvertUStringToStdString(diagram->getName()) +
                            ": the diagram has no active configuration set");
  return set;
}
