#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "interfaces/loadProfile_1_bll.h"
#include "interfaces/loadProfile_1_bll_methods.h"
#include "platform/Tm_codec.h"
#include "platform/Tm_exception.h"
#include "support/Loopback.h"

namespace lp = LoadProfile_1_bll;

namespace {

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
        m.set_request_name("Caller.Named");
        EXPECT_FALSE(testing_support::build_generated(e, &m, true, 3));
        EXPECT_FALSE(m.get_use_send_member_string());
        EXPECT_EQ(m.get_request_name(), "Caller.Named");
    });
}

TEST(LoadProfileMethods, ParsingRefusesARequestAndReplacesAnEarlierVector) {
    lp::loadProfile_s one;
    one.loadProfileId = 5;
    one.loadUnit = lp::rateUnit_t::L2_RATE;
    const std::vector<lp::loadProfile_s> before(3);
    std::vector<lp::loadProfile_s> out = before;
    const Message request =
        testing_support::received(lp::methods::GetLoadProfile.response, TMT_REQUEST, std::vector{one});
    EXPECT_THROW(lp::parse_resp_GetLoadProfile(&request, &out), Tm_type_mismatch_exception);
    EXPECT_EQ(out, before);
    EXPECT_THROW(lp::parse_resp_SetLoadProfile(&request), Tm_type_mismatch_exception);
    const Message in =
        testing_support::received(lp::methods::GetLoadProfile.response, TMT_RESPONSE, std::vector{one});
    lp::parse_resp_GetLoadProfile(&in, &out);
    EXPECT_EQ(out, std::vector<lp::loadProfile_s>{one});
}

TEST(LoadProfileMethods, CopyFlagChoosesBetweenViewAndCopy) {
    for (bool copy : {false, true}) {
        std::vector<uint32_t> ids{1, 2, 3};
        Message m;
        lp::create_req_RemoveLoadProfile(&m, ids, copy);
        const auto before = tmsg::encode(m);
        ids[1] = 0xABCDEF;
        EXPECT_EQ(tmsg::encode(m) != before, !copy) << copy;
    }
}

TEST(LoadProfileRecords, UnknownUnitReadsBackAsTheMapsAnswer) {
    lp::loadProfile_s p;
    p.loadUnit = lp::rateUnit_t::L2_RATE;
    p.burstLoadUnit = lp::rateUnit_t::BITS_PER_SECOND;
    auto bytes =
        testing_support::far_bytes(lp::methods::GetLoadProfile.response, TMT_RESPONSE, std::vector{p});
    ASSERT_EQ(testing_support::replace_text(bytes, "L2_RATE", "L2_RATX"), 1);
    ASSERT_EQ(testing_support::replace_text(bytes, "BITS_PER_SECOND", "000000000000012"), 1);
    const Message in = testing_support::received(bytes);
    std::vector<lp::loadProfile_s> out;
    lp::parse_resp_GetLoadProfile(&in, &out);
    ASSERT_EQ(out.size(), 1u);
    EXPECT_EQ(static_cast<int>(out[0].loadUnit), tms_string_to_enum("L2_RATX", lp::em_rateUnit_t));
    EXPECT_EQ(static_cast<int>(out[0].burstLoadUnit),
              tms_string_to_enum("000000000000012", lp::em_rateUnit_t));
}

}  // namespace
