// vrm.Block and vrm.Plan, vrm.Port, and the argument helpers they share.
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>
#include <system_error>

#include "traffic/Capture.h"
#include "traffic/FrameSource.h"
#include "traffic/Send.h"

namespace vrmpy {

void bind_blocks(pybind11::module_& m);
void bind_ports(pybind11::module_& m);
void bind_analyze(pybind11::module_& m);

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

// Send options from a send call's arguments (count None: all; duration None: no limit; rate
// None, a number of frames per second or 'max'; tx 'auto', 'xdp' or 'packet'). ValueError for
// a bad one.
vrm::traffic::SendOptions send_options(const std::string& interface, const pybind11::object& count,
                                       const pybind11::object& duration, const pybind11::object& rate,
                                       const std::string& tx, std::uint32_t maxBurst, bool force);
// Sends with the GIL released and returns the counts as a dict; the send errors as OSError
// (PermissionError for a missing capability) or ValueError (a frame too long). Ctrl-C stops the
// sending within about a second and raises KeyboardInterrupt.
pybind11::dict send_source(const vrm::traffic::FrameSource& source, vrm::traffic::SendOptions options);

}  // namespace vrmpy
