#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "bench/Fields.hpp"
#include "bench/Publisher.hpp"
#include "support/Ethernet.hpp"

namespace TalBench {

/// What a sender of Sampled Values publishes: 9-2LE, eight channels.
struct SvSettings {
    TalTest::Ethernet ethernet = {};
    std::uint16_t appId = 0x4000;
    std::string svID = {};
    std::size_t numAsdus = 1;
    /// Each frame is sent over LAN A and then over LAN B of PRP, with one sequence number.
    bool isOverBothLans = false;
    bool isWanted = true;
};

/// A sender of Sampled Values, 4000 samples a second.
class SvPublisher : public Publisher {
public:
    explicit SvPublisher(SvSettings const& settings);

    [[nodiscard]] TalTest::Bytes const& send() override;

private:
    void writeSamples(TalTest::Bytes& frame) const;

    /// The frame, or that of each LAN; the fields stand in both at the same places.
    std::vector<TalTest::Bytes> frames_;
    Positions smpCnt_;
    Positions seqData_;
    Positions prpSequence_;
    std::size_t lan_ = 0;
    std::uint64_t numSamples_ = 0;
    std::uint64_t numFrames_ = 0;
};

}  // namespace TalBench
