#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "interfaces/loadProfile_1_bll.h"
#include "interfaces/loadProfile_1_bll_methods.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

namespace lp = LoadProfile_1_bll;
using testing_support::Layout;

namespace {

// Replaces every occurrence of `from` by `to` (same length) in encoded bytes.
void replace_text(std::vector<unsigned char>& bytes, const std::string& from, const std::string& to) {
    ASSERT_EQ(from.size(), to.size());
    int found = 0;
    for (auto it = bytes.begin();
         (it = std::search(it, bytes.end(), from.begin(), from.end())) != bytes.end();) {
        it = std::copy(to.begin(), to.end(), it);
        ++found;
    }
    ASSERT_GT(found, 0) << from;
}

TEST(LoadProfileRecords, RoundTripThroughTheWire) {
    testing_support::check_records<lp::loadProfile_s, lp::streamBlockLoadProfileBinding_s>();
}

TEST(LoadProfileMethods, EveryMethodLoopsBackWithoutARequestName) {
    testing_support::check_catalogue(lp::catalogue, "");
}

// The far side must notice a parser that drops what was answered.
void parse_nothing(const Message*, std::vector<lp::loadProfile_s>*) {}
constexpr auto kBrokenGet =
    binding::entry(lp::methods::GetLoadProfile, &lp::create_req_GetLoadProfile, &parse_nothing);

TEST(LoadProfileMethods, LoopbackNoticesAParserThatReadsNothing) {
    EXPECT_NONFATAL_FAILURE(
        testing_support::loop_method(kBrokenGet, "", true, std::make_tuple(std::vector<uint32_t>{1}),
                                     std::make_tuple(std::vector<lp::loadProfile_s>(1))),
        "response member 'loadProfile'");
}

TEST(LoadProfileMethods, BuildersLeaveSendMemberStringsAlone) {
    testing_support::for_each_entry(lp::catalogue, [](const auto& e) {
        SCOPED_TRACE(e.desc->name);
        Message m;
        m.set_use_send_member_string(false);
        EXPECT_FALSE(testing_support::build_generated(e, &m, true, 3));
        EXPECT_FALSE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_request_name(), "");
    });
}

TEST(LoadProfileMethods, BuilderReplacesEarlierMembersAndRequestKind) {
    Message m;
    m.set_msg_type(TMT_RESPONSE);
    m.add_member(TMG_SEND, "stale", 1u);
    lp::create_req_RemoveLoadProfile(&m, {1, 2}, true);
    EXPECT_EQ(m.get_msg_type(), TMT_REQUEST);
    EXPECT_EQ(testing_support::layout(m), (Layout{{"loadProfileIds", TMV_ARRAY}}));
}

TEST(LoadProfileMethods, ResponseOfRequestKindThrowsAndLeavesOutputs) {
    lp::loadProfile_s sentinel;
    sentinel.loadProfileId = 77;
    Message m;
    lp::create_req_SetLoadProfile(&m, {sentinel}, true);
    Message in;
    tmsg::decode(tmsg::encode(m), in);  // a request, not a response
    std::vector<lp::loadProfile_s> out{sentinel, sentinel};
    EXPECT_THROW(lp::parse_resp_GetLoadProfile(&in, &out), Tm_type_mismatch_exception);
    EXPECT_EQ(out, (std::vector<lp::loadProfile_s>{sentinel, sentinel}));
    EXPECT_THROW(lp::parse_resp_SetLoadProfile(&in), Tm_type_mismatch_exception);
}

TEST(LoadProfileMethods, ParsingReplacesAnEarlierVector) {
    lp::loadProfile_s one;
    one.loadProfileId = 5;
    one.loadUnit = lp::rateUnit_t::L2_RATE;
    lp::loadProfile_s stale;
    stale.loadProfileId = 99;
    Message far;
    far.set_msg_type(TMT_RESPONSE);
    auto* a = new Tm_array();
    auto* s = new Tm_prenamed_struct();
    lp::loadProfile_t_to_struct(s, &one, true, far.get_send_member_string(TMG_SEND));
    a->add_member_and_own(s);
    far.add_member_and_own(TMG_SEND, "loadProfile", a);
    Message client;
    tmsg::decode(tmsg::encode(far), client);
    std::vector<lp::loadProfile_s> out{stale, stale, stale};
    lp::parse_resp_GetLoadProfile(&client, &out);
    EXPECT_EQ(out, std::vector<lp::loadProfile_s>{one});
}

TEST(LoadProfileMethods, EmptyVectorIsSentAsEmptyArray) {
    Message m;
    lp::create_req_SetLoadProfile(&m, {}, true);
    EXPECT_EQ(testing_support::layout(m), (Layout{{"loadProfile", TMV_ARRAY}}));
    Message far;
    tmsg::decode(tmsg::encode(m), far);
    EXPECT_EQ(far.get_member_array(TMG_RECV, "loadProfile")->get_member_count(), 0);
}

TEST(LoadProfileMethods, CopyFlagChoosesBetweenViewAndCopy) {
    struct Case {
        bool copy;
        bool bytesFollowTheVector;
    };
    for (const Case& c : {Case{false, true}, Case{true, false}}) {
        SCOPED_TRACE(c.copy);
        std::vector<uint32_t> ids{1, 2, 3};
        Message m;
        lp::create_req_RemoveLoadProfile(&m, ids, c.copy);
        const auto before = tmsg::encode(m);
        ids[1] = 0xABCDEF;
        EXPECT_EQ(tmsg::encode(m) != before, c.bytesFollowTheVector);
    }
}

TEST(LoadProfileRecords, UnknownUnitReadsBackAsTheMapsAnswer) {
    lp::loadProfile_s p;
    p.loadUnit = lp::rateUnit_t::L2_RATE;
    p.burstLoadUnit = lp::rateUnit_t::BITS_PER_SECOND;
    Message far;
    far.set_msg_type(TMT_RESPONSE);
    auto* a = new Tm_array();
    auto* s = new Tm_prenamed_struct();
    lp::loadProfile_t_to_struct(s, &p, true, far.get_send_member_string(TMG_SEND));
    a->add_member_and_own(s);
    far.add_member_and_own(TMG_SEND, "loadProfile", a);
    auto bytes = tmsg::encode(far);
    replace_text(bytes, "L2_RATE", "L2_RATX");
    replace_text(bytes, "BITS_PER_SECOND", "000000000000012");
    Message client;
    tmsg::decode(bytes, client);
    std::vector<lp::loadProfile_s> out;
    lp::parse_resp_GetLoadProfile(&client, &out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(static_cast<int>(out[0].loadUnit), tms_string_to_enum("L2_RATX", lp::em_rateUnit_t));
    EXPECT_EQ(static_cast<int>(out[0].burstLoadUnit),
              tms_string_to_enum("000000000000012", lp::em_rateUnit_t));
}

}  // namespace
