#include "tools/streamgen/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <stdexcept>

namespace streamgen {

namespace {

// The temporary file to remove when a signal ends the process; one at a time (a process
// writes one output at once). The handler may only use async-signal-safe calls.
constexpr std::size_t kMaxPath = 4096;
char g_pending[kMaxPath + 1];
std::atomic<bool> g_havePending{false};

extern "C" void remove_pending(int sig) {
    if (g_havePending.load()) ::unlink(g_pending);
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

void install_handlers() {
    static std::once_flag once;
    std::call_once(once, [] {
        for (int sig : {SIGINT, SIGTERM, SIGHUP}) {
            struct sigaction sa {};
            sa.sa_handler = remove_pending;
            sigemptyset(&sa.sa_mask);
            struct sigaction old {};
            sigaction(sig, nullptr, &old);
            // A signal ignored by the parent (nohup) stays ignored.
            if (old.sa_handler != SIG_IGN) sigaction(sig, &sa, nullptr);
        }
    });
}

std::string directory_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string base_of(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool starts_with(const std::string& s, const char* prefix) { return s.compare(0, std::strlen(prefix), prefix) == 0; }

// Names of the system's special files (/dev/stdout, /dev/fd/1, /proc/self/fd/1, links into
// /dev or /proc): written in place, never replaced, even when they lead to a regular file.
bool special_name(const std::string& path) {
    if (starts_with(path, "/dev/fd/") || starts_with(path, "/proc/")) return true;
    char target[kMaxPath + 1];
    const ssize_t n = ::readlink(path.c_str(), target, kMaxPath);
    if (n <= 0) return false;
    target[n] = '\0';
    return starts_with(target, "/dev/") || starts_with(target, "/proc/");
}

}  // namespace

OutputFile::OutputFile(const std::string& path) : m_path(path) {
    if (path == "-") {
        m_fd = STDOUT_FILENO;
        return;
    }
    struct stat st {};
    const bool exists = ::stat(path.c_str(), &st) == 0;
    if (exists && S_ISDIR(st.st_mode)) throw std::runtime_error(path + ": " + std::strerror(EISDIR));
    if ((exists && !S_ISREG(st.st_mode)) || special_name(path)) {
        m_fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_fd < 0) Fail(errno);
        m_ownsFd = true;
        return;
    }
    std::string temp = directory_of(path) + "/." + base_of(path) + ".XXXXXX";
    if (temp.size() > kMaxPath) throw std::runtime_error(path + ": " + std::strerror(ENAMETOOLONG));
    install_handlers();
    // The temporary name is published to the signal handler before the file exists.
    std::memcpy(g_pending, temp.c_str(), temp.size() + 1);
    m_fd = ::mkstemp(g_pending);
    if (m_fd < 0) {
        const int e = errno;
        throw std::runtime_error(path + ": " + std::strerror(e));
    }
    g_havePending.store(true);
    m_temp = g_pending;
    m_ownsFd = true;
    // mkstemp makes the file private; give it the mode a new file would get.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(m_fd, 0666 & ~mask);
}

OutputFile::~OutputFile() { Discard(); }

std::string OutputFile::Name() const { return m_path == "-" ? "standard output" : m_path; }

void OutputFile::Fail(int error) {
    Discard();
    throw std::runtime_error(Name() + ": " + std::strerror(error));
}

void OutputFile::Discard() {
    if (m_ownsFd && m_fd >= 0) ::close(m_fd);
    m_fd = -1;
    m_ownsFd = false;
    if (!m_temp.empty()) {
        ::unlink(m_temp.c_str());
        g_havePending.store(false);
        m_temp.clear();
    }
}

void OutputFile::Write(const void* data, std::size_t size) {
    if (m_fd < 0) throw std::runtime_error(Name() + ": already closed");
    const auto* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = ::write(m_fd, p, size);
        if (n < 0) {
            if (errno == EINTR) continue;
            Fail(errno);
        }
        p += n;
        size -= static_cast<std::size_t>(n);
    }
}

void OutputFile::WriteAt(std::uint64_t offset, const void* data, std::size_t size) {
    const auto* p = static_cast<const char*>(data);
    while (size > 0) {
        const ssize_t n = ::pwrite(m_fd, p, size, static_cast<off_t>(offset));
        if (n < 0) {
            if (errno == EINTR) continue;
            throw std::runtime_error(Name() + ": " + std::strerror(errno));
        }
        p += n;
        offset += static_cast<std::uint64_t>(n);
        size -= static_cast<std::size_t>(n);
    }
}

void OutputFile::Commit() {
    if (m_fd < 0) throw std::runtime_error(Name() + ": already closed");
    if (m_ownsFd) {
        const int fd = m_fd;
        m_fd = -1;
        m_ownsFd = false;
        if (::close(fd) != 0) Fail(errno);
    } else {
        m_fd = -1;
    }
    if (m_temp.empty()) return;
    if (::rename(m_temp.c_str(), m_path.c_str()) != 0) Fail(errno);
    g_havePending.store(false);
    m_temp.clear();
}

bool same_file(const std::string& a, const std::string& b) {
    if (a == "-" || b == "-") return false;
    struct stat sa {}, sb {};
    if (::stat(a.c_str(), &sa) != 0 || ::stat(b.c_str(), &sb) != 0) return false;
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

}  // namespace streamgen
