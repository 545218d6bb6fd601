// Which packets a window holds, against the plainest search.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <set>
#include <tuple>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools {
namespace {

using TalIec61850Parser::Db;
using TalIec61850Parser::Package;
using TalTest::below;
using TalTest::oneIn;

/// Time in nanoseconds, capture, position, place: all that tells a selected packet from another.
using Spot = std::tuple<std::int64_t, std::uint32_t, std::uint64_t, Place>;

struct PlainSelection {
    std::set<Spot> spots;
    std::uint64_t unplaced = 0;
};

std::int64_t timeOf(Package const& package) {
    return std::int64_t{package.time.seconds} * 1'000'000'000 + package.time.nanoseconds;
}

struct PlainWindow {
    std::int64_t from = 0;
    std::int64_t to = std::numeric_limits<std::int64_t>::max();
};

/// Adds what one file holds of a stream.
void addPlainly(std::deque<Package> const& packages, std::uint32_t capture, PlainWindow window,
                bool withContext, PlainSelection& selection) {
    std::vector<Spot> before;
    std::vector<Spot> after;
    for (Package const& package : packages) {
        std::int64_t const time = timeOf(package);
        if (package.position == 0) {
            ++selection.unplaced;
        } else if (time < window.from) {
            before.emplace_back(time, capture, package.position, Place::before);
        } else if (time > window.to) {
            after.emplace_back(time, capture, package.position, Place::after);
        } else {
            selection.spots.emplace(time, capture, package.position, Place::inside);
        }
    }
    if (withContext && !before.empty()) {
        selection.spots.insert(*std::max_element(before.begin(), before.end()));
    }
    if (withContext && !after.empty()) {
        selection.spots.insert(*std::min_element(after.begin(), after.end()));
    }
}

template <typename Streams>
void addPlainly(Streams const& streams, CaptureNumbers const& captures, PlainWindow window,
                bool withContext, PlainSelection& selection) {
    for (auto const& stream : streams) {
        for (auto const& file : stream.files) {
            addPlainly(file.packages, captures.at(file.fileName), window, withContext, selection);
        }
    }
}

std::optional<std::int64_t> anyBound(std::vector<std::int64_t> const& times) {
    if (oneIn(4) || times.empty()) {
        return std::nullopt;
    }
    return times[below(static_cast<unsigned>(times.size()))] + below(3) - 1;
}

template <typename Streams>
void addTimes(Streams const& streams, std::vector<std::int64_t>& times) {
    for (auto const& stream : streams) {
        for (auto const& file : stream.files) {
            std::transform(file.packages.begin(), file.packages.end(), std::back_inserter(times),
                           timeOf);
        }
    }
}

/// A window whose ends are hard beside, or on, packets of the store.
PlainWindow anyWindow(Db const& db, PacketWish& wish) {
    std::vector<std::int64_t> times;
    addTimes(db.gooseProto.streams, times);
    addTimes(db.svProto.streams, times);
    auto from = anyBound(times);
    auto to = anyBound(times);
    if (from && to && *to < *from) {
        std::swap(from, to);
    }
    PlainWindow window;
    if (from) {
        window.from = *from;
        wish.window.from = CaptureTime(std::chrono::nanoseconds(*from));
    }
    if (to) {
        window.to = *to;
        wish.window.to = CaptureTime(std::chrono::nanoseconds(*to));
    }
    return window;
}

/// Up to three captures of random traffic in one store; times are in no order.
struct RandomStore {
    RandomStore() {
        for (unsigned count = 1 + below(3); count > 0; --count) {
            auto const frames = oneIn(4) ? TalTest::anyFrame() : TalTest::validFrame();
            auto& file = files.emplace_back(std::make_unique<TalTest::ScratchFile>(
                captureOf(*TalTest::recordsOf(frames), *TalTest::anyVariant())));
            numbers.emplace(file->path(), static_cast<std::uint32_t>(numbers.size()));
            TalTest::indexInto(db, file->path());
        }
    }

    std::vector<std::unique_ptr<TalTest::ScratchFile>> files;
    CaptureNumbers numbers;
    Db db;
};

RC_GTEST_PROP(AnySelection, HoldsThePacketsOfTheWindowInTheirOrder, ()) {
    RandomStore const store;
    PacketWish wish;
    wish.withContext = oneIn(2);
    PlainWindow const window = anyWindow(store.db, wish);
    PlainSelection plain;
    addPlainly(store.db.gooseProto.streams, store.numbers, window, wish.withContext, plain);
    addPlainly(store.db.svProto.streams, store.numbers, window, false, plain);

    PacketSelection const selection = selectPackets(store.db, store.numbers, wish);
    std::vector<Spot> spots;
    for (SelectedPacket const& packet : selection.packets) {
        spots.emplace_back(timeOf(*packet.package), packet.capture, packet.package->position,
                           packet.place);
    }
    RC_CLASSIFY(spots.empty(), "empty");
    RC_ASSERT(spots == std::vector<Spot>(plain.spots.begin(), plain.spots.end()));
    RC_ASSERT(selection.unplaced == plain.unplaced);
}

RC_GTEST_PROP(AnySelection, HasOnlyPacketsOfTheStreamsThatItNames, ()) {
    RandomStore const store;
    PacketWish wish;
    wish.criteria.protocol = oneIn(2) ? Protocol::goose : Protocol::sv;
    wish.criteria.appIds = {0, 1};
    PacketSelection const selection = selectPackets(store.db, store.numbers, wish);
    RC_ASSERT(std::is_sorted(selection.streams.begin(), selection.streams.end(), comesBefore));
    for (auto const& stream : selection.streams) {
        RC_ASSERT(wish.criteria.admit(stream));
    }
    PlainSelection plain;
    auto const add = [&](auto const& streams) {
        for (auto const& stream : streams) {
            if (wish.criteria.admit(identityOf(stream))) {
                addPlainly(std::vector{stream}, store.numbers, {}, false, plain);
            }
        }
    };
    add(store.db.gooseProto.streams);
    add(store.db.svProto.streams);
    RC_ASSERT(selection.packets.size() == plain.spots.size());
}

}  // namespace
}  // namespace TalIec61850Tools
