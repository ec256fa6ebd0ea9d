#include "src/constraints/blockarastatemappinginfo.h"

#include <vector>

#include "host/language/feval.h"
#include "host/language/nxarray.h"
#include "src/hostinterface.h"

namespace bkedittimecheck {

namespace {

std::wstring fieldText(const nxArray& answer, std::size_t index, const char* field) {
  const nxArray* value = answer.getField(index, field);
  if (!value || !value->isChar()) return L"";
  return toWide(value->toUtf16String());
}

}  // namespace

BlockaraStateMappingInfoImpl::BlockaraStateMappingInfoImpl(double subsystemHandle) {
  std::vector<nxArray> results;
  const std::vector<nxArray> args{nxArray::doubleScalar(subsystemHandle)};
  // The no-throw evaluation: a chart that cannot answer must not stop the snapshot.
  const bksvDiagnosticPtr diagnostic =
      bksvFEVAL_NoThrow(1, results, "Chartelle.BKINCE.BlockaraMan.getPortMappingInfo", args);
  if (diagnostic || results.empty()) return;
  fill(results.front());
}

void BlockaraStateMappingInfoImpl::fill(const nxArray& answer) {
  if (!answer.isStruct()) return;
  for (std::size_t i = 0; i < answer.numel(); ++i) {
    const std::wstring name = fieldText(answer, i, "dataName");
    const std::wstring scope = fieldText(answer, i, "dataScope");
    const Scope value = scope == L"input"    ? Scope::input
                        : scope == L"output" ? Scope::output
                                             : Scope::other;
    const auto [it, inserted] = scopes.insert_or_assign(name, value);
    if (inserted) order.push_back(name);
  }
}

bool BlockaraStateMappingInfoImpl::isMismapped(const std::wstring& name,
                                               std::int32_t blockKind) const {
  const auto it = scopes.find(name);
  if (it == scopes.end()) return false;
  // A datum of any other scope fits neither kind of port.
  return blockKind == 66 ? it->second != Scope::input : it->second != Scope::output;
}

bool BlockaraStateMappingInfoImpl::isUnmapped(const std::wstring& name) const {
  return scopes.find(name) == scopes.end();
}

}  // namespace bkedittimecheck
