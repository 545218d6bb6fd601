#include "bench/SvPublisher.hpp"

#include <cmath>
#include <numbers>

#include "support/SampledValues.hpp"

namespace TalBench {

using TalTest::Bytes;

namespace {

constexpr std::uint64_t samplesPerSecond = 4000;
constexpr std::size_t samplesPerCycle = 80;
constexpr std::size_t seqDataSize = 64;

struct Variables {
    std::uint16_t smpCnt = 0;
    std::uint8_t seqData = 0;
    std::uint16_t prpSequence = 0;
};

Bytes build(SvSettings const& settings, Variables const& variables) {
    TalTest::Asdu asdu;
    asdu.svID = settings.svID;
    asdu.smpCnt = variables.smpCnt;
    asdu.seqData = TalTest::repeat(variables.seqData, seqDataSize);
    TalTest::SvMessage message;
    message.appId = settings.appId;
    message.asdus.assign(settings.numAsdus, asdu);
    TalTest::Ethernet ethernet = settings.ethernet;
    ethernet.prpSequence = variables.prpSequence;
    return TalTest::svFrame(ethernet, message);
}

// Three phases of a current and of a voltage, and what their neutrals carry: nothing.
Bytes wave(std::size_t index) {
    std::vector<TalTest::Sample> channels;
    for (std::size_t channel = 0; channel < 8; ++channel) {
        double const amplitude = channel % 4 == 3 ? 0 : channel < 4 ? 141'421 : 8'981'462;
        double const phase = static_cast<double>(channel % 4) / 3;
        double const cycle = static_cast<double>(index) / samplesPerCycle;
        double const value = amplitude * std::sin(2 * std::numbers::pi * (cycle - phase));
        channels.emplace_back(static_cast<std::int32_t>(std::lround(value)), 0);
    }
    return TalTest::samples(channels);
}

// seqData for each sample of a cycle; all senders share them.
std::vector<Bytes> const& waves() {
    static std::vector<Bytes> const all = [] {
        std::vector<Bytes> cycle;
        for (std::size_t index = 0; index < samplesPerCycle; ++index) {
            cycle.push_back(wave(index));
        }
        return cycle;
    }();
    return all;
}

}  // namespace

SvPublisher::SvPublisher(SvSettings const& settings) : Publisher(settings.isWanted) {
    SvSettings own = settings;
    if (own.isOverBothLans) {
        own.ethernet.prpLan = 'B';
        frames_.push_back(build(own, {}));
        own.ethernet.prpLan = 'A';
    }
    frames_.insert(frames_.begin(), build(own, {}));
    Bytes const& frame = frames_.front();
    smpCnt_ = differences(frame, build(own, {.smpCnt = 0xFFFF}), 2);
    seqData_ = differences(frame, build(own, {.seqData = 0xFF}), seqDataSize);
    prpSequence_ = differences(frame, build(own, {.prpSequence = 0xFFFF}), 2);
}

Bytes const& SvPublisher::send() {
    Bytes& frame = frames_[lan_];
    writeSamples(frame);
    for (std::size_t const position : prpSequence_) {
        overwriteNumber(frame, position, numFrames_, 2);
    }
    lan_ = (lan_ + 1) % frames_.size();
    if (lan_ == 0) {
        numSamples_ += smpCnt_.size();
        ++numFrames_;
    }
    return frame;
}

void SvPublisher::writeSamples(Bytes& frame) const {
    for (std::size_t asdu = 0; asdu < smpCnt_.size(); ++asdu) {
        std::uint64_t const sample = numSamples_ + asdu;
        overwriteNumber(frame, smpCnt_[asdu], sample % samplesPerSecond, 2);
        overwrite(frame, seqData_[asdu], waves()[sample % samplesPerCycle]);
    }
}

}  // namespace TalBench
