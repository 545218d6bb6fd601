#pragma once

#include <string>
#include <vector>

#include "support/FaultyStation.hpp"
#include "support/TempFile.hpp"
#include "tools/CompanionRows.hpp"

// What the tests of `check` have in common.

namespace TalTest {

inline constexpr std::int64_t kNsOfMs = 1'000'000;

/// The captures of a station as files, while this is there.
class StationFiles {
public:
    explicit StationFiles(FaultyStation& station);
    explicit StationFiles(std::vector<Bytes> const& captures);

    /// By their paths.
    [[nodiscard]] Arguments const& paths() const { return paths_; }
    /// The arguments of `check` for them.
    [[nodiscard]] Arguments check(Arguments const& more = {}) const;

private:
    TempDir folder_;
    Arguments paths_;
};

/// What `check -f json` writes of a station. It must succeed without a complaint.
[[nodiscard]] std::vector<Json> checkRows(FaultyStation& station, Arguments const& more = {});
[[nodiscard]] std::vector<Json> checkRows(StationFiles const& files, Arguments const& more = {});

/// The sentences of the findings of one kind.
[[nodiscard]] std::vector<std::string> sentencesOf(FaultyStation& station, std::string const& kind);

/// Two merging units and a relay, that run for two seconds.
[[nodiscard]] FaultyStation smallStation();

/// That with a gap, a repetition, a loss of messages and a change of synchronism.
[[nodiscard]] FaultyStation troubledStation();

}  // namespace TalTest
