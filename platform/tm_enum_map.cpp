#include "platform/tm_enum_map.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

std::string tms_enum_to_string(int value, const tm_enum_map* map) {
    for (const tm_enum_map* row = map; row && row->name; ++row) {
        if (row->value == value) return row->name;
    }
    return std::to_string(value);
}

namespace {

// Whether `name` (NUL-terminated) is `text`, in one pass without measuring `name` first: the
// first characters decide for nearly every row.
bool is_name(const std::string& text, const char* name) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (name[i] == '\0' || name[i] != text[i]) return false;
    }
    return name[text.size()] == '\0';
}

}  // namespace

int tms_string_to_enum(const std::string& text, const tm_enum_map* map) {
    for (const tm_enum_map* row = map; row && row->name; ++row) {
        if (is_name(text, row->name)) return row->value;
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
