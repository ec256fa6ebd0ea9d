// Reads arbitrary bytes as a customization file's constraint data: any input must either give
// constraint data or throw the property tree's errors, never crash. The data read is linked
// and indexed; evaluation is left out, since a `dependson` cycle recurses without bound by
// design.
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>

#include "src/constraints/blockparamconstraintdata.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::istringstream in(std::string(reinterpret_cast<const char*>(data), size));
  boost::property_tree::ptree tree;
  try {
    boost::property_tree::read_xml(in, tree, boost::property_tree::xml_parser::no_comments);
    bkedittimecheck::BlockParamConstraintData constraints(tree);
    for (const std::string& id : constraints.getConstraintCheckIds()) {
      if (!constraints.getCheckData(id)) __builtin_trap();
    }
  } catch (const boost::property_tree::ptree_error&) {
  }
  return 0;
}
