// A whole capture file, the state changes of its GOOSE streams: in windows of time and whole, of
// all streams and of one; and the lanes of their members.

#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <variant>
#include <vector>

#include "fuzz/CaptureInput.hpp"
#include "fuzz/Check.hpp"
#include "fuzz/Tally.hpp"
#include "index/Indexing.hpp"

namespace {

using namespace TalIec61850Analysis;
using namespace TalFuzz;

/// What the octets of two messages make, at most: hostile ones make much of it.
constexpr std::size_t kMostEvents = 200;

/// Puts 0 where there is no number: that is unlike itself, and events are compared.
void numberAll(DataValue& value) {
    if (auto* const single = std::get_if<float>(&value.value))
        *single = std::isnan(*single) ? 0 : *single;
    if (auto* const twice = std::get_if<double>(&value.value))
        *twice = std::isnan(*twice) ? 0 : *twice;
    if (auto* const members = std::get_if<DataValue::Members>(&value.value))
        for (DataValue& member : *members) numberAll(member);
}

void numberAll(GooseEvent& event) {
    for (MemberChange& change : event.changes) {
        if (change.from) numberAll(*change.from);
        numberAll(change.to);
    }
}

std::vector<GooseEvent> eventsOf(TrafficIndex const& index, EventOptions options) {
    std::vector<GooseEvent> events;
    std::stop_source stop;
    options.stop = stop.get_token();
    findEvents(index, options, [&](GooseEvent const& event) {
        events.push_back(event);
        numberAll(events.back());
        if (events.size() == kMostEvents) stop.request_stop();
    });
    return events;
}

void requireSound(TrafficIndex const& index, GooseEvent const& event) {
    TrafficStream const& stream = index.streams()[event.stream];
    require(stream.key.protocol == StreamProtocol::goose, "events are of GOOSE");
    PacketRef const packet = event.place.packet;
    PacketColumns const& packets = stream.parts.at(packet.part).packets;
    require(packets.times()[packet.packet] == event.arrival, "an event comes with its packet");
    require(packets.stNums()[packet.packet] == event.stNum, "so does its state");
    require(packets.sqNums()[packet.packet] == event.sqNum, "and its message");
    require(event.before.packet != packet, "the message before is another one");
    require(event.isRestart || event.stNum != event.previousStNum, "a state is a new one");
    require(event.retransmissions.size() <= event.retransmissionCount, "all are counted");
    require(event.retransmissions.size() <= GooseEvent::kMostRetransmissions, "few are kept");
    bool const isKnown = event.data == EventData::compared || event.data == EventData::otherMake;
    require(isKnown || event.changes.empty(), "nothing is told of what is not known");
    std::vector<std::uint32_t> last;
    for (MemberChange const& change : event.changes) {
        require(!change.member.empty() && change.member.size() <= kMaxDataDepth,
                "a value is somewhere");
        require(last < change.member, "changes are in their order");
        require(!change.from || change.from->kind == change.to.kind, "a value keeps its type");
        require(event.data == EventData::otherMake || change.from.has_value(),
                "values of one make have others before them");
        last = change.member;
    }
    if (event.next) {
        require(event.next->stream != event.stream && event.next->after >= 0,
                "the next stream is another one");
    }
}

/// The events before a time and from it on are all.
void requireSameInWindows(TrafficIndex const& index, std::vector<GooseEvent> const& whole) {
    std::int64_t const middle = whole[whole.size() / 2].arrival;
    if (middle == kNoTime) return;
    CaptureTime const time = captureTimeOf(middle);
    std::vector<GooseEvent> parts =
        eventsOf(index, {.window = {.from = {}, .to = time - std::chrono::nanoseconds(1)}});
    for (GooseEvent const& event : eventsOf(index, {.window = {.from = time, .to = {}}}))
        parts.push_back(event);
    for (GooseEvent const& event : whole)
        if (event.arrival == kNoTime) parts.push_back(event);
    require(parts == whole, "windows have the events between their ends");
}

/// Lanes are bounded, and their intervals in order.
void requireSoundLanes(TrafficIndex const& index, std::size_t stream) {
    LaneOptions const options{.mostLanes = 8, .mostIntervals = 16};
    MemberLanes const made = readMemberLanes(index, stream, options);
    require(made.lanes.size() <= options.mostLanes, "there are no more lanes than were asked for");
    bool const isGoose = index.streams()[stream].key.protocol == StreamProtocol::goose;
    require(isGoose || made.lanes.empty(), "other streams have no lanes");
    for (MemberLane const& lane : made.lanes) {
        require(!lane.member.empty() && lane.member.size() <= kMaxDataDepth,
                "lanes are of members");
        require(!lane.intervals.empty(), "a lane has something to show");
        require(lane.intervals.size() <= options.mostIntervals, "intervals are bounded");
        std::int64_t until = std::numeric_limits<std::int64_t>::min();
        for (LaneInterval const& interval : lane.intervals) {
            require(until <= interval.from && interval.from < interval.to, "time goes on");
            require(interval.value.has_value() == (interval.state == LaneState::known),
                    "what is known has a value");
            require((interval.joined > 1) == (interval.state == LaneState::several),
                    "what was joined is told");
            until = interval.to;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static Tally read("captures have events");
    static TalTest::ScratchFile file;
    CaptureInput const input = captureInput({data, size});
    file.assign(input.capture);
    TrafficIndex const index = indexCapture(file.path());
    std::vector<GooseEvent> const whole = eventsOf(index, {});
    std::int64_t last = kNoTime;
    bool isUntimed = false;
    for (GooseEvent const& event : whole) {
        requireSound(index, event);
        require(event.arrival >= last || event.arrival == kNoTime, "events are in time order");
        require(!isUntimed || event.arrival == kNoTime, "those without a time come last");
        isUntimed = event.arrival == kNoTime;
        last = event.arrival;
    }
    if (!whole.empty() && whole.size() < kMostEvents) {
        requireSameInWindows(index, whole);
        std::size_t ofStreams = 0;
        for (TrafficStream const& stream : index.streams()) {
            ofStreams +=
                eventsOf(index, {.takes = [&](StreamKey const& key) { return key == stream.key; }})
                    .size();
        }
        require(ofStreams == whole.size(), "streams do not depend on one another");
    }
    if (whole.size() < kMostEvents) {
        for (std::size_t stream = 0; stream < index.streams().size(); ++stream) {
            requireSoundLanes(index, stream);
        }
    }
    read.add(whole.empty() ? 0 : 1, 1);
    return 0;
}
