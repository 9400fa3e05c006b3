// Binary wire codec of messages.
//
// Format, version 1 (all integers little-endian; "varint" is unsigned LEB128, at most 10
// bytes, 64 bits):
//   message   := 'T' 'M' version:u8 kind:u8 name:bytes table body
//   bytes     := varint length, then that many bytes
//   table     := varint count, then count names (each as bytes)
//   body      := varint count, then count members (varint name-index, value)
//   value     := tag:u8 payload(tag)
//   payload   := int8/uint8: 1 byte; bool: 1 byte, 0 or 1; int16/uint16: 2; int32/uint32: 4;
//                int64/uint64/double/date: 8; string/binary: bytes; file: bytes name, bytes
//                content; struct: body; message: kind:u8 name:bytes body(send) body(receive);
//                array: varint count, element-tag:u8, then count payloads of that tag, or,
//                when element-tag is 0xFF (mixed kinds), count values.
//   tags are the TMV numbers.
// encode() writes the kind, the request name, the name table (the send catalog's names,
// then any name not yet in it) and the members of the send group (1). decode() fills the
// receive group (0) of a message, its receive catalog (the name table), its kind and its
// request name.
//
// Decoding untrusted input never reads out of bounds and refuses, with a Tm_exception whose
// text names the byte offset ("decode error at byte 17: ..."): a bad magic or version, an
// unknown tag, a bool other than 0 or 1, a name index outside the table, a length or count
// that the remaining bytes cannot hold, nesting of structs, arrays and messages deeper than
// kMaxDepth, a varint longer than 10 bytes, and trailing bytes. Every decoded value consumes
// at least one input byte, so memory stays within a constant multiple of the input size.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/Message.h"

namespace tm {

constexpr unsigned char kWireVersion = 1;
constexpr int kMaxDepth = 64;

std::vector<unsigned char> encode(const Message& message);
// Appends the encoding to `out` (lets a caller reuse one buffer).
void encode(const Message& message, std::vector<unsigned char>& out);

// Replaces the receive group of `message` (and its kind and request name) with the decoded
// ones. On failure the message is left as it was.
void decode(const unsigned char* data, std::size_t size, Message& message);
void decode(const std::vector<unsigned char>& bytes, Message& message);

}  // namespace tm
