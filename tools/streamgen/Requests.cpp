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

void append(std::vector<unsigned char>& out, const Message& m) { vrm::traffic::append_port_request(out, tmsg::encode(m)); }

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
    const auto requests = vrm::traffic::split_port_requests(bytes);
    for (std::size_t k = 0; k < requests.size(); ++k) {
        const std::string where = vrm::traffic::element_path("requests", k);
        Message m;
        Json doc;
        try {
            tmsg::decode(reinterpret_cast<const unsigned char*>(bytes.data()) + requests[k].first, requests[k].second, m);
            if (!request_document(m, doc)) throw InputError(where, "not a request of the generator module");
        } catch (const InputError&) {
            throw;
        } catch (const std::exception& e) {
            throw InputError(where, e.what());
        }
        const std::string name = doc["name"].get<std::string>();
        if (!vrm::traffic::add_port_request(port, name, doc["members"])) {
            throw InputError(where, name + " does not configure a port");
        }
    }
    return vrm::traffic::parse_port(port.dump());
}

}  // namespace streamgen
