#pragma once

// Blocks and options of every kind, for next-generation captures.

#include <cstdint>

#include "support/Bytes.hpp"
#include "support/PcapngMaker.hpp"

namespace TalIec61850Analysis {

/// All options that a packet may have.
[[nodiscard]] inline TalTest::Bytes allPacketOptions(TalTest::PcapngMaker const& maker) {
    return TalTest::concat(
        {maker.option(1, TalTest::text("a comment")), maker.option(2, {1, 0, 0, 0}),
         maker.option(3, {2, 1, 2, 3, 4}), maker.numberOption(4, 9), maker.numberOption(5, 77),
         maker.option(6, {3, 0, 0, 0}), maker.option(7, {1, 5, 6}),
         maker.option(2988, {0, 0, 0, 1, 9}), TalTest::PcapngMaker::endOfOptions()});
}

[[nodiscard]] inline TalTest::Bytes allStatisticsOptions(TalTest::PcapngMaker const& maker) {
    TalTest::Bytes options = maker.option(1, TalTest::text("counters"));
    for (std::uint16_t code = 2; code <= 8; ++code) {
        TalTest::append(options, maker.numberOption(code, code));
    }
    return TalTest::concat({options, TalTest::PcapngMaker::endOfOptions()});
}

/// Blocks that are no packets, of every type.
inline void addOtherBlocks(TalTest::PcapngMaker& maker) {
    maker.statistics(0, allStatisticsOptions(maker));
    for (std::uint32_t const type : {4U, 0xAU, 0xBADU, 0x40000BADU, 0x1234U}) {
        maker.block(type, TalTest::Bytes(24, 0x55));
    }
}

}  // namespace TalIec61850Analysis
