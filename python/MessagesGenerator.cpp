// The generator module's methods (its own and those it delegates), in their own unit: the
// catalogue is the largest and pybind11 is heavy to compile.
#include "interfaces/generator_3_bll_methods.h"
#include "python/Messages.h"

namespace vrmpy {

void add_generator_methods(ModuleMethods& out) { add_catalogue(Generator_3_bll::catalogue, out); }

}  // namespace vrmpy
