#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TalTest {

/// The folder of recorded captures: the environment's TAL_CAPTURES, or else shared/captures beside
/// the source tree. nullopt when there is none, for they are not part of the source.
///
/// Where TAL_CAPTURES_ASKED names a file, the command line of the test that asks is added to it:
/// scripts/try-clone runs these tests again with the captures.
[[nodiscard]] std::optional<std::filesystem::path> capturesFolder();

/// Whether recorded captures must be there, by the environment's TAL_REQUIRE_CAPTURES: a test of
/// one that is missing fails then.
[[nodiscard]] bool requireCaptures();

/// The path of one recorded capture, `capture("sv-92le-4000hz-three-phase-fault.pcap")`.
/// nullopt when it is not there.
[[nodiscard]] std::optional<std::string> capture(std::string_view name);

/// The paths of the recorded captures of these names that are there.
/// @throws std::runtime_error when one is missing that must be there
[[nodiscard]] std::vector<std::string> recorded(std::vector<std::string> const& names);

/// The name of a capture's file as a part of a test's name: letters, digits and _, no suffix.
[[nodiscard]] std::string captureTestName(std::string_view capture);

/// The paths of all recorded captures, sorted.
/// @throws std::runtime_error when there are none and must be some
[[nodiscard]] std::vector<std::string> recordedCapturePaths();

}  // namespace TalTest
