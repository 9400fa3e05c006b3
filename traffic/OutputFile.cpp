#include "traffic/OutputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <random>
#include <stdexcept>

namespace vrm::traffic {

namespace {

constexpr std::size_t kMaxPath = 4096;

// Six characters for a temporary name, from a generator of the calling thread.
std::string random_suffix() {
    static const char kChars[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    thread_local std::mt19937_64 generator{std::random_device{}() ^
                                           (static_cast<std::uint64_t>(::getpid()) << 32) ^
                                           reinterpret_cast<std::uintptr_t>(&generator)};
    std::string s(6, 'x');
    for (char& c : s) c = kChars[generator() % (sizeof kChars - 1)];
    return s;
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

OutputFile::OutputFile(const std::string& path, TempWatcher* watcher) : m_path(path), m_watcher(watcher) {
    if (path == "-") {
        m_fd = STDOUT_FILENO;
        return;
    }
    struct stat st {};
    const bool exists = ::stat(path.c_str(), &st) == 0;
    if (exists && S_ISDIR(st.st_mode)) throw std::system_error(EISDIR, std::generic_category(), path);
    if ((exists && !S_ISREG(st.st_mode)) || special_name(path)) {
        m_fd = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
        if (m_fd < 0) Fail(errno);
        m_ownsFd = true;
        return;
    }
    const std::string stem = directory_of(path) + "/." + base_of(path) + ".";
    if (stem.size() + 6 > kMaxPath) throw std::system_error(ENAMETOOLONG, std::generic_category(), path);
    // A new name each try; the file gets the mode any new file gets (0666 less the umask).
    for (int attempt = 0; attempt < 100 && m_fd < 0; ++attempt) {
        std::string temp = stem + random_suffix();
        if (m_watcher != nullptr) m_watcher->Creating(temp);  // known before the file exists
        m_fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (m_fd >= 0) {
            m_temp = std::move(temp);
        } else if (errno != EEXIST) {
            const int e = errno;
            if (m_watcher != nullptr) m_watcher->Gone();
            throw std::system_error(e, std::generic_category(), path);
        }
    }
    if (m_fd < 0) {
        if (m_watcher != nullptr) m_watcher->Gone();
        throw std::system_error(EEXIST, std::generic_category(), path);
    }
    m_ownsFd = true;
}

OutputFile::~OutputFile() { Discard(); }

std::string OutputFile::Name() const { return m_path == "-" ? "standard output" : m_path; }

void OutputFile::Fail(int error) {
    Discard();
    throw std::system_error(error, std::generic_category(), Name());
}

void OutputFile::Discard() {
    if (m_ownsFd && m_fd >= 0) ::close(m_fd);
    m_fd = -1;
    m_ownsFd = false;
    if (!m_temp.empty()) {
        ::unlink(m_temp.c_str());
        if (m_watcher != nullptr) m_watcher->Gone();
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
            throw std::system_error(errno, std::generic_category(), Name());
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
    if (m_watcher != nullptr) m_watcher->Gone();
    m_temp.clear();
}

bool same_file(const std::string& a, const std::string& b) {
    if (a == "-" || b == "-") return false;
    struct stat sa {}, sb {};
    if (::stat(a.c_str(), &sa) != 0 || ::stat(b.c_str(), &sb) != 0) return false;
    return sa.st_dev == sb.st_dev && sa.st_ino == sb.st_ino;
}

}  // namespace vrm::traffic
