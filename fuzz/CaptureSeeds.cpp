// Seeds that are frames, alone or in captures.

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fuzz/FilterChoice.hpp"
#include "fuzz/PositionsInput.hpp"
#include "fuzz/Seeds.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/Apdu.hpp"
#include "support/Ber.hpp"
#include "support/CaptureFile.hpp"
#include "support/Ethernet.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

/// A choice of both lists: from the first stream of each, a criterion of that number and another;
/// every third is spoilt.
Bytes filterChoice(std::size_t number) {
    if (number % 4 == 0) return Bytes(kFilterChoiceSize);
    std::size_t const criteria = 1U << number % 12 | 1U << number / 5 % 12;
    Bytes const entry = concat({{0}, bigEndian(criteria | (number % 3 == 0 ? 0x8000U : 0U), 2)});
    auto const shape = static_cast<std::uint8_t>(number % 2 == 0 ? 0x05 : 0x0A);
    return concat({{shape}, entry, entry, entry, entry});
}

}  // namespace

void writeCaptureSeeds(Seeds seeds) {
    auto const frames = allFrames();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        CaptureBuilder capture(captureVariants[i % captureVariants.size()]);
        std::uint32_t const second = static_cast<std::uint32_t>(i) * 1000;
        std::array<std::size_t, 4> const some = {i, i, i * 7 % frames.size(), i % 11};
        for (std::size_t const which : some) capture.add(second, 5000, frames[which].octets);
        capture.add(second, 6000, ethernetFrame({}, 0x0800, Bytes(40)));
        if (i % 5 == 0) capture.addClaiming(second, 7000, 2000, frames[i].octets);
        if (i % 7 == 0) capture.addSnapped(second, 8000, 90, frames[i].octets);
        seeds.write(concat({filterChoice(i), capture.bytes()}));
    }
}

void writeFrameSeeds(Seeds seeds) {
    // Deeper than the walk's inline part, and come back to.
    Bytes const deep = nestedAmong(0xA2, 20, ber(0x61, {}));
    for (std::uint16_t const type : {etherTypeGoose, etherTypeSampledValues})
        seeds.write(concat({filterChoice(0), ethernetFrame({}, type, apdu({.appId = 1}, deep))}));
    auto const frames = allFrames();
    for (std::size_t i = 0; i < frames.size(); ++i) {
        seeds.write(concat({filterChoice(i), frames[i].octets}));
        seeds.write(concat({filterChoice(i + 1), frames[i].octets}));
    }
}

void writePositionSeeds(Seeds seeds) {
    auto const positionOf = [](std::size_t position) {
        return concat({{0}, bigEndian(position, kPositionSize - 1)});
    };
    for (auto const& frame : allFrames())
        for (std::size_t at = 0; at < frame.octets.size(); ++at)
            if (frame.octets[at] == 0x61 || frame.octets[at] == 0xA2)
                seeds.write(concat({positionOf(at), frame.octets}));
    // An element without a length, inside one that has one.
    seeds.write(concat({positionOf(0), ber(0x61, concat({ber(0x80, "n"), {0xAB}}))}));
    seeds.write(concat({positionOf(0), ber(0xA2, ber(0x30, {0x80}))}));
    seeds.write(concat({positionOf(0), ber(0xA2, {0x00, 0x30})}));
}

}  // namespace TalFuzz
