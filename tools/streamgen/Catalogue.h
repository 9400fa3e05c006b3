// The generator module's methods, for `streamgen describe`.
#pragma once

#include <ostream>
#include <string>
#include <vector>

namespace streamgen {

// The methods' names, in the module's catalogue order.
std::vector<std::string> method_names();

// Writes the request of `method` built from default arguments: its name and kind, then one
// line per member ("  name: kind"), nested struct members indented further. False when
// there is no such method.
bool describe_method(const std::string& method, std::ostream& out);

}  // namespace streamgen
