#pragma once

// Captures of the project's own making: small, the same at each run, and there on every machine.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/CaptureMaker.hpp"

namespace TalTest {

/// What the values in their data sets and samples are drawn with.
inline constexpr std::uint32_t kOwnCaptureSeed = 61850;

/// How far a capture may be compared with what tshark dissects.
enum class Dissected {
    inFull,    ///< every field of every frame
    repeated,  ///< as well, but another capture has the same frames: the index and counts suffice
    inCounts,  ///< the frames of every address and APPID; their content is read otherwise
    otherwise  ///< tshark sees other frames than the index holds
};

/// A capture, with the counts that its making states.
struct OwnCapture {
    /// The file's name.
    std::string name = {};
    std::size_t gooseFrames = 0;
    std::size_t svFrames = 0;
    /// Streams by the rules of streamText().
    std::size_t streams = 0;
    MadeCapture (*make)() = nullptr;

    /// GOOSE and SV frames that have no position.
    std::size_t withoutPosition = 0;
    Dissected dissected = Dissected::inFull;
    /// What tshark counts, where it sees other frames.
    std::optional<std::size_t> dissectedFrames = {};
    /// Why tshark, or why the library's decoders, do not tell what was written.
    std::string whyDissected = {};
    std::string whyNotDecoded = {};
};

/// All of them.
[[nodiscard]] std::vector<OwnCapture> const& ownCaptures();

/// The file of one of them. It is written at the first call, into a folder that goes with the
/// program.
/// @throws std::invalid_argument when there is none of this name
[[nodiscard]] std::string ownCapture(std::string_view name);

/// The files of all.
[[nodiscard]] std::vector<std::string> ownCapturePaths();

}  // namespace TalTest
