#include "traffic/BlockFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <system_error>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <stdexcept>

#include "traffic/JsonRecord.h"

namespace vrm::traffic {

namespace {

std::string line_and_column(const std::string& text, std::size_t byte) {
    std::size_t line = 1, column = 1;
    for (std::size_t i = 0; i + 1 < byte && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return "line " + std::to_string(line) + ", column " + std::to_string(column);
}

void read_host_modifier(const Json& j, const std::string& path, const std::vector<uint8_t>& frame,
                        const std::set<uint32_t>& known, uint32_t& modIndex, HostModifier& out) {
    if (!j.is_object()) throw InputError(path, "expected an object, got " + json_kind(j));
    out.path = path;
    bool haveIndex = false;
    std::optional<unsigned int> bitOffset, bitLength;
    for (const auto& item : j.items()) {
        const std::string sub = member_path(path, item.key());
        const Json& v = item.value();
        if (item.key() == "modIndex") {
            modIndex = read_integer<uint32_t>(v, sub);
            if (known.count(modIndex) == 0) {
                throw InputError(sub, "no modifier of the block has modIndex " + std::to_string(modIndex));
            }
            haveIndex = true;
        } else if (item.key() == "field") {
            if (!v.is_string()) throw InputError(sub, "expected a field name, got " + json_kind(v));
            out.fieldName = v.get<std::string>();
            FieldPlace place;
            std::string why;
            if (!resolve_field(frame, out.fieldName, place, why)) {
                throw InputError(sub, "field " + out.fieldName + " does not resolve: " + why);
            }
            out.place = place;
        } else if (item.key() == "bitOffset") {
            bitOffset = read_integer<uint32_t>(v, sub);
        } else if (item.key() == "bitLength") {
            bitLength = read_integer<uint32_t>(v, sub);
        } else if (item.key() == "totalCount") {
            out.totalCount = read_integer<uint32_t>(v, sub);
        } else {
            throw InputError(
                sub, "unknown key (expected one of: modIndex, field, bitOffset, bitLength, totalCount)");
        }
    }
    if (!haveIndex) throw InputError(member_path(path, "modIndex"), "missing");
    if (bitOffset || bitLength) {
        if (out.place) throw InputError(path, "give either field or bitOffset and bitLength, not both");
        if (!bitOffset) throw InputError(member_path(path, "bitOffset"), "missing (bitLength is given)");
        if (!bitLength) throw InputError(member_path(path, "bitLength"), "missing (bitOffset is given)");
        if (*bitLength == 0 || *bitLength > 128) {
            throw InputError(member_path(path, "bitLength"), "expected 1 to 128 bits");
        }
        const uint64_t end = static_cast<uint64_t>(*bitOffset) + *bitLength;
        if (end > frame.size() * 8u) {
            throw InputError(member_path(path, "bitOffset"),
                             "the field ends at bit " + std::to_string(end) + ", past the " +
                                 std::to_string(frame.size() * 8u) + "-bit frame template");
        }
        out.place = FieldPlace{*bitOffset, *bitLength};
    }
}

void read_host(const Json& j, const std::string& path, BlockInput& in) {
    if (!j.is_object()) throw InputError(path, "expected an object, got " + json_kind(j));
    std::set<uint32_t> known;
    for (const auto& r : in.block.rangeModifiers) known.insert(r.modIndex);
    for (const auto& t : in.block.tableModifiers) known.insert(t.modIndex);
    for (const auto& item : j.items()) {
        const std::string sub = member_path(path, item.key());
        if (item.key() == "frames") {
            in.frames = read_integer<uint32_t>(item.value(), sub);
        } else if (item.key() == "modifiers") {
            const Json& list = item.value();
            if (!list.is_array()) throw InputError(sub, "expected an array, got " + json_kind(list));
            for (std::size_t i = 0; i < list.size(); ++i) {
                const std::string ep = element_path(sub, i);
                uint32_t modIndex = 0;
                HostModifier h;
                read_host_modifier(list[i], ep, in.frame, known, modIndex, h);
                if (!in.host.emplace(modIndex, std::move(h)).second) {
                    throw InputError(member_path(ep, "modIndex"),
                                     "modIndex " + std::to_string(modIndex) + " is listed twice");
                }
            }
        } else if (item.key() == "port") {
            in.port.emplace();
            read_record(item.value(), sub, *in.port);
        } else {
            throw InputError(sub, "unknown key (expected one of: frames, modifiers, port)");
        }
    }
}

// Refuses a key that appears twice in one object (the parser would keep the last silently).
// Follows the parser's events to know the JSON path of each object.
Json::parser_callback_t duplicate_key_check() {
    struct Level {
        bool object;
        std::string path;
        std::set<std::string> keys;
        std::string key;
        std::size_t index = 0;
    };
    auto levels = std::make_shared<std::vector<Level>>();
    return [levels](int, Json::parse_event_t event, Json& parsed) {
        auto& l = *levels;
        auto next_element = [&l] {
            if (!l.empty() && !l.back().object) ++l.back().index;
        };
        switch (event) {
            case Json::parse_event_t::object_start:
            case Json::parse_event_t::array_start: {
                std::string path;
                if (!l.empty()) {
                    path = l.back().object ? member_path(l.back().path, l.back().key)
                                           : element_path(l.back().path, l.back().index);
                }
                l.push_back(Level{event == Json::parse_event_t::object_start, path, {}, {}, 0});
                break;
            }
            case Json::parse_event_t::key: {
                const std::string& key = parsed.get_ref<const std::string&>();
                if (!l.back().keys.insert(key).second) {
                    throw InputError(member_path(l.back().path, key), "duplicate key");
                }
                l.back().key = key;
                break;
            }
            case Json::parse_event_t::object_end:
            case Json::parse_event_t::array_end:
                l.pop_back();
                next_element();
                break;
            case Json::parse_event_t::value:
                next_element();
                break;
        }
        return true;
    };
}

}  // namespace

Json parse_json_document(const std::string& text) {
    if (text.size() > kMaxBlockBytes) {
        throw InputError("(document)", "larger than the limit of " + std::to_string(kMaxBlockBytes >> 20) +
                                           " MiB for a block");
    }
    Json doc;
    try {
        doc = Json::parse(text, duplicate_key_check());
    } catch (const Json::parse_error& e) {
        std::string what = e.what();
        // "[json.exception.parse_error.101] parse error at line 1, column 2: syntax error ..."
        const std::size_t colon = what.find(": ");
        const std::string detail = colon == std::string::npos ? what : what.substr(colon + 2);
        throw InputError("(document)", "invalid JSON at " + line_and_column(text, e.byte) + ": " + detail);
    } catch (const Json::exception& e) {
        // For example "[json.exception.out_of_range.406] number overflow parsing '1e999'".
        const std::string what = e.what();
        const std::size_t bracket = what.find("] ");
        const std::string detail = bracket == std::string::npos ? what : what.substr(bracket + 2);
        throw InputError("(document)", "invalid JSON: " + detail);
    }
    return doc;
}

BlockInput read_block(const Json& doc, const std::string& path, bool host) {
    BlockInput in;
    read_record(doc, path, in.block, host ? std::vector<std::string>{"host"} : std::vector<std::string>{});
    in.frame = parse_hex_text(in.block.baseStream.frame.data, member_path(path, "baseStream.frame.data"));
    if (host && doc.is_object() && doc.contains("host")) read_host(doc["host"], member_path(path, "host"), in);
    return in;
}

BlockInput parse_block(const std::string& text) {
    const Json doc = parse_json_document(text);
    const Json* block = &doc;
    std::string path;
    if (doc.is_object() && doc.contains("members") && doc.contains("name")) {
        // A request document (what decode prints): its one block.
        const Json& name = doc["name"];
        if (!name.is_string() || name.get<std::string>() != "Generator_3.SetStreamBlock") {
            throw InputError("name", "a request document gives a block only as Generator_3.SetStreamBlock");
        }
        for (const auto& item : doc.items()) {
            if (item.key() != "kind" && item.key() != "name" && item.key() != "members")
                throw InputError(item.key(), "unknown key (expected one of: kind, name, members)");
        }
        const Json& members = doc["members"];
        if (!members.is_object() || !members.contains("blocks"))
            throw InputError("members.blocks", "missing");
        const Json& blocks = members["blocks"];
        if (!blocks.is_array()) throw InputError("members.blocks", "expected an array, got " + json_kind(blocks));
        if (blocks.size() != 1) {
            throw InputError("members.blocks", "holds " + std::to_string(blocks.size()) +
                                                   " blocks; a block file is one block");
        }
        block = &blocks[0];
        path = "members.blocks[0]";
    }
    return read_block(*block, path, path.empty());
}

std::string read_block_text(const std::string& file) {
    const bool stdinput = file == "-";
    const int fd = stdinput ? STDIN_FILENO : ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) throw std::system_error(errno, std::generic_category());
    std::string text;
    char buffer[1 << 16];
    int error = 0;
    for (;;) {
        const ssize_t n = ::read(fd, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) error = errno;
        if (n <= 0) break;
        text.append(buffer, static_cast<std::size_t>(n));
        if (text.size() > kMaxBlockBytes) break;  // refused by parse_block
    }
    if (!stdinput) ::close(fd);
    if (error != 0) throw std::system_error(error, std::generic_category());
    return text;
}

BlockInput load_block(const std::string& file) { return parse_block(read_block_text(file)); }

}  // namespace vrm::traffic
