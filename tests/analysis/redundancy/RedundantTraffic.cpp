#include "analysis/redundancy/RedundantTraffic.hpp"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "support/CaptureFile.hpp"
#include "support/SampledValues.hpp"
#include "support/TempFile.hpp"

namespace TalTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::uint32_t kSent = 1'700'000'000;

Bytes octetsOfCopy(WireFrame const& frame) {
    constexpr std::size_t kSamples = 4000;
    constexpr std::size_t kSizeFromEnd = 3;
    SvMessage message;
    message.asdus.front().svID = frame.svID;
    message.asdus.front().smpCnt = Unsigned<2>(frame.number % kSamples);
    message.asdus.front().seqData = Bytes(64, frame.value);
    Ethernet const link = svEthernet().from(frame.source);
    Bytes octets = svFrame(frame.isHsr ? link.withHsr(frame.way, frame.sequence)
                                       : link.withPrp(frame.way, frame.sequence),
                           message);
    if (frame.isMisfit) {
        octets[octets.size() - kSizeFromEnd] ^= 0x55U;
    }
    octets.resize(octets.size() + frame.padding);
    return octets;
}

}  // namespace

WireFrames sendBoth(SendPlan const& plan) {
    WireFrames frames;
    for (std::size_t number = 0; number < plan.frames; ++number) {
        std::int64_t const time = static_cast<std::int64_t>(number) * plan.interval;
        for (char const way : {'A', 'B'}) {
            frames.push_back({.svID = plan.svID,
                              .source = plan.source,
                              .number = number,
                              .way = way,
                              .isHsr = plan.isHsr,
                              .sequence = static_cast<std::uint16_t>(plan.firstSequence + number),
                              .time = time + (way == 'A' ? plan.delayA : plan.delayB)});
        }
    }
    return frames;
}

WireFrame& copyOf(WireFrames& frames, std::size_t number, char way) {
    auto const found = std::find_if(frames.begin(), frames.end(), [&](WireFrame const& frame) {
        return frame.number == number && frame.way == way;
    });
    if (found == frames.end()) {
        throw std::out_of_range("no such copy");
    }
    return *found;
}

void lose(WireFrames& frames, char way, std::size_t number, std::size_t count) {
    std::erase_if(frames, [&](WireFrame const& frame) {
        return frame.way == way && frame.number >= number && frame.number < number + count;
    });
}

std::vector<Bytes> capturesOf(WireFrames frames, std::vector<std::int64_t> const& clocks) {
    std::stable_sort(frames.begin(), frames.end(),
                     [](WireFrame const& a, WireFrame const& b) { return a.time < b.time; });
    std::vector<CaptureBuilder> builders;
    for (WireFrame const& frame : frames) {
        while (builders.size() <= frame.file) {
            builders.emplace_back(CaptureVariant::nanoLittle);
        }
        std::int64_t const clock = frame.file < clocks.size() ? clocks[frame.file] : 0;
        std::int64_t const time = kSent * kWholeSecond + frame.time + clock;
        builders[frame.file].add(static_cast<std::uint32_t>(time / kWholeSecond),
                                 static_cast<std::uint32_t>(time % kWholeSecond),
                                 octetsOfCopy(frame));
    }
    std::vector<Bytes> captures;
    captures.reserve(builders.size());
    for (CaptureBuilder const& builder : builders) {
        captures.push_back(builder.bytes());
    }
    return captures;
}

CopyCounts const& Paired::counts(std::string const& svID) const {
    auto const found = std::find_if(redundancy.streams.begin(), redundancy.streams.end(),
                                    [&](StreamRedundancy const& each) {
                                        return index.streams()[each.stream].key.name == svID;
                                    });
    if (found == redundancy.streams.end()) {
        throw std::out_of_range("no such stream");
    }
    return found->counts;
}

std::vector<std::string> Paired::faultLines() const {
    constexpr std::array<char const*, 5> kKinds = {"copyMissing", "copyDiffers", "copyExtra",
                                                   "wrongLan", "trailerInvalid"};
    std::vector<std::string> lines;
    for (RedundancyFault const& fault : faults) {
        auto const& part = index.streams()[fault.stream].parts[fault.packet.part];
        std::string line = kKinds.at(static_cast<std::size_t>(fault.kind));
        line += std::string(" ") + fault.lane + " #" +
                std::to_string(part.packets.smpCnts()[fault.packet.packet]);
        if (fault.count > 1) {
            line += " count " + std::to_string(fault.count);
        }
        lines.push_back(line);
    }
    return lines;
}

Paired pairIn(std::vector<Bytes> const& captures, PairingOptions const& options) {
    TempDir const directory;
    std::vector<std::string> paths;
    for (Bytes const& capture : captures) {
        paths.push_back(
            directory.write("capture" + std::to_string(paths.size()) + ".pcap", capture));
    }
    Paired paired;
    paired.index = indexCaptures(paths);
    paired.redundancy = pairCopies(paired.index, options, [&](RedundancyFault const& fault) {
        paired.faults.push_back(fault);
    });
    return paired;
}

Paired pairIn(WireFrames const& frames) { return pairIn(capturesOf(frames)); }

}  // namespace TalTest
