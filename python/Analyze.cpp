// vrm.analyze: the receiving side's verdict per stream, from a capture file or from frames.
#include <pybind11/pybind11.h>

#include <system_error>

#include "python/Blocks.h"
#include "traffic/Analyzer.h"
#include "traffic/CaptureReader.h"

namespace py = pybind11;

namespace vrmpy {

namespace {

py::list reports(const vrm::traffic::Analyzer& a) {
    py::list out;
    for (const auto& r : a.Report()) {
        py::dict d;
        vrm::traffic::for_each_figure(r, [&](const char* name, auto value) { d[name] = value; });
        out.append(d);
    }
    return out;
}

py::list analyze(const py::object& source, bool fcs) {
    const bool isPath = py::isinstance<py::str>(source) || py::isinstance<py::bytes>(source) ||
                        py::hasattr(source, "__fspath__");
    if (isPath) {
        const std::string path = path_bytes(source);
        try {
            vrm::traffic::CaptureReader reader(path);
            vrm::traffic::Analyzer a(fcs || reader.Fcs());
            {
                py::gil_scoped_release release;
                const unsigned char* data = nullptr;
                std::size_t length = 0;
                std::uint64_t ns = 0;
                while (reader.Next(data, length, ns)) a.Add(data, length, ns);
            }
            return reports(a);
        } catch (const std::system_error& e) {
            raise_os_error(e, source);
        }
    }
    // Frames: (bytes-like, receive time in ns) pairs.
    vrm::traffic::Analyzer a(fcs);
    for (const py::handle item : py::iter(source)) {
        const auto pair = py::reinterpret_borrow<py::tuple>(item);
        if (!py::isinstance<py::tuple>(item) || pair.size() != 2) {
            throw py::type_error("analyze: expected a capture's path, or (frame bytes, receive time ns) pairs");
        }
        const py::buffer_info b = py::reinterpret_borrow<py::buffer>(pair[0]).request();
        a.Add(static_cast<const unsigned char*>(b.ptr), static_cast<std::size_t>(b.size * b.itemsize),
              pair[1].cast<std::uint64_t>());
    }
    return reports(a);
}

}  // namespace

void bind_analyze(py::module_& m) {
    m.def("analyze", &analyze, py::arg("source"), py::arg("fcs") = false,
          "The receiving side's verdict, as streamgen analyze gives it (docs/analyze.md): from a\n"
          "capture's path (pcap or pcapng; str, bytes or os.PathLike) or from (frame bytes,\n"
          "receive time ns) pairs, one dict per stream with 'block', 'stream', 'frames', 'bytes',\n"
          "'first_ns', 'last_ns', 'rate', 'lost', 'duplicates', 'out_of_order', 'max_reorder' and\n"
          "'latency_{min,mean,p50,p99,p999,max}_ns' (pandas.DataFrame takes the list as it is).\n"
          "fcs=True: frames end with their frame check sequence. ValueError for a broken capture.");
}

}  // namespace vrmpy
