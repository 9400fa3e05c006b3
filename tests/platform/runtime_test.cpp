// Enumeration maps, getters by name and index, and ownership of handed-over values.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/tm_enum_map.h"
#include "support/Thrown.h"

namespace {

constexpr auto R = Message::TMG_RECV;
constexpr auto S = Message::TMG_SEND;

const tm_enum_map kModes[] = {
    {0, "INCREMENT"}, {1, "DECREMENT"}, {-7, "NEGATIVE"}, {5, "RANDOM"}, {0, nullptr}};

TEST(EnumMap, ValueToName) {
    const std::vector<std::pair<int, std::string>> cases = {
        {0, "INCREMENT"}, {1, "DECREMENT"}, {-7, "NEGATIVE"},           {5, "RANDOM"},
        {2, "2"},         {-1, "-1"},       {2147483647, "2147483647"}, {-2147483647 - 1, "-2147483648"},
    };
    for (const auto& [value, name] : cases) EXPECT_EQ(tms_enum_to_string(value, kModes), name) << value;
    EXPECT_EQ(tms_enum_to_string(3, nullptr), "3");
}

TEST(EnumMap, NameToValue) {
    const std::vector<std::pair<std::string, int>> cases = {
        {"INCREMENT", 0},
        {"RANDOM", 5},
        {"NEGATIVE", -7},
        {"42", 42},  // a number written for a value without a row
        {"-3", -3},
        {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
        {"2147483648", -1},  // does not fit
        {"99999999999999999999", -1},
        {"increment", -1},  // names are case-sensitive
        {"", -1},
        {"-", -1},
        {"12x", -1},
        {" 12", -1},
        {"+12", -1},
    };
    for (const auto& [text, value] : cases) EXPECT_EQ(tms_string_to_enum(text, kModes), value) << text;
    EXPECT_EQ(tms_string_to_enum("7", nullptr), 7);
}

TEST(Getters, MissingMemberNamesTheMemberWrongKindIsAMismatch) {
    Message m;
    m.add_member(R, "count", 3u);
    m.add_member(R, "name", std::string("x"));
    struct Case {
        const char* what;
        std::function<void()> call;
        std::string text;
    };
    const std::vector<Case> cases = {
        {"missing scalar", [&] { m.get_member_uint32(R, "absent"); }, "no member named 'absent'"},
        {"missing struct", [&] { m.get_member_struct(R, "rec"); }, "no member named 'rec'"},
        {"other group", [&] { m.get_member_uint32(S, "count"); }, "no member named 'count'"},
        {"wrong width", [&] { m.get_member_uint16(R, "count"); },
         "type mismatch: found uint32 (5), wanted uint16 (3)"},
        {"signedness", [&] { m.get_member_int32(R, "count"); },
         "type mismatch: found uint32 (5), wanted int32 (4)"},
        {"string as array", [&] { m.get_member_array(R, "name"); },
         "type mismatch: found string (10), wanted array (12)"},
    };
    for (const Case& c : cases) EXPECT_EQ(Thrown<Tm_exception>(c.call), c.text) << c.what;

    try {
        m.get_member_bool(R, "count");
        ADD_FAILURE() << "no exception";
    } catch (const Tm_type_mismatch_exception& e) {
        EXPECT_EQ(e.found(), TMV_UINT32);
        EXPECT_EQ(e.wanted(), TMV_BOOL);
        EXPECT_FALSE(e.is_message_type());
    }
    EXPECT_EQ(m.get_member_index(R, "name"), 1);
    EXPECT_EQ(m.get_member_index(R, "absent"), -1);
}

TEST(Getters, MembersAreFoundByTheirWholeName) {
    Tm_struct s;
    s.add_member("rate", 1);
    s.add_member("rateMode", 2);
    s.add_member(std::string("a\0b", 3), 3);
    const std::vector<std::tuple<const char*, int, int>> cases = {
        {"rateMode", 0, 1}, {"rate", 1, 0}, {"rat", 0, -1}, {"rateModeX", 1, -1}, {"a", 2, -1}};
    for (const auto& [name, hint, index] : cases) EXPECT_EQ(s.find_member(name, hint), index) << name;
}

TEST(Getters, ArrayChecksKindThenIndex) {
    Tm_array a;
    a.add_member(1);
    a.add_member("s");
    EXPECT_EQ(Thrown<Tm_exception>([&] { a.get_member_int32(2); }), "index 2 out of range [0, 1]");
    EXPECT_EQ(Thrown<Tm_exception>([&] { a.get_member_int32(-1); }), "index -1 out of range [0, 1]");
    EXPECT_EQ(Thrown<Tm_exception>([&] { a.get_member_string(0); }),
              "type mismatch: found int32 (4), wanted string (10)");
    EXPECT_EQ(a.get_member_string(1), "s");
}

TEST(Getters, MessageTypeMismatchNamesBothKinds) {
    const Tm_type_mismatch_exception e(Message::TMT_REQUEST, Message::TMT_RESPONSE);
    EXPECT_TRUE(e.is_message_type());
    EXPECT_STREQ(e.what(), "type mismatch: found message type request (0), wanted message type response (1)");
}

// Counts live instances, so that a test can see that handed-over values are deleted.
struct Counted : Tm_value {
    static int live;
    Counted() : Tm_value(TMV_STRING) { ++live; }
    Counted(const Counted& o) : Tm_value(o) { ++live; }
    ~Counted() override { --live; }
    Tm_value* clone() const override { return new Counted(*this); }
    bool equals(const Tm_value&) const override { return false; }
    void accept(Tm_visitor& v) const override { v.visit_string("counted"); }
};
int Counted::live = 0;

TEST(Ownership, HandedOverValuesAreDeletedOnEveryPath) {
    const char* const names[] = {"first", nullptr};
    struct Case {
        const char* what;
        std::function<void(Tm_value*)> hand_over;
        bool refused;
    };
    Message m;
    Tm_prenamed_struct p;
    p.clear(names);
    const std::vector<Case> cases = {
        {"message, bad group",
         [&](Tm_value* v) { m.add_member_and_own(static_cast<Message::TMG>(5), "x", v); }, true},
        {"prenamed struct, index outside the names",
         [&](Tm_value* v) { p.add_member_and_own(3, v, nullptr); }, true},
        {"prenamed struct, negative index", [&](Tm_value* v) { p.add_member_and_own(-1, v, nullptr); }, true},
        {"message, accepted", [&](Tm_value* v) { m.add_member_and_own(S, "x", v); }, false},
        {"struct, accepted", [&](Tm_value* v) { p.add_member_and_own(0, v, nullptr); }, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const int before = Counted::live;
        if (c.refused) {
            EXPECT_THROW(c.hand_over(new Counted), Tm_exception);
            EXPECT_EQ(Counted::live, before);
        } else {
            c.hand_over(new Counted);
            EXPECT_EQ(Counted::live, before + 1);
        }
    }
    EXPECT_EQ(p.get_member_count(), 1);
    m.clear(S);
    p.clear(names);
    EXPECT_EQ(Counted::live, 0);
    EXPECT_THROW(m.add_member_and_own(S, "null", nullptr), Tm_exception);
    EXPECT_EQ(m.get_member_count(S), 0);
}

TEST(Ownership, CopiesAreDeepAndIndependent) {
    Message a;
    auto* s = new Tm_struct;
    s->add_member("v", 1);
    a.add_member_and_own(S, "s", s);
    Message b = a;
    EXPECT_TRUE(b.equals(a));
    a.clear(S);
    EXPECT_EQ(b.get_member_struct(S, "s")->get_member_int32("v"), 1);
    EXPECT_FALSE(b.equals(a));
}

// Nodes made on one thread and freed on another, while a third keeps making and freeing its
// own: every message reads back whole.
TEST(Ownership, MessagesMadeOnOneThreadAreDroppedOnAnother) {
    Message sample;
    Tm_struct inner;
    inner.add_member("text", std::string(40, 'x'));
    inner.add_member("n", 7u);
    auto* list = new Tm_array;
    for (int i = 0; i < 20; ++i) list->add_member_and_own(inner.clone());
    sample.add_member_and_own(S, "list", list);
    const std::vector<unsigned char> bytes = tmsg::encode(sample);
    Message expected;
    tmsg::decode(bytes, expected);

    std::vector<std::unique_ptr<Message>> made(300);
    std::thread maker([&] {
        for (auto& m : made) {
            m = std::make_unique<Message>();
            tmsg::decode(bytes, *m);
        }
    });
    maker.join();
    bool allEqual = true;
    std::thread dropper([&] {
        for (auto& m : made) {
            allEqual = allEqual && m->equals(expected);
            m.reset();
        }
    });
    for (int i = 0; i < 300; ++i) {
        Message m;
        tmsg::decode(bytes, m);
        ASSERT_TRUE(m.equals(expected));
    }
    dropper.join();
    EXPECT_TRUE(allEqual);
}

// A decoded message's members borrow its name table; copies taken from it keep reading
// their names after the message is gone or has decoded something else.
TEST(Ownership, CopiesOfDecodedValuesOutliveTheirMessage) {
    Message sent;
    auto* inner = new Tm_struct;
    inner->add_member("first-name-long-enough-for-the-heap", 1);
    auto* list = new Tm_array;
    list->add_member_and_own(inner);
    sent.add_member_and_own(S, "list", list);
    auto decoded = std::make_unique<Message>();
    tmsg::decode(tmsg::encode(sent), *decoded);
    std::unique_ptr<Tm_value> item(decoded->get_member_array(R, "list")->get_member_struct(0)->clone());
    auto copy = std::make_unique<Message>(*decoded);
    tmsg::decode(tmsg::encode(Message()), *decoded);
    EXPECT_EQ(decoded->get_member_count(R), 0);
    decoded.reset();
    EXPECT_EQ(copy->get_member_array(R, "list")->get_member_struct(0)->get_member_int32(
                  "first-name-long-enough-for-the-heap"), 1);
    copy.reset();
    EXPECT_EQ(static_cast<const Tm_struct&>(*item).get_member_name(0), "first-name-long-enough-for-the-heap");
}

// However members were added (interned by a names table as they came, by hand without a
// catalog, interned in another message's catalog, or interned before the catalog was
// emptied), the send catalog holds every name once the message asks for them all.
TEST(PrenamedStruct, EveryNameReachesTheCatalog) {
    const char* const names[] = {"alpha", "beta", nullptr};
    const auto record = [&](Tm_catalog<std::string>* catalog, int index) {
        auto* p = new Tm_prenamed_struct;
        p->clear(names);
        p->add_member(index, 1, catalog);
        return p;
    };
    for (int way = 0; way < 4; ++way) {
        Message m;
        Tm_catalog<std::string>* catalog = m.get_send_member_string(S);
        Message other;
        Tm_prenamed_struct* p = way == 2 ? record(other.get_send_member_string(S), 1) : record(catalog, 0);
        if (way == 1) {
            auto* plain = new Tm_struct;
            plain->add_member("gamma", 2);
            p->add_member_and_own(1, plain, catalog);  // interns "beta", not "gamma"
        }
        auto* list = new Tm_array;
        list->add_member_and_own(record(catalog, 0));
        list->add_member_and_own(p);
        m.add_member_and_own(S, "list", list);
        if (way == 3) catalog->clear();
        ASSERT_TRUE(m.create_send_member_string_meta());
        std::vector<std::string> held = catalog->names();
        std::sort(held.begin(), held.end());
        const std::vector<std::vector<std::string>> expected = {
            {"alpha", "list"}, {"alpha", "beta", "gamma", "list"}, {"alpha", "beta", "list"}, {"alpha", "list"}};
        EXPECT_EQ(held, expected[static_cast<std::size_t>(way)]) << "way " << way;
    }
}

// Records of one table built in turn into catalogs that are fresh, shared, emptied or
// copied: each catalog holds exactly the names of the members added through it, in the
// order first met, however often the table was used before.
TEST(PrenamedStruct, EachCatalogGetsTheNamesOfItsOwnMembers) {
    const char* const names[] = {"a", "b", "c", "d", nullptr};
    using Catalog = Tm_catalog<std::string>;
    const auto build = [&](Catalog* catalog, std::vector<int> indexes) {
        Tm_prenamed_struct p;
        p.clear(names);
        for (int i : indexes) p.add_member(i, i, catalog);
    };
    Catalog one, two;
    build(&one, {0, 1});
    EXPECT_EQ(one.names(), (std::vector<std::string>{"a", "b"}));
    build(&two, {2, 0});
    EXPECT_EQ(two.names(), (std::vector<std::string>{"c", "a"}));
    build(&one, {0, 1, 2, 3});
    build(&two, {0, 1, 2, 3});
    EXPECT_EQ(one.names(), (std::vector<std::string>{"a", "b", "c", "d"}));
    EXPECT_EQ(two.names(), (std::vector<std::string>{"c", "a", "b", "d"}));
    Catalog copy = one;
    build(&copy, {3});
    EXPECT_EQ(copy.names(), one.names());
    one.clear();
    build(&one, {1});
    build(&one, {0, 1});
    EXPECT_EQ(one.names(), (std::vector<std::string>{"b", "a"}));
    Catalog moved = std::move(two);
    build(&two, {0, 1, 2, 3});
    EXPECT_EQ(two.names(), (std::vector<std::string>{"a", "b", "c", "d"}));
}

TEST(PrenamedStruct, MembersAreNamedFromTheTableAndInternedInTheCatalog) {
    const char* const names[] = {"alpha", "beta", nullptr};
    Message m;
    Tm_catalog<std::string>* catalog = m.get_send_member_string(S);
    auto* p = new Tm_prenamed_struct;
    p->clear(names);
    EXPECT_EQ(p->get_names_count(), 2);
    p->add_member(1, 5u, catalog);
    p->add_member(0, std::string("a"), catalog);
    EXPECT_EQ(Thrown<Tm_exception>([&] { p->add_member(2, 1, catalog); }), "index 2 out of range [0, 1]");
    m.add_member_and_own(S, "rec", p);
    EXPECT_EQ(catalog->names(), (std::vector<std::string>{"beta", "alpha"}));
    ASSERT_TRUE(m.create_send_member_string_meta());
    EXPECT_EQ(catalog->names(), (std::vector<std::string>{"beta", "alpha", "rec"}));
    const Tm_struct* rec = m.get_member_struct(S, "rec");
    EXPECT_EQ(rec->get_member_name(0), "beta");
    EXPECT_EQ(rec->get_member_uint32("beta"), 5u);
    m.set_use_send_member_string(false);
    EXPECT_FALSE(m.create_send_member_string_meta());
}

}  // namespace
