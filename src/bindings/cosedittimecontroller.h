#pragma once

#include <memory>

#include "host/language/cospackage.h"

namespace bkedittimecheck::mi {

/// The host-language class "bkedittimecheck.EditTimeController": one static "getInstance" and
/// 23 instance methods over the controller singleton, declared in their fixed order.
/// Main thread.
class COSEditTimeController : public ncos::factory::NcosFactoryClassInfo {
 public:
  COSEditTimeController();

 protected:
  void populate() override;
};

/// The package "bkedittimecheck" that holds the controller class. Main thread.
class CosEditTimeCheckPackage : public ncos::COSPackageInfo {
 public:
  CosEditTimeCheckPackage();
  void populate(ncos::COSPackage& package) override;
};

}  // namespace bkedittimecheck::mi
