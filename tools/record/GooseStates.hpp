#pragma once

#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tools/names/StreamNames.hpp"
#include "tools/selection/FrameReader.hpp"

namespace TalIec61850Tools {

/// One state of a GOOSE member over time.
struct GooseState {
    /// The gocbRef, and the index path of the member: "IED1LD0/LLN0$GO$gcb1 3", "... 9.2", or where
    /// it is described, its name: "IED1LD0/LLN0$GO$gcb1 LD0/PTRC1.Tr.general". Of a double point,
    /// there is one for each bit, first bit first: "... 4 bit 1".
    std::string name;
    /// The logical node of a member that is described, with its IED: IED1LD0/PTRC1. Else empty.
    std::string component = {};
    /// Who publishes it, with its VLAN: "02:00:00:00:00:01", "02:00:00:00:00:01 VLAN 5".
    std::string publisher = {};
    /// When it becomes another, in nanoseconds since 1970, by arrival. Before the first it is not
    /// known.
    std::vector<std::int64_t> times;
    /// From each of these times on.
    std::vector<std::uint8_t> states;

    /// Writes the states at some instants, not before those asked for last; 0 where it is not
    /// known.
    /// @param instants  in nanoseconds since 1970, in their order
    /// @param asked     set to the states, one for each instant
    /// @param cursor    0 at first, then as it was left
    void at(std::span<std::int64_t const> instants, std::vector<std::uint8_t>& asked,
            std::size_t& cursor) const;
};

/// What states are called as channels, each another way: names of 64 characters at most, the end of
/// longer ones, with the publisher in front where several have one name, and a number where that
/// does not tell them apart.
[[nodiscard]] std::vector<std::string> stateIds(std::vector<GooseState> const& states);

/// Which members of GOOSE streams become states, and how they are called.
struct GooseStateWish {
    /// Patterns of index paths or names, see MemberNames; empty for all.
    std::vector<std::string> members;
    StreamNames* names = nullptr;
    /// Of captures, by their numbers.
    std::function<std::string_view(std::uint32_t file)> nameOf = {};
};

/// Reads the booleans and the double points (bit strings of two bits) in the data sets of all GOOSE
/// streams of an index. Memory grows with changes, not with packets.
/// @param frames  of the captures of the index
/// @throws std::system_error  a capture cannot be read again
[[nodiscard]] std::vector<GooseState> readGooseStates(
    TalIec61850Analysis::TrafficIndex const& index, FrameReader& frames,
    GooseStateWish const& wish);

}  // namespace TalIec61850Tools
