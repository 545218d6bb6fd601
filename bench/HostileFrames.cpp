// Frames of a network's size and above, full of small elements, and frames of all shapes.

#include <utility>

#include "bench/HostileInput.hpp"
#include "support/Ber.hpp"
#include "support/Goose.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalTest::Bytes;

namespace {

constexpr std::size_t elementsPerLevel = 50;
constexpr std::size_t frameSize = 65'535;
constexpr std::uint64_t largeFrames = 400;

/// As many of these octets as make a frame of the size, zeros after them.
Bytes filled(Bytes const& octets, Bytes (*frameOf)(Bytes const&)) {
    std::size_t const room = frameSize - frameOf({}).size();
    Bytes pdu = TalTest::prefix(repeated(octets, room / octets.size()), room);
    pdu.resize(room);
    return frameOf(pdu);
}

/// 50 elements of 50 elements, and so on; each octet is read.
Bytes tree(std::uint8_t tag, Bytes const& leaf, std::size_t leaves) {
    Bytes const branch = TalTest::ber(tag, repeated(leaf, leaves));
    return TalTest::ber(tag, repeated(branch, elementsPerLevel));
}

HostileInput largeFrame(std::string name, Bytes const& frame, HostileLimits limits) {
    return {.name = std::move(name),
            .write = writesFrames(largeFrames, [frame](std::uint64_t) { return frame; }),
            .use = indexes(1, largeFrames),
            .limits = limits};
}

/// The same stream and size as all others, but another frame by its data's tags.
Bytes shape(std::uint64_t number, std::size_t dataSize) {
    Bytes data;
    for (unsigned bit = 0; bit < 20; ++bit) {
        bool const isSet = (number >> bit & 1U) != 0;
        TalTest::append(data, TalTest::ber(isSet ? 0x85 : 0x86, {0x00}));
    }
    TalTest::append(data, TalTest::ber(0x89, Bytes(dataSize), TalTest::LengthForm::twoOctets));
    TalTest::GooseMessage message;
    message.allData = data;
    return gooseFrame({}, message);
}

HostileInput shapes(std::string name, std::uint64_t frames, std::size_t dataSize,
                    HostileLimits limits) {
    return {.name = std::move(name),
            .write = writesFrames(
                frames, [dataSize](std::uint64_t number) { return shape(number, dataSize); }),
            .use = indexes(1, frames),
            .limits = limits};
}

HostileInput smallRecords(std::string name, std::size_t leastSize, std::size_t sizes,
                          HostileLimits limits) {
    return {.name = std::move(name),
            .write = writesFrames(
                1'000'000,
                [=](std::uint64_t number) { return Bytes(leastSize + number % sizes, 0x88); }),
            .use = indexes(0, 0),
            .limits = limits};
}

}  // namespace

void addFrameInputs(std::vector<HostileInput>& inputs) {
    constexpr std::uint8_t structure = 0xA2;
    constexpr std::uint8_t sequence = 0x30;
    Bytes const emptyPdu = {0x61, 0x00};
    Bytes const emptyName = {0x80, 0x00};
    // 50 fields of 26 octets on each of 50 levels: 65,000 octets.
    Bytes const name = TalTest::ber(0x80, Bytes(24, 0x01));
    inputs.push_back(
        largeFrame("goose-64k-flat", filled(emptyPdu, gooseFrameOf), {.time = 1.2, .memory = 1}));
    inputs.push_back(largeFrame(
        "goose-64k-tree", filled(tree(structure, tree(structure, emptyPdu, 11), 1), gooseFrameOf),
        {.time = 25, .memory = 1}));
    inputs.push_back(
        largeFrame("goose-64k-names",
                   gooseFrameOf(repeated(TalTest::ber(0x61, repeated(name, elementsPerLevel)),
                                         elementsPerLevel)),
                   {.time = 35, .memory = 1}));
    inputs.push_back(
        largeFrame("sv-64k-flat", filled(emptyName, svFrameOf), {.time = 1.2, .memory = 1}));
    inputs.push_back(largeFrame("sv-64k-tree",
                                filled(tree(sequence, tree(sequence, emptyName, 11), 1), svFrameOf),
                                {.time = 50, .memory = 1}));
    inputs.push_back(
        largeFrame("sv-64k-names",
                   svFrameOf(repeated(TalTest::ber(sequence, repeated(name, elementsPerLevel)),
                                      elementsPerLevel)),
                   {.time = 45, .memory = 1}));
    inputs.push_back(shapes("goose-alike-in-size-only", 100'000, 100, {.time = 22, .memory = 3}));
    inputs.push_back(
        shapes("goose-16k-alike-in-size-only", 2'000, 16'000, {.time = 6, .memory = 1}));
    inputs.push_back(
        shapes("goose-17k-alike-in-size-only", 2'000, 17'000, {.time = 1.2, .memory = 1}));
    inputs.push_back(smallRecords("records-of-0-octets", 0, 1, {.time = 8, .memory = 1}));
    inputs.push_back(smallRecords("records-of-1-to-13-octets", 1, 13, {.time = 8, .memory = 1}));
}

}  // namespace TalBench
