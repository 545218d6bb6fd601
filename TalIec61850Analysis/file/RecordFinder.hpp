#pragma once

// Internal: the record that holds an offset of a capture file.

#include <TalIec61850Analysis/file/CaptureRecord.hpp>
#include <TalIec61850Analysis/file/RecordWalk.hpp>
#include <cstdint>
#include <optional>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Finds records as a walk from the start of the file does. Where walks have been, it begins at a
/// place nearby; elsewhere it searches, and walks on where that does not tell.
class RecordFinder {
public:
    /// @param file        outlives this
    /// @param fileOffset  of the first record or block
    /// @param decoder     for what is there; counts nothing
    RecordFinder(Descriptor const& file, std::uint64_t fileSize, std::uint64_t fileOffset,
                 Decoder const& decoder);

    /// Keeps where a walk has come to, which began at the start or at a place kept before.
    void note(RecordWalk const& walk);

    /// The file has grown.
    /// @param fileSize  in octets
    void grow(std::uint64_t fileSize);

    /// @return none where no record holds the offset
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] std::optional<CaptureRecord> find(std::uint64_t fileOffset);

private:
    /// Where a walk can begin. Its decoder counts nothing.
    struct Place {
        std::uint64_t fileOffset;
        Decoder decoder;
    };

    [[nodiscard]] std::optional<CaptureRecord> search(std::uint64_t fileOffset);
    [[nodiscard]] std::optional<CaptureRecord> walkTo(std::uint64_t fileOffset);
    [[nodiscard]] std::optional<CaptureRecord> decodeAt(std::uint64_t recordOffset,
                                                        Decoder const& decoder) const;

    Descriptor const* file_;
    std::uint64_t fileSize_;
    /// How far places are apart: near enough to be walked, and few.
    std::uint64_t spacing_;
    std::vector<Place> places_;
    /// All there is has been walked.
    bool isWalked_ = false;
};

}  // namespace TalIec61850Analysis::detail
