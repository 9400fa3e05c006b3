#include "platform/Tm_catalog.h"

#include <atomic>

#include "platform/Tm_exception.h"

namespace {

std::uint64_t next_catalog_id() {
    static std::atomic<std::uint64_t> next{1};
    return next.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

Tm_catalog<std::string>::Tm_catalog() : m_id(next_catalog_id()) {}
Tm_catalog<std::string>::Tm_catalog(const Tm_catalog& other)
    : m_names(other.m_names), m_index(other.m_index), m_id(next_catalog_id()) {}
Tm_catalog<std::string>::Tm_catalog(Tm_catalog&& other) noexcept
    : m_names(std::move(other.m_names)), m_index(std::move(other.m_index)), m_id(next_catalog_id()) {
    other.clear();
}
Tm_catalog<std::string>& Tm_catalog<std::string>::operator=(const Tm_catalog& other) {
    if (this != &other) {
        m_names = other.m_names;
        m_index = other.m_index;
        m_id = next_catalog_id();
    }
    return *this;
}
Tm_catalog<std::string>& Tm_catalog<std::string>::operator=(Tm_catalog&& other) noexcept {
    if (this != &other) {
        m_names = std::move(other.m_names);
        m_index = std::move(other.m_index);
        m_id = next_catalog_id();
        other.clear();
    }
    return *this;
}
Tm_catalog<std::string>::~Tm_catalog() = default;

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

int Tm_catalog<std::string>::add_uncached(const tm_detail::Name& name) {
    const int index = add(name.text());
    name.remember_index(m_id, index);
    return index;
}

int Tm_catalog<std::string>::find_uncached(const tm_detail::Name& name) const {
    const int index = find(name.text());
    if (index >= 0) name.remember_index(m_id, index);
    return index;
}

const std::string& Tm_catalog<std::string>::get(int index) const {
    if (index < 0 || index >= size()) throw Tm_out_of_range_exception(index, 0, size() - 1);
    return m_names[static_cast<size_t>(index)];
}

void Tm_catalog<std::string>::clear() {
    m_names.clear();
    m_index.clear();
    m_id = next_catalog_id();
}
