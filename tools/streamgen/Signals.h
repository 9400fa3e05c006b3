// The program's signal handling: SIGINT, SIGTERM and SIGHUP remove the temporary file of the
// output being written (the library tells its name) and then end the process as the signal
// would.
#pragma once

#include <atomic>

#include "traffic/OutputFile.h"

namespace streamgen {

// Installs the handlers (once; a signal the parent ignores stays ignored) and returns the
// watcher to give the outputs. One output at a time.
vrm::traffic::TempWatcher* signal_watcher();

// Makes SIGINT and SIGTERM set the returned flag instead of ending the process (for commands
// that stop in order and report, such as send). A signal the parent ignores stays ignored.
const std::atomic<bool>* interrupt_flag();

}  // namespace streamgen
