// The index with the memory of walks against the index without it, and both against packets decoded
// one by one.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <TalIec61850Analysis/packet/SvView.hpp>
#include <TalIec61850Analysis/traffic/FileIndexer.hpp>
#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <random>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

#include "index/TrafficGenerators.hpp"
#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"
#include "support/OwnCaptures.hpp"

namespace TalIec61850Analysis::RememberedWalksTest {
namespace {

using namespace TalTest;
using detail::FileIndexer;
using detail::WalkMemory;

/// A frame as a capture has it.
struct Recorded {
    Bytes frame;
    std::uint32_t originalSize = 0;
};

struct Indexed {
    IndexedFile file;
    std::vector<TrafficStream> streams;

    friend bool operator==(Indexed const&, Indexed const&) = default;
};

Indexed indexed(std::vector<Recorded> const& frames, WalkMemory memory, int rounds = 1) {
    std::function<bool(StreamKey const&)> const keepsAll;
    FileIndexer indexer(keepsAll, memory);
    RecordView view;
    std::int64_t time = 0;
    for (int round = 0; round < rounds; ++round) {
        for (Recorded const& each : frames) {
            view.frame = each.frame;
            view.record.frameOffset += 1000;
            view.record.time = captureTimeOf(time += 250'000);
            view.record.capturedSize = static_cast<std::uint32_t>(each.frame.size());
            view.record.originalSize = each.originalSize;
            indexer.add(view);
        }
    }
    Indexed result;
    result.streams = indexer.takeStreams(0);
    result.file = indexer.takeFile();
    return result;
}

void expectSame(std::vector<Recorded> const& frames, int rounds = 2) {
    EXPECT_TRUE(indexed(frames, WalkMemory::on, rounds) ==
                indexed(frames, WalkMemory::off, rounds));
}

std::vector<Recorded> framesIn(std::string const& path, std::size_t most) {
    std::vector<Recorded> frames;
    try {
        for (auto const& record : readCapture(path)) {
            frames.push_back({record.frame, record.origLen});
            if (frames.size() == most) break;
        }
    } catch (std::runtime_error const&) {
        return {};
    }
    return frames;
}

std::vector<std::string> capturePaths() {
    auto paths = recordedCapturePaths();
    auto const own = ownCapturePaths();
    paths.insert(paths.end(), own.begin(), own.end());
    return paths;
}

TEST(RememberedWalks, GiveTheIndexOfPlainOnesOfAllCaptures) {
    for (std::string const& path : capturePaths()) {
        SCOPED_TRACE(path);
        expectSame(framesIn(path, 20'000));
    }
}

TEST(RememberedWalks, GiveTheIndexOfPlainOnesWhereFramesOfAllCapturesAreMixed) {
    std::vector<Recorded> all;
    for (std::string const& path : capturePaths()) {
        auto const some = framesIn(path, 300);
        all.insert(all.end(), some.begin(), some.end());
    }
    std::shuffle(all.begin(), all.end(), std::mt19937(1));
    expectSame(all, 3);
}

TEST(RememberedWalks, GiveTheIndexOfPlainOnesWhereOctetsAreChanged) {
    constexpr std::uint32_t kSeed = 3;
    RecordProperty("seed", static_cast<int>(kSeed));
    std::mt19937 random(kSeed);
    for (std::string const& path : capturePaths()) {
        SCOPED_TRACE(path);
        auto const frames = framesIn(path, 400);
        std::vector<Recorded> changed;
        for (int round = 0; round < 4; ++round) {
            for (Recorded each : frames) {
                if (!each.frame.empty() && random() % 2 == 0) {
                    std::size_t const bound = std::min<std::size_t>(
                        each.frame.size(), random() % 2 == 0 ? each.frame.size() : 70);
                    each.frame[random() % bound] = static_cast<std::uint8_t>(random());
                }
                if (random() % 8 == 0) each.frame.resize(random() % (each.frame.size() + 1));
                if (random() % 8 == 0)
                    each.originalSize = static_cast<std::uint32_t>(each.frame.size());
                changed.push_back(each);
            }
        }
        expectSame(changed);
    }
}

RC_GTEST_PROP(RememberedWalks, GiveTheIndexOfPlainOnesOfAnyFrames, ()) {
    std::vector<Recorded> frames;
    for (Bytes const& frame : *rc::gen::container<std::vector<Bytes>>(anyFrame())) {
        auto const more = *rc::gen::inRange<std::uint32_t>(0, 3);
        frames.push_back({frame, static_cast<std::uint32_t>(frame.size()) + more / 2 * 10});
        // The same with one octet changed follows.
        Bytes changed = frame;
        if (!changed.empty())
            changed[*rc::gen::inRange<std::size_t>(0, changed.size())] ^=
                static_cast<std::uint8_t>(*rc::gen::inRange(1, 256));
        frames.push_back({changed, frames.back().originalSize});
    }
    RC_ASSERT(indexed(frames, WalkMemory::on, 2) == indexed(frames, WalkMemory::off, 2));
}

/// Name, frame, ASDU and counters of a packet.
using Packet = std::tuple<std::string, std::uint64_t, std::size_t, std::string>;

std::string textOf(std::optional<Readable<std::uint64_t>> const& counter) {
    if (!counter) return "-";
    auto const* const number = std::get_if<std::uint64_t>(&*counter);
    return number != nullptr ? std::to_string(*number) : "octets";
}

std::string textOf(std::optional<Integer> const& counter) {
    if (!counter) return "-";
    if (auto const* const number = std::get_if<std::int64_t>(&*counter))
        return std::to_string(*number);
    auto const* const large = std::get_if<std::uint64_t>(&*counter);
    return large != nullptr ? std::to_string(*large) : "octets";
}

/// The packets of frames that are whole, by decoding each.
std::vector<Packet> decodedPackets(std::vector<Recorded> const& frames) {
    std::vector<Packet> packets;
    std::uint64_t offset = 0;
    for (Recorded const& each : frames) {
        offset += 1000;
        FrameOrigin const origin = {.originalSize = each.originalSize};
        FrameHeader const header = readFrameHeader(each.frame, origin);
        if (!header.reserved2) continue;
        auto const isPast = [&](Faults const& faults) {
            return std::any_of(faults.begin(), faults.end(), [&](Fault const& fault) {
                return fault.offset == header.size && fault.kind == FaultKind::pastCapture;
            });
        };
        if (header.isGoose()) {
            GoosePacket const packet = decodeGoose(each.frame, origin);
            if (packet.gocbRef && !isPast(packet.faults))
                packets.emplace_back(*packet.gocbRef, offset, 0,
                                     textOf(packet.stNum) + " " + textOf(packet.sqNum));
        } else if (header.isSv()) {
            // Decoding shows ASDUs that no savPdu leads to; the index has them as unread.
            if (!viewSv(each.frame, origin).pdu) continue;
            SvPacket const packet = decodeSv(each.frame, origin);
            if (isPast(packet.faults)) continue;
            for (std::size_t i = 0; i < packet.asdus.size(); ++i)
                if (packet.asdus[i].svID)
                    packets.emplace_back(
                        *packet.asdus[i].svID, offset, i,
                        textOf(packet.asdus[i].smpCnt) + " " + textOf(packet.asdus[i].smpSynch));
        }
    }
    std::sort(packets.begin(), packets.end());
    return packets;
}

std::vector<Packet> indexedPackets(std::vector<Recorded> const& frames) {
    std::vector<Packet> packets;
    auto const owned = [](auto const& counter) {
        return counter ? std::optional(toOwned(*counter)) : std::nullopt;
    };
    Indexed const all = indexed(frames, WalkMemory::on);
    for (TrafficStream const& stream : all.streams) {
        PacketColumns const& columns = stream.parts[0].packets;
        bool const isSv = stream.key.protocol == StreamProtocol::sv;
        for (std::size_t i = 0; i < columns.size(); ++i)
            packets.emplace_back(stream.key.name, columns.frameOffsets()[i],
                                 isSv ? columns.asdus()[i] : 0,
                                 textOf(owned(columns.firstCounter(i))) + " " +
                                     textOf(owned(columns.secondCounter(i))));
    }
    std::sort(packets.begin(), packets.end());
    return packets;
}

TEST(IndexedPackets, AreThoseThatAreDecodedOneByOne) {
    for (std::string const& path : capturePaths()) {
        SCOPED_TRACE(path);
        auto frames = framesIn(path, 5'000);
        std::erase_if(frames,
                      [](Recorded const& each) { return each.originalSize > each.frame.size(); });
        EXPECT_TRUE(indexedPackets(frames) == decodedPackets(frames));
    }
}

RC_GTEST_PROP(IndexedPackets, AreThoseThatAreDecodedOfAnyFrames, ()) {
    std::vector<Recorded> frames;
    for (Bytes const& frame : *rc::gen::container<std::vector<Bytes>>(anyFrame()))
        frames.push_back({frame, static_cast<std::uint32_t>(frame.size())});
    RC_ASSERT(indexedPackets(frames) == decodedPackets(frames));
}

}  // namespace
}  // namespace TalIec61850Analysis::RememberedWalksTest
