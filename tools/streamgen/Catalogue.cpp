#include "tools/streamgen/Catalogue.h"

#include <tuple>
#include <type_traits>

#include "interfaces/generator_3_bll_methods.h"
#include "platform/Message.h"
#include "platform/Tm_types.h"

namespace streamgen {

namespace {

template <class Req, class Resp>
const char* name_of(const binding::Method<Req, Resp>& m) {
    return m.name;
}
template <class Inner>
const char* name_of(const binding::Delegated<Inner>& d) {
    return name_of(*d.inner);
}

// Calls a request builder with a default value for every argument (the trailing copy flag
// included, which is then false).
template <class R, class... A>
void build_default(R (*create)(Message*, A...), Message& m) {
    create(&m, std::decay_t<A>{}...);
}

std::string kind_of(const Tm_struct& s, int i) {
    const TMV kind = s.get_member_value_type(i);
    std::string text = tmv_name(kind);
    if (kind == TMV_ARRAY) {
        const Tm_array* a = s.get_member_array(s.get_member_name(i));
        const int n = a->get_member_count();
        if (n > 0) {
            const TMV first = a->get_member_value_type(0);
            bool same = true;
            for (int k = 1; k < n; ++k) same = same && a->get_member_value_type(k) == first;
            if (same) text += std::string("<") + tmv_name(first) + ">";
        }
    }
    return text;
}

void write_members(const Tm_struct& s, int depth, std::ostream& out) {
    for (int i = 0; i < s.get_member_count(); ++i) {
        const std::string& name = s.get_member_name(i);
        out << std::string(static_cast<std::size_t>(depth) * 2, ' ') << name << ": " << kind_of(s, i) << '\n';
        if (s.get_member_value_type(i) == TMV_STRUCT)
            write_members(*s.get_member_struct(name), depth + 1, out);
    }
}

}  // namespace

std::vector<std::string> method_names() {
    std::vector<std::string> names;
    std::apply([&](const auto&... e) { (names.emplace_back(name_of(*e.desc)), ...); },
               Generator_3_bll::catalogue);
    return names;
}

bool describe_method(const std::string& method, std::ostream& out) {
    bool found = false;
    std::apply(
        [&](const auto&... e) {
            (void)((!found && method == name_of(*e.desc) && ([&] {
                  Message m;
                  build_default(e.create, m);
                  out << m.get_request_name() << " (request)\n";
                  write_members(m.get_group(Message::TMG_SEND), 1, out);
                  found = true;
              }(), true)) ||
             ...);
        },
        Generator_3_bll::catalogue);
    return found;
}

}  // namespace streamgen
