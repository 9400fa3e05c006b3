#include "tools/streamgen/Signals.h"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstring>
#include <initializer_list>
#include <mutex>

namespace streamgen {

namespace {

// The temporary file to remove when a signal ends the process. The handler may only use
// async-signal-safe calls, so the name is kept in a fixed buffer.
constexpr std::size_t kMaxPath = 4096;
char g_pending[kMaxPath + 1];
std::atomic<bool> g_havePending{false};

extern "C" void remove_pending(int sig) {
    if (g_havePending.load()) ::unlink(g_pending);
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

class Watcher final : public vrm::traffic::TempWatcher {
  public:
    void Creating(const std::string& path) override {
        g_havePending.store(false);
        if (path.size() > kMaxPath) return;
        std::memcpy(g_pending, path.c_str(), path.size() + 1);
        g_havePending.store(true);
    }
    void Gone() override { g_havePending.store(false); }
};

std::atomic<bool> g_interrupted{false};

extern "C" void note_interrupt(int) { g_interrupted.store(true); }

// `handler` for each signal of `signals` that the parent does not ignore.
void handle(void (*handler)(int), std::initializer_list<int> signals) {
    for (int sig : signals) {
        struct sigaction sa {};
        sa.sa_handler = handler;
        sigemptyset(&sa.sa_mask);
        struct sigaction old {};
        sigaction(sig, nullptr, &old);
        if (old.sa_handler != SIG_IGN) sigaction(sig, &sa, nullptr);
    }
}

}  // namespace

const std::atomic<bool>* interrupt_flag() {
    static std::once_flag once;
    std::call_once(once, [] { handle(note_interrupt, {SIGINT, SIGTERM}); });
    return &g_interrupted;
}

vrm::traffic::TempWatcher* signal_watcher() {
    static Watcher watcher;
    static std::once_flag once;
    std::call_once(once, [] { handle(remove_pending, {SIGINT, SIGTERM, SIGHUP}); });
    return &watcher;
}

}  // namespace streamgen
