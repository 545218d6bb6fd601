#pragma once

#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

#include "tools/selection/CaptureTime.hpp"
#include "tools/selection/PacketCriteria.hpp"

namespace TalIec61850Tools {

/// Where a packet is, seen from the window that was asked for.
enum class Place : std::uint8_t {
    inside,
    before,  ///< the last one of its stream and file before the window
    after,   ///< the first one after it
};

/// A packet of the index that was asked for.
struct SelectedPacket {
    /// Not set for a frame that is of no stream.
    TalIec61850Analysis::TrafficStream const* stream = nullptr;
    TalIec61850Analysis::StreamPart const* part = nullptr;
    /// Those of the packet.
    TalIec61850Analysis::StreamAttributes const* attributes = nullptr;
    /// The number of the packet in the columns of that part.
    std::uint32_t packet = 0;
    /// The number of the file in the index.
    std::uint32_t file = 0;
    Place place = Place::inside;
    /// Set for a frame that is of no stream.
    TalIec61850Analysis::UnreadFrame const* unread = nullptr;

    /// Offset of the frame in its file, in octets.
    [[nodiscard]] std::uint64_t frameOffset() const {
        return unread != nullptr ? unread->frameOffset : part->packets.frameOffsets()[packet];
    }
    /// When it was captured.
    [[nodiscard]] std::optional<CaptureTime> time() const {
        return unread != nullptr ? unread->time : part->packets.time(packet);
    }
};

/// What to select.
struct PacketWish {
    PacketCriteria criteria;
    TalIec61850Analysis::TimeWindow window;
    /// With the packet before and the packet after the window, of each GOOSE stream in each file.
    bool withContext = false;
};

/// Reads the header of a frame that is of no stream.
using HeaderReader =
    std::function<TalIec61850Analysis::FrameHeader(std::uint32_t file, std::uint64_t frameOffset)>;

/// The packets of an index that are asked for, one after the other: in the order of time over all
/// files; those of one time in the order of the files, and in each in that of the frames and of the
/// ASDUs. Packets without a time come last, and only where the window has no ends. A packet that
/// two files have comes once, from the first of them.
///
/// Memory does not grow with the packets, but for those without a time and those of no stream.
class PacketSelection {
public:
    /// @param index   must outlive this
    /// @param headOf  asked about frames of no stream, where criteria ask for more than a protocol
    /// @throws what headOf does
    PacketSelection(TalIec61850Analysis::TrafficIndex const& index, PacketWish wish,
                    HeaderReader const& headOf);

    /// Begins again.
    void rewind();

    /// The next packet; none after the last.
    [[nodiscard]] std::optional<SelectedPacket> next();

    /// How many streams there are by what tells them apart, whatever their packets.
    [[nodiscard]] std::size_t streamCount() const { return streamCount_; }

private:
    /// Where the selection is in what one file has of a stream. Places are those in the order of
    /// time.
    struct Cursor {
        TalIec61850Analysis::TrafficStream const* stream = nullptr;
        TalIec61850Analysis::StreamPart const* part = nullptr;
        PartPackets packets;
        /// The packet before the window, while it is to come.
        std::optional<std::size_t> before;
        std::size_t next = 0;
        /// Of the window.
        std::size_t end = 0;
        /// Whether the packet after the window is to come.
        bool isAfterWanted = false;
    };
    /// The next packet of a cursor.
    struct Head {
        std::int64_t time = 0;
        std::uint64_t frameOffset = 0;
        std::uint32_t file = 0;
        std::uint32_t asdu = 0;
        std::uint32_t cursor = 0;
        std::uint32_t packet = 0;
        Place place = Place::inside;

        [[nodiscard]] bool comesAfter(Head const& other) const;
    };
    /// The place in the order of time and of the window.
    using Found = std::optional<std::pair<std::size_t, Place>>;

    void addPart(TalIec61850Analysis::TrafficStream const& stream,
                 TalIec61850Analysis::StreamPart const& part);
    void addTimeless(TalIec61850Analysis::TrafficStream const& stream,
                     TalIec61850Analysis::StreamPart const& part);
    void addUnread(std::uint32_t file, HeaderReader const& headOf);
    [[nodiscard]] static Found findNext(Cursor& cursor);
    [[nodiscard]] std::optional<Head> takeHead(std::uint32_t number);
    /// Takes the first of the heap out and another head in, which costs half of doing one after the
    /// other.
    void replaceFirst(Head const& head);

    TalIec61850Analysis::TrafficIndex const& index_;
    PacketWish wish_;
    std::size_t streamCount_ = 0;
    /// As they are at the beginning.
    std::vector<Cursor> begin_;
    std::vector<Cursor> cursors_;
    /// A heap, the earliest on top.
    std::vector<Head> heads_;
    /// Frames of no stream, in order.
    std::vector<SelectedPacket> unread_;
    std::size_t nextUnread_ = 0;
    /// What has no time, in order.
    std::vector<SelectedPacket> timeless_;
    std::size_t nextTimeless_ = 0;
};

}  // namespace TalIec61850Tools
