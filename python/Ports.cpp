// vrm.Port: a port file's blocks at their rates, its schedule and its captures.
#include <pybind11/pybind11.h>

#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "python/Blocks.h"
#include "python/Convert.h"
#include "traffic/Capture.h"
#include "traffic/Port.h"

namespace vrmpy {

namespace {

namespace py = pybind11;
using vrm::traffic::Schedule;

struct Port {
    vrm::traffic::PortInput in;
    std::uint64_t frames = Schedule::kNoLimit;  // count limit
    std::uint64_t end = Schedule::kNoLimit;     // nanoseconds
    std::shared_ptr<const vrm::traffic::Port> port;

    std::shared_ptr<const vrm::traffic::Port> build(const vrm::traffic::ShapeOptions& o) const {
        return std::make_shared<const vrm::traffic::Port>(in, o, frames, end);
    }
};

std::shared_ptr<Port> make(vrm::traffic::PortInput in, const py::object& count, const py::object& duration) {
    auto p = std::make_shared<Port>();
    p->in = std::move(in);
    if (!count.is_none()) {
        p->frames = count.cast<std::uint64_t>();
    } else if (p->in.frames) {
        p->frames = *p->in.frames;
    }
    if (!duration.is_none()) {
        const double s = duration.cast<double>();
        if (!(s > 0) || s > 1.8e10) throw py::value_error("duration: expected seconds above 0 and at most 1.8e10");
        p->end = static_cast<std::uint64_t>(s * 1e9 + 0.5);
    }
    p->port = p->build({});
    return p;
}

std::shared_ptr<Port> from_json(const py::object& source, const py::object& count, const py::object& duration) {
    const bool pathLike = py::isinstance(source, py::module_::import("os").attr("PathLike"));
    if (!pathLike && py::isinstance<py::str>(source)) {
        const std::string s = source.cast<std::string>();
        const std::size_t start = s.find_first_not_of(" \t\r\n");
        if (start != std::string::npos && s[start] == '{') return make(vrm::traffic::parse_port(s), count, duration);
    } else if (!pathLike && py::isinstance<py::bytes>(source)) {
        return make(vrm::traffic::parse_port(source.cast<std::string>()), count, duration);
    }
    const std::string file = path_bytes(source);
    std::string text;
    try {
        text = vrm::traffic::read_block_text(file);
    } catch (const std::system_error& e) {
        raise_os_error(e, source);
    }
    return make(vrm::traffic::parse_port(text), count, duration);
}

std::shared_ptr<Port> from_dict(const py::handle& d, const py::object& count, const py::object& duration) {
    const Json j = to_json(d, "");
    return make(vrm::traffic::parse_port(j.dump(-1, ' ', false, Json::error_handler_t::replace)), count, duration);
}

// The port that a host's requests configure: each request's wire bytes after its length (32
// bits, little-endian), decoded by vrm.decode.
std::shared_ptr<Port> from_requests(const py::bytes& data, const py::object& count, const py::object& duration) {
    const std::string bytes = data;
    py::object decode = py::module_::import("vrm").attr("decode");
    Json port = Json::object();
    const auto requests = vrm::traffic::split_port_requests(bytes);
    for (std::size_t k = 0; k < requests.size(); ++k) {
        const py::object doc = decode(py::bytes(bytes.data() + requests[k].first, requests[k].second));
        const std::string name = py::str(doc.attr("get")("name"));
        Json members = to_json(doc.attr("get")("members"), "members");
        if (!vrm::traffic::add_port_request(port, name, members)) {
            throw py::value_error("requests[" + std::to_string(k) + "]: " + name + " does not configure a port");
        }
    }
    return make(vrm::traffic::parse_port(port.dump(-1, ' ', false, Json::error_handler_t::replace)), count, duration);
}

std::uint64_t total(const Port& p) {
    const std::uint64_t n = p.port->Frames();
    if (n == Schedule::kNoLimit) {
        throw py::value_error("the port sends for ever (CONTINUOUS): give count or duration");
    }
    return n;
}

// A 64-bit or 32-bit unsigned array: NumPy when it is at hand, else array.array.
py::object array_of(const std::vector<std::uint64_t>& v) {
    py::bytes raw(reinterpret_cast<const char*>(v.data()), v.size() * sizeof(std::uint64_t));
    try {
        return py::module_::import("numpy").attr("frombuffer")(raw, "uint64").attr("copy")();
    } catch (const py::error_already_set&) {
        py::object a = py::module_::import("array").attr("array")("Q");
        a.attr("frombytes")(raw);
        return a;
    }
}

py::dict schedule(const Port& p, const py::int_& firstArg, const py::object& countArg) {
    const std::uint64_t n = p.port->Frames();
    const std::uint64_t first = firstArg.cast<std::uint64_t>();
    if (first > n) throw py::index_error("frame " + std::to_string(first) + " is beyond the port's frames");
    std::uint64_t count = countArg.is_none() ? total(p) - first : countArg.cast<std::uint64_t>();
    if (count > n - first) throw py::index_error("the schedule ends before frame " + std::to_string(first + count));
    if (count > (std::uint64_t{1} << 28)) throw py::value_error("at most 2**28 entries at once");
    std::vector<Schedule::Entry> e(static_cast<std::size_t>(count));
    {
        py::gil_scoped_release release;
        p.port->Timeline().Entries(first, e.size(), e.data());
    }
    std::vector<std::uint64_t> time(e.size()), block(e.size()), index(e.size());
    for (std::size_t k = 0; k < e.size(); ++k) {
        time[k] = e[k].time;
        block[k] = e[k].block;
        index[k] = e[k].index;
    }
    py::dict d;
    d["time"] = array_of(time);
    d["block"] = array_of(block);
    d["index"] = array_of(index);
    return d;
}

py::dict write(const Port& p, const py::object& path, const std::string& format, unsigned threads, bool checksums,
               bool fcs) {
    const std::string file = path_bytes(path);
    const vrm::traffic::CaptureOptions o = capture_options(format, threads, fcs);
    vrm::traffic::ShapeOptions shape;
    shape.checksums = checksums;
    shape.fcs = fcs;
    const auto port = checksums && !fcs ? p.port : p.build(shape);
    const std::uint64_t n = total(p);
    vrm::traffic::CaptureSummary s;
    try {
        py::gil_scoped_release release;
        s = vrm::traffic::write_capture(file, n, *port, o);
    } catch (const std::system_error& e) {
        raise_os_error(e, path);
    }
    return summary_dict(s);
}

// The port's frames on an interface, at its times unless a rate is given.
py::dict send(const Port& p, const std::string& interface, const py::object& count, const py::object& duration,
              const py::object& rate, const std::string& tx, std::uint32_t maxBurst, bool force) {
    vrm::traffic::SendOptions o = send_options(interface, count, duration, rate, tx, maxBurst, force);
    o.count = std::min(o.count, p.port->Frames());
    return send_source(*p.port, o);
}

}  // namespace

void bind_ports(py::module_& m) {
    py::class_<Port, std::shared_ptr<Port>>(
        m, "Port",
        "A port: the generator's common configuration, stream blocks, load profiles and their\n"
        "bindings (docs/port.md), and the frames it sends on its exact timeline. count and\n"
        "duration (seconds) limit a port that would send for ever.")
        .def_static("from_json", &from_json, py::arg("source"), py::arg("count") = py::none(),
                    py::arg("duration") = py::none(),
                    "A port from JSON text or bytes, or from the file at a path (str or os.PathLike).\n"
                    "ValueError naming the JSON path of bad input, OSError for an unreadable file.")
        .def_static("from_dict", &from_dict, py::arg("port"), py::arg("count") = py::none(),
                    py::arg("duration") = py::none(), "A port from a dict of the file's form.")
        .def_static("from_requests", &from_requests, py::arg("data"), py::arg("count") = py::none(),
                    py::arg("duration") = py::none(),
                    "A port from the requests a host sends to configure it (SetCommonCfg, SetStreamBlock,\n"
                    "SetLoadProfile, StreamBlockLoadProfileBinding, SetTrafficSequenceTable of\n"
                    "Generator_3), each after its length (32 bits, little-endian), as streamgen requests\n"
                    "writes them. ValueError for a malformed file or another request.")
        .def_property_readonly(
            "frames",
            [](const Port& p) -> py::object {
                const std::uint64_t n = p.port->Frames();
                return n == Schedule::kNoLimit ? py::object(py::none()) : py::object(py::int_(n));
            },
            "The port's frames, or None when it sends for ever.")
        .def_property_readonly(
            "blocks",
            [](const Port& p) {
                py::list names;
                for (std::size_t b = 0; b < p.port->Blocks(); ++b) names.append(text(p.port->BlockName(b)));
                return names;
            },
            "The sending blocks' names, in the file's order (the schedule's block numbers).")
        .def("schedule", &schedule, py::arg("first") = 0, py::arg("count") = py::none(),
             "{'time', 'block', 'index'}: for frames first .. first+count-1 of the port, the\n"
             "transmit time in nanoseconds, the block (a position in blocks) and the frame's index\n"
             "in its block, as arrays (NumPy when present, else array.array). Any first, without\n"
             "walking there.")
        .def("send", &send, py::arg("interface"), py::arg("count") = py::none(), py::arg("duration") = py::none(),
             py::arg("rate") = py::none(), py::arg("tx") = "auto", py::arg("max_burst") = 256, py::arg("force") = false,
             "Sends the port's frames on the network interface at their scheduled times (or rate\n"
             "frames per second, or 'max'), as streamgen send does; the GIL is released. Returns the\n"
             "counts as Block.send does, with its errors.")
        .def("write_pcap", &write, py::arg("path"), py::arg("format") = "pcap-ns", py::arg("threads") = 1,
             py::arg("checksums") = true, py::arg("fcs") = false,
             "Writes the port's frames with their scheduled times (pcap-ns, pcapng or pcap), as\n"
             "streamgen port does. Returns {'frames', 'bytes', 'seconds'}.")
        .def(
            "write_pcapng",
            [](const Port& p, const py::object& path, unsigned threads, bool checksums, bool fcs) {
                return write(p, path, "pcapng", threads, checksums, fcs);
            },
            py::arg("path"), py::arg("threads") = 1, py::arg("checksums") = true, py::arg("fcs") = false,
            "write_pcap with format='pcapng': each frame's block named in its comment.");
}

}  // namespace vrmpy
