// Records whose elements nest as deep as fits.

#include <utility>

#include "bench/HostileInput.hpp"
#include "support/Ber.hpp"

namespace TalBench {

using TalTest::Bytes;

namespace {

constexpr std::uint8_t structure = 0xA2;
constexpr std::uint8_t sequence = 0x30;

// An empty goosePdu: the walk takes the position of each. An empty svID, text and all.
Bytes emptyPdu() { return {0x61, 0x00}; }
Bytes emptyName() { return {0x80, 0x00}; }

HostileInput oneFrame(std::string name, Bytes (*frameOf)(Bytes const&), Bytes (*pdu)(),
                      HostileLimits limits) {
    return {.name = std::move(name),
            .write = writesFrames(1, [=](std::uint64_t) { return frameOf(pdu()); }),
            .use = onSmallStack(indexes(1, 1)),
            .limits = limits};
}

}  // namespace

void addNestedInputs(std::vector<HostileInput>& inputs) {
    inputs.push_back(oneFrame("goose-million-levels", gooseFrameOf,
                              [] { return TalTest::nested(structure, million, emptyPdu()); },
                              {.time = 40, .memory = 30}));
    inputs.push_back(oneFrame("goose-million-levels-and-back", gooseFrameOf,
                              [] { return TalTest::nestedAmong(structure, million, emptyPdu()); },
                              {.time = 110, .memory = 135}));
    inputs.push_back(oneFrame(
        "goose-50-on-every-level", gooseFrameOf,
        [] { return TalTest::nestedAmong(structure, million / 16, repeated(emptyPdu(), 49)); },
        {.time = 90, .memory = 30}));
    inputs.push_back(oneFrame("sv-million-levels", svFrameOf,
                              [] { return TalTest::nested(sequence, million, emptyName()); },
                              {.time = 40, .memory = 30}));
    inputs.push_back(oneFrame("sv-million-levels-and-back", svFrameOf,
                              [] { return TalTest::nestedAmong(sequence, million, emptyName()); },
                              {.time = 120, .memory = 135}));
    inputs.push_back(oneFrame(
        "sv-50-on-every-level", svFrameOf,
        [] { return TalTest::nestedAmong(sequence, million / 16, repeated(emptyName(), 49)); },
        {.time = 60, .memory = 30}));
}

}  // namespace TalBench
