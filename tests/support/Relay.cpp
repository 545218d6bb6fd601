#include "support/Relay.hpp"

#include <algorithm>

namespace TalTest {
namespace {

constexpr std::uint64_t heartbeat = second;
constexpr std::uint64_t firstRetransmission = 2 * millisecond;

Bytes goTime(std::uint64_t time) {
    std::uint64_t const fraction = ((time % second) << 24) / second;
    return utcTime(stationStart + static_cast<std::uint32_t>(time / second),
                   static_cast<std::uint32_t>(fraction));
}

StationStream streamOf(RelaySettings const& settings) {
    StationStream stream;
    stream.protocol = StationStream::Protocol::goose;
    stream.destination = settings.ethernet.destination;
    stream.source = settings.ethernet.source;
    stream.vlanId = settings.ethernet.vlanId;
    stream.hsrLan = settings.ethernet.hsrLan;
    stream.prpLan = settings.ethernet.prpLan;
    stream.appId = settings.appId;
    stream.id = settings.device + "LD0/LLN0$GO$gcbTrip";
    stream.datSet = settings.device + "LD0/LLN0$dsTrip";
    stream.goID = settings.device + "_Trip";
    stream.confRev = settings.confRev;
    return stream;
}

}  // namespace

Relay::Relay(RelaySettings const& settings)
    : StationDevice(settings.phase),
      settings_(settings),
      interval_(heartbeat),
      nextChange_(firstFault + settings.delay),
      changeTime_(utcTime(stationStart - 86'400)) {
    stream_ = streamOf(settings);
    time_ = settings.firstHeartbeat;
}

Bytes const& Relay::send() {
    if (time_ == nextChange_) {
        enterState(time_);
    }
    frame_ = build();
    ++numFrames_;
    ++sqNum_;
    time_ = std::min(time_ + interval_, nextChange_);
    interval_ = std::min(2 * interval_, heartbeat);
    return frame_;
}

void Relay::enterState(std::uint64_t time) {
    tripped_ = !tripped_;
    ++stNum_;
    sqNum_ = 0;
    interval_ = firstRetransmission;
    nextChange_ = time + (tripped_ ? faultDuration : faultInterval - faultDuration);
    changeTime_ = goTime(time);
}

Bytes Relay::build() const {
    GooseMessage message;
    message.appId = settings_.appId;
    message.gocbRef = stream_->id;
    message.datSet = stream_->datSet;
    message.goID = stream_->goID;
    message.timeAllowedtoLive = std::max(2 * interval_ / millisecond, std::uint64_t{10});
    message.t = changeTime_;
    message.stNum = stNum_;
    message.sqNum = sqNum_;
    message.confRev = settings_.confRev;
    message.setData(data());
    Ethernet ethernet = settings_.ethernet;
    ethernet.hsrSequence = numFrames_;
    ethernet.prpSequence = numFrames_;
    return gooseFrame(ethernet, message);
}

std::vector<Bytes> Relay::data() const {
    std::vector<Bytes> entries;
    for (std::size_t point = 0; point < settings_.numPoints; ++point) {
        // Only the first two points, start and trip, follow the fault.
        entries.push_back(dataBoolean(tripped_ && point < 2));
        entries.push_back(dataQuality());
    }
    entries.push_back(
        dataStructure({dataBoolean(tripped_), dataQuality(), ber(0x91, changeTime_)}));
    entries.push_back(dataFloat(tripped_ ? 1697.1F : 141.4F));
    return entries;
}

}  // namespace TalTest
