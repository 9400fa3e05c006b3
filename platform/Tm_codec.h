// Binary wire codec of messages.
//
// Format, version 1 (all integers little-endian; "varint" is unsigned LEB128, at most 10
// bytes, 64 bits):
//   message   := 'T' 'M' version:u8 kind:u8 name:bytes table body
//   bytes     := varint length, then that many bytes
//   table     := varint count, then count distinct names (each as bytes)
//   body      := varint count, then count members (varint name-index, value)
//   value     := tag:u8 payload(tag)
//   payload   := int8/uint8: 1 byte; bool: 1 byte, 0 or 1; int16/uint16: 2; int32/uint32: 4;
//                int64/uint64/double/date: 8 (signed kinds two's complement, double as its
//                IEEE-754 bits, date as signed microseconds); string/binary: bytes;
//                file: bytes name, bytes content; struct: body;
//                message: kind:u8 name:bytes body(send) body(receive);
//                array: varint count, element-tag:u8, then count payloads of that tag, or,
//                when element-tag is 0xFF (mixed kinds), count values. The encoder writes
//                0xFF for an empty array; the decoder accepts any known tag there.
//   tags are the TMV numbers; kind is 0 (request) or 1 (response).
// Names of nested messages' members are indices into the same, top-level name table.
//
// encode() walks the send group (1) with a Tm_visitor, so derived arrays (for example
// arrays backed by a caller's container) are written through item_accept like any array;
// an array whose items all report the same kind is written with that element tag. It
// writes the kind, the request name, the name table (the send catalog's names, then any
// name not yet in it, in the order met) and the members of the send group. Values nested
// deeper than kMaxDepth are refused with a Tm_exception, as the decoder would refuse them.
// decode() fills the receive group (0) of a message with plain Tm_struct and Tm_array
// values, its receive catalog (the name table), its kind and its request name. The values
// live in an arena that the message keeps and drops at once, when it is destroyed, assigned,
// decoded into again or its receive group cleared; copies of the message or of its values
// are independent of it.
//
// Nesting level: the members of the top-level group are at level 0; each struct, array or
// message value is one level deeper than its holder, and a message's two member lists are
// at the message's level. Levels up to kMaxDepth are accepted.
//
// Decoding untrusted input never reads out of bounds and refuses, with a Tm_exception whose
// text names the byte offset ("decode error at byte 17: ..."): a bad magic or version, an
// unknown kind tag or message kind, a bool other than 0 or 1, a name index outside the
// table, a name twice in the table, a length or count that the remaining bytes cannot hold
// (checked before anything is reserved: each item needs at least its smallest payload),
// nesting deeper than kMaxDepth, a varint longer than 10 bytes or above 64 bits, and
// trailing bytes.
//
// Memory: decoding n input bytes takes, at its peak, at most kDecodeBytesPerInputByte * n +
// kDecodeFixedBytes bytes of heap, the decoded message included. Each name of the table is
// stored once and shared by every member that names it (members hold a reference, not a
// copy); uniform scalar arrays are kept packed, as the wire carries them; every other value
// consumes at least one input byte and takes a bounded number of bytes. The costliest
// inputs are arrays of empty structs, arrays or messages and tables of one-byte names.
//
// The namespace is tmsg rather than tm because the C library's `struct tm` lives in the
// global namespace of every program that includes <string>.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/Message.h"

namespace tmsg {

constexpr unsigned char kWireVersion = 1;
constexpr int kMaxDepth = 64;
constexpr std::size_t kDecodeBytesPerInputByte = 128;
constexpr std::size_t kDecodeFixedBytes = 64 * 1024;

std::vector<unsigned char> encode(const Message& message);
// Appends the encoding to `out` (lets a caller reuse one buffer).
void encode(const Message& message, std::vector<unsigned char>& out);

// Replaces the receive group of `message` (and its kind and request name) with the decoded
// ones. On failure the message is left as it was.
void decode(const unsigned char* data, std::size_t size, Message& message);
void decode(const std::vector<unsigned char>& bytes, Message& message);

}  // namespace tmsg
