// In which order packets are gone through.

#include <gtest/gtest.h>

#include <TalIec61850Analysis/samples/PacketCourse.hpp>
#include <cstdint>
#include <utility>
#include <vector>

#include "analysis/samples/ReadRows.hpp"
#include "analysis/traffic/TrafficCaptures.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis::detail::PacketCourseTest {
namespace {

using namespace TalTest;

Bytes frameOf(std::uint16_t smpCnt) { return svFrame(svEthernet(), message92le("MU01", smpCnt)); }

/// A capture of frames, each with its smpCnt for its content, at times in milliseconds.
Bytes captureOf(std::vector<std::pair<std::uint64_t, std::uint16_t>> const& frames) {
    TrafficCapture capture;
    for (auto const& [time, smpCnt] : frames) capture.addAt(time * 1'000'000, frameOf(smpCnt));
    return capture.bytes();
}

/// smpCnt of the packets, in the order of the walk.
std::vector<std::uint32_t> courseOf(std::vector<Bytes> const& captures) {
    IndexedWaveform const indexed(captures);
    TrafficStream const& stream = indexed.stream();
    PacketCourse course(stream);
    std::vector<std::uint32_t> counters;
    while (auto const ref = course.next()) {
        counters.push_back(stream.parts[ref->part].packets.smpCnts()[ref->packet]);
    }
    EXPECT_FALSE(course.next());
    return counters;
}

using Counters = std::vector<std::uint32_t>;

TEST(PacketCourses, GoThroughAFileInItsOrderWhateverTheTimesSay) {
    EXPECT_EQ(courseOf({captureOf({{10, 1}, {5, 2}, {90, 3}, {0, 4}})}), (Counters{1, 2, 3, 4}));
}

TEST(PacketCourses, GoThroughFilesByTheTimesOfTheirNextPackets) {
    Bytes const early = captureOf({{1, 1}, {2, 2}, {3, 3}});
    Bytes const late = captureOf({{4, 4}, {5, 5}});
    EXPECT_EQ(courseOf({early, late}), (Counters{1, 2, 3, 4, 5}));
    EXPECT_EQ(courseOf({late, early}), (Counters{1, 2, 3, 4, 5}));
    Bytes const between = captureOf({{2, 12}, {9, 19}});
    EXPECT_EQ(courseOf({early, late, between}), (Counters{1, 2, 12, 3, 4, 5, 19}));
}

TEST(PacketCourses, KeepTheOrderOfEachFileWhereItsClockSteps) {
    Bytes const stepped = captureOf({{10, 1}, {2, 2}, {3, 3}});
    Bytes const other = captureOf({{5, 11}, {20, 12}});
    EXPECT_EQ(courseOf({stepped, other}), (Counters{11, 1, 2, 3, 12}));
}

TEST(PacketCourses, GoThroughWhatTwoFilesHaveOnce) {
    Bytes const one = captureOf({{1, 1}, {2, 2}, {3, 3}});
    Bytes const overlapping = captureOf({{2, 2}, {3, 3}, {4, 4}});
    EXPECT_EQ(courseOf({one, overlapping}), (Counters{1, 2, 3, 4}));
    EXPECT_EQ(courseOf({overlapping, one}), (Counters{1, 2, 3, 4}));
    EXPECT_EQ(courseOf({one, one, one}), (Counters{1, 2, 3}));
}

TEST(PacketCourses, LeaveOutCopiesOverOtherLans) {
    TrafficCapture capture;
    for (std::uint16_t i = 0; i < 10; ++i) {
        for (char const lan : {'A', 'B'}) {
            capture.add(svEthernet().withPrp(lan, i), message92le("MU01", i));
        }
    }
    EXPECT_EQ(courseOf({capture.bytes()}), (Counters{0, 1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(PacketCourses, GoThroughPacketsWithoutATime) {
    PcapngMaker maker;
    maker.section().interface();
    for (std::uint16_t i = 0; i < 5; ++i) maker.simplePacket(frameOf(i));
    EXPECT_EQ(courseOf({maker.bytes()}), (Counters{0, 1, 2, 3, 4}));
    Counters const both = courseOf({maker.bytes(), captureOf({{1, 11}, {2, 12}})});
    EXPECT_EQ(both.size(), 7U);
}

TEST(PacketCourses, GoOnFromACopy) {
    IndexedWaveform const indexed({captureOf({{1, 1}, {2, 2}, {3, 3}}), captureOf({{2, 9}})});
    PacketCourse course(indexed.stream());
    static_cast<void>(course.next());
    PacketCourse ahead = course;
    while (auto const ref = ahead.next()) {
        EXPECT_EQ(course.next(), ref);
    }
    EXPECT_FALSE(course.next());
}

}  // namespace
}  // namespace TalIec61850Analysis::detail::PacketCourseTest
