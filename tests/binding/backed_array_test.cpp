// Arrays over a caller's scalars: reading, refusals, and travelling through the codec.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "binding/Tm_backed_array.h"
#include "platform/Message.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "platform/Tm_json.h"
#include "support/Thrown.h"

namespace {

constexpr auto R = Message::TMG_RECV;
constexpr auto S = Message::TMG_SEND;

// Reads element i of an array with the getter of `kind`, widened to long.
long read_as_long(const Tm_array& a, TMV kind, int i) {
    switch (kind) {
        case TMV_INT8:
            return a.get_member_int8(i);
        case TMV_UINT8:
            return a.get_member_uint8(i);
        case TMV_INT16:
            return a.get_member_int16(i);
        case TMV_UINT16:
            return a.get_member_uint16(i);
        case TMV_INT32:
            return a.get_member_int32(i);
        case TMV_UINT32:
            return static_cast<long>(a.get_member_uint32(i));
        case TMV_INT64:
            return a.get_member_int64(i);
        case TMV_UINT64:
            return static_cast<long>(a.get_member_uint64(i));
        case TMV_BOOL:
            return a.get_member_bool(i) ? 1 : 0;
        default:
            return -999;
    }
}

// One element row: the kind, the values as the caller holds them (as long), and makers of
// the view and copy forms over a vector built from those values.
struct Row {
    const char* what;
    TMV kind;
    std::vector<long> values;
    // Builds the caller's vector (kept alive in `keep`) and returns an array over it.
    std::function<Tm_array*(std::shared_ptr<void>& keep, bool copy)> make;
};

template <class T>
Row row(const char* what, std::vector<long> values) {
    Row r{what, Tm_scalar_kind<T>::value, values, nullptr};
    r.make = [values](std::shared_ptr<void>& keep, bool copy) {
        auto v = std::make_shared<std::vector<T>>();
        for (long x : values) v->push_back(static_cast<T>(x));
        keep = v;
        return make_scalar_array(*v, copy);
    };
    return r;
}

const std::vector<Row>& rows() {
    static const std::vector<Row> table = {
        row<signed char>("int8", {-128, -1, 0, 127}),
        row<unsigned char>("uint8", {0, 128, 255}),
        row<short>("int16", {-32768, -2, 32767}),
        row<unsigned short>("uint16", {0, 40000, 65535}),
        row<int>("int32", {-2147483647L - 1, 5, 2147483647L}),
        row<unsigned int>("uint32", {0, 4000000000L}),
        row<long>("int64", {-9000000000000000000L, 0, 9000000000000000000L}),
        row<unsigned long>("uint64", {0, -1 /* all ones */, 12345}),
        row<bool>("bool", {1, 0, 0, 1, 1}),
    };
    return table;
}

TEST(BackedArray, EachRowReadsItsElementsInBothForms) {
    for (const Row& r : rows()) {
        for (bool copy : {false, true}) {
            SCOPED_TRACE(std::string(r.what) + (copy ? " copy" : " view"));
            std::shared_ptr<void> keep;
            std::unique_ptr<Tm_array> a(r.make(keep, copy));
            ASSERT_EQ(a->get_member_count(), static_cast<int>(r.values.size()));
            EXPECT_EQ(a->get_value_type(), TMV_ARRAY);
            for (int i = 0; i < a->get_member_count(); ++i) {
                EXPECT_EQ(a->get_member_value_type(i), r.kind);
                EXPECT_EQ(read_as_long(*a, r.kind, i), r.values[static_cast<size_t>(i)]);
            }
            std::unique_ptr<Tm_value> c(a->clone());
            const auto& ca = static_cast<const Tm_array&>(*c);
            ASSERT_EQ(ca.get_member_count(), a->get_member_count());
            EXPECT_EQ(read_as_long(ca, r.kind, 0), r.values[0]);
        }
    }
}

// Both forms encode and render as a plain array of the same items, and decode into one.
TEST(BackedArray, EncodesExactlyLikeAPlainArrayOfTheSameItems) {
    for (const Row& r : rows()) {
        for (bool copy : {false, true}) {
            SCOPED_TRACE(std::string(r.what) + (copy ? " copy" : " view"));
            std::shared_ptr<void> keep;
            Message backed, plain;
            backed.add_member_and_own(S, "data", r.make(keep, copy));
            plain.add_member_and_own(S, "data", new Tm_array(*backed.get_member_array(S, "data")));
            EXPECT_EQ(tmsg::encode(backed), tmsg::encode(plain));
            EXPECT_EQ(tmsg::to_json(backed), tmsg::to_json(plain));
            Message received;
            tmsg::decode(tmsg::encode(backed), received);
            EXPECT_TRUE(received.get_member_array(R, "data")->equals(*plain.get_member_array(S, "data")));
        }
    }
}

TEST(BackedArray, ViewFollowsTheCallersVectorCopyDoesNot) {
    std::vector<int> v{1, 2, 3};
    std::unique_ptr<Tm_array> view(make_scalar_array(v, false));
    std::unique_ptr<Tm_array> copy(make_scalar_array(v, true));
    v[1] = 20;
    EXPECT_EQ(view->get_member_int32(1), 20);
    EXPECT_EQ(copy->get_member_int32(1), 2);

    std::vector<bool> b{false, false};
    std::unique_ptr<Tm_array> bview(make_scalar_array(b, false));
    std::unique_ptr<Tm_array> bcopy(make_scalar_array(b, true));
    b[0] = true;
    EXPECT_TRUE(bview->get_member_bool(0));
    EXPECT_FALSE(bcopy->get_member_bool(0));
}

TEST(BackedArray, TypeIsCheckedBeforeTheIndex) {
    std::vector<bool> bits{true};
    std::vector<int> ints{1, 2};
    for (bool copy : {false, true}) {
        SCOPED_TRACE(copy ? "copy" : "view");
        std::unique_ptr<Tm_array> b(make_scalar_array(bits, copy));
        std::unique_ptr<Tm_array> i(make_scalar_array(ints, copy));
        EXPECT_TRUE(b->get_member_bool(0));
        struct Case {
            const Tm_array* array;
            std::function<void(const Tm_array&)> call;
            int found, wanted;
        };
        const std::vector<Case> mismatches = {
            {b.get(), [](const Tm_array& a) { a.get_member_uint8(0); }, TMV_BOOL, TMV_UINT8},
            {b.get(), [](const Tm_array& a) { a.get_member_uint8(99); }, TMV_BOOL, TMV_UINT8},
            {i.get(), [](const Tm_array& a) { a.get_member_double(0); }, TMV_INT32, TMV_DOUBLE},
            {i.get(), [](const Tm_array& a) { a.get_member_int64(-1); }, TMV_INT32, TMV_INT64},
            {i.get(), [](const Tm_array& a) { a.get_member_uint32(0); }, TMV_INT32, TMV_UINT32},
        };
        for (const Case& c : mismatches) {
            try {
                c.call(*c.array);
                ADD_FAILURE() << "no exception";
            } catch (const Tm_type_mismatch_exception& e) {
                EXPECT_EQ(e.found(), c.found);
                EXPECT_EQ(e.wanted(), c.wanted);
            }
        }
        for (int index : {-1, 2, 1000}) {
            try {
                i->get_member_int32(index);
                ADD_FAILURE() << "no exception";
            } catch (const Tm_out_of_range_exception& e) {
                EXPECT_EQ(e.index(), index);
                EXPECT_EQ(e.low(), 0);
                EXPECT_EQ(e.high(), 1);
            }
        }
    }
}

// Visits items of a given tag and records what the visitor received.
struct Recorder : Tm_visitor {
    std::vector<std::string> seen;
    void visit_int8(int v) override { seen.push_back("int8 " + std::to_string(v)); }
    void visit_uint8(unsigned int v) override { seen.push_back("uint8 " + std::to_string(v)); }
    void visit_int16(int v) override { seen.push_back("int16 " + std::to_string(v)); }
    void visit_uint16(unsigned int v) override { seen.push_back("uint16 " + std::to_string(v)); }
    void visit_int32(int v) override { seen.push_back("int32 " + std::to_string(v)); }
    void visit_uint32(unsigned int v) override { seen.push_back("uint32 " + std::to_string(v)); }
    void visit_int64(long v) override { seen.push_back("int64 " + std::to_string(v)); }
    void visit_uint64(unsigned long v) override { seen.push_back("uint64 " + std::to_string(v)); }
    void visit_double(double v) override { seen.push_back("double " + std::to_string(v)); }
    void visit_bool(bool v) override { seen.push_back(v ? "bool true" : "bool false"); }
    void visit_string(const std::string&) override { seen.push_back("string"); }
    void visit_binary(const unsigned char*, std::size_t) override { seen.push_back("binary"); }
    void visit_date(long) override { seen.push_back("date"); }
    void visit_file(const Tm_file&) override { seen.push_back("file"); }
    void visit_message(const Message&) override { seen.push_back("message"); }
    void begin_struct(const Tm_struct&) override { seen.push_back("{"); }
    void visit_member_name(const std::string&) override {}
    void end_struct(const Tm_struct&) override { seen.push_back("}"); }
    void begin_array(const Tm_array&) override { seen.push_back("["); }
    void end_array(const Tm_array&) override { seen.push_back("]"); }
};

TEST(BackedArray, EmptyRangeRefusesEveryIndex) {
    const std::vector<unsigned char> empty;
    for (bool copy : {false, true}) {
        SCOPED_TRACE(copy ? "copy" : "view");
        std::unique_ptr<Tm_array> a(make_scalar_array(empty, copy));
        EXPECT_EQ(a->get_member_count(), 0);
        const std::vector<std::function<void(const Tm_array&)>> calls = {
            [](const Tm_array& x) { x.get_member_uint8(0); },
            [](const Tm_array& x) { x.get_member_value_type(0); },
            [](const Tm_array& x) { x.get_member_uint8(-1); },
            [](const Tm_array& x) {
                Recorder ignore;
                x.item_accept(0, ignore);
            },
        };
        for (const auto& call : calls) {
            try {
                call(*a);
                ADD_FAILURE() << "no exception";
            } catch (const Tm_out_of_range_exception& e) {
                EXPECT_EQ(e.low(), 0);
                EXPECT_EQ(e.high(), -1);
            }
        }
        // Sent as an empty array member, not left out.
        Message sent;
        sent.add_member_and_own(S, "none", a.release());
        Message received;
        tmsg::decode(tmsg::encode(sent), received);
        EXPECT_EQ(received.get_member_array(R, "none")->get_member_count(), 0);
    }
}

TEST(BackedArray, MutationsAndNonScalarGettersAreRefusedWithTheirNames) {
    std::vector<short> v{1};
    for (bool copy : {false, true}) {
        SCOPED_TRACE(copy ? "copy" : "view");
        std::unique_ptr<Tm_array> a(make_scalar_array(v, copy));
        Tm_binary bin;
        Tm_int32 boxed(1);
        const std::vector<std::pair<std::function<void(Tm_array&)>, std::string>> refusals = {
            {[](Tm_array& x) { x.clear(); }, "clear"},
            {[](Tm_array& x) { x.add_member(static_cast<signed char>(1)); }, "add_member"},
            {[](Tm_array& x) { x.add_member(static_cast<unsigned char>(1)); }, "add_member"},
            {[](Tm_array& x) { x.add_member(static_cast<short>(1)); }, "add_member"},
            {[](Tm_array& x) { x.add_member(static_cast<unsigned short>(1)); }, "add_member"},
            {[](Tm_array& x) { x.add_member(1); }, "add_member"},
            {[](Tm_array& x) { x.add_member(1u); }, "add_member"},
            {[](Tm_array& x) { x.add_member(1L); }, "add_member"},
            {[](Tm_array& x) { x.add_member(1uL); }, "add_member"},
            {[](Tm_array& x) { x.add_member(1.0); }, "add_member"},
            {[](Tm_array& x) { x.add_member(true); }, "add_member"},
            {[](Tm_array& x) { x.add_member("text"); }, "add_member"},
            {[](Tm_array& x) { x.add_member(std::string("text")); }, "add_member"},
            {[&](Tm_array& x) { x.add_member(&bin); }, "add_member"},
            {[](Tm_array& x) { x.add_member(static_cast<const unsigned char*>(nullptr), 0u); }, "add_member"},
            {[](Tm_array& x) { x.add_member(std::string("text"), 2u); }, "add_member"},
            {[&](Tm_array& x) { x.add_member(static_cast<const Tm_value*>(&boxed)); }, "add_member"},
            {[](Tm_array& x) { x.add_member_and_own(new Tm_string("owned")); }, "add_member_and_own"},
            {[](Tm_array& x) { x.get_member_string(0); }, "get_member_string"},
            {[](Tm_array& x) { x.get_member_array(0); }, "get_member_array"},
            {[](Tm_array& x) { x.get_member_struct(0); }, "get_member_struct"},
            {[](Tm_array& x) { x.get_member_date(0); }, "get_member_date"},
            {[](Tm_array& x) { x.get_member_binary(0); }, "get_member_binary"},
            {[](Tm_array& x) { x.get_member_file(0); }, "get_member_file"},
            {[](Tm_array& x) { x.get_member_message(0); }, "get_member_message"},
        };
        for (const auto& [call, name] : refusals) {
            EXPECT_EQ(Thrown<Tm_exception>([&] { call(*a); }), name + "() is not supported by backed arrays");
        }
        EXPECT_EQ(a->get_member_count(), 1);
        EXPECT_EQ(a->get_member_int16(0), 1);
    }
}

TEST(BackedArray, ReserveIsRefusedOnlyByTheView) {
    std::vector<int> v{1, 2};
    std::unique_ptr<Tm_array> view(make_scalar_array(v, false));
    std::unique_ptr<Tm_array> copy(make_scalar_array(v, true));
    EXPECT_EQ(Thrown<Tm_exception>([&] { view->reserve(10); }), "reserve() is not supported by backed arrays");
    EXPECT_EQ(Thrown<Tm_exception>([&] { copy->reserve(10); }), "(nothing thrown)");
    EXPECT_EQ(copy->get_member_count(), 2);
}

TEST(BackedArray, NeverEqualNotEvenToItself) {
    std::vector<unsigned char> v{1, 2};
    std::unique_ptr<Tm_array> view(make_scalar_array(v, false));
    std::unique_ptr<Tm_array> copy(make_scalar_array(v, true));
    Tm_array plain(*view);
    EXPECT_FALSE(view->equals(*view));
    EXPECT_FALSE(copy->equals(*copy));
    EXPECT_FALSE(view->equals(plain));
    EXPECT_FALSE(plain.equals(*view));
    EXPECT_TRUE(plain.equals(Tm_array(*copy)));
}

TEST(BackedArray, ItemAcceptWidensByTheTag) {
    const std::vector<int> values{-1, 200};
    struct Case {
        TMV tag;
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases = {
        {TMV_INT8, {"int8 -1", "int8 -56"}},
        {TMV_UINT8, {"uint8 255", "uint8 200"}},
        {TMV_INT16, {"int16 -1", "int16 200"}},
        {TMV_UINT16, {"uint16 65535", "uint16 200"}},
        {TMV_INT32, {"int32 -1", "int32 200"}},
        {TMV_UINT32, {"uint32 4294967295", "uint32 200"}},
        {TMV_INT64, {"int64 -1", "int64 200"}},
        {TMV_UINT64, {"uint64 18446744073709551615", "uint64 200"}},
        {TMV_DOUBLE, {"double -1.000000", "double 200.000000"}},
        {TMV_BOOL, {"bool true", "bool true"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(tmv_name(c.tag));
        Tm_vector_backed_array<int> view(values.begin(), 2, c.tag);
        Tm_vector_copy_backed_array<int> copy(values.begin(), 2, c.tag);
        for (const Tm_array* a : {static_cast<const Tm_array*>(&view), static_cast<const Tm_array*>(&copy)}) {
            Recorder r;
            a->accept(r);
            std::vector<std::string> expected{"["};
            expected.insert(expected.end(), c.expected.begin(), c.expected.end());
            expected.push_back("]");
            EXPECT_EQ(r.seen, expected);
        }
    }
    const std::vector<bool> bits{false, true};
    Tm_vector_backed_array<bool> b(bits.begin(), 2, TMV_BOOL);
    Recorder r;
    b.item_accept(0, r);
    b.item_accept(1, r);
    EXPECT_EQ(r.seen, (std::vector<std::string>{"bool false", "bool true"}));
}

TEST(BackedArray, NonScalarTagIsRefusedWhenVisited) {
    const std::vector<int> values{1};
    Tm_vector_backed_array<int> view(values.begin(), 1, TMV_STRING);
    Tm_vector_copy_backed_array<int> copy(values.begin(), 1, TMV_STRUCT);
    Recorder r;
    const std::string text = "invalid use of Tm_backed_array: supports only simple TMV types";
    EXPECT_EQ(Thrown<Tm_exception>([&] { view.item_accept(0, r); }), text);
    EXPECT_EQ(Thrown<Tm_exception>([&] { copy.item_accept(0, r); }), text);
    EXPECT_TRUE(r.seen.empty());
    // The index is checked first.
    EXPECT_EQ(Thrown<Tm_exception>([&] { view.item_accept(1, r); }), "index 1 out of range [0, 0]");
}

}  // namespace
