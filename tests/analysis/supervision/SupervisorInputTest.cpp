// The state machines take whatever they are told: any counters, times and contents.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/supervision/GooseSupervisor.hpp>
#include <TalIec61850Analysis/supervision/SvSupervisor.hpp>
#include <limits>

#include "support/Bytes.hpp"
#include "support/Data.hpp"

namespace TalTest::SupervisorInputTest {
namespace {

using namespace TalIec61850Analysis;
using namespace TalIec61850Analysis::detail;

/// Mostly a little after the time before, at times anything that a capture can say, or no time.
std::int64_t anyTime(std::int64_t before) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    switch (*rc::gen::inRange(0, 12)) {
        case 0:
            return kNoTime;
        case 1:
            return *rc::gen::inRange<std::int64_t>(0, kMost);
        case 2:
            return kMost - *rc::gen::inRange<std::int64_t>(0, 1000);
        default:
            return before > kMost - 1'000'000 || before < 0 ? 0 : before + 250'000;
    }
}

SvCourse anyCourse() {
    auto const samples = *rc::gen::element<std::uint32_t>(0, 1, 20, 4000, 96000, 0xFFFF'FFFF);
    auto const seconds = *rc::gen::element<std::uint32_t>(1, 1, 7, 0xFFFF'FFFF);
    SvCourse course;
    course.rate = {.samples = samples, .seconds = seconds};
    course.count = {.wrap = *rc::gen::element<std::uint32_t>(1, 2, 4000, 65536, 0xFFFF'FFFF),
                    .interval = samples == 0 ? 0 : 1e9 * seconds / samples,
                    .atOnce = *rc::gen::element<std::uint32_t>(1, 8, 65535)};
    course.inFrame = *rc::gen::element<std::uint32_t>(1, 8, 65535);
    course.isRedundant = *rc::gen::arbitrary<bool>();
    return course;
}

RC_GTEST_PROP(SupervisorInput, AnySamplesEnd, ()) {
    SvSupervisor supervisor;
    std::uint64_t findings = 0;
    auto const take = [&](Finding const& finding) { findings += finding.count; };
    SvObservation packet;
    packet.arrival = 1'700'000'000'000'000'000;
    supervisor.follow(anyCourse(), packet, take);
    constexpr std::uint64_t kPackets = 300;
    for (std::uint64_t i = 0; i < kPackets; ++i) {
        packet.arrival = anyTime(packet.arrival);
        bool const isNext = *rc::gen::inRange(0, 4) != 0;
        packet.smpCnt = isNext ? packet.smpCnt + 1 : *rc::gen::arbitrary<std::uint32_t>();
        packet.way = *rc::gen::element<std::uint16_t>(0, 0, 0, 1, 2);
        packet.sequence = *rc::gen::inRange(-1, 65536);
        packet.smpSynch = *rc::gen::element<std::int16_t>(2, 2, 1, 0, 255, -1);
        packet.isCounted = *rc::gen::inRange(0, 20) != 0;
        if (*rc::gen::inRange(0, 50) == 0) {
            supervisor.follow(anyCourse(), packet, take);
        }
        if (*rc::gen::inRange(0, 50) == 0) {
            supervisor.stepClock(*rc::gen::arbitrary<std::int64_t>() / 2, take);
        }
        supervisor.add(packet, take);
    }
    supervisor.finish(anyTime(packet.arrival), take);
    RC_ASSERT(findings <= 10 * kPackets);
}

RC_GTEST_PROP(SupervisorInput, AnyMessagesEnd, ()) {
    GooseSupervisor supervisor;
    std::uint64_t findings = 0;
    auto const take = [&](Finding const& finding) { findings += finding.count; };
    GooseObservation message;
    message.arrival = 1'700'000'000'000'000'000;
    GooseContent content;
    Bytes data;
    constexpr std::uint64_t kMessages = 200;
    for (std::uint64_t i = 0; i < kMessages; ++i) {
        message.arrival = anyTime(message.arrival);
        switch (*rc::gen::inRange(0, 5)) {
            case 0:
                message.stNum = *rc::gen::element<std::uint32_t>(0, 1, 2, 5, 0xFFFF'FFFF);
                message.sqNum = *rc::gen::arbitrary<std::uint32_t>();
                break;
            case 1:
                ++message.stNum;
                message.sqNum = 0;
                break;
            default:
                ++message.sqNum;
                break;
        }
        message.way = *rc::gen::element<std::uint16_t>(0, 0, 0, 1, 2);
        message.isCounted = *rc::gen::inRange(0, 20) != 0;
        message.isSame = i > 0 && *rc::gen::arbitrary<bool>();
        if (!message.isSame) {
            // Any octets: members, or what makes none.
            data = *rc::gen::element(Bytes{}, dataBoolean(true), dataQuality(0x4000), dataQuality(),
                                     dataStructure({dataBoolean(false)}), Bytes{0xA2, 0x7F, 0x83},
                                     Bytes{0x91}, Bytes{0x84, 0x03, 0x03});
            content = {};
            content.timeAllowedtoLive = *rc::gen::arbitrary<std::int64_t>();
            content.t = UtcTime{.seconds = *rc::gen::arbitrary<std::uint32_t>(),
                                .fraction = 0xFF'FFFF,
                                .quality = *rc::gen::arbitrary<std::uint8_t>()};
            content.allData = Octets(data);
            content.numDatSetEntries = *rc::gen::arbitrary<std::int64_t>();
        }
        message.content = *rc::gen::inRange(0, 10) == 0 ? nullptr : &content;
        if (*rc::gen::inRange(0, 50) == 0) {
            supervisor.stepClock(*rc::gen::arbitrary<std::int64_t>());
        }
        supervisor.add(message, take);
    }
    supervisor.finish(anyTime(message.arrival), take);
    RC_ASSERT(findings <= 20 * kMessages);
}

}  // namespace
}  // namespace TalTest::SupervisorInputTest
