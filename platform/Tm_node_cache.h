// Memory of the runtime's value nodes (structs, arrays, strings and the other boxed kinds)
// and of their member lists. Messages are made of many small nodes that are allocated and
// freed together; each thread keeps the nodes it frees on lists by size and hands them out
// again, so that building, decoding and dropping messages repeatedly costs no trip through
// the general-purpose allocator once a thread has warmed up. A thread keeps at most
// kNodeCacheBytes this way; everything beyond goes back to the allocator at once, and a
// thread's lists are released when it ends. Sanitizer builds keep nothing (each node goes
// straight back, so that use after free is still found).
// Not part of the runtime's interface; code outside platform/ must not use it.
#pragma once

#include <cstddef>
#include <new>

namespace tm_detail {

constexpr std::size_t kNodeCacheBytes = std::size_t(32) << 20;

void* node_allocate(std::size_t size);
void node_deallocate(void* p, std::size_t size) noexcept;

// A standard allocator over the node lists, for the member lists of structs and arrays.
template <class T>
struct NodeAllocator {
    using value_type = T;
    NodeAllocator() noexcept = default;
    template <class U>
    NodeAllocator(const NodeAllocator<U>&) noexcept {}
    T* allocate(std::size_t n) {
        if (n > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(node_allocate(n * sizeof(T)));
    }
    void deallocate(T* p, std::size_t n) noexcept { node_deallocate(p, n * sizeof(T)); }
    template <class U>
    bool operator==(const NodeAllocator<U>&) const noexcept {
        return true;
    }
    template <class U>
    bool operator!=(const NodeAllocator<U>&) const noexcept {
        return false;
    }
};

}  // namespace tm_detail
