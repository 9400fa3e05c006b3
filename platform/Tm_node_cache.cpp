#include "platform/Tm_node_cache.h"

#include <cstdint>

#if defined(__SANITIZE_ADDRESS__)
#define TM_NODE_CACHE 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TM_NODE_CACHE 0
#endif
#endif
#ifndef TM_NODE_CACHE
#define TM_NODE_CACHE 1
#endif

namespace tm_detail {

#if TM_NODE_CACHE
namespace {

// Sizes are rounded up to 16 bytes; nodes up to 1 KiB are kept.
constexpr std::size_t kGranule = 16;
constexpr std::size_t kClasses = 64;

struct FreeNode {
    FreeNode* next;
};

// Plain data, so that reaching it costs no initialisation check.
struct Lists {
    FreeNode* head[kClasses];
    std::size_t bytes;
    bool released;  // the thread is ending: keep nothing more
};
thread_local Lists t_lists;

// Gives the kept nodes back when the thread ends; armed by the first node kept.
struct Release {
    bool armed = false;
    ~Release() {
        for (FreeNode*& head : t_lists.head) {
            while (head) {
                FreeNode* next = head->next;
                ::operator delete(head);
                head = next;
            }
        }
        t_lists.bytes = 0;
        t_lists.released = true;
    }
};
thread_local Release t_release;

std::size_t size_class(std::size_t size) { return size == 0 ? 0 : (size - 1) / kGranule; }

}  // namespace

void* node_allocate(std::size_t size) {
    const std::size_t c = size_class(size);
    if (c >= kClasses) return ::operator new(size);
    Lists& lists = t_lists;
    if (FreeNode* node = lists.head[c]) {
        lists.head[c] = node->next;
        lists.bytes -= (c + 1) * kGranule;
        return node;
    }
    return ::operator new((c + 1) * kGranule);
}

void node_deallocate(void* p, std::size_t size) noexcept {
    if (!p) return;
    const std::size_t c = size_class(size);
    Lists& lists = t_lists;
    if (c >= kClasses || lists.released || lists.bytes + (c + 1) * kGranule > kNodeCacheBytes) {
        ::operator delete(p);
        return;
    }
    if (lists.bytes == 0) t_release.armed = true;
    auto* node = static_cast<FreeNode*>(p);
    node->next = lists.head[c];
    lists.head[c] = node;
    lists.bytes += (c + 1) * kGranule;
}

#else

void* node_allocate(std::size_t size) { return ::operator new(size); }
void node_deallocate(void* p, std::size_t) noexcept { ::operator delete(p); }

#endif

}  // namespace tm_detail
