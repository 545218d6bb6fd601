#pragma once

// Internal: frames of indexed captures, read again.

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/traffic/TrafficIndex.hpp>
#include <cstddef>
#include <cstdint>
#include <list>
#include <vector>

namespace TalIec61850Analysis::detail {

/// Reads frames that are mostly asked for in the order of their file; the files that were used last
/// stay open.
class IndexedFrames {
public:
    /// @param index  must outlive this
    explicit IndexedFrames(TrafficIndex const& index)
        : index_(&index), wereOpen_(index.files().size()) {}

    /// The frame at an offset.
    /// @param frameOffset  of an indexed packet
    /// @return valid until the next call
    /// @throws std::system_error  the file cannot be read, or no longer has the frame (ESTALE)
    [[nodiscard]] RecordView const& at(std::uint32_t file, std::uint64_t frameOffset);

private:
    static constexpr std::size_t kMostOpen = 16;

    struct Open {
        std::uint32_t file = 0;
        CaptureFile capture;
        /// Where the capture has been read to; null at its start, and after its last record.
        RecordView const* last = nullptr;
        /// Whether it was open before: then it is not read from its start again.
        bool isAgain = false;
    };

    [[nodiscard]] Open& openOf(std::uint32_t file);

    TrafficIndex const* index_;
    /// The one that was used last comes first.
    std::list<Open> open_;
    /// By file.
    std::vector<bool> wereOpen_;
    RecordView found_;
};

}  // namespace TalIec61850Analysis::detail
