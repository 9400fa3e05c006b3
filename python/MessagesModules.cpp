// The interface-setup, statistics and load-profile modules' methods.
#include "interfaces/ifSetup_Autogen_bll_methods.h"
#include "interfaces/loadProfile_1_bll_methods.h"
#include "interfaces/stats_1_bll_methods.h"
#include "python/Messages.h"

namespace vrmpy {

void add_ifsetup_methods(ModuleMethods& out) { add_catalogue(IFSETUP_1_bll::catalogue, out); }
void add_stats_methods(ModuleMethods& out) { add_catalogue(Stats_1_bll::catalogue, out); }
void add_loadprofile_methods(ModuleMethods& out) { add_catalogue(LoadProfile_1_bll::catalogue, out); }

}  // namespace vrmpy
