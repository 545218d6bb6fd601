#pragma once

#include <cstddef>
#include <limits>

namespace TalTest {

/// How files misbehave.
struct ReadFaults {
    static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

    /// Reading stops at this offset of a file: with an I/O error, or as if it ended there.
    std::size_t endsAt = never;
    bool failsThere = false;
    /// The most octets that one read brings.
    std::size_t most = never;
    /// Every other read is interrupted by a signal before it brings any.
    bool isInterrupted = false;
    /// Which call of read fails, which one of lseek, counted from 1.
    std::size_t failingRead = never;
    std::size_t failingSeek = never;
};

/// Has the files of the program misbehave that are read by streams, those of the libraries it uses
/// included. Ends with its life. A program that links this has `read` and `lseek` replaced.
class FaultyReads {
public:
    explicit FaultyReads(ReadFaults const& faults);
    FaultyReads(FaultyReads const&) = delete;
    FaultyReads& operator=(FaultyReads const&) = delete;
    ~FaultyReads();

    [[nodiscard]] static std::size_t reads();
    [[nodiscard]] static std::size_t seeks();
};

}  // namespace TalTest
