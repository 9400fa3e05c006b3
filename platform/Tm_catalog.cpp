#include "platform/Tm_catalog.h"

#include "platform/Tm_exception.h"

int Tm_catalog<std::string>::add(const std::string& name) {
    auto it = m_index.find(name);
    if (it != m_index.end()) return it->second;
    const int index = static_cast<int>(m_names.size());
    m_names.push_back(name);
    m_index.emplace(name, index);
    return index;
}

int Tm_catalog<std::string>::find(const std::string& name) const {
    auto it = m_index.find(name);
    return it == m_index.end() ? -1 : it->second;
}

const std::string& Tm_catalog<std::string>::get(int index) const {
    if (index < 0 || index >= size()) throw Tm_out_of_range_exception(index, 0, size() - 1);
    return m_names[static_cast<size_t>(index)];
}

void Tm_catalog<std::string>::clear() {
    m_names.clear();
    m_index.clear();
}
