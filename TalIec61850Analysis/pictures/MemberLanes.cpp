#include <TalIec61850Analysis/events/EventReader.hpp>
#include <TalIec61850Analysis/events/StateWatch.hpp>
#include <TalIec61850Analysis/pictures/LaneBuilder.hpp>
#include <TalIec61850Analysis/pictures/MemberLanes.hpp>
#include <TalIec61850Analysis/time/ShiftedTime.hpp>
#include <TalIec61850Analysis/traffic/GooseCourse.hpp>
#include <TalIec61850Analysis/traffic/MessageOrder.hpp>
#include <TalIec61850Analysis/traffic/StreamWays.hpp>
#include <algorithm>
#include <limits>

namespace TalIec61850Analysis {

namespace {

/// From one message on, members may have other values.
struct LaneChange {
    PacketRef packet;
    std::int64_t arrival = kNoTime;
    /// Whether the state began with a message that is missing.
    bool isLate = false;
};

/// Whether messages of a new state, or of states before it, are missing.
bool isLateOf(detail::StateChange const& change) {
    // Counters that begin again at 1 may do so with both.
    std::uint32_t const first = change.number.stNum == 1 ? 1 : 0;
    bool const isSkipped =
        !change.isRestart && detail::stepsBetween(change.previousStNum, change.number.stNum) > 1;
    return isSkipped || change.number.sqNum > first;
}

/// Goes over the messages of one stream twice: to find its states, and to make lanes.
class LaneCourse {
public:
    LaneCourse(TrafficIndex const& index, std::size_t stream, LaneOptions const& options)
        : index_(index),
          number_(stream),
          stream_(index.streams()[stream]),
          options_(options),
          ways_(stream_),
          reader_(index),
          builder_(options) {}

    [[nodiscard]] MemberLanes run() {
        findChanges();
        detail::GooseCourse course(index_, number_);
        for (std::uint64_t seen = 0; auto const message = course.next(); ++seen) {
            if (isStopped(seen)) {
                return builder_.take();
            }
            process(message->packet);
        }
        finish();
        return builder_.take();
    }

private:
    static constexpr std::int64_t kForever = std::numeric_limits<std::int64_t>::max();

    [[nodiscard]] bool isStopped(std::uint64_t seen) const {
        constexpr std::uint64_t kPatience = 0xFFF;  // messages between two looks
        return (seen & kPatience) == 0 && options_.stop.stop_requested();
    }

    void findChanges() {
        detail::StateWatch watch;
        auto const add = [&](detail::StateChange const& change) {
            changes_.push_back(
                {.packet = change.packet, .arrival = change.arrival, .isLate = isLateOf(change)});
        };
        detail::GooseCourse course(index_, number_);
        for (std::uint64_t seen = 0; auto const message = course.next(); ++seen) {
            if (isStopped(seen)) {
                return;
            }
            auto const state = detail::stateMessage(stream_, ways_, message->packet);
            if (changes_.empty() && state.isCounted) {
                changes_.push_back({.packet = state.packet, .arrival = state.arrival});
            }
            watch.add(
                state, [&](PacketRef newest) { return reader_.lifeOf(number_, newest); }, add);
        }
        watch.finish(add);
    }

    [[nodiscard]] std::int64_t arrivalOf(PacketRef packet) const {
        return stream_.parts[packet.part].packets.times()[packet.packet];
    }

    /// Whether values from here on are in the window, or may be.
    [[nodiscard]] bool isToBeRead(std::size_t change) const {
        if (!options_.window.from || change + 1 == changes_.size()) {
            return true;
        }
        std::int64_t const from = nanosecondsOf(*options_.window.from);
        return heardAt_ >= from || changes_[change + 1].arrival >= from;
    }

    /// When the newest message expires; kNoTime where it does not, or not until a time.
    [[nodiscard]] std::int64_t expiryBefore(std::int64_t time) {
        if (!heard_ || time - heardAt_ <= life_) {
            return kNoTime;
        }
        std::int64_t const expiry = detail::expiryOf(heardAt_, reader_.lifeOf(number_, *heard_));
        life_ = expiry == kNoTime ? kForever : expiry - heardAt_;
        return expiry < time ? expiry : kNoTime;
    }

    /// Whether the newest state lives on with a message: not with a late one, a replayed one or a
    /// copy, nor with one whose counters were cut off.
    [[nodiscard]] bool isHeard(detail::StateMessage const& message) const {
        bool const isAgain = message.number == newest_.number && message.way == newest_.way;
        return message.isCounted && (isAgain || detail::isLater(message.number, newest_.number));
    }

    void process(PacketRef packet) {
        bool const isChange = next_ < changes_.size() && changes_[next_].packet == packet;
        auto const message = detail::stateMessage(stream_, ways_, packet);
        if (!isChange && (next_ == 0 || !isHeard(message))) {
            return;
        }
        newest_ = message;
        std::int64_t const time = std::max(arrivalOf(packet), heardAt_);
        if (time != kNoTime) {
            std::int64_t const expiry = expiryBefore(time);
            if (isChange && changes_[next_].isLate) {
                builder_.goOn(heardAt_, LaneState::known);
                builder_.goOn(expiry == kNoTime ? time : expiry, LaneState::lost);
            } else if (isChange || expiry != kNoTime) {
                builder_.goOn(expiry == kNoTime ? time : expiry, LaneState::known);
            }
            if (expiry != kNoTime) {
                builder_.goOn(time, LaneState::expired);
            }
            firstAt_ = heard_ ? firstAt_ : time;
            heard_ = packet;
            heardAt_ = time;
        }
        if (isChange) {
            takeChange();
        }
    }

    void takeChange() {
        life_ = 0;
        if (isToBeRead(next_)) {
            auto const data = reader_.dataOf(number_, changes_[next_].packet);
            builder_.setValues(data.values);
            std::int64_t const expiry = detail::expiryOf(0, data.timeAllowedtoLive);
            life_ = expiry == kNoTime ? kForever : expiry;
        }
        ++next_;
    }

    void finish() {
        std::int64_t end = heardAt_;
        for (IndexedFile const& file : index_.files()) {
            if (file.summary.last) {
                end = std::max<std::int64_t>(end, nanosecondsOf(*file.summary.last));
            }
        }
        if (!heard_) {
            return;
        }
        if (end == firstAt_) {
            end = afterTime(end);  // to be seen, though no time goes on after it
        }
        life_ = 0;
        std::int64_t const expiry = expiryBefore(end);
        builder_.goOn(expiry == kNoTime ? end : expiry, LaneState::known);
        builder_.goOn(end, LaneState::expired);
    }

    TrafficIndex const& index_;
    std::size_t number_;
    TrafficStream const& stream_;
    LaneOptions const& options_;
    detail::StreamWays ways_;
    detail::EventReader reader_;
    detail::LaneBuilder builder_;
    /// The first is the first message.
    std::vector<LaneChange> changes_;
    std::size_t next_ = 0;
    detail::StateMessage newest_;
    /// The newest message that has a time.
    std::optional<PacketRef> heard_;
    std::int64_t heardAt_ = kNoTime;
    /// The time of the first one.
    std::int64_t firstAt_ = kNoTime;
    /// How long a message of this state lives, in nanoseconds, as far as it was looked up. Later
    /// messages of a state live no shorter.
    std::int64_t life_ = 0;
};

}  // namespace

MemberLanes readMemberLanes(TrafficIndex const& index, std::size_t stream,
                            LaneOptions const& options) {
    if (stream >= index.streams().size() ||
        index.streams()[stream].key.protocol != StreamProtocol::goose) {
        return {};
    }
    return LaneCourse(index, stream, options).run();
}

}  // namespace TalIec61850Analysis
