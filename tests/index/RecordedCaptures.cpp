#include "index/RecordedCaptures.hpp"

#include <cctype>
#include <optional>
#include <ostream>

#include "support/Captures.hpp"

namespace TalTest {

std::vector<RecordedCapture> const& recordedCaptures() {
    static std::vector<RecordedCapture> const captures = {
        {"goose-relay-retransmission-untagged.pcap", 8, 0, 1},
        {"goose-single-vlan-five-octet-integers.pcap", 1, 0, 1},
        {"goose-interlocking-three-publishers-vlan0.pcap", 451, 0, 3},
        {"goose-mms-mixed-station-bus.pcap", 34, 0, 3},
        {"goose-nested-structures-two-relays.pcap", 16, 0, 2},
        {"goose-testbed-viewpoint-a.pcap", 778, 0, 4},
        {"goose-testbed-viewpoint-b.pcap", 791, 0, 4},
        {"sv-92le-4000hz-three-phase-fault.pcap", 0, 12000, 1},
        {"sv-13asdu-goose-mixed-testbed.pcap", 152, 1848, 5},
        {"goose-synthetic-vlan-signed-trailer.pcap", 3, 0, 1, 2,
         "GOOSE streams that differ in VLAN alone (none and 100) hash apart; the signature behind "
         "the PDU is no part of the identity"},
        {"sv-synthetic-refrtm-vlan-signed-trailer.pcap", 0, 3, 1, 2,
         "the VLAN (none and 50) is part of an SV stream's identity, the signature is not"},
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
        {"snapped-90-goose-interlocking.pcap", 40, 0, 2},
        {"cut-mid-last-record-goose-nested.pcap", 16, 0, 2},
        {"derived-goose-hsr-both-ring-directions.pcap", 120, 0, 2},
        {"derived-sv-prp-both-lans.pcap", 0, 400, 1},
    };
    return captures;
}

void PrintTo(RecordedCapture const& capture, std::ostream* out) { *out << capture.name; }

void RecordedCaptureTest::SetUp() {
    std::optional<std::string> const found = capture(GetParam().name);
    if (!found) GTEST_SKIP() << "no recorded capture " << GetParam().name;
    path_ = *found;
}

std::string testName(testing::TestParamInfo<RecordedCapture> const& info) {
    std::string name = info.param.name.substr(0, info.param.name.rfind('.'));
    for (char& character : name)
        if (std::isalnum(static_cast<unsigned char>(character)) == 0) character = '_';
    return name;
}

}  // namespace TalTest
