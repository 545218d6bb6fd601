#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace TalTest {

/// The folder of recorded captures: the environment's TAL_CAPTURES, or else shared/captures beside
/// the source tree. nullopt when there is none, for they are not part of the source.
[[nodiscard]] std::optional<std::filesystem::path> capturesFolder();

/// The path of one recorded capture, `capture("sv-92le-4000hz-three-phase-fault.pcap")`.
/// nullopt when it is not there: such a test is skipped.
[[nodiscard]] std::optional<std::string> capture(std::string_view name);

}  // namespace TalTest
