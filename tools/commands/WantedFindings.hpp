#pragma once

#include <TalIec61850Analysis/supervision/Finding.hpp>
#include <TalIec61850Analysis/supervision/SuperviseTraffic.hpp>
#include <TalIec61850Analysis/time/TimeWindow.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstdint>
#include <utility>

#include "tools/options/CheckOptions.hpp"

namespace TalIec61850Tools {

/// How many findings there are of each severity.
struct SeverityCounts {
    std::uint64_t errors = 0;
    std::uint64_t warnings = 0;
    std::uint64_t notes = 0;

    void add(TalIec61850Analysis::Severity severity);
    [[nodiscard]] std::uint64_t all() const { return errors + warnings + notes; }
};

/// Which findings CheckOptions ask for.
class WantedFindings {
public:
    /// @param options   must outlive this
    /// @param criteria  those of the options, with what tells IEDs
    /// @param window    of times of findings
    WantedFindings(CheckOptions const& options, PacketCriteria criteria,
                   TalIec61850Analysis::TimeWindow const& window)
        : options_(options), criteria_(std::move(criteria)), window_(window) {}

    /// How traffic is to be supervised; all streams are watched.
    [[nodiscard]] TalIec61850Analysis::SupervisionOptions supervision() const;

    [[nodiscard]] bool areStreamsSelected() const { return criteria_ != PacketCriteria(); }

    /// Whether findings of a stream are wanted.
    [[nodiscard]] bool isWatched(TalIec61850Analysis::TrafficIndex const& index,
                                 TalIec61850Analysis::TrafficStream const& stream) const;

    /// Whether a finding is wanted that is of a stream which is watched, or of none.
    [[nodiscard]] bool isWanted(TalIec61850Analysis::Finding const& finding) const;

    /// Whether the program is to fail where there is a finding of that severity.
    [[nodiscard]] bool failsOn(TalIec61850Analysis::Severity severity) const {
        return options_.failOn && severity >= *options_.failOn;
    }

private:
    CheckOptions const& options_;
    PacketCriteria criteria_;
    TalIec61850Analysis::TimeWindow window_;
};

}  // namespace TalIec61850Tools
