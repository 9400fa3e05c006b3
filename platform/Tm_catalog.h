// Interning table of names: each distinct name gets a stable index.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/Tm_slot.h"

template <class T>
class Tm_catalog;

template <>
class Tm_catalog<std::string> {
public:
    Tm_catalog();
    Tm_catalog(const Tm_catalog& other);
    Tm_catalog(Tm_catalog&& other) noexcept;
    Tm_catalog& operator=(const Tm_catalog& other);
    Tm_catalog& operator=(Tm_catalog&& other) noexcept;
    ~Tm_catalog();

    // Index of `name`, adding it at the end when it is new.
    int add(const std::string& name);
    // Index of `name`, or -1.
    int find(const std::string& name) const;
    // Name at `index`; Tm_out_of_range_exception outside [0, size()-1].
    const std::string& get(int index) const;
    int size() const { return static_cast<int>(m_names.size()); }
    void clear();
    const std::vector<std::string>& names() const { return m_names; }

    // The same as add() and find() for a shared member name; a name interned here before
    // is found again without hashing its text.
    int add(const tm_detail::Name& name) {
        const int index = name.cached_index(m_id);
        return index >= 0 ? index : add_uncached(name);
    }
    int find(const tm_detail::Name& name) const {
        const int index = name.cached_index(m_id);
        return index >= 0 ? index : find_uncached(name);
    }
    // Identifies these contents (never tm_detail::kNoNames nor kUnknown).
    std::uint64_t id() const { return m_id; }

private:
    int add_uncached(const tm_detail::Name& name);
    int find_uncached(const tm_detail::Name& name) const;
    std::vector<std::string> m_names;
    std::unordered_map<std::string, int> m_index;
    // Identifies these contents for the index that names remember: renewed whenever an
    // index could change meaning (clear, copy, move).
    std::uint64_t m_id;
};
