// The program's signal handling: SIGINT, SIGTERM and SIGHUP remove the temporary file of the
// output being written (the library tells its name) and then end the process as the signal
// would.
#pragma once

#include "traffic/OutputFile.h"

namespace streamgen {

// Installs the handlers (once; a signal the parent ignores stays ignored) and returns the
// watcher to give the outputs. One output at a time.
vrm::traffic::TempWatcher* signal_watcher();

}  // namespace streamgen
