#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "tools/input/CaptureVariant.hpp"
#include "tools/input/Descriptor.hpp"
#include "tools/selection/CaptureTime.hpp"

namespace TalIec61850Tools {

/// The header of one record of a capture file, and where it stands.
struct CaptureRecord {
    /// Offset of the record's header in the file, in octets.
    std::uint64_t position = 0;
    CaptureTime time;
    /// Octets of the frame in the file, and on the wire.
    std::uint32_t capturedSize = 0;
    std::uint32_t originalSize = 0;

    /// Offset of the frame's first octet in the file.
    [[nodiscard]] std::uint64_t framePosition() const;
};

/// Walks the records of a classic capture from the first to the last.
class CaptureRecords {
public:
    /// @param path  a file that checkCapture found no fault with
    /// @throws std::system_error  it cannot be opened or read
    explicit CaptureRecords(std::string const& path);

    /// The next record; none behind the last one, and where the file ends inside a record.
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] std::optional<CaptureRecord> next();

    /// The captured octets of a record that `next` gave; valid until the next call of either.
    /// @throws std::system_error  the file cannot be read
    [[nodiscard]] std::span<std::uint8_t const> frameOf(CaptureRecord const& record);

    /// What is wrong with the file, for people, once `next` gave none; not set for a whole one.
    [[nodiscard]] std::optional<std::string> const& damage() const { return damage_; }

    /// The record that the file ends inside, once `next` gave none: its captured size is what is
    /// there of it.
    [[nodiscard]] std::optional<CaptureRecord> const& cutRecord() const { return cutRecord_; }

private:
    [[nodiscard]] std::span<std::uint8_t const> view(std::uint64_t position, std::size_t size);
    void load(std::uint64_t position, std::size_t size);

    Descriptor file_;
    std::uint64_t fileSize_ = 0;
    CaptureVariant variant_;
    /// Where the next record's header stands.
    std::uint64_t position_ = 0;
    /// A part of the file, and where it begins there.
    std::vector<std::uint8_t> block_;
    std::uint64_t blockPosition_ = 0;
    std::optional<std::string> damage_;
    std::optional<CaptureRecord> cutRecord_;
};

}  // namespace TalIec61850Tools
