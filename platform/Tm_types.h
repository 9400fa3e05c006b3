// Basic enumerations of the typed-message runtime.
#pragma once

// Value kinds. The numbers of the ten scalar kinds are fixed; the others follow.
enum TMV {
    TMV_INT8 = 0,
    TMV_UINT8 = 1,
    TMV_INT16 = 2,
    TMV_UINT16 = 3,
    TMV_INT32 = 4,
    TMV_UINT32 = 5,
    TMV_INT64 = 6,
    TMV_UINT64 = 7,
    TMV_DOUBLE = 8,
    TMV_BOOL = 9,
    TMV_STRING = 10,
    TMV_STRUCT = 11,
    TMV_ARRAY = 12,
    TMV_BINARY = 13,
    TMV_DATE = 14,
    TMV_FILE = 15,
    TMV_MESSAGE = 16,
};

// Highest kind number; kinds are 0..TMV_LAST.
constexpr int TMV_LAST = TMV_MESSAGE;

// True for the ten scalar kinds (0..9).
constexpr bool tmv_is_scalar(int kind) { return kind >= TMV_INT8 && kind <= TMV_BOOL; }

// Lower-case name of a kind ("uint32", "struct", ...); "kind<N>" text for unknown numbers is
// produced by tmv_name_or_number().
const char* tmv_name(int kind);

// Message member groups: 0 is the group this side receives, 1 the group this side sends.
enum Tm_message_group { TMG_RECV = 0, TMG_SEND = 1 };

// Message kinds.
enum Tm_message_type { TMT_REQUEST = 0, TMT_RESPONSE = 1 };

class Tm_value;
class Tm_value_container;
class Tm_struct;
class Tm_prenamed_struct;
class Tm_array;
class Tm_binary;
class Tm_date;
class Tm_file;
class Tm_message;
class Tm_visitor;
class Message;
