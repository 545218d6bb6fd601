#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Parser/store/Db.hpp>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// Where a packet lies, seen from the window that was asked for.
enum class Place : std::uint8_t {
    inside,
    before,  ///< the last one of its stream and file before the window
    after,   ///< the first one after it
};

/// A packet of the index that was asked for.
struct SelectedPacket {
    TalIec61850Parser::Package const* package = nullptr;
    /// Which of the selection's streams, and which of the captures.
    std::uint32_t stream = 0;
    std::uint32_t capture = 0;
    Place place = Place::inside;
};

/// What was asked for, out of a store.
struct PacketSelection {
    /// The streams that packets may be of, ordered by `comesBefore`.
    std::vector<StreamIdentity> streams;
    /// In time order; of one time, in the order of the captures and of their positions in them.
    std::vector<SelectedPacket> packets;
    /// Packets of these streams that have neither position nor time; they are in no window.
    std::uint64_t unplaced = 0;
    /// Packets at the end that were taken away again: more than were wanted.
    std::uint64_t beyondLimit = 0;
};

/// What to select.
struct PacketWish {
    StreamCriteria criteria;
    TalIec61850Analysis::TimeWindow window;
    /// With the packet before and the packet after the window, of each GOOSE stream in each file.
    bool withContext = false;
};

/// The number of each capture by the name that the library was given.
using CaptureNumbers = std::map<std::string, std::uint32_t>;

/// Finds packets in a store, whatever the order in which their files hold them.
/// @param db        must outlive the selection, and stay as it is
/// @param captures  has every file of the store
[[nodiscard]] PacketSelection selectPackets(TalIec61850Parser::Db const& db,
                                            CaptureNumbers const& captures, PacketWish const& wish);

}  // namespace TalIec61850Tools
