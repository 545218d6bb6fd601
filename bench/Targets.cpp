#include "bench/Targets.hpp"

#include <algorithm>
#include <array>

namespace TalBench {

namespace {

struct Target {
    std::string_view measured;
    double limit;
};

// All of them, by the texts of the rows.
constexpr std::array targets = {
    Target{"sv16: index / libpcap", 0.45},
    Target{"sv16: index / read(2)", 2.0},
    Target{"goose64: index / libpcap", 0.55},
    Target{"sv8asdu: index / read(2)", 1.6},
    Target{"mix1000: index / libpcap", 0.65},
    Target{"sv16: index, read ahead / read(2)", 1.2},
    Target{"goose64: index, read ahead / read(2)", 1.25},
    Target{"mix1000: index, read ahead / read(2)", 1.6},
    Target{"sv16: index, read ahead / read(2), from disk", 1.2},
    Target{"goose64: index, read ahead / read(2), from disk", 1.25},
    Target{"mix1000: index, read ahead / read(2), from disk", 1.6},
    Target{"mix1000: index with progress / without", 1.15},
    Target{"sv16: index / tshark", 0.01},
    Target{"goose64: index / tshark", 0.01},
    Target{"sv8asdu: index / tshark", 0.01},
    Target{"mix1000: index / tshark", 0.01},
    Target{"index: 8M frames / 1M frames", 1.1},
    Target{"index: 10000 streams / 1 stream", 3},
    Target{"sv16: octets resident per packet", 17.5},
    Target{"goose64: octets resident per packet", 17.5},
    Target{"sv16: allocations per frame but the deques'", 0},
    Target{"goose64: allocations per frame but the deques'", 0},
    Target{"mix1000: allocations per frame but the deques'", 0},
    Target{"sv16: true index / index", 1.5},
    Target{"goose64: true index / index", 1.5},
    Target{"mix1000: true index / index", 1.5},
    Target{"sv16: octets resident per packet, true index", 32},
    Target{"goose64: octets resident per packet, true index", 32},
    Target{"mix1000: octets resident per packet, true index", 32},
    Target{"sv16: records, pcapng / the same frames as classic", 1.3},
    Target{"goose64: records, pcapng / the same frames as classic", 1.3},
    Target{"sv16: true index, pcapng / classic", 1.3},
    Target{"goose64: true index, pcapng / classic", 1.3},
    Target{"recordAt on 4 GB / on 4 MB", 1.5},
    Target{"recordAt on 4 GB: MiB at most", 20},
    Target{"sv16: true index with read-ahead / read(2)", 1.4},
    Target{"sv16: true index with read-ahead / read(2), from disk", 1.4},
    Target{"eight files: two threads / one", 0.55},
    Target{"samples: columns of 8 channels / read(2)", 3.0},
    Target{"sv16: indexed and checked / true index", 2.0},
    Target{"goose64: indexed and checked / true index", 3.0},
    Target{"scl: station of 50 MB / parsed by pugixml", 3.0},
    Target{"scl: GOOSE values with names / without", 1.2},
    Target{"decode GOOSE / open, lseek, read, close", 2},
    Target{"decode SV / open, lseek, read, close", 2},
    Target{"judge GOOSE, no filter entry: allocations per frame", 0},
    Target{"judge SV, no filter entry: allocations per frame", 0},
};

}  // namespace

std::optional<double> targetOf(std::string_view measured) {
    auto const found = std::ranges::find(targets, measured, &Target::measured);
    return found == targets.end() ? std::nullopt : std::optional(found->limit);
}

}  // namespace TalBench
