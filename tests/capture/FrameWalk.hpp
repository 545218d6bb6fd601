#pragma once

#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <initializer_list>
#include <limits>

#include "support/Ber.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// What the tests of the indexing walks, GOOSE and SV, hand in and look at.

namespace TalTest {

inline constexpr int kMaxDepth = std::numeric_limits<int>::max();
/// A package as it was before, where the walk must leave it so.
inline constexpr TalIec61850Parser::Package kUntouched = {{77, 78}, 79};
inline constexpr TalIec61850Parser::PcapPacketHeader kHeader = {.tsSec = 5, .tsUsec = 999};

/// What a walk over one GOOSE frame, or a part of it, left behind.
struct WalkedGoose {
    bool accepted = false;
    TalIec61850Parser::Goose goose = {};
    TalIec61850Parser::Package package = kUntouched;
};

/// What a walk over one SV frame, or a part of it, left behind.
struct WalkedSv {
    bool accepted = false;
    TalIec61850Parser::Sv sv = {};
    TalIec61850Parser::Package package = kUntouched;
};

/// A frame, from its GOOSE header on, whose goosePdu has this content.
inline Bytes gooseWithFields(Bytes const& fields) { return apdu({}, ber(0x61, fields)); }

/// A frame, from its SV header on, whose only ASDU has this content.
inline Bytes svWithFields(Bytes const& fields) {
    return apdu({}, ber(0x60, concat({ber(0x80, {0x01}), ber(0xA2, ber(0x30, fields))})));
}

/// A message with an ASDU for each svID.
inline SvMessage messageOf(std::initializer_list<char const*> svIDs) {
    SvMessage message;
    message.asdus.clear();
    for (char const* const svID : svIDs) {
        message.asdus.emplace_back().svID = svID;
    }
    return message;
}

/// The element `count` times, one behind the other.
inline Bytes times(std::size_t count, Bytes const& element) {
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) append(all, element);
    return all;
}

}  // namespace TalTest
