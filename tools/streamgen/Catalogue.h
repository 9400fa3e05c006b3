// The generator module's methods, for `streamgen describe`.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "platform/Message.h"
#include "traffic/JsonRecord.h"

namespace streamgen {

// The methods' names, in the module's catalogue order.
std::vector<std::string> method_names();

// Writes the request of `method` built from default arguments: its name and kind, then one
// line per member ("  name: kind"), nested struct members indented further. False when
// there is no such method.
bool describe_method(const std::string& method, std::ostream& out);

// A decoded request of a known method as a document of records in the block file's forms:
// {"kind": "request", "name": "Generator_3.<Method>", "members": {...}}. False for any other
// message; throws what the method's parser throws for members of the wrong kind.
bool request_document(const Message& decoded, vrm::traffic::Json& out);

}  // namespace streamgen
