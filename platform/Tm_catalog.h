// Interning table of names: each distinct name gets a stable index.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

template <class T>
class Tm_catalog;

template <>
class Tm_catalog<std::string> {
public:
    // Index of `name`, adding it at the end when it is new.
    int add(const std::string& name);
    // Index of `name`, or -1.
    int find(const std::string& name) const;
    // Name at `index`; Tm_out_of_range_exception outside [0, size()-1].
    const std::string& get(int index) const;
    int size() const { return static_cast<int>(m_names.size()); }
    void clear();
    const std::vector<std::string>& names() const { return m_names; }

private:
    std::vector<std::string> m_names;
    std::unordered_map<std::string, int> m_index;
};
