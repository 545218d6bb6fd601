#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/SampledValues.hpp"
#include "support/StationDevice.hpp"

namespace TalTest {

/// What a merging unit of the station publishes. The default is 9-2LE at 50 Hz.
struct MergingUnitSettings {
    Ethernet ethernet = {};
    std::uint16_t appId = 0x4000;
    std::string svID = {};
    /// Left out of the ASDUs when empty.
    std::string datSet = {};
    std::uint8_t numAsdus = 1;
    /// Four currents, four voltages, then currents again.
    std::size_t numChannels = 8;
    /// refrTm, smpRate and smpMod are part of the ASDUs.
    bool withSampleTimes = false;
    std::uint64_t phase = 0;
};

/// A merging unit that takes 4000 samples a second. Its frames are built once; what changes from
/// one to the next is written into them where it is.
class MergingUnit : public StationDevice {
public:
    explicit MergingUnit(MergingUnitSettings const& settings);

    [[nodiscard]] Bytes const& send() override;

private:
    /// Where a field begins that changes, once for each ASDU.
    using Positions = std::vector<std::size_t>;

    void findFields();
    void writeAsdu(std::size_t index);

    MergingUnitSettings settings_;
    Bytes frame_;
    Positions smpCnt_;
    Positions refrTm_;
    Positions seqData_;
    Positions prpSequence_;
    /// seqData for each sample of a cycle: healthy, then faulted.
    std::vector<Bytes> waves_;
    std::uint64_t numSamples_ = 0;
    std::uint16_t numFrames_ = 0;
};

}  // namespace TalTest
