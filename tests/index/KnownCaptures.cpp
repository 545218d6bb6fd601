#include "index/KnownCaptures.hpp"

#include <algorithm>
#include <iterator>
#include <optional>
#include <ostream>
#include <stdexcept>

#include "support/CaptureFile.hpp"
#include "support/Captures.hpp"

namespace TalTest {
namespace {

/// Name, GOOSE frames, SV frames, streams, frames without a position.
std::vector<KnownCapture> const& recordedCaptures() {
    static std::vector<KnownCapture> const captures = {
        {"goose-relay-retransmission-untagged.pcap", 8, 0, 1},
        {"goose-single-vlan-five-octet-integers.pcap", 1, 0, 1},
        {"goose-interlocking-three-publishers-vlan0.pcap", 451, 0, 3},
        {"goose-mms-mixed-station-bus.pcap", 34, 0, 3},
        {"goose-nested-structures-two-relays.pcap", 16, 0, 2},
        {"goose-testbed-viewpoint-a.pcap", 778, 0, 4},
        {"goose-testbed-viewpoint-b.pcap", 791, 0, 4},
        {"sv-92le-4000hz-three-phase-fault.pcap", 0, 12000, 1},
        {"sv-13asdu-goose-mixed-testbed.pcap", 152, 1848, 5},
        // GOOSE streams that differ in VLAN alone hash apart, and the VLAN is part of an SV
        // stream's identity: none and 100, none and 50.
        {"goose-synthetic-vlan-signed-trailer.pcap", 3, 0, 2},
        {"sv-synthetic-refrtm-vlan-signed-trailer.pcap", 0, 3, 2},
        {"goose-crafted-missing-alldata.pcap", 1, 0, 1},
        {"goose-crafted-missing-confrev.pcap", 1, 0, 1},
        {"goose-crafted-missing-goid.pcap", 1, 0, 1},
        {"goose-crafted-unknown-context-tag.pcap", 1, 0, 1},
        {"negative-serial-linktype-250-big-endian.pcap", 0, 0, 0},
        {"negative-hsr-ptp-supervision.pcap", 0, 0, 0},
        {"negative-prp-ptp-supervision.pcap", 0, 0, 0},
        {"reject-pcapng-under-pcap-name.pcap", 0, 0, 0},
        {"reencoded-be-us-goose-interlocking.pcap", 60, 0, 2},
        {"reencoded-le-ns-sv-92le.pcap", 0, 300, 1},
        {"snapped-90-goose-interlocking.pcap", 40, 0, 2, 40},
        {"cut-mid-last-record-goose-nested.pcap", 16, 0, 2},
        {"derived-goose-hsr-both-ring-directions.pcap", 120, 0, 2},
        {"derived-sv-prp-both-lans.pcap", 0, 400, 1},
    };
    return captures;
}

KnownCapture known(OwnCapture const& own) {
    return {.name = own.name,
            .gooseFrames = own.gooseFrames,
            .svFrames = own.svFrames,
            .streams = own.streams,
            .withoutPosition = own.withoutPosition,
            .isOwn = true,
            .dissected = own.dissected,
            .dissectedFrames = own.dissectedFrames.value_or(own.gooseFrames + own.svFrames),
            .whyDissected = own.whyDissected,
            .whyNotDecoded = own.whyNotDecoded};
}

Bytes completed(Bytes const& octets) {
    try {
        return completedCapture(octets);
    } catch (std::runtime_error const&) {
        return octets;  // no classic capture
    }
}

}  // namespace

std::vector<KnownCapture> const& knownCaptures() {
    static std::vector<KnownCapture> const captures = [] {
        std::vector<KnownCapture> all;
        std::transform(ownCaptures().begin(), ownCaptures().end(), std::back_inserter(all), known);
        std::copy_if(recordedCaptures().begin(), recordedCaptures().end(), std::back_inserter(all),
                     [](KnownCapture const& recorded) {
                         return requireCaptures() || capture(recorded.name);
                     });
        return all;
    }();
    return captures;
}

std::vector<KnownCapture> capturesWith(bool (*isWanted)(KnownCapture const&)) {
    std::vector<KnownCapture> captures;
    std::copy_if(knownCaptures().begin(), knownCaptures().end(), std::back_inserter(captures),
                 isWanted);
    return captures;
}

std::vector<KnownCapture> capturesNamed(std::initializer_list<char const*> names) {
    std::vector<KnownCapture> captures;
    for (KnownCapture const& capture : knownCaptures())
        if (std::find(names.begin(), names.end(), capture.name) != names.end())
            captures.push_back(capture);
    return captures;
}

void PrintTo(KnownCapture const& capture, std::ostream* out) {
    *out << capture.name;
    if (capture.isOwn) *out << ", made with seed " << kOwnCaptureSeed;
}

std::vector<ThirteenAsdus> capturesOfThirteenAsdus() {
    std::vector<std::string> own;
    for (int number = 0; number < 13; ++number) own.push_back("LINE" + std::to_string(number));
    std::vector<std::string> const recorded = {
        "66kV1",    "66kV2",    "66kV3",   "XFMR1W1", "XFMR2W1", "XFMR1W2", "XFMR2W2",
        "CB_XFMR1", "CB_XFMR2", "F_66kV1", "F_66kV2", "F_XFMR1", "F_XFMR2"};
    std::vector<ThirteenAsdus> captures;
    for (KnownCapture const& of : capturesNamed({"own-sv-13-asdus-of-12-octets.pcap"}))
        captures.push_back({of, own, of.svFrames});
    for (KnownCapture const& of : capturesNamed({"sv-13asdu-goose-mixed-testbed.pcap"}))
        captures.push_back({of, recorded, 947});
    return captures;
}

std::string pathOf(KnownCapture const& of) {
    if (of.isOwn) return ownCapture(of.name);
    std::optional<std::string> const found = capture(of.name);
    EXPECT_TRUE(found) << "no recorded capture " << of.name;
    return found.value_or("");
}

void KnownCaptureTest::SetUp() {
    path_ = pathOf(GetParam());
    ASSERT_FALSE(path_.empty());
}

std::string const& KnownCaptureTest::wholePath() {
    if (whole_) return whole_->path();
    Bytes const octets = readFile(path_);
    Bytes const whole = completed(octets);
    if (whole.size() == octets.size()) return path_;
    whole_.emplace(whole);
    return whole_->path();
}

std::string testName(testing::TestParamInfo<KnownCapture> const& info) {
    return captureTestName(info.param.name);
}

}  // namespace TalTest
