#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/library/LibraryStream.hpp"

namespace TalIec61850Tools {

/// The result of the library's operation on single frames, and its reason.
enum class Verdict : std::uint8_t {
    wanted,
    rejectedByLinkLayer,  ///< by address, VLAN, HSR or PRP
    rejectedByPdu,        ///< by header or PDU, or too short for them
    switchedOff,          ///< of a protocol that is not asked for
    otherProtocol,        ///< neither GOOSE nor SV
};

/// The verdict on one frame.
struct FrameVerdict {
    /// Not set for other protocols.
    std::optional<Protocol> protocol;
    Verdict verdict = Verdict::otherProtocol;
    /// The result of EthernetParser::parsePacketSimple. Its meaning differs between the protocols.
    bool answer = false;

    // clang-tidy 14 takes the 0 that a rewritten < compares with for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend auto operator<=>(FrameVerdict const&, FrameVerdict const&) = default;
};

/// The verdict as one word: wanted, rejectedByLinkLayer, ...
[[nodiscard]] std::string_view toText(Verdict verdict);

/// Judges a frame in memory.
/// @param frame  starts with the destination address
[[nodiscard]] FrameVerdict judgeFrame(std::vector<std::uint8_t> const& frame,
                                      TalIec61850Parser::Filter const& filter);

/// Every verdict that a frame can get: GOOSE before SV before others.
[[nodiscard]] std::vector<FrameVerdict> allVerdicts();

}  // namespace TalIec61850Tools
