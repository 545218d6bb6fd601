#pragma once

#include <TalIec61850Analysis/Export.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis {

/// What a stream consists of.
enum class StreamProtocol : std::uint8_t {
    goose,  ///< GOOSE, EtherType 88B8
    sv,     ///< Sampled Values, EtherType 88BA
};

/// The part of a VLAN tag that tells streams apart.
struct VlanKey {
    /// The EtherType that announces the tag.
    std::uint16_t tpid = 0x8100;
    /// The VLAN identifier, 12 bits.
    std::uint16_t id = 0;

    /// By TPID, then by identifier.
    // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 mistakes the 0 of generated comparisons
    friend auto operator<=>(VlanKey const&, VlanKey const&) = default;
};

/// What tells streams apart. The lanes of HSR and the LANs of PRP do not: both copies of a frame
/// are of one stream.
struct StreamKey {
    /// GOOSE or SV.
    StreamProtocol protocol = StreamProtocol::goose;
    /// Where the frames come from; not set where a cooked capture has no such address.
    std::optional<MacAddress> source;
    /// Where they go; not set in cooked captures.
    std::optional<MacAddress> destination;
    /// Outermost first. No tag is another stream than VLAN 0.
    std::vector<VlanKey> vlans;
    /// APPID.
    std::uint16_t appId = 0;
    /// gocbRef of GOOSE, svID of the ASDU of SV, octet for octet.
    std::string name;

    /// Member by member: the order of streams in an index.
    // NOLINTNEXTLINE(modernize-use-nullptr): as above
    friend auto operator<=>(StreamKey const&, StreamKey const&) = default;
};

/// For containers of the standard library.
struct StreamKeyHash {
    /// Equal keys have equal hashes in one run of a program; in the next one they have others.
    [[nodiscard]] TALIEC61850ANALYSIS_EXPORT std::size_t operator()(
        StreamKey const& key) const noexcept;
};

}  // namespace TalIec61850Analysis
