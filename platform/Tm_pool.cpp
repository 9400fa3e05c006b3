#include "platform/Tm_pool.h"

#include <atomic>
#include <cstdint>
#include <mutex>

#include "platform/Tm_value.h"

namespace {

constexpr std::size_t kAlign = 16;

// The start of every chunk (chunks are aligned to their size, so a node's chunk is its
// address rounded down). `balance` is what the owning thread has handed in of the nodes it
// carved (when it stops carving from the chunk) minus what has been released; the chunk
// goes back to the heap when it returns to zero after the hand-in.
struct alignas(64) Chunk_header {
    std::atomic<long> balance{0};
};

constexpr std::size_t kFirstNode = (sizeof(Chunk_header) + kAlign - 1) / kAlign * kAlign;

Chunk_header* chunk_of(void* p) {
    return reinterpret_cast<Chunk_header*>(reinterpret_cast<std::uintptr_t>(p) &
                                           ~(static_cast<std::uintptr_t>(Tm_node_pool::kChunkBytes) - 1));
}

void give_back(Chunk_header* c) {
    c->~Chunk_header();
    ::operator delete(static_cast<void*>(c), std::align_val_t(Tm_node_pool::kChunkBytes));
}

// A free chunk kept for reuse; its first bytes link to the next one.
struct Spare {
    Spare* next;
};

// A thread's carving state (trivially destructible, so usable until the thread ends) and
// the releases it has not yet settled: consecutive releases into one chunk are counted
// here and settled with one atomic update when a release lands in another chunk. So a
// thread keeps at most the chunk it carves from and one chunk whose last releases it has
// counted but not settled.
struct Thread_state {
    char* next = nullptr;
    char* end = nullptr;
    Chunk_header* carving = nullptr;
    long carved = 0;
    Chunk_header* releasing = nullptr;
    long released = 0;
    // Chunks freed on this thread, kept for the next ones it takes (at most kLocalSpares).
    Spare* spares = nullptr;
    int spareCount = 0;
    // The arena whose scope is open on this thread, if any, and the run of nodes carved for
    // it that it has not recorded yet: `arenaCarved` nodes of `arenaChunk`.
    tm_detail::Node_arena* arena = nullptr;
    void* arenaChunk = nullptr;
    long arenaCarved = 0;
    // Set once the thread's end has handed everything in: from then on (destructors of
    // other thread-local or static objects), chunks are handed in and releases settled at
    // once.
    bool ended = false;
};
// Initial-exec: reached without a call into the dynamic linker on every node. The state is
// small enough for the space the C library keeps for libraries loaded later.
thread_local Thread_state t_state __attribute__((tls_model("initial-exec")));

// Under the address sanitizer, freed chunks go back to the heap at once, so that a use
// after free is seen.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool kKeepSpares = false;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool kKeepSpares = false;
#else
constexpr bool kKeepSpares = true;
#endif
#else
constexpr bool kKeepSpares = true;
#endif
// Spares a thread keeps for itself, without a lock; the rest go to the process's list.
constexpr int kLocalSpares = kKeepSpares ? 16 : 0;
constexpr int kSharedSpares = kKeepSpares ? Tm_node_pool::kSpareChunks - kLocalSpares : 0;

// The process's spare chunks, shared by all threads. Reachable from a static until the end
// and never destroyed, so that threads ending during the program's exit may still use it.
struct Shared_spares {
    std::mutex mutex;
    Spare* head = nullptr;
    int count = 0;
};
Shared_spares& shared_spares() {
    static Shared_spares& spares = *new Shared_spares;
    return spares;
}

// Keeps `c` in the process's list when there is room, else gives it back to the heap.
void keep_shared(Chunk_header* c) {
    if (kSharedSpares > 0) {
        Shared_spares& shared = shared_spares();
        std::lock_guard<std::mutex> lock(shared.mutex);
        if (shared.count < kSharedSpares) {
            c->~Chunk_header();
            shared.head = new (static_cast<void*>(c)) Spare{shared.head};
            ++shared.count;
            return;
        }
    }
    give_back(c);
}

void free_chunk(Chunk_header* c) {
    Thread_state& s = t_state;
    if (s.ended || s.spareCount >= kLocalSpares) {
        keep_shared(c);
        return;
    }
    c->~Chunk_header();
    s.spares = new (static_cast<void*>(c)) Spare{s.spares};
    ++s.spareCount;
}

void settle(Chunk_header* c, long delta) {
    if (c->balance.fetch_add(delta, std::memory_order_acq_rel) + delta == 0) free_chunk(c);
}

void* new_chunk(Thread_state& s) {
    if (Spare* spare = s.spares) {
        s.spares = spare->next;
        --s.spareCount;
        return spare;
    }
    if (kSharedSpares > 0) {
        Shared_spares& shared = shared_spares();
        std::lock_guard<std::mutex> lock(shared.mutex);
        if (Spare* spare = shared.head) {
            shared.head = spare->next;
            --shared.count;
            return spare;
        }
    }
    return ::operator new(Tm_node_pool::kChunkBytes, std::align_val_t(Tm_node_pool::kChunkBytes));
}

void hand_in(Thread_state& s) {
    if (s.releasing) {
        Chunk_header* c = s.releasing;
        const long n = s.released;
        s.releasing = nullptr;
        s.released = 0;
        settle(c, -n);
    }
    if (s.carving) {
        Chunk_header* c = s.carving;
        const long n = s.carved;
        s.carving = nullptr;
        s.next = s.end = nullptr;
        s.carved = 0;
        settle(c, n);
    }
}

// Hands in the thread's chunk and its unsettled releases when the thread ends.
struct Thread_exit {
    Thread_exit() noexcept {}
    ~Thread_exit() {
        hand_in(t_state);
        t_state.ended = true;
        // The thread's own spares go to the process's list, or back to the heap.
        while (Spare* spare = t_state.spares) {
            t_state.spares = spare->next;
            keep_shared(new (static_cast<void*>(spare)) Chunk_header);
        }
        t_state.spareCount = 0;
    }
    void arm() noexcept {}
};
thread_local Thread_exit t_exit;

void* carve_from_new_chunk(Thread_state& s, std::size_t size) {
    t_exit.arm();  // registers the hand-in at thread end
    void* raw = new_chunk(s);
    auto* c = new (raw) Chunk_header;
    if (s.carving) settle(s.carving, s.carved);
    s.carving = c;
    s.carved = 1;
    s.next = static_cast<char*>(raw) + kFirstNode + size;
    s.end = static_cast<char*>(raw) + Tm_node_pool::kChunkBytes;
    if (s.ended) hand_in(s);
    return static_cast<char*>(raw) + kFirstNode;
}

}  // namespace

namespace tm_detail {

void Node_arena::start_run(void* chunk) {
    record_run();
    if (m_runs.size() == m_runs.capacity()) m_runs.reserve(m_runs.empty() ? 64 : 2 * m_runs.size());
    Thread_state& s = t_state;
    s.arenaChunk = chunk;
    s.arenaCarved = 1;
}

void Node_arena::record_run() noexcept {
    Thread_state& s = t_state;
    if (s.arenaCarved > 0) s.arena->m_runs.push_back(Run{s.arenaChunk, s.arenaCarved});
    s.arenaChunk = nullptr;
    s.arenaCarved = 0;
}

}  // namespace tm_detail

void* Tm_node_pool::allocate(std::size_t size) {
    Thread_state& s = t_state;
    if (size > kLargest) {
        void* block = ::operator new(size);
        if (s.arena) {
            try {
                s.arena->keep_block(block);
            } catch (...) {
                ::operator delete(block);
                throw;
            }
        }
        return block;
    }
    size = size == 0 ? kAlign : (size + kAlign - 1) & ~(kAlign - 1);
    void* p;
    if (static_cast<std::size_t>(s.end - s.next) >= size) {
        p = s.next;
        s.next += size;
        ++s.carved;
    } else {
        p = carve_from_new_chunk(s, size);
    }
    if (s.arena) {
        Chunk_header* c = chunk_of(p);
        if (c == s.arenaChunk) {
            ++s.arenaCarved;
        } else {
            try {
                s.arena->start_run(c);
            } catch (...) {
                release(p, size);
                throw;
            }
        }
    }
    return p;
}

void Tm_node_pool::release(void* p, std::size_t size) noexcept {
    if (!p) return;
    if (size > kLargest) {
        ::operator delete(p);
        return;
    }
    Chunk_header* c = chunk_of(p);
    Thread_state& s = t_state;
    if (c == s.releasing) {
        ++s.released;
        return;
    }
    if (s.ended) {
        settle(c, -1);
        return;
    }
    t_exit.arm();  // registers the settling at thread end
    if (s.releasing) settle(s.releasing, -s.released);
    s.releasing = c;
    s.released = 1;
}

namespace tm_detail {

Node_arena::~Node_arena() {
    if (m_abandoned) return;
    // The values are cold by now (a message is far larger than the caches): each is fetched
    // a few destructor calls ahead, so that the calls do not wait on memory one by one.
    constexpr std::size_t kAhead = 8;
    for (std::size_t i = m_destroy.size(); i-- > 0;) {
        if (i >= kAhead) __builtin_prefetch(m_destroy[i - kAhead]);
        m_destroy[i]->~Tm_value();
    }
    for (const Run& r : m_runs) settle(static_cast<Chunk_header*>(r.chunk), -r.count);
    for (void* block : m_blocks) ::operator delete(block);
}

Node_arena* Node_arena::current() { return t_state.arena; }

Node_arena::Scope::Scope(Node_arena& arena) : m_previous(t_state.arena) {
    record_run();
    t_state.arena = &arena;
}
Node_arena::Scope::~Scope() {
    record_run();
    t_state.arena = m_previous;
}
Node_arena::Pause::Pause() : m_previous(t_state.arena) {
    record_run();
    t_state.arena = nullptr;
}
Node_arena::Pause::~Pause() { t_state.arena = m_previous; }

}  // namespace tm_detail
