#include "tools/streamgen/Requests.h"

#include <cstdint>
#include <exception>

#include "interfaces/generator_3_bll.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "tools/streamgen/Catalogue.h"
#include "traffic/JsonRecord.h"

namespace streamgen {

namespace {

using vrm::traffic::InputError;
using vrm::traffic::Json;

void append(std::vector<unsigned char>& out, const Message& m) {
    const std::vector<unsigned char> bytes = tmsg::encode(m);
    const auto n = static_cast<std::uint32_t>(bytes.size());
    for (int b = 0; b < 4; ++b) out.push_back(static_cast<unsigned char>(n >> (8 * b)));
    out.insert(out.end(), bytes.begin(), bytes.end());
}

}  // namespace

std::vector<unsigned char> port_requests(const vrm::traffic::PortInput& in) {
    std::vector<unsigned char> out;
    Message m;
    Generator_3_bll::create_req_SetCommonCfg(&m, in.common, true);
    append(out, m);
    std::vector<Generator_3_bll::streamBlock_s> blocks;
    for (const auto& b : in.blocks) blocks.push_back(b.block);
    Message sb;
    Generator_3_bll::create_req_SetStreamBlock(&sb, blocks, false, true);
    append(out, sb);
    if (!in.profiles.empty()) {
        Message p;
        Generator_3_bll::create_req_SetLoadProfile(&p, in.profiles, true);
        append(out, p);
    }
    if (!in.bindings.empty()) {
        Message b;
        Generator_3_bll::create_req_StreamBlockLoadProfileBinding(&b, in.bindings, true);
        append(out, b);
    }
    if (!in.sequence.empty()) {
        Message s;
        Generator_3_bll::create_req_SetTrafficSequenceTable(&s, in.sequence, true);
        append(out, s);
    }
    return out;
}

vrm::traffic::PortInput port_from_requests(const std::string& bytes) {
    Json port = Json::object();
    std::size_t at = 0;
    for (std::size_t k = 0; at < bytes.size(); ++k) {
        const std::string where = vrm::traffic::element_path("requests", k);
        if (bytes.size() - at < 4) throw InputError(where, "a length needs 4 bytes, " + std::to_string(bytes.size() - at) + " are left");
        std::uint32_t n = 0;
        for (int b = 0; b < 4; ++b) n |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[at + b])) << (8 * b);
        at += 4;
        if (n > bytes.size() - at) throw InputError(where, "a length of " + std::to_string(n) + " goes past the end of the file");
        Message m;
        Json doc;
        try {
            tmsg::decode(reinterpret_cast<const unsigned char*>(bytes.data()) + at, n, m);
            if (!request_document(m, doc)) throw InputError(where, "not a request of the generator module");
        } catch (const InputError&) {
            throw;
        } catch (const std::exception& e) {
            throw InputError(where, e.what());
        }
        at += n;
        const std::string name = doc["name"].get<std::string>();
        Json& members = doc["members"];
        auto extend = [&](const char* key, Json& list) {
            for (auto& v : list) port[key].push_back(std::move(v));
        };
        if (name == "Generator_3.SetCommonCfg") {
            port["common"] = std::move(members["config"]);
        } else if (name == "Generator_3.SetStreamBlock") {
            extend("blocks", members["blocks"]);
        } else if (name == "Generator_3.SetLoadProfile") {
            extend("loadProfiles", members["loadProfile"]);
        } else if (name == "Generator_3.StreamBlockLoadProfileBinding") {
            extend("bindings", members["binding"]);
        } else if (name == "Generator_3.SetTrafficSequenceTable") {
            extend("sequence", members["entries"]);
        } else {
            throw InputError(where, name + " does not configure a port");
        }
    }
    return vrm::traffic::parse_port(port.dump());
}

}  // namespace streamgen
