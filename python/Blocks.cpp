// vrm.Block and vrm.Plan: a stream block read by streamgen's reader, validated and driven by
// streamgen's driver, and its frames stamped by the library's frame plan.
#include "python/Blocks.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/FramePlan.h"
#include "common/RangeModifier.h"
#include "common/StreamBlockModifiers.h"
#include "python/Convert.h"
#include "traffic/BlockFile.h"
#include "traffic/BlockModifiers.h"
#include "traffic/Checksums.h"
#include "traffic/PcapOut.h"

namespace vrmpy {

namespace {

using vrm::traffic::BlockInput;
using vrm::traffic::BlockModifiers;
using vrm::common::FramePlan;
using vrm::common::StreamBlockModifiers;

constexpr std::uint64_t kIndexLimit = std::uint64_t{1} << 32;  // value indexes are 32-bit in the library

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

struct Plan {
    FramePlan plan;
};

Plan make_plan(const Block& b) {
    b.require_valid();
    if (b.in.frame.empty()) throw vrm::traffic::InputError("baseStream.frame.data", "the frame template is empty");
    b.mods->PlaceFields(b.in);
    return Plan{b.mods->MakePlan(b.in)};
}

std::uint64_t frame_index(const py::int_& i) {
    if (PyObject_RichCompareBool(i.ptr(), py::int_(0).ptr(), Py_LT) == 1)
        throw py::index_error("frame index " + std::string(py::str(py::handle(i))) + " is negative");
    if (PyObject_RichCompareBool(i.ptr(), py::int_(std::numeric_limits<std::uint64_t>::max()).ptr(), Py_GT) == 1)
        throw py::index_error("frame index " + std::string(py::str(py::handle(i))) + " is beyond 64 bits");
    return i.cast<std::uint64_t>();
}

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

std::size_t bytes_for(std::size_t count, std::size_t length) {
    constexpr auto kMax = static_cast<std::size_t>(PY_SSIZE_T_MAX);
    if (length != 0 && count > kMax / length)
        throw std::invalid_argument(std::to_string(count) + " frames do not fit in memory");
    return count * length;
}

void stamp_into(const FramePlan& plan, std::uint64_t first, std::size_t count, unsigned char* out) {
    py::gil_scoped_release release;
    plan.Stamp(first, count, out, plan.FrameLength());
}

py::object stamp(const Plan& p, const py::int_& firstIndex, std::size_t count, const py::object& out) {
    const std::uint64_t first = frame_index(firstIndex);
    const std::size_t need = bytes_for(count, p.plan.FrameLength());
    if (out.is_none()) {
        PyObject* o = PyByteArray_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(need));
        if (!o) throw py::error_already_set();
        py::object result = py::reinterpret_steal<py::object>(o);
        stamp_into(p.plan, first, count, reinterpret_cast<unsigned char*>(PyByteArray_AS_STRING(o)));
        return result;
    }
    WritableBuffer buffer(out);
    if (buffer.size() < need) {
        throw std::invalid_argument("the buffer holds " + std::to_string(buffer.size()) + " bytes; " +
                                    std::to_string(count) + " frames of " + std::to_string(p.plan.FrameLength()) +
                                    " bytes need " + std::to_string(need));
    }
    stamp_into(p.plan, first, count, buffer.data());
    return out;
}

py::bytes frame(const Plan& p, const py::int_& index) {
    const std::uint64_t i = frame_index(index);
    PyObject* o = PyBytes_FromStringAndSize(nullptr, static_cast<Py_ssize_t>(p.plan.FrameLength()));
    if (!o) throw py::error_already_set();
    py::bytes result = py::reinterpret_steal<py::bytes>(o);
    stamp_into(p.plan, i, 1, reinterpret_cast<unsigned char*>(PyBytes_AS_STRING(o)));
    return result;
}

double stamp_native(const Plan& p, const py::int_& firstIndex, std::uint64_t count, std::size_t chunk) {
    const std::uint64_t first = frame_index(firstIndex);
    if (chunk == 0) throw std::invalid_argument("chunk: expected at least one frame");
    std::vector<unsigned char> buffer(bytes_for(chunk, p.plan.FrameLength()));
    py::gil_scoped_release release;
    const auto started = std::chrono::steady_clock::now();
    for (std::uint64_t done = 0; done < count;) {
        const std::size_t n = static_cast<std::size_t>(std::min<std::uint64_t>(chunk, count - done));
        p.plan.Stamp(first + done, n, buffer.data(), p.plan.FrameLength());
        done += n;
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
}

py::dict write_pcap(const Block& b, const std::string& path, const py::object& countArg, unsigned threads,
                    bool checksums) {
    if (threads < 1 || threads > 256) throw std::invalid_argument("threads: expected 1 to 256");
    std::uint64_t count = 16;
    if (!countArg.is_none()) {
        if (!PyLong_Check(countArg.ptr())) throw py::type_error("count: expected an int or None");
        count = frame_index(countArg.cast<py::int_>());
    } else if (b.in.frames) {
        count = *b.in.frames;
    }
    const Plan p = make_plan(b);
    vrm::traffic::PcapSummary s;
    vrm::traffic::FrameChecksums sums(b.in.frame);
    sums.SetChangingBits(b.mods->WrittenBits(b.in));
    vrm::traffic::PcapOptions options;
    options.threads = threads;
    options.checksums = checksums ? &sums : nullptr;
    const vrm::traffic::FrameStamp stamp = [&p](std::uint64_t first, std::size_t n, unsigned char* at,
                                             std::size_t stride) { p.plan.Stamp(first, n, at, stride); };
    {
        py::gil_scoped_release release;
        s = vrm::traffic::write_pcap(path, count, p.plan.FrameLength(), stamp, options);
    }
    py::dict d;
    d["frames"] = s.frames;
    d["bytes"] = s.bytes;
    d["seconds"] = s.seconds;
    return d;
}

std::shared_ptr<Block> from_json(const py::object& source) {
    const py::module_ os = py::module_::import("os");
    if (py::isinstance(source, os.attr("PathLike"))) {
        const py::object path = os.attr("fsdecode")(source);
        return std::make_shared<Block>(vrm::traffic::load_block(path.cast<std::string>()));
    }
    std::string s;
    if (py::isinstance<py::bytes>(source)) {
        s = source.cast<std::string>();
    } else if (py::isinstance<py::str>(source)) {
        s = source.cast<std::string>();
        const std::size_t start = s.find_first_not_of(" \t\r\n");
        if (start == std::string::npos || s[start] != '{') {
            try {
                return std::make_shared<Block>(vrm::traffic::load_block(s));
            } catch (const vrm::traffic::InputError&) {
                throw;
            } catch (const std::runtime_error& e) {
                // "<file>: <reason>", whether or not the reader names the file itself.
                const std::string what = e.what();
                const std::string message = what.rfind(s + ":", 0) == 0 ? what : s + ": " + what;
                PyErr_SetString(PyExc_OSError, message.c_str());
                throw py::error_already_set();
            }
        }
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
    if (i >= kIndexLimit) throw py::index_error("frame indexes go up to " + std::to_string(kIndexLimit - 1));
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
                     "A block's frames compiled for bulk stamping: frame i is byte for byte what the\n"
                     "per-frame path (streamgen frames) writes for frame i. Immutable; stamping releases\n"
                     "the GIL, so threads may stamp one plan at once.")
        .def_property_readonly(
            "frame_length", [](const Plan& p) { return p.plan.FrameLength(); }, "Bytes per frame.")
        .def_property_readonly(
            "cycle_length", [](const Plan& p) { return p.plan.CycleLength(); },
            "Frames after which the frames repeat (a period, not always the shortest); 0 when it\n"
            "does not fit in 64 bits.")
        .def("stamp", &stamp, py::arg("first"), py::arg("count"), py::arg("out") = py::none(),
             "Frames first .. first+count-1, back to back. Without `out`, a new bytearray of\n"
             "count * frame_length bytes; with `out` (any writable C-contiguous buffer: bytearray,\n"
             "memoryview, NumPy array) the frames are written into it without a copy and `out` is\n"
             "returned. Raises IndexError for a negative first, ValueError for a buffer too small.")
        .def("frame", &frame, py::arg("index"), "Frame `index` as bytes.")
        .def("_stamp_native", &stamp_native, py::arg("first"), py::arg("count"), py::arg("chunk"),
             "Seconds the library takes, in C++ alone, to stamp frames first .. first+count-1 in\n"
             "chunks of `chunk` frames into one buffer: the baseline of the stamping benchmark.");

    py::class_<Block, std::shared_ptr<Block>>(
        m, "Block",
        "A stream block in streamgen's JSON format, its modifiers built, linked and validated by\n"
        "the library. Made by Block.from_json or Block.from_dict; a block the library refuses to\n"
        "build raises ValueError, an invalid one is made and says why in validate().")
        .def_static("from_json", &from_json, py::arg("source"),
                    "A block from JSON text, or from the file at a path (str or os.PathLike). Raises\n"
                    "ValueError naming the JSON path of bad input, OSError when the file cannot be read.")
        .def_static("from_dict", &from_dict, py::arg("block"),
                    "A block from a dict of the same form as the JSON file (bytes values may stand for\n"
                    "hex text).")
        .def("validate", &validation_lines,
             "The library's validation lines, as streamgen validate prints them; empty when valid.")
        .def_property_readonly(
            "valid", [](const Block& b) { return b.mods->Valid(); }, "Whether validate() is empty.")
        .def("values", &values, py::arg("frame"),
             "{modIndex: value bytes} of frame `frame` (0 <= frame < 2**32), computed by index.\n"
             "Raises ValueError for an invalid block, IndexError for an index out of range.")
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
        .def("write_pcap", &write_pcap, py::arg("path"), py::arg("count") = py::none(), py::arg("threads") = 1,
             py::arg("checksums") = true,
             "Writes frames 0 .. count-1 to a pcap file as streamgen frames does (count defaults to\n"
             "host.frames, else 16); the file is the same for any number of threads. Returns\n"
             "{'frames', 'bytes', 'seconds'}. Releases the GIL while writing.");
}

}  // namespace vrmpy
