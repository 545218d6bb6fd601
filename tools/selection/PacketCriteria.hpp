#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "tools/selection/StreamCriteria.hpp"

namespace TalIec61850Tools {

/// Numbers from the first to the last.
struct NumberRange {
    std::uint64_t first = 0;
    std::uint64_t last = 0;

    [[nodiscard]] bool contains(std::uint64_t number) const {
        return first <= number && number <= last;
    }
    friend bool operator==(NumberRange const&, NumberRange const&) = default;
};

/// The packets that a command reads: those of which streams, and what they must say themselves.
struct PacketCriteria : StreamCriteria {
    /// A or B, of HSR or PRP.
    std::vector<char> lanes;
    /// Whether the header, or the element of GOOSE, says that values are simulated.
    std::optional<bool> simulated;
    std::vector<NumberRange> stNums;
    std::vector<NumberRange> sqNums;
    std::vector<NumberRange> smpCnts;

    /// Whether packets of a stream may be wanted, by what tells it from others.
    [[nodiscard]] bool admitKey(TalIec61850Analysis::StreamKey const& key) const;

    /// Whether packets with these attributes may be wanted.
    [[nodiscard]] bool admitAttributes(
        TalIec61850Analysis::StreamAttributes const& attributes) const;

    /// Whether a frame may be wanted that is of no stream: by protocol and header alone, as it has
    /// nothing else.
    [[nodiscard]] bool admitUnread(Protocol framesProtocol,
                                   TalIec61850Analysis::FrameHeader const& header) const;

    /// Whether any criterion needs more of a frame than its protocol.
    [[nodiscard]] bool needHeader() const;

    /// Whether any criterion leaves out packets over one of two ways.
    [[nodiscard]] bool chooseLane() const;

    friend bool operator==(PacketCriteria const&, PacketCriteria const&) = default;
};

/// Whether a packet says that its values are simulated.
[[nodiscard]] bool isSimulated(TalIec61850Analysis::PacketFlags flags,
                               TalIec61850Analysis::StreamAttributes const& attributes);

/// Looks at the packets that one file has of a stream.
class PartPackets {
public:
    /// All must outlive this.
    PartPackets(PacketCriteria const& criteria, TalIec61850Analysis::TrafficIndex const& index,
                TalIec61850Analysis::StreamPart const& part)
        : criteria_(&criteria), index_(&index), part_(&part) {}

    [[nodiscard]] TalIec61850Analysis::PacketColumns const& columns() const {
        return part_->packets;
    }

    /// The attributes that a packet has.
    [[nodiscard]] TalIec61850Analysis::StreamAttributes const& attributesOf(std::size_t packet);

    /// Whether a packet is wanted, be it in an earlier file too or not.
    [[nodiscard]] bool admit(std::size_t packet);

    /// Whether a packet is wanted, and no earlier file has it.
    [[nodiscard]] bool admitFirst(std::size_t packet) {
        return !part_->packets.flags()[packet].isDuplicate() && admit(packet);
    }

private:
    void findChange(std::size_t packet);
    [[nodiscard]] bool admitCounters(std::size_t packet,
                                     TalIec61850Analysis::PacketFlags flags) const;

    PacketCriteria const* criteria_;
    TalIec61850Analysis::TrafficIndex const* index_;
    TalIec61850Analysis::StreamPart const* part_;
    /// Packets from the first to before the last have the attributes that were looked at last.
    std::size_t first_ = 0;
    std::size_t last_ = 0;
    TalIec61850Analysis::StreamAttributes const* attributes_ = nullptr;
    bool areAdmitted_ = false;
};

}  // namespace TalIec61850Tools
