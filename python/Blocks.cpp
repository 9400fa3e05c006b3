// vrm.Block and vrm.Plan: a stream block read by streamgen's reader, validated and driven by
// streamgen's driver, and its frames stamped by the library's frame plan.
#include "python/Blocks.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "common/FramePlan.h"
#include "common/RangeModifier.h"
#include "common/StreamBlockModifiers.h"
#include "python/Convert.h"
#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
#include "traffic/Checksums.h"
#include "traffic/FrameShaper.h"
#include "traffic/Capture.h"

namespace vrmpy {

namespace {

using vrm::traffic::BlockInput;
using vrm::traffic::BlockModifiers;
using vrm::common::FramePlan;
using vrm::common::StreamBlockModifiers;

// Frames 0 .. 2**32-1: the library's frame indexes are 32-bit, for values, frames and pcaps alike.
constexpr std::uint64_t kFrameCount = std::uint64_t{1} << 32;

struct Block {
    BlockInput in;
    std::unique_ptr<BlockModifiers> mods;

    explicit Block(BlockInput input) : in(std::move(input)), mods(std::make_unique<BlockModifiers>(in)) {}

    void require_valid() const {
        if (!mods->Valid()) {
            std::string text = "the block is invalid:";
            for (const auto& line : mods->ValidationLines()) text += "\n" + line;
            throw std::invalid_argument(text);
        }
    }
};

// The library's modifiers of the block as streamgen's driver sets them up (host total counts,
// then validation), for what the driver does not tell: each modifier's mode and width.
std::unique_ptr<StreamBlockModifiers> library_modifiers(const BlockInput& in) {
    auto lib = std::make_unique<StreamBlockModifiers>(in.block);
    for (const auto& [modIndex, h] : in.host) {
        if (h.totalCount) {
            if (vrm::common::Modifier* m = lib->Find(modIndex)) m->SetTotalCount(*h.totalCount);
        }
    }
    lib->Validate(nullptr);
    return lib;
}

// The block's shaped frames as streamgen frames writes them: with the checksums recomputed
// (`shaper`) and as the modifiers leave them (`raw`).
struct Plan {
    std::shared_ptr<const vrm::traffic::FrameShaper> shaper;
    std::shared_ptr<const vrm::traffic::FrameShaper> raw;

    const vrm::traffic::FrameShaper& of(bool checksums) const { return checksums ? *shaper : *raw; }
    std::size_t slot() const { return shaper->MaxLength(); }
};

Plan make_plan(const Block& b) {
    b.require_valid();
    if (b.in.frame.empty()) throw vrm::traffic::InputError("baseStream.frame.data", "the frame template is empty");
    b.mods->PlaceFields(b.in);
    FramePlan frames = b.mods->MakePlan(b.in);
    vrm::traffic::ShapeOptions kept;
    kept.checksums = false;
    Plan p;
    p.shaper = std::make_shared<vrm::traffic::FrameShaper>(b.in, frames, *b.mods);
    p.raw = std::make_shared<vrm::traffic::FrameShaper>(b.in, std::move(frames), *b.mods, kept);
    return p;
}

bool less(const py::int_& a, std::uint64_t b) {
    const int r = PyObject_RichCompareBool(a.ptr(), py::int_(b).ptr(), Py_LT);
    if (r < 0) throw py::error_already_set();
    return r == 1;
}

std::string str_of(const py::int_& i) { return py::str(py::handle(i)); }

}  // namespace

// An index argument: IndexError outside frames 0 .. 2**32-1.
std::uint64_t frame_index(const py::int_& i) {
    if (less(i, 0) || !less(i, kFrameCount)) {
        throw py::index_error("frame index " + str_of(i) + " is outside the frames 0 .. " +
                              std::to_string(kFrameCount - 1));
    }
    return i.cast<std::uint64_t>();
}

// A count of frames from frame `first`: ValueError when negative, IndexError when the frames
// would go past the last one, 2**32-1.
std::uint64_t frame_count(const py::int_& n, std::uint64_t first) {
    if (less(n, 0)) throw py::value_error("count " + str_of(n) + " is negative");
    if (!less(n, kFrameCount - first + 1)) {
        throw py::index_error("count " + str_of(n) + " from frame " + std::to_string(first) +
                              " goes past the last frame, " + std::to_string(kFrameCount - 1));
    }
    return n.cast<std::uint64_t>();
}

// The bytes of a path argument (str, bytes or os.PathLike) as os.fsencode gives them; as open()
// does, TypeError for anything else and ValueError for a NUL byte, which would cut the name.
std::string path_bytes(const py::object& path) {
    std::string bytes = py::module_::import("os").attr("fsencode")(path).cast<std::string>();
    if (bytes.find('\0') != std::string::npos) throw py::value_error("embedded null byte in the path");
    return bytes;
}

// Raises the OSError of the library's I/O failure: with errno OSError picks its subclass
// (FileNotFoundError, IsADirectoryError, ...) and carries errno, strerror and `filename`.
[[noreturn]] void raise_os_error(const std::system_error& e, const py::object& filename) {
    const int code = e.code().value();
    const py::object error = py::handle(PyExc_OSError)(code, std::string(std::strerror(code)), filename);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
    throw py::error_already_set();
}

vrm::traffic::CaptureOptions capture_options(const std::string& format, unsigned threads, bool fcs) {
    vrm::traffic::CaptureOptions o;
    if (!vrm::traffic::parse_capture_format(format, o.format)) {
        throw py::value_error("format: expected pcap, pcap-ns or pcapng, got " + format);
    }
    if (threads < 1 || threads > 256) throw py::value_error("threads: expected 1 to 256");
    o.threads = threads;
    o.fcs = fcs;
    return o;
}

py::dict summary_dict(const vrm::traffic::CaptureSummary& s) {
    py::dict d;
    d["frames"] = s.frames;
    d["bytes"] = s.bytes;
    d["seconds"] = s.seconds;
    return d;
}

vrm::traffic::SendOptions send_options(const std::string& interface, const py::object& count,
                                       const py::object& duration, const py::object& rate, const std::string& tx,
                                       std::uint32_t maxBurst, bool force) {
    vrm::traffic::SendOptions o;
    o.interface = interface;
    if (!count.is_none()) {
        if (!PyLong_Check(count.ptr())) throw py::type_error("count: expected an int or None");
        const auto n = count.cast<long long>();
        if (n < 0) throw py::value_error("count: expected 0 or more");
        o.count = static_cast<std::uint64_t>(n);
    }
    if (!duration.is_none()) {
        const double s = duration.cast<double>();
        if (!(s > 0) || s > 1.8e10) throw py::value_error("duration: expected seconds above 0, at most 1.8e10");
        o.durationNs = static_cast<std::uint64_t>(s * 1e9 + 0.5);
    }
    if (py::isinstance<py::str>(rate)) {
        if (rate.cast<std::string>() != "max") throw py::value_error("rate: expected frames per second, 'max' or None");
        o.topSpeed = true;
    } else if (!rate.is_none()) {
        o.rate = rate.cast<double>();
        if (!(o.rate > 0) || o.rate > 1e10) throw py::value_error("rate: expected frames per second above 0, at most 1e10");
    }
    if (tx == "xdp") {
        o.tx = vrm::traffic::SendOptions::Tx::Xdp;
    } else if (tx == "packet") {
        o.tx = vrm::traffic::SendOptions::Tx::Packet;
    } else if (tx != "auto") {
        throw py::value_error("tx: expected 'auto', 'xdp' or 'packet', got '" + tx + "'");
    }
    if (maxBurst == 0) throw py::value_error("max_burst: expected at least 1");
    o.maxBurst = maxBurst;
    o.force = force;
    return o;
}

py::dict send_source(const vrm::traffic::FrameSource& source, vrm::traffic::SendOptions options) {
    using vrm::traffic::SendError;
    std::atomic<bool> stop{false};
    bool interrupted = false;
    options.stop = &stop;
    // Once a second, the interpreter's signals: Ctrl-C stops the sending.
    options.progress = [&](const vrm::traffic::SendCounts&) {
        py::gil_scoped_acquire gil;
        if (PyErr_CheckSignals() != 0) {
            PyErr_Clear();
            interrupted = true;
            stop.store(true);
        }
    };
    vrm::traffic::SendCounts c;
    try {
        py::gil_scoped_release release;
        c = vrm::traffic::send_frames(source, options);
    } catch (const SendError& e) {
        if (e.kind() == SendError::Kind::TooLong) throw py::value_error(e.what());
        const int code = e.kind() == SendError::Kind::Permission    ? EPERM
                         : e.kind() == SendError::Kind::NoInterface ? ENODEV
                         : e.kind() == SendError::Kind::System      ? EIO
                                                                    : ENETDOWN;
        PyErr_SetObject(code == EPERM ? PyExc_PermissionError : PyExc_OSError,
                        py::make_tuple(code, e.what()).ptr());
        throw py::error_already_set();
    }
    if (interrupted) {
        PyErr_SetNone(PyExc_KeyboardInterrupt);
        throw py::error_already_set();
    }
    py::dict d;
    d["frames"] = c.frames;
    d["bytes"] = c.bytes;
    d["seconds"] = c.seconds;
    d["mean_pps"] = c.meanRate;
    d["retries"] = c.retries;
    d["stalls"] = c.stalls;
    d["late_ns"] = py::dict(py::arg("p50") = c.lateP50, py::arg("p99") = c.lateP99, py::arg("max") = c.lateMax);
    d["longest_burst"] = c.longestBurst;
    d["interface_tx_packets"] = py::make_tuple(c.before.txPackets, c.after.txPackets);
    d["sender"] = c.sender;
    return d;
}

namespace {

// A writable C-contiguous buffer, held for the duration of a call.
class WritableBuffer {
  public:
    explicit WritableBuffer(py::handle o) {
        if (PyObject_GetBuffer(o.ptr(), &m_view, PyBUF_WRITABLE | PyBUF_C_CONTIGUOUS) != 0)
            throw py::error_already_set();
    }
    ~WritableBuffer() { PyBuffer_Release(&m_view); }
    WritableBuffer(const WritableBuffer&) = delete;
    WritableBuffer& operator=(const WritableBuffer&) = delete;
    unsigned char* data() const { return static_cast<unsigned char*>(m_view.buf); }
    std::size_t size() const { return static_cast<std::size_t>(m_view.len); }

  private:
    Py_buffer m_view{};
};

// Bytes of `count` frames of `length` bytes (count <= 2**32 and a frame of at most the 64 MiB
// of a block file keep the product within 64 bits); MemoryError beyond what an object holds.
std::size_t bytes_for(std::uint64_t count, std::size_t length) {
    const std::uint64_t need = count * length;
    if (need > static_cast<std::uint64_t>(PY_SSIZE_T_MAX)) {
        PyErr_SetString(PyExc_MemoryError, (std::to_string(count) + " frames do not fit in memory").c_str());
        throw py::error_already_set();
    }
    return static_cast<std::size_t>(need);
}

// Frames first .. first+count-1 into slots of p.slot() bytes; a slot's bytes past its frame
// are zeros.
void stamp_into(const Plan& p, std::uint64_t first, std::size_t count, unsigned char* out, bool checksums) {
    py::gil_scoped_release release;
    const vrm::traffic::FrameShaper& s = p.of(checksums);
    const std::size_t slot = p.slot();
    constexpr std::size_t kRun = 1024;
    std::uint32_t lengths[kRun];
    for (std::size_t done = 0; done < count;) {
        const std::size_t n = std::min(kRun, count - done);
        unsigned char* at = out + done * slot;
        s.Shape(first + done, n, at, slot, lengths);
        for (std::size_t k = 0; k < n; ++k) std::memset(at + k * slot + lengths[k], 0, slot - lengths[k]);
        done += n;
    }
}

py::object stamp(const Plan& p, const py::int_& firstIndex, const py::int_& countArg, const py::object& out,
                 bool checksums) {
    const std::uint64_t first = frame_index(firstIndex);
    const std::uint64_t count = frame_count(countArg, first);
    if (out.is_none()) {
        const std::size_t need = bytes_for(count, p.slot());
        PyObject* o = PyByteArray_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(need));
        if (!o) throw py::error_already_set();
        py::object result = py::reinterpret_steal<py::object>(o);
        stamp_into(p, first, static_cast<std::size_t>(count),
                   reinterpret_cast<unsigned char*>(PyByteArray_AS_STRING(o)), checksums);
        return result;
    }
    WritableBuffer buffer(out);
    const std::uint64_t need = count * p.slot();
    if (buffer.size() < need) {
        throw std::invalid_argument("the buffer holds " + std::to_string(buffer.size()) + " bytes; " +
                                    std::to_string(count) + " frames of " + std::to_string(p.slot()) +
                                    " bytes need " + std::to_string(need));
    }
    stamp_into(p, first, static_cast<std::size_t>(count), buffer.data(), checksums);
    return out;
}

py::bytes frame(const Plan& p, const py::int_& index, bool checksums) {
    const std::uint64_t i = frame_index(index);
    std::vector<unsigned char> f(p.slot());
    std::size_t length = 0;
    {
        py::gil_scoped_release release;
        length = p.of(checksums).Frame(i, f.data());
    }
    return bytes_of(f.data(), length);
}

// Frames first .. first+count-1, each as bytes of its own length.
py::list frames(const Plan& p, const py::int_& firstIndex, const py::int_& countArg, bool checksums) {
    const std::uint64_t first = frame_index(firstIndex);
    const std::uint64_t count = frame_count(countArg, first);
    constexpr std::size_t kRun = 256;
    const std::size_t slot = p.slot();
    std::vector<unsigned char> buffer(kRun * slot);
    std::uint32_t lengths[kRun];
    py::list out;
    for (std::uint64_t done = 0; done < count;) {
        const auto n = static_cast<std::size_t>(std::min<std::uint64_t>(kRun, count - done));
        {
            py::gil_scoped_release release;
            p.of(checksums).Shape(first + done, n, buffer.data(), slot, lengths);
        }
        for (std::size_t k = 0; k < n; ++k) out.append(bytes_of(buffer.data() + k * slot, lengths[k]));
        done += n;
    }
    return out;
}

double stamp_native(const Plan& p, const py::int_& firstIndex, const py::int_& countArg, std::size_t chunk) {
    const std::uint64_t first = frame_index(firstIndex);
    const std::uint64_t count = frame_count(countArg, first);
    if (chunk == 0) throw std::invalid_argument("chunk: expected at least one frame");
    std::vector<unsigned char> buffer(bytes_for(chunk, p.slot()));
    std::vector<std::uint32_t> lengths(chunk);
    py::gil_scoped_release release;
    const auto started = std::chrono::steady_clock::now();
    for (std::uint64_t done = 0; done < count;) {
        const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(chunk, count - done));
        p.shaper->Shape(first + done, n, buffer.data(), p.slot(), lengths.data());
        done += n;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

py::dict write_pcap(const Block& b, const py::object& pathArg, const py::object& countArg, unsigned threads,
                    bool checksums, const std::string& format, bool fcs) {
    const std::string path = path_bytes(pathArg);
    vrm::traffic::CaptureOptions options = capture_options(format, threads, fcs);
    std::uint64_t count = 16;
    if (!countArg.is_none()) {
        if (!PyLong_Check(countArg.ptr())) throw py::type_error("count: expected an int or None");
        count = frame_count(countArg.cast<py::int_>(), 0);
    } else if (b.in.frames) {
        count = *b.in.frames;  // a uint32 in the block file
    }
    b.require_valid();
    if (b.in.frame.empty()) throw vrm::traffic::InputError("baseStream.frame.data", "the frame template is empty");
    b.mods->PlaceFields(b.in);
    vrm::traffic::ShapeOptions shape;
    shape.checksums = checksums;
    shape.fcs = fcs;
    const vrm::traffic::FrameShaper shaper(b.in, b.mods->MakePlan(b.in), *b.mods, shape);
    vrm::traffic::CaptureSummary s;
    try {
        py::gil_scoped_release release;
        s = vrm::traffic::write_capture(path, count, shaper, options);
    } catch (const vrm::traffic::InputError&) {
        throw;
    } catch (const vrm::traffic::BuildError&) {
        throw;
    } catch (const std::system_error& e) {  // the output file's failures
        raise_os_error(e, pathArg);
    }
    return summary_dict(s);
}

// The block's frames on an interface; a block alone has no rate: as fast as it goes unless given.
py::dict send(const Block& b, const std::string& interface, const py::object& count, const py::object& duration,
              const py::object& rate, const std::string& tx, std::uint32_t maxBurst, bool force) {
    vrm::traffic::SendOptions o = send_options(interface, count, duration, rate, tx, maxBurst, force);
    if (count.is_none() && b.in.frames) o.count = *b.in.frames;
    if (o.rate == 0) o.topSpeed = true;
    b.require_valid();
    if (b.in.frame.empty()) throw vrm::traffic::InputError("baseStream.frame.data", "the frame template is empty");
    b.mods->PlaceFields(b.in);
    const vrm::traffic::FrameShaper shaper(b.in, b.mods->MakePlan(b.in), *b.mods);
    return send_source(shaper, o);
}

// The block in the file at `path` (str or os.PathLike); OSError when it cannot be read.
std::shared_ptr<Block> load(const py::object& path) {
    const std::string file = path_bytes(path);
    std::string text;
    try {
        text = vrm::traffic::read_block_text(file);
    } catch (const std::system_error& e) {
        raise_os_error(e, path);
    }
    return std::make_shared<Block>(vrm::traffic::parse_block(text));
}

std::shared_ptr<Block> from_json(const py::object& source) {
    if (py::isinstance(source, py::module_::import("os").attr("PathLike"))) return load(source);
    std::string s;
    if (py::isinstance<py::bytes>(source)) {
        s = source.cast<std::string>();
    } else if (py::isinstance<py::str>(source)) {
        s = source.cast<std::string>();
        const std::size_t start = s.find_first_not_of(" \t\r\n");
        if (start == std::string::npos || s[start] != '{') return load(source);
    } else {
        throw py::type_error("expected JSON text, a path or bytes, got a " +
                             std::string(py::str(py::type::handle_of(source).attr("__name__"))));
    }
    return std::make_shared<Block>(vrm::traffic::parse_block(s));
}

std::shared_ptr<Block> from_dict(const py::handle& d) {
    const Json j = to_json(d, "");
    return std::make_shared<Block>(vrm::traffic::parse_block(j.dump(-1, ' ', false, Json::error_handler_t::replace)));
}

py::list validation_lines(const Block& b) {
    py::list out;
    for (const auto& line : b.mods->ValidationLines()) out.append(text(line));
    return out;
}

py::dict values(Block& b, const py::int_& index) {
    const std::uint64_t i = frame_index(index);
    b.require_valid();
    py::dict out;
    std::vector<uint8_t> v;
    for (std::size_t m = 0; m < b.mods->Size(); ++m) {
        b.mods->ValueAt(m, v, static_cast<uint32_t>(i));
        out[py::int_(b.mods->ModIndex(m))] = bytes_of(v.data(), v.size());
    }
    return out;
}

// Where a modifier goes, as the block declares it: the host's field (by name or bit range),
// else the record's offsetReference; offset is the byte offset inside the field.
py::list modifiers(const Block& b) {
    const auto lib = library_modifiers(b.in);
    py::list out;
    for (std::size_t k = 0; k < lib->Size(); ++k) {
        const vrm::common::Modifier& m = lib->At(k);
        py::dict d;
        d["modIndex"] = m.GetModIndex();
        if (m.isRange()) {
            const auto& rec = static_cast<const vrm::common::RangeModifier&>(m).GetRecord();
            d["mode"] = enum_name(Generator_3_bll::em_configModMode_t, static_cast<int>(rec.mode));
        } else {
            d["mode"] = "TABLE";
        }
        d["width"] = static_cast<unsigned int>(m.GetDataSizeInBytes());
        const auto h = b.in.host.find(m.GetModIndex());
        const bool hostPlace = h != b.in.host.end() && h->second.place;
        if (hostPlace && !h->second.fieldName.empty()) {
            d["field"] = text(h->second.fieldName);
        } else if (hostPlace) {
            d["field"] = py::none();
        } else {
            d["field"] = text(m.GetOffsetReference());
        }
        d["bitOffset"] = hostPlace ? py::object(py::int_(h->second.place->bitOffset)) : py::object(py::none());
        d["bitLength"] = hostPlace ? py::object(py::int_(h->second.place->bitLength)) : py::object(py::none());
        d["offset"] = m.GetRelativeOffset();
        out.append(std::move(d));
    }
    return out;
}

}  // namespace

void bind_blocks(py::module_& m) {
    py::class_<Plan>(m, "Plan",
                     "A block's frames as the whole block describes them (modifiers, lengths, fill,\n"
                     "signature): frame i is byte for byte what streamgen frames writes for frame i,\n"
                     "checksums recomputed (checksums=False: as --checksums keep writes them). Frames\n"
                     "are 0 .. 2**32-1. Immutable; stamping releases the GIL, so threads may stamp one\n"
                     "plan at once.")
        .def_property_readonly(
            "frame_length", [](const Plan& p) { return p.slot(); },
            "Bytes of each frame's slot in stamp's output: every frame's length when the block's\n"
            "frames have one length, else the longest frame.")
        .def_property_readonly(
            "min_length", [](const Plan& p) { return p.shaper->MinFrameLength(); }, "The shortest frame's length.")
        .def_property_readonly(
            "max_length", [](const Plan& p) { return p.shaper->MaxFrameLength(); }, "The longest frame's length.")
        .def_property_readonly(
            "lengths", [](const Plan& p) { return p.shaper->LengthText(); },
            "The length settings in words, for example 'RANDOM 64..1518 seed 7'.")
        .def(
            "length",
            [](const Plan& p, const py::int_& index) { return p.shaper->LengthOf(frame_index(index)); },
            py::arg("index"), "Frame `index`'s length in bytes. Raises IndexError outside 0 .. 2**32-1.")
        .def_property_readonly(
            "cycle_length", [](const Plan& p) { return p.shaper->Plan().CycleLength(); },
            "Frames after which the frames repeat (a period, not always the shortest); 0 when it\n"
            "does not fit in 64 bits.")
        .def("stamp", &stamp, py::arg("first"), py::arg("count"), py::arg("out") = py::none(),
             py::arg("checksums") = true,
             "Frames first .. first+count-1, each in a slot of frame_length bytes (a shorter\n"
             "frame's slot ends in zeros; plan.length(i) tells its length). Without `out`, a new\n"
             "bytearray of count * frame_length bytes; with `out` (any writable C-contiguous buffer: bytearray,\n"
             "memoryview, NumPy array) the frames are written into it without a copy and `out` is\n"
             "returned. IPv4, UDP, TCP and ICMP checksums are recomputed unless checksums=False.\n"
             "Raises IndexError for a first outside 0 .. 2**32-1 or frames past 2**32-1,\n"
             "ValueError for a negative count or a buffer too small, MemoryError when the new\n"
             "bytearray cannot be allocated.")
        .def("frame", &frame, py::arg("index"), py::arg("checksums") = true,
             "Frame `index` (0 .. 2**32-1) as bytes, checksums recomputed unless checksums=False.\n"
             "Raises IndexError for an index outside.")
        .def("frames", &frames, py::arg("first"), py::arg("count"), py::arg("checksums") = true,
             "Frames first .. first+count-1 as a list of bytes, each of its own length. Raises\n"
             "like stamp.")
        .def("_stamp_native", &stamp_native, py::arg("first"), py::arg("count"), py::arg("chunk"),
             "Seconds the library takes, in C++ alone, to stamp frames first .. first+count-1 in\n"
             "chunks of `chunk` frames into one buffer (checksums recomputed): the baseline of the\n"
             "stamping benchmark.");

    py::class_<Block, std::shared_ptr<Block>>(
        m, "Block",
        "A stream block in streamgen's JSON format, its modifiers built, linked and validated by\n"
        "the library. Made by Block.from_json or Block.from_dict; a block the library refuses to\n"
        "build raises ValueError, an invalid one is made and says why in validate().")
        .def_static("from_json", &from_json, py::arg("source"),
                    "A block from JSON text (str or bytes), or from the file at a path (a str not\n"
                    "starting with '{', or an os.PathLike). Raises ValueError naming the JSON path of bad\n"
                    "input, OSError (FileNotFoundError, ... with errno and filename) when the file\n"
                    "cannot be read.")
        .def_static("from_dict", &from_dict, py::arg("block"),
                    "A block from a dict of the same form as the JSON file (bytes values may stand for\n"
                    "hex text).")
        .def("validate", &validation_lines,
             "The library's validation lines, as streamgen validate prints them; empty when valid.")
        .def_property_readonly(
            "valid", [](const Block& b) { return b.mods->Valid(); }, "Whether validate() is empty.")
        .def("values", &values, py::arg("frame"),
             "{modIndex: value bytes} of frame `frame` (0 .. 2**32-1), computed by index.\n"
             "Raises ValueError for an invalid block, IndexError for an index outside.")
        .def_property_readonly("modifiers", &modifiers,
                               "The modifiers in modIndex order: dicts of modIndex, mode (INCREMENT,\n"
                               "DECREMENT, RANDOM, SHUFFLE or TABLE), width (bytes) and the place the\n"
                               "block gives: field (the host's field name, else the record's\n"
                               "offsetReference), bitOffset and bitLength (the host's bit range, else\n"
                               "None) and offset (bytes into the field).")
        .def_property_readonly(
            "frame_template", [](const Block& b) { return bytes_of(b.in.frame.data(), b.in.frame.size()); },
            "The template frame's bytes.")
        .def_property_readonly(
            "frames", [](const Block& b) { return b.in.frames ? py::object(py::int_(*b.in.frames)) : py::none(); },
            "The host's frame count (host.frames), or None.")
        .def(
            "to_dict", [](const Block& b) { return record_to_py(b.mods->ToRpc(b.in.block)); },
            "The stream block record as the library writes it back: what a SetStreamBlock request\n"
            "carries for this block (vrm.request('Generator_3', 'SetStreamBlock', blocks=[...])).")
        .def("plan", &make_plan,
             "The frame plan. Raises ValueError for an invalid block, an empty template or a field\n"
             "the library refuses.")
        .def("send", &send, py::arg("interface"), py::arg("count") = py::none(), py::arg("duration") = py::none(),
             py::arg("rate") = py::none(), py::arg("tx") = "auto", py::arg("max_burst") = 256, py::arg("force") = false,
             "Sends frames 0 .. count-1 (count: None for host.frames, else until duration) on the\n"
             "network interface, as streamgen send does (docs/send.md): rate frames per second, or as\n"
             "fast as the interface takes them (None or 'max'). The GIL is released while sending.\n"
             "Returns the counts the kernel confirmed: {'frames', 'bytes', 'seconds', 'mean_pps',\n"
             "'retries', 'stalls', 'late_ns', 'longest_burst', 'interface_tx_packets', 'sender'}.\n"
             "OSError (PermissionError without the capability) when it cannot send, ValueError for a\n"
             "frame longer than the interface takes; Ctrl-C stops within a second (KeyboardInterrupt).")
        .def("write_pcap", &write_pcap, py::arg("path"), py::arg("count") = py::none(), py::arg("threads") = 1,
             py::arg("checksums") = true, py::arg("format") = "pcap", py::arg("fcs") = false,
             "Writes frames 0 .. count-1 to the capture file `path` (str, bytes or os.PathLike) as\n"
             "streamgen frames does (count defaults to host.frames, else 16; at most 2**32):\n"
             "checksums recomputed unless checksums=False, the file the same for any number of\n"
             "threads and in place only when complete. format: 'pcap' (microseconds), 'pcap-ns'\n"
             "or 'pcapng'; fcs=True ends every frame with its frame check sequence (wrong with\n"
             "errorFCS). Returns {'frames', 'bytes', 'seconds'}.\n"
             "Raises IndexError for a count beyond 2**32, ValueError for a negative one, OSError\n"
             "(FileNotFoundError, ... with errno and filename) when the file cannot be written.\n"
             "Releases the GIL while writing.");
}

}  // namespace vrmpy
