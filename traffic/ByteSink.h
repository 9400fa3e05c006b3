// Where a writer's bytes go: a file (OutputFile), memory (MemorySink), or whatever a host
// provides.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vrm::traffic {

class ByteSink {
  public:
    virtual ~ByteSink() = default;
    // Takes all of `data` after what came before, or throws. A writer's calls never overlap,
    // but they may come from different threads one after another.
    virtual void Write(const void* data, std::size_t size) = 0;
};

// Appends what is written to a vector, which grows by what is written (its capacity at most
// twice its size) and never beyond `limit` bytes: a write past it throws std::runtime_error
// and leaves the bytes as they were.
class MemorySink final : public ByteSink {
  public:
    explicit MemorySink(std::size_t limit = std::numeric_limits<std::size_t>::max()) : m_limit(limit) {}

    void Write(const void* data, std::size_t size) override {
        if (size > m_limit - m_bytes.size()) {
            throw std::runtime_error("memory: more than the limit of " + std::to_string(m_limit) + " bytes");
        }
        const auto* p = static_cast<const unsigned char*>(data);
        m_bytes.insert(m_bytes.end(), p, p + size);
    }

    const std::vector<unsigned char>& Bytes() const { return m_bytes; }
    // Hands the bytes over and leaves the sink empty.
    std::vector<unsigned char> Take() { return std::exchange(m_bytes, {}); }

  private:
    std::size_t m_limit;
    std::vector<unsigned char> m_bytes;
};

}  // namespace vrm::traffic
