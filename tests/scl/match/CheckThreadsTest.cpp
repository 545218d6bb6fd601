// Stations checked on several threads.

#include <gtest/gtest.h>

#include "scl/match/DescribedTraffic.hpp"
#include "support/Data.hpp"

namespace TalTest::CheckThreadsTest {
namespace {

using namespace TalIec61850Scl;

TEST(CheckThreads, FindTheSameHoweverManyThereAre) {
    auto const station = together(describedSv(), describedGoose());
    std::vector<std::vector<DescribedFrame>> files;
    for (std::size_t file = 0; file < 5; ++file) {
        auto frames =
            together(gooseFrames(4,
                                 [&](std::size_t number, Ethernet&, GooseMessage& message) {
                                     message.confRev = file >= 3 ? 2U : 1U;
                                     message.setData(file == 2 && number == 3
                                                         ? std::vector<Bytes>{dataBoolean(true)}
                                                         : describedValues());
                                 }),
                     svFrames(4, [&](std::size_t, Ethernet& ethernet, SvMessage&) {
                         ethernet.vlanPriority = file == 4 ? 1 : 4;
                     }));
        for (DescribedFrame& frame : frames) {
            frame.time += static_cast<std::int64_t>(file) * 10'000'000'000;
        }
        files.push_back(frames);
    }
    for (std::size_t const jobs : {0U, 1U, 2U, 16U}) {
        StationCheckOptions options;
        options.jobs = jobs;
        EXPECT_EQ(CheckedStation(station, files, options).lines(),
                  (SclLines{"differs MU1LD0/LLN0$MS$msvcb1: vlanPriority 4 != 1 @4.0",
                            "differs RELAY1LD0/LLN0$GO$gcb1: confRev 1 != 2 @3.0, memberCount 4 "
                            "!= 1 @2.3"}));
    }
}

}  // namespace
}  // namespace TalTest::CheckThreadsTest
