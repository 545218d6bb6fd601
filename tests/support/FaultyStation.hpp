#pragma once

// Traffic of a small station, message by message, to which faults are done.

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "support/Bytes.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

namespace TalTest {

/// A frame on the wire.
struct StationFrame {
    /// Which stream it is of, and its number in that, from 0.
    std::size_t stream = 0;
    std::size_t number = 0;
    /// When it comes, in nanoseconds after the start; and by how much the clock of the capture is
    /// wrong then.
    std::int64_t time = 0;
    std::int64_t clock = 0;
    Ethernet ethernet = {};
    std::variant<SvMessage, GooseMessage> message = {};
    /// Which file has it; and whether the file after that has it too.
    std::size_t file = 0;
    bool isTwice = false;
};

/// An SV stream as it should be.
struct SvPlan {
    std::string svID = "MU01";
    std::string source = "02:00:00:00:00:01";
    std::uint32_t rate = 4000;
    std::uint32_t asdus = 1;
    std::uint32_t firstCount = 0;
    /// In frames.
    std::size_t frames = 4000;
    /// Of the first frame, after the start.
    std::int64_t start = 0;
    /// Over both LANs of PRP, with this between the copies, in nanoseconds.
    std::optional<std::int64_t> prpDelay = {};
};

/// A GOOSE stream as it should be: states, each with its messages at intervals that double up to a
/// heartbeat. Each state has another value.
struct GoosePlan {
    std::string gocbRef = "RELAY1LD0/LLN0$GO$gcb1";
    std::string source = "02:00:00:00:00:11";
    std::uint32_t firstState = 5;
    std::uint32_t firstMessage = 0;
    /// Messages of each state.
    std::vector<std::size_t> states = {10};
    std::int64_t start = 0;
    std::int64_t heartbeat = 100'000'000;
    std::int64_t timeAllowedtoLive = 250;
    /// As that of an SV stream.
    std::optional<std::int64_t> prpDelay = {};
};

/// Builds captures. Frames are found by stream and number whatever happens to them; what happens is
/// told in any order.
class FaultyStation {
public:
    /// When it starts, in seconds since 1970.
    static constexpr std::int64_t kStart = 1'700'000'000;
    static constexpr std::int64_t kNsPerSecond = 1'000'000'000;

    /// @return the number of the stream
    std::size_t add(SvPlan const& plan);
    std::size_t add(GoosePlan const& plan);

    /// @return the first frame of a number; the one over LAN A
    StationFrame& frame(std::size_t stream, std::size_t number);
    [[nodiscard]] SvMessage& sv(std::size_t stream, std::size_t number);
    [[nodiscard]] GooseMessage& goose(std::size_t stream, std::size_t number);

    /// Frames that never come, all copies of them.
    FaultyStation& drop(std::size_t stream, std::size_t number, std::size_t count = 1);
    /// Those of all streams between two times, the second excluded.
    FaultyStation& dropBetween(std::int64_t from, std::int64_t until);
    /// A frame comes later.
    FaultyStation& delay(std::size_t stream, std::size_t number, std::int64_t time);
    /// A frame comes a second time, so much after the first.
    FaultyStation& repeat(std::size_t stream, std::size_t number, std::int64_t after);
    /// Done to the messages of a stream from a number on.
    FaultyStation& changeSvFrom(std::size_t stream, std::size_t number,
                                std::function<void(SvMessage&)> const& change);
    FaultyStation& changeGooseFrom(std::size_t stream, std::size_t number,
                                   std::function<void(GooseMessage&)> const& change);
    /// The clock of the capture is set, so far ahead.
    FaultyStation& stepClock(std::int64_t time, std::int64_t step);
    /// A file begins.
    FaultyStation& splitAt(std::int64_t time);
    /// Each LAN has a file of its own: the clock of that with LAN B is so far ahead.
    FaultyStation& tapLans(std::int64_t ahead);
    /// Both LANs become both directions of an HSR ring.
    FaultyStation& makeRing();
    /// What comes between two times is in this file and the next one.
    FaultyStation& overlap(std::int64_t from, std::int64_t until);

    /// The frames as they come.
    std::vector<StationFrame> const& inTimeOrder();
    /// The captures, next-generation ones or classic ones with nanoseconds.
    [[nodiscard]] std::vector<Bytes> captures();

    /// The frame that has an octet of a file; null where none has.
    [[nodiscard]] StationFrame const* frameAt(std::size_t file, std::uint64_t fileOffset) const;
    [[nodiscard]] std::vector<StationFrame>& frames() { return frames_; }
    [[nodiscard]] std::string const& name(std::size_t stream) const { return names_[stream]; }
    [[nodiscard]] std::size_t streams() const { return names_.size(); }

    /// A frame as it is on the wire.
    [[nodiscard]] static Bytes octetsOf(StationFrame const& frame);
    /// When a frame was captured, in nanoseconds since 1970.
    [[nodiscard]] static std::int64_t timeOf(StationFrame const& frame) {
        return kStart * kNsPerSecond + frame.time + frame.clock;
    }

private:
    struct Placed {
        std::size_t file = 0;
        std::uint64_t offset = 0;
        std::size_t size = 0;
        StationFrame frame = {};
    };

    void send(StationFrame frame, std::optional<std::int64_t> prpDelay);

    std::vector<StationFrame> frames_;
    std::vector<std::string> names_;
    std::vector<Placed> placed_;
    std::uint16_t prpSequence_ = 65000;
};

}  // namespace TalTest
