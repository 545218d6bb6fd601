// A whole capture file, supervised: at once, by several threads, and as it grows.

#include <TalIec61850Analysis/supervision/LiveSupervision.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/traffic/TrafficFollower.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"
#include "support/Bytes.hpp"

namespace {

using namespace TalIec61850Analysis;
using namespace TalFuzz;

void requirePlace(TrafficIndex const& index, Finding const& finding,
                  std::optional<FindingPlace> const& place) {
    if (!place) {
        return;
    }
    require(place->file < index.files().size(), "the file is there");
    if (finding.stream) {
        auto const& parts = index.streams()[*finding.stream].parts;
        require(place->packet.part < parts.size() &&
                    place->packet.packet < parts[place->packet.part].packets.size(),
                "the packet is there");
    }
}

void requireSound(TrafficIndex const& index, Finding const& finding) {
    require(!finding.stream || *finding.stream < index.streams().size(), "the stream is there");
    requirePlace(index, finding, finding.place);
    if (finding.kind != FindingKind::twoPublishers) {
        requirePlace(index, finding, finding.before);
    }
    require(finding.count > 0, "it was met");
    bool const isLoss = finding.cause != LossCause::none;
    require(!isLoss || finding.lost > 0 || finding.kind == FindingKind::copyMissing,
            "what has a cause was lost");
    bool const isCertain = isLoss && finding.cause != LossCause::unknown;
    require(!isCertain || finding.count > 1 || finding.witness != LossWitness::none,
            "a cause has a witness");
}

std::vector<Finding> findingsOf(TrafficIndex const& index, std::size_t jobs) {
    std::vector<Finding> findings;
    superviseTraffic(index, {.withSamples = true, .jobs = jobs},
                     [&](Finding const& finding) { findings.push_back(finding); });
    return findings;
}

/// @param octets  of the capture in each piece
std::size_t superviseGrowing(TalTest::Bytes const& capture, std::size_t octets) {
    static TalTest::ScratchFile file;
    std::size_t size = 0;
    TalTest::Bytes so;
    file.assign(so);
    TrafficFollower follower(file.path());
    LiveSupervision supervision;
    std::size_t count = 0;
    auto const take = [&](Finding const& finding) {
        requireSound(supervision.index(), finding);
        ++count;
    };
    while (size < capture.size()) {
        size = std::min(size + octets, capture.size());
        file.assign(TalTest::prefix(capture, size));
        auto added = follower.readOn();
        supervision.add(added ? std::move(*added) : TrafficIndex(), take);
    }
    supervision.finish(take);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally found("captures have findings");
    static TalTest::ScratchFile file;
    CaptureInput const input = captureInput({data, size});
    file.assign(input.capture);
    TrafficIndex const index = indexCapture(file.path());
    auto const findings = findingsOf(index, 1);
    std::int64_t last = kNoTime;
    bool isUntimed = false;
    for (Finding const& finding : findings) {
        requireSound(index, finding);
        require(finding.from == kNoTime || isUntimed || finding.from >= last,
                "findings are in time order");
        isUntimed = isUntimed || finding.from == kNoTime;
        last = finding.from;
    }
    constexpr std::size_t kMostPackets = 4;
    require(findings.size() <= 64 + size * kMostPackets, "findings are not made of nothing");
    if (size % 8 == 0) {
        require(findingsOf(index, 2) == findings, "threads find the same");
    }
    if (size % 4 == 0) {
        constexpr std::size_t kPieces = 3;
        static_cast<void>(superviseGrowing(input.capture, input.capture.size() / kPieces + 1));
    }
    found.add(findings.empty() ? 0 : 1, 1);
    return 0;
}
