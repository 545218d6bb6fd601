// Which packets a selection gives, against the plainest search.

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <tuple>

#include "index/Indexing.hpp"
#include "index/RandomPicks.hpp"
#include "index/TrafficGenerators.hpp"
#include "tools/selection/PacketSelection.hpp"

namespace TalIec61850Tools::PacketSelectionTest {
namespace {

using namespace TalIec61850Analysis;
using TalTest::below;
using TalTest::oneIn;

/// Time in nanoseconds, file, frame, ASDU, place: all that tells a selected packet from another.
using Spot = std::tuple<std::int64_t, std::uint32_t, std::uint64_t, std::uint32_t, Place>;

struct PlainWindow {
    std::int64_t from = 0;
    std::int64_t to = std::numeric_limits<std::int64_t>::max();
};

Spot spotOf(StreamPart const& part, std::size_t packet, Place place) {
    PacketColumns const& columns = part.packets;
    std::uint32_t const asdu = columns.asdus().empty() ? 0U : columns.asdus()[packet];
    return {columns.times()[packet], part.file, columns.frameOffsets()[packet], asdu, place};
}

bool isGoose(TrafficStream const& stream) { return stream.key.protocol == Protocol::goose; }

/// Adds what one file holds of a stream.
void addPlainly(StreamPart const& part, PlainWindow window, bool withContext,
                std::vector<Spot>& spots) {
    std::vector<Spot> before;
    std::vector<Spot> after;
    for (std::size_t packet = 0; packet < part.packets.size(); ++packet) {
        std::int64_t const time = part.packets.times()[packet];
        if (part.packets.flags()[packet].isDuplicate()) {
            continue;
        }
        if (time < window.from) {
            before.push_back(spotOf(part, packet, Place::before));
        } else if (time > window.to) {
            after.push_back(spotOf(part, packet, Place::after));
        } else {
            spots.push_back(spotOf(part, packet, Place::inside));
        }
    }
    if (withContext && !before.empty()) {
        spots.push_back(*std::max_element(before.begin(), before.end()));
    }
    if (withContext && !after.empty()) {
        spots.push_back(*std::min_element(after.begin(), after.end()));
    }
}

std::vector<Spot> plainly(TrafficIndex const& index, PacketWish const& wish, PlainWindow window) {
    std::vector<Spot> spots;
    for (TrafficStream const& stream : index.streams()) {
        for (StreamPart const& part : stream.parts) {
            if (wish.criteria.admitKey(stream.key)) {
                addPlainly(part, window, wish.withContext && isGoose(stream), spots);
            }
        }
    }
    std::sort(spots.begin(), spots.end());
    return spots;
}

std::vector<Spot> selected(PacketSelection& selection) {
    std::vector<Spot> spots;
    while (auto const packet = selection.next()) {
        if (packet->unread == nullptr) {
            spots.push_back(spotOf(*packet->part, packet->packet, packet->place));
        }
    }
    return spots;
}

std::optional<std::int64_t> anyBound(std::vector<std::int64_t> const& times) {
    if (oneIn(4) || times.empty()) {
        return std::nullopt;
    }
    return times[below(static_cast<unsigned>(times.size()))] + below(3) - 1;
}

/// A window whose ends are hard beside, or on, packets of the index.
PlainWindow anyWindow(TrafficIndex const& index, PacketWish& wish) {
    std::vector<std::int64_t> times;
    for (TrafficStream const& stream : index.streams()) {
        for (StreamPart const& part : stream.parts) {
            auto const column = part.packets.times();
            times.insert(times.end(), column.begin(), column.end());
        }
    }
    auto from = anyBound(times);
    auto to = anyBound(times);
    if (from && to && *to < *from) {
        std::swap(from, to);
    }
    PlainWindow window;
    if (from) {
        window.from = *from;
        wish.window.from = captureTimeOf(*from);
    }
    if (to) {
        window.to = *to;
        wish.window.to = captureTimeOf(*to);
    }
    return window;
}

/// Up to three captures of random traffic; times are in no order.
struct RandomCaptures {
    RandomCaptures() {
        std::vector<std::string> paths;
        for (unsigned count = 1 + below(3); count > 0; --count) {
            auto const frames = oneIn(4) ? TalTest::anyFrame() : TalTest::validFrame();
            auto& file = files.emplace_back(std::make_unique<TalTest::ScratchFile>(
                captureOf(*TalTest::recordsOf(frames), *TalTest::anyVariant())));
            paths.push_back(file->path());
        }
        index = indexCaptures(paths);
    }

    std::vector<std::unique_ptr<TalTest::ScratchFile>> files;
    TrafficIndex index;
};

FrameHeader noHeader(std::uint32_t /*file*/, std::uint64_t /*frameOffset*/) { return {}; }

RC_GTEST_PROP(AnySelection, HoldsThePacketsOfTheWindowInTheirOrder, ()) {
    RandomCaptures const captures;
    PacketWish wish;
    wish.withContext = oneIn(2);
    PlainWindow const window = anyWindow(captures.index, wish);
    PacketSelection selection(captures.index, wish, noHeader);
    auto const spots = selected(selection);
    RC_CLASSIFY(spots.empty(), "empty");
    RC_ASSERT(spots == plainly(captures.index, wish, window));
    selection.rewind();
    RC_ASSERT(selected(selection) == spots);
}

RC_GTEST_PROP(AnySelection, HasOnlyPacketsOfTheStreamsThatAreAskedFor, ()) {
    RandomCaptures const captures;
    PacketWish wish;
    wish.criteria.protocol = oneIn(2) ? Protocol::goose : Protocol::sv;
    wish.criteria.appIds = {0, 1};
    PacketSelection selection(captures.index, wish, noHeader);
    RC_ASSERT(selected(selection) == plainly(captures.index, wish, {}));
}

RC_GTEST_PROP(AnySelection, HasTheFramesOfNoStreamAmongThePacketsByTime, ()) {
    RandomCaptures const captures;
    PacketSelection selection(captures.index, {}, noHeader);
    std::size_t unread = 0;
    std::optional<std::tuple<std::optional<CaptureTime>, std::uint32_t, std::uint64_t>> last;
    while (auto const packet = selection.next()) {
        std::tuple const place(packet->time(), packet->file, packet->frameOffset());
        bool const isInOrder = !last || *last <= place;
        RC_ASSERT(isInOrder);
        last = place;
        unread += packet->unread != nullptr ? 1 : 0;
    }
    std::size_t all = 0;
    for (IndexedFile const& file : captures.index.files()) {
        all += file.summary.unread.size();
    }
    RC_ASSERT(unread == all);
}

}  // namespace
}  // namespace TalIec61850Tools::PacketSelectionTest
