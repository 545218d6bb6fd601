#pragma once

// A capture file read by libpcap, in the same words as one that `CaptureFile` has read.

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "analysis/file/ReadFile.hpp"
#include "support/Bytes.hpp"

namespace TalIec61850Analysis {

/// What libpcap tells of a file, with times in nanoseconds.
struct LibpcapRead {
    /// One text per record, see `recordText`. Those before it refused the file, if it did.
    std::vector<std::string> records;
    /// Why it did not read the file to its end.
    std::optional<std::string> refusal;
    std::optional<int> linkType;
};

/// Reads a file from its first record to its last.
[[nodiscard]] LibpcapRead readByLibpcap(std::string const& path);

/// Time, captured size, original size and octets of a record.
/// @param seconds  since 1970; none for a record without a time
[[nodiscard]] std::string recordText(std::optional<std::int64_t> seconds, std::int64_t nanoseconds,
                                     std::uint32_t capturedSize, std::uint32_t originalSize,
                                     TalTest::Bytes const& frame);

/// A whole frame.
[[nodiscard]] std::string recordText(std::optional<std::int64_t> seconds, std::int64_t nanoseconds,
                                     TalTest::Bytes const& frame);

/// The records that `CaptureFile` told.
[[nodiscard]] std::vector<std::string> recordTexts(ReadCapture const& read);

}  // namespace TalIec61850Analysis
