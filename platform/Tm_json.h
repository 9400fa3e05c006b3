// Deterministic JSON rendering of values and messages, for people and tests.
//
// A struct renders as an object whose keys are "<name>:<kind>" in member order, for example
// {"modIndex:uint32": 3, "offsetReference:string": "ipv4", "mask:struct": {...}}; an array
// key carries its element kind when all elements share it ("data:array<uint8>": [1, 2]),
// otherwise "array" and each element renders as {"<kind>": value} (an empty array is
// "array" with []). Items of a uniform array render bare. Integers are printed exactly
// (64-bit ones included), bools as true/false, strings with JSON escapes (well-formed UTF-8
// passes through; control characters and stray bytes become \u00XX). Binary renders as a
// lower-case hex string, a date as microseconds, a file as {"name": ..., "content": hex},
// a double with the fewest of 15, 16 or 17 significant digits that read back exactly
// ("NaN", "Infinity" and "-Infinity" as strings). A value rendered alone has no key.
// A message renders as {"kind": "request"|"response", "name": ..., "send": {...},
// "receive": {...}}.
//
// With indent 0 everything is on one line, entries separated by ", "; otherwise every entry
// starts a new line indented by `indent` blanks per level.
#pragma once

#include <string>

#include "platform/Message.h"

namespace tmsg {

// `indent` 0 renders on one line; otherwise nested levels are indented by that many blanks.
std::string to_json(const Tm_value& value, int indent = 0);
std::string to_json(const Message& message, int indent = 0);

}  // namespace tmsg
