#include "platform/tm_enum_map.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/Tm_slot.h"

std::string tms_enum_to_string(int value, const tm_enum_map* map) {
    for (const tm_enum_map* row = map; row && row->name; ++row) {
        if (row->value == value) return row->name;
    }
    return std::to_string(value);
}

int tms_string_to_enum(const std::string& text, const tm_enum_map* map) {
    for (const tm_enum_map* row = map; row && row->name; ++row) {
        if (tm_detail::same_text(text, row->name)) return row->value;
    }
    // A decimal integer (as written for values without a row) maps back to itself.
    const char* s = text.c_str();
    const char* digits = (*s == '-') ? s + 1 : s;
    if (*digits == '\0' || std::strspn(digits, "0123456789") != std::strlen(digits)) return -1;
    errno = 0;
    const long v = std::strtol(s, nullptr, 10);
    if (errno != 0 || v < INT_MIN || v > INT_MAX) return -1;
    return static_cast<int>(v);
}
