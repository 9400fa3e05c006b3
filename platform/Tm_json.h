// Deterministic JSON rendering of values and messages, for people and tests.
//
// A struct renders as an object whose keys are "<name>:<kind>" in member order, for example
// {"modIndex:uint32": 3, "offsetReference:string": "ipv4", "mask:struct": {...}}; an array
// key carries its element kind when all elements share it ("data:array<uint8>": [1, 2]),
// otherwise "array" and each element renders as {"<kind>": value}. Binary renders as a hex
// string, a date as microseconds, a file as {"name": ..., "content": hex}, a double with
// up to 17 significant digits ("NaN", "Infinity" and "-Infinity" as strings).
// A message renders as {"kind": "request"|"response", "name": ..., "send": {...},
// "receive": {...}}.
#pragma once

#include <string>

#include "platform/Message.h"

namespace tm {

// `indent` 0 renders on one line; otherwise nested levels are indented by that many blanks.
std::string to_json(const Tm_value& value, int indent = 0);
std::string to_json(const Message& message, int indent = 0);

}  // namespace tm
