#include "support/OwnCaptures.hpp"

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "support/OwnCaptureMakers.hpp"
#include "support/TempFile.hpp"

namespace TalTest {
namespace {

using namespace OwnCaptureMakers;

constexpr char const* kFirstOfItsStream =
    "a stream keeps the link layer of its first frame, and none is as good as VLAN 0";
constexpr char const* kLosesItsPlace =
    "tshark reads nothing after an element that it does not know or misses";

std::vector<OwnCapture> gooseCaptures() {
    return {
        {"own-goose-retransmissions.pcap", 60, 0, 3, gooseRetransmissions},
        {"own-goose-every-type.pcap", 25, 0, 3, gooseEveryType},
        {"own-goose-five-octet-integers.pcap", 4, 0, 2, gooseFiveOctetIntegers},
        {"own-goose-long-lengths.pcap", 12, 0, 1, gooseLongLengths},
        {.name = "own-goose-longest-lengths.pcap",
         .gooseFrames = 2,
         .streams = 1,
         .make = gooseLongestLengths,
         .whyNotDecoded = "the decoders read lengths of at most two octets"},
        {"own-goose-hsr-both-ways.pcap", 40, 0, 2, gooseHsr},
        {"own-goose-prp-both-lans.pcap", 48, 0, 2, goosePrp},
        {"own-goose-signed-and-vlans.pcap", 20, 0, 3, gooseSigned},
        {.name = "own-goose-trailers-as-elements.pcap",
         .gooseFrames = 5,
         .streams = 2,
         .make = gooseTrailersAsElements,
         .dissected = Dissected::inCounts,
         .whyDissected = "tshark reads no elements after the PDU",
         .whyNotDecoded = "the position is that of the trailer"},
        {.name = "own-goose-priority-tag.pcap",
         .gooseFrames = 9,
         .streams = 2,
         .make = goosePriorityTag,
         .dissected = Dissected::inCounts,
         .whyDissected = kFirstOfItsStream},
        {.name = "own-goose-odd-elements.pcap",
         .gooseFrames = 17,
         .streams = 7,
         .make = gooseOddElements,
         .withoutPosition = 1,
         .dissected = Dissected::inCounts,
         .whyDissected = kLosesItsPlace},
        {.name = "own-goose-snapped.pcap",
         .gooseFrames = 10,
         .streams = 2,
         .make = gooseSnapped,
         .withoutPosition = 10},
        {.name = "own-goose-cut-last-record.pcap",
         .gooseFrames = 8,
         .streams = 2,
         .make = gooseCutLastRecord,
         .whyNotDecoded = "the file ends before the last PDU does"},
    };
}

std::vector<OwnCapture> svCaptures() {
    return {
        {"own-sv-merging-units.pcap", 0, 102, 3, svMergingUnits},
        {"own-sv-1-to-13-asdus.pcap", 0, 39, 13, svManyAsdus},
        {"own-sv-13-asdus-of-12-octets.pcap", 0, 5, 1, svTwelveOctets},
        {"own-sv-hsr-both-ways.pcap", 0, 40, 4, svHsr},
        {"own-sv-prp-both-lans.pcap", 0, 20, 1, svPrp},
        {"own-sv-signed-and-vlans.pcap", 0, 12, 2, svSigned},
        {.name = "own-sv-trailers-as-elements.pcap",
         .svFrames = 7,
         .streams = 2,
         .make = svTrailersAsElements,
         .dissected = Dissected::inCounts,
         .whyDissected = "tshark reads no elements after the PDU",
         .whyNotDecoded = "the position is that of the trailer"},
        {.name = "own-sv-odd-elements.pcap",
         .svFrames = 12,
         .streams = 3,
         .make = svOddElements,
         .dissected = Dissected::inCounts,
         .whyDissected = kLosesItsPlace,
         .whyNotDecoded = "noASDU is left out, while others of the stream have it"},
    };
}

std::vector<OwnCapture> mixedCaptures() {
    auto const repeated = [](char const* name, MadeCapture (*make)()) {
        return OwnCapture{.name = name,
                          .gooseFrames = 12,
                          .svFrames = 12,
                          .streams = 3,
                          .make = make,
                          .dissected = Dissected::repeated};
    };
    return {
        {"own-mixed-le-us.pcap", 12, 12, 3, mixedMicroLittle},
        repeated("own-mixed-be-us.pcap", mixedMicroBig),
        repeated("own-mixed-le-ns.pcap", mixedNanoLittle),
        repeated("own-mixed-be-ns.pcap", mixedNanoBig),
    };
}

std::vector<OwnCapture> fileCaptures() {
    return {
        {.name = "own-viewpoint-a.pcap",
         .gooseFrames = 45,
         .svFrames = 15,
         .streams = 4,
         .make = viewpointA,
         .dissected = Dissected::repeated},
        {.name = "own-viewpoint-b.pcap",
         .gooseFrames = 51,
         .svFrames = 17,
         .streams = 4,
         .make = viewpointB,
         .dissected = Dissected::repeated},
        {.name = "own-times-backwards.pcap",
         .gooseFrames = 12,
         .svFrames = 12,
         .streams = 2,
         .make = timesBackwards,
         .dissected = Dissected::repeated},
        {.name = "own-nothing-to-index.pcap",
         .make = nothingToIndex,
         .dissected = Dissected::otherwise,
         .dissectedFrames = 24,
         .whyDissected = "tshark looks through service tags, and into headers without a PDU"},
        {.name = "own-other-link-type.pcap",
         .gooseFrames = 4,
         .streams = 1,
         .make = otherLinkType,
         .dissected = Dissected::otherwise,
         .dissectedFrames = 0,
         .whyDissected = "the index takes every record for an Ethernet frame"},
        {.name = "own-next-generation.pcap",
         .make = nextGeneration,
         .dissected = Dissected::otherwise,
         .dissectedFrames = 3,
         .whyDissected = "the index takes classic captures alone"},
    };
}

}  // namespace

std::vector<OwnCapture> const& ownCaptures() {
    static std::vector<OwnCapture> const captures = [] {
        std::vector<OwnCapture> all = gooseCaptures();
        for (auto const& more : {svCaptures(), mixedCaptures(), fileCaptures()})
            all.insert(all.end(), more.begin(), more.end());
        return all;
    }();
    return captures;
}

std::string ownCapture(std::string_view name) {
    static TempDir const folder;
    std::string path = folder.file(name);
    if (std::filesystem::exists(path)) return path;
    auto const& all = ownCaptures();
    auto const found = std::find_if(
        all.begin(), all.end(), [name](OwnCapture const& capture) { return capture.name == name; });
    if (found == all.end()) throw std::invalid_argument("no own capture " + std::string(name));
    return folder.write(name, found->make().octets);
}

std::vector<std::string> ownCapturePaths() {
    std::vector<std::string> paths;
    for (OwnCapture const& capture : ownCaptures()) paths.push_back(ownCapture(capture.name));
    return paths;
}

}  // namespace TalTest
