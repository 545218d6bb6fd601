#include "bench/OtherFrames.hpp"

#include <array>
#include <cstddef>
#include <cstdint>

#include "bench/Fields.hpp"
#include "support/OtherTraffic.hpp"

namespace TalBench {

namespace {

constexpr std::array<std::size_t, 20> tcpFrameSizes = {60,  60,   60,   66,   66,   74,  90,
                                                       118, 150,  214,  310,  438,  590, 590,
                                                       800, 1024, 1250, 1500, 1500, 1500};

// A segment cut or filled to a frame of this size. Its checksums are those of the segment before,
// as in captures from hosts whose network card fills them in.
TalTest::Bytes tcpFrame(std::uint32_t number, std::size_t size) {
    constexpr std::size_t ethernetHeaderSize = 14;
    constexpr std::size_t totalLengthPosition = ethernetHeaderSize + 2;
    TalTest::Bytes frame = TalTest::tcpSegment(number);
    frame.resize(size, 'x');
    overwriteNumber(frame, totalLengthPosition, size - ethernetHeaderSize, 2);
    return frame;
}

}  // namespace

Publishers otherFrames() {
    Publishers out;
    auto const add = [&](TalTest::Bytes const& frame) {
        out.push_back(std::make_unique<RepeatedFrame>(false, frame));
    };
    for (std::uint32_t number = 0; number < tcpFrameSizes.size(); ++number) {
        add(tcpFrame(number, tcpFrameSizes[number]));
    }
    for (std::uint32_t number = 0; number < 4; ++number) {
        add(TalTest::arpRequest(number));
        add(TalTest::ptpSync(number));
    }
    return out;
}

}  // namespace TalBench
