#include "host/model/bkgrclasses.h"

#include "host/model/blocklibrary.h"

BkGrContext::Lookup BkGrContext::lookupObject(const std::string& path, int kindFilter) {
  Lookup result;
  static const std::string prefix = "built-in/";
  if (path.empty() || kindFilter != kindBlock) {
    result.diagnostic = std::make_shared<BkGrDiagnostic>(BkGrDiagnostic{
        "blockara:model:InvalidLookup",
        "Cannot look up '" + path + "' with kind filter " + std::to_string(kindFilter) + "."});
    return result;
  }
  if (path.compare(0, prefix.size(), prefix) != 0) return result;
  const std::string typeName = path.substr(prefix.size());
  const BlockTypeInfo* type = BlockLibrary::instance().find(typeName);
  if (!type || type->name != typeName) return result;
  auto& block = libraryBlocks[typeName];
  if (!block) block = std::make_unique<BKBlock>(*type, i18n::to_u16string(typeName));
  result.kind = kindBlock;
  result.object = block.get();
  return result;
}

BkGrContext* BkGrClasses::GetBKContext() {
  static BkGrContext context;
  return &context;
}
