#include "support/MergingUnit.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "support/Data.hpp"

namespace TalTest {
namespace {

constexpr std::uint64_t samplesPerSecond = 4000;
constexpr std::size_t samplesPerCycle = 80;
constexpr std::uint16_t smpModPerSecond = 1;

/// The octets that change from frame to frame, all at one value.
struct Variables {
    std::uint16_t smpCnt = 0;
    std::uint8_t refrTm = 0;
    std::uint8_t seqData = 0;
    std::uint16_t prpSequence = 0;
};

Bytes build(MergingUnitSettings const& settings, Variables const& variables) {
    Asdu asdu;
    asdu.svID = settings.svID;
    if (!settings.datSet.empty()) {
        asdu.datSet = settings.datSet;
    }
    asdu.smpCnt = variables.smpCnt;
    asdu.seqData = repeat(variables.seqData, 8 * settings.numChannels);
    if (settings.withSampleTimes) {
        asdu.refrTm = repeat(variables.refrTm, 8);
        asdu.smpRate = samplesPerSecond;
        asdu.smpMod = smpModPerSecond;
    }
    SvMessage message;
    message.appId = settings.appId;
    message.asdus.assign(settings.numAsdus, asdu);
    Ethernet ethernet = settings.ethernet;
    ethernet.prpSequence = variables.prpSequence;
    return svFrame(ethernet, message);
}

// Fields of `width` octets differ throughout between the two frames; nothing else does.
std::vector<std::size_t> differences(Bytes const& zeros, Bytes const& ones, std::size_t width) {
    std::vector<std::size_t> begins;
    for (std::size_t i = 0; i < zeros.size(); ++i) {
        if (zeros[i] == ones[i]) {
            continue;
        }
        begins.push_back(i);
        i += width - 1;
    }
    return begins;
}

void overwrite(Bytes& frame, std::size_t position, Bytes const& octets) {
    std::copy(octets.begin(), octets.end(), frame.begin() + static_cast<std::ptrdiff_t>(position));
}

void overwrite16(Bytes& frame, std::size_t position, std::uint64_t value) {
    frame[position] = static_cast<std::uint8_t>(value >> 8);
    frame[position + 1] = static_cast<std::uint8_t>(value);
}

// Currents in milliamperes, voltages in hundredths of a volt; phase A is the one that is faulted.
Sample sampleOf(std::size_t channel, std::size_t index, bool faulted) {
    constexpr double current = 141'421;
    constexpr double voltage = 8'981'462;
    constexpr double faultCurrent = 12 * current;
    constexpr double faultVoltage = 0.3 * voltage;
    constexpr std::uint32_t derived = 0x2000;
    bool const isVoltage = channel % 8 >= 4;
    auto const amplitude = [&](std::size_t phase) {
        bool const atFault = faulted && phase == 0;
        return isVoltage ? (atFault ? faultVoltage : voltage) : (atFault ? faultCurrent : current);
    };
    auto const value = [&](std::size_t phase) {
        double const cycle = static_cast<double>(index) / samplesPerCycle;
        double const angle = cycle - static_cast<double>(phase) / 3;
        return amplitude(phase) * std::sin(2 * std::numbers::pi * angle);
    };
    std::size_t const phase = channel % 4;
    if (phase < 3) {
        return {static_cast<std::int32_t>(std::lround(value(phase))), 0};
    }
    return {static_cast<std::int32_t>(std::lround(value(0) + value(1) + value(2))), derived};
}

std::vector<Bytes> waves(std::size_t numChannels) {
    std::vector<Bytes> out;
    for (bool const faulted : {false, true}) {
        for (std::size_t index = 0; index < samplesPerCycle; ++index) {
            std::vector<Sample> channels;
            for (std::size_t channel = 0; channel < numChannels; ++channel) {
                channels.push_back(sampleOf(channel, index, faulted));
            }
            out.push_back(samples(channels));
        }
    }
    return out;
}

StationStream streamOf(MergingUnitSettings const& settings) {
    StationStream stream;
    stream.protocol = StationStream::Protocol::sampledValues;
    stream.destination = settings.ethernet.destination;
    stream.source = settings.ethernet.source;
    stream.vlanId = settings.ethernet.vlanId;
    stream.hsrLan = settings.ethernet.hsrLan;
    stream.prpLan = settings.ethernet.prpLan;
    stream.appId = settings.appId;
    stream.id = settings.svID;
    stream.datSet = settings.datSet;
    stream.confRev = 1;
    stream.noASDU = settings.numAsdus;
    stream.smpRate = settings.withSampleTimes ? samplesPerSecond : 0;
    return stream;
}

}  // namespace

MergingUnit::MergingUnit(MergingUnitSettings const& settings)
    : StationDevice(settings.phase), settings_(settings), waves_(waves(settings.numChannels)) {
    stream_ = streamOf(settings);
    frame_ = build(settings_, {});
    findFields();
    // A frame leaves once its last sample is taken.
    time_ = (settings_.numAsdus - std::uint64_t{1}) * stationGrid;
}

void MergingUnit::findFields() {
    smpCnt_ = differences(frame_, build(settings_, {.smpCnt = 0xFFFF}), 2);
    refrTm_ = differences(frame_, build(settings_, {.refrTm = 0xFF}), 8);
    seqData_ = differences(frame_, build(settings_, {.seqData = 0xFF}), 8 * settings_.numChannels);
    prpSequence_ = differences(frame_, build(settings_, {.prpSequence = 0xFFFF}), 2);
}

Bytes const& MergingUnit::send() {
    for (std::size_t index = 0; index < settings_.numAsdus; ++index) {
        writeAsdu(index);
    }
    for (std::size_t const position : prpSequence_) {
        overwrite16(frame_, position, numFrames_);
    }
    ++numFrames_;
    time_ += settings_.numAsdus * stationGrid;
    return frame_;
}

void MergingUnit::writeAsdu(std::size_t index) {
    std::uint64_t const smpCnt = numSamples_ % samplesPerSecond;
    std::uint64_t const sampleTime = numSamples_ * stationGrid;
    std::size_t const wave = numSamples_ % samplesPerCycle;
    overwrite16(frame_, smpCnt_[index], smpCnt);
    overwrite(frame_, seqData_[index],
              waves_[wave + (isFaulted(sampleTime) ? samplesPerCycle : 0)]);
    if (!refrTm_.empty()) {
        auto const seconds = static_cast<std::uint32_t>(sampleTime / second);
        auto const fraction = static_cast<std::uint32_t>((smpCnt << 24) / samplesPerSecond);
        overwrite(frame_, refrTm_[index], utcTime(stationStart + seconds, fraction));
    }
    ++numSamples_;
    if (index + 1 == settings_.numAsdus) {
        stream_->maxSmpCnt = std::max(stream_->maxSmpCnt, static_cast<std::uint16_t>(smpCnt));
    }
}

}  // namespace TalTest
