#pragma once

// Internal: the records of a capture as the index takes them.

#include <TalIec61850Analysis/file/CaptureDamage.hpp>
#include <TalIec61850Analysis/file/CaptureRecords.hpp>
#include <TalIec61850Analysis/file/Descriptor.hpp>
#include <TalIec61850Analysis/packet/FrameHeader.hpp>
#include <TalIec61850Analysis/packet/Octets.hpp>
#include <TalIec61850Analysis/time/CaptureTime.hpp>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TalIec61850Analysis::detail {

/// What a capture says of a frame.
struct SourceRecord {
    std::uint64_t frameOffset = 0;
    std::optional<CaptureTime> time;
    std::uint32_t capturedSize = 0;
    std::uint32_t originalSize = 0;
    std::uint16_t linkType = kLinkTypeEthernet;
    /// Packets lost before it, where the format says so.
    std::optional<std::uint64_t> dropped;
};

/// A record, and its captured octets.
struct SourceView {
    SourceRecord record;
    Octets frame;
};

/// Reads a capture from its first record to its last.
class RecordSource {
public:
    /// @throws std::system_error  it cannot be opened or read
    explicit RecordSource(std::string const& path);

    /// @return valid until the next call; null after the last record, and where damage ends the
    /// file
    /// @throws std::system_error  it cannot be read
    [[nodiscard]] SourceView const* next();

    /// Known once `next` gave null.
    [[nodiscard]] std::optional<CaptureDamage> const& damage() const { return records_.damage(); }
    /// Octets of the file.
    [[nodiscard]] std::uint64_t size() const { return size_; }

private:
    CaptureRecords records_;
    std::uint64_t size_ = 0;
    SourceView view_;
};

/// Reads single frames of a capture.
class FrameSource {
public:
    /// @throws std::system_error  it cannot be opened or read
    explicit FrameSource(std::string const& path);

    /// The captured octets of a frame.
    /// @param frameOffset  as an index has it
    /// @return valid until the next call; fewer octets where the file has changed meanwhile
    /// @throws std::system_error  it cannot be read
    [[nodiscard]] Octets frameAt(std::uint64_t frameOffset);

private:
    [[nodiscard]] Octets view(std::uint64_t fileOffset, std::size_t size);

    Descriptor file_;
    bool isLittleEndian_ = false;
    std::vector<std::uint8_t> block_;
    std::uint64_t blockOffset_ = 0;
};

}  // namespace TalIec61850Analysis::detail
