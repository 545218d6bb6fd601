#include <fmt/format.h>

#include <TalIec61850Analysis/packet/GoosePacket.hpp>
#include <TalIec61850Analysis/packet/SvPacket.hpp>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "bench/CaptureOnDisk.hpp"
#include "bench/Passes.hpp"
#include "bench/Race.hpp"
#include "bench/Subjects.hpp"
#include "bench/Table.hpp"
#include "bench/Workloads.hpp"
#include "support/Bytes.hpp"
#include "support/CaptureFile.hpp"

namespace TalBench {

namespace {

using namespace TalIec61850Analysis;
using TalTest::Bytes;

/// tshark takes seconds.
constexpr std::uint64_t comparedFrames = 100'000;
/// As many as stay in the caches, so that decoding is measured and not memory.
constexpr std::size_t maxFrames = 500;

/// A kind of frames, and what may be taken for them.
struct PacketKind {
    std::string_view workload;
    std::string_view text;
    bool isSv = false;
    double viewLimit = 0;    ///< view / owning form
    double tsharkLimit = 0;  ///< owning form / tshark
};

constexpr std::array packetKinds = {
    PacketKind{"goose64", "GOOSE, 16 values", false, 0.5, 0.2},
    PacketKind{"sv16", "SV, 1 ASDU", true, 0.7, 0.1},
    PacketKind{"sv8asdu", "SV, 8 ASDUs", true, 0.5, 0.25},
};

// Each looks at every value of a packet, and gives a number that depends on all of them.

// NOLINTNEXTLINE(misc-no-recursion): values are nested no deeper than kMaxDataDepth
std::uint64_t look(DataViews const& values) {
    std::uint64_t sum = 0;
    for (DataView const& value : values) {
        auto const* const members = std::get_if<DataViews>(&value.value);
        sum += value.value.index() + (members != nullptr ? look(*members) : 0);
    }
    return sum;
}

std::uint64_t look(GooseView const& view) {
    auto const* const sqNum = view.sqNum ? std::get_if<std::int64_t>(&*view.sqNum) : nullptr;
    return (view.allData ? look(*view.allData) : 0) +
           (sqNum != nullptr ? static_cast<std::uint64_t>(*sqNum) : 0);
}

std::uint64_t look(SvView const& view) {
    std::uint64_t sum = 0;
    for (AsduView const& asdu : view.asdus) {
        SamplesView const samples = asdu.seqData.value_or(SamplesView());
        for (std::size_t i = 0; i < samples.size(); ++i) {
            sum += static_cast<std::uint32_t>(samples[i].value) + samples[i].quality.word;
        }
    }
    return sum;
}

std::size_t countFaults(auto const& view) {
    std::size_t count = 0;
    view.visitFaults([&](Fault const&) { ++count; });
    return count;
}

/// Calls `decode` with one frame after the other.
/// @param decode  whether the frame was read
template <typename Decode>
Race::Body eachFrame(std::vector<Bytes> const& frames, Decode decode) {
    return [&frames, decode](benchmark::State& state) {
        std::size_t next = 0;
        for (auto _ : state) {
            Bytes const& frame = frames[next];
            next = next + 1 < frames.size() ? next + 1 : 0;
            if (!decode(frame)) {
                state.SkipWithError("a frame was not decoded");
                return;
            }
        }
    };
}

bool lookAtView(Octets frame, bool isSv) {
    std::uint64_t seen = isSv ? look(viewSv(frame)) : look(viewGoose(frame));
    benchmark::DoNotOptimize(seen);
    return true;
}

bool lookForFaults(Octets frame, bool isSv) {
    return (isSv ? countFaults(viewSv(frame)) : countFaults(viewGoose(frame))) == 0;
}

bool decodeWhole(Octets frame, bool isSv) {
    return isSv ? !decodeSv(frame).asdus.empty() : decodeGoose(frame).allData.has_value();
}

std::vector<Bytes> firstFrames(std::string const& path) {
    std::vector<Bytes> frames;
    for (auto const& record : TalTest::readCapture(path)) {
        if (frames.size() == maxFrames) {
            break;
        }
        frames.push_back(record.frame);
    }
    return frames;
}

/// @return whether all is within its limits
bool measureKind(PacketKind const& kind, Settings const& settings) {
    CaptureOnDisk const capture(
        withFrames(workload(kind.workload), comparedFrames / settings.divisor));
    auto const frames = firstFrames(capture.path());
    Race race(fmt::format("packets-{}", kind.workload));
    bool const isSv = kind.isSv;
    race.addShort("view", eachFrame(frames, [=](auto const& f) { return lookAtView(f, isSv); }));
    race.addShort("faults",
                  eachFrame(frames, [=](auto const& f) { return lookForFaults(f, isSv); }));
    race.addShort("owning", eachFrame(frames, [=](auto const& f) { return decodeWhole(f, isSv); }));
    bool const asksTshark = settings.withPrograms && hasTshark();
    if (asksTshark) {
        race.add("tshark", capture.frames(), tsharkPass(capture.path()), kTsharkRounds);
    }
    auto taken = race.run(settings.rounds);
    auto const row = [&](std::string_view what) {
        return fmt::format("packets {}: {}", kind.text, what);
    };
    bool isWithin =
        printBound(row("view / owning"), taken["view"], taken["owning"], kind.viewLimit);
    printRatio(row("faults of a view / owning"), taken["faults"], taken["owning"]);
    if (asksTshark) {
        isWithin &=
            printBound(row("owning / tshark"), taken["owning"], taken["tshark"], kind.tsharkLimit);
    }
    return isWithin;
}

}  // namespace

void measurePackets(Settings const& settings) {
    bool const isWithin = std::ranges::count_if(packetKinds, [&](PacketKind const& kind) {
                              return measureKind(kind, settings);
                          }) == std::ssize(packetKinds);
    if (!isWithin) {
        throw std::runtime_error("decoding packets exceeds its limits");
    }
}

}  // namespace TalBench
