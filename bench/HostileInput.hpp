#pragma once

#include <TalIec61850Parser/capture/Filter.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Bytes.hpp"

namespace TalBench {

/// The most that an input's octet may cost, compared with one of an ordinary capture: twice what is
/// measured, or a little more. An ordinary octet takes a third of a nanosecond, since half of them
/// are never looked at and the others are compared sixteen at once; and an eighth of an octet of
/// memory, since a packet of 16 octets is kept of 142. So
///
/// - elements of two octets, all of which are looked at, take tens of times as much;
/// - a level that is come back to is remembered in 40 octets, so that it takes a hundred times;
/// - a stream that is new with each frame takes 1.7 kB, names and list of packets, and some
///   microseconds, for its 170 octets: several hundred times;
/// - a file of one packet takes as long as opening and reading one does.
///
/// None of these multiples grows with the input.
struct HostileLimits {
    double time;
    double memory;
};

/// An input built to hurt: captures, or what decoders are given.
struct HostileInput {
    /// Letters, digits and hyphens.
    std::string name;
    /// Writes the file, or files, beginning with this path.
    std::function<void(std::string const& path)> write;
    /// Does with them what hurts.
    /// @throws std::runtime_error when the result is not what it should be
    std::function<void(std::string const& path)> use;
    /// No limits where what it costs is known to grow without any, see GooseHash.
    std::optional<HostileLimits> limits = {};
    /// How often `use` goes over all octets.
    std::uint64_t repeats = 1;
    /// Octets that count as written although they are not, such as those that are padded.
    std::uint64_t extraOctets = 0;
    int maxRounds = std::numeric_limits<int>::max();
};

/// The levels of the deepest inputs, and their elements.
constexpr std::size_t million = 1'000'000;

/// What the others are compared with: SV of 16 streams.
[[nodiscard]] HostileInput ordinaryInput();

/// All of them, in the order of the table.
[[nodiscard]] std::vector<HostileInput> const& hostileInputs();

/// @throws std::runtime_error when there is none of this name; the ordinary one has a name, too
[[nodiscard]] HostileInput hostileInput(std::string_view name);

// The groups they are made in.
void addNestedInputs(std::vector<HostileInput>& inputs);
void addFrameInputs(std::vector<HostileInput>& inputs);
void addStreamInputs(std::vector<HostileInput>& inputs);
void addFileInputs(std::vector<HostileInput>& inputs);
void addDecodeInputs(std::vector<HostileInput>& inputs);

// What they are made of.

/// Writes a capture of `count` frames, which are made of their numbers.
[[nodiscard]] std::function<void(std::string const&)> writesFrames(
    std::uint64_t count, std::function<TalTest::Bytes(std::uint64_t)> frame);

/// Indexes the capture into a fresh store, which is to hold so much then.
[[nodiscard]] std::function<void(std::string const&)> indexes(
    std::size_t streams, std::uint64_t packets, TalIec61850Parser::Filter filter = {});

/// The same on a thread with a stack of 64 KiB.
[[nodiscard]] std::function<void(std::string const&)> onSmallStack(
    std::function<void(std::string const&)> use);

/// @throws std::runtime_error unless it is so
void requireSo(bool isSo, std::string_view what);

/// Frames of nothing but link layer, header, and these octets for a PDU.
[[nodiscard]] TalTest::Bytes gooseFrameOf(TalTest::Bytes const& pdu);
[[nodiscard]] TalTest::Bytes svFrameOf(TalTest::Bytes const& pdu);

/// The same octets `times` times.
[[nodiscard]] TalTest::Bytes repeated(TalTest::Bytes const& octets, std::size_t times);

}  // namespace TalBench
