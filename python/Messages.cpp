#include "python/Messages.h"

#include <pybind11/stl.h>

#include "platform/Tm_array.h"
#include "platform/Tm_struct.h"

namespace vrmpy {

namespace {

const std::map<std::string, ModuleMethods>& registry() {
    static const std::map<std::string, ModuleMethods> modules = [] {
        std::map<std::string, ModuleMethods> m;
        add_generator_methods(m["Generator_3"]);
        add_ifsetup_methods(m["ifSetup_1"]);
        add_stats_methods(m["Stats_1"]);
        add_loadprofile_methods(m["LoadProfile_1"]);
        return m;
    }();
    return modules;
}

std::string module_list() {
    std::string s;
    for (const auto& [name, methods] : registry()) s += (s.empty() ? "" : ", ") + name;
    return s;
}

const ModuleMethods& module_of(const std::string& module) {
    const auto it = registry().find(module);
    if (it == registry().end())
        throw std::invalid_argument("unknown module " + module + " (expected one of: " + module_list() + ")");
    return it->second;
}

const MethodOps& method_of(const std::string& module, const std::string& method) {
    const ModuleMethods& methods = module_of(module);
    const auto it = methods.find(method);
    if (it == methods.end()) {
        throw std::invalid_argument("unknown method " + module + "." + method + " (vrm.methods(\"" + module +
                                    "\") lists them)");
    }
    return it->second;
}

// Bytes of any contiguous buffer.
std::vector<unsigned char> buffer_bytes(const py::buffer& data) {
    const py::buffer_info info = data.request();
    if (info.ndim > 1 || (info.ndim == 1 && info.strides[0] != info.itemsize))
        throw std::invalid_argument("expected contiguous bytes");
    const auto* p = static_cast<const unsigned char*>(info.ptr);
    return std::vector<unsigned char>(p, p + info.size * info.itemsize);
}

Message decoded(const py::buffer& data) {
    const std::vector<unsigned char> bytes = buffer_bytes(data);
    Message m;
    tmsg::decode(bytes, m);
    return m;
}

// Builds the Python value of whatever it visits: structs as dicts, arrays as lists, binary
// as bytes, a date as microseconds, a file as {"name", "content"}, a nested message as
// {"kind", "name", "send", "receive"}.
class PyBuilder final : public Tm_visitor {
  public:
    py::object result;

    void visit_int8(int v) override { put(py::int_(v)); }
    void visit_uint8(unsigned int v) override { put(py::int_(v)); }
    void visit_int16(int v) override { put(py::int_(v)); }
    void visit_uint16(unsigned int v) override { put(py::int_(v)); }
    void visit_int32(int v) override { put(py::int_(v)); }
    void visit_uint32(unsigned int v) override { put(py::int_(v)); }
    void visit_int64(long v) override { put(py::int_(v)); }
    void visit_uint64(unsigned long v) override { put(py::int_(v)); }
    void visit_double(double v) override { put(py::float_(v)); }
    void visit_bool(bool v) override { put(py::bool_(v)); }
    void visit_string(const std::string& v) override { put(text(v)); }
    void visit_binary(const unsigned char* data, std::size_t size) override { put(bytes_of(data, size)); }
    void visit_date(long v) override { put(py::int_(v)); }
    void visit_file(const Tm_file& f) override {
        py::dict d;
        d["name"] = text(f.name());
        d["content"] = bytes_of(f.content().data(), f.content().size());
        put(std::move(d));
    }
    void visit_message(const Message& m) override {
        py::dict d = header(m);
        d["send"] = group(m, Message::TMG_SEND);
        d["receive"] = group(m, Message::TMG_RECV);
        put(std::move(d));
    }
    void begin_struct(const Tm_struct&) override { m_stack.push_back({py::dict(), m_name}); }
    void visit_member_name(const std::string& name) override { m_name = name; }
    void end_struct(const Tm_struct&) override { pop(); }
    void begin_array(const Tm_array&) override { m_stack.push_back({py::list(), m_name}); }
    void end_array(const Tm_array&) override { pop(); }

    static py::dict header(const Message& m) {
        py::dict d;
        d["kind"] = m.get_msg_type() == TMT_RESPONSE ? "response" : "request";
        d["name"] = text(m.get_request_name());
        return d;
    }
    static py::object group(const Message& m, Message::TMG g) {
        PyBuilder b;
        m.get_group(g).accept(b);
        return b.result;
    }

  private:
    struct Frame {
        py::object container;  // dict or list
        std::string key;       // its name in the holder, when the holder is a struct
    };

    void put(py::object v) {
        if (m_stack.empty()) {
            result = std::move(v);
        } else if (PyDict_Check(m_stack.back().container.ptr())) {
            m_stack.back().container[py::str(m_name)] = std::move(v);
        } else {
            m_stack.back().container.cast<py::list>().append(std::move(v));
        }
    }
    void pop() {
        Frame f = std::move(m_stack.back());
        m_stack.pop_back();
        m_name = f.key;
        put(std::move(f.container));
    }

    std::vector<Frame> m_stack;
    std::string m_name;
};

// A request of a known method: its members as records (byte values as bytes, enums by
// name), which request() and Block.from_dict take back. Anything else: the message's tree.
py::dict decode_to_py(const py::buffer& data) {
    const Message m = decoded(data);
    py::dict d = PyBuilder::header(m);
    const std::string name = m.get_request_name();
    const std::size_t dot = name.find('.');
    if (m.get_msg_type() == TMT_REQUEST && dot != std::string::npos) {
        const auto module = registry().find(name.substr(0, dot));
        if (module != registry().end()) {
            const auto method = module->second.find(name.substr(dot + 1));
            if (method != module->second.end()) {
                d["members"] = method->second.parseRequest(m);
                return d;
            }
        }
    }
    d["members"] = PyBuilder::group(m, Message::TMG_RECV);
    return d;
}

}  // namespace

namespace detail {

void check_keywords(const py::dict& kw, const std::vector<std::string>& names, const std::string& method) {
    for (const auto& item : kw) {
        const std::string key = py::str(item.first);
        bool known = false;
        for (const auto& n : names) known = known || n == key;
        if (known) continue;
        std::string expected;
        for (const auto& n : names) expected += (expected.empty() ? "" : ", ") + n;
        throw py::type_error(method + "() got an unexpected member '" + key + "' (members: " +
                             (expected.empty() ? std::string("none") : expected) + ")");
    }
}

}  // namespace detail

void bind_messages(py::module_& m) {
    m.def(
        "request",
        [](const std::string& module, const std::string& method, const py::kwargs& members) {
            return method_of(module, method).request(members);
        },
        py::arg("module"), py::arg("method"), py::pos_only(),
        "The wire bytes of a request of `module`'s `method`, its members given as keywords\n"
        "(wire member names; omitted members take their type's default). Records are dicts,\n"
        "enums their names, byte values bytes or hex text.");
    m.def(
        "response",
        [](const std::string& module, const std::string& method, const py::kwargs& members) {
            return method_of(module, method).response(members);
        },
        py::arg("module"), py::arg("method"), py::pos_only(),
        "The wire bytes of a response of `module`'s `method` (what the far side answers), its\n"
        "members given as keywords like request()'s.");
    m.def(
        "parse_response",
        [](const std::string& module, const std::string& method, const py::buffer& data) {
            const MethodOps& ops = method_of(module, method);
            return ops.parseResponse(decoded(data));
        },
        py::arg("module"), py::arg("method"), py::arg("data"),
        "The members of a response's wire bytes as Python values, by the method's description.\n"
        "Raises MessageError for malformed bytes, a request, or members of the wrong kind.");
    m.def("decode", &decode_to_py, py::arg("data"),
          "Decodes a message's wire bytes: {'kind': 'request'|'response', 'name': ..., 'members':\n"
          "{...}}. A request of a known method has its members as records, in the forms request()\n"
          "and Block.from_dict take (byte values as bytes, enums by name), so a decoded\n"
          "SetStreamBlock request is a block again; any other message its tree: structs as dicts,\n"
          "arrays as lists, binary values as bytes. Raises MessageError for malformed bytes.");
    m.def(
        "modules",
        [] {
            std::vector<std::string> names;
            for (const auto& [name, methods] : registry()) names.push_back(name);
            return names;
        },
        "The names of the modules whose messages this module builds.");
    m.def(
        "methods",
        [](const std::string& module) {
            std::vector<std::string> names;
            for (const auto& [name, ops] : module_of(module)) names.push_back(name);
            return names;
        },
        py::arg("module"), "The names of `module`'s methods, sorted.");
    m.def(
        "members",
        [](const std::string& module, const std::string& method) {
            const MethodOps& ops = method_of(module, method);
            py::dict d;
            d["request"] = ops.requestMembers;
            d["response"] = ops.responseMembers;
            return d;
        },
        py::arg("module"), py::arg("method"),
        "The member names of a method's request and response: {'request': [...], 'response': [...]}.");
}

}  // namespace vrmpy
