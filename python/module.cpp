// The Python module vrm: stream blocks, their values and frames, and the messages of the four
// modules. Library exceptions become Python exceptions with the same text: bad input
// ValueError (with the JSON path), indexes IndexError, the message runtime's refusals
// vrm.MessageError (a ValueError).
#include <pybind11/pybind11.h>

#include <exception>
#include <stdexcept>

#include "platform/Tm_exception.h"
#include "python/Blocks.h"
#include "python/Messages.h"
#include "traffic/BlockModifiers.h"
#include "traffic/JsonRecord.h"

namespace py = pybind11;

PYBIND11_MODULE(vrm, m) {
    m.doc() =
        "Stream blocks (vrm.Block: validation, modifier values, frame plans, pcap files) and the\n"
        "request and response messages of the Generator_3, ifSetup_1, Stats_1 and LoadProfile_1\n"
        "modules (vrm.request, vrm.response, vrm.parse_response, vrm.decode).";

    // Owned by the module object for the interpreter's lifetime.
    static PyObject* messageError = PyErr_NewExceptionWithDoc(
        "vrm.MessageError", "A refusal of the message runtime: malformed wire bytes, a value or message of another kind.",
        PyExc_ValueError, nullptr);
    if (messageError == nullptr) throw py::error_already_set();
    m.add_object("MessageError", py::handle(messageError));

    py::register_exception_translator([](std::exception_ptr p) {
        try {
            if (p) std::rethrow_exception(p);
        } catch (const vrm::traffic::InputError& e) {
            PyErr_SetString(PyExc_ValueError, e.line().c_str());
        } catch (const vrm::traffic::BuildError& e) {
            PyErr_SetString(PyExc_ValueError, e.what());
        } catch (const Tm_exception& e) {
            PyErr_SetString(messageError, e.what());
        }
    });

    vrmpy::bind_blocks(m);
    vrmpy::bind_ports(m);
    vrmpy::bind_analyze(m);
    vrmpy::bind_messages(m);
}
