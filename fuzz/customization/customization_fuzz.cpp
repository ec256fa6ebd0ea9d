// Reads arbitrary bytes as a customization file, as the engine does: through the guarded XML
// reader, then the check selection and a name check's parameters of every "Check" entry. Any
// input must either give those or throw the property tree's errors, never crash.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "host/xml/xmlreader.h"
#include "src/algorithms/blocknameviolation.h"
#include "src/configuration/customizationfile.h"

namespace pt = boost::property_tree;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const pt::ptree tree = blockara::xml::readString(
        std::string(reinterpret_cast<const char*>(data), size), "fuzz.xml", pt::xml_parser::no_comments);
    (void)bkedittimecheck::selectionFromTree(tree);
    bkedittimecheck::BlockNameViolation check(L"fuzz", 3);
    for (const auto& [key, entry] : tree.get_child("RAConfiguration.CheckCellArray")) {
      if (key == "Check") check.readProhibitedNamePattern(entry);
    }
  } catch (const pt::ptree_error&) {
  }
  return 0;
}
