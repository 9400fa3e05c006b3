// Exceptions of the typed-message runtime.
#pragma once

#include <exception>
#include <string>

#include "platform/Tm_types.h"

// Base of every runtime failure: a std::exception carrying a text.
class Tm_exception : public std::exception {
public:
    explicit Tm_exception(std::string text);
    const char* what() const noexcept override;
    const std::string& text() const { return m_text; }

private:
    std::string m_text;
};

// An index outside [low, high]. what(): "index 7 out of range [0, 3]".
class Tm_out_of_range_exception : public Tm_exception {
public:
    Tm_out_of_range_exception(int index, int low, int high);
    int index() const { return m_index; }
    int low() const { return m_low; }
    int high() const { return m_high; }

private:
    int m_index, m_low, m_high;
};

// A value or message of another kind than the one asked for.
// what(): "type mismatch: found uint8 (1), wanted uint32 (5)" or
//         "type mismatch: found message type request (0), wanted message type response (1)".
class Tm_type_mismatch_exception : public Tm_exception {
public:
    Tm_type_mismatch_exception(TMV found, TMV wanted);
    Tm_type_mismatch_exception(Tm_message_type found, Tm_message_type wanted);
    int found() const { return m_found; }
    int wanted() const { return m_wanted; }
    // True when the mismatch is between message types, false for value kinds.
    bool is_message_type() const { return m_messageType; }

private:
    int m_found, m_wanted;
    bool m_messageType;
};
