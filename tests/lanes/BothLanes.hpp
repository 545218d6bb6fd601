#pragma once

// Indexes a capture by the fast lane, with and without reading ahead, and by the plain walk, and
// tells what differs.

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <functional>
#include <list>
#include <ostream>
#include <string>

#include "support/Bytes.hpp"

namespace TalTest {

/// The store that is indexed into, those that a progress call has put in its place before, and what
/// else it can get hold of.
struct WatchedStore {
    TalIec61850Parser::Db db;
    std::list<TalIec61850Parser::Db> aside;
    /// The filter that is being indexed with.
    TalIec61850Parser::Filter filter = {};
    /// For a progress call to set: no record is read after the next one.
    bool stop = false;
};

/// What happens in a progress call.
/// @param call  how many there were before
using ProgressAction = std::function<void(WatchedStore& store, int call)>;

struct LaneSettings {
    TalIec61850Parser::Filter filter = {};
    /// Empty: indexing is not watched at all.
    ProgressAction progress = {};
};

/// A progress call that leaves the store alone.
inline void watch(WatchedStore& /*store*/, int /*call*/) {}

/// What became of a capture in the two lanes.
struct LaneOutcome {
    /// The first thing in which the stores differ, or what the progress calls were told, in words;
    /// empty for none.
    std::string difference;
    /// Records that were read.
    std::uint64_t records = 0;
    /// Those that the fast lane did not walk.
    std::uint64_t remembered = 0;
    std::uint64_t packets = 0;

    /// The part of all records that the fast lane did not walk.
    [[nodiscard]] double share() const {
        return records == 0 ? 0 : static_cast<double>(remembered) / static_cast<double>(records);
    }
};

std::ostream& operator<<(std::ostream& out, LaneOutcome const& outcome);

/// Indexes a capture file of any variant by both lanes, each into a store of its own. What is no
/// such capture has no records.
LaneOutcome indexByBothLanes(std::string const& path, LaneSettings const& settings = {});

/// The same for a capture in memory.
LaneOutcome indexByBothLanes(Bytes const& capture, LaneSettings const& settings = {});

}  // namespace TalTest
