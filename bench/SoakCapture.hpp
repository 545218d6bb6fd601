#pragma once

#include <TalIec61850Parser/store/Timest.hpp>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "bench/Workloads.hpp"
#include "support/Bytes.hpp"
#include "support/TempFile.hpp"

namespace TalBench {

/// A frame as its publisher wrote it.
struct WrittenFrame {
    TalIec61850Parser::Timest time;
    /// Where its first octet is in the capture.
    std::uint64_t position;
    TalTest::Bytes octets;
};

/// A capture in a temporary directory, and what an index of it has to answer.
class SoakCapture {
public:
    /// @param workload  wants all of its frames, and no two at one time
    explicit SoakCapture(Workload const& workload);

    [[nodiscard]] std::string const& path() const { return path_; }
    [[nodiscard]] std::size_t frames() const { return times_.size(); }

    /// How many frames there are from one time to another, both included.
    [[nodiscard]] std::size_t framesWithin(TalIec61850Parser::Timest const& from,
                                           TalIec61850Parser::Timest const& to) const;

    /// When the last frame before this time was captured.
    [[nodiscard]] std::optional<TalIec61850Parser::Timest> lastBefore(
        TalIec61850Parser::Timest const& time) const;

    [[nodiscard]] TalIec61850Parser::Timest const& timeOf(std::size_t frame) const {
        return times_[frame];
    }

    /// Some of the frames, spread over the capture.
    [[nodiscard]] std::vector<WrittenFrame> const& samples() const { return samples_; }

private:
    TalTest::TempDir directory_;
    std::string path_;
    std::vector<TalIec61850Parser::Timest> times_;
    std::vector<WrittenFrame> samples_;
};

}  // namespace TalBench
