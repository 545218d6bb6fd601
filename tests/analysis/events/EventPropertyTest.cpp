// Random walks of states: the events are those that were made, in one file or in many.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>

#include "analysis/events/EventsIn.hpp"
#include "support/Data.hpp"

namespace TalTest::EventPropertyTest {
namespace {

using namespace TalIec61850Analysis;

constexpr std::int64_t kStep = 1'000'000;

/// The values of one state: a boolean, a quality, and a structure of two integers.
struct WalkValues {
    bool position = false;
    std::uint16_t quality = 0;
    int first = 0;
    int second = 0;

    [[nodiscard]] std::vector<Bytes> data() const {
        return {dataBoolean(position), dataQuality(quality),
                dataStructure({dataInteger(first), dataInteger(second)})};
    }
};

std::string qualityLine(std::uint16_t quality) { return quality == 0 ? "x0000" : "x4000"; }

std::string walkChanges(WalkValues const& was, WalkValues const& is) {
    std::string line;
    if (was.position != is.position) {
        line += is.position ? " 0 false->true" : " 0 true->false";
    }
    if (was.quality != is.quality) {
        line += " 1 " + qualityLine(was.quality) + "->" + qualityLine(is.quality);
    }
    if (was.first != is.first) {
        line += " 2.0 " + std::to_string(was.first) + "->" + std::to_string(is.first);
    }
    if (was.second != is.second) {
        line += " 2.1 " + std::to_string(was.second) + "->" + std::to_string(is.second);
    }
    return line;
}

/// What is expected of an event.
struct WalkEvent {
    std::int64_t time = 0;
    std::string line;
    std::uint64_t retransmissions = 0;

    friend bool operator==(WalkEvent const&, WalkEvent const&) = default;
};

std::ostream& operator<<(std::ostream& out, WalkEvent const& event) {
    return out << event.time << event.line << " +" << event.retransmissions;
}

/// A stream of random states, its messages and those of other streams at times of their own.
class StateWalk {
public:
    StateWalk(FaultyStation& station, std::string name, std::size_t stream, std::size_t streams)
        : name_(std::move(name)), time_(static_cast<std::int64_t>(stream)) {
        WalkValues values;
        std::uint32_t state = *rc::gen::inRange<std::uint32_t>(1, 5);
        auto const states = *rc::gen::inRange(1, 12);
        for (int i = 0; i < states; ++i) {
            auto const messages = *rc::gen::inRange<std::uint32_t>(1, 6);
            for (std::uint32_t sqNum = 0; sqNum < messages; ++sqNum) {
                // Some are lost; a state may be as a whole.
                if (*rc::gen::inRange(0, 4) != 0) {
                    send(station, stream, {state, sqNum}, values);
                }
                time_ += kStep * static_cast<std::int64_t>(1 + streams % 2);
            }
            state += *rc::gen::inRange<std::uint32_t>(1, 4);
            change(values);
        }
    }

    [[nodiscard]] std::vector<WalkEvent> const& events() const { return events_; }

private:
    struct Number {
        std::uint32_t stNum;
        std::uint32_t sqNum;
    };

    static void change(WalkValues& values) {
        values.position = *rc::gen::arbitrary<bool>();
        values.quality = *rc::gen::arbitrary<bool>() ? 0x4000 : 0;
        values.first = *rc::gen::inRange(-2, 3);
        values.second = *rc::gen::inRange(-200, 300);
    }

    void send(FaultyStation& station, std::size_t stream, Number number, WalkValues const& values) {
        GooseMessage message;
        message.gocbRef = name_;
        message.stNum = number.stNum;
        message.sqNum = number.sqNum;
        message.setData(values.data());
        station.frames().push_back({.stream = stream,
                                    .number = sent_++,
                                    .time = time_,
                                    .ethernet = Ethernet(),
                                    .message = message});
        bool const isEvent = sent_ > 1 && number.stNum != state_;
        if (isEvent) {
            events_.push_back({.time = time_,
                               .line = name_ + " " + std::to_string(state_) + "->" +
                                       std::to_string(number.stNum) + walkChanges(last_, values)});
        } else if (!events_.empty()) {
            ++events_.back().retransmissions;
        }
        state_ = number.stNum;
        last_ = values;
    }

    std::string name_;
    std::int64_t time_;
    std::size_t sent_ = 0;
    std::uint32_t state_ = 0;
    WalkValues last_;
    std::vector<WalkEvent> events_;
};

/// As WalkEvent has it; of an event of which the name is that of its stream.
std::vector<WalkEvent> foundEvents(std::vector<Bytes> const& captures) {
    std::vector<WalkEvent> found;
    for (GooseEvent const& event : eventsIn(captures)) {
        found.push_back({.time = event.arrival - FaultyStation::kStart * 1'000'000'000,
                         .line = "R" + std::to_string(event.stream) + " " +
                                 std::to_string(event.previousStNum) + "->" +
                                 std::to_string(event.stNum) + changesLine(event.changes),
                         .retransmissions = event.retransmissionCount});
    }
    return found;
}

RC_GTEST_PROP(EventProperty, EventsAreThoseThatWereMade, ()) {
    FaultyStation station;
    std::vector<WalkEvent> made;
    auto const streams = *rc::gen::inRange<std::size_t>(1, 4);
    std::size_t number = 0;
    for (std::size_t stream = 0; stream < streams; ++stream) {
        StateWalk const walk(station, "R" + std::to_string(number), stream, streams);
        // The index has no stream without a message.
        bool const isThere = std::any_of(station.frames().begin(), station.frames().end(),
                                         [&](auto const& each) { return each.stream == stream; });
        number += isThere ? 1 : 0;
        made.insert(made.end(), walk.events().begin(), walk.events().end());
    }
    std::stable_sort(made.begin(), made.end(),
                     [](WalkEvent const& a, WalkEvent const& b) { return a.time < b.time; });
    auto captures = station.captures();
    RC_ASSERT(foundEvents(captures) == made);
    auto const cuts = *rc::gen::inRange(1, 4);
    for (int i = 0; i < cuts; ++i) {
        std::int64_t const cut = kStep * *rc::gen::inRange<std::int64_t>(1, 60);
        station.splitAt(cut).overlap(cut - 3 * kStep, cut);
    }
    captures = station.captures();
    RC_ASSERT(foundEvents(captures) == made);
    std::reverse(captures.begin(), captures.end());
    RC_ASSERT(foundEvents(captures) == made);
}

RC_GTEST_PROP(EventProperty, AnyCountersAndTimesEnd, ()) {
    FaultyStation station;
    station.add(GoosePlan{.gocbRef = "R0", .states = {40, 20}});
    station.add(GoosePlan{.gocbRef = "R1", .source = "02:00:00:00:00:12", .states = {50}});
    for (StationFrame& frame : station.frames()) {
        auto& goose = std::get<GooseMessage>(frame.message);
        if (*rc::gen::inRange(0, 4) == 0) {
            frame.clock = *rc::gen::inRange<std::int64_t>(-2'000'000'000, 2'000'000'000);
        }
        if (*rc::gen::inRange(0, 3) == 0) {
            goose.stNum = *rc::gen::inRange<std::uint64_t>(0, 4);
            goose.sqNum = *rc::gen::arbitrary<std::uint32_t>();
        }
    }
    std::int64_t last = kNoTime;
    for (GooseEvent const& event : eventsIn(station.captures())) {
        RC_ASSERT(event.arrival >= last);
        RC_ASSERT(event.retransmissions.size() <= event.retransmissionCount);
        RC_ASSERT(event.isRestart || event.stNum != event.previousStNum);
        last = event.arrival;
    }
}

}  // namespace
}  // namespace TalTest::EventPropertyTest
