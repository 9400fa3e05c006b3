// Counts the bytes that global operator new (aligned or not) hands out and operator delete takes back, and
// the peak of what is live while a measurement runs. Replaces the global allocation
// functions: include it in exactly one source of a program.
#pragma once

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace alloc_meter {

// Atomic: a program's other threads (a fuzzing engine's, for example) allocate too.
inline std::atomic<std::size_t> g_live{0};
inline std::atomic<std::size_t> g_peak{0};

// Peak of the bytes live during `f`, above what was live when it started.
template <class F>
std::size_t peak_of(F&& f) {
    const std::size_t base = g_live.load();
    g_peak.store(base);
    f();
    return g_peak.load() - base;
}

inline void* take(std::size_t size, std::size_t align = 0) {
    if (size == 0) size = 1;
    void* p = align ? std::aligned_alloc(align, (size + align - 1) / align * align) : std::malloc(size);
    if (p) {
        const std::size_t live = g_live.fetch_add(malloc_usable_size(p)) + malloc_usable_size(p);
        std::size_t peak = g_peak.load();
        while (live > peak && !g_peak.compare_exchange_weak(peak, live)) {
        }
    }
    return p;
}

inline void give(void* p) {
    if (!p) return;
    g_live.fetch_sub(malloc_usable_size(p));
    std::free(p);
}

}  // namespace alloc_meter

void* operator new(std::size_t size) {
    if (void* p = alloc_meter::take(size)) return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept { return alloc_meter::take(size); }
void* operator new[](std::size_t size) { return ::operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& t) noexcept { return ::operator new(size, t); }
void* operator new(std::size_t size, std::align_val_t a) {
    if (void* p = alloc_meter::take(size, static_cast<std::size_t>(a))) return p;
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::align_val_t a, const std::nothrow_t&) noexcept {
    return alloc_meter::take(size, static_cast<std::size_t>(a));
}
void* operator new[](std::size_t size, std::align_val_t a) { return ::operator new(size, a); }
void* operator new[](std::size_t size, std::align_val_t a, const std::nothrow_t& t) noexcept {
    return ::operator new(size, a, t);
}
void operator delete(void* p, std::align_val_t) noexcept { alloc_meter::give(p); }
void operator delete(void* p, std::size_t, std::align_val_t) noexcept { alloc_meter::give(p); }
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept { alloc_meter::give(p); }
void operator delete[](void* p, std::align_val_t) noexcept { alloc_meter::give(p); }
void operator delete[](void* p, std::size_t, std::align_val_t) noexcept { alloc_meter::give(p); }
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept { alloc_meter::give(p); }
void operator delete(void* p) noexcept { alloc_meter::give(p); }
void operator delete(void* p, std::size_t) noexcept { alloc_meter::give(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { alloc_meter::give(p); }
void operator delete[](void* p) noexcept { alloc_meter::give(p); }
void operator delete[](void* p, std::size_t) noexcept { alloc_meter::give(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { alloc_meter::give(p); }
