// Where the runtime's value nodes and their internal lists live. Not part of the runtime's
// interface; code outside platform/ must not use it.
//
// A message is tens of thousands of small nodes that are made together and dropped
// together. Taking each from the general heap and giving it back one by one costs more than
// everything else a message does. Instead, each thread carves its nodes, in the order it
// makes them, out of 32 KiB chunks of its own, and a chunk is free again when the last node
// carved from it is released (by any thread). So a message's nodes sit side by side in
// memory, taking one costs a pointer bump and releasing one a counter update.
//
// Free chunks are kept for the chunks taken next, up to kSpareChunks (32 MiB) in the whole
// process: the thread that frees one keeps it for itself while it holds fewer than 16, else
// it goes to a list that all threads share; beyond the limit, and under the address
// sanitizer, chunks go back to the heap. A large message is hundreds of chunks, and each
// round through the heap costs more than filling the chunk: the heap hands freed pages back
// to the system, and taking them again costs a page fault each.
//
// The price: a node that lives on keeps its whole chunk alive. Requests above
// kLargest bytes, and the rest of what a node owns (texts, byte payloads), come from the
// general heap as before.
#pragma once

#include <cstddef>
#include <limits>
#include <new>
#include <vector>

class Tm_node_pool {
public:
    static constexpr std::size_t kChunkBytes = 32 * 1024;
    static constexpr std::size_t kLargest = 2048;
    static constexpr int kSpareChunks = 1024;

    // `size` bytes, aligned as the general heap aligns; above kLargest from the general heap.
    static void* allocate(std::size_t size);
    // Gives back what allocate(size) returned (the same size).
    static void release(void* p, std::size_t size) noexcept;
};

class Tm_value;

namespace tm_detail {

// The values of one decoded message, dropped together without a walk over them.
//
// While a Scope is open on a thread, what that thread takes from the pool (nodes, and the
// lists inside them) is counted to the arena as well as carved as usual. Nothing taken so
// must be released on its own: the arena releases it all when it goes, after running the
// destructors of the values registered with keep_destructor() (those that own storage
// outside the pool: long texts, byte payloads, nested messages). The decoder keeps that
// rule: the values it makes are held by storage cells that never delete them, and the lists
// that could be released on their own (the member lists of messages) are taken with the
// scope paused.
class Node_arena {
public:
    Node_arena() = default;
    Node_arena(const Node_arena&) = delete;
    Node_arena& operator=(const Node_arena&) = delete;
    ~Node_arena();

    // Runs `v`'s destructor (not its deallocation) when the arena goes.
    void keep_destructor(Tm_value* v) { m_destroy.push_back(v); }
    // After a failure inside a scope, some of the arena's nodes may have been released on
    // their own: then the arena gives nothing back (its chunks and the storage of its values
    // stay taken) rather than release anything twice.
    void abandon() { m_abandoned = true; }
    // The arena of this thread's open scope, or null.
    static Node_arena* current();
    // In an open scope: registers `v`, just made, when it owns storage outside the pool
    // (anything but the runtime's own structs and arrays, dates and texts short enough for
    // their own buffer).
    static void adopt(Tm_value* v);

    class Scope {
    public:
        explicit Scope(Node_arena& arena);
        ~Scope();
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Node_arena* m_previous;
    };
    // Suspends the open scope of this thread, if any.
    class Pause {
    public:
        Pause();
        ~Pause();
        Pause(const Pause&) = delete;
        Pause& operator=(const Pause&) = delete;

    private:
        Node_arena* m_previous;
    };

private:
    friend class ::Tm_node_pool;
    // The nodes a thread carves for the arena of its open scope are counted in the thread's
    // state and recorded here as one run per chunk, when the chunk or the scope changes.
    // Starts counting nodes of `chunk` (the first just carved) after recording the previous
    // run, and makes room for this one's record.
    void start_run(void* chunk);
    // Records the run this thread is counting, if any. Never allocates: room for it was made
    // when it started.
    static void record_run() noexcept;
    void keep_block(void* block) { m_blocks.push_back(block); }
    struct Run {
        void* chunk;
        long count;
    };
    std::vector<Run> m_runs;
    std::vector<void*> m_blocks;  // requests above kLargest
    std::vector<Tm_value*> m_destroy;
    bool m_abandoned = false;
};

// The standard allocator interface over the pool, for the lists inside nodes.
template <class T>
struct Pool_allocator {
    using value_type = T;
    Pool_allocator() = default;
    template <class U>
    Pool_allocator(const Pool_allocator<U>&) noexcept {}
    T* allocate(std::size_t n) {
        if (n > std::numeric_limits<std::size_t>::max() / sizeof(T)) throw std::bad_array_new_length();
        return static_cast<T*>(Tm_node_pool::allocate(n * sizeof(T)));
    }
    void deallocate(T* p, std::size_t n) noexcept { Tm_node_pool::release(p, n * sizeof(T)); }
    template <class U>
    bool operator==(const Pool_allocator<U>&) const noexcept { return true; }
    template <class U>
    bool operator!=(const Pool_allocator<U>&) const noexcept { return false; }
};

}  // namespace tm_detail
