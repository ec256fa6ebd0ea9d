#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace bkedittimecheck {

/// A block or model parameter's value as the constraints see it: text (index 0), a struct's
/// fields (index 1) or an array's elements (index 2). A default value is the empty string.
using ParameterValue =
    std::variant<std::string, std::map<std::string, std::string>, std::vector<std::string>>;

}  // namespace bkedittimecheck
