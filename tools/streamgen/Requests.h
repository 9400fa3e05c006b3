// A port as the requests a host sends to configure it: SetCommonCfg, SetStreamBlock,
// SetLoadProfile, StreamBlockLoadProfileBinding and SetTrafficSequenceTable of the generator
// module, in a file of their wire bytes, each preceded by its length (32 bits, little-endian).
#pragma once

#include <string>
#include <vector>

#include "traffic/Port.h"

namespace streamgen {

// The requests of a port (only what they carry: the host section stays behind).
std::vector<unsigned char> port_requests(const vrm::traffic::PortInput& in);

// The port the requests configure, read with the library's request parsers; the line
// settings are the defaults. Throws InputError ("requests[k]: ...") for a malformed file or a
// request that configures no port, and what the records' reader throws.
vrm::traffic::PortInput port_from_requests(const std::string& bytes);

}  // namespace streamgen
