#include <TalIec61850Analysis/events/EventReader.hpp>
#include <TalIec61850Analysis/events/FindEvents.hpp>
#include <TalIec61850Analysis/events/StateWatch.hpp>
#include <TalIec61850Analysis/traffic/GooseCourse.hpp>
#include <TalIec61850Analysis/traffic/StreamWays.hpp>
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <optional>
#include <tuple>
#include <utility>
#include <vector>

namespace TalIec61850Analysis {

namespace {

/// A new state of a stream.
struct FoundChange {
    std::size_t stream = 0;
    detail::StateChange change;
};

/// Watches all streams, so that each is read in the order of all.
class StateWatches {
public:
    StateWatches(TrafficIndex const& index, EventOptions const& options) : index_(index) {
        for (TrafficStream const& stream : index.streams()) {
            bool const isTaken = stream.key.protocol == StreamProtocol::goose &&
                                 (!options.takes || options.takes(stream.key));
            watches_.push_back(isTaken ? std::make_unique<Watched>(stream) : nullptr);
        }
    }

    /// @return the changes of each stream in their order; nothing where a stop was requested
    [[nodiscard]] std::vector<FoundChange> run(EventOptions const& options,
                                               detail::EventReader& reader) {
        constexpr std::uint64_t kPatience = 0xFFFF;  // messages between two looks
        detail::GooseCourse course(index_);
        for (std::uint64_t seen = 0; auto const message = course.next(); ++seen) {
            if ((seen & kPatience) == 0 && options.stop.stop_requested()) {
                return {};
            }
            if (auto const& watched = watches_[message->stream]) {
                add(*watched, *message, reader);
            }
        }
        for (std::size_t stream = 0; stream < watches_.size(); ++stream) {
            if (auto const& watched = watches_[stream]) {
                watched->watch.finish([&](detail::StateChange const& change) {
                    found_.push_back({stream, change});
                });
            }
        }
        return std::move(found_);
    }

private:
    struct Watched {
        explicit Watched(TrafficStream const& stream) : ways(stream) {}

        detail::StreamWays ways;
        detail::StateWatch watch;
    };

    void add(Watched& watched, detail::CourseMessage const& message, detail::EventReader& reader) {
        detail::StateMessage const state =
            detail::stateMessage(index_.streams()[message.stream], watched.ways, message.packet);
        watched.watch.add(
            state, [&](PacketRef newest) { return reader.lifeOf(message.stream, newest); },
            [&](detail::StateChange const& change) {
                found_.push_back({message.stream, change});
            });
    }

    TrafficIndex const& index_;
    /// By stream; null for those that are not wanted.
    std::vector<std::unique_ptr<Watched>> watches_;
    std::vector<FoundChange> found_;
};

/// The numbers of changes in the order of time: those of one time in the order of the streams,
/// those without a time last.
std::vector<std::size_t> orderOf(std::vector<FoundChange> const& found) {
    std::vector<std::size_t> order(found.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    auto const keyOf = [&](std::size_t number) {
        FoundChange const& each = found[number];
        return std::tuple(each.change.arrival == kNoTime, each.change.arrival, each.stream);
    };
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return keyOf(a) < keyOf(b); });
    return order;
}

/// By place in the order, the event of another stream that comes next.
std::vector<std::optional<NextEvent>> nextOf(std::vector<FoundChange> const& found,
                                             std::vector<std::size_t> const& order,
                                             std::chrono::nanoseconds within) {
    std::vector<std::optional<NextEvent>> next(order.size());
    // Back to front: the change met last, and the one met last of any other stream than that one's.
    FoundChange const* nearest = nullptr;
    FoundChange const* other = nullptr;
    for (std::size_t place = order.size(); place-- > 0;) {
        FoundChange const& each = found[order[place]];
        if (each.change.arrival == kNoTime) {
            continue;
        }
        bool const isOfNearest = nearest != nullptr && nearest->stream == each.stream;
        FoundChange const* const after = isOfNearest ? other : nearest;
        if (after != nullptr) {
            std::int64_t const time = after->change.arrival - each.change.arrival;
            if (time <= within.count()) {
                next[place] = NextEvent{.stream = after->stream, .after = time};
            }
        }
        other = isOfNearest ? other : nearest;
        nearest = &each;
    }
    return next;
}

bool isIn(TimeWindow const& window, std::int64_t arrival) {
    return arrival == kNoTime ? !window.from && !window.to
                              : window.contains(captureTimeOf(arrival));
}

}  // namespace

void findEvents(TrafficIndex const& index, EventOptions const& options, EventSink sink) {
    detail::EventReader reader(index);
    std::vector<FoundChange> const found = StateWatches(index, options).run(options, reader);
    std::vector<std::size_t> const order = orderOf(found);
    auto const next = nextOf(found, order, options.nextWithin);
    for (std::size_t place = 0; place < order.size(); ++place) {
        FoundChange const& each = found[order[place]];
        if (!isIn(options.window, each.change.arrival)) {
            continue;
        }
        if (options.stop.stop_requested()) {
            return;
        }
        GooseEvent event = reader.read(each.stream, each.change);
        event.next = next[place];
        sink(event);
    }
}

}  // namespace TalIec61850Analysis
