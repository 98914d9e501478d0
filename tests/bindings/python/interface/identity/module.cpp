// The hashes of the identity program's cases, computed through Python.

#include <pybind11/pybind11.h>

#include "binary/identity/procedures.hpp"

namespace {

namespace py = pybind11;
using namespace zktarn::identity;

/// Name to hash, of every procedure whose results do not depend on the host and which Python has.
py::dict hashes() {
    py::dict all;
    for (const auto& subject : {util_procedures(), vector_procedures(), sorting_procedures()}) {
        for (const procedure& each : subject) {
            all[each.name] = hash_of(each);
        }
    }
    return all;
}

} // namespace

PYBIND11_MODULE(identity_through_python, module) {
    module.def("hashes", hashes);
}
