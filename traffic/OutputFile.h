// An output that appears only when it is complete: the bytes go to a temporary file beside
// the target, which is renamed onto the target by Commit(). Until then an existing target is
// untouched; on failure or destruction without Commit() the temporary file is removed. The
// library installs no signal handler: a program that wants the file removed when a signal
// ends it is told the temporary name through a TempWatcher. "-" is standard output; targets
// that are not regular files (a terminal, a pipe, /dev/stdout, /dev/null) are written
// directly.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "traffic/ByteSink.h"

namespace vrm::traffic {

// Told the name of the temporary file before it exists and when it is gone (renamed or
// removed), for example to remove it from a signal handler.
class TempWatcher {
  public:
    virtual ~TempWatcher() = default;
    virtual void Creating(const std::string& path) = 0;
    virtual void Gone() = 0;
};

class OutputFile : public ByteSink {
  public:
    // Opens the temporary file (or the target itself when it is not a regular file).
    // Throws std::system_error (the errno; what() "<path>: <reason>").
    explicit OutputFile(const std::string& path, TempWatcher* watcher = nullptr);
    ~OutputFile() override;
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    // Writes all of `data`; throws std::system_error "<path>: <reason>" on failure.
    void Write(const void* data, std::size_t size) override;
    // True when the bytes go to a new regular file, which WriteAt may fill in any order.
    bool Positional() const { return !m_temp.empty(); }
    // Writes `data` at byte `offset` (Positional() outputs only); safe from several threads.
    void WriteAt(std::uint64_t offset, const void* data, std::size_t size);
    // Closes the file and renames it onto the target; throws like Write.
    void Commit();

    const std::string& Path() const { return m_path; }
    // The name to show for the output ("standard output" for "-").
    std::string Name() const;

  private:
    [[noreturn]] void Fail(int error);
    void Discard();

    std::string m_path;
    TempWatcher* m_watcher = nullptr;
    std::string m_temp;  // empty when writing the target directly
    int m_fd = -1;
    bool m_ownsFd = false;
};

// True when `a` and `b` name the same existing file ("-" names none).
bool same_file(const std::string& a, const std::string& b);

}  // namespace vrm::traffic
