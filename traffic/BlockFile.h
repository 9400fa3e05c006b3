// The input of every block command: a stream block in JSON with the host's settings.
//
//   {
//     "name": "...", "blockID": 1,
//     "baseStream": {"frame": {"data": "<hex frame template>"}},
//     "rangeModifiers": [...], "tableModifiers": [...], "modLinks": [...],
//     ...                                   (any member of the stream block record)
//     "host": {                             (optional: what a host decides, not sent)
//       "frames": 1000,                     frames when no --count is given
//       "port": {"randomLengthSeed": 7, "imix": {...}},
//                                           the generator's common configuration
//                                           (genCommonCfg_s) that shapes frames
//       "modifiers": [
//         {"modIndex": 1, "field": "ipv4.src", "totalCount": 256},
//         {"modIndex": 2, "bitOffset": 272, "bitLength": 16}
//       ]
//     }
//   }
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "interfaces/generator_3_bll_records.h"
#include "traffic/FrameFields.h"

namespace vrm::traffic {

// What the host decides about one modifier.
struct HostModifier {
    std::string path;  // JSON path of the entry, for messages
    std::optional<FieldPlace> place;
    std::string fieldName;  // when the place was given by name
    std::optional<uint32_t> totalCount;
};

struct BlockInput {
    Generator_3_bll::streamBlock_s block;
    std::vector<uint8_t> frame;             // the frame template's bytes
    std::map<uint32_t, HostModifier> host;  // by modIndex
    std::optional<uint64_t> frames;
    std::optional<Generator_3_bll::genCommonCfg_s> port;  // host.port
};

// The largest block accepted, in bytes of JSON text.
constexpr std::size_t kMaxBlockBytes = std::size_t{64} << 20;

// Reads and checks `file` ("-": standard input); throws InputError (where: the JSON path) on
// bad input, including a key given twice in an object and text beyond kMaxBlockBytes, and
// std::system_error (the errno) when the file cannot be read.
BlockInput load_block(const std::string& file);
// The text of `file` ("-": standard input), reading at most a byte beyond kMaxBlockBytes.
std::string read_block_text(const std::string& file);
// Reads and checks JSON text.
BlockInput parse_block(const std::string& text);

// JSON text parsed with the checks of block files: at most kMaxBlockBytes, no key given twice
// in an object, errors with their line and column. Throws InputError.
nlohmann::ordered_json parse_json_document(const std::string& text);
// The block object `doc` found at `path` of a larger document ("blocks[2]" of a port file),
// with its own "host" section when `host` is true. Throws InputError naming JSON paths under
// `path`.
BlockInput read_block(const nlohmann::ordered_json& doc, const std::string& path, bool host = true);

}  // namespace vrm::traffic
