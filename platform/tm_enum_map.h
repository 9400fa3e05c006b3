// Enumeration maps: (value, name) rows ended by a row whose name is null.
#pragma once

#include <string>

struct tm_enum_map {
    int value;
    const char* name;
};

// Name of `value`; for a value without a row, its decimal text (so nothing is lost).
std::string tms_enum_to_string(int value, const tm_enum_map* map);
// Value of the row named `text`; else the number when `text` is a decimal integer that fits
// an int (optional leading '-'); else -1.
int tms_string_to_enum(const std::string& text, const tm_enum_map* map);
