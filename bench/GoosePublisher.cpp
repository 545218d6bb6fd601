#include "bench/GoosePublisher.hpp"

#include <vector>

#include "bench/Fields.hpp"
#include "support/Data.hpp"
#include "support/Goose.hpp"
#include "support/StationDevice.hpp"

namespace TalBench {

using TalTest::Bytes;

namespace {

// What the value of an INTEGER takes (ITU-T X.690, 8.3), whose first bit is its sign.
std::size_t octetsOf(std::uint64_t value) {
    std::size_t octets = 1;
    for (; value > 0x7F; value >>= 8) {
        ++octets;
    }
    return octets;
}

// The points take turns: each new state finds one of them the other way round.
std::vector<Bytes> entries(std::uint64_t state) {
    constexpr std::size_t numPoints = 8;
    std::vector<Bytes> out;
    for (std::size_t point = 0; point < numPoints; ++point) {
        out.push_back(TalTest::dataBoolean((state + point) / numPoints % 2 != 0));
        out.push_back(TalTest::dataQuality());
    }
    return out;
}

}  // namespace

GoosePublisher::GoosePublisher(GooseSettings const& settings)
    : Publisher(true), settings_(settings), sqNum_(settings.firstSqNum) {
    buildFrame();
}

Bytes const& GoosePublisher::send() {
    if (sqNum_ == settings_.framesPerState) {
        sqNum_ = 0;
        ++stNum_;
    }
    if (sqNum_ == 0 || octetsOf(sqNum_) != sqNumWidth_) {
        buildFrame();
    }
    overwriteNumber(frame_, sqNumPosition_, sqNum_, sqNumWidth_);
    ++sqNum_;
    return frame_;
}

void GoosePublisher::buildFrame() {
    sqNumWidth_ = octetsOf(sqNum_);
    frame_ = build(0);
    sqNumPosition_ = differences(frame_, build(~std::uint64_t{0}), sqNumWidth_).front();
}

Bytes GoosePublisher::build(std::uint64_t sqNum) const {
    TalTest::GooseMessage message;
    message.appId = settings_.appId;
    message.gocbRef = settings_.device + "LD0/LLN0$GO$gcbTrip";
    message.datSet = settings_.device + "LD0/LLN0$dsTrip";
    message.goID = settings_.device + "_Trip";
    message.t = TalTest::utcTime(TalTest::stationStart + static_cast<std::uint32_t>(stNum_));
    message.stNum = stNum_;
    message.sqNum = TalTest::MinimalUnsigned(sqNum, sqNumWidth_);
    message.setData(entries(stNum_));
    return TalTest::gooseFrame(settings_.ethernet, message);
}

}  // namespace TalBench
