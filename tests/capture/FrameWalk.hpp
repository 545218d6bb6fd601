#pragma once

#include <gtest/gtest.h>

#include <TalIec61850Parser/capture/Filter.hpp>
#include <TalIec61850Parser/capture/PcapPacketHeader.hpp>
#include <TalIec61850Parser/store/Goose.hpp>
#include <TalIec61850Parser/store/Sv.hpp>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <vector>

#include "capture/Indexing.hpp"
#include "support/Ber.hpp"
#include "support/Ethernet.hpp"
#include "support/Goose.hpp"
#include "support/SampledValues.hpp"

// What the tests of the walks over one frame, GOOSE and SV, hand in and look at.

namespace TalTest {

inline constexpr int kMaxDepth = std::numeric_limits<int>::max();
/// More levels of nesting than a stack has room for.
inline constexpr std::size_t kMillion = 1'000'000;
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

inline TalIec61850Parser::Goose& recordOf(WalkedGoose& walked) { return walked.goose; }
inline TalIec61850Parser::Sv& recordOf(WalkedSv& walked) { return walked.sv; }

/// What judging a frame by itself leaves behind.
/// @param data  the frame, from its GOOSE or SV header, at `offset`, on
template <typename ParserSimple, typename Walked>
Walked judged(Bytes const& data, TalIec61850Parser::Filter const& filter, std::size_t offset = 0) {
    Walked result;
    result.accepted = ParserSimple::parsePacket(data, offset, recordOf(result), filter);
    return result;
}

/// What indexing makes of the same octets.
template <typename Parser, typename Walked>
Walked indexed(Bytes const& data, TalIec61850Parser::Filter const& filter = {}) {
    Walked result;
    result.accepted = Parser::parsePacket(data, 0, {}, 0, recordOf(result), result.package, filter);
    return result;
}

/// The same verdict, and the same stream.
template <typename Walked>
void expectSame(Walked one, Walked other) {
    EXPECT_EQ(one.accepted, other.accepted);
    EXPECT_EQ(listing::identity(recordOf(one)), listing::identity(recordOf(other)));
}

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

/// Every tag and trailer that a frame may have, alone and together, with padding and without.
inline std::vector<Ethernet> linkLayers() {
    std::vector<Ethernet> all = {Ethernet(), Ethernet().withVlan(5), Ethernet().withHsr('B'),
                                 Ethernet().withVlan(5).withHsr('A')};
    for (std::size_t i = 0; i < 4; ++i) all.push_back(all[i].withPrp('B'));
    for (std::size_t i = 0; i < 8; ++i) all.push_back(all[i].withPadding());
    return all;
}

/// The element `count` times, one after the other.
inline Bytes times(std::size_t count, Bytes const& element) {
    Bytes all;
    for (std::size_t i = 0; i < count; ++i) append(all, element);
    return all;
}

}  // namespace TalTest
