// vrm.Block and vrm.Plan, vrm.Port, and the argument helpers they share.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>
#include <system_error>

#include "traffic/Capture.h"

namespace vrmpy {

void bind_blocks(pybind11::module_& m);
void bind_ports(pybind11::module_& m);

// A frame index argument: IndexError outside frames 0 .. 2**32-1.
std::uint64_t frame_index(const pybind11::int_& i);
// A count of frames from `first`: ValueError when negative, IndexError past frame 2**32-1.
std::uint64_t frame_count(const pybind11::int_& n, std::uint64_t first);
// The bytes of a path argument (str, bytes or os.PathLike), as open() takes them.
std::string path_bytes(const pybind11::object& path);
// Raises the OSError (FileNotFoundError, ...) of a library I/O failure for `filename`.
[[noreturn]] void raise_os_error(const std::system_error& e, const pybind11::object& filename);
// Capture options from a write call's arguments: ValueError for an unknown format or threads
// outside 1 .. 256.
vrm::traffic::CaptureOptions capture_options(const std::string& format, unsigned threads, bool fcs);
// {'frames', 'bytes', 'seconds'}
pybind11::dict summary_dict(const vrm::traffic::CaptureSummary& s);

}  // namespace vrmpy
