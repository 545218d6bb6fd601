// What the library indexes of the own captures, against what their making states: every stream,
// and of every packet the position and the time.

#include <gtest/gtest.h>

#include <TalIec61850Parser/store/Db.hpp>
#include <algorithm>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "index/Indexing.hpp"
#include "support/CaptureMaker.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalTest::MadePacketsTest {
namespace {

using namespace TalIec61850Parser;

template <typename Id>
std::string linkText(Id const& id) {
    std::ostringstream out;
    out << *id.srcMac << ' ' << *id.dstMac << " vlan " << (id.vlan ? *id.vlan->vlanId : 0)
        << " appId " << *id.appId << " bit " << int{*id.reserved1Bit0};
    return out.str();
}

std::string textOf(Goose const& goose) {
    std::ostringstream out;
    out << "goose " << linkText(goose) << " gocbRef " << goose.gocbRef.value_or("") << " datSet "
        << goose.datSet.value_or("") << " goID " << goose.goID.value_or("") << " simulation "
        << goose.simulation.has_value() << " confRev " << goose.confRev.value_or(0);
    return out.str();
}

std::string textOf(Sv const& sv) {
    std::ostringstream out;
    out << "sv " << linkText(sv) << " hsr " << (sv.hsr ? *sv.hsr->lanId : '-') << " svID "
        << sv.svID.value_or("") << " confRev " << sv.confRev.value_or(0);
    return out.str();
}

template <typename Streams>
void addPackets(std::vector<MadePacket>& packets, Streams const& streams) {
    for (auto const& stream : streams)
        for (PackageFile const& file : stream.files)
            for (Package const& package : file.packages)
                packets.push_back({textOf(stream), package.position, package.time.seconds,
                                   package.time.nanoseconds});
}

class MadePackets : public testing::TestWithParam<OwnCapture> {};

INSTANTIATE_TEST_SUITE_P(Captures, MadePackets, testing::ValuesIn(ownCaptures()),
                         [](auto const& instance) { return captureTestName(instance.param.name); });

TEST_P(MadePackets, AreIndexedWhereTheyWereWritten) {
    Db db;
    indexInto(db, ownCapture(GetParam().name));
    std::vector<MadePacket> indexed;
    addPackets(indexed, db.gooseProto.streams);
    addPackets(indexed, db.svProto.streams);
    std::vector<MadePacket> made = GetParam().make().packets;
    std::sort(indexed.begin(), indexed.end());
    std::sort(made.begin(), made.end());
    EXPECT_EQ(indexed.size(), made.size());
    for (std::size_t i = 0; i < std::min(indexed.size(), made.size()); ++i) {
        ASSERT_EQ(indexed[i].stream, made[i].stream);
        ASSERT_EQ(indexed[i].position, made[i].position) << made[i].stream;
        ASSERT_EQ(indexed[i], made[i]) << "time of the packet at " << made[i].position;
    }
}

}  // namespace
}  // namespace TalTest::MadePacketsTest
