#include "platform/Tm_exception.h"

#include <utility>

Tm_exception::Tm_exception(std::string text) : m_text(std::move(text)) {}

const char* Tm_exception::what() const noexcept { return m_text.c_str(); }

Tm_out_of_range_exception::Tm_out_of_range_exception(int index, int low, int high)
    : Tm_exception("index " + std::to_string(index) + " out of range [" + std::to_string(low) + ", " +
                   std::to_string(high) + "]"),
      m_index(index),
      m_low(low),
      m_high(high) {}

namespace {

std::string kind_text(int kind) { return std::string(tmv_name(kind)) + " (" + std::to_string(kind) + ")"; }

std::string message_type_text(int type) {
    const char* name = type == TMT_REQUEST ? "request" : type == TMT_RESPONSE ? "response" : "unknown";
    return std::string("message type ") + name + " (" + std::to_string(type) + ")";
}

}  // namespace

Tm_type_mismatch_exception::Tm_type_mismatch_exception(TMV found, TMV wanted)
    : Tm_exception("type mismatch: found " + kind_text(found) + ", wanted " + kind_text(wanted)),
      m_found(found),
      m_wanted(wanted),
      m_messageType(false) {}

Tm_type_mismatch_exception::Tm_type_mismatch_exception(Tm_message_type found, Tm_message_type wanted)
    : Tm_exception("type mismatch: found " + message_type_text(found) + ", wanted " +
                   message_type_text(wanted)),
      m_found(found),
      m_wanted(wanted),
      m_messageType(true) {}
