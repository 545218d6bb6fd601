// Seeds that are capture files of either format.

#include <cstddef>
#include <cstdint>

#include "fuzz/Seeds.hpp"
#include "lanes/LaneFrames.hpp"
#include "support/CaptureFile.hpp"
#include "support/PcapngMaker.hpp"

namespace TalFuzz {

using namespace TalTest;

namespace {

/// Offsets that are asked for, all over a small file.
Bytes askedOffsets(std::size_t step) {
    Bytes octets;
    for (std::size_t i = 0; i < 8; ++i) append(octets, bigEndian(24 + i * step, 2));
    return octets;
}

void addSection(PcapngMaker& maker, bool isLittleEndian, std::uint8_t resolution,
                Bytes const& frame) {
    maker.section(isLittleEndian);
    maker.interface(1, 0, maker.timeOptions(resolution, 100, "if"));
    maker.packet({.time = 1'700'000'000'000, .frame = frame});
    maker.packet({.frame = {1}, .options = maker.numberOption(4, 3)});
    maker.simplePacket({1, 2, 3}).oldPacket({.frame = {4}, .dropped = 1});
    maker.block(4, Bytes(6)).statistics(0, maker.numberOption(5, 7));
}

}  // namespace

void writeCaptureFileSeeds(Seeds seeds) {
    auto const frames = allFrames();
    for (std::size_t i = 0; i < 8; ++i) {
        Bytes const frame = frames[i * 7 % frames.size()].octets;
        CaptureBuilder classic(captureVariants[i % captureVariants.size()]);
        for (std::uint32_t record = 0; record < 6; ++record) {
            classic.add(record, 5000, record % 3 == 0 ? frame : Bytes(10 + record));
        }
        seeds.write(concat({askedOffsets(50), classic.bytes()}));
        PcapngMaker maker;
        addSection(maker, i % 2 == 0, static_cast<std::uint8_t>(i * 37), frame);
        seeds.write(concat({askedOffsets(40), maker.bytes()}));
        addSection(maker, i % 4 < 2, 9, {1, 2, 3, 4});
        seeds.write(concat({askedOffsets(60), maker.bytes()}));
    }
}

}  // namespace TalFuzz
