#include "host/language/nvm.h"

#include "host/language/cmddistributor.h"
#include "host/language/feval.h"

namespace nvm {

MVM::MVM() : distributor(std::make_unique<cmddistributor::CmdDistributor>()) {}
MVM::~MVM() = default;

cmddistributor::CmdDistributor& MVM::getDistributor() { return *distributor; }

std::shared_ptr<cmddistributor::Sink> MVM::getSink(int /*flag*/) const {
  return cmddistributor::emptySink();
}

void MVM::setEvaluator(Evaluator fn) { evaluator = std::move(fn); }

bool MVM::hasEvaluator() const { return static_cast<bool>(evaluator); }

std::vector<nxArray> MVM::evaluate(const std::string& functionName, int nlhs,
                                   const std::vector<nxArray>& args) {
  if (!evaluator) {
    throw NException("blockara:nvm:NoHostLanguage",
                     "No host language is attached to evaluate " + functionName + ".");
  }
  return evaluator(functionName, nlhs, args);
}

std::shared_ptr<MVM> Factory::getCurrentLocalMVM() {
  static const std::shared_ptr<MVM> vm = std::make_shared<MVM>();
  return vm;
}

}  // namespace nvm
