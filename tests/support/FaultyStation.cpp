#include "support/FaultyStation.hpp"

#include <algorithm>
#include <numeric>
#include <stdexcept>

#include "support/CaptureFile.hpp"
#include "support/Data.hpp"

namespace TalTest {

std::size_t FaultyStation::add(SvPlan const& plan) {
    std::size_t const stream = names_.size();
    names_.push_back(plan.svID);
    std::uint64_t count = plan.firstCount;
    for (std::size_t number = 0; number < plan.frames; ++number) {
        SvMessage message;
        message.asdus.clear();
        for (std::uint32_t asdu = 0; asdu < plan.asdus; ++asdu, ++count) {
            Asdu one;
            one.svID = plan.svID;
            one.smpCnt = Unsigned<2>(count % plan.rate);
            message.asdus.push_back(one);
        }
        auto const samples = static_cast<std::int64_t>(number * plan.asdus);
        send({.stream = stream,
              .number = number,
              .time = plan.start + samples * kNsPerSecond / plan.rate,
              .ethernet = Ethernet().to("01:0c:cd:04:00:01").from(plan.source),
              .message = message},
             plan.prpDelay);
    }
    return stream;
}

/// @param prpDelay  of the copy over LAN B; none is sent where it is not set
void FaultyStation::send(StationFrame frame, std::optional<std::int64_t> prpDelay) {
    if (!prpDelay) {
        frames_.push_back(std::move(frame));
        return;
    }
    ++prpSequence_;
    StationFrame copy = frame;
    frame.ethernet = frame.ethernet.withPrp('A', prpSequence_);
    copy.ethernet = copy.ethernet.withPrp('B', prpSequence_);
    copy.time += *prpDelay;
    frames_.push_back(std::move(frame));
    frames_.push_back(std::move(copy));
}

std::size_t FaultyStation::add(GoosePlan const& plan) {
    std::size_t const stream = names_.size();
    names_.push_back(plan.gocbRef);
    std::int64_t time = plan.start;
    std::size_t number = 0;
    for (std::size_t state = 0; state < plan.states.size(); ++state) {
        // The first state has lasted.
        bool const isOld = state == 0 && plan.firstMessage > 0;
        std::int64_t interval = isOld ? plan.heartbeat : std::int64_t{4'000'000};
        std::int64_t const changed = isOld ? time - kNsPerSecond : time;
        for (std::size_t i = 0; i < plan.states[state]; ++i) {
            GooseMessage message;
            message.gocbRef = plan.gocbRef;
            message.timeAllowedtoLive = static_cast<std::uint64_t>(plan.timeAllowedtoLive);
            message.stNum = plan.firstState + state;
            message.sqNum = i + (state == 0 ? plan.firstMessage : 0);
            message.t =
                utcTime(static_cast<std::uint32_t>(kStart + changed / kNsPerSecond),
                        static_cast<std::uint32_t>((changed % kNsPerSecond << 24) / kNsPerSecond));
            message.setData({dataBoolean((plan.firstState + state) % 2 == 1), dataQuality(),
                             dataUtcTime(1'700'000'000 + static_cast<std::uint32_t>(state))});
            send({.stream = stream,
                  .number = number,
                  .time = time,
                  .ethernet = Ethernet().from(plan.source),
                  .message = message},
                 plan.prpDelay);
            ++number;
            time += interval;
            interval = std::min(2 * interval, plan.heartbeat);
        }
    }
    return stream;
}

StationFrame& FaultyStation::frame(std::size_t stream, std::size_t number) {
    auto const found = std::find_if(frames_.begin(), frames_.end(), [&](auto const& each) {
        return each.stream == stream && each.number == number;
    });
    if (found == frames_.end()) {
        throw std::out_of_range("no such frame");
    }
    return *found;
}

SvMessage& FaultyStation::sv(std::size_t stream, std::size_t number) {
    return std::get<SvMessage>(frame(stream, number).message);
}

GooseMessage& FaultyStation::goose(std::size_t stream, std::size_t number) {
    return std::get<GooseMessage>(frame(stream, number).message);
}

FaultyStation& FaultyStation::drop(std::size_t stream, std::size_t number, std::size_t count) {
    std::erase_if(frames_, [&](StationFrame const& each) {
        return each.stream == stream && each.number >= number && each.number < number + count;
    });
    return *this;
}

FaultyStation& FaultyStation::dropBetween(std::int64_t from, std::int64_t until) {
    std::erase_if(frames_,
                  [&](StationFrame const& each) { return each.time >= from && each.time < until; });
    return *this;
}

FaultyStation& FaultyStation::delay(std::size_t stream, std::size_t number, std::int64_t time) {
    frame(stream, number).time += time;
    return *this;
}

FaultyStation& FaultyStation::repeat(std::size_t stream, std::size_t number, std::int64_t after) {
    StationFrame again = frame(stream, number);
    again.time += after;
    frames_.push_back(again);
    return *this;
}

FaultyStation& FaultyStation::changeSvFrom(std::size_t stream, std::size_t number,
                                           std::function<void(SvMessage&)> const& change) {
    for (StationFrame& each : frames_) {
        if (each.stream == stream && each.number >= number) {
            change(std::get<SvMessage>(each.message));
        }
    }
    return *this;
}

FaultyStation& FaultyStation::changeGooseFrom(std::size_t stream, std::size_t number,
                                              std::function<void(GooseMessage&)> const& change) {
    for (StationFrame& each : frames_) {
        if (each.stream == stream && each.number >= number) {
            change(std::get<GooseMessage>(each.message));
        }
    }
    return *this;
}

FaultyStation& FaultyStation::stepClock(std::int64_t time, std::int64_t step) {
    for (StationFrame& each : frames_) {
        each.clock += each.time >= time ? step : 0;
    }
    return *this;
}

FaultyStation& FaultyStation::splitAt(std::int64_t time) {
    for (StationFrame& each : frames_) {
        each.file += each.time >= time ? 1U : 0U;
    }
    return *this;
}

FaultyStation& FaultyStation::tapLans(std::int64_t ahead) {
    for (StationFrame& each : frames_) {
        if (each.ethernet.prpLan == 'B') {
            each.file = 1;
            each.clock += ahead;
        }
    }
    return *this;
}

FaultyStation& FaultyStation::makeRing() {
    for (StationFrame& each : frames_) {
        each.ethernet.hsrLan = each.ethernet.prpLan;
        each.ethernet.hsrSequence = each.ethernet.prpSequence;
        each.ethernet.prpLan.reset();
    }
    return *this;
}

FaultyStation& FaultyStation::overlap(std::int64_t from, std::int64_t until) {
    for (StationFrame& each : frames_) {
        each.isTwice = each.isTwice || (each.time >= from && each.time < until);
    }
    return *this;
}

Bytes FaultyStation::octetsOf(StationFrame const& frame) {
    if (auto const* const sv = std::get_if<SvMessage>(&frame.message)) {
        return svFrame(frame.ethernet, *sv);
    }
    return gooseFrame(frame.ethernet, std::get<GooseMessage>(frame.message));
}

std::vector<StationFrame> const& FaultyStation::inTimeOrder() {
    // Frames are large: their numbers are sorted, and each frame is moved once.
    std::vector<std::size_t> order(frames_.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
        return frames_[a].time < frames_[b].time;
    });
    std::vector<StationFrame> sorted;
    sorted.reserve(order.size());
    for (std::size_t const number : order) {
        sorted.push_back(std::move(frames_[number]));
    }
    frames_ = std::move(sorted);
    return frames_;
}

std::vector<Bytes> FaultyStation::captures() {
    inTimeOrder();
    placed_.clear();
    std::size_t files = 1;
    for (StationFrame const& each : frames_) {
        files = std::max(files, each.file + (each.isTwice ? 2U : 1U));
    }
    std::vector<CaptureBuilder> builders(files, CaptureBuilder(CaptureVariant::nanoLittle));
    for (StationFrame const& each : frames_) {
        Bytes const octets = octetsOf(each);
        std::int64_t const time = timeOf(each);
        for (std::size_t file = each.file; file <= each.file + (each.isTwice ? 1U : 0U); ++file) {
            placed_.push_back({.file = file,
                               .offset = builders[file].nextRecordPosition() + recordHeaderSize,
                               .size = octets.size(),
                               .frame = each});
            builders[file].add(static_cast<std::uint32_t>(time / kNsPerSecond),
                               static_cast<std::uint32_t>(time % kNsPerSecond), octets);
        }
    }
    std::vector<Bytes> captures;
    captures.reserve(files);
    for (CaptureBuilder const& builder : builders) {
        captures.push_back(builder.bytes());
    }
    return captures;
}

StationFrame const* FaultyStation::frameAt(std::size_t file, std::uint64_t fileOffset) const {
    auto const found = std::find_if(placed_.begin(), placed_.end(), [&](Placed const& each) {
        return each.file == file && each.offset <= fileOffset &&
               fileOffset < each.offset + each.size;
    });
    return found == placed_.end() ? nullptr : &found->frame;
}

}  // namespace TalTest
