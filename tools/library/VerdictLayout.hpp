#pragma once

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <cstdint>
#include <string_view>

#include "tools/library/FrameVerdict.hpp"
#include "tools/output/RowLayout.hpp"

namespace TalIec61850Tools {

/// How often a verdict came.
struct VerdictCount {
    FrameVerdict verdict;
    std::uint64_t frames = 0;
    /// Captured octets of these frames.
    std::uint64_t octets = 0;
};

/// The verdict on one frame.
struct JudgedFrame {
    FrameVerdict verdict;
    /// The capture as it was given; valid as long as its name is.
    std::string_view file;
    TalIec61850Analysis::CaptureRecord record;
};

/// The rows of `judge`: one for each verdict.
[[nodiscard]] RowLayout<VerdictCount> verdictCountLayout();

/// The rows of `judge --list`: one for each frame.
[[nodiscard]] RowLayout<JudgedFrame> judgedFrameLayout();

}  // namespace TalIec61850Tools
