// Declarations that every described record gets: its names table, its two converters and
// equality (a choice record also its lifetime members, defined inline from Choice.h). The
// definitions of the converters and equality come from the generic converter (RecordCodec.h)
// in the module's source, through the matching *_IMPL macro.
#pragma once

#include <string>

#include "binding/Choice.h"
#include "binding/Describe.h"
#include "platform/Message.h"
#include "platform/Tm_catalog.h"
#include "platform/Tm_struct.h"

// For record `<rec>_s`: <rec>_t_names (a static, null-terminated array), <rec>_t_to_struct, <rec>_t_from_struct, ==, !=.
#define VRM_RECORD_API(rec)                                                                          \
    inline constexpr const char* const(&rec##_t_names)[binding::Names<rec##_s>::count + 1] =          \
        binding::NamesArray<rec##_s>::value;                                                         \
    Tm_prenamed_struct* rec##_t_to_struct(Tm_prenamed_struct* target, const rec##_s* source, bool copy, \
                                          Tm_catalog<std::string>* catalog);                         \
    void rec##_t_from_struct(const Tm_struct* source, rec##_s* target);                              \
    inline Tm_prenamed_struct* binding_to_struct(Tm_prenamed_struct* t, const rec##_s* s, bool c,    \
                                                 Tm_catalog<std::string>* k) {                       \
        return rec##_t_to_struct(t, s, c, k);                                                        \
    }                                                                                                \
    inline void binding_from_struct(const Tm_struct* s, rec##_s* t) { rec##_t_from_struct(s, t); }   \
    bool operator==(const rec##_s& a, const rec##_s& b);                                             \
    inline bool operator!=(const rec##_s& a, const rec##_s& b) { return !(a == b); }

// Inside choice record R with selector enumeration E: the members that keep exactly the
// selected alternative alive (Choice.h), defined by VRM_CHOICE_API once R is described.
#define VRM_CHOICE_MEMBERS(R, E)                                                                         \
    R() noexcept;                                                                                        \
    R(const R& other);                                                                                   \
    R(R&& other) noexcept;                                                                               \
    R& operator=(const R& other);                                                                        \
    R& operator=(R&& other) noexcept;                                                                    \
    ~R();                                                                                                \
    /* Selects `e`: the alternative alive ends, the one `e` names starts value-initialised. */          \
    void select(E e) noexcept;

// For choice record `<rec>_t`: the same, over a plain Tm_struct, and the definitions of the
// members VRM_CHOICE_MEMBERS declared.
#define VRM_CHOICE_API(rec)                                                                              \
    inline rec##_t::rec##_t() noexcept { binding::choice_init(*this); }                                   \
    inline rec##_t::rec##_t(const rec##_t& other) { binding::choice_copy(*this, other); }                 \
    inline rec##_t::rec##_t(rec##_t&& other) noexcept { binding::choice_move(*this, other); }             \
    inline rec##_t& rec##_t::operator=(const rec##_t& other) {                                           \
        binding::choice_copy_assign(*this, other);                                                       \
        return *this;                                                                                    \
    }                                                                                                    \
    inline rec##_t& rec##_t::operator=(rec##_t&& other) noexcept {                                       \
        binding::choice_move_assign(*this, other);                                                       \
        return *this;                                                                                    \
    }                                                                                                    \
    inline rec##_t::~rec##_t() { binding::choice_destroy(*this); }                                       \
    inline void rec##_t::select(binding::selector_of<rec##_t> e) noexcept {                              \
        binding::choice_select(*this, e);                                                                \
    }                                                                                                    \
    inline constexpr const char* const(&rec##_t_names)[binding::Names<rec##_t>::count + 1] =              \
        binding::NamesArray<rec##_t>::value;                                                             \
    Tm_struct* rec##_t_to_struct(Tm_struct* target, const rec##_t* source, bool copy,                     \
                                 Tm_catalog<std::string>* catalog);                                      \
    void rec##_t_from_struct(const Tm_struct* source, rec##_t* target);                                  \
    inline Tm_struct* binding_to_struct(Tm_struct* t, const rec##_t* s, bool c, Tm_catalog<std::string>* k) { \
        return rec##_t_to_struct(t, s, c, k);                                                            \
    }                                                                                                    \
    inline void binding_from_struct(const Tm_struct* s, rec##_t* t) { rec##_t_from_struct(s, t); }       \
    bool operator==(const rec##_t& a, const rec##_t& b);                                                 \
    inline bool operator!=(const rec##_t& a, const rec##_t& b) { return !(a == b); }

// Definitions, in the module's source (inside the module's namespace).
#define VRM_RECORD_IMPL(rec)                                                                            \
    Tm_prenamed_struct* rec##_t_to_struct(Tm_prenamed_struct* target, const rec##_s* source, bool copy,  \
                                          Tm_catalog<std::string>* catalog) {                           \
        return binding::to_struct(target, *source, copy, catalog);                                      \
    }                                                                                                   \
    void rec##_t_from_struct(const Tm_struct* source, rec##_s* target) { binding::from_struct(source, *target); } \
    bool operator==(const rec##_s& a, const rec##_s& b) { return binding::equal(a, b); }

#define VRM_CHOICE_IMPL(rec)                                                                            \
    Tm_struct* rec##_t_to_struct(Tm_struct* target, const rec##_t* source, bool copy,                    \
                                 Tm_catalog<std::string>* catalog) {                                    \
        return binding::choice_to_struct(target, *source, copy, catalog);                               \
    }                                                                                                   \
    void rec##_t_from_struct(const Tm_struct* source, rec##_t* target) {                                 \
        binding::choice_from_struct(source, *target);                                                   \
    }                                                                                                   \
    bool operator==(const rec##_t& a, const rec##_t& b) { return binding::equal(a, b); }
