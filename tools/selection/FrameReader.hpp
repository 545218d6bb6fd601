#pragma once

#include <TalIec61850Analysis/file/CaptureFile.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

namespace TalIec61850Tools {

/// What a capture says of a frame besides its octets.
[[nodiscard]] inline TalIec61850Analysis::FrameOrigin originOf(
    TalIec61850Analysis::CaptureRecord const& record) {
    return {.linkType = record.linkType, .originalSize = record.originalSize};
}

/// Reads frames of an index from their captures. Frames that are asked for in the order of their
/// file are read one after the other.
class FrameReader {
public:
    /// @param paths  of the captures, in the order of the index
    explicit FrameReader(std::vector<std::string> paths) : paths_(std::move(paths)) {}

    /// The record whose frame is at an offset.
    /// @param file         the number of the capture
    /// @param frameOffset  in octets, as the index has it
    /// @return valid until the next call
    /// @throws std::system_error  the capture cannot be read, or no longer has the record (ESTALE)
    [[nodiscard]] TalIec61850Analysis::RecordView const& read(std::uint32_t file,
                                                              std::uint64_t frameOffset);

private:
    struct OpenCapture {
        std::uint32_t number;
        TalIec61850Analysis::CaptureFile capture;
        /// The last one that was read in sequence; null before the first and after the last.
        TalIec61850Analysis::RecordView const* current = nullptr;
        /// The last one that was looked for.
        TalIec61850Analysis::RecordView found{};
    };

    [[nodiscard]] OpenCapture& open(std::uint32_t file);

    std::vector<std::string> paths_;
    /// The one that was used last comes first: there may be more captures than descriptors.
    std::list<OpenCapture> open_;
};

}  // namespace TalIec61850Tools
