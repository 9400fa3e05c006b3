// vrm.Block and vrm.Plan.
#pragma once

#include <pybind11/pybind11.h>

namespace vrmpy {

void bind_blocks(pybind11::module_& m);

}  // namespace vrmpy
